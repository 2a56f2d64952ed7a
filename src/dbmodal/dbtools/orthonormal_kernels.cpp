#include "dbmodal/dbtools/orthonormal_kernels.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <utility>

namespace fmd {

namespace {

std::size_t as_size(int n) {
  return static_cast<std::size_t>(n);
}

const double* row_of(const double* matrix, int row, int n) {
  return matrix + as_size(row) * as_size(n);
}

double* row_of(double* matrix, int row, int n) {
  return matrix + as_size(row) * as_size(n);
}

// y_c += a x_c for c from first until n
void add_multiple(double a, const double* x, int first, int n, double* y) {
  for (int c = first; c < n; ++c) y[c] += a * x[c];
}

void copy_column(const double* matrix, int column, int n, double* x) {
  for (int r = 0; r < n; ++r) x[r] = row_of(matrix, r, n)[column];
}

double dot(const double* x, const double* y, int n) {
  double sum = 0.0;
  for (int i = 0; i < n; ++i) sum += x[i] * y[i];
  return sum;
}

// Brings a column to unit length in the mass and leaves it in x; false where its square is not positive.
bool normalise_column(const double* mass, int column, int n, double* w, double* x, double* y) {
  copy_column(w, column, n, x);
  transform_row(x, mass, n, 0, y);
  const double squared = dot(x, y, n);
  if (!(squared > 0.0)) return false;
  const double length = std::sqrt(squared);
  for (int r = 0; r < n; ++r) {
    x[r] /= length;
    row_of(w, r, n)[column] = x[r];
  }
  return true;
}

}  // namespace

void swap_eigenpair(Eigenpair* pairs, int i, int j) {
  std::swap(pairs[i], pairs[j]);
}

void sort_eigenpairs(Eigenpair* pairs, int n) {
  for (int k = 0; k < n / 2; ++k) swap_eigenpair(pairs, k, n - 1 - k);
  // No swap brings a pair back past a larger one, so the passes end even where some compare with nothing.
  for (bool swapped = true; swapped;) {
    swapped = false;
    for (int i = 0; i + 1 < n; ++i) {
      if (!(pairs[i].value > pairs[i + 1].value)) continue;
      swap_eigenpair(pairs, i, i + 1);
      swapped = true;
    }
  }
}

void gather_vectors(const double* solver_columns, const Eigenpair* pairs, int n, double* t) {
  for (int r = 0; r < n; ++r) {
    double* const row = row_of(t, r, n);
    for (int c = 0; c < n; ++c) row[c] = row_of(solver_columns, pairs[c].column, n)[r];
  }
}

void gram_schmidt(const double* mass, const double* t, int n, double* w, double* scratch) {
  double* const x = scratch;
  double* const y = scratch + n;
  double* const d = y + n;
  std::copy_n(t, as_size(n) * as_size(n), w);
  for (int c = 0; c < n; ++c) {
    if (!normalise_column(mass, c, n, w, x, y) || c == n - 1) continue;
    transform_row(x, mass, n, 0, y);
    // d_j = y' T_j with the vectors as they were, all later columns at a time.
    std::fill_n(d, n, 0.0);
    for (int r = 0; r < n; ++r) add_multiple(y[r], row_of(t, r, n), c + 1, n, d);
    for (int r = 0; r < n; ++r) add_multiple(-x[r], d, c + 1, n, row_of(w, r, n));
  }
}

void rayleigh_quotients(const double* stiffness, const double* t, int n, double* q, double* scratch) {
  std::fill_n(q, n, 0.0);
  for (int r = 0; r < n; ++r) {
    transform_row(row_of(stiffness, r, n), t, n, 0, scratch);
    const double* const row = row_of(t, r, n);
    for (int c = 0; c < n; ++c) q[c] += row[c] * scratch[c];
  }
}

void divide_columns(double* t, int n, const double* divisors) {
  for (int r = 0; r < n; ++r) {
    double* const row = row_of(t, r, n);
    for (int c = 0; c < n; ++c) row[c] /= divisors[c];
  }
}

void transform_row(const double* row, const double* t, int n, int first, double* result) {
  for (int c = first; c < n; ++c) result[c] = 0.0;
  for (int a = first; a < n; ++a) add_multiple(row[a], row_of(t, a, n), first, n, result);
}

}  // namespace fmd
