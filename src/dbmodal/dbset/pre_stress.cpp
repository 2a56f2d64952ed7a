// Pre-stress and pre-strain: one vector each, in memory, on the nodes that carry modal stress or strain.
#include <algorithm>
#include <cstdint>

#include "body/body.h"
#include "dbmodal/dbset/mode_nodes.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr int kGrowthStep = 1000;

// Grows the array by whole steps until it has the entry, with zeros.
bool provide_entry(double*& values, std::int32_t& capacity, int entry) {
  if (entry < capacity) return true;
  const std::int64_t wanted =
      capacity + (static_cast<std::int64_t>(entry) - capacity + kGrowthStep) / kGrowthStep * kGrowthStep;
  if (wanted > INT32_MAX || !grow(values, wanted * kValuesPerNode)) return false;
  std::fill(values + static_cast<std::ptrdiff_t>(capacity) * kValuesPerNode, values + wanted * kValuesPerNode,
            0.0);
  capacity = static_cast<std::int32_t>(wanted);
  return true;
}

// The place of a node among those of a type, both added where they are new, or -1.
int find_row(FmdBody& body, int type, int node) {
  const int index = FMD_LookupOrAddNode(&body, node);
  return index < 0 ? -1 : lookup_or_add_mode_node(body, type, index);
}

void store(double* array, int row, const double* values) {
  std::copy_n(values, kValuesPerNode, array + static_cast<std::ptrdiff_t>(row) * kValuesPerNode);
}

}  // namespace

}  // namespace fmd

int FMD_SetPreStressVec(FmdBody* body, int node, double* values) {
  if (CheckFMD(body) == 0) return 0;
  const int row = fmd::find_row(*body, fmd::kStress, node);
  if (row < 0) return 0;
  if (!fmd::provide_entry(body->PreStress, body->PreStressCapacity, row)) {
    FMD_Error("Failed to allocate memory for Pre-Stress at line %d in file %s.\n", __LINE__, "dbset");
    return 0;
  }
  fmd::store(body->PreStress, row, values);
  body->BlockExists[fmd::kPreStress] = 1;
  return 1;
}

int FMD_SetPreStrainVec(FmdBody* body, int node, double* values) {
  if (CheckFMD(body) == 0) return 0;
  const int row = fmd::find_row(*body, fmd::kStrain, node);
  if (row < 0) return 0;
  if (!fmd::provide_entry(body->PreStrain, body->PreStrainCapacity, row)) {
    FMD_Error("Failed to allocate memory for Pre-Strain at line %d in file %s.\n", __LINE__, "dbset");
    return 0;
  }
  fmd::store(body->PreStrain, row, values);
  body->BlockExists[fmd::kPreStrain] = 1;
  return 1;
}
