// Invariants 1, 2 and 7 and the global mass properties, against sums written out for a few nodes.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using Tensor = std::array<double, 9>;

struct PointMass {
  int id;
  double mass;
  double x, y, z;
};

const std::vector<PointMass> kPoints = {
    {7, 2.0, 1.0, -2.0, 3.0}, {3, 0.5, -4.0, 0.25, 1.5}, {9, 1.25, 0.0, 6.0, -1.0}};

class GlobalMass : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(4, 2);
    ASSERT_NE(body, nullptr);
  }

  void add_points() const {
    for (const PointMass& point : kPoints) {
      FMD_SetNodeCoordinates(body, point.id, point.x, point.y, point.z);
      FMD_SetNodalMass(body, point.id, point.mass);
    }
  }

  static std::vector<double> taken(double* values, std::size_t count) {
    const std::unique_ptr<double, decltype(&FMD_FreeMemory)> owned(values, FMD_FreeMemory);
    return values == nullptr ? std::vector<double>() : std::vector<double>(values, values + count);
  }

  FmdBody* body = nullptr;
};

// The inertia tensor about the origin with negative products of inertia, as in a textbook.
Tensor textbook_inertia() {
  Tensor sum{};
  for (const PointMass& p : kPoints) {
    sum[0] += p.mass * (p.y * p.y + p.z * p.z);
    sum[4] += p.mass * (p.x * p.x + p.z * p.z);
    sum[8] += p.mass * (p.x * p.x + p.y * p.y);
    sum[1] -= p.mass * p.x * p.y;
    sum[2] -= p.mass * p.x * p.z;
    sum[5] -= p.mass * p.y * p.z;
  }
  sum[3] = sum[1];
  sum[6] = sum[2];
  sum[7] = sum[5];
  return sum;
}

TEST_F(GlobalMass, InvariantsAreTheSumsOverTheNodes) {
  add_points();
  EXPECT_DOUBLE_EQ(FMD_Invar1(body), 3.75);
  EXPECT_EQ(taken(FMD_Invar2(body), 3),
            (std::vector<double>{2.0 - 2.0, -4.0 + 0.125 + 7.5, 6.0 + 0.75 - 1.25}));
  const auto seventh = taken(FMD_Invar7(body), 9);
  const Tensor expected = textbook_inertia();
  for (std::size_t k = 0; k < 9; ++k) EXPECT_NEAR(seventh[k], expected[k], 1e-13) << k;
}

TEST_F(GlobalMass, NodalInertiaIsAddedAsItStands) {
  add_points();
  FMD_SetNodalInertia(body, 3, 10.0, 20.0, 30.0, 1.0, 2.0, 3.0);
  const auto seventh = taken(FMD_Invar7(body), 9);
  const Tensor expected = textbook_inertia();
  const Tensor added = {10.0, 1.0, 2.0, 1.0, 20.0, 3.0, 2.0, 3.0, 30.0};
  for (std::size_t k = 0; k < 9; ++k) EXPECT_NEAR(seventh[k], expected[k] + added[k], 1e-13) << k;
}

TEST_F(GlobalMass, GettersHandOutCopies) {
  add_points();
  double* first = FMD_Invar2(body);
  first[1] = 1e6;
  FMD_FreeMemory(first);
  EXPECT_NE(taken(FMD_Invar2(body), 3)[1], 1e6);
}

TEST_F(GlobalMass, WithoutNodalMassInvariantsComeFromTheGlobalProperties) {
  body->GlobalMass = 4.0;
  const std::array<double, 3> center = {1.0, 2.0, 3.0};
  const Tensor inertia = {5.0, -1.0, -2.0, -1.0, 6.0, -3.0, -2.0, -3.0, 7.0};
  std::copy(center.begin(), center.end(), body->GlobalCenterOfMass);
  std::copy(inertia.begin(), inertia.end(), body->GlobalInertia);
  EXPECT_EQ(FMD_Invar1(body), 4.0);
  EXPECT_EQ(taken(FMD_Invar2(body), 3), (std::vector<double>{4.0, 8.0, 12.0}));
  EXPECT_EQ(taken(FMD_Invar7(body), 9), (std::vector<double>{5.0, 1.0, 2.0, 1.0, 6.0, 3.0, 2.0, 3.0, 7.0}));
}

TEST_F(GlobalMass, ABodyWithNothingHasZeroInvariantsThatStay) {
  EXPECT_EQ(FMD_Invar1(body), 0.0);
  EXPECT_EQ(taken(FMD_Invar2(body), 3), (std::vector<double>(3, 0.0)));
  EXPECT_EQ(taken(FMD_Invar7(body), 9), (std::vector<double>(9, 0.0)));
  add_points();
  EXPECT_EQ(FMD_Invar1(body), 0.0);
}

