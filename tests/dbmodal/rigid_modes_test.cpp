// Rigid body modes on a cloud of point masses whose six motions are known exactly.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using Vec = std::array<double, 3>;

struct Mass {
  int id;
  double mass;
  Vec at;
};

const std::vector<Mass> kCloud = {{1, 2.0, {0.5, 0.0, 0.0}},
                                  {2, 1.0, {0.0, 2.0, 0.0}},
                                  {3, 1.5, {0.0, 0.0, 3.0}},
                                  {4, 0.5, {1.0, 1.0, -1.0}}};

Vec cross(const Vec& a, const Vec& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// Displacement of a point in one of the six unit motions about the origin.
Vec motion(int axis, const Vec& at) {
  Vec unit{};
  unit[static_cast<std::size_t>(axis % 3)] = 1.0;
  return axis < 3 ? unit : cross(unit, at);
}

class RigidModes : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(4, 8);
    ASSERT_NE(body, nullptr);
    for (const Mass& point : kCloud) {
      FMD_SetNodeCoordinates(body, point.id, point.at[0], point.at[1], point.at[2]);
      FMD_SetNodalMass(body, point.id, point.mass);
    }
  }

  // Mode number axis + 1 is the unit motion about that axis; its generalized mass is its own.
  void add_unit_motions() const {
    for (int axis = 0; axis < 6; ++axis) {
      double mass = 0.0;
      for (const Mass& point : kCloud) {
        const Vec u = motion(axis, point.at);
        Vec rotation{};
        if (axis >= 3) rotation[static_cast<std::size_t>(axis - 3)] = 1.0;
        double values[6] = {u[0], u[1], u[2], rotation[0], rotation[1], rotation[2]};
        FMD_SetModeVec(body, axis + 1, point.id, 0, values);
        mass += point.mass * (u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
      }
      FMD_SetGeneralizedMass(body, axis + 1, axis + 1, mass);
      FMD_SetGeneralizedStiffness(body, axis + 1, axis + 1, 0.0);
    }
  }

  void add_mode(int number, double hertz) const {
    const double radians = 6.28318530718 * hertz;
    for (const Mass& point : kCloud) {
      double values[6] = {0.1 * number, 0.2, -0.3 * point.id, 0.0, 0.0, 0.0};
      FMD_SetModeVec(body, number, point.id, 0, values);
    }
    FMD_SetGeneralizedMass(body, number, number, 1.0);
    FMD_SetGeneralizedStiffness(body, number, number, hertz < 0 ? -radians * radians : radians * radians);
  }

  std::vector<double> load(int load_case) const {
    int count = 0;
    double* values = FMD_GetModalLoad(body, load_case, &count);
    std::vector<double> copy(values, values + count);
    FMD_FreeMemory(values);
    return copy;
  }

  FmdBody* body = nullptr;
};

TEST_F(RigidModes, SevenModesCountAgainstTheSeventh) {
  for (int mode = 1; mode <= 6; ++mode) add_mode(mode, mode == 5 ? -40.0 : 0.001 * mode);
  add_mode(7, 500.0);
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 6);
}

TEST_F(RigidModes, AThousandthOfTheSeventhIsTheThreshold) {
  for (int mode = 1; mode <= 6; ++mode) add_mode(mode, mode <= 4 ? 0.0 : 0.6);
  add_mode(7, 500.0);
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 4);
}

TEST_F(RigidModes, TheThresholdCanBeSet) {
  for (int mode = 1; mode <= 5; ++mode) add_mode(mode, 0.0);
  add_mode(6, 0.2);
  add_mode(7, 30.0);
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 5);
  const fmdtest::EnvironmentVariable threshold("FMD_RIGID_BODY_THRESHOLD", "0.5");
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 6);
}

TEST_F(RigidModes, FewerThanSevenCountByTheLastGap) {
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 0);
  add_mode(1, 0.01);
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 0);
  add_mode(2, 20.0);
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 1);
  add_mode(3, 30.0);
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 1);
  add_mode(4, 400000.0);
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 3);
}

TEST_F(RigidModes, SixRigidModesHaveNoGap) {
  add_unit_motions();
  EXPECT_EQ(FMD_RigidBodyModeCount(body), 0);
  EXPECT_EQ(FMD_RigidBodyModeCount(nullptr), 0);
}

