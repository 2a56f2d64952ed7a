// The eigensolver where sizes, values or storage are out of the ordinary.
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
using fmdtest::Solution;
using fmdtest::SquareMatrix;

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

double halved(double x) {
  const double result = EIGPSN(&x);
  EXPECT_TRUE(x == result || (std::isnan(x) && std::isnan(result)));
  return result;
}

TEST(Roundoff, IsHalfTheSpacingOfTheNumbersFromOne) {
  EXPECT_EQ(halved(1.0), 1.1102230246251565e-16);
  EXPECT_EQ(halved(1.0), std::numeric_limits<double>::epsilon() / 2);
  EXPECT_EQ(halved(1e6), 1e6 * 0x1p-73);
}

TEST(Roundoff, IsHalvedOnceWhereItIsAlreadyBelow) {
  EXPECT_EQ(halved(1e-20), 5e-21);
  EXPECT_EQ(halved(kRoundoff), kRoundoff / 2);
  EXPECT_EQ(halved(-4.0), -2.0);
  EXPECT_EQ(halved(0.0), 0.0);
}

TEST(Roundoff, ComesToAnEndForWhatIsNoNumber) {
  EXPECT_TRUE(std::isnan(halved(kNaN)));
  EXPECT_EQ(halved(kInfinity), kInfinity);
}

MatrixPair pair_of_one(double a, double b) {
  MatrixPair pair = {SquareMatrix(1), SquareMatrix(1)};
  pair.a(0, 0) = a;
  pair.b(0, 0) = b;
  return pair;
}

TEST(OrderOne, HasTheQuotientForItsEigenvalue) {
  const Solution s = fmdtest::solve(pair_of_one(3.0, -2.0));
  EXPECT_EQ(s.error, 0);
  EXPECT_EQ(s.alfr[0], -3.0);
  EXPECT_EQ(s.alfi[0], 0.0);
  EXPECT_EQ(s.beta[0], 2.0);
  EXPECT_EQ(s.z(0, 0), 1.0);
}

TEST(OrderOne, IsLeftAsItIsByTheReductions) {
  for (int with_vectors : {0, 1}) {
    int n = 1;
    int error = -1;
    double a = 3.0;
    double b = -2.0;
    double z = 7.0;
    double tolerance = 0.0;
    FMD_QZHESS(&n, &n, &a, &b, &with_vectors, &z);
    FMD_QZITT(&n, &n, &a, &b, &tolerance, &with_vectors, &z, &error);
    EXPECT_EQ(error, 0);
    EXPECT_EQ(a, 3.0);
    EXPECT_EQ(b, -2.0);
    EXPECT_EQ(z, with_vectors != 0 ? 1.0 : 7.0);
  }
}

// A caller's own numbers: the second of a pair needs a first before it.
TEST(OrderOne, HasARealVectorWhateverIsSaid) {
  int n = 1;
  double a = 3.0;
  double b[] = {-5.0, 2.0};
  double z[] = {-5.0, 1.0};
  double alfr = 3.0;
  double alfi = 1.0;
  double beta = 2.0;
  FMD_QZVECC(&n, &n, &a, b + 1, &alfr, &alfi, &beta, z + 1);
  EXPECT_EQ(b[0], -5.0);
  EXPECT_EQ(z[0], -5.0);
  EXPECT_EQ(z[1], 1.0);
}

TEST(OrderZero, IsSolvedAndTouchesNothing) {
  int nm = 1;
  int n = 0;
  int with_vectors = 1;
  int error = -1;
  double tolerance = 0.0;
  double values[] = {1, 2, 3, 4, 5, 6};
  FMD_QZHESS(&nm, &n, values, values + 1, &with_vectors, values + 2);
  FMD_QZITT(&nm, &n, values, values + 1, &tolerance, &with_vectors, values + 2, &error);
  FMD_QZVALL(&nm, &n, values, values + 1, values + 3, values + 4, values + 5, &with_vectors, values + 2);
  FMD_QZVECC(&nm, &n, values, values + 1, values + 3, values + 4, values + 5, values + 2);
  EXPECT_EQ(error, 0);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(values[i], i + 1);
}

