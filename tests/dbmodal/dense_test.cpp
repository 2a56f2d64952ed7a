#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/message_log.h"

namespace {

using Matrix = std::vector<std::vector<double>>;

std::vector<double*> rows_of(Matrix& matrix) {
  std::vector<double*> rows;
  for (auto& row : matrix) rows.push_back(row.data());
  return rows;
}

Matrix random_matrix(int n, unsigned seed) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> value(-1.0, 1.0);
  Matrix matrix(static_cast<std::size_t>(n), std::vector<double>(static_cast<std::size_t>(n)));
  for (auto& row : matrix) {
    for (double& entry : row) entry = value(random);
  }
  return matrix;
}

TEST(Lup, FactorsMultiplyToThePermutedMatrix) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    const std::size_t n = 1 + seed % 7;
    const Matrix a = random_matrix(static_cast<int>(n), seed);
    Matrix lu = a;
    std::vector<int> permutation(n);
    ASSERT_EQ(FMD_LUPDecomposition(rows_of(lu).data(), static_cast<int>(n), permutation.data()), 1);
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) {
        double product = 0.0;
        for (std::size_t k = 0; k <= std::min(i, j); ++k) product += (k == i ? 1.0 : lu[i][k]) * lu[k][j];
        ASSERT_NEAR(product, a[static_cast<std::size_t>(permutation[i])][j], 1e-14);
        if (j < i) {
          ASSERT_LE(std::fabs(lu[i][j]), 1.0);
        }
      }
    }
  }
}

TEST(Lup, SolvesAndInverts) {
  constexpr int kSize = 6;
  const Matrix a = random_matrix(kSize, 99);
  Matrix lu = a;
  int permutation[kSize];
  ASSERT_EQ(FMD_LUPDecomposition(rows_of(lu).data(), kSize, permutation), 1);
  std::vector<double> x = {1, -2, 3, -4, 5, -6};
  std::vector<double> b(kSize, 0.0);
  for (std::size_t i = 0; i < kSize; ++i) {
    for (std::size_t j = 0; j < kSize; ++j) b[i] += a[i][j] * x[j];
  }
  ASSERT_EQ(FMD_LUPSolve(rows_of(lu).data(), kSize, permutation, b.data()), 1);
  for (std::size_t i = 0; i < kSize; ++i) EXPECT_NEAR(b[i], x[i], 1e-12);
  ASSERT_EQ(FMD_LUPInvert(rows_of(lu).data(), kSize, permutation), 1);
  for (std::size_t i = 0; i < kSize; ++i) {
    for (std::size_t j = 0; j < kSize; ++j) {
      double entry = 0.0;
      for (std::size_t k = 0; k < kSize; ++k) entry += a[i][k] * lu[k][j];
      EXPECT_NEAR(entry, i == j ? 1.0 : 0.0, 1e-12);
    }
  }
}

TEST(Lup, SizeOneIsNotLookedAt) {
  Matrix zero = {{0.0}};
  int permutation[1];
  EXPECT_EQ(FMD_LUPDecomposition(rows_of(zero).data(), 1, permutation), 1);
  double b[1] = {1.0};
  const fmdtest::MessageLog log;
  EXPECT_EQ(FMD_LUPSolve(rows_of(zero).data(), 1, permutation, b), 1);
  EXPECT_EQ(b[0], std::numeric_limits<double>::infinity());
}

TEST(Lup, AZeroColumnIsSingularAndTheLastPivotIsNotTested) {
  Matrix column = {{1, 0, 2}, {3, 0, 4}, {5, 0, 6}};
  int permutation[3];
  EXPECT_EQ(FMD_LUPDecomposition(rows_of(column).data(), 3, permutation), 0);
  Matrix last = {{1, 2}, {2, 4}};
  EXPECT_EQ(FMD_LUPDecomposition(rows_of(last).data(), 2, permutation), 1);
}

TEST(Lup, TheUpperOfEqualPivotsStays) {
  Matrix equal = {{2, 1}, {-2, 5}};
  int permutation[2];
  EXPECT_EQ(FMD_LUPDecomposition(rows_of(equal).data(), 2, permutation), 1);
  EXPECT_EQ(permutation[0], 0);
  EXPECT_EQ(equal[0][0], 2.0);
}

TEST(Lup, NoMemoryOrNoSizeFails) {
  const fmdtest::MessageLog log;
  EXPECT_EQ(FMD_LUPSolve(nullptr, 0, nullptr, nullptr), 0);
  EXPECT_EQ(FMD_LUPInvert(nullptr, 0, nullptr), 0);
  Matrix a = {{2, 1}, {1, 3}};
  const Matrix before = a;
  int permutation[2] = {0, 1};
  for (long nth = 1; nth <= 4; ++nth) {
    fmd::fail_allocation(nth);
    EXPECT_EQ(FMD_LUPInvert(rows_of(a).data(), 2, permutation), 0);
    fmd::fail_allocation(0);
    EXPECT_EQ(a, before);
  }
  ASSERT_EQ(log.errors.size(), 6U);
  for (const auto& error : log.errors) EXPECT_TRUE(fmdtest::is_allocation_failure(error, "dbtools"));
}

TEST(SmallMatrices, ProductsMayAlias) {
  double a[9] = {1, 2, 3, 4, 5, 6, 7, 8, 10};
  double b[9] = {2, 0, 1, 1, 3, 0, 0, 1, 1};
  double c[9];
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      c[3 * i + j] = 0.0;
      for (int k = 0; k < 3; ++k) c[3 * i + j] += a[3 * i + k] * b[3 * k + j];
    }
  }
  double again[9];
  std::copy(a, a + 9, again);
  Matrix_Multiply(again, b, again);
  EXPECT_TRUE(std::equal(c, c + 9, again));
  std::copy(b, b + 9, again);
  Matrix_Multiply(a, again, again);
  EXPECT_TRUE(std::equal(c, c + 9, again));
}

TEST(SmallMatrices, VectorsAreRows) {
  double v[3] = {1, 2, 3};
  double matrix[9] = {0, 1, 0, 0, 0, 1, 1, 0, 0};
  Vector_Transform(v, matrix, -1);
  EXPECT_EQ((std::vector<double>(v, v + 3)), (std::vector<double>{-3, -1, -2}));
  double w[3] = {10, 20, 30};
  Move_Vector(v, w);
  EXPECT_EQ((std::vector<double>(v, v + 3)), (std::vector<double>{7, 19, 28}));
}

}  // namespace
