// Node and mode tables, against plain maps and vectors.
#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "body/body.h"
#include "dbmodal/dbset/mode_nodes.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

class Nodes : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(10, 3);
    ASSERT_NE(body, nullptr);
  }

  std::vector<std::pair<int, int>> sorted() const {
    std::vector<std::pair<int, int>> pairs;
    for (int i = 0; i < body->NodeCount; ++i) {
      pairs.emplace_back(body->SortedNodes[i].Id, body->SortedNodes[i].Index);
    }
    return pairs;
  }

  FmdBody* body = nullptr;
};

using Pairs = std::vector<std::pair<int, int>>;

TEST_F(Nodes, LookupOnAnEmptyBodyIsSilent) {
  EXPECT_EQ(FMD_NodeIndex(body, 1), -1);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 1), -1);
  EXPECT_EQ(FMD_NodeID(body, 0), 0);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Nodes, IndicesFollowTheOrderOfMention) {
  EXPECT_EQ(FMD_AddNode(body, 5), 0);
  EXPECT_EQ(FMD_AddNode(body, 3), 1);
  EXPECT_EQ(FMD_AddNode(body, 4), 2);
  EXPECT_EQ(sorted(), (Pairs{{3, 1}, {4, 2}, {5, 0}}));
  EXPECT_EQ(FMD_NodeIndex(body, 3), 1);
  EXPECT_EQ(FMD_NodeIndex(body, 5), 0);
  EXPECT_EQ(FMD_NodeIndex(body, 6), -1);
  EXPECT_EQ(FMD_NodeID(body, 2), 4);
  EXPECT_EQ(FMD_NodeID(body, 3), 0);
  EXPECT_EQ(FMD_NodeID(body, -1), 0);
  EXPECT_EQ(FMD_NodeCount(body), 3);
}

TEST_F(Nodes, ANewPairLandsAfterEqualIds) {
  for (const int id : {7, 9, 7, 8, 7}) FMD_AddNode(body, id);
  EXPECT_EQ(sorted(), (Pairs{{7, 0}, {7, 2}, {7, 4}, {8, 3}, {9, 1}}));
  EXPECT_EQ(FMD_NodeID(body, FMD_NodeIndex(body, 7)), 7);
}

TEST_F(Nodes, EveryNodeCarriesModeShapes) {
  for (int id = 1; id <= 5; ++id) FMD_AddNode(body, 10 * id);
  EXPECT_EQ(FMD_ModeNodeCount(body, 0), 5);
  EXPECT_EQ(FMD_ModeNodeCount(body, 1), 0);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(FMD_ModeNodeID(body, 0, i), 10 * (i + 1));
  EXPECT_EQ(FMD_ModeNodeIndex(body, 0, 30), 2);
  EXPECT_EQ(FMD_ModeNodeID(body, 0, 5), 0);
  EXPECT_EQ(FMD_ModeNodeID(body, 3, 0), 0);
  EXPECT_EQ(FMD_ModeNodeCount(body, -1), 0);
}

TEST_F(Nodes, LookupOrAddFindsBeforeItAdds) {
  EXPECT_EQ(FMD_LookupOrAddNode(body, 12), 0);
  EXPECT_EQ(FMD_LookupOrAddNode(body, 11), 1);
  EXPECT_EQ(FMD_LookupOrAddNode(body, 12), 0);
  EXPECT_EQ(FMD_NodeCount(body), 2);
}

TEST_F(Nodes, NegativeAndExtremeIdsAreOrderedAsSignedNumbers) {
  constexpr int kLeast = std::numeric_limits<int>::min();
  constexpr int kMost = std::numeric_limits<int>::max();
  for (const int id : {0, kMost, -5, kLeast}) FMD_AddNode(body, id);
  EXPECT_EQ(sorted(), (Pairs{{kLeast, 3}, {-5, 2}, {0, 0}, {kMost, 1}}));
}

