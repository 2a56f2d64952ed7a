#include "services/units.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"

namespace {

class Units : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(4, 2);
    ASSERT_NE(body, nullptr);
    log.clear();
  }

  void set(std::string mass, std::string length, std::string time, std::string force) const {
    FMD_SetUnits(body, mass.data(), length.data(), time.data(), force.data());
  }

  std::vector<std::string> labels() const {
    char text[4][16];
    FMD_Units(body, text[0], text[1], text[2], text[3]);
    return {text[0], text[1], text[2], text[3]};
  }

  FmdBody* body = nullptr;
};

const std::vector<std::string> kDefaults = {"KILOGRAM", "METER", "SECOND", "NEWTON"};

TEST_F(Units, ABodyWithoutUnitsReportsTheDefaultsAndKeepsItsLabelsEmpty) {
  EXPECT_EQ(labels(), kDefaults);
  EXPECT_STREQ(body->MassUnit, "");
  EXPECT_EQ(FMD_UCF(body), 1.0);
  EXPECT_EQ(FMD_Mass2Kilogram(body, 2.5), 2.5);
  EXPECT_EQ(FMD_Force2Newton(body, -1.0), -1.0);
}

TEST_F(Units, TheFirstSettingDeclaresWhatTheNumbersAre) {
  FMD_SetNodeCoordinates(body, 1, 10.0, 20.0, 30.0);
  set("megagram", "Millimeter", "SECOND", "NEWTON");
  EXPECT_EQ(labels(), (std::vector<std::string>{"MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON"}));
  double xyz[3];
  ASSERT_EQ(FMD_NodeCoordinates(body, 0, xyz), 1);
  EXPECT_EQ(xyz[1], 20.0);
  EXPECT_EQ(FMD_Length2Meter(body, 20.0), 20.0 * 0.001);
  EXPECT_EQ(FMD_Mass2Kilogram(body, 3.0), 3000.0);
  EXPECT_EQ(FMD_Time2Second(body, 3.0), 3.0);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Units, ConsistencyFactorByHand) {
  EXPECT_EQ(FMD_UCF(body), 1.0);
  set("MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON");
  EXPECT_DOUBLE_EQ(FMD_UCF(body), 1.0);  // 1 N s^2 = 1e-3 Mg 1e3 mm
}

TEST_F(Units, KilogramMillimetreNeedsAFactor) {
  set("KILOGRAM", "MILLIMETER", "MILLISECOND", "NEWTON");
  EXPECT_DOUBLE_EQ(FMD_UCF(body), 1e-3);  // 1e-6 / (1e-3 1)
}

TEST_F(Units, AnyUnknownLabelLeavesAllAsTheyWere) {
  set("KILOGRAM", "METER", "SECOND", "OX");
  set("FURLONG", "METER", "SECOND", "NEWTON");
  EXPECT_STREQ(body->MassUnit, "");
  EXPECT_EQ(labels(), kDefaults);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Units, TheSameUnitsAgainAreNoChange) {
  set("KILOGRAM", "METER", "SECOND", "NEWTON");
  set("kilogram", "meter", "second", "newton");
  EXPECT_TRUE(log.all.empty());
  for (const double factor : body->UnitTotalFactor) EXPECT_EQ(factor, 1.0);
}

TEST_F(Units, AChangeScalesWhatTheBodyHolds) {
  set("KILOGRAM", "METER", "SECOND", "NEWTON");
  FMD_SetNodeCoordinates(body, 1, 10.0, 20.0, 30.0);
  FMD_AddNodalMass(body, 1, 2.0);
  set("GRAM", "CENTIMETER", "SECOND", "NEWTON");
  double xyz[3];
  ASSERT_EQ(FMD_NodeCoordinates(body, 0, xyz), 1);
  EXPECT_DOUBLE_EQ(xyz[1], 2000.0);
  EXPECT_DOUBLE_EQ(body->Nodes[0].Mass, 2000.0);
  EXPECT_DOUBLE_EQ(body->UnitTotalFactor[fmd::kMass], 1000.0);
  EXPECT_DOUBLE_EQ(body->UnitTotalFactor[fmd::kLength], 100.0);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Units, SizesOnSiFindTheirLabels) {
  FMD_SetUnitsByMultiplierOnSI(body, 1000.0, 0.001, 1.0, 1.0);
  EXPECT_EQ(labels(), (std::vector<std::string>{"MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON"}));
  FMD_SetUnitsByMultiplierOnSI(body, 1.0, 1.0, 1.0, 1.5);
  EXPECT_EQ(labels(), (std::vector<std::string>{"MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON"}));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Units, UnknownStoredLabelsMakeZero) {
  std::snprintf(body->LengthUnit, sizeof body->LengthUnit, "OXGANG");
  EXPECT_EQ(FMD_UCF(body), 0.0);
  EXPECT_EQ(FMD_Length2Meter(body, 5.0), 0.0);
  std::snprintf(body->LengthUnit, sizeof body->LengthUnit, "METER");
  std::snprintf(body->ForceUnit, sizeof body->ForceUnit, "OXEN");
  EXPECT_EQ(FMD_UCF(body), 0.0);
}

TEST_F(Units, ConversionScalesInPlace) {
  double values[3] = {1.0, -2.0, 4.0};
  EXPECT_EQ(FMD_Convert_Units(values, 2, 0.5), values);
  EXPECT_EQ(values[0], 0.5);
  EXPECT_EQ(values[1], -1.0);
  EXPECT_EQ(values[2], 4.0);
  FMD_Convert_Units(values, 0, 7.0);
  FMD_Convert_Units(values, -1, 7.0);
  EXPECT_EQ(values[0], 0.5);
}

TEST_F(Units, LookupsReachTheTables) {
  EXPECT_EQ(FMD_UnitsDivider("mil", fmd::length_units), 0.001);
  EXPECT_EQ(FMD_UnitsLabel(1000.05, fmd::mass_units), fmd::mass_units[0].label);
}

TEST_F(Units, ANullBodyIsAnsweredSilently) {
  char text[4][16] = {"a", "b", "c", "d"};
  FMD_Units(nullptr, text[0], text[1], text[2], text[3]);
  EXPECT_STREQ(text[0], "a");
  char label[] = "METER";
  FMD_SetUnits(nullptr, label, label, label, label);
  EXPECT_EQ(FMD_UCF(nullptr), 0.0);
  EXPECT_EQ(FMD_Mass2Kilogram(nullptr, 1.0), 0.0);
  EXPECT_EQ(FMD_Length2Meter(nullptr, 1.0), 0.0);
  EXPECT_EQ(FMD_Time2Second(nullptr, 1.0), 0.0);
  EXPECT_EQ(FMD_Force2Newton(nullptr, 1.0), 0.0);
  EXPECT_TRUE(log.all.empty());
}

}  // namespace
