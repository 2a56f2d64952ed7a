// Loads, preload and damping under orthonormalisation, by hand and against dense products.
#include <gtest/gtest.h>

#include "body/body.h"
#include "dbmodal/spring_model.h"
#include "support/session.h"

namespace fmdtest {

namespace {

using Strings = std::vector<std::string>;

constexpr char kWrongLength[] = "Failed to transform modal loads following orthonormalization.\n";

class OrthonormalizedLoads : public SessionTest {
 protected:
  static Dense transformation_of(FmdBody* body) {
    const auto modes = static_cast<std::size_t>(FMD_ModeCount(body));
    Dense t(modes, modes);
    EXPECT_EQ(FMD_Transformation(body, t.values.data()), 1);
    return t;
  }

  static Vector taken(double* array, int count) {
    Vector values(array, array + count);
    FMD_FreeMemory(array);
    return values;
  }

  static Vector load_of(FmdBody* body, int load_case) {
    int count = 0;
    double* const load = FMD_GetModalLoad(body, load_case, &count);
    return taken(load, count);
  }

  static Vector preload_of(FmdBody* body) {
    int count = 0;
    double* const load = FMD_GetModalPreload(body, &count);
    return taken(load, count);
  }

  // v' T with the first entries left out and left as they are.
  static Vector expected(const Vector& before, const Dense& t, std::size_t first) {
    Vector after = before;
    for (std::size_t c = first; c < after.size(); ++c) {
      after[c] = 0.0;
      for (std::size_t a = first; a < after.size(); ++a) after[c] += before[a] * t(a, c);
    }
    return after;
  }

  static void expect_near(const Vector& found, const Vector& wanted) {
    ASSERT_EQ(found.size(), wanted.size());
    for (std::size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i], wanted[i], 1e-12) << i;
  }

