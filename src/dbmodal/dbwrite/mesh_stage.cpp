#include "dbmodal/dbwrite/mesh_stage.h"

#include <algorithm>
#include <string_view>

#include "dbmodal/dbinvar/invariant_storage.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr int kRigidModes = 6;

// The total mass; the centre is told where it is not zero.
double find_center_of_mass(const FmdBody& body, double* center) {
  double total = 0.0;
  double moment[3] = {};
  for (int node = 0; node < body.NodeCount; ++node) {
    const FmdNode& record = body.Nodes[node];
    total += record.Mass;
    for (int k = 0; k < 3; ++k) moment[k] += record.Mass * record.Coordinates[k];
  }
  if (total == 0.0) return 0.0;
  for (int k = 0; k < 3; ++k) center[k] = moment[k] / total;
  return total;
}

// The first six entries are forces and moments about the origin, which has moved to c: M -= c x F.
void move_moments(double* p, std::int32_t entries, const double* c) {
  if (p == nullptr || entries < kRigidModes) return;
  p[3] -= c[1] * p[2] - c[2] * p[1];
  p[4] -= c[2] * p[0] - c[0] * p[2];
  p[5] -= c[0] * p[1] - c[1] * p[0];
}

void move_loads(FmdBody& body, const double* center) {
  if (body.PreloadProcessed != 0) move_moments(body.ModalPreload, body.PreloadCount, center);
  if (body.LoadCases == nullptr) return;
  for (int load_case = 0; load_case < body.LoadCaseCount; ++load_case) {
    FmdLoadCase& loads = body.LoadCases[load_case];
    if (loads.Processed != 0) move_moments(loads.Loads, loads.LoadCount, center);
  }
}

// Invariants that were computed hold for the old origin and are computed again when asked for; what a caller
// or a dataset gave stays, and has its byte.
void drop_computed_invariants(FmdBody& body) {
  const char* const exists = body.BlockExists;
  if (exists[kInvariant1] == 0) release(body.Invar1);
  if (exists[kInvariant2] == 0) release(body.Invar2);
  if (exists[kInvariant3] == 0) release(body.Invar3);
  if (exists[kInvariant4] == 0) release(body.Invar4);
  if (exists[kInvariant5] == 0) release_value_rows(body.Invar5);
  if (exists[kInvariant7] == 0) release(body.Invar7);
  if (exists[kInvariant8] == 0) release_value_rows(body.Invar8);
  if (exists[kInvariant9] == 0) release_tensor_rows(body.Invar9);
}

// Of the stored centre of mass only x is cleared: y and z keep their values.
void ShiftFrameToCenterOfMass(FmdBody* body) {
  const int rigid_modes = FMD_RigidBodyModeCount(body);
  double center[3] = {};
  if (find_center_of_mass(*body, center) == 0.0) return;
  for (int node = 0; node < body->NodeCount; ++node) {
    for (int k = 0; k < 3; ++k) body->Nodes[node].Coordinates[k] -= center[k];
  }
  FMD_Info("Shifting LBRF to CM at (%.3e,%.3e,%.3e)\n", center[0], center[1], center[2]);
  drop_computed_invariants(*body);
  body->GlobalCenterOfMass[0] = 0.0;
  if (rigid_modes == kRigidModes) move_loads(*body, center);
}

// A text of its own for a part of the options; null for an empty part, and after a report without memory.
CArray<char> copy_text(WriteJob& job, std::string_view text) {
  if (text.empty()) return nullptr;
  auto copy = allocate<char>(static_cast<std::int64_t>(text.size()) + 1, "dbwrite");
  if (copy != nullptr) {
    std::copy(text.begin(), text.end(), copy.get());
  } else {
    job.ok = false;
  }
  return copy;
}

}  // namespace

void run_mesh_stage(WriteJob& job) {
  // The messages of a stage run code of the host, which may change the environment that the options are in.
  const CArray<char> sketch = copy_text(job, job.options.sketch);
  const CArray<char> coarsen = copy_text(job, job.options.coarsen);
  if (!job.ok) return;
  if (job.options.shift_to_center_of_mass) ShiftFrameToCenterOfMass(job.body);
  if (sketch != nullptr) FMD_SketchGrid(job.body, sketch.get());
  if (job.options.strip_faces) FMD_StripCommonFaces(job.body);
  if (coarsen != nullptr) FMD_TrimGeometry(job.body, coarsen.get());
}

}  // namespace fmd
