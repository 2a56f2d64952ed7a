// The node tables under everything that changes them, against a model of vectors that searches by walking;
// and bodies whose sorted tables are missing, as after reading.
#include <gtest/gtest.h>

#include <algorithm>
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

int place_of(const std::vector<int>& values, int value) {
  const auto found = std::find(values.begin(), values.end(), value);
  return found == values.end() ? -1 : static_cast<int>(found - values.begin());
}

// What a body must know of its nodes: the id of each, and which of them carry which data.
struct Model {
  std::vector<int> ids;
  std::vector<int> carriers[3];  // node indices; type 0 is not used
  std::vector<int> interface_nodes;

  void give(int node, int id) {
    const int holder = place_of(ids, id);
    if (holder >= 0) ids[static_cast<std::size_t>(holder)] = ids[static_cast<std::size_t>(node)];
    ids[static_cast<std::size_t>(node)] = id;
  }
};

class NodeTables : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(10, 3);
    ASSERT_NE(body, nullptr);
  }

  int random(int low, int high) { return std::uniform_int_distribution<int>(low, high)(engine); }

  int random_node() { return random(0, static_cast<int>(model.ids.size()) - 1); }

  void add_node() {
    const int id = random(-20000, 20000);
    if (place_of(model.ids, id) >= 0) return;
    ASSERT_EQ(FMD_AddNode(body, id), static_cast<int>(model.ids.size()));
    model.ids.push_back(id);
  }

  void add_carrier(int type) {
    const int node = random_node();
    std::vector<int>& carriers = model.carriers[type];
    if (place_of(carriers, node) < 0) carriers.push_back(node);
    ASSERT_EQ(fmd::lookup_or_add_mode_node(*body, type, node), place_of(carriers, node));
  }

  void add_interface_node() {
    const int node = random_node();
    if (place_of(model.interface_nodes, node) < 0) model.interface_nodes.push_back(node);
    ASSERT_EQ(FMD_SetInterfaceNode(body, model.ids[static_cast<std::size_t>(node)]), 1);
  }

  void shift() {
    const int offset = random(-50, 50);
    for (int& id : model.ids) id += offset;
    ASSERT_EQ(FMD_RenumberNodes(body, offset), 1);
  }

  void renumber_interface() {
    std::vector<int> ids(std::min<std::size_t>(model.interface_nodes.size(), 5));
    for (int& id : ids) id = random(-20000, 20000);
    for (std::size_t i = 0; i < ids.size(); ++i) model.give(model.interface_nodes[i], ids[i]);
    ASSERT_EQ(FMD_RenumberInterfaceNodes(body, static_cast<int>(ids.size()), ids.data()), 1);
  }

  void change() {
    const int dice = random(0, 999);
    if (dice < 700 || model.ids.empty()) {
      add_node();
    } else if (dice < 900) {
      add_carrier(dice < 800 ? 1 : 2);
    } else if (dice < 970) {
      add_interface_node();
    } else if (dice < 980) {
      shift();
    } else {
      renumber_interface();
    }
  }

  void expect_same_carriers(int type) const {
    const std::vector<int>& carriers = model.carriers[type];
    ASSERT_EQ(FMD_ModeNodeCount(body, type), static_cast<int>(carriers.size()));
    for (std::size_t place = 0; place < carriers.size(); ++place) {
      const int id = model.ids[static_cast<std::size_t>(carriers[place])];
      ASSERT_EQ(FMD_ModeNodeID(body, type, static_cast<int>(place)), id);
      ASSERT_EQ(FMD_ModeNodeIndex(body, type, id), static_cast<int>(place));
      ASSERT_EQ(body->ModeNodes[type][place], body->Nodes + carriers[place]);
    }
  }

  void expect_same() const {
    const int count = static_cast<int>(model.ids.size());
    ASSERT_EQ(FMD_NodeCount(body), count);
    ASSERT_EQ(body->NodeCapacity, (count + 999) / 1000 * 1000);
    for (int node = 0; node < count; ++node) {
      const int id = model.ids[static_cast<std::size_t>(node)];
      ASSERT_EQ(FMD_NodeID(body, node), id);
      ASSERT_EQ(FMD_NodeIndex(body, id), node);
      ASSERT_EQ(FMD_ModeNodeID(body, 0, node), id);
    }
    for (int i = 1; i < count; ++i) ASSERT_LT(body->SortedNodes[i - 1].Id, body->SortedNodes[i].Id);
    for (const int type : {1, 2}) expect_same_carriers(type);
    int nodes = 0;
    int* const interface_nodes = FMD_InterfaceNodes(body, &nodes);
    EXPECT_EQ(std::vector<int>(interface_nodes, interface_nodes + nodes), model.interface_nodes);
    FMD_FreeMemory(interface_nodes);
  }

  // As after reading a dataset: the tables by id come into being when they are first needed.
  void drop_sorted(const std::set<int>& types) const {
    for (const int type : types) {
      fmd::release(body->SortedModeNodes[type]);
      if (type == fmd::kShape) body->SortedNodes = nullptr;
    }
  }

  void add_three_with_stress() const {
    for (const int id : {30, 10, 20}) fmd::lookup_or_add_mode_node(*body, 1, FMD_AddNode(body, id));
  }

  std::mt19937 engine{2026};
  Model model;
  FmdBody* body = nullptr;
};

