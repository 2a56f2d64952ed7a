#include "fmdtool/frequency_comparison.h"

#include <gtest/gtest.h>

using fmdtool::compare_frequencies;
using fmdtool::rigid_mode_count;

TEST(RigidModes, LieBelowAThousandthOfTheNext) {
  EXPECT_EQ(rigid_mode_count({}), 0);
  EXPECT_EQ(rigid_mode_count({5.0}), 0);
  EXPECT_EQ(rigid_mode_count({5.0, 4999.0}), 0);
  EXPECT_EQ(rigid_mode_count({5.0, 5001.0}), 1);
  EXPECT_EQ(rigid_mode_count({-2e-3, 0.0, 0.0, 1e-9, 1e-4, 2e-3, 2997.4, 3281.6}), 6);
  EXPECT_EQ(rigid_mode_count({0.0, 12.5, 13.0}), 1);
}

TEST(CompareFrequencies, PairsElasticModesInAscendingOrder) {
  const auto found = compare_frequencies({300.3, -0.002, 101.0, 0.001, 900.0}, {0.0, 0.0, 100.0, 300.0});
  EXPECT_EQ(found.rigid_modes, 2);
  EXPECT_EQ(found.rigid_modes_of_results, 2);
  EXPECT_EQ(found.largest_rigid, 0.002);
  ASSERT_EQ(found.modes.size(), 2U);
  EXPECT_EQ(found.modes[0].number, 3);
  EXPECT_EQ(found.modes[0].hertz, 101.0);
  EXPECT_EQ(found.modes[0].results_hertz, 100.0);
  EXPECT_NEAR(fmdtool::FrequencyComparison::difference(found.modes[0]), 0.01, 1e-15);
  EXPECT_EQ(found.modes[1].number, 4);
  EXPECT_NEAR(fmdtool::FrequencyComparison::difference(found.modes[1]), 0.001, 1e-15);
}

TEST(CompareFrequencies, ComparesNothingWhereTheNumbersOfRigidModesDiffer) {
  const auto found = compare_frequencies({0.0, 100.0}, {100.0, 200.0});
  EXPECT_EQ(found.rigid_modes, 1);
  EXPECT_EQ(found.rigid_modes_of_results, 0);
  EXPECT_TRUE(found.modes.empty());
  EXPECT_EQ(fmdtool::comparison_table(found),
            "\n  beside the results\n"
            "  rigid body modes: 1, up to 0 Hz; results: 0\n"
            "  no elastic modes to compare\n");
}

TEST(ComparisonTable, HasALineForEachMode) {
  EXPECT_EQ(fmdtool::comparison_table(compare_frequencies({0.25, 3000.3, 4000.0}, {0.5, 3000.0, 4000.0})),
            "\n  beside the results\n"
            "  rigid body modes: 1, up to 0.25 Hz; results: 1\n"
            "  mode    dataset [Hz]    results [Hz]    difference\n"
            "     2    3000.3          3000            +0.01000 %\n"
            "     3    4000            4000            +0.00000 %\n");
}
