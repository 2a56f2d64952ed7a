// Interface nodes and changes of node ids, against a model that only knows which node has which id.
#include <gtest/gtest.h>

#include <limits>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "body/body.h"
#include "dbmodal/dbset/mode_nodes.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

class Renumber : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(10, 3);
    ASSERT_NE(body, nullptr);
  }

  std::vector<int> interface_ids() const {
    int count = 0;
    int* ids = FMD_InterfaceNodeIDs(body, &count);
    std::vector<int> copy(ids, ids + count);
    FMD_FreeMemory(ids);
    return copy;
  }

  FmdBody* body = nullptr;
};

TEST_F(Renumber, InterfaceNodesMustExistAndAreStoredOnce) {
  FMD_AddNode(body, 4);
  FMD_AddNode(body, 2);
  EXPECT_EQ(FMD_SetInterfaceNode(body, 3), 0);
  EXPECT_EQ(FMD_NodeCount(body), 2);
  EXPECT_EQ(FMD_Exists(body, 16), 0);
  EXPECT_EQ(FMD_SetInterfaceNode(body, 2), 1);
  EXPECT_EQ(FMD_SetInterfaceNode(body, 4), 1);
  EXPECT_EQ(FMD_SetInterfaceNode(body, 2), 1);
  EXPECT_EQ(FMD_Exists(body, 16), 1);
  int count = 0;
  int* nodes = FMD_InterfaceNodes(body, &count);
  ASSERT_EQ(count, 2);
  EXPECT_EQ(nodes[0], 1);
  EXPECT_EQ(nodes[1], 0);
  FMD_FreeMemory(nodes);
  EXPECT_EQ(interface_ids(), (std::vector<int>{2, 4}));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Renumber, NoInterfaceNodesIsNullWithoutAWord) {
  int count = 9;
  EXPECT_EQ(FMD_InterfaceNodes(body, &count), nullptr);
  EXPECT_EQ(count, 0);
  EXPECT_EQ(FMD_InterfaceNodeIDs(body, &count), nullptr);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Renumber, ManyInterfaceNodesGrowByAHundred) {
  for (int id = 1; id <= 101; ++id) {
    FMD_AddNode(body, id);
    EXPECT_EQ(FMD_SetInterfaceNode(body, id), 1);
    EXPECT_EQ(body->InterfaceNodeCapacity, id <= 100 ? 100 : 200);
  }
}

TEST_F(Renumber, FailedAllocationsOfInterfaceNodes) {
  FMD_AddNode(body, 1);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_SetInterfaceNode(body, 1), 0);
  fmd::fail_allocation(0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(0), "dbset"));
  EXPECT_EQ(FMD_SetInterfaceNode(body, 1), 1);
  int count = 3;
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_InterfaceNodes(body, &count), nullptr);
  fmd::fail_allocation(0);
  EXPECT_EQ(count, 0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(1), "dbdata"));
}

TEST_F(Renumber, SwappedNodesKeepTheirPairs) {
  FMD_SetNodeCoordinates(body, 10, 1.0, 0.0, 0.0);
  FMD_SetNodeCoordinates(body, 20, 2.0, 0.0, 0.0);
  FMD_SetNodalMass(body, 20, 7.0);
  FMD_SwapNodesByID(body, 10, 20);
  EXPECT_EQ(FMD_NodeIndex(body, 10), 0);
  EXPECT_EQ(FMD_NodeID(body, 0), 20);
  EXPECT_EQ(FMD_NodalMass(body, 0), 7.0);
  double xyz[3];
  FMD_NodeCoordinates(body, 1, xyz);
  EXPECT_EQ(xyz[0], 1.0);
  FMD_SwapNodesByID(body, 10, 99);
  EXPECT_EQ(FMD_NodeID(body, 0), 20);
}

TEST_F(Renumber, AShiftReachesEveryTable) {
  for (const int id : {3, 1, 2}) FMD_AddNode(body, id);
  fmd::lookup_or_add_mode_node(*body, 1, 2);
  EXPECT_EQ(FMD_RenumberNodes(body, -2), 1);
  EXPECT_EQ(FMD_NodeIndex(body, -1), 1);
  EXPECT_EQ(FMD_NodeIndex(body, 0), 2);
  EXPECT_EQ(FMD_NodeIndex(body, 1), 0);
  EXPECT_EQ(FMD_NodeIndex(body, 3), -1);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 0), 0);
  EXPECT_EQ(FMD_RenumberNodes(body, 0), 1);
  EXPECT_EQ(FMD_NodeIndex(body, 1), 0);
}