TEST_F(Nodes, CapacityStepsByAThousandAndPointersFollow) {
  for (int id = 1; id <= 3; ++id) {
    const int index = FMD_AddNode(body, id);
    fmd::lookup_or_add_mode_node(*body, 1, index);
    fmd::lookup_or_add_mode_node(*body, 2, 3 - id < index ? 3 - id : index);
  }
  EXPECT_EQ(body->NodeCapacity, 1000);
  for (int id = 4; id <= 1000; ++id) FMD_AddNode(body, id);
  EXPECT_EQ(body->NodeCapacity, 1000);
  FMD_AddNode(body, 1001);
  EXPECT_EQ(body->NodeCapacity, 2000);
  for (int id = 1002; id <= 5001; ++id) FMD_AddNode(body, id);
  EXPECT_EQ(body->NodeCapacity, 6000);
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(body->ModeNodes[1][i], body->Nodes + i);
    EXPECT_EQ(FMD_ModeNodeID(body, 1, i), i + 1);
  }
  for (int i = 0; i < body->NodeCount; ++i) ASSERT_EQ(body->ModeNodes[0][i], body->Nodes + i);
}

TEST_F(Nodes, RandomOrderAgreesWithAMap) {
  std::mt19937 random(7);
  std::uniform_int_distribution<int> any_id(-3000, 3000);
  std::map<int, int> model;
  for (int step = 0; step < 6000; ++step) {
    const int id = any_id(random);
    const auto known = model.find(id);
    const int asked = any_id(random);
    const auto expected = model.find(asked);
    ASSERT_EQ(FMD_NodeIndex(body, asked), expected == model.end() ? -1 : expected->second);
    const int index = FMD_LookupOrAddNode(body, id);
    if (known != model.end()) {
      ASSERT_EQ(index, known->second);
    } else {
      ASSERT_EQ(index, static_cast<int>(model.size()));
      model[id] = index;
    }
  }
  ASSERT_EQ(FMD_NodeCount(body), static_cast<int>(model.size()));
  EXPECT_EQ(sorted(), Pairs(model.begin(), model.end()));
}

TEST_F(Nodes, StressNodesAreASubsetInTheirOwnOrder) {
  for (const int id : {30, 10, 20}) FMD_AddNode(body, id);
  EXPECT_EQ(fmd::lookup_or_add_mode_node(*body, 1, 2), 0);
  EXPECT_EQ(fmd::lookup_or_add_mode_node(*body, 1, 1), 1);
  EXPECT_EQ(fmd::lookup_or_add_mode_node(*body, 1, 2), 0);
  EXPECT_EQ(FMD_ModeNodeCount(body, 1), 2);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 20), 0);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 10), 1);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 30), -1);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 3, 10), -1);
}

TEST_F(Nodes, TablesThatAreMissingAreBuiltBySearchAndByGrowth) {
  for (const int id : {30, 10, 20}) fmd::lookup_or_add_mode_node(*body, 1, FMD_AddNode(body, id));
  fmd::release(body->SortedNodes);
  body->SortedModeNodes[0] = nullptr;
  fmd::release(body->SortedModeNodes[1]);
  EXPECT_EQ(FMD_AddNode(body, 15), 3);
  EXPECT_EQ(sorted(), (Pairs{{10, 1}, {15, 3}, {20, 2}, {30, 0}}));
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 20), 2);
  fmd::release(body->SortedModeNodes[1]);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 30), 0);
}

TEST_F(Nodes, EachFailedGrowthIsReportedAndTheBodyStaysUsable) {
  for (int id = 1; id <= 1000; ++id) fmd::lookup_or_add_mode_node(*body, 1, FMD_AddNode(body, id));
  for (long nth = 1;; ++nth) {
    fmd::fail_allocation(nth);
    const int result = FMD_AddNode(body, 2000);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) {
      EXPECT_EQ(result, 1000);
      EXPECT_EQ(nth, 8);  // seven tables grow
      break;
    }
    EXPECT_EQ(result, -1);
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.back(), "dbset"));
    EXPECT_EQ(FMD_NodeCount(body), 1000);
    EXPECT_EQ(body->NodeCapacity, 2000);
    EXPECT_EQ(FMD_NodeIndex(body, 500), 499);
    EXPECT_EQ(FMD_ModeNodeID(body, 1, 999), 1000);
    EXPECT_EQ(FMD_ModeNodeID(body, 0, 3), 4);
  }
}

