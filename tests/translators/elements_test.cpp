#include "calculix/elements.h"

#include <gtest/gtest.h>

#include <cmath>

#include "calculix/gauss.h"

using calculix::element_type;
using calculix::ElementType;
using calculix::Family;
using calculix::integration_points;

TEST(Elements, HaveTheNodeCountsOfTheirCodes) {
  const int nodes[] = {8, 6, 4, 20, 15, 10, 3, 6, 4, 8, 2, 3};
  for (int code = 1; code <= 12; ++code) {
    ASSERT_NE(element_type(code), nullptr) << code;
    EXPECT_EQ(element_type(code)->nodes, nodes[code - 1]) << code;
  }
  EXPECT_EQ(element_type(0), nullptr);
  EXPECT_EQ(element_type(13), nullptr);
}

TEST(Elements, TakeNodesOfTheResultFileToTheirPlacesInTheDeck) {
  // As the format page has it: deck 1-12, 17-20, 13-16; deck 1-9, 13-15, 10-12; deck 1, 3, 2.
  const std::vector<std::pair<int, std::vector<int>>> cases = {
      {4, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 17, 18, 19, 20, 13, 14, 15, 16}},
      {5, {1, 2, 3, 4, 5, 6, 7, 8, 9, 13, 14, 15, 10, 11, 12}},
      {12, {1, 3, 2}}};
  for (const auto& [code, deck_numbers] : cases) {
    for (std::size_t i = 0; i < deck_numbers.size(); ++i) {
      EXPECT_EQ(element_type(code)->place_in_deck[i], deck_numbers[i] - 1) << code << " " << i;
    }
  }
  for (const int code : {1, 2, 3, 6, 7, 8, 9, 10, 11}) EXPECT_EQ(element_type(code)->place_in_deck, nullptr);
}

TEST(Elements, HaveShapeFunctionsThatSumToOneAndSlopesThatSumToZero) {
  for (int code = 1; code <= 12; ++code) {
    const ElementType& type = *element_type(code);
    for (const auto& point : integration_points(type)) {
      double sum = 0.0;
      double slopes[3] = {0, 0, 0};
      for (std::size_t i = 0; i < static_cast<std::size_t>(type.nodes); ++i) {
        sum += point.shape[i];
        for (std::size_t k = 0; k < 3; ++k) slopes[k] += point.slope[i][k];
      }
      EXPECT_NEAR(sum, 1.0, 1e-14) << code;
      for (const double slope : slopes) EXPECT_NEAR(slope, 0.0, 1e-14) << code;
    }
  }
}

TEST(Elements, HaveIntegrationWeightsThatSumToTheReferenceShape) {
  const double measures[] = {8.0, 1.0, 1.0 / 6, 8.0, 1.0, 1.0 / 6, 0.5, 0.5, 4.0, 4.0, 2.0, 2.0};
  for (int code = 1; code <= 12; ++code) {
    double sum = 0.0;
    for (const auto& point : integration_points(*element_type(code))) {
      EXPECT_GT(point.weight, 0.0);
      sum += point.weight;
    }
    EXPECT_NEAR(sum, measures[code - 1], 1e-14) << code;
  }
}

// The integral of (1-x)^power x^n over 0 to 1 is power! n! / (power + n + 1)!.
TEST(Gauss, IsExactToItsDegree) {
  for (int power = 0; power <= 2; ++power) {
    for (int count = 1; count <= 6; ++count) {
      const auto points = calculix::gauss_jacobi(count, power);
      ASSERT_EQ(points.size(), static_cast<std::size_t>(count));
      for (int n = 0; n <= 2 * count - 1; ++n) {
        double sum = 0.0;
        for (const auto& point : points) sum += point.weight * std::pow(point.x, n);
        const double exact = std::tgamma(power + 1.0) * std::tgamma(n + 1.0) / std::tgamma(power + n + 2.0);
        EXPECT_NEAR(sum, exact, 1e-14) << power << " " << count << " " << n;
      }
    }
  }
}
