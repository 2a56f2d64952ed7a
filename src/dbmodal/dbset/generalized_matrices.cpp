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

// new = old t, formed row by row
void multiply_from_the_right(double* old, const double* t, double* row, int order, int stride) {
  for (int r = 0; r < order; ++r) {
    double* const from = old + std::int64_t{r} * stride;
    std::fill_n(row, order, 0.0);
    for (int k = 0; k < order; ++k) {
      for (int c = 0; c < order; ++c) row[c] += from[k] * t[std::int64_t{k} * order + c];
    }
    std::copy_n(row, order, from);
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
  if (body->Transformation != nullptr && body->TransformationOrder >= order) {
    const auto row = fmd::allocate<double>(order, "dbset");
    if (row == nullptr) return 0;
    multiply_from_the_right(body->Transformation, matrix, row.get(), order, body->TransformationOrder);
    return 1;
  }
  auto copy = fmd::allocate<double>(std::int64_t{order} * order, "dbset");
  if (copy == nullptr) return 0;
  std::copy_n(matrix, std::int64_t{order} * order, copy.get());
  fmd::release(body->Transformation);
  body->Transformation = copy.release();
  body->TransformationOrder = order;
  return 1;
}
