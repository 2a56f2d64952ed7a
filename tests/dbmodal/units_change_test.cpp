// When units change and when they stay, and what of a body is left alone.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "body/body.h"
#include "dbmodal/units_change_model.h"
#include "messages/memory.h"
#include "services/units.h"

namespace fmdtest {

namespace {

using Strings = std::vector<std::string>;

class UnitsChange : public SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(4, 2);
    ASSERT_NE(body, nullptr);
    FMD_SetNodeCoordinates(body, 1, 10.0, 20.0, 30.0);
    FMD_SetNodalMass(body, 1, 4.0);
    log.clear();
  }

  void TearDown() override {
    EXPECT_EQ(log.all, Strings{});
    SessionTest::TearDown();
  }

  void set(std::string mass, std::string length, std::string time, std::string force) const {
    FMD_SetUnits(body, mass.data(), length.data(), time.data(), force.data());
  }

  void set_si() const { set("KILOGRAM", "METER", "SECOND", "NEWTON"); }

  Strings stored() const { return {body->MassUnit, body->LengthUnit, body->TimeUnit, body->ForceUnit}; }

  static std::vector<double> four(const double* factors) { return {factors, factors + 4}; }

  double x() const {
    double xyz[3] = {};
    FMD_NodeCoordinates(body, 0, xyz);
    return xyz[0];
  }

  void expect_untouched(const Strings& labels) const {
    EXPECT_EQ(stored(), labels);
    EXPECT_EQ(x(), 10.0);
    EXPECT_EQ(FMD_NodalMass(body, 0), 4.0);
    EXPECT_EQ(four(body->UnitStepFactor), (std::vector<double>{1.0, 1.0, 1.0, 1.0}));
    EXPECT_EQ(four(body->UnitTotalFactor), (std::vector<double>{1.0, 1.0, 1.0, 1.0}));
  }

  FmdBody* body = nullptr;
};

const Strings kSiLabels = {"KILOGRAM", "METER", "SECOND", "NEWTON"};

TEST_F(UnitsChange, ABodyWithoutLabelsOnlyLearnsThem) {
  set("GRAM", "MILLIMETER", "HOUR", "DYNE");
  expect_untouched({"GRAM", "MILLIMETER", "HOUR", "DYNE"});
}

TEST_F(UnitsChange, TheFirstLabelsPutTheFactorsBackToOne) {
  body->UnitStepFactor[fmd::kTime] = 3.0;
  body->UnitTotalFactor[fmd::kMass] = 2.0;
  set_si();
  expect_untouched(kSiLabels);
}

TEST_F(UnitsChange, TheSameLabelsInAnyCaseChangeNothing) {
  set_si();
  set("GRAM", "MILLIMETER", "SECOND", "NEWTON");
  const auto steps = four(body->UnitStepFactor);
  const auto totals = four(body->UnitTotalFactor);
  set("gram", "Millimeter", "second", "newton");
  EXPECT_EQ(four(body->UnitStepFactor), steps);
  EXPECT_EQ(four(body->UnitTotalFactor), totals);
  EXPECT_EQ(x(), 10.0 * (1.0 / 0.001));
}

TEST_F(UnitsChange, FactorsAreInTheOrderForceLengthMassTime) {
  set_si();
  set("GRAM", "KILOMETER", "MINUTE", "KNEWTON");
  const std::vector<double> expected = {1.0 / 1000.0, 1.0 / 1000.0, 1.0 / 0.001, 1.0 / 60.0};
  EXPECT_EQ(four(body->UnitStepFactor), expected);
  EXPECT_EQ(four(body->UnitTotalFactor), expected);
  EXPECT_EQ(FMD_NodalMass(body, 0), 4.0 * (1.0 / 0.001));
}

TEST_F(UnitsChange, TotalsAreTheRoundedProductOfTheSteps) {
  set("KILOGRAM", "INCH", "SECOND", "NEWTON");
  set("KILOGRAM", "MILLIMETER", "SECOND", "NEWTON");
  set("KILOGRAM", "FOOT", "SECOND", "NEWTON");
  EXPECT_EQ(body->UnitTotalFactor[fmd::kLength], 0.0254 / 0.001 * (0.001 / 0.3048));
  set("KILOGRAM", "INCH", "SECOND", "NEWTON");
  EXPECT_EQ(body->UnitTotalFactor[fmd::kLength], 0.0254 / 0.001 * (0.001 / 0.3048) * (0.3048 / 0.0254));
  EXPECT_EQ(body->UnitStepFactor[fmd::kLength], 0.3048 / 0.0254);
}

