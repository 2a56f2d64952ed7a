// Translation of a body: nodes, mass properties and invariants against a model that is moved on its own.
#include <gmock/gmock.h>

#include <cmath>

#include "dbmodal/dbmod/inertia_shift.h"
#include "dbmodal/dbmod/recompute_invar4.h"
#include "dbmodal/rigid_motion_model.h"
#include "messages/memory.h"

namespace {

using fmdtest::InvariantsModel;
using fmdtest::Nine;
using fmdtest::Three;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNoInvar2[] = "Can not Compute Invar2.\n";
constexpr char kNoInvar4[] =
    "Can not compute Invar4. \nInvar3 or Nodal Mass inforamtion is needed to compute Invar4.";
constexpr char kNoInvar7[] = "Can not Compute Invar7.\n";
constexpr char kNoInvar8[] = "Can not compute Invar8. \nInvar3 is needed to compute Invar8.";

class Translate : public fmdtest::RigidMotionTest {
 protected:
  // Three nodes on the axes and two modes without vectors, and no mass at all.
  FmdBody* massless() {
    FmdBody* body = FMD_Create(3, 2);
    FMD_SetNodeCoordinates(body, 1, 1.0, 0.0, 0.0);
    FMD_SetNodeCoordinates(body, 2, 0.0, 2.0, 0.0);
    FMD_SetNodeCoordinates(body, 3, 0.0, 0.0, 4.0);
    FMD_AddMode(body, 10);
    FMD_AddMode(body, 20);
    log.clear();
    return body;
  }

  static Three place_of(FmdBody* body, int index) {
    Three place{};
    FMD_NodeCoordinates(body, index, place.data());
    return place;
  }

