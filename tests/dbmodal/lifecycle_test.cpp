#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "body/body.h"
#include "dbmodal/block_table.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using Lifecycle = fmdtest::SessionTest;

TEST_F(Lifecycle, ANewBodyIsInItsInitialState) {
  FmdBody* const body = FMD_Create(12, 5);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_Version(body), 31);
  EXPECT_EQ(body->PlannedNodeCount, 12);
  EXPECT_EQ(body->PlannedModeCount, 5);
  EXPECT_EQ(body->ReferenceCount, 1);
  EXPECT_EQ(body->KeepModesInMemory, 1);
  EXPECT_EQ(body->FreeEdgeCount, -1);
  EXPECT_EQ(body->DataFile.DoublePrecision, 1);
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    EXPECT_EQ(body->ModeFile[type].DoublePrecision, 1);
    EXPECT_EQ(body->LoadedModeIndex[type], -1);
  }
  for (int quantity = 0; quantity < 4; ++quantity) {
    EXPECT_EQ(body->UnitStepFactor[quantity], 1.0);
    EXPECT_EQ(body->UnitTotalFactor[quantity], 1.0);
  }
  EXPECT_EQ(body->Nodes, nullptr);
  EXPECT_EQ(FMD_NodeCount(body), 0);
  EXPECT_EQ(FMD_ModeCount(body), 0);
}

TEST_F(Lifecycle, BodiesAreListedOldestFirst) {
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
  FmdBody* const first = FMD_Create(1, 1);
  FmdBody* const second = FMD_Create(1, 1);
  FmdBody* const third = FMD_Create(1, 1);
  EXPECT_EQ(FMD_GetFirstFMD(), first);
  FMD_UnLink(second);
  EXPECT_EQ(FMD_IsValid(second), 0);
  EXPECT_EQ(FMD_IsValid(third), 1);
  FMD_UnLink(first);
  EXPECT_EQ(FMD_GetFirstFMD(), third);
}

TEST_F(Lifecycle, UnlinkIgnoresReferences) {
  FmdBody* const body = FMD_Create(1, 1);
  body->ReferenceCount = 2;
  FMD_UnLink(body);
  EXPECT_EQ(FMD_IsValid(body), 0);
}

TEST_F(Lifecycle, DereferenceReleasesWithTheLastReference) {
  FmdBody* const body = FMD_Create(1, 1);
  body->ReferenceCount = 2;
  FMD_DeReference(body);
  EXPECT_EQ(FMD_IsValid(body), 1);
  EXPECT_EQ(body->ReferenceCount, 1);
  FMD_DeReference(body);
  EXPECT_EQ(FMD_IsValid(body), 0);
}

TEST_F(Lifecycle, HandlesThatAreNotListedAreLeftAlone) {
  FmdBody stranger{};
  FmdBody* const body = FMD_Create(1, 1);
  FMD_DeReference(&stranger);
  FMD_UnLink(&stranger);
  FMD_UnLink(nullptr);
  FMD_DeReference(nullptr);
  EXPECT_EQ(FMD_IsValid(&stranger), 0);
  EXPECT_EQ(FMD_IsValid(body), 1);
  EXPECT_EQ(FMD_IsValid(nullptr), 0);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Lifecycle, TerminateReleasesAllAndANewSessionMayFollow) {
  FMD_Terminate();
  FmdBody* const body = FMD_Create(1, 1);
  body->ReferenceCount = 3;
  FMD_Create(1, 1);
  FMD_Destroy();
  EXPECT_EQ(FMD_IsValid(body), 1);
  FMD_Terminate();
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
  EXPECT_NE(FMD_Create(1, 1), nullptr);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Lifecycle, WithoutTheDatabaseDirectoryNoBodyIsMade) {
  const fmdtest::EnvironmentVariable unset("KXI_KADCDB_DIR", nullptr);
  EXPECT_EQ(FMD_Create(1, 1), nullptr);
  EXPECT_EQ(log.errors, std::vector<std::string>{"Cannot get KXI_KADCDB_DIR."});
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
}

TEST_F(Lifecycle, ReleasingTheLastBodyKeepsTheSession) {
  FMD_UnLink(FMD_Create(1, 1));
  const fmdtest::EnvironmentVariable unset("KXI_KADCDB_DIR", nullptr);
  EXPECT_NE(FMD_Create(1, 1), nullptr);
}

TEST_F(Lifecycle, FailedAllocationOfTheRecordIsSilent) {
  ASSERT_EQ(DB_StartBase(), 1);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_Create(1, 1), nullptr);
  fmd::fail_allocation(0);
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
  EXPECT_NE(FMD_Create(1, 1), nullptr);
}

TEST_F(Lifecycle, CheckReportsOnlyTheNullHandle) {
  FmdBody* const body = FMD_Create(1, 1);
  EXPECT_EQ(CheckFMD(body), 1);
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(CheckFMD(nullptr), 0);
  EXPECT_EQ(log.errors, std::vector<std::string>{"The database has not been initialized."});
}

TEST_F(Lifecycle, ExistsAnswersTheStoredByte) {
  FmdBody* const body = FMD_Create(1, 1);
  for (int id = 0; id < 3; ++id) EXPECT_EQ(FMD_Exists(body, id), 1);
  EXPECT_EQ(FMD_Exists(body, 35), 0);
  EXPECT_EQ(FMD_Exists(body, -1), 0);
  EXPECT_EQ(FMD_Exists(nullptr, 0), 0);
  // Bytes 7 and 11 of the summary are reserved: ids 3 to 34 take the others in turn.
  int id = 3;
  for (int byte = 0; byte <= 33; ++byte) {
    if (byte == 7 || byte == 11) continue;
    EXPECT_EQ(FMD_Exists(body, id), 0) << id;
    body->BlockExists[byte] = 5;
    EXPECT_EQ(FMD_Exists(body, id), 5) << id;
    ++id;
  }
  EXPECT_EQ(id, 35);
}

TEST(BlockTable, NumbersAscendAndLabelsCarryThem) {
  int number = 1;
  for (const fmd::Block& block : fmd::block_table()) {
    EXPECT_EQ(block.number, number);
    EXPECT_NE(std::string(block.name).find("(" + std::to_string(number) + ")"), std::string::npos);
    ++number;
  }
  EXPECT_EQ(number, 36);
}

TEST_F(Lifecycle, FreeMemoryIgnoresNull) {
  FMD_FreeMemory(nullptr);
}

}  // namespace
