// Pairs of matrices for the generalized eigensolver, its solution of them and LAPACK's, and what the theory
// allows these to differ by.
#ifndef FMDTOOLKIT_TESTS_QZ_PAIR_H
#define FMDTOOLKIT_TESTS_QZ_PAIR_H

#include <complex>
#include <random>
#include <vector>

namespace fmdtest {

// The roundoff level of double arithmetic.
constexpr double kRoundoff = 0x1p-53;

// n by n by columns.
struct SquareMatrix {
  int n;
  std::vector<double> values;
  explicit SquareMatrix(int order)
      : n(order), values(static_cast<std::size_t>(order) * static_cast<std::size_t>(order)) {}
  double& operator()(int i, int j) { return values[index(i, j)]; }
  double operator()(int i, int j) const { return values[index(i, j)]; }
  std::size_t index(int i, int j) const {
    return static_cast<std::size_t>(j) * static_cast<std::size_t>(n) + static_cast<std::size_t>(i);
  }
};

SquareMatrix identity(int n);
SquareMatrix transpose(const SquareMatrix& m);
SquareMatrix product(const SquareMatrix& left, const SquareMatrix& right);
double norm(const SquareMatrix& m);  // Frobenius

struct MatrixPair {
  SquareMatrix a;
  SquareMatrix b;
};

using Random = std::mt19937_64;
SquareMatrix random_matrix(int n, Random& random);
SquareMatrix random_orthogonal(int n, Random& random);
// Of the form left diag(values) right with random orthogonal factors.
SquareMatrix with_singular_values(const std::vector<double>& values, Random& random);

using Vector = std::vector<std::complex<double>>;

struct Eigenvalue {
  std::complex<double> alpha;
  double beta;
};

struct Solution {
  int error = -1;
  std::vector<double> alfr, alfi, beta;
  SquareMatrix z{0};     // as the solver stores the vectors
  SquareMatrix left{0};  // left vectors in the same manner, LAPACK's alone

  int n() const { return static_cast<int>(beta.size()); }
  Eigenvalue value(int i) const;
  Vector vector(int i) const { return column(z, i); }
  Vector left_vector(int i) const { return column(left, i); }

 private:
  Vector column(const SquareMatrix& of, int i) const;
};

Solution solve(const MatrixPair& pair, double tolerance = 0.0);
Solution solve_with_lapack(const MatrixPair& pair);

// Distance of two eigenvalues as points of the sphere, at most 1; infinite ones are points like others.
double chordal_distance(const Eigenvalue& left, const Eigenvalue& right);

// The largest ||beta A x - alpha B x|| / ((|beta| ||A|| + |alpha| ||B||) ||x||) of all vectors.
double largest_residual(const MatrixPair& pair, const Solution& solution);

// By how much a change of the pair as large as its norm moves each simple eigenvalue, to first order, and
// each vector: sqrt(||A||^2 + ||B||^2) / sqrt(|y^H A x|^2 + |y^H B x|^2) for vectors of length 1, and the sum
// of these over the other eigenvalues, each by its distance.
std::vector<double> value_conditions(const MatrixPair& pair, const Solution& with_left);
std::vector<double> vector_conditions(const Solution& solution, const std::vector<double>& value_conditions);

// For each eigenvalue of one solution the one of the other that belongs to it: the nearest that is left, the
// best conditioned first.
std::vector<int> match(const Solution& of, const Solution& to, const std::vector<double>& conditions);

// Length of the part of x that is not in the direction of y, both scaled to length 1.
double angle(const Vector& x, const Vector& y);

}  // namespace fmdtest

#endif
