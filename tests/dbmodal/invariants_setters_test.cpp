// Setting the invariants that have one entry per mode or per pair of modes.
#include <gtest/gtest.h>

#include <cmath>
#include <regex>

#include "dbmodal/invariants_model.h"

namespace {

using fmdtest::Nine;
using fmdtest::Three;

class InvariantSetters : public fmdtest::InvariantsTest {
 protected:
  // Modes 3, 8 and 5 in this order.
  void SetUp() override {
    body = FMD_Create(1, 6);
    for (const int number : {3, 8, 5}) FMD_AddMode(body, number);
    log.clear();
  }

  void expect_unknown_mode(int number) {
    ASSERT_EQ(log.errors.size(), 1U);
    const std::regex text("Mode number " + std::to_string(number) +
                          " does not exist\\.  Requested at line \\d+ in file dbinvar\\.\n");
    EXPECT_TRUE(std::regex_match(log.errors[0], text)) << log.errors[0];
    log.clear();
  }

  FmdBody* body = nullptr;
  double three[3] = {1.5, -2.5, 3.5};
  double nine[9] = {1, 2, 3, 2, 4, 5, 3, 5, 6};
};

TEST_F(InvariantSetters, FillAColumnLeaveOthersZeroAndMarkTheBlock) {
  ASSERT_EQ(FMD_Exists(body, 20), 0);
  EXPECT_EQ(FMD_SetInvar3(body, 8, three), 1);
  EXPECT_EQ(FMD_SetInvar4(body, 5, three), 1);
  EXPECT_EQ(FMD_SetInvar8(body, 3, nine), 1);
  EXPECT_EQ(FMD_Exists(body, 20), 1);
  EXPECT_EQ(FMD_Exists(body, 21), 1);
  EXPECT_EQ(FMD_Exists(body, 24), 1);
  EXPECT_EQ(taken(FMD_Invar3(body), 9), (std::vector<double>{0, 1.5, 0, 0, -2.5, 0, 0, 3.5, 0}));
  EXPECT_EQ(taken(FMD_Invar4(body), 9), (std::vector<double>{0, 0, 1.5, 0, 0, -2.5, 0, 0, 3.5}));
  EXPECT_EQ(taken(FMD_Invar8(body, 0), 9), std::vector<double>(nine, nine + 9));
  EXPECT_EQ(taken(FMD_Invar8(body, 1), 9), std::vector<double>(9, 0.0));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantSetters, AnInvariantSetInPartIsNeverComputed) {
  const fmdtest::InvariantsModel model = fmdtest::InvariantsModel::random(4, 3);
  FmdBody* full = make_body(model);
  FMD_SetInvar3(full, model.modes[0].number, three);
  EXPECT_EQ(column(taken(FMD_Invar3(full), 9), 1), Three{});
}

TEST_F(InvariantSetters, FollowModesThatAreAddedLater) {
  FMD_SetInvar3(body, 3, three);
  FMD_SetInvar5(body, 3, 5, three);
  FMD_SetInvar8(body, 3, nine);
  FMD_SetInvar9(body, 3, 8, nine);
  FMD_AddMode(body, 11);
  FMD_SetInvar3(body, 11, three);
  FMD_SetInvar5(body, 3, 11, three);
  FMD_SetInvar8(body, 11, nine);
  FMD_SetInvar9(body, 11, 3, nine);
  EXPECT_EQ(taken(FMD_Invar3(body), 12),
            (std::vector<double>{1.5, 0, 0, 1.5, -2.5, 0, 0, -2.5, 3.5, 0, 0, 3.5}));
  EXPECT_EQ(taken(FMD_Invar5(body, 0), 12),
            (std::vector<double>{0, 0, 1.5, 1.5, 0, 0, -2.5, -2.5, 0, 0, 3.5, 3.5}));
  EXPECT_EQ(taken(FMD_Invar8(body, 0), 9), taken(FMD_Invar8(body, 3), 9));
  EXPECT_EQ(taken(FMD_Invar9(body, 0, 1), 9), std::vector<double>(nine, nine + 9));
  EXPECT_EQ(taken(FMD_Invar9(body, 3, 0), 9), std::vector<double>(nine, nine + 9));
}

TEST_F(InvariantSetters, FifthStoresTheNegativeForThePairInReverse) {
  EXPECT_EQ(FMD_SetInvar5(body, 3, 5, three), 1);
  EXPECT_EQ(FMD_Exists(body, 22), 1);
  EXPECT_EQ(taken(FMD_Invar5(body, 0), 9), (std::vector<double>{0, 0, 1.5, 0, 0, -2.5, 0, 0, 3.5}));
  EXPECT_EQ(taken(FMD_Invar5(body, 2), 9), (std::vector<double>{-1.5, 0, 0, 2.5, 0, 0, -3.5, 0, 0}));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantSetters, FifthOfAModeWithItselfWarnsUnlessZeroAndKeepsTheNegative) {
  double small[3] = {1e-8, -1e-8, 0.0};
  EXPECT_EQ(FMD_SetInvar5(body, 3, 3, small), 1);
  EXPECT_TRUE(log.all.empty());
  double large[3] = {0.0, 2e-8, 0.0};
  EXPECT_EQ(FMD_SetInvar5(body, 3, 3, large), 1);
  EXPECT_EQ(log.warnings, std::vector<std::string>{
                              "I5(3, 3) is not zero.\n   (0.00000000e+00, 2.00000000e-08, 0.00000000e+00)"});
  EXPECT_EQ(column(taken(FMD_Invar5(body, 0), 9), 0), (Three{0.0, -2e-8, 0.0}));
  log.clear();
  large[1] = -2e-8;
  FMD_SetInvar5(body, 8, 8, large);
  EXPECT_EQ(log.warnings.size(), 1U);
}

TEST_F(InvariantSetters, NinthStoresTheTransposeForThePairInReverse) {
  double tensor[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  EXPECT_EQ(FMD_SetInvar9(body, 5, 3, tensor), 1);
  EXPECT_EQ(FMD_Exists(body, 25), 1);
  EXPECT_EQ(taken(FMD_Invar9(body, 2, 0), 9), std::vector<double>(tensor, tensor + 9));
  EXPECT_EQ(taken(FMD_Invar9(body, 0, 2), 9), (std::vector<double>{1, 4, 7, 2, 5, 8, 3, 6, 9}));
  EXPECT_EQ(taken(FMD_Invar9(body, 1, 1), 9), std::vector<double>(9, 0.0));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantSetters, NinthOfAModeWithItselfWarnsUnlessSymmetricAndKeepsTheTranspose) {
  double tensor[9] = {1, 2, 3, 2.001, 4, 5, 3, 5, 6};
  EXPECT_EQ(FMD_SetInvar9(body, 3, 3, tensor), 1);
  EXPECT_EQ(
      log.warnings,
      std::vector<std::string>{
          "I9(3, 3) is not symmetric.\n   1.00000000e+00 2.00000000e+00 3.00000000e+00\n   2.00100000e+00 "
          "4.00000000e+00 5.00000000e+00\n   3.00000000e+00 5.00000000e+00 6.00000000e+00\n"});
  EXPECT_EQ(taken(FMD_Invar9(body, 0, 0), 9), (std::vector<double>{1, 2.001, 3, 2, 4, 5, 3, 5, 6}));
}

TEST_F(InvariantSetters, SymmetryIsRelativeAboveOneAndEachPairIsTested) {
  const auto warns = [&](int first, double a, int second, double b) {
    log.clear();
    double tensor[9] = {};
    tensor[first] = a;
    tensor[second] = b;
    EXPECT_EQ(FMD_SetInvar9(body, 3, 3, tensor), 1);
    return log.warnings.size();
  };
  EXPECT_EQ(warns(1, 1000.0, 3, 1000.0 + 5e-6), 0U);
  EXPECT_EQ(warns(1, -1000.0, 3, -1000.0 - 5e-6), 0U);
  EXPECT_EQ(warns(1, 1000.0, 3, 1000.0 + 2e-5), 1U);
  EXPECT_EQ(warns(2, 0.5, 6, 0.5 + 9e-9), 0U);
  EXPECT_EQ(warns(2, 0.5, 6, 0.5 + 2e-8), 1U);
  EXPECT_EQ(warns(5, 0.5, 7, 0.25), 1U);
  EXPECT_EQ(warns(5, -0.5, 7, 0.5), 1U);
  EXPECT_EQ(warns(5, std::nan(""), 7, 0.5), 1U);
}

TEST_F(InvariantSetters, RefuseUnknownModes) {
  EXPECT_EQ(FMD_SetInvar3(body, 4, three), 0);
  expect_unknown_mode(4);
  EXPECT_EQ(FMD_SetInvar4(body, -1, three), 0);
  expect_unknown_mode(-1);
  EXPECT_EQ(FMD_SetInvar5(body, 6, 7, three), 0);
  expect_unknown_mode(6);
  EXPECT_EQ(FMD_SetInvar5(body, 3, 7, three), 0);
  expect_unknown_mode(7);
  EXPECT_EQ(FMD_SetInvar8(body, 0, nine), 0);
  expect_unknown_mode(0);
  EXPECT_EQ(FMD_SetInvar9(body, 1, 3, nine), 0);
  expect_unknown_mode(1);
  EXPECT_EQ(FMD_SetInvar9(body, 3, 1, nine), 0);
  expect_unknown_mode(1);
  for (const int block : {20, 21, 22, 24, 25}) EXPECT_EQ(FMD_Exists(body, block), 0);
  EXPECT_EQ(FMD_ModeCount(body), 3);
}

TEST_F(InvariantSetters, SixthAddsOnesToTheGeneralizedMass) {
  double ones[3] = {1.0, 1.0, 1.0};
  EXPECT_EQ(FMD_SetInvar6(body, ones), 1);
  EXPECT_EQ(FMD_SetInvar6(body, ones), 1);
  EXPECT_EQ(FMD_NumberOfGenMass(body), 6);
  EXPECT_EQ(FMD_Exists(body, 12), 1);
  EXPECT_EQ(body->GenMassCapacity, 100);
  EXPECT_EQ(taken(FMD_Invar6(body), 9), (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantSetters, SixthMustBeExactlyOne) {
  for (const double bad : {1.00000001, 0.0, std::nan("")}) {
    const int entries = body->GenMassCount;
    double diagonal[3] = {1.0, bad, 1.0};
    EXPECT_EQ(FMD_SetInvar6(body, diagonal), 0);
    EXPECT_EQ(body->GenMassCount, entries + 1);
  }
  EXPECT_EQ(log.errors, std::vector<std::string>(3, "Inertia Invariant 6 must be an identity matrix."));
}

TEST_F(InvariantSetters, SixthOfABodyWithoutModesSucceeds) {
  FmdBody* empty = FMD_Create(1, 1);
  EXPECT_EQ(FMD_SetInvar6(empty, nullptr), 1);
  EXPECT_EQ(FMD_NumberOfGenMass(empty), 0);
}

TEST_F(InvariantSetters, RefuseANullBodyWithOneMessageEach) {
  EXPECT_EQ(FMD_SetInvar3(nullptr, 1, three), 0);
  EXPECT_EQ(FMD_SetInvar4(nullptr, 1, three), 0);
  EXPECT_EQ(FMD_SetInvar5(nullptr, 1, 1, three), 0);
  EXPECT_EQ(FMD_SetInvar6(nullptr, three), 0);
  EXPECT_EQ(FMD_SetInvar8(nullptr, 1, nine), 0);
  EXPECT_EQ(FMD_SetInvar9(nullptr, 1, 1, nine), 0);
  EXPECT_EQ(log.errors, std::vector<std::string>(6, "The database has not been initialized."));
}

}  // namespace
