// Invariants 3, 4, 6 and 8 from nodes and mode shapes.
#include <gtest/gtest.h>

#include "dbmodal/invariants_model.h"

namespace {

using fmdtest::expect_near;
using fmdtest::InvariantsModel;
using fmdtest::Nine;
using fmdtest::Three;

class InvariantsOfModes : public fmdtest::InvariantsTest {};

TEST_F(InvariantsOfModes, AreSumsOfMatrixProductsOverTheNodes) {
  const InvariantsModel model = InvariantsModel::random(23, 5);
  FmdBody* body = make_body(model);
  const std::vector<double> third = taken(FMD_Invar3(body), 15);
  const std::vector<double> fourth = taken(FMD_Invar4(body), 15);
  ASSERT_EQ(third.size(), 15U);
  ASSERT_EQ(fourth.size(), 15U);
  for (std::size_t mode = 0; mode < 5; ++mode) {
    expect_near(column(third, mode).data(), model.invariant3(mode).data(), 3, 200.0, "invariant 3");
    expect_near(column(fourth, mode).data(), model.invariant4(mode).data(), 3, 200.0, "invariant 4");
    const Nine eighth = taken_tensor(FMD_Invar8(body, static_cast<int>(mode)));
    expect_near(eighth.data(), model.invariant8(mode).data(), 9, 200.0, "invariant 8");
  }
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantsOfModes, HaveTheValuesWorkedOutByHand) {
  FmdBody* body = FMD_Create(2, 1);
  FMD_SetNodeCoordinates(body, 1, 1.0, 0.0, 0.0);
  FMD_SetNodalMass(body, 1, 2.0);
  FMD_SetNodalInertia(body, 1, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0);
  FMD_SetMode(body, 7, 1, 0, 0.0, 3.0, 0.0, 1.0, 10.0, 100.0);
  EXPECT_EQ(taken(FMD_Invar3(body), 3), (std::vector<double>{0.0, 6.0, 0.0}));
  // 2 (1 0 0) x (0 3 0) = (0 0 6), and the tensor times (1 10 100).
  EXPECT_EQ(taken(FMD_Invar4(body), 3), (std::vector<double>{541.0, 624.0, 365.0 + 6.0}));
  // ~r ~phi = phi r^T - (r . phi) 1
  EXPECT_EQ(taken(FMD_Invar8(body, 0), 9),
            (std::vector<double>{0.0, 0.0, 0.0, 6.0, 0.0, 0.0, 0.0, 0.0, 0.0}));
}

TEST_F(InvariantsOfModes, AreCopiesOfWhatStaysInTheBody) {
  const InvariantsModel model = InvariantsModel::random(4, 2);
  FmdBody* body = make_body(model);
  for (const auto& [getter, count] : {std::pair(
                                          +[](FmdBody* b) { return FMD_Invar3(b); }, 6),
                                      std::pair(
                                          +[](FmdBody* b) { return FMD_Invar4(b); }, 6),
                                      std::pair(
                                          +[](FmdBody* b) { return FMD_Invar8(b, 1); }, 9)}) {
    double* first = getter(body);
    ASSERT_NE(first, nullptr);
    const double kept = first[0];
    first[0] = 1e9;
    FMD_FreeMemory(first);
    FMD_SetNodalMass(body, model.nodes[0].id, 77.0);
    EXPECT_EQ(taken(getter(body), static_cast<std::size_t>(count))[0], kept);
  }
}

TEST_F(InvariantsOfModes, WithoutNodalMassThirdAndFourthAreZeros) {
  FmdBody* body = make_body(InvariantsModel::random(6, 3), false);
  body->GlobalMass = 12.0;
  body->GlobalCenterOfMass[0] = 1.0;
  EXPECT_EQ(taken(FMD_Invar3(body), 9), std::vector<double>(9, 0.0));
  EXPECT_EQ(taken(FMD_Invar4(body), 9), std::vector<double>(9, 0.0));
  EXPECT_EQ(taken(FMD_Invar8(body, 0), 9), std::vector<double>(9, 0.0));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantsOfModes, EighthIsSummedWhereMassesAreThereWithoutTheirMark) {
  const InvariantsModel model = InvariantsModel::random(6, 2);
  FmdBody* body = make_body(model);
  body->BlockExists[fmd::kNodalMasses] = 0;
  const Nine eighth = taken_tensor(FMD_Invar8(body, 1));
  expect_near(eighth.data(), model.invariant8(1).data(), 9, 100.0, "invariant 8");
  EXPECT_EQ(taken(FMD_Invar3(body), 6), std::vector<double>(6, 0.0));
}

TEST_F(InvariantsOfModes, WithoutNodesTheScratchCannotBeHad) {
  FmdBody* body = FMD_Create(1, 2);
  FMD_AddMode(body, 1);
  EXPECT_EQ(FMD_Invar8(body, 0), nullptr);
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors[0], "dbinvar"));
  log.clear();
  body->BlockExists[fmd::kNodalMasses] = 1;
  EXPECT_EQ(FMD_Invar3(body), nullptr);
  EXPECT_EQ(FMD_Invar4(body), nullptr);
  ASSERT_EQ(log.errors.size(), 2U);
  for (const std::string& error : log.errors)
    EXPECT_TRUE(fmdtest::is_allocation_failure(error, "dbinvar")) << error;
}

