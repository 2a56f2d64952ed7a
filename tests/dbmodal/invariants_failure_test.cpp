// Every allocation of the invariants fails once: null or 0, no leak, and a body that gives right values
// after.
#include <gtest/gtest.h>

#include <functional>

#include "dbmodal/dbinvar/invariant_sets.h"
#include "dbmodal/invariants_model.h"
#include "messages/memory.h"

namespace {

using fmdtest::InvariantsModel;

class InvariantFailures : public fmdtest::InvariantsTest {
 protected:
  // Fails each allocation of an action in turn, each time on a fresh body. The action answers what it found,
  // empty where it failed. What a body finds in the end must be what an unharmed body finds.
  void sweep(const std::function<std::vector<double>(FmdBody*)>& action, bool keep, bool reports) {
    const InvariantsModel model = InvariantsModel::random(7, 3);
    FmdBody* unharmed = make_body(model);
    const std::vector<double> expected = action(unharmed);
    ASSERT_FALSE(expected.empty());
    int failures = 0;
    for (long nth = 1;; ++nth) {
      FmdBody* body = make_body(model);
      FMD_SetKeepModesInMemory(body, keep ? 1 : 0);
      fmd::fail_allocation(nth);
      const std::vector<double> found = action(body);
      const bool failed = fmd::allocation_has_failed();
      fmd::fail_allocation(0);
      if (found.empty()) {
        ++failures;
        EXPECT_TRUE(!reports || !log.errors.empty()) << nth;
      } else {
        EXPECT_EQ(found, expected) << nth;
      }
      EXPECT_EQ(action(body), expected) << nth;
      FMD_UnLink(body);
      if (!failed) break;
    }
    EXPECT_GE(failures, 2);
  }
};

TEST_F(InvariantFailures, GettersOfModes) {
  for (const bool keep : {true, false}) {
    sweep([](FmdBody* body) { return taken(FMD_Invar3(body), 9); }, keep, true);
    sweep([](FmdBody* body) { return taken(FMD_Invar4(body), 9); }, keep, true);
    sweep([](FmdBody* body) { return taken(FMD_Invar8(body, 1), 9); }, keep, true);
  }
}

TEST_F(InvariantFailures, GettersOfPairs) {
  for (const bool keep : {true, false}) {
    sweep([](FmdBody* body) { return taken(FMD_Invar5(body, 1), 9); }, keep, false);
    sweep([](FmdBody* body) { return taken(FMD_Invar9(body, 1, 2), 9); }, keep, false);
  }
}

TEST_F(InvariantFailures, TheSweepOverPairsSaysNothingOfItsOwn) {
  const InvariantsModel model = InvariantsModel::random(7, 3);
  FmdBody* body = make_body(model);
  FMD_SetKeepModesInMemory(body, 0);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_Invar9(body, 0, 0), nullptr);
  fmd::fail_allocation(0);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantFailures, TheGeneralizedMass) {
  sweep([](FmdBody* body) { return taken(FMD_Invar6(body), 9); }, true, false);
}

TEST_F(InvariantFailures, Setters) {
  const InvariantsModel model = InvariantsModel::random(7, 3);
  const int mode = model.modes[0].number;
  double values[9] = {0.5, 0, 0, 0, 0, 0, 0, 0, 0};
  const std::function<int(FmdBody*)> setters[] = {
      [&](FmdBody* body) { return FMD_SetInvar3(body, mode, values); },
      [&](FmdBody* body) { return FMD_SetInvar4(body, mode, values); },
      [&](FmdBody* body) { return FMD_SetInvar5(body, mode, model.modes[1].number, values); },
      [&](FmdBody* body) { return FMD_SetInvar8(body, mode, values); },
      [&](FmdBody* body) { return FMD_SetInvar9(body, mode, mode, values); }};
  for (const auto& setter : setters) {
    for (long nth = 1;; ++nth) {
      FmdBody* body = make_body(model);
      fmd::fail_allocation(nth);
      const int result = setter(body);
      const bool failed = fmd::allocation_has_failed();
      fmd::fail_allocation(0);
      EXPECT_EQ(result, failed ? 0 : 1);
      EXPECT_EQ(setter(body), 1);
      FMD_UnLink(body);
      if (!failed) break;
      ASSERT_EQ(log.errors.size(), 1U);
      EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors[0], "dbinvar"));
    }
  }
}

// A cache that cannot grow keeps what it has.
TEST_F(InvariantFailures, GrowingWithTheModes) {
  const InvariantsModel model = InvariantsModel::random(7, 3);
  const std::function<std::vector<double>(FmdBody*)> getters[] = {
      [](FmdBody* body) { return taken(FMD_Invar3(body), 3 * static_cast<std::size_t>(body->ModeCount)); },
      [](FmdBody* body) { return taken(FMD_Invar4(body), 3 * static_cast<std::size_t>(body->ModeCount)); },
      [](FmdBody* body) { return taken(FMD_Invar5(body, 1), 3 * static_cast<std::size_t>(body->ModeCount)); },
      [](FmdBody* body) { return taken(FMD_Invar8(body, 1), 9); },
      [](FmdBody* body) { return taken(FMD_Invar9(body, 1, 2), 9); }};
  for (const auto& getter : getters) {
    FmdBody* body = make_body(model);
    getter(body);
    FMD_AddMode(body, 1000);
    log.clear();
    fmd::fail_allocation(1);
    EXPECT_TRUE(getter(body).empty());
    fmd::fail_allocation(0);
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors[0], "dbinvar"));
    EXPECT_FALSE(getter(body).empty());
  }
}

TEST_F(InvariantFailures, Sets) {
  const InvariantsModel model = InvariantsModel::random(7, 3);
  for (long nth = 1;; ++nth) {
    FmdBody* body = make_body(model);
    fmd::fail_allocation(nth);
    fmd::compute_full_invariants(body);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    EXPECT_EQ(taken(FMD_Invar9(body, 1, 2), 9).size(), 9U);
    FMD_UnLink(body);
    if (!failed) break;
  }
}

}  // namespace