TEST_F(UnitsChange, ThereAndBackLeavesTheProductOfBothSteps) {
  set_si();
  set("KILOGRAM", "MILLIMETER", "SECOND", "NEWTON");
  set_si();
  EXPECT_EQ(body->UnitTotalFactor[fmd::kLength], 1.0 / 0.001 * (0.001 / 1.0));
  EXPECT_EQ(body->UnitStepFactor[fmd::kLength], 0.001);
}

TEST_F(UnitsChange, AnyLabelThatIsNoneLeavesAllAsItWas) {
  set_si();
  set("FURLONG", "MILLIMETER", "HOUR", "DYNE");
  set("GRAM", "FURLONG", "HOUR", "DYNE");
  set("GRAM", "MILLIMETER", "FURLONG", "DYNE");
  set("GRAM", "MILLIMETER", "HOUR", "FURLONG");
  set("GRAM", "", "HOUR", "DYNE");
  expect_untouched(kSiLabels);
}

TEST_F(UnitsChange, ALabelOfAnotherQuantityLeavesAllAsItWas) {
  set_si();
  set("METER", "METER", "SECOND", "NEWTON");
  set("KILOGRAM", "HOUR", "SECOND", "NEWTON");
  set("KILOGRAM", "METER", "NEWTON", "NEWTON");
  set("KILOGRAM", "METER", "SECOND", "GRAM");
  expect_untouched(kSiLabels);
}

TEST_F(UnitsChange, AStoredLabelThatNoTableKnowsRefusesEveryChange) {
  set_si();
  for (char* label : {body->MassUnit, body->LengthUnit, body->TimeUnit, body->ForceUnit}) {
    const std::string before = label;
    std::snprintf(label, 16, "OXGANG");
    const Strings labels = stored();
    set("GRAM", "MILLIMETER", "HOUR", "DYNE");
    FMD_SetUnitsByMultiplierOnSI(body, 0.001, 0.001, 60.0, 1e-5);
    expect_untouched(labels);
    std::snprintf(label, 16, "%s", before.c_str());
  }
}

TEST_F(UnitsChange, AStoredLabelThatIsEmptyBesideOthersCountsAsSi) {
  std::snprintf(body->TimeUnit, 16, "SECOND");
  set("GRAM", "METER", "SECOND", "NEWTON");
  EXPECT_EQ(FMD_NodalMass(body, 0), 4.0 * (1.0 / 0.001));
  EXPECT_EQ(stored(), (Strings{"GRAM", "METER", "SECOND", "NEWTON"}));
}

TEST_F(UnitsChange, LongLabelsAreCutAtFifteenCharacters) {
  set_si();
  set("KILOGRAM", "METER", "SECOND", "KILOGRAM_FORCE_OF_THE_EARTH");
  expect_untouched(kSiLabels);
}

// A label stands for the first entry that begins with it.
TEST_F(UnitsChange, TheMilCountsAsMillimetre) {
  set_si();
  set("KILOGRAM", "MIL", "SECOND", "NEWTON");
  EXPECT_STREQ(body->LengthUnit, "MIL");
  EXPECT_EQ(x(), 10.0 * (1.0 / 0.001));
}

TEST_F(UnitsChange, BySizesFindsTheLabels) {
  FMD_SetUnitsByMultiplierOnSI(body, 1.0, 1.0, 1.0, 1.0);
  expect_untouched(kSiLabels);
  FMD_SetUnitsByMultiplierOnSI(body, 14.5940, 0.30481, 59.999, 4.4482);
  EXPECT_EQ(stored(), (Strings{"SLUG", "FOOT", "MINUTE", "POUND_FORCE"}));
  EXPECT_EQ(body->UnitStepFactor[fmd::kLength], 1.0 / 0.3048);
  EXPECT_EQ(body->UnitStepFactor[fmd::kMass], 1.0 / 14.593902937206366);
}