// Worked out by hand: (A - lambda B) x = 0 with lambda = 1 and 3.
TEST(OrderTwo, AgreesWithAPairWorkedOutByHand) {
  MatrixPair pair = {SquareMatrix(2), fmdtest::identity(2)};
  pair.a(0, 0) = pair.a(1, 1) = 2.0;
  pair.a(0, 1) = pair.a(1, 0) = -1.0;
  const Solution s = fmdtest::solve(pair);
  const int low = s.alfr[0] / s.beta[0] < 2.0 ? 0 : 1;
  const std::size_t p = static_cast<std::size_t>(low);
  EXPECT_NEAR(s.alfr[p] / s.beta[p], 1.0, 8 * kRoundoff);
  EXPECT_NEAR(s.alfr[1 - p] / s.beta[1 - p], 3.0, 8 * kRoundoff);
  EXPECT_NEAR(s.z(0, low) / s.z(1, low), 1.0, 8 * kRoundoff);
  EXPECT_NEAR(s.z(0, 1 - low) / s.z(1, 1 - low), -1.0, 8 * kRoundoff);
}

// A quarter turn has the eigenvalues i and -i with the vectors (1, -i) and (1, i).
TEST(OrderTwo, AgreesWithAQuarterTurn) {
  MatrixPair pair = {SquareMatrix(2), fmdtest::identity(2)};
  pair.a(0, 1) = 1.0;
  pair.a(1, 0) = -1.0;
  const Solution s = fmdtest::solve(pair);
  EXPECT_NEAR(s.alfr[0], 0.0, 4 * kRoundoff);
  EXPECT_NEAR(s.alfi[0] / s.beta[0], 1.0, 4 * kRoundoff);
  EXPECT_NEAR(s.alfi[1] / s.beta[1], -1.0, 4 * kRoundoff);
  const fmdtest::Vector x = s.vector(0);
  EXPECT_LE(std::abs(x[1] / x[0] - std::complex<double>(0.0, 1.0)), 8 * kRoundoff);
}

// Rows from a matrix of either side that vanish, all ones, and null matrices.
MatrixPair singular_pair(int n, int how) {
  Random random(static_cast<Random::result_type>(10 * n + how));
  MatrixPair pair = {fmdtest::random_matrix(n, random), fmdtest::random_matrix(n, random)};
  SquareMatrix& b = pair.b;
  const int zero = how % 3 == 0 ? 0 : how % 3 == 1 ? n - 1 : n / 2;
  for (int i = 0; i < n; ++i) {
    if (how < 3) b(i, zero) = 0.0;
    if (how < 6 && how >= 3) b(i, zero) = b(zero, i) = 0.0;
  }
  if (how == 6) b.values.assign(b.values.size(), 1.0);
  if (how == 7) b = SquareMatrix(n);
  return pair;
}

TEST(SingularMass, GivesAnInfiniteEigenvalueAndNoError) {
  for (const int n : {1, 2, 3, 4, 5, 8, 20, 50}) {
    for (int how = 0; how < 8; ++how) {
      if (n == 1 && how == 6) continue;  // a single one is not singular
      SCOPED_TRACE(std::to_string(n) + ", " + std::to_string(how));
      const MatrixPair pair = singular_pair(n, how);
      const Solution s = fmdtest::solve(pair);
      EXPECT_EQ(s.error, 0);
      EXPECT_GE(std::count(s.beta.begin(), s.beta.end(), 0.0), how == 7 ? n : 1);
      EXPECT_LE(fmdtest::largest_residual(pair, s), 2 * n * kRoundoff);
    }
  }
}