TEST_F(GlobalMass, SettersFillTheCacheAndMarkTheBlock) {
  double moment[3] = {1.0, 2.0, 3.0};
  double values[6] = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
  EXPECT_EQ(FMD_SetInvar1(body, 12.5), 1);
  EXPECT_EQ(FMD_SetInvar2(body, moment), 1);
  EXPECT_EQ(FMD_SetInvar7(body, values), 1);
  EXPECT_EQ(FMD_Exists(body, 18), 1);
  EXPECT_EQ(FMD_Exists(body, 19), 1);
  EXPECT_EQ(FMD_Exists(body, 23), 1);
  add_points();
  EXPECT_EQ(FMD_Invar1(body), 12.5);
  EXPECT_EQ(taken(FMD_Invar2(body), 3), (std::vector<double>{1.0, 2.0, 3.0}));
  EXPECT_EQ(taken(FMD_Invar7(body), 9), (std::vector<double>{1.0, 4.0, 5.0, 4.0, 2.0, 6.0, 5.0, 6.0, 3.0}));
}

TEST_F(GlobalMass, InvariantOneMustBePositive) {
  FMD_SetInvar1(body, 3.0);
  for (const double bad : {0.0, -1.0, std::nan("")}) EXPECT_EQ(FMD_SetInvar1(body, bad), 0);
  EXPECT_EQ(FMD_Invar1(body), 3.0);
  EXPECT_EQ(log.errors, (std::vector<std::string>(3, "Inertia Invariant 1 must be greater than zero")));
}

TEST_F(GlobalMass, TotalMassInertiaNegatesTheProductsOfTheInvariant) {
  add_points();
  double mass = 0.0;
  Tensor inertia{};
  std::array<double, 3> center{};
  EXPECT_EQ(FMD_TotalMassInertia(body, &mass, inertia.data(), center.data()), 1);
  EXPECT_DOUBLE_EQ(mass, 3.75);
  EXPECT_DOUBLE_EQ(center[1], 3.625 / 3.75);
  const Tensor textbook = textbook_inertia();
  for (std::size_t k = 0; k < 9; ++k) {
    EXPECT_NEAR(inertia[k], k % 4 == 0 ? textbook[k] : -textbook[k], 1e-13) << k;
  }
}

TEST_F(GlobalMass, ConsistentValuesAreStoredWithoutAWord) {
  add_points();
  double center[3] = {0.0, 3.625 / 3.75, 5.5 / 3.75};
  Tensor inertia = textbook_inertia();
  for (const std::size_t k : {1, 2, 3, 5, 6, 7}) inertia[k] = -inertia[k];
  EXPECT_EQ(FMD_SetGlobalMass(body, 3.75, center, inertia.data()), 1);
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(FMD_Exists(body, 5), 1);
}

TEST_F(GlobalMass, EachInconsistencyWarnsAndIsStored) {
  add_points();
  double center[3] = {1.0, 1.0, 1.0};
  Tensor inertia{};
  EXPECT_EQ(FMD_SetGlobalMass(body, 4.0, center, inertia.data()), 1);
  EXPECT_EQ(log.warnings, (std::vector<std::string>{
                              "Global mass is inconsistent with INVAR1 setting or sum of nodal masses.",
                              "Global center of mass is inconsistent with INVAR2 setting or nodal data.",
                              "Global mass inertia is inconsistent with INVAR7 setting or nodal data."}));
  EXPECT_EQ(body->GlobalMass, 4.0);
  EXPECT_EQ(body->GlobalCenterOfMass[2], 1.0);
}

TEST_F(GlobalMass, ToleranceIsRelativeAboveOne) {
  FMD_SetInvar1(body, 1000.0);
  double zero_moment[3] = {};
  double zero_inertia[9] = {};
  FMD_SetGlobalMass(body, 1000.0 + 1e-6, zero_moment, zero_inertia);
  EXPECT_TRUE(log.warnings.empty());
  FMD_SetGlobalMass(body, 1000.0 + 1e-4, zero_moment, zero_inertia);
  EXPECT_EQ(log.warnings.size(), 1U);
}

TEST_F(GlobalMass, ANegativeEntryDisagreesToo) {
  FMD_SetInvar1(body, 1.0);
  double center[3] = {};
  double inertia[9] = {-5.0};
  FMD_SetGlobalMass(body, 1.0, center, inertia);
  EXPECT_EQ(log.warnings, std::vector<std::string>{
                              "Global mass inertia is inconsistent with INVAR7 setting or nodal data."});
}