TEST_F(Nodes, ModesAreScannedAndLimited) {
  EXPECT_EQ(FMD_AddMode(body, 40), 0);
  EXPECT_EQ(FMD_AddMode(body, 20), 1);
  EXPECT_EQ(FMD_AddMode(body, 40), 2);
  EXPECT_EQ(FMD_ModeIndex(body, 40), 0);
  EXPECT_EQ(FMD_ModeIndex(body, 20), 1);
  EXPECT_EQ(FMD_ModeIndex(body, 40), 0);
  EXPECT_EQ(FMD_ModeIndex(body, 41), -1);
  EXPECT_EQ(FMD_ModeNumber(body, 2), 40);
  EXPECT_EQ(FMD_ModeNumber(body, 3), -1);
  EXPECT_EQ(FMD_ModeNumber(body, -1), -1);
  EXPECT_EQ(FMD_LookupOrAddMode(body, 20), 1);
  EXPECT_EQ(FMD_AddMode(body, 99), -1);
  EXPECT_EQ(log.errors,
            std::vector<std::string>{"Insufficient room for mode 99 in temporary mode shape file.  \nSpecify "
                                     "larger number of modes in FMD_Create.\n"});
  EXPECT_EQ(FMD_ModeCount(body), 3);
}

TEST_F(Nodes, FailedAllocationOfTheModeNumbers) {
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_AddMode(body, 1), -1);
  fmd::fail_allocation(0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(0), "dbset"));
  EXPECT_EQ(FMD_AddMode(body, 1), 0);
}

TEST_F(Nodes, NullBodiesAreReported) {
  EXPECT_EQ(FMD_ModeIndex(nullptr, 1), -1);
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(FMD_AddNode(nullptr, 1), -1);
  EXPECT_EQ(FMD_AddMode(nullptr, 1), -1);
  EXPECT_EQ(FMD_LookupOrAddNode(nullptr, 1), -1);
  EXPECT_EQ(FMD_LookupOrAddMode(nullptr, 1), -1);
  EXPECT_EQ(FMD_NodeIndex(nullptr, 1), -1);
  EXPECT_EQ(FMD_NodeID(nullptr, 1), 0);
  EXPECT_EQ(FMD_NodeCount(nullptr), 0);
  EXPECT_EQ(FMD_ModeCount(nullptr), 0);
  EXPECT_EQ(FMD_ModeNumber(nullptr, 0), -1);
  EXPECT_EQ(FMD_ModeNodeCount(nullptr, 0), 0);
  EXPECT_EQ(FMD_ModeNodeID(nullptr, 0, 0), 0);
  EXPECT_EQ(FMD_ModeNodeIndex(nullptr, 1, 0), -1);
  EXPECT_EQ(log.errors, (std::vector<std::string>(12, "The database has not been initialized.")));
}

TEST(ById, ComparesTheFirstNumber) {
  const int pairs[2][2] = {{-3, 100}, {4, 1}};
  EXPECT_EQ(By_Id(pairs[0], pairs[1]), -1);
  EXPECT_EQ(By_Id(pairs[1], pairs[0]), 1);
  EXPECT_EQ(By_Id(pairs[0], pairs[0]), 0);
}

TEST(SelectedModeIndex, FindsInAnAscendingArray) {
  int selected[] = {2, 5, 9, 11};
  EXPECT_EQ(SelectedModeIndex(9, selected, 4), 2);
  EXPECT_EQ(SelectedModeIndex(2, selected, 4), 0);
  EXPECT_EQ(SelectedModeIndex(3, selected, 4), -1);
  EXPECT_EQ(SelectedModeIndex(2, selected, 0), -1);
  int unsorted[] = {9, 2, 5};
  EXPECT_EQ(SelectedModeIndex(9, unsorted, 3), -1);
}

}  // namespace
