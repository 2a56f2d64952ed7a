#include "dbmodal/dbmod/tensor.h"

#include "fmdtoolkit/fmdtoolkit.h"

namespace {

// T = A^T (T A)
void transform(double* tensor, const double* a) {
  double product[9];
  for (int i = 0; i < 3; ++i) {
    const double* const row = tensor + 3L * i;
    for (int j = 0; j < 3; ++j) product[3 * i + j] = row[0] * a[j] + row[1] * a[3 + j] + row[2] * a[6 + j];
  }
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j)
      tensor[3 * i + j] = a[i] * product[j] + a[3 + i] * product[3 + j] + a[6 + i] * product[6 + j];
  }
}

}  // namespace

namespace fmd {

// The middle cofactor has A2 A6 where a determinant has A2 A7: bodies have always been mirrored by this sign.
int rotation_sign(const double* a) {
  const double value = a[0] * (a[4] * a[8] - a[5] * a[7]) - a[3] * (a[1] * a[8] - a[2] * a[6]) +
                       a[6] * (a[1] * a[5] - a[2] * a[4]);
  return value < 0.0 ? -1 : 1;
}

void transform_six(double* six, const double* matrix) {
  double tensor[9] = {six[0], six[3], six[4], six[3], six[1], six[5], six[4], six[5], six[2]};
  transform(tensor, matrix);
  six[0] = tensor[0];
  six[1] = tensor[4];
  six[2] = tensor[8];
  six[3] = tensor[1];
  six[4] = tensor[2];
  six[5] = tensor[5];
}

}  // namespace fmd

void Tensor_Transform(double* tensor, double* matrix, int sign) {
  transform(tensor, matrix);
  if (sign != -1) return;
  for (int k = 0; k < 9; ++k) tensor[k] = -tensor[k];
}
