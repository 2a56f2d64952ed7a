// The report of eigenvalues, line by line.
#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "dbmodal/dbtools/eigenvalue_table.h"
#include "support/message_log.h"

namespace {

using Lines = std::vector<std::string>;

class EigenvalueTable : public testing::Test {
 protected:
  Lines report(const std::vector<double>& eigenvalues, double consistency = 1.0) {
    log.clear();
    fmd::report_eigenvalues(eigenvalues.data(), static_cast<int>(eigenvalues.size()), consistency);
    EXPECT_EQ(log.all.size(), log.infos.size());
    return {log.infos.begin() + 3, log.infos.end()};
  }

  fmdtest::MessageLog log;
};

TEST_F(EigenvalueTable, HasAHeadOfThreeLines) {
  report({});
  EXPECT_EQ(log.infos, (Lines{std::string(49, ' '), "  Real Eigenvalues and Natural Frequencies [Hz] :",
                              "  ==============================================="}));
}

TEST_F(EigenvalueTable, ComparesWithOneInASmallBody) {
  const double two_pi_squared = 39.478417604357966;
  EXPECT_EQ(report({-1.5, -1.0, -0.25, 0.0, 1.0, two_pi_squared}),
            (Lines{"   1 : -1.50000000000000e+00  Sqrt undefined.  Possible problem with input data.",
                   "   2 : -1.00000000000000e+00  Sqrt undefined.     (probable rigid body mode)",
                   "   3 : -2.50000000000000e-01  Sqrt undefined.     (probable rigid body mode)",
                   "   4 : 0.00000000000000e+00  0.00000000000000e+00 (probable rigid body mode)",
                   "   5 : 1.00000000000000e+00  1.59154943091885e-01 (probable rigid body mode)",
                   "   6 : 3.94784176043580e+01  9.99999999999941e-01"}));
}

TEST_F(EigenvalueTable, ComparesWithTheSeventhInALargerBody) {
  // The seventh is 0.5: what is above 0.0005 in magnitude stands clear.
  EXPECT_EQ(report({-0.0625, -0.00048828125, 0.00048828125, 0.0009765625, 0.25, 0.25, 0.5, 4.0}),
            (Lines{"   1 : -6.25000000000000e-02  Sqrt undefined.  Possible problem with input data.",
                   "   2 : -4.88281250000000e-04  Sqrt undefined.     (probable rigid body mode)",
                   "   3 : 4.88281250000000e-04  3.51686060998846e-03 (probable rigid body mode)",
                   "   4 : 9.76562500000000e-04  4.97359197162140e-03",
                   "   5 : 2.50000000000000e-01  7.95774715459424e-02",
                   "   6 : 2.50000000000000e-01  7.95774715459424e-02",
                   "   7 : 5.00000000000000e-01  1.12539539519631e-01",
                   "   8 : 4.00000000000000e+00  3.18309886183770e-01"}));
}

TEST_F(EigenvalueTable, StillComparesWithOneInALargerBody) {
  // A thousandth of the seventh is 2, yet 1.5 and -1.5 are beyond 1.
  const Lines lines = report({-1.5, -1.0, 1.0, 1.5, 2000.0, 2000.0, 2000.0});
  EXPECT_EQ(lines[0], "   1 : -1.50000000000000e+00  Sqrt undefined.  Possible problem with input data.");
  EXPECT_EQ(lines[1], "   2 : -1.00000000000000e+00  Sqrt undefined.     (probable rigid body mode)");
  EXPECT_EQ(lines[2], "   3 : 1.00000000000000e+00  1.59154943091885e-01 (probable rigid body mode)");
  EXPECT_EQ(lines[3], "   4 : 1.50000000000000e+00  1.94924200308406e-01");
}

TEST_F(EigenvalueTable, CallsTheMarkerInfinite) {
  EXPECT_EQ(report({1.2345e+20}), (Lines{"   1 : Infinity.  Possible mass singularity.  Ignored."}));
}

TEST_F(EigenvalueTable, TakesTheFrequencyInTheUnits) {
  EXPECT_EQ(report({4.0}, 1000.0), (Lines{"   1 : 4.00000000000000e+00  1.00658424208967e+01"}));
}

TEST_F(EigenvalueTable, SurvivesWhatIsNoNumber) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(report({nan, nan, nan, nan, nan, nan, nan}).size(), 7U);
}

}  // namespace