TEST_F(Renumber, AShiftOfABodyWithoutTablesLeavesThemNull) {
  EXPECT_EQ(FMD_RenumberNodes(body, 5), 1);
  EXPECT_EQ(body->SortedNodes, nullptr);
  EXPECT_EQ(body->SortedModeNodes[1], nullptr);
}

TEST_F(Renumber, AShiftBeyondTheRangeWraps) {
  FMD_AddNode(body, std::numeric_limits<int>::max());
  FMD_AddNode(body, 1);
  FMD_RenumberNodes(body, 1);
  EXPECT_EQ(FMD_NodeIndex(body, std::numeric_limits<int>::min()), 0);
  EXPECT_EQ(FMD_NodeIndex(body, 2), 1);
}

TEST_F(Renumber, InterfaceNodesTakeFreeAndTakenIds) {
  for (const int id : {1, 2, 3, 4}) FMD_AddNode(body, id);
  for (const int node : {0, 1, 3}) fmd::lookup_or_add_mode_node(*body, 1, node);
  fmd::lookup_or_add_mode_node(*body, 2, 0);
  FMD_SetInterfaceNode(body, 1);
  FMD_SetInterfaceNode(body, 2);
  int ids[] = {50, 4};
  EXPECT_EQ(FMD_RenumberInterfaceNodes(body, 2, ids), 1);
  EXPECT_EQ(interface_ids(), (std::vector<int>{50, 4}));
  EXPECT_EQ(FMD_NodeID(body, 0), 50);
  EXPECT_EQ(FMD_NodeID(body, 3), 2);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 50), 0);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 4), 1);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 2), 2);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 2, 50), 0);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 2, 1), -1);
}

TEST_F(Renumber, TheSameIdsChangeNothingAndTooManyWarn) {
  for (const int id : {1, 2}) FMD_AddNode(body, id);
  FMD_SetInterfaceNode(body, 2);
  int same[] = {2, 77};
  EXPECT_EQ(FMD_RenumberInterfaceNodes(body, 2, same), 1);
  EXPECT_EQ(log.warnings,
            std::vector<std::string>{"Too many interface ID are given. Only the first 1 will be used.\n"});
  EXPECT_EQ(interface_ids(), std::vector<int>{2});
  EXPECT_EQ(FMD_RenumberInterfaceNodes(body, 0, same), 1);
  EXPECT_EQ(FMD_RenumberInterfaceNodes(body, -1, same), 1);
}

TEST_F(Renumber, RandomChangesAgreeWithAModel) {
  std::mt19937 random(11);
  constexpr int kNodes = 60;
  std::vector<int> id_of(kNodes);
  for (int node = 0; node < kNodes; ++node) {
    id_of[static_cast<std::size_t>(node)] = 3 * node + 1;
    FMD_AddNode(body, 3 * node + 1);
    if (node % 2 == 0) fmd::lookup_or_add_mode_node(*body, 1, node);
    if (node % 3 == 0) fmd::lookup_or_add_mode_node(*body, 2, node);
    if (node % 5 == 0) FMD_SetInterfaceNode(body, 3 * node + 1);
  }
  std::uniform_int_distribution<int> any_id(1, 200);
  for (int round = 0; round < 200; ++round) {
    std::vector<int> ids(12);
    for (int& id : ids) id = any_id(random);
    for (std::size_t i = 0; i < ids.size(); ++i) {
      const std::size_t node = 5 * i;
      for (int& other : id_of) {
        if (other == ids[i]) other = id_of[node];
      }
      id_of[node] = ids[i];
    }
    FMD_RenumberInterfaceNodes(body, static_cast<int>(ids.size()), ids.data());
    for (int node = 0; node < kNodes; ++node) {
      const int id = id_of[static_cast<std::size_t>(node)];
      ASSERT_EQ(FMD_NodeID(body, node), id);
      ASSERT_EQ(FMD_NodeIndex(body, id), node);
      ASSERT_EQ(FMD_ModeNodeIndex(body, 1, id), node % 2 == 0 ? node / 2 : -1);
      ASSERT_EQ(FMD_ModeNodeIndex(body, 2, id), node % 3 == 0 ? node / 3 : -1);
    }
  }
}

TEST_F(Renumber, NullBodiesAreReported) {
  int count = 1;
  EXPECT_EQ(FMD_SetInterfaceNode(nullptr, 1), 0);
  EXPECT_EQ(FMD_InterfaceNodes(nullptr, &count), nullptr);
  EXPECT_EQ(FMD_RenumberNodes(nullptr, 1), 1);
  EXPECT_EQ(FMD_RenumberInterfaceNodes(nullptr, 0, nullptr), 1);
  FMD_SwapNodesByID(nullptr, 1, 2);
  EXPECT_EQ(log.errors, (std::vector<std::string>(5, "The database has not been initialized.")));
}

}  // namespace
