// Nodes in the order in which the mode shapes list them, whatever that is.
#include <gtest/gtest.h>

#include <algorithm>

#include "dbmodal/body_picture.h"
#include "dbmodal/read_fixture.h"
#include "messages/memory.h"

namespace fmdtest {

namespace {

using ReadOrder = ReadTest;

Ints ids_of(FmdBody* body) {
  Ints ids;
  for (int node = 0; node < FMD_NodeCount(body); ++node) ids.push_back(FMD_NodeID(body, node));
  return ids;
}

// The order that exchanges of places make of the table: a plain walk over what the file asks for.
Ints exchanged(Ints table, const Ints& wanted) {
  for (std::size_t place = 0; place < wanted.size(); ++place) {
    const auto found = std::find(table.begin(), table.end(), wanted[place]);
    if (wanted[place] != 0 && found != table.end())
      std::iter_swap(table.begin() + static_cast<long>(place), found);
  }
  return table;
}

TEST_F(ReadOrder, EveryPermutationGivesTheSameBody) {
  Ints order = kComposedNodes;
  std::sort(order.begin(), order.end());
  std::vector<Ints> orders;
  std::vector<Datablock> datablocks;
  do {
    orders.push_back(order);
    datablocks.push_back(whole_datablock(60 | kTableBit, order));
  } while (std::next_permutation(order.begin(), order.end()));
  store(datablocks);
  FmdBody* const first = open(1);
  ASSERT_NE(first, nullptr);
  const BodyPicture picture = picture_of(first);
  EXPECT_EQ(picture.faces, (std::vector<Ints>{{30, 10, 20}, {10, 20, 40}}));
  EXPECT_EQ(picture.interface_nodes, (Ints{30, 40}));
  EXPECT_EQ(picture.loads, (std::vector<std::vector<Doubles>>{{{30, 3, 1.5}, {40, 6, -2.5}}}));
  EXPECT_EQ((picture.vectors.at({0, 7, 20})), composed_vector(8, 7, 20));
  for (std::size_t i = 0; i < orders.size(); ++i) {
    SCOPED_TRACE(testing::PrintToString(orders[i]));
    FmdBody* const body = open(static_cast<int>(i) + 1);
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(ids_of(body), orders[i]);
    EXPECT_TRUE(picture_of(body) == picture);
    expect_sound(body);
  }
}

// Places with the id 0, of nodes that there are not, and twice the same node.
TEST_F(ReadOrder, IdsThatNameNoNodeLeaveTheirPlaceAsItIs) {
  const std::vector<Ints> lists = {{0, 0, 0, 0},    {0, 20, 10, 0},   {40, 0, 0, 30},
                                   {20, 0, 30, 0},  {99, 40, 30, 10}, {10, 10, 10, 10},
                                   {20, 30, 99, 0}, {-1, 20, 0, 30},  {40, 40, 30, 30}};
  std::vector<Datablock> datablocks;
  for (const Ints& list : lists) {
    Datablock with_list = bare_datablock();
    add_vectors(with_list, 8, list);
    with_list.block(17).ints({4, 0, 1, 2, 3});
    datablocks.push_back(with_list);
  }
  store(datablocks);
  for (std::size_t i = 0; i < lists.size(); ++i) {
    SCOPED_TRACE(testing::PrintToString(lists[i]));
    FmdBody* const body = open(static_cast<int>(i) + 1);
    ASSERT_NE(body, nullptr);
    const Ints expected = exchanged(kComposedNodes, lists[i]);
    EXPECT_EQ(ids_of(body), expected);
    for (int place = 0; place < 4; ++place) {
      EXPECT_EQ(FMD_ModeNodeID(body, 0, place), expected[static_cast<std::size_t>(place)]);
      EXPECT_EQ(FMD_NodeID(body, body->InterfaceNodes[place]),
                kComposedNodes[static_cast<std::size_t>(place)]);
    }
    expect_sound(body);
    EXPECT_EQ(log.errors, Strings{});
  }
}

// The vectors then end before the nodes do, and whoever asks beyond gets nothing.
TEST_F(ReadOrder, ShapesOfSomeOfTheNodes) {
  Datablock part = bare_datablock();
  add_vectors(part, 8, {40, 20});
  part.block(9).ints({2, 1, 20}).reals({2}).ints({30}).reals({3});
  FmdBody* const body = read(part);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_NodeCount(body), 4);
  EXPECT_EQ(FMD_ModeNodeCount(body, 0), 2);
  EXPECT_EQ(ids_of(body), (Ints{40, 20, 10, 30}));
  double half[3] = {9, 9, 9};
  EXPECT_EQ(FMD_ModeByNode(body, 9, 0, 20, half, 1), 1);
  EXPECT_EQ(half[0], composed_vector(8, 9, 20)[3]);
  EXPECT_EQ(FMD_ModeByNode(body, 9, 0, 30, half, 1), 0);
  EXPECT_EQ(FMD_ModeNodeIndex(body, 0, 10), -1);
  EXPECT_FALSE(contents_of(body).empty());
  for (int mode = 0; mode < 2; ++mode) EXPECT_NE(fmd::CArray<double>(FMD_Invar8(body, mode)), nullptr);
  EXPECT_NE(fmd::CArray<double>(FMD_Invar9(body, 0, 1)), nullptr);
  std::string file = "part.fmd";
  FMD_write_FMD(body, file.data());
}

TEST_F(ReadOrder, MoreShapeNodesThanNodesAreRefused) {
  Datablock many = bare_datablock();
  add_vectors(many, 8, {40, 20, 10, 30, 40});
  expect_failure(many, {"Problem encountered while caching Mode shape Data"});
}

// A body with modes but no nodes of its own for them takes further nodes.
TEST_F(ReadOrder, AReadBodyTakesNodesButNoModes) {
  FmdBody* const body = read(whole_datablock(60 | kTableBit, {40, 30, 20, 10}));
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_SetNodeCoordinates(body, 77, 1, 2, 3), 1);
  EXPECT_EQ(FMD_NodeIndex(body, 77), 4);
  EXPECT_EQ(FMD_NodeIndex(body, 20), 2);
  expect_sound(body);
  EXPECT_LT(FMD_AddMode(body, 5), 0);
}

}  // namespace

}  // namespace fmdtest
