// Entries of the generalized matrices, in order of arrival, and the mode shape transformation.
#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr int kStep = 100;

// Appends an entry. The count stays raised where there was no memory; a place without entry names no mode.
int append(FmdMatrixEntry*& entries, std::int32_t& count, std::int32_t& capacity, FmdMatrixEntry entry) {
  const std::int32_t place = count++;
  if (count >= capacity) {
    const std::int32_t steps = (count - capacity) / kStep + 1;
    const std::int32_t grown = capacity + steps * kStep;
    if (!fmd::grow(entries, grown)) {
      fmd::report_allocation_failure("dbset");
      return 0;
    }
    std::fill(entries + capacity, entries + grown, fmd::kNoEntry);
    capacity = grown;
  }
  entries[place] = entry;
  return 1;
}

// product = old t, with the rows and columns that the old matrix lacks taken as zeros
void compose(const double* old, int old_order, const double* t, int order, double* product) {
  const int known = std::min(old_order, order);
  for (int r = 0; r < known; ++r) {
    const double* const from = old + std::int64_t{r} * old_order;
    double* const row = product + std::int64_t{r} * order;
    for (int k = 0; k < known; ++k) {
      const double* const factors = t + std::int64_t{k} * order;
      for (int c = 0; c < order; ++c) row[c] += from[k] * factors[c];
    }
  }
}

}  // namespace

int FMD_SetGeneralizedMass(FmdBody* body, int row, int column, double value) {
  constexpr double kTolerance = 1e-8;
  if (CheckFMD(body) == 0) return 0;
  const int i = FMD_LookupOrAddMode(body, row);
  const int j = FMD_LookupOrAddMode(body, column);
  if (i != j) {
    body->HasOffDiagonalGenMatrix = 1;
  } else if (std::fabs(1.0 - value) > kTolerance) {
    body->ShouldMassNormalizeModes = 1;
  }
  if (append(body->GenMass, body->GenMassCount, body->GenMassCapacity, {i, j, value}) == 0) return 0;
  body->BlockExists[fmd::kGeneralizedMass] = 1;
  return 1;
}

int FMD_SetGeneralizedStiffness(FmdBody* body, int row, int column, double value) {
  if (CheckFMD(body) == 0) return 0;
  const int i = FMD_LookupOrAddMode(body, row);
  const int j = FMD_LookupOrAddMode(body, column);
  if (i != j) body->HasOffDiagonalGenMatrix = 1;
  if (append(body->GenStiff, body->GenStiffCount, body->GenStiffCapacity, {i, j, value}) == 0) return 0;
  body->BlockExists[fmd::kGeneralizedStiffness] = 1;
  return 1;
}

int FMD_SetGeneralizedDamping(FmdBody* body, int row, int column, double value) {
  if (CheckFMD(body) == 0) return 0;
  if (body->GenDamp == nullptr) body->DampingOnPrincipalAxes = 0;
  const int i = FMD_LookupOrAddMode(body, row);
  const int j = FMD_LookupOrAddMode(body, column);
  if (append(body->GenDamp, body->GenDampCount, body->GenDampCapacity, {i, j, value}) == 0) return 0;
  body->BlockExists[fmd::kGeneralizedDamping] = 1;
  return 1;
}

void FMD_SetShouldMassNormalizeModes(FmdBody* body, int flag) {
  if (CheckFMD(body) != 0) body->ShouldMassNormalizeModes = flag;
}

int FMD_SetTransformation(FmdBody* body, double* matrix) {
  if (CheckFMD(body) == 0 || body->ModeCount == 0) return 0;
  const int order = body->ModeCount;
  auto result = fmd::allocate<double>(std::int64_t{order} * order, "dbset");
  if (result == nullptr) return 0;
  if (body->Transformation == nullptr) {
    std::copy_n(matrix, std::int64_t{order} * order, result.get());
  } else {
    compose(body->Transformation, body->TransformationOrder, matrix, order, result.get());
  }
  fmd::release(body->Transformation);
  body->Transformation = result.release();
  body->TransformationOrder = order;
  return 1;
}
