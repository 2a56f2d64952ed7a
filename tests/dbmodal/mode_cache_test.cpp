#include <gmock/gmock.h>

#include <string>

#include "dbmodal/mode_model.h"
#include "messages/memory.h"

namespace {

using fmdtest::EnvironmentVariable;
using testing::ElementsAre;
using testing::IsEmpty;

// A body with the counts given and no data behind them, enough to size the cache.
class ModeCache : public fmdtest::ModeStoreTest {
 protected:
  int capacity(int nodes, int modes) {
    FmdBody* body = FMD_Create(1, 1);
    body->ModeNodeCount[0] = nodes;
    body->ModeCount = modes;
    FMD_InitializeModeMemory(body);
    const int result = body->ModeMemoryCapacity;
    body->ModeNodeCount[0] = 0;
    body->ModeCount = 0;
    FMD_UnLink(body);
    return result;
  }

  int capacity_of_setting(const char* megabytes, int nodes, int modes) {
    const EnvironmentVariable setting("FMD_MAX_MODE_MEMORY", megabytes);
    return capacity(nodes, modes);
  }
};

TEST_F(ModeCache, HoldsWhatTheBudgetAllowsButThreeVectorsAMode) {
  EXPECT_EQ(capacity(1000, 10), 30);
  EXPECT_EQ(capacity(1000000, 10), 8);
  EXPECT_EQ(capacity(209715200 / 24, 10), 1);
  EXPECT_EQ(capacity(209715200 / 24 + 1, 10), 0);
  EXPECT_EQ(capacity(1000, 0), 0);
}

TEST_F(ModeCache, IsSizedInTruncatingSteps) {
  // 209715200 / 3000000 is 69, and 69 / 24 is 2.
  EXPECT_EQ(capacity(3000000, 100), 2);
}

TEST_F(ModeCache, IsSizedByTheTypeWithTheMostNodes) {
  FmdBody* body = FMD_Create(1, 1);
  body->ModeNodeCount[0] = 10;
  body->ModeNodeCount[2] = 1000000;
  body->ModeCount = 10;
  FMD_InitializeModeMemory(body);
  EXPECT_EQ(body->ModeMemoryCapacity, 8);
  body->ModeNodeCount[0] = body->ModeNodeCount[2] = body->ModeCount = 0;
}

TEST_F(ModeCache, ABodyWithoutNodesLeavesTheCapacityAtZero) {
  EXPECT_EQ(capacity(0, 10), 0);
}

TEST_F(ModeCache, TheEnvironmentSetsTheBudgetInMegabytes) {
  EXPECT_EQ(capacity_of_setting("1", 10000, 10), 4);
  EXPECT_EQ(capacity_of_setting(" 12", 10000, 1000), 52);
  EXPECT_EQ(capacity_of_setting("12 and more", 10000, 1000), 52);
}

TEST_F(ModeCache, ASettingThatIsNoNumberAboveZeroLeavesTheDefault) {
  for (const char* setting : {"0", "-5", "plenty", "", "-4096"})
    EXPECT_EQ(capacity_of_setting(setting, 1000000, 10), 8) << setting;
}

TEST_F(ModeCache, AHundredCharactersOfTheSettingAreRead) {
  const std::string just_read = std::string(98, '0') + "12";
  EXPECT_EQ(capacity_of_setting(just_read.c_str(), 10000, 1000), 52);
  const std::string half_read = std::string(99, '0') + "12";
  EXPECT_EQ(capacity_of_setting(half_read.c_str(), 10000, 1000), 4);
}

TEST_F(ModeCache, LargeSettingsWrapAroundInThirtyTwoBits) {
  EXPECT_EQ(capacity_of_setting("4096", 1000, 10), 0);
  EXPECT_EQ(capacity_of_setting("4097", 10000, 10), 4);
  EXPECT_EQ(capacity_of_setting("2048", 1000000, 10), -89);
  EXPECT_EQ(capacity_of_setting("99999999999999999999", 1000000, 10), -1048576 / 1000000 / 24);
}

TEST_F(ModeCache, ABudgetOfZeroCachesNothing) {
  const EnvironmentVariable setting("FMD_MAX_MODE_MEMORY", "4096");
  FmdBody* body = make_body(2, 2);
  EXPECT_EQ(read_half(body, 1, 0, 0), expected_half(1, 0, 0));
  EXPECT_EQ(FMD_ModetoMemory(body, 1, 0, expected_half(1, 0, 0).data(), 0), 0);
  EXPECT_EQ(body->ModeMemoryCapacity, 0);
  EXPECT_EQ(body->ModeMemoryUsed, 0);
  setenv("FMD_MAX_MODE_MEMORY", "1", 1);
  EXPECT_EQ(FMD_ModetoMemory(body, 1, 0, expected_half(1, 0, 0).data(), 0), 1) << "it is sized at each store";
}

TEST_F(ModeCache, ANegativeBudgetCachesNothing) {
  const EnvironmentVariable setting("FMD_MAX_MODE_MEMORY", "2048");
  FmdBody* body = make_body(2, 2);
  EXPECT_EQ(read_half(body, 1, 0, 0), expected_half(1, 0, 0));
  EXPECT_LT(body->ModeMemoryCapacity, 0);
  EXPECT_EQ(body->ModeMemoryUsed, 0);
}

TEST_F(ModeCache, ReadingFillsItAndIsAnsweredFromIt) {
  FmdBody* body = make_body(3, 2);
  const std::vector<double> stored = read_half(body, 1, 0, 1);
  EXPECT_EQ(body->ModeMemoryUsed, 1);
  ASSERT_NE(body->ModeMemory[0][1], nullptr);
  EXPECT_EQ(body->ModeMemory[0][0], nullptr);
  body->ModeMemory[0][1][0][4] = -7.0;

  std::vector<double> marked = stored;
  marked[4] = -7.0;
  EXPECT_EQ(read_half(body, 1, 0, 1), marked);
  double* reference = nullptr;
  ASSERT_EQ(FMD_ModeByRef(body, 1, 0, &reference, 1), 1);
  EXPECT_EQ(reference, body->ModeMemory[0][1][0]);
  double values[3];
  ASSERT_EQ(FMD_ModeByNode(body, 1, 0, 2, values, 1), 1);
  EXPECT_EQ(values[1], -7.0);
  EXPECT_EQ(body->ModeMemoryUsed, 1);
}

TEST_F(ModeCache, EveryReadingOfAHalfFillsIt) {
  FmdBody* body = make_body(3, 2);
  double* reference = nullptr;
  double values[3];
  ASSERT_EQ(FMD_ModeByRef(body, 1, 0, &reference, 0), 1);
  EXPECT_EQ(reference, body->ModeRefBuffer);
  ASSERT_EQ(FMD_ModeByNode(body, 2, 0, 3, values, 1), 1);
  EXPECT_EQ(body->ModeMemoryUsed, 2);
  std::vector<double> half(9);
  ASSERT_EQ(FMD_ModeFromMemory(body, 1, 0, half.data(), 0), 1);
  EXPECT_EQ(half, expected_half(1, 0, 0));
  ASSERT_EQ(FMD_ModeFromMemory(body, 2, 0, half.data(), 1), 1);
  EXPECT_EQ(half, expected_half(2, 0, 1));
}

TEST_F(ModeCache, WhatIsNotCachedIsNotFound) {
  FmdBody* body = make_body(3, 2);
  std::vector<double> half(9, 5.0);
  double* reference = half.data();
  double values[3] = {5, 5, 5};
  for (int round = 0; round < 2; ++round) {
    EXPECT_EQ(FMD_ModeFromMemory(body, 1, 0, half.data(), 0), 0);
    EXPECT_EQ(FMD_ModeFromMemoryByRef(body, 1, 0, &reference, 0), 0);
    EXPECT_EQ(FMD_ModeFromMemoryByNode(body, 1, 0, 1, values, 0), 0);
    EXPECT_EQ(FMD_ModeFromMemory(body, 8, 0, half.data(), 0), 0);
    EXPECT_EQ(FMD_ModeFromMemory(body, 1, 3, half.data(), 0), 0);
    read_half(body, 2, 0, 0);  // now there is an array of pointers, but none for the first mode
  }
  EXPECT_EQ(FMD_ModeFromMemoryByNode(body, 2, 0, 77, values, 0), 0);
  EXPECT_EQ(half, std::vector<double>(9, 5.0));
  EXPECT_EQ(reference, half.data());
  EXPECT_THAT(values, ElementsAre(5, 5, 5));
}

TEST_F(ModeCache, ACallerMayPutHalvesInAndReplaceThem) {
  FmdBody* body = make_body(2, 2);
  std::vector<double> half = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(FMD_ModetoMemory(body, 2, 0, half.data(), 0), 1);
  half[0] = 9;
  EXPECT_EQ(FMD_ModetoMemory(body, 2, 0, half.data(), 0), 1);
  EXPECT_EQ(body->ModeMemoryUsed, 1);
  double values[3];
  EXPECT_EQ(FMD_ModeFromMemoryByNode(body, 2, 0, 1, values, 0), 1);
  EXPECT_THAT(values, ElementsAre(9, 2, 3));
  EXPECT_EQ(FMD_ModetoMemory(body, 7, 0, half.data(), 0), 0) << "no such mode";
  EXPECT_EQ(FMD_ModetoMemory(body, 2, 3, half.data(), 0), 0) << "no such type";
  EXPECT_EQ(body->ModeMemoryUsed, 1);
  EXPECT_THAT(log.errors, IsEmpty());
}

TEST_F(ModeCache, AHalfOfNoNodesIsAFailedAllocation) {
  FmdBody* body = make_body(2, 2);
  double values[3] = {};
  EXPECT_EQ(FMD_ModetoMemory(body, 1, 1, values, 0), 0);
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors[0], "dbdata"));
  EXPECT_EQ(body->ModeMemoryUsed, 0);
}

