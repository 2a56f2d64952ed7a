// Setters of the invariants that have one entry per mode or per pair of modes. What was not set stays zero;
// an invariant that was set in part is never computed.
#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "dbmodal/dbinvar/invariant_results.h"
#include "dbmodal/dbinvar/invariant_storage.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr double kTolerance = 1e-8;

// The index of a mode number, or -1 with a report.
int known_mode(FmdBody* body, int number, int line = __builtin_LINE()) {
  const int mode = FMD_ModeIndex(body, number);
  if (mode < 0)
    FMD_Error("Mode number %d does not exist.  Requested at line %d in file %s.\n", number, line, "dbinvar");
  return mode;
}

// Column of three rows of `modes` values.
void store_column(double* rows, int modes, int column, const double* values, double sign) {
  for (int k = 0; k < 3; ++k) rows[std::int64_t{k} * modes + column] = sign * values[k];
}

int set_column(FmdBody* body, int number, const double* values, double*& cache, std::int32_t& cache_modes,
               fmd::SummaryByte byte) {
  const int mode = known_mode(body, number);
  if (mode < 0 || !fmd::reported(fmd::fit_mode_columns(cache, cache_modes, body->ModeCount))) return 0;
  store_column(cache, body->ModeCount, mode, values, 1.0);
  body->BlockExists[byte] = 1;
  return 1;
}

void warn_unless_zero(int i, int j, const double* values) {
  const bool zero = std::none_of(values, values + 3, [](double v) { return std::fabs(v) > kTolerance; });
  if (zero) return;
  FMD_Warning("I5(%d, %d) is not zero.\n   (%14.8e, %14.8e, %14.8e)", i, j, values[0], values[1], values[2]);
}

// Relative to a where a is above 1 in magnitude, absolute otherwise. A NaN does not agree.
bool agree(double a, double b) {
  const double scale = std::fabs(a) > 1.0 ? a : 1.0;
  return std::fabs((a - b) / scale) <= kTolerance;
}

void warn_unless_symmetric(int i, int j, const double* t) {
  if (agree(t[1], t[3]) && agree(t[2], t[6]) && agree(t[5], t[7])) return;
  FMD_Warning(
      "I9(%d, %d) is not symmetric.\n   %14.8e %14.8e %14.8e\n   %14.8e %14.8e %14.8e\n   %14.8e %14.8e "
      "%14.8e\n",
      i, j, t[0], t[1], t[2], t[3], t[4], t[5], t[6], t[7], t[8]);
}

}  // namespace

int FMD_SetInvar3(FmdBody* body, int mode, double* values) {
  if (CheckFMD(body) == 0) return 0;
  return set_column(body, mode, values, body->Invar3, body->Invar3Modes, fmd::kInvariant3);
}

int FMD_SetInvar4(FmdBody* body, int mode, double* values) {
  if (CheckFMD(body) == 0) return 0;
  return set_column(body, mode, values, body->Invar4, body->Invar4Modes, fmd::kInvariant4);
}

int FMD_SetInvar5(FmdBody* body, int row, int column, double* values) {
  if (CheckFMD(body) == 0) return 0;
  const int i = known_mode(body, row);
  const int j = i < 0 ? -1 : known_mode(body, column);
  if (j < 0 || !fmd::reported(fmd::fit_cross_sums(*body))) return 0;
  if (i == j) warn_unless_zero(row, column, values);
  // For a mode with itself the negated values are what stays.
  store_column(body->Invar5[i], body->ModeCount, j, values, 1.0);
  store_column(body->Invar5[j], body->ModeCount, i, values, -1.0);
  body->BlockExists[fmd::kInvariant5] = 1;
  return 1;
}

int FMD_SetInvar6(FmdBody* body, double* diagonal) {
  if (CheckFMD(body) == 0) return 0;
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    if (!(diagonal[mode] == 1.0)) {
      FMD_Error("Inertia Invariant 6 must be an identity matrix.");
      return 0;
    }
    const int number = body->ModeNumbers[mode];
    if (FMD_SetGeneralizedMass(body, number, number, diagonal[mode]) == 0) return 0;
  }
  return 1;
}

int FMD_SetInvar8(FmdBody* body, int mode, double* values) {
  if (CheckFMD(body) == 0) return 0;
  const int j = known_mode(body, mode);
  if (j < 0 || !fmd::reported(fmd::fit_mode_tensors(*body))) return 0;
  std::copy_n(values, fmd::kTensorSize, body->Invar8[j]);
  body->BlockExists[fmd::kInvariant8] = 1;
  return 1;
}

int FMD_SetInvar9(FmdBody* body, int row, int column, double* values) {
  if (CheckFMD(body) == 0) return 0;
  const int i = known_mode(body, row);
  const int j = i < 0 ? -1 : known_mode(body, column);
  if (j < 0 || !fmd::reported(fmd::fit_pair_tensors(*body))) return 0;
  if (i == j) warn_unless_symmetric(row, column, values);
  // For a mode with itself the transpose is what stays.
  std::copy_n(values, fmd::kTensorSize, body->Invar9[i][j]);
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) body->Invar9[j][i][3 * c + r] = values[3 * r + c];
  }
  body->BlockExists[fmd::kInvariant9] = 1;
  return 1;
}
