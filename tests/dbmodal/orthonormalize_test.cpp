#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

class OrthoNormalize : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(3, 4);
    ASSERT_NE(body, nullptr);
  }

  void add_mode(int number, double mass, double stiffness) const {
    FMD_SetGeneralizedMass(body, number, number, mass);
    FMD_SetGeneralizedStiffness(body, number, number, stiffness);
  }

  FmdBody* body = nullptr;
};

TEST_F(OrthoNormalize, UnitMassesGiveTheIdentityAndTheRecords) {
  add_mode(11, 1.0, 100.0);
  add_mode(4, 1.0, 400.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  double t[4];
  EXPECT_EQ(FMD_Transformation(body, t), 1);
  EXPECT_EQ((std::vector<double>(t, t + 4)), (std::vector<double>{1, 0, 0, 1}));
  EXPECT_EQ(FMD_ModeNumber(body, 0), 1);
  EXPECT_EQ(FMD_ModeNumber(body, 1), 2);
  EXPECT_EQ(body->TransformationModes[0], 11);
  EXPECT_EQ(body->TransformationModes[1], 4);
  double values[5];
  EXPECT_EQ(FMD_Eigenvalue(body, 2, &values[0], &values[1], &values[2], &values[3], &values[4]), 1);
  EXPECT_EQ(values[0], 400.0);
  EXPECT_DOUBLE_EQ(values[1], 20.0 / 6.28318530718);
  EXPECT_DOUBLE_EQ(values[2], 20.0);
  EXPECT_EQ(values[3], 1.0);
  EXPECT_EQ(values[4], 400.0);
  EXPECT_EQ(body->GenStiff, nullptr);
  EXPECT_EQ(body->GenMass, nullptr);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(OrthoNormalize, ASecondCallFindsTheBodyDone) {
  add_mode(5, 1.0, 9.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(body->TransformationModes[0], 5);
}

TEST_F(OrthoNormalize, FrequenciesFollowTheUnitsAndTheSign) {
  char labels[4][16] = {"KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"};
  FMD_SetUnits(body, labels[0], labels[1], labels[2], labels[3]);
  add_mode(1, 1.0, 4.0);
  add_mode(2, 1.0, -4.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  double radians = 0.0;
  FMD_Eigenvalue(body, 1, nullptr, nullptr, &radians, nullptr, nullptr);
  EXPECT_DOUBLE_EQ(radians, std::sqrt(4000.0));
  FMD_Eigenvalue(body, 2, nullptr, nullptr, &radians, nullptr, nullptr);
  EXPECT_DOUBLE_EQ(radians, -std::sqrt(4000.0));
}

TEST_F(OrthoNormalize, AZeroMassModeEndsTheActiveModes) {
  add_mode(1, 1.0, 1.0);
  add_mode(2, 0.0, 2.0);
  add_mode(3, 1.0, 3.0);
  body->ShouldMassNormalizeModes = 0;
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(log.warnings,
            std::vector<std::string>{"Mode 2 is not physically meaningful.\nIt is associated with a zero "
                                     "generalized mass\n"});
  EXPECT_EQ(FMD_ModeCount(body), 1);
  double t[1] = {0.0};
  EXPECT_EQ(FMD_Transformation(body, t), 1);
  EXPECT_EQ(t[0], 1.0);
  EXPECT_EQ(body->ModeRecords[1].Eigenvalue, 1.2345e+20);
}

TEST_F(OrthoNormalize, ABodyWithoutModesAnswersZeroSilently) {
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(body->Transformation, nullptr);
}

TEST_F(OrthoNormalize, WhatNeedsTheEigenproblemIsRefusedUnchanged) {
  add_mode(7, 1.0, 1.0);
  FMD_SetGeneralizedStiffness(body, 7, 8, 0.5);
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  EXPECT_EQ(log.errors,
            std::vector<std::string>{
                "Modes with off-diagonal generalized mass or stiffness cannot be orthonormalized yet."});
  EXPECT_EQ(FMD_ModeNumber(body, 0), 7);
  EXPECT_EQ(body->Transformation, nullptr);
}

TEST_F(OrthoNormalize, WhatNeedsNormalisationIsRefusedUnchanged) {
  add_mode(7, 1.5, 1.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  EXPECT_EQ(log.errors,
            std::vector<std::string>{"Modes with a generalized mass other than 1 cannot be normalized yet."});
  EXPECT_EQ(FMD_NumberOfGenMass(body), 1);
}

TEST_F(OrthoNormalize, EachFailedAllocationLeavesTheBodyAsItWas) {
  add_mode(3, 1.0, 1.0);
  for (long nth = 1;; ++nth) {
    fmd::fail_allocation(nth);
    const int result = FMD_OrthoNormalize(body);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) {
      EXPECT_EQ(result, 1);
      EXPECT_EQ(nth, 4);
      break;
    }
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.back(), "dbtools"));
    EXPECT_EQ(body->Transformation, nullptr);
    EXPECT_EQ(body->ModeRecords, nullptr);
    EXPECT_EQ(FMD_ModeNumber(body, 0), 3);
  }
}

TEST_F(OrthoNormalize, ANullBodyIsReported) {
  EXPECT_EQ(FMD_OrthoNormalize(nullptr), 0);
  EXPECT_EQ(log.errors, std::vector<std::string>{"The database has not been initialized."});
}

}  // namespace