TEST_F(ModeCache, AFullCacheKeepsWhatItHasAndTakesNoMore) {
  const EnvironmentVariable setting("FMD_MAX_MODE_MEMORY", "1");
  const int nodes = 1048576 / 24 / 2;
  FmdBody* body = FMD_Create(nodes, 3);
  for (int node = 1; node <= nodes; ++node) FMD_AddNode(body, node);
  for (int mode = 1; mode <= 3; ++mode) FMD_SetMode(body, mode, 1, 0, mode, 0, 0, 0, 0, 0);
  for (const int mode : {2, 1, 3, 2}) {
    const std::vector<double> half = read_half(body, mode, 0, 0);
    ASSERT_FALSE(half.empty());
    EXPECT_EQ(half[0], mode);
  }
  EXPECT_EQ(body->ModeMemoryCapacity, 2);
  EXPECT_EQ(body->ModeMemoryUsed, 2);
  EXPECT_NE(body->ModeMemory[0][0][0], nullptr);
  EXPECT_NE(body->ModeMemory[0][0][1], nullptr);
  EXPECT_EQ(body->ModeMemory[0][0][2], nullptr);
  EXPECT_THAT(log.errors, IsEmpty());
}

TEST_F(ModeCache, CleaningEmptiesItAndTheNextStoreSizesItAnew) {
  FmdBody* body = make_body(2, 2);
  read_half(body, 1, 0, 0);
  read_half(body, 2, 0, 1);
  FMD_CleanModesInMemory(body);
  EXPECT_EQ(body->ModeMemoryCapacity, 0);
  EXPECT_EQ(body->ModeMemoryUsed, 0);
  for (auto& type : body->ModeMemory)
    for (double** rows : type) EXPECT_EQ(rows, nullptr);
  EXPECT_EQ(read_half(body, 1, 0, 0), expected_half(1, 0, 0));
  EXPECT_EQ(body->ModeMemoryCapacity, 6);
  EXPECT_EQ(body->ModeMemoryUsed, 1);
}

