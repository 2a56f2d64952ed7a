#include "qz/pair.h"

#include <fmdtoolkit/fmdtoolkit.h>

#include <algorithm>
#include <cmath>
#include <numeric>

extern "C" {
void dggev_(const char* jobvl, const char* jobvr, const int* n, double* a, const int* lda, double* b,
            const int* ldb, double* alphar, double* alphai, double* beta, double* vl, const int* ldvl,
            double* vr, const int* ldvr, double* work, const int* lwork, int* info, std::size_t jobvl_length,
            std::size_t jobvr_length);
void dgemm_(const char* transa, const char* transb, const int* m, const int* n, const int* k,
            const double* alpha, const double* a, const int* lda, const double* b, const int* ldb,
            const double* beta, double* c, const int* ldc, std::size_t transa_length,
            std::size_t transb_length);
}

namespace fmdtest {

namespace {

std::size_t at(int i) {
  return static_cast<std::size_t>(i);
}

double length(const Vector& x) {
  double squares = 0.0;
  for (const std::complex<double>& element : x) squares += std::norm(element);
  return std::sqrt(squares);
}

std::complex<double> inner_product(const Vector& x, const Vector& y) {
  std::complex<double> sum = 0.0;
  for (std::size_t i = 0; i < x.size(); ++i) sum += std::conj(x[i]) * y[i];
  return sum;
}

// A Z and B Z in the storage of the vectors, so that their products with complex vectors are read off.
struct Products {
  Solution a;
  Solution b;
  Products(const MatrixPair& pair, const Solution& solution) : a(solution), b(solution) {
    a.z = product(pair.a, solution.z);
    b.z = product(pair.b, solution.z);
  }
};

}  // namespace

SquareMatrix identity(int n) {
  SquareMatrix m(n);
  for (int i = 0; i < n; ++i) m(i, i) = 1.0;
  return m;
}

SquareMatrix transpose(const SquareMatrix& m) {
  SquareMatrix t(m.n);
  for (int j = 0; j < m.n; ++j)
    for (int i = 0; i < m.n; ++i) t(j, i) = m(i, j);
  return t;
}

SquareMatrix product(const SquareMatrix& left, const SquareMatrix& right) {
  SquareMatrix result(left.n);
  const double one = 1.0;
  const double zero = 0.0;
  const int n = left.n;
  dgemm_("N", "N", &n, &n, &n, &one, left.values.data(), &n, right.values.data(), &n, &zero,
         result.values.data(), &n, 1, 1);
  return result;
}

double norm(const SquareMatrix& m) {
  double squares = 0.0;
  for (const double value : m.values) squares += value * value;
  return std::sqrt(squares);
}

SquareMatrix random_matrix(int n, Random& random) {
  std::normal_distribution<double> normal;
  SquareMatrix m(n);
  for (double& value : m.values) value = normal(random);
  return m;
}

// Gram and Schmidt, twice.
SquareMatrix random_orthogonal(int n, Random& random) {
  SquareMatrix q = random_matrix(n, random);
  for (int j = 0; j < n; ++j) {
    double* const x = &q(0, j);
    for (int pass = 0; pass < 2; ++pass)
      for (int k = 0; k < j; ++k) {
        const double* const y = &q(0, k);
        const double part = std::inner_product(x, x + n, y, 0.0);
        for (int i = 0; i < n; ++i) x[i] -= part * y[i];
      }
    const double size = std::sqrt(std::inner_product(x, x + n, x, 0.0));
    for (int i = 0; i < n; ++i) x[i] /= size;
  }
  return q;
}

SquareMatrix with_singular_values(const std::vector<double>& values, Random& random) {
  const int n = static_cast<int>(values.size());
  SquareMatrix left = random_orthogonal(n, random);
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) left(i, j) *= values[at(j)];
  return product(left, random_orthogonal(n, random));
}

Eigenvalue Solution::value(int i) const {
  return {{alfr[at(i)], alfi[at(i)]}, beta[at(i)]};
}

Vector Solution::column(const SquareMatrix& of, int i) const {
  const double im = alfi[at(i)];
  const int first = im < 0.0 ? i - 1 : i;
  Vector x(at(n()));
  for (int k = 0; k < n(); ++k)
    x[at(k)] = {of(k, first), im == 0.0 ? 0.0 : im < 0.0 ? -of(k, first + 1) : of(k, first + 1)};
  return x;
}