TEST_F(RigidModes, ParticipationIsTheProjectionByMass) {
  add_unit_motions();
  std::vector<std::vector<double>> rows(6, std::vector<double>(6));
  double* pointers[6];
  for (std::size_t k = 0; k < 6; ++k) pointers[k] = rows[k].data();
  FMD_RigidModes2KINEX(body, pointers, 6);
  for (int k = 0; k < 6; ++k) {
    for (int i = 0; i < 6; ++i) {
      double projected = 0.0;
      double squared = 0.0;
      for (const Mass& point : kCloud) {
        const Vec e = motion(k, point.at);
        const Vec u = motion(i, point.at);
        for (std::size_t c = 0; c < 3; ++c) {
          projected += point.mass * e[c] * u[c];
          squared += point.mass * u[c] * u[c];
        }
      }
      EXPECT_NEAR(rows[static_cast<std::size_t>(k)][static_cast<std::size_t>(i)], projected / squared, 1e-12);
      if (i == k) {
        EXPECT_NEAR(projected / squared, 1.0, 1e-12);
      }
    }
  }
  FMD_RigidModes2KINEX(nullptr, pointers, 6);
  EXPECT_EQ(log.errors, std::vector<std::string>{"The database has not been initialized."});
}

TEST_F(RigidModes, LoadsBecomeForcesAndMomentsByMass) {
  add_unit_motions();
  add_mode(7, 500.0);
  const std::vector<double> modal = {3, -1, 2, 0.5, 4, -2, 7};
  for (int i = 0; i < 7; ++i) FMD_SetModalLoad(body, 0, i + 1, modal[static_cast<std::size_t>(i)]);
  std::vector<double> expected(7, 0.0);
  for (std::size_t i = 0; i < 6; ++i) {
    double mass = 0.0;
    for (const Mass& p : kCloud) {
      const Vec u = motion(static_cast<int>(i), p.at);
      mass += p.mass * (u[0] * u[0] + u[1] * u[1] + u[2] * u[2]);
    }
    for (const Mass& p : kCloud) {
      const Vec u = motion(static_cast<int>(i), p.at);
      const Vec m = cross(p.at, u);
      for (std::size_t c = 0; c < 3; ++c) {
        expected[c] += modal[i] * p.mass / mass * u[c];
        expected[3 + c] += modal[i] * p.mass / mass * m[c];
      }
    }
  }
  expected[6] = 7.0;
  FMD_RigidBodyForcesOnPrincipalAxes(body);
  const auto once = load(0);
  for (std::size_t k = 0; k < 7; ++k) EXPECT_NEAR(once[k], expected[k], 1e-12) << k;
  EXPECT_EQ(FMD_ModalLoadProcessed(body, 0), 1);
  FMD_RigidBodyForcesOnPrincipalAxes(body);
  EXPECT_EQ(load(0), once);
  EXPECT_TRUE(log.warnings.empty());
}

TEST_F(RigidModes, ARigidPreloadWarnsOncePerEntry) {
  add_unit_motions();
  add_mode(7, 500.0);
  FMD_SetModalPreload(body, 1, 3.0);
  FMD_RigidBodyForcesOnPrincipalAxes(body);
  EXPECT_EQ(FMD_ModalPreloadProcessed(body), 1);
  int count = 0;
  double* preload = FMD_GetModalPreload(body, &count);
  std::size_t entries = 0;
  for (int i = 0; i < 6; ++i) entries += preload[i] != 0.0;
  FMD_FreeMemory(preload);
  EXPECT_GT(entries, 0U);
  EXPECT_EQ(log.warnings,
            std::vector<std::string>(entries,
                                     "FMD contains a preload with a rigid body component which is being "
                                     "ignored"));
  log.clear();
  FMD_RigidBodyForcesOnPrincipalAxes(body);
  EXPECT_TRUE(log.warnings.empty());
}

TEST_F(RigidModes, FewerThanSixRigidModesWarnOnlyWithLoads) {
  add_mode(1, 20.0);
  FMD_SetModalPreload(body, 1, 0.0);
  FMD_RigidBodyForcesOnPrincipalAxes(body);
  EXPECT_TRUE(log.warnings.empty());
  FMD_SetModalLoad(body, 0, 1, 5.0);
  FMD_RigidBodyForcesOnPrincipalAxes(body);
  EXPECT_EQ(log.warnings, std::vector<std::string>{"FMD only contains 0 rigid body modes.\n  The resultant "
                                                   "load vector will be mishandled.\n"});
  EXPECT_EQ(load(0), std::vector<double>{0.0});
  FMD_RigidBodyForcesOnPrincipalAxes(nullptr);
}