TEST_F(UnitsChange, BySizesThatNoTableKnowsChangesNothing) {
  set_si();
  constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
  for (const double size : {0.0, -1.0, 1.0002, 2.0, 1e300, kNan}) {
    FMD_SetUnitsByMultiplierOnSI(body, size, 0.001, 60.0, 1e-5);
    FMD_SetUnitsByMultiplierOnSI(body, 0.001, size, 60.0, 1e-5);
    FMD_SetUnitsByMultiplierOnSI(body, 0.001, 0.001, size, 1e-5);
    FMD_SetUnitsByMultiplierOnSI(body, 0.001, 0.001, 60.0, size);
  }
  expect_untouched(kSiLabels);
}

TEST_F(UnitsChange, ANullBodyIsPassedOver) {
  char label[] = "METER";
  FMD_SetUnits(nullptr, label, label, label, label);
  FMD_SetUnitsByMultiplierOnSI(nullptr, 1.0, 1.0, 1.0, 1.0);
  FMD_ScaleDatabase(nullptr);
}

TEST_F(UnitsChange, TheSizeOfTheBodyStaysAsItWasWorkedOut) {
  int face[] = {1, 2};
  FMD_SetNodeCoordinates(body, 2, 13.0, 24.0, 30.0);
  FMD_SetFaceList(body, 2, face);
  set_si();
  EXPECT_EQ(FMD_BodySize(body), 5.0);
  set("KILOGRAM", "MILLIMETER", "SECOND", "NEWTON");
  EXPECT_EQ(FMD_BodySize(body), 5.0);
}

TEST_F(UnitsChange, ScalingAgainAppliesTheLatestStepsAndNoLabels) {
  FMD_ScaleDatabase(body);
  expect_untouched({"", "", "", ""});
  set_si();
  set("KILOGRAM", "CENTIMETER", "SECOND", "NEWTON");
  FMD_ScaleDatabase(body);
  EXPECT_EQ(x(), 10.0 * (1.0 / 0.01) * (1.0 / 0.01));
  EXPECT_EQ(body->UnitTotalFactor[fmd::kLength], 1.0 / 0.01);
  EXPECT_STREQ(body->LengthUnit, "CENTIMETER");
}

