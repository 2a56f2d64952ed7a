// First stage: B to upper triangular form by Householder reflections of its columns, then A to upper
// Hessenberg form while B stays triangular.
#include <fmdtoolkit/fmdtoolkit.h>

#include "qz/reflection.h"

namespace {

using fmd::qz::Matrix;
using fmd::qz::reflect_columns;
using fmd::qz::reflect_rows;
using fmd::qz::reflection_of;

void set_identity(const Matrix& z, int n) {
  for (int j = 0; j < n; ++j) {
    for (int i = 0; i < n; ++i) z(i, j) = 0.0;
    z(j, j) = 1.0;
  }
}

// x -= v (v . x) / rho over the rows from first until n.
void reflect_column(const double* __restrict v, double rho, int first, int n, double* __restrict x) {
  double sum = 0.0;
  for (int i = first; i < n; ++i) sum += v[i] * x[i];
  const double t = -sum / rho;
  for (int i = first; i < n; ++i) x[i] += t * v[i];
}

// Carries column k of B, from the diagonal down, to a multiple of the first axis. The vector of the
// reflection stands in the column itself meanwhile.
void triangularize_column(const Matrix& a, const Matrix& b, int k, int n) {
  double* const v = b.column(k);
  double scale = 0.0;
  for (int i = k + 1; i < n; ++i) scale += std::fabs(v[i]);
  if (scale == 0.0) return;
  scale += std::fabs(v[k]);
  double squares = 0.0;
  for (int i = k; i < n; ++i) {
    v[i] /= scale;
    squares += v[i] * v[i];
  }
  const double r = std::copysign(std::sqrt(squares), v[k]);
  v[k] += r;
  const double rho = r * v[k];
  for (int j = k + 1; j < n; ++j) reflect_column(v, rho, k, n, b.column(j));
  for (int j = 0; j < n; ++j) reflect_column(v, rho, k, n, a.column(j));
  v[k] = -scale * r;
  for (int i = k + 1; i < n; ++i) v[i] = 0.0;
}

// Removes a(row + 1, k) by the rows row and row + 1, and the element below the diagonal that this leaves in
// B by the columns of the same numbers.
void remove_element(const Matrix& a, const Matrix& b, const Matrix* z, int row, int k, int n) {
  const auto rows = reflection_of(a(row, k), a(row + 1, k));
  if (!rows) return;
  reflect_rows(*rows, a, row, k, n);
  a(row + 1, k) = 0.0;
  reflect_rows(*rows, b, row, row, n);
  const auto columns = reflection_of(b(row + 1, row + 1), b(row + 1, row));
  if (!columns) return;
  reflect_columns(*columns, b, row, 0, row + 2);
  b(row + 1, row) = 0.0;
  reflect_columns(*columns, a, row, 0, n);
  if (z != nullptr) reflect_columns(*columns, *z, row, 0, n);
}

}  // namespace

void FMD_QZHESS(int* nm, int* n, double* a, double* b, int* matz, double* z) {
  const int order = *n;
  const Matrix stiffness(a, *nm);
  const Matrix mass(b, *nm);
  const Matrix vectors(z, *nm);
  const bool accumulate = *matz != 0;
  if (accumulate) set_identity(vectors, order);
  for (int k = 0; k < order - 1; ++k) triangularize_column(stiffness, mass, k, order);
  for (int k = 0; k < order - 2; ++k) {
    for (int row = order - 2; row > k; --row)
      remove_element(stiffness, mass, accumulate ? &vectors : nullptr, row, k, order);
  }
}
