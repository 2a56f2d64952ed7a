// How each invariant follows a turn or reflection of the frame. Vectors and tensors of nine follow by
// themselves; cross products (4 and 5) change their sign with the hand of the frame.
#include <algorithm>

#include "dbmodal/dbinvar/invariant_blocks.h"
#include "dbmodal/dbinvar/invariant_storage.h"
#include "dbmodal/dbmod/recompute_invar4.h"
#include "dbmodal/dbmod/transform_body.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// A column of three rows of `modes` values, transformed.
void transformed_column(const double* rows, int modes, int mode, double* matrix, int sign, double* column) {
  for (int k = 0; k < 3; ++k) column[k] = rows[std::int64_t{k} * modes + mode];
  Vector_Transform(column, matrix, sign);
}

bool transform_invariant2(FmdBody* body, double* matrix) {
  double moment[3];
  std::copy_n(body->Invar2, 3, moment);
  Vector_Transform(moment, matrix, 1);
  return FMD_SetInvar2(body, moment) != 0;
}

bool transform_columns(FmdBody* body, const double* rows, int (*set)(FmdBody*, int, double*), double* matrix,
                       int sign) {
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    double column[3];
    transformed_column(rows, body->ModeCount, mode, matrix, sign, column);
    if (set(body, body->ModeNumbers[mode], column) == 0) return false;
  }
  return true;
}

bool transform_invariant4(FmdBody* body, double* matrix, int sign) {
  if (FMD_Exists(body, kNodalMassBlock) != 0) return recompute_invar4(body);
  return transform_columns(body, body->Invar4, FMD_SetInvar4, matrix, sign);
}

// Each pair once: the setter stores the reverse pair too.
bool transform_invariant5(FmdBody* body, double* matrix, int sign) {
  for (int i = 0; i < body->ModeCount; ++i) {
    for (int j = i; j < body->ModeCount; ++j) {
      double cross[3];
      transformed_column(body->Invar5[i], body->ModeCount, j, matrix, sign, cross);
      if (FMD_SetInvar5(body, body->ModeNumbers[i], body->ModeNumbers[j], cross) == 0) return false;
    }
  }
  return true;
}

void transform_invariant8(FmdBody* body, double* matrix) {
  for (int mode = 0; mode < body->ModeCount; ++mode) Tensor_Transform(body->Invar8[mode], matrix, 1);
}

void transform_invariant9(FmdBody* body, double* matrix) {
  for (int i = 0; i < body->ModeCount; ++i) {
    for (int j = 0; j < body->ModeCount; ++j) Tensor_Transform(body->Invar9[i][j], matrix, 1);
  }
}

}  // namespace

bool transform_invariants(FmdBody* body, const PresentInvariants& present, double* matrix, int sign) {
  bool done = true;
  if (present.has(2)) done = transform_invariant2(body, matrix) && done;
  if (present.has(3)) done = transform_columns(body, body->Invar3, FMD_SetInvar3, matrix, 1) && done;
  if (present.has(4)) done = transform_invariant4(body, matrix, sign) && done;
  if (present.has(5)) done = transform_invariant5(body, matrix, sign) && done;
  if (present.has(7)) Tensor_Transform(body->Invar7, matrix, 1);
  if (present.has(8)) transform_invariant8(body, matrix);
  if (present.has(9)) transform_invariant9(body, matrix);
  return done;
}

}  // namespace fmd
