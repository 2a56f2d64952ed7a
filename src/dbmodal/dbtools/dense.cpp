// Small dense algebra of the body frame: LU factorisation with row pivoting (Doolittle) of matrices given as
// row pointers, and products of row vectors and 3 by 3 matrices.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

std::size_t place(int index) {
  return static_cast<std::size_t>(index);
}

// The row at or below k with the largest entry in column k, the upper of equals; -1 where all are zero.
int pivot_row(double** a, int n, int k) {
  int pivot = -1;
  double largest = 0.0;
  for (int i = k; i < n; ++i) {
    if (std::fabs(a[i][k]) > largest) {
      largest = std::fabs(a[i][k]);
      pivot = i;
    }
  }
  return pivot;
}

void exchange_rows(double** a, int n, int first, int second) {
  if (first != second) std::swap_ranges(a[first], a[first] + n, a[second]);
}

// Solves L U x = P b with y as work space of n doubles.
void substitute(double** a, int n, const int* permutation, double* b, double* y) {
  for (int i = 0; i < n; ++i) {
    y[i] = b[permutation[i]];
    for (int j = 0; j < i; ++j) y[i] -= a[i][j] * y[j];
  }
  for (int i = n - 1; i >= 0; --i) {
    b[i] = y[i];
    for (int j = i + 1; j < n; ++j) b[i] -= a[i][j] * b[j];
    b[i] /= a[i][i];
  }
}

}  // namespace

int FMD_LUPDecomposition(double** a, int n, int* permutation) {
  for (int i = 0; i < n; ++i) permutation[i] = i;
  for (int k = 0; k < n - 1; ++k) {
    const int pivot = pivot_row(a, n, k);
    if (pivot < 0) return 0;
    std::swap(permutation[k], permutation[pivot]);
    exchange_rows(a, n, k, pivot);
    for (int i = k + 1; i < n; ++i) {
      a[i][k] /= a[k][k];
      for (int j = k + 1; j < n; ++j) a[i][j] -= a[i][k] * a[k][j];
    }
  }
  return 1;
}

int FMD_LUPSolve(double** a, int n, int* permutation, double* b) {
  const auto y = fmd::allocate<double>(n, "dbtools");
  if (y == nullptr) return 0;
  substitute(a, n, permutation, b, y.get());
  return 1;
}

int FMD_LUPInvert(double** a, int n, int* permutation) {
  auto column = fmd::allocate<double>(n, "dbtools");
  if (column == nullptr) return 0;
  auto inverse = fmd::allocate<double>(std::int64_t{n} * n, "dbtools");
  if (inverse == nullptr) return 0;
  for (int c = 0; c < n; ++c) {
    std::fill_n(column.get(), n, 0.0);
    column[place(c)] = 1.0;
    if (FMD_LUPSolve(a, n, permutation, column.get()) == 0) return 0;
    for (int r = 0; r < n; ++r) inverse[place(r) * place(n) + place(c)] = column[place(r)];
  }
  for (int r = 0; r < n; ++r) std::copy_n(inverse.get() + place(r) * place(n), n, a[r]);
  return 1;
}

// c = a b; c may be a or b
void Matrix_Multiply(double* a, double* b, double* c) {
  double product[9];
  for (int i = 0; i < 3; ++i) {
    const double* const row = a + std::ptrdiff_t{3} * i;
    for (int j = 0; j < 3; ++j) product[3 * i + j] = row[0] * b[j] + row[1] * b[3 + j] + row[2] * b[6 + j];
  }
  std::copy_n(product, 9, c);
}

// v' = sign v A
void Vector_Transform(double* v, double* matrix, int sign) {
  const double s = sign;
  const double x = v[0];
  const double y = v[1];
  const double z = v[2];
  for (int j = 0; j < 3; ++j) v[j] = s * (x * matrix[j] + y * matrix[3 + j] + z * matrix[6 + j]);
}

// a += b
void Move_Vector(double* a, double* b) {
  for (int k = 0; k < 3; ++k) a[k] += b[k];
}
