// What each stage of the eigensolver leaves behind for the next.
#include <fmdtoolkit/fmdtoolkit.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

#include "qz/pair.h"

namespace {

using fmdtest::kRoundoff;
using fmdtest::MatrixPair;
using fmdtest::Random;
using fmdtest::SquareMatrix;

// The stages on matrices that the test can look at in between.
struct Stages {
  int n;
  int with_vectors;
  double tolerance = 0.0;
  int error = -1;
  SquareMatrix a, b, z;
  std::vector<double> alfr, alfi, beta;

  explicit Stages(const MatrixPair& pair, int vectors = 1)
      : n(pair.a.n), with_vectors(vectors), a(pair.a), b(pair.b), z(n) {
    alfr = alfi = beta = std::vector<double>(static_cast<std::size_t>(n));
  }
  double* vectors() { return with_vectors != 0 ? z.values.data() : nullptr; }
  void reduce() { FMD_QZHESS(&n, &n, a.values.data(), b.values.data(), &with_vectors, vectors()); }
  void iterate() {
    FMD_QZITT(&n, &n, a.values.data(), b.values.data(), &tolerance, &with_vectors, vectors(), &error);
  }
  void find_values() {
    FMD_QZVALL(&n, &n, a.values.data(), b.values.data(), alfr.data(), alfi.data(), beta.data(), &with_vectors,
               vectors());
  }
  void find_vectors() {
    FMD_QZVECC(&n, &n, a.values.data(), b.values.data(), alfr.data(), alfi.data(), beta.data(), vectors());
  }
};

MatrixPair random_pair(int n) {
  Random random(static_cast<Random::result_type>(1000 + n));
  SquareMatrix a = fmdtest::random_matrix(n, random);
  return {a, fmdtest::random_matrix(n, random)};
}

SquareMatrix of_rows(int n, const std::vector<double>& rows) {
  SquareMatrix m(n);
  m.values = rows;
  return fmdtest::transpose(m);
}

// The largest sum of magnitudes in a row, on and right of the diagonal and so many elements left of it.
double largest_row_sum(const SquareMatrix& m, int left_of_diagonal) {
  double largest = 0.0;
  for (int i = 0; i < m.n; ++i) {
    double sum = 0.0;
    for (int j = 0; j < m.n; ++j)
      if (j >= i - left_of_diagonal) sum += std::fabs(m(i, j));
    largest = std::max(largest, sum);
  }
  return largest;
}

// X^T Y, which Q cancels from where X = Q A Z and Y = Q B Z.
SquareMatrix without_left_factor(const SquareMatrix& x, const SquareMatrix& y) {
  return fmdtest::product(fmdtest::transpose(x), y);
}

double largest_difference(const SquareMatrix& x, const SquareMatrix& y) {
  double largest = 0.0;
  for (std::size_t i = 0; i < x.values.size(); ++i)
    largest = std::max(largest, std::fabs(x.values[i] - y.values[i]));
  return largest;
}

// Whether a and b are Q A Z and Q B Z with orthogonal Q and Z, seen at the products that have no Q.
void expect_equivalent(const Stages& s, const MatrixPair& given) {
  SquareMatrix b = s.b;
  if (s.n > 1) b(s.n - 1, 0) = 0.0;
  const SquareMatrix az = fmdtest::product(given.a, s.z);
  const SquareMatrix bz = fmdtest::product(given.b, s.z);
  const double a_norm = fmdtest::norm(given.a);
  const double b_norm = fmdtest::norm(given.b);
  const double bound = 10 * s.n * kRoundoff;
  EXPECT_LE(largest_difference(without_left_factor(s.z, s.z), fmdtest::identity(s.n)), bound);
  EXPECT_LE(largest_difference(without_left_factor(s.a, s.a), without_left_factor(az, az)),
            bound * a_norm * a_norm);
  EXPECT_LE(largest_difference(without_left_factor(b, b), without_left_factor(bz, bz)),
            bound * b_norm * b_norm);
  EXPECT_LE(largest_difference(without_left_factor(b, s.a), without_left_factor(bz, az)),
            bound * a_norm * b_norm);
}

void expect_zero_below(const SquareMatrix& m, int diagonals_below) {
  for (int j = 0; j < m.n; ++j)
    for (int i = j + 1 + diagonals_below; i < m.n; ++i) EXPECT_EQ(m(i, j), 0.0) << i << ", " << j;
}

TEST(Reduction, LeavesHessenbergAndTriangularMatricesOfTheSamePair) {
  for (const int n : {1, 2, 3, 4, 7, 20}) {
    SCOPED_TRACE(n);
    const MatrixPair pair = random_pair(n);
    Stages s(pair);
    s.reduce();
    expect_zero_below(s.a, 1);
    expect_zero_below(s.b, 0);
    expect_equivalent(s, pair);
  }
}

TEST(Reduction, SetsTheTransformationsToTheIdentityFirst) {
  Stages s({fmdtest::identity(5), fmdtest::identity(5)});
  s.z.values.assign(25, 7.0);
  s.reduce();
  EXPECT_EQ(s.z.values, fmdtest::identity(5).values);
}

TEST(Iteration, LeavesBlocksOfOneOrTwoRowsOfTheSamePair) {
  for (const int n : {3, 4, 7, 20, 60}) {
    SCOPED_TRACE(n);
    const MatrixPair pair = random_pair(n);
    Stages s(pair);
    s.reduce();
    s.iterate();
    EXPECT_EQ(s.error, 0);
    expect_zero_below(s.a, 1);
    for (int i = 0; i + 2 < n; ++i) EXPECT_TRUE(s.a(i + 1, i) == 0.0 || s.a(i + 2, i + 1) == 0.0) << i;
    expect_equivalent(s, pair);
    s.b(n - 1, 0) = 0.0;
    expect_zero_below(s.b, 0);
  }
}

TEST(Iteration, HandsOverTheNegligibleLevelOfB) {
  for (const double tolerance : {0.0, -1.0, 1e-10}) {
    for (const int n : {2, 3, 9}) {
      Stages s(random_pair(n));
      s.tolerance = tolerance;
      s.reduce();
      const double expected = (tolerance > 0.0 ? tolerance : kRoundoff) * largest_row_sum(s.b, 0);
      s.iterate();
      EXPECT_EQ(s.b(n - 1, 0), expected) << n << " with " << tolerance;
    }
  }
}

TEST(Iteration, TakesOneForTheNormOfANullMatrix) {
  Stages s({SquareMatrix(4), SquareMatrix(4)});
  s.reduce();
  s.iterate();
  EXPECT_EQ(s.error, 0);
  EXPECT_EQ(s.b(3, 0), kRoundoff);
}

TEST(Iteration, StoresNoLevelForLessThanTwoRows) {
  Stages s({of_rows(1, {3.0}), of_rows(1, {2.0})});
  s.iterate();
  EXPECT_EQ(s.error, 0);
  EXPECT_EQ(s.b(0, 0), 2.0);
}

// The largest row sum is ten. What is in the first two rows is left to the next stage.
TEST(Iteration, DropsWhatTheCallersToleranceCallsNegligible) {
  const SquareMatrix a = of_rows(4, {4, 3, 2, 1, 0.5, 3, 2, 1, 0, 0.01, 2, 1, 0, 0, 0.009, 1});
  Stages s({a, fmdtest::identity(4)}, 0);
  s.tolerance = 0.001;
  s.iterate();
  SquareMatrix expected = a;
  expected(2, 1) = expected(3, 2) = 0.0;
  EXPECT_EQ(s.a.values, expected.values);

  Stages finer({a, fmdtest::identity(4)}, 0);
  finer.tolerance = 0.00095;
  finer.iterate();
  EXPECT_EQ(finer.a(3, 2), 0.0);
  EXPECT_EQ(finer.a(3, 3), 1.0);
  EXPECT_NE(finer.a(2, 2), 2.0);  // steps were taken for the other
}

TEST(Iteration, CountsTheElementBelowTheDiagonalIntoTheNorm) {
  // The second row sums to 10 with its first element, to 4 without.
  const SquareMatrix a = of_rows(3, {1, 1, 1, 6, 2, 2, 0, 0.009, 1});
  Stages s({a, fmdtest::identity(3)}, 0);
  s.tolerance = 0.001;
  s.iterate();
  SquareMatrix expected = a;
  expected(2, 1) = 0.0;
  EXPECT_EQ(s.a.values, expected.values);
}

// So small a tolerance that rounding keeps some matrices from ever reaching it.
TEST(Iteration, TellsWhereItsBudgetEnded) {
  constexpr int kOrder = 8;
  int spent = 0;
  for (unsigned seed = 1; seed <= 40; ++seed) {
    Random random(seed);
    const SquareMatrix a = fmdtest::random_matrix(kOrder, random);
    const MatrixPair pair = {a, fmdtest::random_matrix(kOrder, random)};
    Stages s(pair);
    s.tolerance = std::numeric_limits<double>::denorm_min();
    s.reduce();
    const double level = s.tolerance * largest_row_sum(s.b, 0);
    s.iterate();
    ASSERT_GE(s.error, 0);
    ASSERT_LE(s.error, kOrder);
    EXPECT_EQ(s.b(kOrder - 1, 0), level);
    if (s.error == 0) continue;
    ++spent;
    EXPECT_GT(s.error, 2);
    expect_equivalent(s, pair);
    // What lies below the eigenvalue that was worked on is done.
    if (s.error < kOrder) {
      EXPECT_EQ(s.a(s.error, s.error - 1), 0.0);
    }
    for (int i = s.error; i + 2 < kOrder; ++i)
      EXPECT_TRUE(s.a(i + 1, i) == 0.0 || s.a(i + 2, i + 1) == 0.0) << i;
    EXPECT_NE(s.a(s.error - 1, s.error - 2), 0.0);
    EXPECT_NE(s.a(s.error - 2, s.error - 3), 0.0);
  }
  EXPECT_GE(spent, 10);
}

TEST(Eigenvalues, SplitBlocksWithRealEigenvaluesAndKeepComplexOnes) {
  const int n = 20;
  const MatrixPair pair = random_pair(n);
  Stages s(pair);
  s.reduce();
  s.iterate();
  const double level = s.b(n - 1, 0);
  s.find_values();
  EXPECT_EQ(s.b(n - 1, 0), level);
  expect_equivalent(s, pair);
  int pairs = 0;
  for (int i = 0; i < n; ++i) {
    const std::size_t p = static_cast<std::size_t>(i);
    EXPECT_GE(s.beta[p], 0.0);
    if (s.alfi[p] > 0.0) {
      ASSERT_LT(i + 1, n);
      EXPECT_NE(s.a(i + 1, i), 0.0);
      EXPECT_LT(s.alfi[p + 1], 0.0);
      EXPECT_NEAR(s.alfr[p] / s.beta[p], s.alfr[p + 1] / s.beta[p + 1], 1e-12);
      EXPECT_NEAR(s.alfi[p] / s.beta[p], -s.alfi[p + 1] / s.beta[p + 1], 1e-12);
      ++pairs;
      ++i;
    } else {
      EXPECT_EQ(s.alfi[p], 0.0);
      if (i + 1 < n) {
        EXPECT_EQ(s.a(i + 1, i), 0.0);
      }
      EXPECT_EQ(s.alfr[p] / s.beta[p], s.a(i, i) / s.b(i, i));
    }
  }
  EXPECT_GE(pairs, 1);
}

TEST(Eigenvalues, AreTheSameWithoutVectors) {
  for (const int n : {1, 2, 3, 5, 20, 60}) {
    Stages with(random_pair(n), 1);
    Stages without(random_pair(n), 0);
    for (Stages* s : {&with, &without}) {
      s->reduce();
      s->iterate();
      s->find_values();
    }
    EXPECT_EQ(with.error, 0);
    EXPECT_EQ(without.error, 0);
    EXPECT_EQ(with.alfr, without.alfr);
    EXPECT_EQ(with.alfi, without.alfi);
    EXPECT_EQ(with.beta, without.beta);
  }
}

TEST(Eigenvectors, HaveALargestElementOfOne) {
  const int n = 20;
  Stages s(random_pair(n));
  s.reduce();
  s.iterate();
  s.find_values();
  s.find_vectors();
  for (int j = 0; j < n; ++j) {
    const bool is_pair = s.alfi[static_cast<std::size_t>(j)] != 0.0;
    double largest = 0.0;
    for (int i = 0; i < n; ++i)
      largest = std::max(largest, std::fabs(s.z(i, j)) + (is_pair ? std::fabs(s.z(i, j + 1)) : 0.0));
    EXPECT_NEAR(largest, 1.0, is_pair ? 2 * kRoundoff : 0.0) << j;
    if (is_pair) ++j;
  }
}

}  // namespace