class UnitsChangeOfModes : public UnitsChange {
 protected:
  void SetUp() override {
    UnitsChange::SetUp();
    set_si();
    for (int type = 0; type < 3; ++type) FMD_SetMode(body, 1, 1, type, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    FMD_SetMode(body, 0, 1, 1, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
    log.clear();
  }

  std::vector<double> half(int mode, int type, int part) const {
    std::vector<double> values(3);
    EXPECT_EQ(FMD_Mode(body, mode, type, values.data(), part), 1);
    return values;
  }

  using Doubles = std::vector<double>;
};

TEST_F(UnitsChangeOfModes, HeldInMemoryAreFetchedAnew) {
  FMD_SetKeepModesInMemory(body, 1);
  EXPECT_EQ(half(1, 0, 0), (Doubles{1.0, 2.0, 3.0}));
  EXPECT_EQ(half(1, 1, 0), (Doubles{1.0, 2.0, 3.0}));
  EXPECT_EQ(body->ModeMemoryUsed, 2);
  set("KILOGRAM", "KILOMETER", "SECOND", "KNEWTON");
  EXPECT_EQ(body->ModeMemoryUsed, 0);
  EXPECT_EQ(body->ModeMemoryCapacity, 0);
  for (const int index : body->LoadedModeIndex) EXPECT_EQ(index, -1);
  const double length = 1.0 / 1000.0;
  EXPECT_EQ(half(1, 0, 0), (Doubles{length, 2.0 * length, 3.0 * length}));
  EXPECT_EQ(half(1, 0, 1), (Doubles{4.0, 5.0, 6.0}));
  const double stress = length / length / length;
  EXPECT_EQ(half(1, 1, 0), (Doubles{stress, 2.0 * stress, 3.0 * stress}));
  EXPECT_EQ(half(1, 1, 1), (Doubles{4.0 * stress, 5.0 * stress, 6.0 * stress}));
  EXPECT_EQ(half(1, 2, 0), (Doubles{1.0, 2.0, 3.0}));
  EXPECT_EQ(half(0, 1, 0), (Doubles{stress, 2.0 * stress, 3.0 * stress}));
  EXPECT_EQ(body->PreStress[0], 1.0);
}

TEST_F(UnitsChangeOfModes, VectorsSetAfterwardsAreTakenInTheUnitsOfTheStore) {
  set("KILOGRAM", "KILOMETER", "SECOND", "NEWTON");
  const double length = 1.0 / 1000.0;
  FMD_SetMode(body, 1, 1, 0, 7.0, 8.0, 9.0, 4.0, 5.0, 6.0);
  EXPECT_EQ(half(1, 0, 0), (Doubles{7.0 * length, 8.0 * length, 9.0 * length}));
}

// Rows of present modes: with modes added since, an operator ends early.
TEST_F(UnitsChangeOfModes, AddedSinceAnOperatorWasSetHaveNoValuesInIt) {
  double location[3] = {1.0, 2.0, 3.0};
  char text[] = "P";
  FMD_SetMonitorPointInfo(body, 1, 1, 15, 1, location, text, text);
  double rows[2] = {1.0, 1.0};
  FMD_SetMonitorPointOperator(body, 0, 1, rows);
  FMD_AddMode(body, 2);
  set("KILOGRAM", "CENTIMETER", "SECOND", "NEWTON");
  double found[4] = {};
  EXPECT_EQ(FMD_GetMonitorPointOperator(body, 0, 1, found), 0);
  EXPECT_EQ(Doubles(found, found + 4), (Doubles{1.0 / 0.01, 1.0 / 0.01, 0.0, 0.0}));
}

// What a failed allocation left counted and empty.
TEST_F(UnitsChangeOfModes, PassesOverAMonitorPointAndAnEntryThatCouldNotBeHad) {
  double location[3] = {1.0, 2.0, 3.0};
  char text[] = "P";
  FMD_SetMonitorPointInfo(body, 1, 1, 1, 1, location, text, text);
  fmd::fail_allocation(1);
  FMD_SetMonitorPointInfo(body, 1, 1, 1, 1, location, text, text);
  EXPECT_EQ(FMD_GetMonitorPointCount(body), 2);
  for (int entry = 0; entry < 99; ++entry) {
    FMD_SetGeneralizedMass(body, 1, 1, 1.0);
    FMD_SetGeneralizedStiffness(body, 1, 1, 1.0);
    FMD_SetGeneralizedDamping(body, 1, 1, 1.0);
  }
  for (auto* set : {FMD_SetGeneralizedMass, FMD_SetGeneralizedStiffness, FMD_SetGeneralizedDamping}) {
    fmd::fail_allocation(1);
    EXPECT_EQ(set(body, 1, 1, 1.0), 0);
    fmd::fail_allocation(1);
    EXPECT_EQ(set(body, 1, 1, 1.0), 0);
  }
  log.clear();
  set("KILOGRAM", "CENTIMETER", "SECOND", "NEWTON");
  body->DampingOnPrincipalAxes = 1;
  set("KILOGRAM", "KILOMETER", "SECOND", "NEWTON");
  EXPECT_EQ(FMD_GetMonitorPointLocation(body, 0, location), 0);
  EXPECT_NEAR(location[2], 3e-3, 1e-15);
  EXPECT_NEAR(body->GenMass[98].Value, 1e-6, 1e-18);
}

TEST_F(UnitsChangeOfModes, MonitorPointsThatTheSummaryDoesNotNameStay) {
  double location[3] = {1.0, 2.0, 3.0};
  char text[] = "P";
  FMD_SetMonitorPointInfo(body, 1, 1, 1, 1, location, text, text);
  body->BlockExists[fmd::kMonitorPoints] = 0;
  set("KILOGRAM", "CENTIMETER", "SECOND", "NEWTON");
  FMD_GetMonitorPointLocation(body, 0, location);
  EXPECT_EQ(location[0], 1.0);
}

}  // namespace

}  // namespace fmdtest