Solution solve(const MatrixPair& pair, double tolerance) {
  MatrixPair work = pair;
  int n = pair.a.n;
  int with_vectors = 1;
  Solution s;
  s.alfr = s.alfi = s.beta = std::vector<double>(at(n));
  s.z = SquareMatrix(n);
  double* const a = work.a.values.data();
  double* const b = work.b.values.data();
  double* const z = s.z.values.data();
  FMD_QZHESS(&n, &n, a, b, &with_vectors, z);
  FMD_QZITT(&n, &n, a, b, &tolerance, &with_vectors, z, &s.error);
  FMD_QZVALL(&n, &n, a, b, s.alfr.data(), s.alfi.data(), s.beta.data(), &with_vectors, z);
  FMD_QZVECC(&n, &n, a, b, s.alfr.data(), s.alfi.data(), s.beta.data(), z);
  return s;
}

Solution solve_with_lapack(const MatrixPair& pair) {
  MatrixPair work = pair;
  const int n = pair.a.n;
  Solution s;
  s.alfr = s.alfi = s.beta = std::vector<double>(at(n));
  s.z = s.left = SquareMatrix(n);
  std::vector<double> workspace(at(n) * 64 + 1024);
  const int workspace_size = static_cast<int>(workspace.size());
  dggev_("V", "V", &n, work.a.values.data(), &n, work.b.values.data(), &n, s.alfr.data(), s.alfi.data(),
         s.beta.data(), s.left.values.data(), &n, s.z.values.data(), &n, workspace.data(), &workspace_size,
         &s.error, 1, 1);
  return s;
}

double chordal_distance(const Eigenvalue& left, const Eigenvalue& right) {
  return std::abs(left.alpha * right.beta - right.alpha * left.beta) /
         (std::hypot(std::abs(left.alpha), left.beta) * std::hypot(std::abs(right.alpha), right.beta));
}

double largest_residual(const MatrixPair& pair, const Solution& solution) {
  const Products products(pair, solution);
  const double a_norm = norm(pair.a);
  const double b_norm = norm(pair.b);
  double largest = 0.0;
  for (int i = 0; i < solution.n(); ++i) {
    const Eigenvalue value = solution.value(i);
    Vector rest = products.a.vector(i);
    const Vector bx = products.b.vector(i);
    for (std::size_t k = 0; k < rest.size(); ++k) rest[k] = value.beta * rest[k] - value.alpha * bx[k];
    // A pair of null matrices has norms that nothing can be divided by.
    if (length(rest) == 0.0) continue;
    const double residual =
        length(rest) / ((value.beta * a_norm + std::abs(value.alpha) * b_norm) * length(solution.vector(i)));
    // A residual that is no number is the largest.
    if (!(residual <= largest)) largest = std::isnan(residual) ? HUGE_VAL : residual;
  }
  return largest;
}

std::vector<double> value_conditions(const MatrixPair& pair, const Solution& with_left) {
  const Products products(pair, with_left);
  const double size = std::hypot(norm(pair.a), norm(pair.b));
  std::vector<double> conditions;
  for (int i = 0; i < with_left.n(); ++i) {
    const Vector y = with_left.left_vector(i);
    const double a = std::abs(inner_product(y, products.a.vector(i)));
    const double b = std::abs(inner_product(y, products.b.vector(i)));
    conditions.push_back(size * length(y) * length(with_left.vector(i)) / std::hypot(a, b));
  }
  return conditions;
}

std::vector<double> vector_conditions(const Solution& solution, const std::vector<double>& conditions) {
  std::vector<double> result;
  for (int i = 0; i < solution.n(); ++i) {
    double sum = 0.0;
    for (int j = 0; j < solution.n(); ++j)
      if (j != i) sum += conditions[at(j)] / chordal_distance(solution.value(i), solution.value(j));
    result.push_back(sum);
  }
  return result;
}

std::vector<int> match(const Solution& of, const Solution& to, const std::vector<double>& conditions) {
  std::vector<int> order(at(of.n()));
  std::iota(order.begin(), order.end(), 0);
  std::sort(order.begin(), order.end(),
            [&](int left, int right) { return conditions[at(left)] < conditions[at(right)]; });
  std::vector<bool> taken(order.size());
  std::vector<int> partner(order.size());
  for (const int i : order) {
    int nearest = -1;
    double least = HUGE_VAL;
    for (int j = 0; j < to.n(); ++j) {
      const double distance = chordal_distance(of.value(i), to.value(j));
      if (taken[at(j)] || !(distance < least)) continue;
      nearest = j;
      least = distance;
    }
    if (nearest < 0) nearest = static_cast<int>(std::find(taken.begin(), taken.end(), false) - taken.begin());
    taken[at(nearest)] = true;
    partner[at(i)] = nearest;
  }
  return partner;
}

double angle(const Vector& x, const Vector& y) {
  const double x_length = length(x);
  const std::complex<double> part = inner_product(y, x) / (length(y) * length(y));
  Vector rest = x;
  for (std::size_t i = 0; i < rest.size(); ++i) rest[i] = (x[i] - part * y[i]) / x_length;
  return length(rest);
}

}  // namespace fmdtest
