#include "dbmodal/dbmod/tensor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>

#include "fmdtoolkit/fmdtoolkit.h"

namespace {

using Matrix = std::array<double, 9>;
using Six = std::array<double, 6>;

// Components of a tensor by their defining sum, t'_ij = sum over k and l of A_ki T_kl A_lj.
Matrix transformed(const Matrix& tensor, const Matrix& a) {
  Matrix result{};
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j)
      for (std::size_t k = 0; k < 3; ++k)
        for (std::size_t l = 0; l < 3; ++l)
          result[3 * i + j] += a[3 * k + i] * tensor[3 * k + l] * a[3 * l + j];
  return result;
}

TEST(TensorTransform, FollowsTheSumOverBothIndices) {
  const Matrix tensor = {1, 2, 3, -4, 5, 6, 7, -8, 9};
  Matrix a = {2, -1, 0.5, 0.25, 3, 1, -2, 4, 1.5};
  for (const int sign : {1, -1}) {
    Matrix result = tensor;
    Tensor_Transform(result.data(), a.data(), sign);
    const Matrix expected = transformed(tensor, a);
    for (std::size_t k = 0; k < 9; ++k) EXPECT_EQ(result[k], sign * expected[k]) << k;
  }
}

// Worked by hand: a quarter turn takes x to y, so what was xx becomes yy.
TEST(TensorTransform, TurnsThePrincipalAxes) {
  Matrix tensor = {1, 4, 5, 4, 2, 6, 5, 6, 3};
  Matrix quarter = {0, 1, 0, -1, 0, 0, 0, 0, 1};
  Tensor_Transform(tensor.data(), quarter.data(), 1);
  EXPECT_EQ(tensor, (Matrix{2, -4, -6, -4, 1, 5, -6, 5, 3}));
}

// Any other sign than -1 leaves the tensor as it comes.
TEST(TensorTransform, NegatesForMinusOneOnly) {
  Matrix identity = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  for (const int sign : {0, 1, 2, -2}) {
    Matrix tensor = {1, 2, 3, 4, 5, 6, 7, 8, 9};
    Tensor_Transform(tensor.data(), identity.data(), sign);
    EXPECT_EQ(tensor, (Matrix{1, 2, 3, 4, 5, 6, 7, 8, 9})) << sign;
  }
}

TEST(TensorTransform, TakesSixValuesAsTheSymmetricTensor) {
  const Matrix a = {0.5, -1, 2, 0.25, 3, 1, -2, 4, 1.5};
  Six six = {1, 2, 3, 4, 5, 6};
  fmd::transform_six(six.data(), a.data());
  const Matrix expected = transformed({1, 4, 5, 4, 2, 6, 5, 6, 3}, a);
  EXPECT_EQ(six, (Six{expected[0], expected[4], expected[8], expected[1], expected[2], expected[5]}));
}

TEST(RotationSign, IsNegativeForReflections) {
  const Matrix rotation = {0.36, 0.48, -0.8, -0.8, 0.6, 0, 0.48, 0.64, 0.6};
  EXPECT_EQ(fmd::rotation_sign(rotation.data()), 1);
  const Matrix reflection = {-1, 0, 0, 0, 1, 0, 0, 0, 1};
  EXPECT_EQ(fmd::rotation_sign(reflection.data()), -1);
  const Matrix zero{};
  EXPECT_EQ(fmd::rotation_sign(zero.data()), 1);
  Matrix undefined;
  undefined.fill(std::numeric_limits<double>::quiet_NaN());
  EXPECT_EQ(fmd::rotation_sign(undefined.data()), 1);
}

// Worked by hand: the determinants are -2 and 1, the values that decide 1 and -1.
TEST(RotationSign, TakesA6ForA7InTheMiddleCofactor) {
  const Matrix negative_determinant = {1, 0, 1, 1, 1, 0, 0, -3, 1};
  EXPECT_EQ(fmd::rotation_sign(negative_determinant.data()), 1);
  const Matrix positive_determinant = {1, 0, 1, 1, 1, 0, -3, -1, -1};
  EXPECT_EQ(fmd::rotation_sign(positive_determinant.data()), -1);
}

}  // namespace
