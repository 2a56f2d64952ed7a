#include <gmock/gmock.h>

#include "dbmodal/mode_model.h"
#include "messages/memory.h"

namespace {

using fmdtest::SixValues;
using testing::ElementsAre;
using testing::IsEmpty;

// Pre-stress and pre-strain are twins; each test runs on both.
class PreStress : public fmdtest::SessionTest, public testing::WithParamInterface<int> {
 protected:
  int type() const { return GetParam(); }
  int set(FmdBody* body, int node, double first) {
    SixValues six = {first, first + 1, first + 2, first + 3, first + 4, first + 5};
    return type() == 1 ? FMD_SetPreStressVec(body, node, six.data())
                       : FMD_SetPreStrainVec(body, node, six.data());
  }
  std::vector<double> stored(const FmdBody* body, int row) const {
    const double* values = (type() == 1 ? body->PreStress : body->PreStrain) + 6 * row;
    return std::vector<double>(values, values + 6);
  }
  std::int32_t capacity(const FmdBody* body) const {
    return type() == 1 ? body->PreStressCapacity : body->PreStrainCapacity;
  }
};

TEST_P(PreStress, LiesByModeNodeIndexAndMarksItsBlock) {
  FmdBody* body = FMD_Create(3, 0);
  FMD_AddNode(body, 50);
  EXPECT_EQ(set(body, 9, 10), 1);
  EXPECT_EQ(set(body, 4, 20), 1);
  EXPECT_EQ(set(body, 9, 30), 1);
  EXPECT_EQ(FMD_NodeCount(body), 3);
  EXPECT_EQ(FMD_ModeNodeCount(body, type()), 2);
  EXPECT_EQ(FMD_ModeNodeCount(body, 3 - type()), 0);
  EXPECT_EQ(FMD_ModeNodeIndex(body, type(), 9), 0);
  EXPECT_EQ(FMD_ModeNodeIndex(body, type(), 4), 1);
  EXPECT_THAT(stored(body, 0), ElementsAre(30, 31, 32, 33, 34, 35));
  EXPECT_THAT(stored(body, 1), ElementsAre(20, 21, 22, 23, 24, 25));
  for (int byte = 0; byte < 100; ++byte)
    EXPECT_EQ(body->BlockExists[byte], byte == (type() == 1 ? 29 : 30) ? 1 : 0);
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_P(PreStress, GrowsOnceForTheThousandAndFirstNode) {
  FmdBody* body = FMD_Create(3, 0);
  for (int node = 1; node <= 1001; ++node) {
    ASSERT_EQ(set(body, node, node), 1);
    ASSERT_EQ(capacity(body), node <= 1000 ? 1000 : 2000);
  }
  for (int row = 0; row < 1001; ++row) ASSERT_EQ(stored(body, row)[5], row + 6.0);
  for (int row = 1001; row < 2000; ++row) EXPECT_THAT(stored(body, row), testing::Each(0.0));
}

TEST_P(PreStress, ReachesANodeFarBeyondItsCapacity) {
  FmdBody* body = FMD_Create(3100, 1);
  for (int node = 1; node <= 3100; ++node) ASSERT_EQ(FMD_SetMode(body, 1, node, type(), 0, 0, 0, 0, 0, 0), 1);
  EXPECT_EQ(set(body, 3100, 1.0), 1);
  EXPECT_EQ(capacity(body), 4000);
  EXPECT_THAT(stored(body, 3099), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(stored(body, 3098), testing::Each(0.0));
}

TEST_P(PreStress, WithoutMemorySaysSoAndKeepsWhatItHas) {
  FmdBody* body = FMD_Create(3, 0);
  for (int node = 1; node <= 1000; ++node) ASSERT_EQ(set(body, node, node), 1);
  // The node comes first, so that only the array itself is left to grow.
  FMD_AddNode(body, 1001);
  FMD_SetMode(body, 1, 1001, type(), 0, 0, 0, 0, 0, 0);
  FmdBody* other = FMD_Create(3, 1);
  FMD_SetMode(other, 1, 1, type(), 0, 0, 0, 0, 0, 0);
  log.clear();
  fmd::fail_allocation(1);
  EXPECT_EQ(set(other, 1, 1.0), 0);
  fmd::fail_allocation(0);
  const std::string name = type() == 1 ? "Pre-Stress" : "Pre-Strain";
  ASSERT_EQ(log.all.size(), 1U);
  EXPECT_THAT(log.errors[0], testing::MatchesRegex("Failed to allocate memory for " + name +
                                                   " at line [0-9]+ in file dbset\\.\n"));
  EXPECT_EQ(capacity(other), 0);
  EXPECT_EQ(other->BlockExists[29] + other->BlockExists[30], 0);
  EXPECT_EQ(set(other, 1, 1.0), 1);
  EXPECT_EQ(capacity(body), 1000);
}

INSTANTIATE_TEST_SUITE_P(AndPreStrain, PreStress, testing::Values(1, 2));

}  // namespace
