// The matrix work of orthonormalisation against plain column by column versions of it.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "dbmodal/dbtools/orthonormal_kernels.h"

namespace {

using fmd::Eigenpair;
using Vector = std::vector<double>;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

// The told order by hand: two parallel arrays, reversed, then bubbled.
std::vector<int> bubbled(Vector values) {
  const int n = static_cast<int>(values.size());
  std::vector<int> order(values.size());
  const auto exchange = [&](int i, int j) {
    std::swap(values[static_cast<std::size_t>(i)], values[static_cast<std::size_t>(j)]);
    std::swap(order[static_cast<std::size_t>(i)], order[static_cast<std::size_t>(j)]);
  };
  for (int i = 0; i < n; ++i) order[static_cast<std::size_t>(i)] = i;
  for (int k = 0; k < n / 2; ++k) exchange(k, n - 1 - k);
  for (int pass = 0; pass < n; ++pass) {
    for (int i = 0; i < n - 1; ++i) {
      if (values[static_cast<std::size_t>(i)] > values[static_cast<std::size_t>(i) + 1]) exchange(i, i + 1);
    }
  }
  return order;
}

std::vector<int> sorted(const Vector& values) {
  std::vector<Eigenpair> pairs;
  for (const double value : values) pairs.push_back({value, static_cast<int>(pairs.size())});
  fmd::sort_eigenpairs(pairs.data(), static_cast<int>(pairs.size()));
  std::vector<int> order;
  for (const Eigenpair& pair : pairs) order.push_back(pair.column);
  return order;
}

TEST(SortedEigenpairs, AscendAndEqualOnesComeInReverse) {
  EXPECT_EQ(sorted({5.0, 1.0, 3.0}), (std::vector<int>{1, 2, 0}));
  EXPECT_EQ(sorted({2.0, 2.0, 1.0, 2.0}), (std::vector<int>{2, 3, 1, 0}));
  EXPECT_EQ(sorted({7.0}), std::vector<int>{0});
  EXPECT_EQ(sorted({}), std::vector<int>{});
}

TEST(SortedEigenpairs, AreThoseOfThePlainRules) {
  std::mt19937 random(7);
  for (int n = 1; n <= 40; ++n) {
    Vector values;
    for (int i = 0; i < n; ++i) values.push_back(static_cast<double>(random() % 9));
    if (n % 3 == 0) values[random() % static_cast<unsigned>(n)] = kNan;
    if (n % 4 == 0) values[random() % static_cast<unsigned>(n)] = std::numeric_limits<double>::infinity();
    EXPECT_EQ(sorted(values), bubbled(values)) << n;
  }
}

TEST(SortedEigenpairs, EndWhereNothingIsANumber) {
  EXPECT_EQ(sorted({kNan, kNan, kNan}), (std::vector<int>{2, 1, 0}));
  EXPECT_EQ(sorted({1.0, kNan, 3.0}), (std::vector<int>{2, 1, 0}));
}

TEST(GatheredVectors, StandColumnByColumnInTheOrderOfThePairs) {
  const Vector solver = {1, 2, 3, 4};  // columns (1, 2) and (3, 4)
  const Eigenpair pairs[] = {{0.0, 1}, {1.0, 0}};
  Vector t(4);
  fmd::gather_vectors(solver.data(), pairs, 2, t.data());
  EXPECT_EQ(t, (Vector{3, 1, 4, 2}));
}

TEST(SwappedEigenpairs, ExchangeValueAndVector) {
  Eigenpair pairs[] = {{1.0, 0}, {2.0, 1}, {3.0, 2}};
  fmd::swap_eigenpair(pairs, 0, 2);
  EXPECT_EQ(pairs[0].value, 3.0);
  EXPECT_EQ(pairs[0].column, 2);
  EXPECT_EQ(pairs[2].value, 1.0);
  EXPECT_EQ(pairs[1].column, 1);
}

struct Matrix {
  int n;
  Vector values;
  explicit Matrix(int order) : n(order), values(static_cast<std::size_t>(order * order)) {}
  double& at(int r, int c) { return values[static_cast<std::size_t>(r * n + c)]; }
};

Matrix random_matrix(int n, std::mt19937& random) {
  std::uniform_real_distribution<double> entry(-1.0, 1.0);
  Matrix matrix(n);
  for (double& value : matrix.values) value = entry(random);
  return matrix;
}

// A' A with so many rows of A: positive definite from n rows on, singular below.
Matrix gram_matrix(int n, int rows, std::mt19937& random) {
  Matrix a = random_matrix(n, random);
  Matrix product(n);
  for (int i = 0; i < n; ++i)
    for (int j = 0; j < n; ++j)
      for (int k = 0; k < rows; ++k) product.at(i, j) += a.at(k, i) * a.at(k, j);
  return product;
}

double quadratic_form(Matrix& matrix, Matrix& left, int i, Matrix& right, int j) {
  double sum = 0.0;
  for (int r = 0; r < matrix.n; ++r)
    for (int c = 0; c < matrix.n; ++c) sum += left.at(r, i) * matrix.at(r, c) * right.at(c, j);
  return sum;
}

Matrix orthonormalised(Matrix& mass, const Matrix& t) {
  Matrix w(mass.n);
  Vector scratch(static_cast<std::size_t>(3 * mass.n));
  fmd::gram_schmidt(mass.values.data(), t.values.data(), mass.n, w.values.data(), scratch.data());
  return w;
}

// Column after column as told, each later column at once, inner products with the vectors as they were.
Matrix plainly_orthonormalised(Matrix& mass, Matrix t) {
  const int n = mass.n;
  Matrix w = t;
  for (int c = 0; c < n; ++c) {
    const double squared = quadratic_form(mass, w, c, w, c);
    if (!(squared > 0.0)) continue;
    for (int r = 0; r < n; ++r) w.at(r, c) /= std::sqrt(squared);
    for (int j = c + 1; j < n; ++j) {
      const double d = quadratic_form(mass, w, c, t, j);
      for (int r = 0; r < n; ++r) w.at(r, j) -= d * w.at(r, c);
    }
  }
  return w;
}

TEST(GramSchmidt, OfTwoVectorsIsWhatAHandFinds) {
  // G = diag(4, 1); t_1 = (1, 0) becomes (1/2, 0); t_2 = (3, 2) loses 6 (1/2, 0) and is halved.
  Matrix mass(2);
  mass.values = {4, 0, 0, 1};
  Matrix t(2);
  t.values = {1, 3, 0, 2};
  EXPECT_EQ(orthonormalised(mass, t).values, (Vector{0.5, 0, 0, 1}));
}

TEST(GramSchmidt, LeavesAColumnOfNoMassAloneAndTakesItOutOfNoOther) {
  Matrix mass(3);
  mass.values = {1, 0, 0, 0, 0, 0, 0, 0, 4};
  Matrix t(3);
  t.values = {0, 2, 1, 5, 1, 1, 0, 0, 1};
  // Column 1 has no mass. Column 2 is (1, 1/2, 0); column 3 loses it once: (0, 1/2, 1), of square 4.
  EXPECT_EQ(orthonormalised(mass, t).values, (Vector{0, 1, 0, 5, 0.5, 0.25, 0, 0, 0.5}));
}

TEST(GramSchmidt, LeavesColumnsOfNegativeOrUndefinedSquare) {
  Matrix mass(2);
  mass.values = {-1, 0, 0, 4};
  Matrix t(2);
  t.values = {1, 0, 0, 1};
  EXPECT_EQ(orthonormalised(mass, t).values, (Vector{1, 0, 0, 0.5}));
  t.values = {kNan, 0, 0, 1};
  const Matrix w = orthonormalised(mass, t);
  EXPECT_TRUE(std::isnan(w.values[0]));
}

TEST(GramSchmidt, IsThePlainOneForEveryOrder) {
  std::mt19937 random(11);
  for (const int n : {1, 2, 3, 5, 8, 13, 30}) {
    Matrix mass = gram_matrix(n, n, random);
    const Matrix t = random_matrix(n, random);
    const Matrix expected = plainly_orthonormalised(mass, t);
    const Matrix w = orthonormalised(mass, t);
    double largest = 0.0;
    for (const double value : expected.values) largest = std::max(largest, std::fabs(value));
    for (std::size_t i = 0; i < w.values.size(); ++i) {
      EXPECT_LE(std::fabs(w.values[i] - expected.values[i]), 1e-7 * largest) << n;
    }
  }
}

TEST(GramSchmidt, MakesNearlyOrthogonalVectorsOrthonormal) {
  std::mt19937 random(5);
  const int n = 24;
  Matrix mass = gram_matrix(n, n, random);
  for (int i = 0; i < n; ++i) mass.at(i, i) += n;
  Matrix w = orthonormalised(mass, random_matrix(n, random));
  // Once more, from vectors that are nearly there.
  w = orthonormalised(mass, w);
  for (int i = 0; i < n; ++i) {
    for (int j = 0; j < n; ++j) EXPECT_NEAR(quadratic_form(mass, w, i, w, j), i == j ? 1.0 : 0.0, 1e-12);
  }
}

TEST(RayleighQuotients, AreTheDiagonalOfTheTransformedMatrix) {
  std::mt19937 random(3);
  for (const int n : {1, 2, 7, 20}) {
    Matrix stiffness = gram_matrix(n, n, random);
    Matrix t = random_matrix(n, random);
    Vector q(static_cast<std::size_t>(n));
    Vector scratch(q.size());
    fmd::rayleigh_quotients(stiffness.values.data(), t.values.data(), n, q.data(), scratch.data());
    for (int i = 0; i < n; ++i) {
      EXPECT_NEAR(q[static_cast<std::size_t>(i)], quadratic_form(stiffness, t, i, t, i), 1e-11 * n);
    }
  }
}

TEST(DividedColumns, HaveADivisorEach) {
  Vector t = {2, 9, 4, 6};
  const double divisors[] = {2.0, 3.0};
  fmd::divide_columns(t.data(), 2, divisors);
  EXPECT_EQ(t, (Vector{1, 3, 2, 2}));
}

TEST(TransformedRow, LeavesWhatStandsBeforeTheFirstPlace) {
  const Vector t = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  const Vector row = {1, 10, 100};
  Vector result = {-1, -1, -1};
  fmd::transform_row(row.data(), t.data(), 3, 1, result.data());
  EXPECT_EQ(result, (Vector{-1, 850, 960}));
  fmd::transform_row(row.data(), t.data(), 3, 0, result.data());
  EXPECT_EQ(result, (Vector{741, 852, 963}));
  fmd::transform_row(row.data(), t.data(), 3, 3, result.data());
  EXPECT_EQ(result, (Vector{741, 852, 963}));
}

}  // namespace