TEST_F(ModeCache, SwitchingItOffEmptiesItAndStopsItsUse) {
  FmdBody* body = make_body(2, 2);
  int flag = -1;
  EXPECT_EQ(FMD_GetKeepModesInMemory(body, &flag), 1);
  EXPECT_EQ(flag, 1);
  read_half(body, 1, 0, 0);
  FMD_SetKeepModesInMemory(body, 0);
  EXPECT_EQ(FMD_GetKeepModesInMemory(body, &flag), 0);
  EXPECT_EQ(flag, 0);
  EXPECT_EQ(body->ModeMemoryUsed, 0);
  EXPECT_EQ(body->ModeMemoryCapacity, 0);
  double values[3];
  double* reference = nullptr;
  read_half(body, 1, 0, 0);
  FMD_ModeByRef(body, 1, 0, &reference, 0);
  FMD_ModeByNode(body, 1, 0, 1, values, 0);
  EXPECT_EQ(body->ModeMemoryUsed, 0);

  // What a caller puts in while it is off is not looked at.
  std::vector<double> strange(6, -1.0);
  EXPECT_EQ(FMD_ModetoMemory(body, 1, 0, strange.data(), 0), 1);
  EXPECT_EQ(read_half(body, 1, 0, 0), expected_half(1, 0, 0));
  FMD_SetKeepModesInMemory(body, 7);
  EXPECT_EQ(FMD_GetKeepModesInMemory(body, &flag), 7);
  EXPECT_EQ(read_half(body, 1, 0, 0), strange);
}