TEST_F(GlobalMass, ZeroMassIsAnnouncedAndStored) {
  double center[3] = {};
  double inertia[9] = {};
  EXPECT_EQ(FMD_SetGlobalMass(body, 0.0, center, inertia), 1);
  EXPECT_EQ(log.infos, std::vector<std::string>{"Global mass is being set to zero."});
  EXPECT_EQ(FMD_Exists(body, 5), 1);
}

TEST_F(GlobalMass, ComputedValuesReplaceStoredOnes) {
  add_points();
  double center[3] = {9.0, 9.0, 9.0};
  double inertia[9] = {};
  FMD_SetGlobalMass(body, 99.0, center, inertia);
  double mass = 0.0;
  EXPECT_EQ(FMD_TotalMassInertia(body, &mass, inertia, center), 1);
  EXPECT_DOUBLE_EQ(mass, 3.75);
  EXPECT_EQ(body->GlobalMass, mass);
}

TEST_F(GlobalMass, ZeroMassHasItsCentreAtTheOrigin) {
  FMD_SetNodeCoordinates(body, 1, 1.0, 2.0, 3.0);
  FMD_SetNodalMass(body, 1, 0.0);
  double mass = 1.0;
  double inertia[9];
  double center[3] = {1.0, 1.0, 1.0};
  EXPECT_EQ(FMD_TotalMassInertia(body, &mass, inertia, center), 1);
  EXPECT_EQ(center[0], 0.0);
  EXPECT_EQ(center[2], 0.0);
}

TEST_F(GlobalMass, BadArgumentsAreRefused) {
  double values[9] = {};
  EXPECT_EQ(FMD_SetGlobalMass(body, 1.0, nullptr, values), 0);
  EXPECT_EQ(FMD_SetGlobalMass(body, 1.0, values, nullptr), 0);
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(FMD_SetGlobalMass(nullptr, 1.0, values, values), 0);
  EXPECT_EQ(FMD_Invar1(nullptr), 0.0);
  EXPECT_EQ(FMD_Invar2(nullptr), nullptr);
  EXPECT_EQ(FMD_Invar7(nullptr), nullptr);
  EXPECT_EQ(FMD_SetInvar1(nullptr, 1.0), 0);
  EXPECT_EQ(FMD_SetInvar2(nullptr, values), 0);
  EXPECT_EQ(FMD_SetInvar7(nullptr, values), 0);
  EXPECT_EQ(FMD_TotalMassInertia(nullptr, values, values, values), 0);
  EXPECT_EQ(FMD_CalculateGlobalMassFromNodeMass(nullptr), 0);
  EXPECT_EQ(log.errors, (std::vector<std::string>(9, "The database has not been initialized.")));
}

TEST_F(GlobalMass, FailedAllocationZeroesTheOutputsAndLeavesTheBodyUsable) {
  add_points();
  double mass = 1.0;
  double inertia[9] = {1.0};
  double center[3] = {1.0};
  for (long nth = 1;; ++nth) {
    fmd::fail_allocation(nth);
    const int result = FMD_TotalMassInertia(body, &mass, inertia, center);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) {
      EXPECT_EQ(result, 1);
      EXPECT_GT(nth, 3);
      break;
    }
    EXPECT_EQ(result, 0) << nth;
    EXPECT_EQ(mass, 0.0);
    EXPECT_EQ(inertia[0], 0.0);
    EXPECT_EQ(center[0], 0.0);
    ASSERT_FALSE(log.errors.empty());
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.back(), "dbinvar"));
  }
  EXPECT_DOUBLE_EQ(mass, 3.75);
}

TEST(TildeKernels, AgreeWithMatrixProducts) {
  double a[3] = {1.5, -2.0, 0.75};
  double b[3] = {-0.5, 3.0, 2.0};
  const double s = 0.3;
  const double ta[3][3] = {{0, -a[2], a[1]}, {a[2], 0, -a[0]}, {-a[1], a[0], 0}};
  const double tb[3][3] = {{0, -b[2], b[1]}, {b[2], 0, -b[0]}, {-b[1], b[0], 0}};
  double vector[3] = {1.0, 2.0, 3.0};
  double matrix[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  incr_scalar_tilde_vec(vector, s, a, b);
  incr_scalar_tilde_tilde(matrix, s, a, b);
  for (int i = 0; i < 3; ++i) {
    double row = i + 1.0;
    for (int k = 0; k < 3; ++k) row += s * ta[i][k] * b[k];
    EXPECT_NEAR(vector[i], row, 1e-14);
    for (int j = 0; j < 3; ++j) {
      double entry = 3 * i + j + 1.0;
      for (int k = 0; k < 3; ++k) entry += s * ta[i][k] * tb[k][j];
      EXPECT_NEAR(matrix[3 * i + j], entry, 1e-14) << i << j;
    }
  }
}

}  // namespace
