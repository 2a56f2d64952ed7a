// The matrices of rotations and reflections against Rodrigues' and Householder's formulas and against turns
// that can be seen without computing.
#include <gmock/gmock.h>

#include <cmath>

#include "dbmodal/dbmod/rigid_matrices.h"
#include "dbmodal/rigid_motion_model.h"

namespace {

using fmdtest::Nine;
using fmdtest::Three;

Nine rotation_matrix(const Three& axis, double degrees) {
  Nine matrix;
  fmd::fill_rotation(axis.data(), degrees, matrix.data());
  return matrix;
}

Nine reflection_matrix(const Three& normal) {
  Nine matrix;
  fmd::fill_reflection(normal.data(), matrix.data());
  return matrix;
}

// The row vector v times the matrix.
Three row_times(const Three& v, const Nine& matrix) {
  return fmdtest::product(fmdtest::transposed(matrix), v);
}

void expect_equal(const Nine& found, const Nine& expected, const std::string& what) {
  fmdtest::expect_near(found.data(), expected.data(), 9, 20.0, what);
}

void expect_equal(const Three& found, const Three& expected) {
  fmdtest::expect_near(found.data(), expected.data(), 3, 20.0, "vector");
}

const Three kX{1.0, 0.0, 0.0};
const Three kY{0.0, 1.0, 0.0};
const Three kZ{0.0, 0.0, 1.0};
const Three kVectors[] = {kX,
                          kY,
                          kZ,
                          {0.0, 0.0, -2.0},
                          {-3.0, 0.0, 0.0},
                          {0.0, -0.5, 0.0},
                          {1.0, 2.0, 3.0},
                          {-4.0, 1e-3, -2.0},
                          {1e-200, 0.0, 5.0}};

TEST(RotationMatrix, TurnsARowVectorAgainstTheRightHandRule) {
  expect_equal(row_times(kY, rotation_matrix(kX, 90.0)), {0.0, 0.0, -1.0});
  expect_equal(row_times(kZ, rotation_matrix(kX, 90.0)), {0.0, 1.0, 0.0});
  expect_equal(row_times(kX, rotation_matrix(kZ, 90.0)), {0.0, -1.0, 0.0});
  expect_equal(row_times(kZ, rotation_matrix(kY, 90.0)), {-1.0, 0.0, 0.0});
}

TEST(RotationMatrix, AnAxisAgainstZTurnsTheOtherWay) {
  expect_equal(row_times(kX, rotation_matrix({0.0, 0.0, -2.0}, 90.0)), {0.0, 1.0, 0.0});
  expect_equal(row_times(kX, rotation_matrix({0.0, 0.0, -2.0}, 30.0)), {std::sqrt(0.75), 0.5, 0.0});
}

TEST(RotationMatrix, IsRodriguesFormulaForAnyAxisAndAngle) {
  for (const Three& axis : kVectors) {
    for (const double degrees : {0.0, 30.0, 90.0, 120.0, -200.0, 359.0, 1000.0}) {
      // A row vector sees the transpose of what a column vector sees, and the sense is reversed.
      const Nine expected = fmdtest::transposed(fmdtest::rotation(axis, {}, -degrees).turn);
      expect_equal(rotation_matrix(axis, degrees), expected, testing::PrintToString(axis));
    }
  }
}

TEST(RotationMatrix, LeavesItsAxis) {
  for (const Three& axis : kVectors) expect_equal(row_times(axis, rotation_matrix(axis, 77.0)), axis);
}

TEST(ReflectionMatrix, IsHouseholdersForAnyNormal) {
  for (const Three& normal : kVectors)
    expect_equal(reflection_matrix(normal), fmdtest::reflection(normal, {}).turn,
                 testing::PrintToString(normal));
}

TEST(ReflectionMatrix, TurnsItsNormalRound) {
  expect_equal(row_times({3.0, 4.0, 5.0}, reflection_matrix({0.0, 0.0, -2.0})), {3.0, 4.0, -5.0});
  expect_equal(row_times({3.0, 4.0, 5.0}, reflection_matrix({7.0, 0.0, 0.0})), {-3.0, 4.0, 5.0});
}

TEST(RigidMatrices, AVectorOfNoLengthIsNotGuarded) {
  for (const double value : rotation_matrix({}, 90.0)) EXPECT_TRUE(std::isnan(value));
  for (const double value : reflection_matrix({})) EXPECT_TRUE(std::isnan(value));
}

}  // namespace
