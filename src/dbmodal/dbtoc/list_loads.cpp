// Preload, load cases, nodal load cases.
#include "dbmodal/dbtoc/listing.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

void list_load_case(FmdBody* body, std::FILE* out, int load_case) {
  char label[256] = "";
  FMD_GetModalLoadCaseLabel(body, load_case, label);
  if (label[0] == '\0') std::snprintf(label, sizeof label, "%d", load_case + 1);
  int count = 0;
  const CArray<double> loads(FMD_GetModalLoad(body, load_case, &count));
  if (loads == nullptr) {
    std::fprintf(out, "\tNo Modal load information for load case %s.\n\n", label);
    return;
  }
  std::fprintf(out,
               FMD_ModalLoadProcessed(body, load_case) != 0
                   ? "\nCase: %s     (already projected on principal axes)\n"
                   : "\nCase: %s     (not yet projected on principal axes)\n",
               label);
  for (int mode = 0; mode < count; ++mode) {
    std::fprintf(out, "%d % 17.10lf\n", body->ModeNumbers[mode], loads[static_cast<std::size_t>(mode)]);
  }
}

// False where an array cannot be had, which ends the block.
bool list_nodal_case(FmdBody* body, std::FILE* out, int load_case) {
  const int count = FMD_GetModalLoadNodalCount(body, load_case);
  if (count == 0) return true;
  const CArray<std::int32_t> nodes(FMD_GetModalLoadNodalNode(body, load_case));
  const CArray<std::int32_t> coordinates(FMD_GetModalLoadNodalCoord(body, load_case));
  const CArray<double> values(FMD_GetModalLoadNodalLoad(body, load_case));
  if (nodes == nullptr || coordinates == nullptr || values == nullptr) return false;
  std::fprintf(out, "\nCase Number %d ===========================\n\n", load_case + 1);
  std::fprintf(out, " node_id     coord         load       \n");
  std::fprintf(out, "~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~~\n");
  for (int entry = 0; entry < count; ++entry) {
    const auto at = static_cast<std::size_t>(entry);
    std::fprintf(out, "%8d", FMD_NodeID(body, nodes[at]));
    std::fprintf(out, "%8d", coordinates[at]);
    std::fprintf(out, "    % 16.9e\n", values[at]);
  }
  return true;
}

}  // namespace

void list_preload(FmdBody* body, std::FILE* out) {
  int count = 0;
  const CArray<double> preload(FMD_GetModalPreload(body, &count));
  if (preload == nullptr) {
    std::fprintf(out, "\tNo Preload information.\n\n");
    return;
  }
  for (int mode = 0; mode < count; ++mode) {
    std::fprintf(out, "\n%d % 17.10lf\n", body->ModeNumbers[mode], preload[static_cast<std::size_t>(mode)]);
  }
  std::fprintf(out, "\n");
}

void list_loads(FmdBody* body, std::FILE* out) {
  if (body->LoadCaseCount == 0) {
    std::fprintf(out, "\tNo Modal Load information.\n\n");
    return;
  }
  for (int load_case = 0; load_case < body->LoadCaseCount; ++load_case) list_load_case(body, out, load_case);
  std::fprintf(out, "\n");
}

void list_nodal_loads(FmdBody* body, std::FILE* out) {
  if (body->NodalLoadCaseCount == 0) {
    std::fprintf(out, "\tNo Modal Load Nodal Information.\n\n");
    return;
  }
  std::fprintf(out, "Number of Modal Load Nodal: %d\n", body->NodalLoadCaseCount);
  for (int load_case = 0; load_case < body->NodalLoadCaseCount; ++load_case) {
    if (!list_nodal_case(body, out, load_case)) return;
  }
  std::fprintf(out, "\n");
}

}  // namespace fmd