TEST_F(InvariantsOfModes, ModesWithoutShapesCountAsZero) {
  FmdBody* body = FMD_Create(2, 2);
  FMD_SetNodeCoordinates(body, 1, 1.0, 2.0, 3.0);
  FMD_SetNodalMass(body, 1, 2.0);
  FMD_AddMode(body, 1);
  EXPECT_EQ(taken(FMD_Invar3(body), 3), std::vector<double>(3, 0.0));
  EXPECT_EQ(taken(FMD_Invar4(body), 3), std::vector<double>(3, 0.0));
  EXPECT_EQ(taken(FMD_Invar8(body, 0), 9), std::vector<double>(9, 0.0));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantsOfModes, AreNullWithoutModesAndForIndicesOutOfRange) {
  FmdBody* body = FMD_Create(2, 2);
  FMD_SetNodalMass(body, 1, 2.0);
  EXPECT_EQ(FMD_Invar3(body), nullptr);
  EXPECT_EQ(FMD_Invar4(body), nullptr);
  EXPECT_EQ(FMD_Invar6(body), nullptr);
  EXPECT_EQ(FMD_Invar8(body, 0), nullptr);
  FMD_AddMode(body, 1);
  EXPECT_EQ(FMD_Invar8(body, 1), nullptr);
  EXPECT_EQ(FMD_Invar8(body, -1), nullptr);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantsOfModes, RefuseANullBodyWithOneMessageEach) {
  EXPECT_EQ(FMD_Invar3(nullptr), nullptr);
  EXPECT_EQ(FMD_Invar4(nullptr), nullptr);
  EXPECT_EQ(FMD_Invar6(nullptr), nullptr);
  EXPECT_EQ(FMD_Invar8(nullptr, 0), nullptr);
  EXPECT_EQ(log.errors, std::vector<std::string>(4, "The database has not been initialized."));
}

TEST_F(InvariantsOfModes, SixthIsTheGeneralizedMass) {
  FmdBody* body = FMD_Create(1, 3);
  FMD_SetGeneralizedMass(body, 4, 4, 1.0);
  FMD_SetGeneralizedMass(body, 2, 4, 0.25);
  FMD_SetGeneralizedMass(body, 2, 2, 3.0);
  EXPECT_EQ(taken(FMD_Invar6(body), 4), (std::vector<double>{1.0, 0.25, 0.25, 3.0}));
}

TEST_F(InvariantsOfModes, FollowWhenModesAreAdded) {
  const InvariantsModel model = InvariantsModel::random(5, 2);
  FmdBody* body = make_body(model);
  const std::vector<double> third = taken(FMD_Invar3(body), 6);
  const std::vector<double> fourth = taken(FMD_Invar4(body), 6);
  const std::vector<double> eighth = taken(FMD_Invar8(body, 1), 9);
  FMD_AddMode(body, 1000);
  FMD_AddMode(body, 1001);
  const std::vector<double> wide_third = taken(FMD_Invar3(body), 12);
  const std::vector<double> wide_fourth = taken(FMD_Invar4(body), 12);
  ASSERT_EQ(wide_third.size(), 12U);
  ASSERT_EQ(wide_fourth.size(), 12U);
  for (std::size_t mode = 0; mode < 4; ++mode) {
    EXPECT_EQ(column(wide_third, mode), mode < 2 ? column(third, mode) : Three{});
    EXPECT_EQ(column(wide_fourth, mode), mode < 2 ? column(fourth, mode) : Three{});
  }
  EXPECT_EQ(taken(FMD_Invar8(body, 1), 9), eighth);
  EXPECT_EQ(taken(FMD_Invar8(body, 3), 9), std::vector<double>(9, 0.0));
}

TEST_F(InvariantsOfModes, ReadEachHalfThroughTheModeCache) {
  const InvariantsModel model = InvariantsModel::random(8, 3);
  FmdBody* body = make_body(model);
  taken(FMD_Invar3(body), 9);
  EXPECT_EQ(body->ModeMemoryUsed, 3);
  taken(FMD_Invar4(body), 9);
  EXPECT_EQ(body->ModeMemoryUsed, 6);
}

}  // namespace
