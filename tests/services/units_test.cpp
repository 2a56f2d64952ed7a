#include "services/units.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using fmd::accept_unit_label;
using fmd::force_units;
using fmd::length_units;
using fmd::mass_units;
using fmd::time_units;
using fmd::units_divider;
using fmd::units_label;

TEST(UnitsDivider, EmptyLabelIsOneBeforeAnyTable) {
  EXPECT_EQ(units_divider("", nullptr), 1.0);
}

TEST(UnitsDivider, LabelMatchesTheFirstEntryThatBeginsWithIt) {
  EXPECT_EQ(units_divider("MIL", length_units), 0.001);
  EXPECT_EQ(units_divider("mil", length_units), 0.001);
  EXPECT_EQ(units_divider("mile", length_units), 1609.344);
  EXPECT_EQ(units_divider("MI", time_units), 0.001);
  EXPECT_EQ(units_divider("G", mass_units), 0.001);
  EXPECT_EQ(units_divider("K", force_units), 1000.0);
}

TEST(UnitsDivider, LongerLabelsAndUnknownOnesAreZero) {
  EXPECT_EQ(units_divider("MIL ", length_units), 0.0);
  EXPECT_EQ(units_divider("METERS", length_units), 0.0);
  EXPECT_EQ(units_divider("FURLONG", length_units), 0.0);
}

TEST(UnitsDivider, TablesHoldTheFactors) {
  EXPECT_EQ(units_divider("MEGAGRAM", mass_units), 1000.0);
  EXPECT_NEAR(units_divider("SLUG", mass_units), 0.45359237 * 9.80665 / 0.3048, 1e-13);
  EXPECT_NEAR(units_divider("SLINCH", mass_units), 0.45359237 * 9.80665 / 0.0254, 1e-12);
  EXPECT_NEAR(units_divider("POUND_FORCE", force_units), 0.45359237 * 9.80665, 1e-15);
  EXPECT_NEAR(units_divider("OUNCE_FORCE", force_units), 0.45359237 * 9.80665 / 16, 1e-15);
  EXPECT_EQ(units_divider("MICROINCH", length_units), 2.54e-08);
  EXPECT_EQ(units_divider("MINUTE", time_units), 60.0);
}

TEST(UnitsLabel, FindsWithinTolerance) {
  EXPECT_STREQ(units_label(1000.05, mass_units), "MEGAGRAM");
  EXPECT_EQ(units_label(1000.2, mass_units), nullptr);
  EXPECT_STREQ(units_label(0.0254, length_units), "INCH");
}

TEST(UnitsLabel, ValuesNotAboveZeroFindNothing) {
  for (const FmdUnit* table : {mass_units, force_units, length_units, time_units}) {
    EXPECT_EQ(units_label(0.0, table), nullptr);
    EXPECT_EQ(units_label(-1.0, table), nullptr);
  }
}

TEST(AcceptUnitLabel, TakesWholeLabelsInAnyCaseAndPutsThemInCapitals) {
  char label[16] = "milliMeter";
  EXPECT_TRUE(accept_unit_label(label));
  EXPECT_STREQ(label, "MILLIMETER");
}

TEST(AcceptUnitLabel, RefusesPrefixesAndNonsense) {
  for (const char* text : {"MILLIM", "FURLONG", "", "METER "}) {
    char label[16] = "";
    std::snprintf(label, sizeof label, "%s", text);
    EXPECT_FALSE(accept_unit_label(label)) << text;
    EXPECT_STREQ(label, text);
  }
}

}  // namespace
