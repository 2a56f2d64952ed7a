#include "fmdtool/unit_labels.h"

#include <gtest/gtest.h>

#include "support/session.h"

using fmdtool::parse_units;

TEST(UnitLabels, AreTakenInAnyCase) {
  calculix::Units units;
  EXPECT_EQ(parse_units("kilogram,Meter,MILLISECOND,newton", units), "");
  EXPECT_EQ(units.mass, "KILOGRAM");
  EXPECT_EQ(units.length, "METER");
  EXPECT_EQ(units.time, "MILLISECOND");
  EXPECT_EQ(units.force, "NEWTON");
}

TEST(UnitLabels, OfAnotherKindOrUnknownAreRefused) {
  calculix::Units units;
  EXPECT_EQ(parse_units("KILOGRAM,METER,SECOND", units),
            "expected four labels MASS,LENGTH,TIME,FORCE, found \"KILOGRAM,METER,SECOND\"");
  EXPECT_EQ(parse_units("METER,METER,SECOND,NEWTON", units)
                .rfind("expected a unit of mass, found \"METER\"; known are", 0),
            0U);
  EXPECT_EQ(parse_units("GRAM,METER,S,NEWTON", units).rfind("expected a unit of time, found \"S\"", 0), 0U);
  EXPECT_NE(parse_units("", units), "");
}

class UnitLabelsInTheToolkit : public fmdtest::SessionTest {};

// Each label is one that the toolkit takes as its kind of unit.
TEST_F(UnitLabelsInTheToolkit, AreAllKnown) {
  for (std::size_t kind = 0; kind < 4; ++kind) {
    for (const char* label : fmdtool::unit_kinds()[kind].labels) {
      std::string units[4] = {"KILOGRAM", "METER", "SECOND", "NEWTON"};
      units[kind] = label;
      FmdBody* body = FMD_Create(1, 1);
      ASSERT_NE(body, nullptr);
      FMD_SetUnits(body, units[0].data(), units[1].data(), units[2].data(), units[3].data());
      char set[4][16];
      FMD_Units(body, set[0], set[1], set[2], set[3]);
      EXPECT_STREQ(set[kind], label);
      EXPECT_GT(FMD_UCF(body), 0.0) << label;
      FMD_UnLink(body);
    }
  }
  EXPECT_TRUE(log.errors.empty());
}
