// The eigensolver beside LAPACK's on pairs of many kinds.
//
// With u the roundoff level, both solve a pair that is changed by a small multiple of n u times the norms. So
// the residuals are bounded by that, and eigenvalues and vectors differ by it times their condition.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ostream>
#include <string>
#include <tuple>

#include "qz/pair.h"

namespace {

using fmdtest::kRoundoff;
using fmdtest::MatrixPair;
using fmdtest::Random;
using fmdtest::Solution;
using fmdtest::SquareMatrix;

// Multiples of n u that the residuals, and the differences from LAPACK over the condition, stay within.
constexpr double kResidual = 2.0;
constexpr double kDifference = 2.0;

SquareMatrix symmetric(int n, Random& random) {
  const SquareMatrix m = fmdtest::random_matrix(n, random);
  SquareMatrix sum = fmdtest::transpose(m);
  for (std::size_t i = 0; i < sum.values.size(); ++i) sum.values[i] += m.values[i];
  return sum;
}

SquareMatrix positive_definite(int n, Random& random) {
  const SquareMatrix m = fmdtest::random_matrix(n, random);
  SquareMatrix squares = fmdtest::product(fmdtest::transpose(m), m);
  for (int i = 0; i < n; ++i) squares(i, i) += 1.0;
  return squares;
}

MatrixPair symmetric_pair(int n, Random& random) {
  return {symmetric(n, random), positive_definite(n, random)};
}

MatrixPair indefinite_pair(int n, Random& random) {
  return {symmetric(n, random), symmetric(n, random)};
}

MatrixPair nonsymmetric_pair(int n, Random& random) {
  return {fmdtest::random_matrix(n, random), fmdtest::random_matrix(n, random)};
}

// B with the last singular values, a quarter of them, as given.
MatrixPair pair_with_small_values(int n, Random& random, double small) {
  std::vector<double> values(static_cast<std::size_t>(n), 1.0);
  std::fill(values.end() - (n + 3) / 4, values.end(), small);
  return {fmdtest::random_matrix(n, random), fmdtest::with_singular_values(values, random)};
}

MatrixPair singular_pair(int n, Random& random) {
  return pair_with_small_values(n, random, 0.0);
}
MatrixPair nearly_singular_pair(int n, Random& random) {
  return pair_with_small_values(n, random, 1e-14);
}

MatrixPair symmetric_singular_pair(int n, Random& random) {
  MatrixPair pair = {positive_definite(n, random), positive_definite(n, random)};
  for (int i = 0; i < n; ++i) pair.b(i, n - 1) = pair.b(n - 1, i) = 0.0;
  return pair;
}

// Rows and columns that fall off over twelve decades.
MatrixPair graded_pair(int n, Random& random) {
  MatrixPair pair = nonsymmetric_pair(n, random);
  const auto factor = [n](int i) { return std::pow(10.0, -6.0 * i / n); };
  for (int j = 0; j < n; ++j)
    for (int i = 0; i < n; ++i) {
      pair.a(i, j) *= factor(i) * factor(j);
      pair.b(i, j) *= factor(i) * factor(j);
    }
  return pair;
}

// Jordan blocks of two rows with the eigenvalues 1, 2, 3 ..., seen from other coordinates on either side.
MatrixPair defective_pair(int n, Random& random) {
  SquareMatrix jordan(n);
  for (int i = 0; i < n; ++i) jordan(i, i) = 1.0 + i / 2;
  for (int i = 0; i + 1 < n; i += 2) jordan(i, i + 1) = 1.0;
  const SquareMatrix left = fmdtest::random_orthogonal(n, random);
  const SquareMatrix right = fmdtest::random_orthogonal(n, random);
  return {fmdtest::product(fmdtest::product(left, jordan), right), fmdtest::product(left, right)};
}

struct Kind {
  const char* name;
  MatrixPair (*make)(int n, Random& random);
  bool is_regular;  // all eigenvalues are simple and finite, so that vectors are determined
};

void PrintTo(const Kind& kind, std::ostream* out) {
  *out << kind.name;
}

const Kind kKinds[] = {
    {"Symmetric", symmetric_pair, true},
    {"Indefinite", indefinite_pair, true},
    {"Nonsymmetric", nonsymmetric_pair, true},
    {"Singular", singular_pair, false},
    {"NearlySingular", nearly_singular_pair, false},
    {"SymmetricSingular", symmetric_singular_pair, true},
    {"Graded", graded_pair, true},
    {"Defective", defective_pair, false},
};

class AgainstLapack : public testing::TestWithParam<std::tuple<Kind, int>> {
 protected:
  const Kind& kind = std::get<0>(GetParam());
  const int n = std::get<1>(GetParam());
  Random random{static_cast<Random::result_type>(n)};
  const MatrixPair pair = kind.make(n, random);
  const double unit = n * kRoundoff;
};

TEST_P(AgainstLapack, SmallResidualsAndTheSameEigenvaluesAndVectors) {
  const Solution own = fmdtest::solve(pair);
  const Solution peer = fmdtest::solve_with_lapack(pair);
  ASSERT_EQ(own.error, 0);
  ASSERT_EQ(peer.error, 0);
  EXPECT_LE(fmdtest::largest_residual(pair, own), kResidual * unit);

  const std::vector<double> conditions = fmdtest::value_conditions(pair, peer);
  const std::vector<double> vector_conditions = fmdtest::vector_conditions(peer, conditions);
  const std::vector<int> partner = fmdtest::match(peer, own, conditions);
  for (int i = 0; i < n; ++i) {
    const std::size_t p = static_cast<std::size_t>(i);
    const int j = partner[p];
    EXPECT_LE(fmdtest::chordal_distance(peer.value(i), own.value(j)), kDifference * unit * conditions[p])
        << "eigenvalue " << i;
    if (!kind.is_regular) continue;
    EXPECT_LE(fmdtest::angle(own.vector(j), peer.vector(i)),
              kDifference * unit * (vector_conditions[p] + 1.0))
        << "vector " << i;
  }
}

INSTANTIATE_TEST_SUITE_P(Pairs, AgainstLapack,
                         testing::Combine(testing::ValuesIn(kKinds),
                                          testing::Values(1, 2, 3, 4, 5, 8, 13, 30, 100, 300)),
                         [](const auto& tested) {
                           return std::string(std::get<0>(tested.param).name) + "OfOrder" +
                                  std::to_string(std::get<1>(tested.param));
                         });

}  // namespace
