// The second face of the library.
#include <gtest/gtest.h>

#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using Forwarders = fmdtest::SessionTest;

TEST_F(Forwarders, PassArgumentsAndResultsOn) {
  FmdBody* const body = DB_Create(3, 2);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(DB_IsValid(body), 1);
  EXPECT_EQ(DB_SetNodeCoordinates(body, 7, 1.0, 2.0, 3.0), 1);
  double xyz[3];
  EXPECT_EQ(DB_NodeCoordinates(body, 0, xyz), 1);
  EXPECT_EQ(xyz[2], 3.0);
  EXPECT_EQ(DB_SetMode(body, 4, 7, 0, 1, 2, 3, 4, 5, 6), 1);
  double half[3];
  EXPECT_EQ(DB_Mode(body, 4, 0, half, 1), 1);
  EXPECT_EQ(half[2], 6.0);
  EXPECT_EQ(DB_Version(body), 31);
  EXPECT_EQ(DB_Exists(body, 7), 1);
  EXPECT_EQ(DB_UCF(body), 1.0);
  EXPECT_EQ(DB_ModeNumber(nullptr, 0), -1);
  EXPECT_EQ(log.errors.size(), 1U);
  DB_UnLink(body);
  EXPECT_EQ(DB_IsValid(body), 0);
}

TEST_F(Forwarders, FacesTravelAsFurtherArguments) {
  FmdBody* const body = FMD_Create(3, 2);
  EXPECT_EQ(DB_SetFace(body, 0), 0);
  EXPECT_EQ(DB_SetFace(body, -4), 0);
  EXPECT_EQ(DB_SetFace(body, 3, 11, 12, 13), 1);
  int list[4];
  EXPECT_EQ(DB_ElementFaces(body, list), 1);
  EXPECT_EQ((std::vector<int>(list, list + 4)), (std::vector<int>{3, 0, 1, 2}));
  fmd::fail_allocation(1);
  EXPECT_EQ(DB_SetFace(body, 3, 11, 12, 13), 0);
  fmd::fail_allocation(0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(0), "dbset"));
}

TEST_F(Forwarders, MassesBetweenGroupsAreAskedForByTheTypedName) {
  FmdBody* const body = FMD_Create(3, 2);
  EXPECT_EQ(DB_AnsysAddGenMass(body, 1, 1), 0);
  EXPECT_EQ(log.errors.size(), 1U);
}

TEST_F(Forwarders, FixedAnswers) {
  EXPECT_EQ(DB_GetFlexType(), 1);
  EXPECT_EQ(FMD_DiscreteMethod(), 0);
  FmdBody* const body = FMD_Create(1, 1);
  _terminate();
  DB_Destroy();
  EXPECT_EQ(FMD_IsValid(body), 1);
}

}  // namespace
