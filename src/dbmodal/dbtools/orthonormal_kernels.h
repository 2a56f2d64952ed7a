// The matrix work of orthonormalisation, on plain arrays. Square matrices of order n lie row by row unless
// told otherwise, so that every inner loop runs along a row over results that do not depend on each other;
// sums run in ascending order of the index summed over.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_ORTHONORMAL_KERNELS_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_ORTHONORMAL_KERNELS_H

#include <cstdint>

namespace fmd {

// An eigenvalue and the column of the solver's matrix that holds its vector.
struct Eigenpair {
  double value;
  std::int32_t column;
};

void swap_eigenpair(Eigenpair* pairs, int i, int j);

// Reverses the solver's order and bubbles the pairs up into ascending order: equal eigenvalues end up in the
// reverse of the solver's order, and one that is not a number stays where the reversal put it.
void sort_eigenpairs(Eigenpair* pairs, int n);

// T = the vectors in the order of the pairs, each a column; the solver's matrix lies column by column.
void gather_vectors(const double* solver_columns, const Eigenpair* pairs, int n, double* t);

// Classical Gram-Schmidt in the inner product of a symmetric mass matrix: W_c = T_c / sqrt(T_c' G T_c), less
// W_b (W_b' G T_c) for each b < c. A column whose square is not positive is left as it is and takes no part
// in later ones. scratch has 3 n doubles.
void gram_schmidt(const double* mass, const double* t, int n, double* w, double* scratch);

// q_i = T_i' K T_i for each column of T. scratch has n doubles.
void rayleigh_quotients(const double* stiffness, const double* t, int n, double* q, double* scratch);

// Divides each column by its divisor.
void divide_columns(double* t, int n, const double* divisors);

// result_c = sum of row_a T(a, c) over a from first on, for c from first on; before first nothing is touched.
void transform_row(const double* row, const double* t, int n, int first, double* result);

}  // namespace fmd

#endif