// A diagonal element of the triangular B that rounding leaves, or a column far below the norm, in a block of
// two rows.
TEST(SingularMass, OfOrderTwoMayBeSingularToRoundingOnly) {
  MatrixPair pair = {SquareMatrix(2), SquareMatrix(2)};
  pair.a.values = {2, 1, 1, 3};
  for (const std::vector<double>& b :
       {std::vector<double>{16, 4, 4, 1}, std::vector<double>{1e-20, 1e-20, 1, 2}}) {
    pair.b.values = b;
    const Solution s = fmdtest::solve(pair);
    EXPECT_EQ(s.error, 0);
    EXPECT_EQ(std::count(s.beta.begin(), s.beta.end(), 0.0), 1) << testing::PrintToString(b);
    EXPECT_LE(fmdtest::largest_residual(pair, s), 4 * kRoundoff);
  }
}

// Two small elements in succession below the diagonal let a step begin in the middle of the block, where B
// has a zero on its diagonal.
TEST(SingularMass, MayBeMetInTheMiddleOfABlock) {
  for (const int n : {4, 5, 6, 9}) {
    SCOPED_TRACE(n);
    MatrixPair pair = {SquareMatrix(n), fmdtest::identity(n)};
    for (int j = 0; j < n; ++j)
      for (int i = 0; i <= j; ++i) pair.a(i, j) = i == j ? 1.0 + i : 0.25;
    for (int i = 1; i < n; ++i) pair.a(i, i - 1) = 0.5;
    pair.a(1, 0) = 1e-9;
    pair.a(2, 1) = 1e-8;
    pair.b(1, 1) = 0.0;
    pair.b(0, 1) = pair.b(1, 2) = 0.5;
    const Solution s = fmdtest::solve(pair);
    EXPECT_EQ(s.error, 0);
    EXPECT_EQ(std::count(s.beta.begin(), s.beta.end(), 0.0), 1);
    EXPECT_LE(fmdtest::largest_residual(pair, s), 2 * n * kRoundoff);
  }
}

TEST(NullMatrices, HaveEigenvaluesAndVectorsAllTheSame) {
  for (const int n : {1, 2, 3, 6}) {
    const Solution stiffness_null = fmdtest::solve({SquareMatrix(n), fmdtest::identity(n)});
    EXPECT_EQ(stiffness_null.error, 0);
    EXPECT_EQ(stiffness_null.alfr, std::vector<double>(static_cast<std::size_t>(n), 0.0));
    EXPECT_EQ(stiffness_null.beta, std::vector<double>(static_cast<std::size_t>(n), 1.0));
    EXPECT_EQ(stiffness_null.z.values, fmdtest::identity(n).values);

    const Solution both_null = fmdtest::solve({SquareMatrix(n), SquareMatrix(n)});
    EXPECT_EQ(both_null.error, 0);
    EXPECT_EQ(both_null.alfr, std::vector<double>(static_cast<std::size_t>(n), 0.0));
    EXPECT_EQ(both_null.beta, std::vector<double>(static_cast<std::size_t>(n), 0.0));
    EXPECT_EQ(both_null.z.values, fmdtest::identity(n).values);
  }
}

