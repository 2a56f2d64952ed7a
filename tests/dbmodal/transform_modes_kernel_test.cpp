#include "dbmodal/dbtools/transform_modes_kernel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstring>
#include <limits>
#include <random>
#include <vector>

#include "messages/memory.h"

namespace {

using fmd::VectorUnit;

std::vector<VectorUnit> units_here() {
  std::vector<VectorUnit> units;
  for (const VectorUnit unit : {VectorUnit::kSse2, VectorUnit::kAvx2, VectorUnit::kAvx512})
    if (fmd::has_vector_unit(unit)) units.push_back(unit);
  return units;
}

using Columns = std::vector<std::vector<double>>;

// As told at the head of the kernel, term by term.
Columns plain_sums(const Columns& old, const std::vector<double>& matrix, std::size_t columns) {
  const std::size_t modes = old.size();
  Columns sums = old;
  for (std::size_t c = 0; c < columns; ++c) {
    std::fill(sums[c].begin(), sums[c].end(), 0.0);
    for (std::size_t a = 0; a < modes; ++a) {
      const double t = matrix[a * modes + c];
      if (t == 0.0) continue;
      for (std::size_t v = 0; v < old[a].size(); ++v) {
        const volatile double product = t * old[a][v];
        sums[c][v] = sums[c][v] + product;
      }
    }
  }
  return sums;
}

bool is_same(double a, double b) {
  return std::memcmp(&a, &b, sizeof a) == 0 || (std::isnan(a) && std::isnan(b));
}

class ModeProductTest : public testing::Test {
 protected:
  Columns random_columns(std::size_t modes, std::size_t values) {
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    Columns columns(modes, std::vector<double>(values));
    for (auto& column : columns)
      for (double& entry : column) entry = value(random);
    return columns;
  }

  // Of its entries, so many in ten are zeros of either sign.
  std::vector<double> random_matrix(std::size_t modes, int zeros_in_ten) {
    std::uniform_real_distribution<double> value(-1.0, 1.0);
    std::vector<double> matrix(modes * modes);
    for (double& t : matrix) {
      t = value(random);
      if (std::uniform_int_distribution<int>(0, 9)(random) < zeros_in_ten) t = std::copysign(0.0, t);
    }
    return matrix;
  }

  static void expect_plain_sums(const Columns& old, const std::vector<double>& matrix, std::size_t columns) {
    const Columns expected = plain_sums(old, matrix, columns);
    for (const VectorUnit unit : units_here()) {
      Columns actual = old;
      std::vector<double*> pieces;
      for (auto& column : actual) pieces.push_back(column.data());
      fmd::ModeProduct product;
      ASSERT_TRUE(
          product.prepare(unit, matrix.data(), static_cast<int>(old.size()), static_cast<int>(columns)));
      product.transform(pieces.data(), static_cast<std::int64_t>(old[0].size()));
      for (std::size_t c = 0; c < old.size(); ++c)
        for (std::size_t v = 0; v < old[c].size(); ++v)
          ASSERT_TRUE(is_same(actual[c][v], expected[c][v]))
              << "unit " << static_cast<int>(unit) << " mode " << c << " value " << v << ": " << actual[c][v]
              << " for " << expected[c][v];
    }
  }

  std::mt19937 random{4};
};

TEST_F(ModeProductTest, HasTheBitsOfThePlainSums) {
  for (const std::size_t modes : {1, 2, 3, 4, 5, 7, 8, 9, 16, 17, 33})
    for (const std::size_t values : {1, 6, 24, 25, 191, 192, 193, 600}) {
      SCOPED_TRACE(testing::Message() << modes << " modes, " << values << " values");
      expect_plain_sums(random_columns(modes, values), random_matrix(modes, 0), modes);
      if (HasFailure()) return;
    }
}

TEST_F(ModeProductTest, LeavesTermsWithoutACoefficientOut) {
  for (const int zeros : {2, 5, 9, 10})
    expect_plain_sums(random_columns(19, 300), random_matrix(19, zeros), 19);
}

TEST_F(ModeProductTest, AnIdentityGivesTheSameBits) {
  const std::size_t modes = 11;
  std::vector<double> identity(modes * modes, 0.0);
  for (std::size_t i = 0; i < modes; ++i) identity[i * modes + i] = 1.0;
  Columns columns = random_columns(modes, 500);
  columns[3][7] = std::numeric_limits<double>::infinity();
  columns[4][499] = std::numeric_limits<double>::quiet_NaN();
  columns[5][200] = std::numeric_limits<double>::denorm_min();
  expect_plain_sums(columns, identity, modes);
}

TEST_F(ModeProductTest, AnInfiniteValueSpoilsOnlyTheSumsThatItIsPartOf) {
  for (const double unsound :
       {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity(),
        std::numeric_limits<double>::quiet_NaN()}) {
    for (const std::size_t place : {std::size_t{0}, std::size_t{191}, std::size_t{192}, std::size_t{399}}) {
      Columns columns = random_columns(10, 400);
      columns[6][place] = unsound;
      std::vector<double> matrix = random_matrix(10, 0);
      for (const std::size_t c : {0, 2, 9}) matrix[6 * 10 + c] = 0.0;
      const Columns sums = plain_sums(columns, matrix, 10);
      ASSERT_TRUE(std::isfinite(sums[2][place]));
      ASSERT_FALSE(std::isfinite(sums[1][place]));
      expect_plain_sums(columns, matrix, 10);
    }
  }
}

TEST_F(ModeProductTest, CoefficientsMayBeInfiniteAndSumsMayOverflow) {
  std::vector<double> matrix = random_matrix(9, 3);
  matrix[5] = std::numeric_limits<double>::infinity();
  matrix[40] = std::numeric_limits<double>::quiet_NaN();
  Columns columns = random_columns(9, 100);
  columns[2][50] = columns[3][50] = std::numeric_limits<double>::max();
  matrix[2 * 9] = matrix[3 * 9] = 1.0;
  expect_plain_sums(columns, matrix, 9);
}

TEST_F(ModeProductTest, MakesTheFirstColumnsOnly) {
  for (const std::size_t columns : {0, 1, 4, 9, 12})
    expect_plain_sums(random_columns(12, 210), random_matrix(12, 1), columns);
}

TEST_F(ModeProductTest, EveryAllocationMayFail) {
  const std::vector<double> matrix = random_matrix(6, 0);
  for (int nth = 1;; ++nth) {
    fmd::fail_allocation(nth);
    fmd::ModeProduct product;
    const bool done = product.prepare(VectorUnit::kSse2, matrix.data(), 6, 6);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    EXPECT_EQ(done, !failed);
    if (done) break;
    ASSERT_LT(nth, 20);
  }
}

TEST(AddMultiple, AddsTermByTerm) {
  const std::vector<double> values = {1, 2, 3};
  std::vector<double> sum = {10, 20, 30};
  fmd::add_multiple(-0.5, values.data(), 2, sum.data());
  EXPECT_EQ(sum, (std::vector<double>{9.5, 19, 30}));
}

}  // namespace