TEST_F(ModeCache, ACachedVectorThatNewNodesMadeTooShortCountsAsAbsent) {
  FmdBody* body = FMD_Create(4, 2);
  set(body, 1, 1, 0);
  set(body, 2, 1, 0);
  read_half(body, 1, 0, 0);
  read_half(body, 2, 0, 1);
  EXPECT_EQ(body->ModeMemoryUsed, 2);
  set(body, 1, 2, 0);
  double values[6];
  double* reference = nullptr;
  EXPECT_EQ(FMD_ModeFromMemory(body, 1, 0, values, 0), 0);
  EXPECT_EQ(FMD_ModeFromMemoryByRef(body, 1, 0, &reference, 0), 0);
  EXPECT_EQ(FMD_ModeFromMemoryByNode(body, 1, 0, 2, values, 0), 0);
  EXPECT_EQ(read_half(body, 1, 0, 0), expected_half(1, 0, 0));
  EXPECT_EQ(read_half(body, 2, 0, 1), expected_half(2, 0, 1));
  EXPECT_EQ(body->ModeMemoryUsed, 2);
}

TEST_F(ModeCache, ItsArraysFollowNewModes) {
  FmdBody* body = FMD_Create(2, 100);
  for (int mode = 1; mode <= 100; ++mode) {
    set(body, mode, 1, 0);
    EXPECT_EQ(read_half(body, mode, 0, 0), expected_half(mode, 0, 0));
    EXPECT_EQ(read_half(body, mode, 0, 0), expected_half(mode, 0, 0));
  }
  FMD_CleanModesInMemory(body);
  for (int mode = 1; mode <= 100; ++mode) read_half(body, mode, 0, 0);
  EXPECT_EQ(body->ModeMemoryUsed, 100);
  for (int mode = 1; mode <= 100; ++mode) EXPECT_EQ(read_half(body, mode, 0, 0), expected_half(mode, 0, 0));
}

TEST_F(ModeCache, WithoutMemoryReadingGoesOnPastIt) {
  FmdBody* body = make_body(2, 2);
  read_half(body, 1, 0, 1);  // the buffers are there
  FMD_CleanModesInMemory(body);
  for (int allocation = 1; allocation <= 2; ++allocation) {
    log.clear();
    std::vector<double> half(6);
    fmd::fail_allocation(allocation);
    EXPECT_EQ(FMD_Mode(body, 1, 0, half.data(), 0), 1);
    fmd::fail_allocation(0);
    EXPECT_EQ(half, expected_half(1, 0, 0));
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors[0], "dbdata"));
    EXPECT_EQ(body->ModeMemoryUsed, 0);
  }
}

}  // namespace