// Rows beyond n and columns beyond n belong to somebody else.
TEST(LeadingDimension, MayExceedTheOrder) {
  constexpr int kOrder = 7;
  int n = kOrder;
  int nm = kOrder + 4;
  int with_vectors = 1;
  int error = -1;
  double tolerance = 0.0;
  Random random(5);
  const SquareMatrix a = fmdtest::random_matrix(kOrder, random);
  const MatrixPair pair = {a, fmdtest::random_matrix(kOrder, random)};
  const auto spread = [&](const SquareMatrix& m) {
    std::vector<double> wide(static_cast<std::size_t>(nm * kOrder), -77.0);
    for (int j = 0; j < kOrder; ++j)
      for (int i = 0; i < kOrder; ++i) wide[static_cast<std::size_t>(j * nm + i)] = m(i, j);
    return wide;
  };
  std::vector<double> wide_a = spread(pair.a);
  std::vector<double> wide_b = spread(pair.b);
  std::vector<double> wide_z = spread(SquareMatrix(kOrder));
  std::vector<double> alfr(kOrder), alfi(kOrder), beta(kOrder);
  FMD_QZHESS(&nm, &n, wide_a.data(), wide_b.data(), &with_vectors, wide_z.data());
  FMD_QZITT(&nm, &n, wide_a.data(), wide_b.data(), &tolerance, &with_vectors, wide_z.data(), &error);
  FMD_QZVALL(&nm, &n, wide_a.data(), wide_b.data(), alfr.data(), alfi.data(), beta.data(), &with_vectors,
             wide_z.data());
  FMD_QZVECC(&nm, &n, wide_a.data(), wide_b.data(), alfr.data(), alfi.data(), beta.data(), wide_z.data());

  const Solution tight = fmdtest::solve(pair);
  EXPECT_EQ(error, 0);
  EXPECT_EQ(alfr, tight.alfr);
  EXPECT_EQ(alfi, tight.alfi);
  EXPECT_EQ(beta, tight.beta);
  EXPECT_EQ(wide_z, spread(tight.z));
  for (const auto* wide : {&wide_a, &wide_b})
    EXPECT_EQ(std::count(wide->begin(), wide->end(), -77.0), 4 * kOrder);
}

TEST(NoNumbers, ComeToAnEnd) {
  for (const double value : {kNaN, kInfinity, -kInfinity}) {
    for (const int n : {1, 2, 3, 4, 10, 40}) {
      for (int where = 0; where < 6; ++where) {
        Random random(static_cast<Random::result_type>(n));
        const SquareMatrix a = fmdtest::random_matrix(n, random);
        MatrixPair pair = {a, fmdtest::random_matrix(n, random)};
        SquareMatrix& m = where < 3 ? pair.a : pair.b;
        if (where % 3 == 0) m(0, 0) = value;
        if (where % 3 == 1) m(0, n - 1) = value;
        if (where % 3 == 2) m.values.assign(m.values.size(), value);
        const Solution s = fmdtest::solve(pair);
        EXPECT_GE(s.error, 0);
        EXPECT_LE(s.error, n);
      }
    }
  }
}

// One Jordan block: each element of the vector of the back-substitution is a power of 2^53 beyond the last.
TEST(LargeJordanBlock, HasVectorsWithoutOverflow) {
  for (const double eigenvalue : {0.0, 1.0}) {
    const int n = 200;
    MatrixPair pair = {SquareMatrix(n), fmdtest::identity(n)};
    for (int i = 0; i < n; ++i) {
      pair.a(i, i) = eigenvalue;
      if (i > 0) pair.a(i - 1, i) = 1.0;
    }
    const Solution s = fmdtest::solve(pair);
    EXPECT_EQ(s.error, 0);
    EXPECT_LE(fmdtest::largest_residual(pair, s), 2 * n * kRoundoff);
    for (int j = 0; j < n; ++j) EXPECT_EQ(std::fabs(s.z(0, j)), 1.0) << j;
  }
}

// The same with a quarter turn for each eigenvalue.
TEST(LargeJordanBlock, OfComplexEigenvaluesHasVectorsWithoutOverflow) {
  const int n = 200;
  MatrixPair pair = {SquareMatrix(n), fmdtest::identity(n)};
  for (int i = 0; i < n; i += 2) {
    pair.a(i, i + 1) = -1.0;
    pair.a(i + 1, i) = 1.0;
    if (i > 0) pair.a(i - 2, i) = pair.a(i - 1, i + 1) = 1.0;
  }
  const Solution s = fmdtest::solve(pair);
  EXPECT_EQ(s.error, 0);
  EXPECT_LE(fmdtest::largest_residual(pair, s), 2 * n * kRoundoff);
  for (int i = 0; i < n; i += 2) EXPECT_NEAR(s.alfi[static_cast<std::size_t>(i)], 1.0, 4 * kRoundoff) << i;
}

