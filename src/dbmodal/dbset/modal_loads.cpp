// Setters of the modal preload, the modal load cases and the nodal modal load cases.
//
// The vectors of preload and load cases are as long as the body has modes when they come into being; a mode
// added later has no place in them and is refused.
#include <algorithm>
#include <cstdio>
#include <cstring>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr int kLongestLabel = 255;
constexpr int kNodalStep = 10;

bool is_case(int load_case) {
  if (load_case >= 0) return true;
  FMD_Error("The load case index %d is illegal.\nThe load case index must be non-negative.", load_case);
  return false;
}

// A case of zero loads under its default label; false without memory, which is reported.
bool make_case(FmdLoadCase& made, int load_case, int modes) {
  made = FmdLoadCase{};
  std::snprintf(made.Label, sizeof made.Label, "Load Case %d", load_case + 1);
  made.Loads = fmd::allocate<double>(modes, "dbset").release();
  made.LoadCount = made.Loads == nullptr ? 0 : modes;
  return made.Loads != nullptr;
}

// Makes all cases below a count; on failure the body keeps those that it had.
bool grow_cases(FmdBody& body, std::int64_t count) {
  if (!fmd::grow(body.LoadCases, count)) {
    fmd::report_allocation_failure("dbset");
    return false;
  }
  for (int made = body.LoadCaseCount; made < count; ++made) {
    if (make_case(body.LoadCases[made], made, body.ModeCount)) continue;
    for (int undone = body.LoadCaseCount; undone < made; ++undone) fmd::release(body.LoadCases[undone].Loads);
    return false;
  }
  body.LoadCaseCount = static_cast<std::int32_t>(count);
  return true;
}

bool provide_case(FmdBody& body, int load_case) {
  return load_case < body.LoadCaseCount || grow_cases(body, std::int64_t{load_case} + 1);
}

bool provide_nodal_case(FmdBody& body, int load_case) {
  if (load_case < body.NodalLoadCaseCount) return true;
  const std::int64_t count = std::int64_t{load_case} + 1;
  if (!fmd::grow(body.NodalLoadCases, count)) {
    fmd::report_allocation_failure("dbset");
    return false;
  }
  std::fill(body.NodalLoadCases + body.NodalLoadCaseCount, body.NodalLoadCases + count, FmdNodalLoadCase{});
  body.NodalLoadCaseCount = static_cast<std::int32_t>(count);
  return true;
}

bool provide_entry(FmdNodalLoadCase& nodal) {
  if (nodal.Count < nodal.Capacity) return true;
  const std::int32_t capacity = nodal.Capacity + kNodalStep;
  if (fmd::grow(nodal.Nodes, capacity) && fmd::grow(nodal.Coordinates, capacity) &&
      fmd::grow(nodal.Values, capacity)) {
    nodal.Capacity = capacity;
    return true;
  }
  fmd::report_allocation_failure("dbset");
  return false;
}

}  // namespace

int FMD_SetModalPreload(FmdBody* body, int mode, double value) {
  if (CheckFMD(body) == 0) return 0;
  const int index = FMD_LookupOrAddMode(body, mode);
  if (index < 0) return 0;
  if (body->ModalPreload == nullptr) {
    body->PreloadProcessed = 0;
    body->ModalPreload = fmd::allocate<double>(body->ModeCount, "dbset").release();
    if (body->ModalPreload == nullptr) return 0;
    body->PreloadCount = body->ModeCount;
  }
  if (index >= body->PreloadCount) return 0;
  body->ModalPreload[index] = value;
  body->BlockExists[fmd::kModalPreload] = 1;
  return 1;
}

void FMD_SetModalPreloadProcessed(FmdBody* body, int flag) {
  if (CheckFMD(body) == 0 || body->BlockExists[fmd::kModalPreload] == 0) return;
  body->PreloadProcessed = flag;
}

int FMD_SetModalLoad(FmdBody* body, int load_case, int mode, double value) {
  if (CheckFMD(body) == 0 || !is_case(load_case)) return 0;
  const int index = FMD_LookupOrAddMode(body, mode);
  if (index < 0 || !provide_case(*body, load_case)) return 0;
  FmdLoadCase& target = body->LoadCases[load_case];
  if (index >= target.LoadCount) return 0;
  target.Loads[index] = value;
  body->BlockExists[fmd::kModalLoads] = 1;
  return 1;
}

int FMD_SetModalLoadLabel(FmdBody* body, int load_case, char* label) {
  if (CheckFMD(body) == 0 || load_case < 0 || !provide_case(*body, load_case)) return 0;
  char(&stored)[256] = body->LoadCases[load_case].Label;
  const std::size_t length = std::strlen(label);
  // The field goes into a dataset as it stands, so nothing of an older label may be left in it.
  std::memset(stored, 0, sizeof stored);
  if (length == 0) {
    std::snprintf(stored, sizeof stored, "%d", load_case + 1);
    return 1;
  }
  if (length > kLongestLabel) {
    FMD_Warning("Modal load label too big: max size %ld, specified size %ld.  Truncating label.",
                static_cast<long>(kLongestLabel), static_cast<long>(length));
  }
  std::snprintf(stored, sizeof stored, "%s", label);
  return 1;
}

void FMD_SetModalLoadProcessed(FmdBody* body, int load_case, int flag) {
  if (CheckFMD(body) == 0 || load_case < 0 || load_case >= body->LoadCaseCount) return;
  body->LoadCases[load_case].Processed = flag;
}

int FMD_SetModalLoadNodal(FmdBody* body, int load_case, int node, int coordinate, double value) {
  if (CheckFMD(body) == 0 || !is_case(load_case)) return 0;
  if (coordinate < 1 || coordinate > 6) {
    FMD_Error("The coordinate number %d is illegal.\nThe coordinate number must be 1 to 6.", coordinate);
    return 0;
  }
  const int index = FMD_LookupOrAddNode(body, node);
  if (index < 0 || !provide_nodal_case(*body, load_case)) return 0;
  FmdNodalLoadCase& nodal = body->NodalLoadCases[load_case];
  if (!provide_entry(nodal)) return 0;
  nodal.Nodes[nodal.Count] = index;
  nodal.Coordinates[nodal.Count] = coordinate;
  nodal.Values[nodal.Count] = value;
  ++nodal.Count;
  body->BlockExists[fmd::kModalLoadNodal] = 1;
  return 1;
}