TEST_F(NodeTables, AnyChangeInAnyOrderAgreesWithTheModel) {
  for (int step = 0; step < 9000; ++step) {
    ASSERT_NO_FATAL_FAILURE(change());
    if (step % 500 == 0) {
      ASSERT_NO_FATAL_FAILURE(expect_same());
    }
  }
  ASSERT_NO_FATAL_FAILURE(expect_same());
  EXPECT_GT(body->NodeCapacity, 5000);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(NodeTables, SearchesAfterTablesVanishedAgreeWithTheModel) {
  for (int step = 0; step < 4500; ++step) ASSERT_NO_FATAL_FAILURE(change());
  drop_sorted({0, 1, 2});
  ASSERT_NO_FATAL_FAILURE(expect_same());
  // The new tables have the room that the others have.
  drop_sorted({0, 1, 2});
  while (model.ids.size() < 9000) ASSERT_NO_FATAL_FAILURE(add_node());
  ASSERT_NO_FATAL_FAILURE(expect_same());
}

TEST_F(NodeTables, ANewNodeIsTheFreeSlotBehindTheStressNodes) {
  for (const int id : {1, 2, 3}) FMD_AddNode(body, id);
  fmd::lookup_or_add_mode_node(*body, 1, 2);
  FMD_AddNode(body, 4);
  EXPECT_EQ(body->ModeNodes[1][3], body->Nodes + 3);
  EXPECT_EQ(body->ModeNodes[1][0], body->Nodes + 2);
  EXPECT_EQ(FMD_ModeNodeCount(body, 1), 1);
  EXPECT_EQ(FMD_ModeNodeID(body, 1, 3), 0);
}

TEST_F(NodeTables, AGrowthBuildsAMissingStressTableFirst) {
  add_three_with_stress();
  for (int id = 100; id < 1097; ++id) FMD_AddNode(body, id);
  ASSERT_EQ(FMD_NodeCount(body), 1000);
  drop_sorted({1});
  EXPECT_EQ(FMD_AddNode(body, 2000), 1000);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 30), 0);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 10), 1);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 2000), -1);
}

TEST_F(NodeTables, ASearchWithoutMemoryAddsNothing) {
  add_three_with_stress();
  drop_sorted({0, 1});
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_LookupOrAddNode(body, 10), -1);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_AddNode(body, 40), -1);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_NodeIndex(body, 10), -1);
  EXPECT_EQ(FMD_NodeCount(body), 3);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 10), -1);
  fmd::fail_allocation(1);
  EXPECT_EQ(fmd::lookup_or_add_mode_node(*body, 1, 1), -1);
  fmd::fail_allocation(0);
  EXPECT_EQ(FMD_ModeNodeCount(body, 1), 3);
  ASSERT_EQ(log.errors.size(), 5U);
  for (const std::string& error : log.errors) EXPECT_TRUE(fmdtest::is_allocation_failure(error, "dbdata"));
  EXPECT_EQ(FMD_LookupOrAddNode(body, 10), 1);
  EXPECT_EQ(fmd::lookup_or_add_mode_node(*body, 1, 1), 1);
}

TEST_F(NodeTables, ABodyWithoutStrainTablesGetsThemWithItsFirstStrainNode) {
  add_three_with_stress();
  fmd::release(body->ModeNodes[2]);
  fmd::release(body->SortedModeNodes[2]);
  for (const int nth : {1, 2}) {
    fmd::fail_allocation(nth);
    EXPECT_EQ(fmd::lookup_or_add_mode_node(*body, 2, 1), -1);
    fmd::fail_allocation(0);
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.back(), "dbset"));
    EXPECT_EQ(FMD_ModeNodeCount(body, 2), 0);
    fmd::release(body->ModeNodes[2]);
    fmd::release(body->SortedModeNodes[2]);
  }
  EXPECT_EQ(fmd::lookup_or_add_mode_node(*body, 2, 1), 0);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 2, 10), 0);
}

TEST_F(NodeTables, NoNodeIsAddedBeyondWhatAnIndexCanCount) {
  FMD_AddNode(body, 1);
  const int full = std::numeric_limits<int>::max() - 10;
  body->NodeCount = full;
  body->NodeCapacity = full;
  EXPECT_EQ(FMD_AddNode(body, 2), -1);
  EXPECT_EQ(body->NodeCapacity, full);
  body->NodeCount = 1;
  body->NodeCapacity = 1000;
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors[0], "dbset"));
  EXPECT_EQ(FMD_AddNode(body, 2), 1);
}

TEST_F(NodeTables, ARenumberingWithoutMemoryChangesNothing) {
  add_three_with_stress();
  FMD_SetInterfaceNode(body, 30);
  int ids[] = {20};
  for (const int nth : {1, 2}) {
    drop_sorted({0, 1});
    fmd::fail_allocation(nth);
    EXPECT_EQ(FMD_RenumberInterfaceNodes(body, 1, ids), 1);
    EXPECT_TRUE(fmd::allocation_has_failed());
    fmd::fail_allocation(0);
    EXPECT_EQ(FMD_NodeID(body, 0), 30);
    EXPECT_EQ(FMD_NodeID(body, 2), 20);
  }
  EXPECT_EQ(FMD_RenumberInterfaceNodes(body, 1, ids), 1);
  EXPECT_EQ(FMD_NodeIndex(body, 20), 0);
  EXPECT_EQ(FMD_NodeIndex(body, 30), 2);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 1, 20), 0);
}

TEST_F(NodeTables, InterfaceNodesThatNameNoNodeAreLeftAlone) {
  FMD_AddNode(body, 1);
  FMD_SetInterfaceNode(body, 1);
  for (const int damaged : {-1, 7}) {
    body->InterfaceNodes[0] = damaged;
    int ids[] = {9};
    EXPECT_EQ(FMD_RenumberInterfaceNodes(body, 1, ids), 1);
    int count = 0;
    int* const named = FMD_InterfaceNodeIDs(body, &count);
    ASSERT_EQ(count, 1);
    EXPECT_EQ(named[0], 0);
    FMD_FreeMemory(named);
  }
  EXPECT_EQ(FMD_NodeID(body, 0), 1);
}

}  // namespace