// Six unit masses at distance 1 on the axes: all couplings vanish, so that each axis stands alone. The fit of
// a unit translation is exact; of a unit rotation about z the sums are B = sum(theta - x^2 - y^2) = 6 - 4
// against A = sum(x^2 + y^2 + 1) = 4 + 6, with an inertia of 4.
TEST_F(RigidModes, TheFitByHandOnASymmetricCloud) {
  const fmdtest::EnvironmentVariable by_fit("KXI_MFORCE_NO_FEA_MASS", "0");
  body = FMD_Create(6, 7);
  for (int node = 0; node < 6; ++node) {
    Vec at{};
    at[static_cast<std::size_t>(node % 3)] = node < 3 ? 1.0 : -1.0;
    FMD_SetNodeCoordinates(body, node + 1, at[0], at[1], at[2]);
    FMD_SetNodalMass(body, node + 1, 1.0);
    for (int mode = 1; mode <= 7; ++mode) {
      const Vec u = motion((mode - 1) % 6, at);
      double values[6] = {u[0], u[1], u[2], 0, 0, 0};
      if (mode > 3 && mode < 7) values[mode - 1] = 1.0;
      FMD_SetModeVec(body, mode, node + 1, 0, values);
    }
  }
  for (int mode = 1; mode <= 7; ++mode) {
    FMD_SetGeneralizedMass(body, mode, mode, 5.0);
    FMD_SetGeneralizedStiffness(body, mode, mode, mode < 7 ? 0.0 : 1e8);
  }
  FMD_SetModalLoad(body, 0, 1, 10.0);
  FMD_SetModalLoad(body, 0, 6, -20.0);
  FMD_SetModalLoad(body, 0, 7, 3.0);
  FMD_RigidBodyForcesOnPrincipalAxes(body);
  const auto forces = load(0);
  const std::vector<double> expected = {
      6.0 * 10.0 / 5.0, 0, 0, 0, 0, 4.0 * (2.0 / 10.0) * (-20.0 / 5.0), 3.0};
  for (std::size_t k = 0; k < 7; ++k) EXPECT_NEAR(forces[k], expected[k], 1e-12) << k;
  EXPECT_TRUE(log.errors.empty());
}

TEST_F(RigidModes, ACloudThatCannotBeFittedIsReported) {
  body = FMD_Create(1, 7);
  FMD_SetModalLoad(body, 0, 1, 10.0);
  FMD_RigidBodyForcesOnPrincipalAxes(body);
  EXPECT_EQ(log.errors, std::vector<std::string>{"LU Decomposition failed.\n"});
  EXPECT_EQ(load(0), std::vector<double>{10.0});
  EXPECT_EQ(FMD_ModalLoadProcessed(body, 0), 1);
}

TEST_F(RigidModes, DampingIsProjectedOnce) {
  add_unit_motions();
  add_mode(7, 500.0);
  FMD_SetGeneralizedDamping(body, 1, 1, 2.0);
  FMD_SetGeneralizedDamping(body, 1, 7, 3.0);
  FMD_SetGeneralizedDamping(body, 7, 7, 5.0);
  std::vector<std::vector<double>> c(6, std::vector<double>(6));
  double* rows[6];
  for (std::size_t k = 0; k < 6; ++k) rows[k] = c[k].data();
  FMD_RigidModes2KINEX(body, rows, 6);
  EXPECT_EQ(FMD_DampingOnPrincipalAxes(body), 1);
  std::vector<double> full(49);
  EXPECT_EQ(FMD_GenDampFull(body, full.data(), 7), 1);
  for (std::size_t a = 0; a < 6; ++a) {
    for (std::size_t b = 0; b < 6; ++b) EXPECT_NEAR(full[7 * a + b], 2.0 * c[a][0] * c[b][0], 1e-12);
    EXPECT_NEAR(full[7 * a + 6], 3.0 * c[a][0], 1e-12);
    EXPECT_NEAR(full[42 + a], 3.0 * c[a][0], 1e-12);
  }
  EXPECT_NEAR(full[48], 5.0, 1e-12);
  const int entries = FMD_NumberOfGenDamp(body);
  EXPECT_EQ(FMD_DampingOnPrincipalAxes(body), 1);
  EXPECT_EQ(FMD_NumberOfGenDamp(body), entries);
  EXPECT_EQ(FMD_DampingOnPrincipalAxes(nullptr), 0);
}

