// What rotation and reflection do at their edges, what they say and what they leave alone.
#include <gmock/gmock.h>

#include <cerrno>
#include <cmath>

#include "dbmodal/rigid_motion_model.h"
#include "messages/memory.h"
#include "support/failing_file_system.h"

namespace {

using fmdtest::InvariantsModel;
using fmdtest::Nine;
using fmdtest::Three;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

class RigidRules : public fmdtest::RigidMotionTest {
 protected:
  static Three place_of(FmdBody* body, int index) {
    Three place{};
    FMD_NodeCoordinates(body, index, place.data());
    return place;
  }

  static void expect_place(FmdBody* body, const Three& expected) {
    fmdtest::expect_near(place_of(body, 0).data(), expected.data(), 3, 1e2, "place");
  }

  static FmdBody* single_node(const Three& place) {
    FmdBody* body = FMD_Create(1, 1);
    FMD_SetNodeCoordinates(body, 1, place[0], place[1], place[2]);
    return body;
  }

  double x[3] = {2.0, 0.0, 0.0};
  double z[3] = {0.0, 0.0, 2.0};
  double oblique[3] = {1.0, -2.0, 2.0};
  double point[3] = {3.0, 1.0, 2.0};
  double matrix[9] = {};
};

TEST_F(RigidRules, NoBodyIsReportedOnce) {
  EXPECT_EQ(FMD_Rotate_Origin(nullptr, z, 90.0, matrix), 0);
  EXPECT_EQ(FMD_Rotate(nullptr, z, point, 90.0), 0);
  EXPECT_EQ(FMD_Mirror_Origin(nullptr, z), 0);
  EXPECT_EQ(FMD_Mirror(nullptr, z, point), 0);
  const std::string said = "E:The database has not been initialized.";
  EXPECT_THAT(log.all, ElementsAre(said, said, said, said));
}

TEST_F(RigidRules, RotateTurnsByTheRightHandRuleAndRotateOriginAgainstIt) {
  FmdBody* body = single_node({4.0, 2.0, 5.0});
  ASSERT_EQ(FMD_Rotate(body, z, point, 90.0), 1);
  // From the point at (3, 1), (1, 1) goes to (-1, 1).
  expect_place(body, {2.0, 2.0, 5.0});
  ASSERT_EQ(FMD_Rotate_Origin(body, z, 90.0, matrix), 1);
  expect_place(body, {2.0, -2.0, 5.0});
}

TEST_F(RigidRules, RotateOriginHandsOutTheMatrixOfRowVectors) {
  FmdBody* body = single_node({1.0, 2.0, 3.0});
  ASSERT_EQ(FMD_Rotate_Origin(body, z, 90.0, matrix), 1);
  const double expected[] = {0.0, -1.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0};
  fmdtest::expect_near(matrix, expected, 9, 10.0, "matrix");
  expect_place(body, {2.0, -1.0, 3.0});
}

TEST_F(RigidRules, MirrorReflectsInThePlaneThroughThePoint) {
  FmdBody* body = single_node({4.0, 2.0, 5.0});
  ASSERT_EQ(FMD_Mirror(body, x, point), 1);
  expect_place(body, {2.0, 2.0, 5.0});
}

TEST_F(RigidRules, ABodyWithoutModesWarnsAndMoves) {
  FmdBody* body = single_node({1.0, 0.0, 0.0});
  log.clear();
  EXPECT_EQ(FMD_Mirror_Origin(body, x), 1);
  expect_place(body, {-1.0, 0.0, 0.0});
  EXPECT_THAT(log.warnings, ElementsAre("No Mode Shape Data found in this FMD file. \n"));
  EXPECT_THAT(log.errors, IsEmpty());
}

TEST_F(RigidRules, AnAxisOrNormalOfNoLengthIsNotGuarded) {
  double none[] = {0.0, 0.0, 0.0};
  FmdBody* body = single_node({1.0, 2.0, 3.0});
  EXPECT_EQ(FMD_Rotate(body, none, point, 90.0), 1);
  EXPECT_TRUE(std::isnan(place_of(body, 0)[0]));
  body = single_node({1.0, 2.0, 3.0});
  EXPECT_EQ(FMD_Rotate_Origin(body, none, 90.0, matrix), 1);
  for (const double value : matrix) EXPECT_TRUE(std::isnan(value));
  body = single_node({1.0, 2.0, 3.0});
  EXPECT_EQ(FMD_Mirror(body, none, point), 1);
  EXPECT_TRUE(std::isnan(place_of(body, 0)[2]));
}

// Only a translation asks for the mass.
TEST_F(RigidRules, APointOnTheAxisOrInThePlaneNeedsNoTranslation) {
  FmdBody* body = make_body(InvariantsModel::random(4, 1));
  double on_axis[] = {-2.0, 4.0, -4.0};
  ASSERT_EQ(FMD_Rotate(body, oblique, on_axis, 50.0), 1);
  double in_plane[] = {2.0, 1.0, 0.0};
  ASSERT_EQ(FMD_Mirror(body, oblique, in_plane), 1);
  EXPECT_EQ(body->Invar1, nullptr);
  ASSERT_EQ(FMD_Rotate(body, oblique, point, 50.0), 1);
  EXPECT_NE(body->Invar1, nullptr);
}

TEST_F(RigidRules, AFullTurnIsTheIdentityAndStillRewritesTheModes) {
  const InvariantsModel model = InvariantsModel::random(6, 2);
  FmdBody* body = make_body(model);
  const int key = body->ModeFile[fmd::kShape].Block;
  ASSERT_EQ(FMD_Rotate(body, oblique, point, 360.0), 1);
  EXPECT_NE(body->ModeFile[fmd::kShape].Block, key);
  EXPECT_THAT(log.all, ElementsAre(StartsWith("I: Shortened Shape mode file: key = ")));
  expect_model(body, model);
}

TEST_F(RigidRules, RotatingBackAndMirroringTwiceRestoreTheBody) {
  const InvariantsModel model = InvariantsModel::random(9, 3);
  FmdBody* body = make_body(model);
  learn_invariants(body);
  ASSERT_EQ(FMD_Rotate(body, oblique, point, 33.0), 1);
  ASSERT_EQ(FMD_Rotate(body, oblique, point, -33.0), 1);
  expect_model(body, model);
  ASSERT_EQ(FMD_Mirror(body, oblique, point), 1);
  ASSERT_EQ(FMD_Mirror(body, oblique, point), 1);
  expect_model(body, model);
  ASSERT_EQ(FMD_Rotate_Origin(body, oblique, 33.0, matrix), 1);
  ASSERT_EQ(FMD_Rotate(body, oblique, oblique, 33.0), 1);
  expect_model(body, model);
}

// A turn near a third about (1, 1, 1) is taken for a reflection: what decides is not quite the determinant.
TEST_F(RigidRules, TheHandIsDecidedByAnExpressionThatIsNotQuiteTheDeterminant) {
  InvariantsModel model = InvariantsModel::random(5, 2);
  FmdBody* body = make_body(model);
  learn_invariants(body);
  double diagonal[] = {1.0, 1.0, 1.0};
  constexpr double kDegrees = 110.0;
  ASSERT_EQ(FMD_Rotate_Origin(body, diagonal, kDegrees, matrix), 1);
  const double* a = matrix;
  ASSERT_LT(a[0] * (a[4] * a[8] - a[5] * a[7]) - a[3] * (a[1] * a[8] - a[2] * a[6]) +
                a[6] * (a[1] * a[5] - a[2] * a[4]),
            -1e-3);
  fmdtest::RigidMotion motion = fmdtest::rotation({1.0, 1.0, 1.0}, {}, -kDegrees);
  motion.handedness = -1.0;
  fmdtest::move(model, motion);
  expect_nodes(body, model);
  expect_shapes(body, model);
  // Invariant 5 does not come from the modes and takes the sign as it is.
  Three fifth = column(taken(FMD_Invar5(body, 0), 6), 1);
  for (double& value : fifth) value = -value;
  fmdtest::expect_near(fifth.data(), model.invariant5(0, 1).data(), 3, 1e3, "I5");
}

TEST_F(RigidRules, TheBodysInertiaIsTransformedAsItStandsAndOnlyWithMass) {
  FmdBody* body = single_node({1.0, 2.0, 3.0});
  const Nine inertia{1.0, 2.0, 3.0, 2.0, 4.0, 5.0, 3.0, 5.0, 6.0};
  std::copy_n(inertia.data(), 9, body->GlobalInertia);
  body->GlobalCenterOfMass[0] = 7.0;
  ASSERT_EQ(FMD_Rotate_Origin(body, z, -90.0, matrix), 1);
  EXPECT_TRUE(fmdtest::same_bits(body->GlobalInertia, inertia.data(), 9));
  EXPECT_NEAR(body->GlobalCenterOfMass[1], 7.0, 1e-12);
  body->GlobalMass = 2.0;
  ASSERT_EQ(FMD_Rotate_Origin(body, z, -90.0, matrix), 1);
  const Nine expected = fmdtest::rotation({0.0, 0.0, 1.0}, {}, 90.0).tensor(inertia);
  fmdtest::expect_near(body->GlobalInertia, expected.data(), 9, 1e2, "inertia");
}

TEST_F(RigidRules, NodalInertiaFollowsOnlyWhereItsBlockIsPresent) {
  FmdBody* body = single_node({1.0, 2.0, 3.0});
  FMD_SetNodalInertia(body, 1, 1.0, 2.0, 3.0, 0.5, 0.25, 0.125);
  body->BlockExists[fmd::kNodalInertias] = 0;
  ASSERT_EQ(FMD_Rotate_Origin(body, z, -90.0, matrix), 1);
  EXPECT_EQ(body->Nodes[0].Inertia[0], 1.0);
  body->BlockExists[fmd::kNodalInertias] = 1;
  ASSERT_EQ(FMD_Rotate_Origin(body, z, -90.0, matrix), 1);
  // x goes to y and y to -x.
  const double expected[] = {2.0, 1.0, 3.0, -0.5, -0.125, 0.25};
  fmdtest::expect_near(body->Nodes[0].Inertia, expected, 6, 1e2, "inertia");
}

TEST_F(RigidRules, WhatWasSetIsStoredBySettersWithTheirWarnings) {
  FmdBody* body = single_node({1.0, 2.0, 3.0});
  FMD_AddMode(body, 7);
  FMD_FreeMemory(FMD_Invar2(body));
  double cross[] = {0.0, 0.0, 0.5};
  FMD_SetInvar5(body, 7, 7, cross);
  ASSERT_EQ(taken(FMD_Invar5(body, 0), 3), (std::vector<double>{0.0, 0.0, -0.5}));
  log.clear();
  ASSERT_EQ(FMD_Rotate_Origin(body, z, 90.0, matrix), 1);
  EXPECT_EQ(body->BlockExists[fmd::kInvariant2], 1);
  EXPECT_THAT(log.warnings, testing::Contains(StartsWith("I5(7, 7) is not zero.\n")));
  // For a mode with itself the setter keeps the negative.
  EXPECT_EQ(taken(FMD_Invar5(body, 0), 3)[2], 0.5);
}

TEST_F(RigidRules, WithoutInvariant3TheTranslationLeavesInvariant8WithAMessage) {
  FmdBody* body = single_node({1.0, 2.0, 3.0});
  FMD_AddMode(body, 7);
  Nine tensor{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0};
  FMD_SetInvar8(body, 7, tensor.data());
  log.clear();
  EXPECT_EQ(FMD_Mirror(body, x, point), 1);
  EXPECT_THAT(log.errors, ElementsAre("Can not compute Invar8. \nInvar3 is needed to compute Invar8."));
  EXPECT_EQ(taken_tensor(FMD_Invar8(body, 0)), (Nine{1.0, -2.0, -3.0, -4.0, 5.0, 6.0, -7.0, 8.0, 9.0}));
}

TEST_F(RigidRules, ATranslationThatFailsFailsTheWhole) {
  FmdBody* body = single_node({1.0, 2.0, 3.0});
  double moment[] = {1.0, 2.0, 3.0};
  FMD_SetInvar2(body, moment);
  EXPECT_EQ(FMD_Rotate(body, z, point, 90.0), 0);
  EXPECT_EQ(FMD_Mirror(body, z, point), 0);
  EXPECT_THAT(log.errors, ElementsAre("Can not Compute Invar2.\n", "Can not Compute Invar2.\n"));
}

TEST_F(RigidRules, TheModeCacheHasNoOldFrameAndKeepsItsSetting) {
  InvariantsModel model = InvariantsModel::random(6, 2);
  FmdBody* body = make_body(model);
  for (const int keep : {1, 0}) {
    FMD_SetKeepModesInMemory(body, keep);
    expect_shapes(body, model);
    ASSERT_EQ(FMD_Mirror(body, oblique, point), 1);
    fmdtest::move(model, fmdtest::reflection({1.0, -2.0, 2.0}, {3.0, 1.0, 2.0}));
    int found = -1;
    FMD_GetKeepModesInMemory(body, &found);
    EXPECT_EQ(found, keep);
    expect_shapes(body, model);
  }
}

TEST_F(RigidRules, FacesMatricesAndMonitorsStayAsTheyAre) {
  InvariantsModel model = InvariantsModel::random(4, 2);
  FmdBody* body = make_body(model);
  int corners[] = {model.nodes[0].id, model.nodes[1].id, model.nodes[2].id};
  FMD_SetFaceList(body, 3, corners);
  FMD_SetGeneralizedMass(body, model.modes[0].number, model.modes[0].number, 2.5);
  char name[] = "tip";
  double location[] = {1.0, 2.0, 3.0};
  FMD_SetMonitorPointInfo(body, 1, 1, 123, 0, location, name, name);
  const std::vector<int> faces(body->FaceList, body->FaceList + body->FaceListLength);
  ASSERT_EQ(FMD_Mirror(body, oblique, point), 1);
  EXPECT_EQ(std::vector<int>(body->FaceList, body->FaceList + body->FaceListLength), faces);
  EXPECT_EQ(body->GenMass[0].Value, 2.5);
  double found[3] = {};
  FMD_GetMonitorPointLocation(body, 0, found);
  EXPECT_THAT(found, ElementsAre(1.0, 2.0, 3.0));
}

TEST_F(RigidRules, AnInvariantThatCannotBeHadStopsTheMotionBeforeItBegins) {
  FmdBody* body = make_body(InvariantsModel::random(4, 2));
  FMD_FreeMemory(FMD_Invar3(body));
  const Three before = place_of(body, 0);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_Mirror_Origin(body, x), 0);
  fmd::fail_allocation(0);
  EXPECT_EQ(place_of(body, 0), before);
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors[0], "dbinvar"));
}

// The nodes have moved, the modes have not, and the operation does not tell.
TEST_F(RigidRules, ModesThatCannotBeRewrittenStayAndTheRestMoves) {
  InvariantsModel model = InvariantsModel::random(6, 2);
  const InvariantsModel old = model;
  FmdBody* body = make_body(model);
  {
    fmdtest::FailingFileSystem failing(1, ENOSPC);
    EXPECT_EQ(FMD_Mirror_Origin(body, x), 1);
    EXPECT_TRUE(failing.has_failed());
  }
  EXPECT_THAT(log.errors, testing::Contains("Unable to open temporary block for write."));
  fmdtest::move(model, fmdtest::reflection({1.0, 0.0, 0.0}, {}));
  expect_nodes(body, model);
  expect_shapes(body, old);
}

}  // namespace