  // Modes with unit coupling: full enough to need the eigenproblem, on a node of their own.
  static FmdBody* two_modes() {
    FmdBody* body = FMD_Create(1, 3);
    FMD_SetMode(body, 1, 1, 0, 1, 0, 0, 0, 0, 0);
    FMD_SetMode(body, 2, 1, 0, 0, 1, 0, 0, 0, 0);
    return body;
  }
};

TEST_F(OrthonormalizedLoads, KeepTheRigidPartOfProcessedOnes) {
  const SpringModel model = make_springs(5, 10, 0.0, 3);
  FmdBody* body = make_body(model);
  FMD_SetModalLoadProcessed(body, 1, 1);
  FMD_SetModalPreloadProcessed(body, 1);
  const Vector preload = preload_of(body);
  const Vector loads[] = {load_of(body, 0), load_of(body, 1)};
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  ASSERT_EQ(FMD_RigidBodyModeCount(body), 6);
  const Dense t = transformation_of(body);
  expect_near(load_of(body, 0), expected(loads[0], t, 0));
  expect_near(load_of(body, 1), expected(loads[1], t, 6));
  expect_near(preload_of(body), expected(preload, t, 6));
  const Vector kept = load_of(body, 1);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_EQ(kept[i], loads[1][i]);
}

TEST_F(OrthonormalizedLoads, OfAProcessedCaseAreWholeWhereNothingIsRigid) {
  const SpringModel model = make_springs(4, 8, 80.0, 3);
  FmdBody* body = make_body(model);
  FMD_SetModalLoadProcessed(body, 0, 1);
  const Vector load = load_of(body, 0);
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  expect_near(load_of(body, 0), expected(load, transformation_of(body), 0));
}

TEST_F(OrthonormalizedLoads, OfTheWrongLengthFailAfterTheOthersWereTransformed) {
  FmdBody* body = two_modes();
  FMD_SetModalLoad(body, 0, 1, 5.0);
  FMD_SetModalPreload(body, 2, 7.0);
  FMD_SetMode(body, 3, 1, 0, 0, 0, 1, 0, 0, 0);
  FMD_SetModalLoad(body, 1, 1, 8.0);
  FMD_SetModalLoad(body, 1, 3, 8.0);
  for (const int mode : {1, 2, 3}) {
    FMD_SetGeneralizedMass(body, mode, mode, 4.0);
    FMD_SetGeneralizedStiffness(body, mode, mode, 4.0 * mode);
  }
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  EXPECT_EQ(log.errors, (Strings{kWrongLength, kWrongLength}));
  EXPECT_EQ(load_of(body, 0), (Vector{5, 0, 0}));
  EXPECT_EQ(load_of(body, 1), (Vector{4, 0, 4}));
  EXPECT_EQ(preload_of(body), (Vector{0, 7, 0}));
  double half[3];
  EXPECT_EQ(FMD_Mode(body, 1, 0, half, 0), 1);
  EXPECT_EQ(half[0], 1.0);
  // Still so, and nothing twice.
  log.clear();
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  EXPECT_EQ(log.all.size(), 2U);
  EXPECT_EQ(load_of(body, 1), (Vector{4, 0, 4}));
}

TEST_F(OrthonormalizedLoads, AndVectorsAreDividedByTheRootsOfTheMasses) {
  FmdBody* body = two_modes();
  FMD_SetGeneralizedMass(body, 1, 1, 4.0);
  FMD_SetGeneralizedMass(body, 2, 2, 16.0);
  FMD_SetGeneralizedStiffness(body, 1, 1, 36.0);
  FMD_SetGeneralizedStiffness(body, 2, 2, 64.0);
  FMD_SetGeneralizedDamping(body, 1, 1, 8.0);
  FMD_SetGeneralizedDamping(body, 1, 2, 16.0);
  FMD_SetModalLoad(body, 0, 1, 3.0);
  FMD_SetModalLoad(body, 0, 2, 5.0);
  FMD_SetModalPreload(body, 2, 1.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(transformation_of(body).values, (Vector{0.5, 0, 0, 0.25}));
  double damping[4];
  EXPECT_EQ(FMD_GenDampFull(body, damping, 2), 1);
  EXPECT_EQ(Vector(damping, damping + 4), (Vector{2, 2, 2, 0}));
  EXPECT_EQ(load_of(body, 0), (Vector{1.5, 1.25}));
  EXPECT_EQ(preload_of(body), (Vector{0, 0.25}));
  double half[3];
  EXPECT_EQ(FMD_Mode(body, 2, 0, half, 0), 1);
  EXPECT_EQ(Vector(half, half + 3), (Vector{0, 0.25, 0}));
  double values[5];
  EXPECT_EQ(FMD_Eigenvalue(body, 2, &values[0], &values[1], &values[2], &values[3], &values[4]), 1);
  EXPECT_EQ(Vector(values, values + 5), (Vector{4, 2.0 / 6.28318530718, 2, 1, 4}));
  EXPECT_TRUE(log.warnings.empty());
  EXPECT_TRUE(log.errors.empty());
}

TEST_F(OrthonormalizedLoads, LeaveDampingAsItIsAmongModesOfUnitMass) {
  FmdBody* body = two_modes();
  FMD_SetGeneralizedMass(body, 1, 2, 0.5);
  FMD_SetGeneralizedMass(body, 1, 1, 1.0);
  FMD_SetGeneralizedMass(body, 2, 2, 1.0);
  FMD_SetGeneralizedStiffness(body, 1, 1, 1.0);
  FMD_SetGeneralizedStiffness(body, 2, 2, 9.0);
  FMD_SetGeneralizedDamping(body, 1, 2, 16.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  double damping[4];
  EXPECT_EQ(FMD_GenDampFull(body, damping, 2), 1);
  EXPECT_EQ(Vector(damping, damping + 4), (Vector{0, 16, 16, 0}));
}

}  // namespace

}  // namespace fmdtest
