#include "messages/memory.h"

#include <gtest/gtest.h>

#include <limits>

#include "support/message_log.h"

namespace {

using fmdtest::is_allocation_failure;
using fmdtest::MessageLog;

TEST(Memory, GivesZeroedStorage) {
  const MessageLog log;
  const auto values = fmd::allocate<double>(7, "dbset");
  ASSERT_NE(values, nullptr);
  for (int i = 0; i < 7; ++i) EXPECT_EQ(values[i], 0.0);
  EXPECT_TRUE(log.all.empty());
}

TEST(Memory, NoEntriesCountAsFailure) {
  const MessageLog log;
  EXPECT_EQ(fmd::allocate<int>(0, "dbset"), nullptr);
  EXPECT_EQ(fmd::allocate<int>(-3, "dbdata"), nullptr);
  ASSERT_EQ(log.errors.size(), 2U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbset"));
  EXPECT_TRUE(is_allocation_failure(log.errors[1], "dbdata"));
}

TEST(Memory, NamesTheLineOfTheCaller) {
  const MessageLog log;
  const int line = __LINE__ + 1;
  EXPECT_EQ(fmd::allocate<int>(0, "dbread"), nullptr);
  EXPECT_EQ(log.errors.at(0),
            "Failed to allocate memory at line " + std::to_string(line) + " in file dbread.\n");
}

TEST(Memory, RefusesSizesBeyondMemory) {
  const MessageLog log;
  EXPECT_EQ(fmd::allocate<double>(std::numeric_limits<std::int64_t>::max() / 4, "dbset"), nullptr);
  EXPECT_EQ(log.errors.size(), 1U);
}

TEST(Memory, FailsTheNthAllocationOnly) {
  const MessageLog log;
  fmd::fail_allocation(2);
  EXPECT_NE(fmd::allocate<int>(1, "dbset"), nullptr);
  EXPECT_FALSE(fmd::allocation_has_failed());
  EXPECT_EQ(fmd::allocate<int>(1, "dbset"), nullptr);
  EXPECT_TRUE(fmd::allocation_has_failed());
  EXPECT_NE(fmd::allocate<int>(1, "dbset"), nullptr);
  fmd::fail_allocation(0);
}

TEST(Memory, GrowKeepsTheOldStorageOnFailure) {
  auto* values = static_cast<int*>(fmd::allocate_quietly(2, sizeof(int)));
  values[1] = 42;
  int* const before = values;
  EXPECT_FALSE(fmd::grow(values, 0));
  EXPECT_EQ(values, before);
  EXPECT_TRUE(fmd::grow(values, 1000));
  EXPECT_EQ(values[1], 42);
  fmd::release(values);
  EXPECT_EQ(values, nullptr);
}

}  // namespace