// The steps would leave a permutation of this kind as it is, had they no exceptional shift.
TEST(CyclicPermutation, HasTheRootsOfOne) {
  for (const int n : {3, 4, 8, 15}) {
    MatrixPair pair = {SquareMatrix(n), fmdtest::identity(n)};
    for (int i = 0; i < n; ++i) pair.a((i + 1) % n, i) = 1.0;
    const Solution s = fmdtest::solve(pair);
    EXPECT_EQ(s.error, 0);
    EXPECT_LE(fmdtest::largest_residual(pair, s), 2 * n * kRoundoff);
    for (int k = 0; k < n; ++k) {
      const std::complex<double> root = std::polar(1.0, 2.0 * std::acos(-1.0) * k / n);
      double nearest = kInfinity;
      for (int i = 0; i < n; ++i)
        nearest = std::min(nearest, fmdtest::chordal_distance(s.value(i), {root, 1.0}));
      EXPECT_LE(nearest, 5 * n * kRoundoff) << k;
    }
  }
}

TEST(ManyScales, AreSolvedAlike) {
  Random random(9);
  const SquareMatrix a = fmdtest::random_matrix(12, random);
  const MatrixPair pair = {a, fmdtest::random_matrix(12, random)};
  const Solution plain = fmdtest::solve(pair);
  for (const double scale : {0x1p-100, 0x1p100}) {
    MatrixPair scaled = pair;
    for (double& value : scaled.a.values) value *= scale;
    const Solution s = fmdtest::solve(scaled);
    EXPECT_EQ(s.error, 0);
    EXPECT_LE(fmdtest::largest_residual(scaled, s), 24 * kRoundoff);
    for (int i = 0; i < 12; ++i) {
      const fmdtest::Eigenvalue value = s.value(i);
      EXPECT_LE(fmdtest::chordal_distance({value.alpha / scale, value.beta}, plain.value(i)), 1e-14) << i;
    }
  }
}

// A multiple of B has one eigenvalue, and rounding makes a complex pair of two of them.
TEST(OneEigenvalueForAll, IsFoundAsOftenAsThereAreRows) {
  MatrixPair pair = {SquareMatrix(3), SquareMatrix(3)};
  const double b[3][3] = {{2.0, 1.0, 0.5}, {1.0, 3.0, 0.25}, {0.5, 0.25, 1.0}};
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      pair.b(i, j) = b[i][j];
      pair.a(i, j) = 5.0 * b[i][j];
    }
  }
  const Solution s = fmdtest::solve(pair);
  for (std::size_t i = 0; i < 3; ++i) {
    EXPECT_GT(s.beta[i], 0.1) << i;
    EXPECT_NEAR(s.alfr[i] / s.beta[i], 5.0, 1e-13) << i;
    EXPECT_NEAR(s.alfi[i], 0.0, 1e-6) << i;
  }
}

// Rounding turns some of the real eigenvalues into complex pairs; each pair still has both of its signs, and
// vectors.
TEST(OneEigenvalueForAll, HasVectorsToRounding) {
  int pairs = 0;
  for (unsigned seed = 1; seed <= 60; ++seed) {
    const int n = 2 + static_cast<int>(seed % 9);
    Random random(seed);
    const SquareMatrix m = fmdtest::random_matrix(n, random);
    MatrixPair pair = {fmdtest::product(fmdtest::transpose(m), m), SquareMatrix(n)};
    pair.b = pair.a;
    for (double& value : pair.a.values) value *= 5.1;
    const Solution s = fmdtest::solve(pair);
    EXPECT_LE(fmdtest::largest_residual(pair, s), 2 * n * kRoundoff) << seed;
    for (std::size_t i = 0; i < s.alfi.size(); ++i) {
      if (s.alfi[i] == 0.0) continue;
      ASSERT_LT(i + 1, s.alfi.size()) << seed;
      EXPECT_GT(s.alfi[i], 0.0) << seed;
      EXPECT_LT(s.alfi[i + 1], 0.0) << seed;
      ++i;
      ++pairs;
    }
  }
  EXPECT_GT(pairs, 0);
}

}  // namespace