  double along_y[3] = {0.0, 0.5, 0.0};
};

TEST_F(Translate, MovesAlongADirectionOfAnyLength) {
  FmdBody* body = massless();
  double direction[] = {0.0, 3.0, 4.0};
  ASSERT_EQ(FMD_Translate(body, direction, 10.0), 1);
  EXPECT_EQ(place_of(body, 0), (Three{1.0, 6.0, 8.0}));
  EXPECT_EQ(place_of(body, 1), (Three{0.0, 8.0, 8.0}));
  EXPECT_EQ(place_of(body, 2), (Three{0.0, 6.0, 12.0}));
  ASSERT_EQ(FMD_Translate(body, direction, -10.0), 1);
  EXPECT_EQ(place_of(body, 0), (Three{1.0, 0.0, 0.0}));
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(Translate, ADirectionOfNoLengthIsNotGuarded) {
  FmdBody* body = massless();
  double direction[] = {0.0, 0.0, 0.0};
  EXPECT_EQ(FMD_Translate(body, direction, 1.0), 1);
  EXPECT_TRUE(std::isnan(place_of(body, 0)[0]));
}

TEST_F(Translate, NoBodyIsReportedOnce) {
  EXPECT_EQ(FMD_Translate(nullptr, along_y, 1.0), 0);
  EXPECT_THAT(log.all, ElementsAre("E:The database has not been initialized."));
}

TEST_F(Translate, TakesAllThatItKnowsAlong) {
  InvariantsModel model = InvariantsModel::random(12, 4);
  FmdBody* body = make_body(model);
  learn_invariants(body);
  double direction[] = {1.0, -2.0, 2.0};
  ASSERT_EQ(FMD_Translate(body, direction, 4.5), 1);
  fmdtest::move(model, fmdtest::translation({1.5, -3.0, 3.0}));
  expect_model(body, model);
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(Translate, LeavesNothingStaleOnABodyThatKnewNothing) {
  InvariantsModel model = InvariantsModel::random(12, 3);
  FmdBody* body = make_body(model);
  for (const double distance : {4.5, 3.0}) {
    double direction[] = {1.0, -2.0, 2.0};
    ASSERT_EQ(FMD_Translate(body, direction, distance), 1);
    EXPECT_EQ(body->Invar2, nullptr);
    EXPECT_EQ(body->Invar7, nullptr);
  }
  fmdtest::move(model, fmdtest::translation({2.5, -5.0, 5.0}));
  expect_model(body, model);
}

TEST_F(Translate, LeavesTheMassPropertiesOfTheNewPlaceOnTheBody) {
  InvariantsModel model = InvariantsModel::random(9, 1);
  FmdBody* body = make_body(model);
  ASSERT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  const Three center{body->GlobalCenterOfMass[0], body->GlobalCenterOfMass[1], body->GlobalCenterOfMass[2]};
  Nine inertia;
  std::copy_n(body->GlobalInertia, 9, inertia.data());
  double mass = 0.0;
  Nine found;
  Three found_center;
  ASSERT_EQ(FMD_TotalMassInertia(body, &mass, found.data(), found_center.data()), 1);
  fmdtest::expect_near(center.data(), found_center.data(), 3, 1e2, "centre");
  fmdtest::expect_near(inertia.data(), found.data(), 9, 1e3, "inertia");
}

TEST_F(Translate, DoesNotTouchModesNorWhatIsMadeOfThemAlone) {
  const InvariantsModel model = InvariantsModel::random(6, 3);
  FmdBody* body = make_body(model);
  learn_invariants(body);
  const FmdStream file = body->ModeFile[fmd::kShape];
  const auto third = taken(FMD_Invar3(body), 9);
  const auto fifth = taken(FMD_Invar5(body, 1), 9);
  const auto ninth = taken_tensor(FMD_Invar9(body, 2, 0));
  ASSERT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  EXPECT_EQ(body->ModeFile[fmd::kShape].Block, file.Block);
  EXPECT_EQ(body->ModeFile[fmd::kShape].Key, file.Key);
  expect_shapes(body, model);
  EXPECT_EQ(taken(FMD_Invar3(body), 9), third);
  EXPECT_EQ(taken(FMD_Invar5(body, 1), 9), fifth);
  EXPECT_EQ(taken_tensor(FMD_Invar9(body, 2, 0)), ninth);
}

TEST_F(Translate, WorksInTheUnitsOfTheBody) {
  InvariantsModel model = InvariantsModel::random(7, 2);
  FmdBody* body = make_body(model);
  body->UnitTotalFactor[fmd::kLength] = 0.5;
  for (auto& mode : model.modes)
    for (Three& v : mode.translations) v = {0.5 * v[0], 0.5 * v[1], 0.5 * v[2]};
  learn_invariants(body);
  ASSERT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  fmdtest::move(model, fmdtest::translation({0.0, 3.0, 0.0}));
  expect_model(body, model);
}

TEST_F(Translate, WithoutMassInvariant2FailsAfterTheNodesHaveMoved) {
  FmdBody* body = massless();
  double moment[] = {1.0, 2.0, 3.0};
  FMD_SetInvar2(body, moment);
  EXPECT_EQ(FMD_Translate(body, along_y, 3.0), 0);
  EXPECT_THAT(log.errors, ElementsAre(kNoInvar2));
  EXPECT_EQ(place_of(body, 0), (Three{1.0, 3.0, 0.0}));
  EXPECT_EQ(body->GlobalCenterOfMass[1], 3.0);
  EXPECT_EQ(taken(FMD_Invar2(body), 3), (std::vector<double>{1.0, 2.0, 3.0}));
}

TEST_F(Translate, AnInvariantThatWasAskedForBeforeIsPresent) {
  FmdBody* body = massless();
  FMD_FreeMemory(FMD_Invar2(body));
  EXPECT_EQ(FMD_Translate(body, along_y, 3.0), 0);
  EXPECT_THAT(log.errors, ElementsAre(kNoInvar2));
}

TEST_F(Translate, WithoutMassInvariant7FailsAfterTheNodesHaveMoved) {
  FmdBody* body = massless();
  double inertia[] = {1.0, 2.0, 3.0, 0.0, 0.0, 0.0};
  FMD_SetInvar7(body, inertia);
  EXPECT_EQ(FMD_Translate(body, along_y, 3.0), 0);
  EXPECT_THAT(log.errors, ElementsAre(kNoInvar7));
  EXPECT_EQ(place_of(body, 0), (Three{1.0, 3.0, 0.0}));
}

TEST_F(Translate, NodalMassesThatCancelAreSummedAfresh) {
  FmdBody* body = massless();
  FMD_SetNodalMass(body, 1, 2.0);
  FMD_SetNodalMass(body, 2, -2.0);
  FMD_SetNodalInertia(body, 3, 0.5, 0.0, 0.0, 0.0, 0.0, 0.25);
  FMD_FreeMemory(FMD_Invar2(body));
  FMD_FreeMemory(FMD_Invar7(body));
  double direction[] = {1.0, 0.0, 0.0};
  ASSERT_EQ(FMD_Translate(body, direction, 1.0), 1);
  // The nodes stand at (2, 0, 0) and (1, 2, 0) now.
  EXPECT_EQ(taken(FMD_Invar2(body), 3), (std::vector<double>{2.0, -4.0, 0.0}));
  EXPECT_EQ(taken_tensor(FMD_Invar7(body)), (Nine{-7.5, 4.0, 0.0, 4.0, 6.0, 0.25, 0.0, 0.25, -2.0}));
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(Translate, WithoutNodalMassTheRigidInvariantsFollowTheMass) {
  FmdBody* body = massless();
  double moment[] = {0.0, 0.0, 4.0};
  double inertia[] = {9.0, 9.0, 1.0, 0.0, 0.0, 0.0};
  FMD_SetInvar1(body, 2.0);
  FMD_SetInvar2(body, moment);
  FMD_SetInvar7(body, inertia);
  double direction[] = {0.0, 1.0, 0.0};
  ASSERT_EQ(FMD_Translate(body, direction, 3.0), 1);
  EXPECT_EQ(taken(FMD_Invar2(body), 3), (std::vector<double>{0.0, 6.0, 4.0}));
  // 2 (3 3) comes to xx and zz, and -2 (3 2) to yz.
  EXPECT_EQ(taken_tensor(FMD_Invar7(body)), (Nine{27.0, 0.0, 0.0, 0.0, 9.0, -12.0, 0.0, -12.0, 19.0}));
  EXPECT_EQ(body->GlobalInertia[5], 12.0);
  EXPECT_EQ(body->GlobalInertia[7], 12.0);
}

TEST_F(Translate, MassOfTheHeaderAloneMovesWithItsCentre) {
  FmdBody* body = massless();
  body->GlobalMass = 2.0;
  body->GlobalCenterOfMass[0] = 1.0;
  ASSERT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  EXPECT_EQ(taken(FMD_Invar2(body), 3), (std::vector<double>{2.0, 6.0, 0.0}));
}

TEST_F(Translate, WithoutNodalMassInvariant4TakesTheMomentumOfTheShift) {
  FmdBody* body = massless();
  double momentum[] = {1.0, 0.0, 2.0};
  double moment[] = {10.0, 20.0, 30.0};
  FMD_SetInvar3(body, 20, momentum);
  FMD_SetInvar4(body, 20, moment);
  ASSERT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  // (0, 3, 0) x (1, 0, 2) = (6, 0, -3)
  EXPECT_EQ(taken(FMD_Invar4(body), 6), (std::vector<double>{0.0, 16.0, 0.0, 20.0, 0.0, 27.0}));
}

TEST_F(Translate, Invariant4NeedsInvariant3OrNodalMass) {
  FmdBody* body = massless();
  double moment[] = {10.0, 20.0, 30.0};
  FMD_SetInvar4(body, 20, moment);
  FMD_SetInvar8(body, 20, std::array<double, 9>{}.data());
  EXPECT_EQ(FMD_Translate(body, along_y, 3.0), 0);
  EXPECT_THAT(log.errors, ElementsAre(kNoInvar4));
  EXPECT_EQ(place_of(body, 1), (Three{0.0, 5.0, 0.0}));
  EXPECT_EQ(body->Invar3, nullptr);
}

TEST_F(Translate, WithNodalMassInvariant4IsSummedWhateverWasSet) {
  InvariantsModel model = InvariantsModel::random(6, 2);
  FmdBody* body = make_body(model);
  double moment[] = {10.0, 20.0, 30.0};
  FMD_SetInvar4(body, model.modes[1].number, moment);
  ASSERT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  fmdtest::move(model, fmdtest::translation({0.0, 3.0, 0.0}));
  expect_model(body, model);
}

TEST_F(Translate, Invariant8TakesTheMomentumOfTheShift) {
  FmdBody* body = massless();
  double momentum[] = {1.0, 0.0, 2.0};
  Nine tensor{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0};
  FMD_SetInvar3(body, 10, momentum);
  FMD_SetInvar8(body, 10, tensor.data());
  ASSERT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  fmdtest::add(tensor, 1.0, fmdtest::product(fmdtest::skew({0.0, 3.0, 0.0}), fmdtest::skew({1.0, 0.0, 2.0})));
  EXPECT_EQ(taken_tensor(FMD_Invar8(body, 0)), tensor);
  EXPECT_EQ(taken_tensor(FMD_Invar8(body, 1)), Nine{});
}

TEST_F(Translate, Invariant8WithoutInvariant3StaysWithAMessage) {
  FmdBody* body = massless();
  Nine tensor{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0};
  FMD_SetInvar8(body, 10, tensor.data());
  EXPECT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  EXPECT_THAT(log.all, ElementsAre(std::string("E:") + kNoInvar8));
  EXPECT_EQ(taken_tensor(FMD_Invar8(body, 0)), tensor);
}

TEST_F(Translate, ModesAddedSinceCountToo) {
  InvariantsModel model = InvariantsModel::random(6, 3);
  const InvariantsModel whole = model;
  model.modes.pop_back();
  FmdBody* body = make_body(model);
  learn_invariants(body);
  model = whole;
  set_mode(body, model, 2);
  ASSERT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  const auto fourth = taken(FMD_Invar4(body), 9);
  fmdtest::move(model, fmdtest::translation({0.0, 3.0, 0.0}));
  fmdtest::expect_near(column(fourth, 2).data(), model.invariant4(2).data(), 3, 1e2, "the new mode");
  EXPECT_EQ(taken_tensor(FMD_Invar8(body, 2)), Nine{});
}

TEST_F(Translate, MovesNothingWhereMassPropertiesCannotBeHad) {
  FmdBody* body = make_body(InvariantsModel::random(6, 2));
  const Three before = place_of(body, 3);
  for (int nth = 1; nth <= 3; ++nth) {
    fmd::fail_allocation(nth);
    EXPECT_EQ(FMD_Translate(body, along_y, 3.0), 0) << nth;
    fmd::fail_allocation(0);
    EXPECT_EQ(place_of(body, 3), before) << nth;
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.back(), "dbinvar"));
  }
}

TEST_F(Translate, ReadsAnInvariantOfTheDatasetBeforeAnythingMoves) {
  FmdBody* body = massless();
  FmdStream& stream = body->DataFile;
  stream.Block = DB_OpenScratch(&stream.Key);
  stream.DoublePrecision = 1;
  const double third[] = {0.0, 1.0, 0.0, 0.0, 0.0, 2.0};
  const double fourth[] = {0.0, 10.0, 0.0, 20.0, 0.0, 30.0};
  const int modes = 2;
  for (const auto& [id, values] : {std::pair(20, third), std::pair(21, fourth)}) {
    DB_FSAVE(&body->BlockPosition[id], stream);
    ASSERT_EQ(DB_WriteINTs(stream, &modes, 1), 1);
    ASSERT_EQ(DB_WriteDOUBLEs(stream, values, 6), 1);
    ASSERT_EQ(DB_WriteEOR(stream), 1);
    body->BlockExists[id - 1] = 1;
  }
  ASSERT_EQ(DB_ReOpenScratch(stream.Block), 1);
  ASSERT_EQ(FMD_Translate(body, along_y, 3.0), 1);
  EXPECT_EQ(taken(FMD_Invar4(body), 6), (std::vector<double>{0.0, 16.0, 0.0, 20.0, 0.0, 27.0}));
  EXPECT_EQ(taken(FMD_Invar3(body), 6), std::vector<double>(third, third + 6));
}

TEST_F(Translate, RecomputingInvariant4NeedsNodalMass) {
  FmdBody* body = massless();
  EXPECT_FALSE(fmd::recompute_invar4(body));
  EXPECT_THAT(log.all,
              ElementsAre("E:Can not Compute Invar4 because Nodal Mass information is not presented."));
  EXPECT_NE(body->Invar4, nullptr);
}

TEST_F(Translate, RecomputingInvariant4WithoutNodesHasNoRoom) {
  FmdBody* body = FMD_Create(3, 2);
  FMD_AddMode(body, 10);
  double moment[] = {10.0, 20.0, 30.0};
  FMD_SetInvar4(body, 10, moment);
  body->BlockExists[fmd::kNodalMasses] = 1;
  EXPECT_FALSE(fmd::recompute_invar4(body));
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors[0], "dbinvar"));
  EXPECT_EQ(taken(FMD_Invar4(body), 3), (std::vector<double>{10.0, 20.0, 30.0}));
}

TEST(InertiaShift, AddsWhatTheNewPlaceHasAndTakesWhatTheOldOneHad) {
  const double from[] = {1.0, 0.0, 0.0};
  const double to[] = {1.0, 2.0, 3.0};
  double inertia[9] = {10.0, 20.0, 30.0, 40.0, 50.0, 60.0, 70.0, 80.0, 90.0};
  fmd::shift_inertia(2.0, from, to, inertia);
  EXPECT_THAT(inertia, ElementsAre(36.0, 24.0, 36.0, 44.0, 68.0, 72.0, 76.0, 92.0, 98.0));
}

}  // namespace
