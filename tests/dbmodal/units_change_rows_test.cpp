// Every number of a body, converted, against a body that was built in the new units.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "body/body.h"
#include "dbmodal/units_change_model.h"
#include "services/units.h"

namespace fmdtest {

namespace {

constexpr double kRounding = 1e-13;

struct Case {
  const char* name;
  ModelOptions options;
};

ModelOptions with(void (*change)(ModelOptions&)) {
  ModelOptions options;
  change(options);
  return options;
}

const std::vector<Case> kCases = {
    {"Plain", {}},
    {"ProcessedLoads", with([](ModelOptions& o) { o.processed_loads = true; })},
    {"ProcessedLoadsWithTwoRigidModes", with([](ModelOptions& o) {
       o.processed_loads = true;
       o.rigid_modes = 2;
     })},
    {"ProcessedLoadsWithoutRigidModes", with([](ModelOptions& o) {
       o.processed_loads = true;
       o.rigid_modes = 0;
     })},
    {"AxisDamping", with([](ModelOptions& o) { o.axis_damping = true; })},
    {"ModeRecords", with([](ModelOptions& o) { o.mode_records = true; })},
    {"ProcessedLoadsWithModeRecords", with([](ModelOptions& o) {
       o.mode_records = true;
       o.processed_loads = true;
     })},
    {"InvariantsFromTheNodes", with([](ModelOptions& o) { o.invariants = false; })},
    {"CachedModes", with([](ModelOptions& o) { o.keep_modes = true; })},
};

class ChangeOfUnits : public SessionTest, public ::testing::WithParamInterface<Case> {
 protected:
  Picture in(const UnitSystem& units) { return picture_of(make_body_in(units, GetParam().options)); }

  // From SI with everything looked at before, so that all that can be in memory is.
  Picture converted_to(const UnitSystem& units) {
    FmdBody* const body = make_body_in(kSi, GetParam().options);
    picture_of(body);
    units.set_on(body);
    return picture_of(body);
  }

  // With nothing looked at before, so that all is fetched and worked out afterwards.
  Picture untouched_converted_to(const UnitSystem& units) {
    FmdBody* const body = make_body_in(kSi, GetParam().options);
    units.set_on(body);
    return picture_of(body);
  }
};

INSTANTIATE_TEST_SUITE_P(Of, ChangeOfUnits, ::testing::ValuesIn(kCases),
                         [](const auto& instance) { return std::string(instance.param.name); });

TEST_P(ChangeOfUnits, OfOneQuantityIsThatOfTheDimension) {
  for (const char* quantity : {"force", "length", "mass", "time"}) {
    SCOPED_TRACE(quantity);
    const Picture expected = in(si_but_for(quantity));
    expect_same_picture(converted_to(si_but_for(quantity)), expected, kRounding);
    expect_same_picture(untouched_converted_to(si_but_for(quantity)), expected, kRounding);
    if (HasFailure()) return;
  }
  EXPECT_EQ(log.errors, std::vector<std::string>{});
}

TEST_P(ChangeOfUnits, OfAllFourIsThatOfTheDimension) {
  expect_same_picture(converted_to(kOdd), in(kOdd), kRounding);
  expect_same_picture(untouched_converted_to(kOdd), in(kOdd), kRounding);
}

// Else a row that is left out could pass for one without dimension.
TEST_P(ChangeOfUnits, MovesEveryNumberThatHasAUnit) {
  const Picture before = in(kSi);
  for (const auto& [name, values] : converted_to(kOdd)) {
    SCOPED_TRACE(name);
    double largest = 0.0;
    double difference = 0.0;
    for (std::size_t i = 0; i < values.size(); ++i) {
      largest = std::max(largest, std::fabs(values[i]));
      difference = std::max(difference, std::fabs(values[i] - before.at(name)[i]));
    }
    const bool is_operator = name.rfind("operator", 0) == 0;
    const bool is_pure =
        name.find("strain") != std::string::npos || name == "mode shape second" || name == "largest rotation";
    EXPECT_GT(largest, 0.0);
    if (is_pure) {
      EXPECT_EQ(difference, 0.0);
    } else if (!is_operator) {
      EXPECT_GT(difference, 1e-3 * largest);
    }
  }
}

TEST_P(ChangeOfUnits, ARandomWalkComesBackToWhereItBegan) {
  if (GetParam().options.processed_loads) return;  // which modes count as rigid depends on the unit of time
  std::mt19937 random(7);
  const auto pick = [&](const FmdUnit* table) {
    int count = 0;
    while (table[count].label != nullptr) ++count;
    return std::string(table[std::uniform_int_distribution<int>(0, count - 1)(random)].label);
  };
  FmdBody* const body = make_body_in(kOdd, GetParam().options);
  const Picture before = picture_of(body);
  for (int step = 0; step < 20; ++step) {
    UnitSystem units = kOdd;
    units.mass = pick(fmd::mass_units);
    units.length = pick(fmd::length_units);
    units.time = pick(fmd::time_units);
    units.force = pick(fmd::force_units);
    units.set_on(body);
    EXPECT_EQ(units.mass, body->MassUnit);
    if (step % 5 == 0) picture_of(body);
  }
  kOdd.set_on(body);
  expect_same_picture(picture_of(body), before, 1e-12);
  for (const double total : body->UnitTotalFactor) EXPECT_NEAR(total, 1.0, 1e-13);
}

}  // namespace

}  // namespace fmdtest