TEST_F(RigidModes, DampingOfSelectedModesStandsBehindTheAxes) {
  add_unit_motions();
  add_mode(7, 500.0);
  add_mode(8, 600.0);
  FMD_SetGeneralizedDamping(body, 7, 7, 5.0);
  FMD_SetGeneralizedDamping(body, 8, 8, 6.0);
  std::vector<std::vector<double>> p(8, std::vector<double>(8, -1.0));
  double* rows[8];
  for (std::size_t k = 0; k < 8; ++k) rows[k] = p[k].data();
  int selected[] = {2, 8};
  EXPECT_EQ(FMD_GenDampPrincipalAndSelected(body, rows, 2, selected), 1);
  EXPECT_EQ(log.warnings,
            std::vector<std::string>{"Ignoring damping on requested mode 2 because it is a rigid "
                                     "body mode.\n"});
  EXPECT_EQ(p[7][7], 6.0);
  EXPECT_EQ(p[6][6], 0.0);
  EXPECT_EQ(p[0][0], 0.0);
  EXPECT_EQ(FMD_GenDampPrincipalAndSelected(nullptr, rows, 2, selected), 0);
}

TEST_F(RigidModes, NoDampingIsNothingToDo) {
  std::vector<double> row(6, 1.0);
  double* rows[] = {row.data(), row.data(), row.data(), row.data(), row.data(), row.data()};
  EXPECT_EQ(FMD_DampingOnPrincipalAxes(body), 1);
  EXPECT_EQ(FMD_GenDampPrincipalAndSelected(body, rows, 0, nullptr), 0);
  EXPECT_EQ(row, std::vector<double>(6, 0.0));
}

TEST_F(RigidModes, MutualGeneralizedMassByHand) {
  add_mode(1, 10.0);
  add_mode(2, 20.0);
  FMD_SetNodalInertia(body, 3, 2.0, 3.0, 4.0, 0.1, 0.2, 0.3);
  double first[6] = {1, 2, 3, 0.1, 0.2, 0.3};
  double second[6] = {-1, 0.5, 2, 0.4, -0.5, 0.6};
  FMD_SetModeVec(body, 1, 3, 0, first);
  FMD_SetModeVec(body, 2, 3, 0, second);
  double expected = 0.0;
  for (const Mass& p : kCloud) {
    const double u[3] = {0.1, 0.2, -0.3 * p.id};
    const double v[3] = {0.2, 0.2, -0.3 * p.id};
    for (int k = 0; k < 3; ++k) expected += p.mass * (p.id == 3 ? first[k] * second[k] : u[k] * v[k]);
  }
  const double j[3][3] = {{2.0, 0.1, 0.2}, {0.1, 3.0, 0.3}, {0.2, 0.3, 4.0}};
  for (int r = 0; r < 3; ++r) {
    for (int c = 0; c < 3; ++c) expected += second[3 + r] * j[r][c] * first[3 + c];
  }
  const int before = FMD_NumberOfGenMass(body);
  EXPECT_EQ(FMD_AnsysAddGenMass(body, 1, 1), 1);
  EXPECT_EQ(FMD_NumberOfGenMass(body), before + 2);
  double full[4];
  FMD_GenMassFull(body, full, 2);
  EXPECT_NEAR(full[1], expected, 1e-12);
  EXPECT_EQ(body->HasOffDiagonalGenMatrix, 1);
}

TEST_F(RigidModes, CountsThatDoNotAddUpAreRefused) {
  add_mode(1, 10.0);
  EXPECT_EQ(FMD_AnsysAddGenMass(body, 1, 1), 0);
  EXPECT_EQ(log.errors,
            std::vector<std::string>{"Mode count mismatch while generating additional generalized masses."});
  EXPECT_EQ(FMD_AnsysAddGenMass(nullptr, 1, 1), 0);
}

TEST_F(RigidModes, FailedAllocationsLeaveLoadsAndDampingAsTheyWere) {
  add_unit_motions();
  add_mode(7, 500.0);
  FMD_SetGeneralizedDamping(body, 1, 7, 3.0);
  for (long nth = 1;; ++nth) {
    fmd::fail_allocation(nth);
    const int result = FMD_DampingOnPrincipalAxes(body);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (result == 1) break;
    ASSERT_TRUE(failed);
    EXPECT_EQ(FMD_NumberOfGenDamp(body), 1);
    EXPECT_EQ(body->DampingOnPrincipalAxes, 0);
    FMD_CleanModesInMemory(body);
    body->LoadedModeIndex[0] = -1;
  }
  EXPECT_EQ(body->DampingOnPrincipalAxes, 1);
}

}  // namespace
