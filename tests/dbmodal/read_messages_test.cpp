// Every message of the reader: its words, its channel, and whether the read goes on.
#include <gtest/gtest.h>

#include "dbmodal/read_fixture.h"
#include "messages/memory.h"

namespace fmdtest {

namespace {

constexpr unsigned kWord = 60 | kTableBit;

class ReadMessages : public ReadTest {
 protected:
  void expect_allocation_failure(const Datablock& datablock) {
    EXPECT_EQ(read(datablock), nullptr);
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbread")) << log.errors[0];
  }
};

// A block that is there with nothing in it.
struct EmptyBlock {
  int number;
  Ints words;
  Strings errors;
};

const std::vector<EmptyBlock> kEmptyBlocks = {
    {4, {0, 3}, {"Out of memory while reading Nodal Coordinate block"}},
    {12, {0, 2}, {"Out of memory while reading Generalized Stiffness block"}},
    {13, {0, 2}, {"Out of memory while reading Generalized Mass block"}},
    {14, {16, 0, 0, 0}, {"Out of memory while reading Element Faces Block"}},
    {15, {0, 0}, {"Out of memory while reading Generalized Damping Block"}},
    {17, {0}, {"Out of memory while reading Interface Nodes block", "Problem when reading Interface Nodes"}},
    {27, {0, 0}, {"Out of memory while reading Modal Preload Block"}},
    {28, {0, 0}, {"Out of memory while reading Modal Loads Block"}},
    {30, {0}, {"Out of memory while reading Modal Statistics Block"}},
    {31, {0}, {"Out of memory while processing Pre-Stress Block"}},
    {32, {0}, {"Out of memory while processing Pre-Strain Block"}},
};

TEST_F(ReadMessages, ABlockWithoutEntriesCountsAsExhaustedMemory) {
  for (const EmptyBlock& empty : kEmptyBlocks) {
    SCOPED_TRACE(empty.number);
    Datablock datablock = empty.number == 4 ? Datablock(kWord) : bare_datablock();
    datablock.block(empty.number).ints(empty.words);
    expect_failure(datablock, empty.errors);
  }
  Datablock types = bare_datablock();
  types.block(5).ints({0, 1, 0, 0, 2});
  expect_failure(types, {"Out of memory while reading Element Topology Block"});
  Datablock no_types = bare_datablock();
  no_types.block(5).ints({0, 0});
  expect_failure(no_types, {"Out of memory while reading Element Topology Block"});
}

TEST_F(ReadMessages, BlocksOfTablesWithoutWordsOfTheirOwnTellOfTheAllocation) {
  for (const int number : {33, 34, 35}) {
    SCOPED_TRACE(number);
    Datablock datablock = bare_datablock();
    datablock.block(number).ints({0});
    expect_allocation_failure(datablock);
  }
}

TEST_F(ReadMessages, EigenvaluesShapesMassesAndTransformationMayBeEmpty) {
  Datablock empty = bare_datablock();
  empty.block(7).ints({0});
  empty.block(8).ints({0, 4}).ints(kComposedNodes);
  empty.block(9).ints({0, 1});
  empty.block(10).ints({0});
  empty.block(16).ints({0});
  FmdBody* const body = expect_body(empty, {});
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_ModeCount(body), 0);
  EXPECT_EQ(body->TransformationOrder, 0);
}

TEST_F(ReadMessages, CountsBelowZero) {
  const std::vector<EmptyBlock> negative = {
      {4, {-1, 3}, {"Out of memory while reading Nodal Coordinate block"}},
      {7, {-1}, {"Problem reading Eigenvalue Data"}},
      {8, {2, -1}, {"Problem encountered while caching Mode shape Data"}},
      {9, {-1, 1}, {"Problem reading Nodal Mass information"}},
      {10, {-1}, {"Problem reading Nodal Inertia information"}},
      {12, {-1, 2}, {"Out of memory while reading Generalized Stiffness block"}},
      {14, {0, 0, -1, 3, 2, 0, 1}, {"Problem reading Element Faces"}},
      {16, {-1}, {"Problem when reading Mode Shape Transformation"}},
      {18, {1, -1}, {"Problem when reading Modal Stress info"}},
      {29, {-1, 1, 10}, {"Problem when reading Modal Strain info"}},
  };
  for (const EmptyBlock& block : negative) {
    SCOPED_TRACE(block.number);
    Datablock datablock = block.number == 4 ? Datablock(kWord) : bare_datablock();
    datablock.block(block.number).ints(block.words);
    expect_failure(datablock, block.errors);
  }
  Datablock shapes = bare_datablock();
  shapes.block(8).ints({-3, 4}).ints(kComposedNodes);
  FmdBody* const body = expect_body(shapes, {});
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_ModeCount(body), 0);
}

// More entries than the record has words for: nothing is allocated for them.
TEST_F(ReadMessages, CountsBeyondTheRecord) {
  constexpr int kHuge = 0x7FFFFFFF;
  const std::vector<EmptyBlock> huge = {
      {4, {kHuge, 3}, {"Problem reading Node Coordinates Data"}},
      {5, {kHuge, kHuge}, {"Problem when reading old style element block"}},
      {7, {kHuge}, {"Problem reading Eigenvalue Data"}},
      {8, {2, kHuge}, {"Problem encountered while caching Mode shape Data"}},
      {9, {kHuge, 1}, {"Problem reading Nodal Mass information"}},
      {10, {kHuge}, {"Problem reading Nodal Inertia information"}},
      {12, {kHuge, 1}, {"Problem reading Generalized Stiffness information"}},
      {13, {kHuge, 1}, {"Problem reading Generalized Mass information"}},
      {14, {0, 0, 1, kHuge}, {"Problem reading Element Faces"}},
      {15, {kHuge, 1}, {"Problem reading Generalized Damping information"}},
      {16, {kHuge}, {"Problem when reading Mode Shape Transformation"}},
      {17, {kHuge}, {"Problem when reading Interface Nodes"}},
      {18, {1, kHuge}, {"Problem when reading Modal Stress info"}},
      {18, {kHuge, 1, 10}, {"Problem when reading Modal Stress info"}},
      {29, {1, kHuge}, {"Problem when reading Modal Strain info"}},
      {30, {kHuge}, {"Problem when reading Modal Statistics Block"}},
      {31,
       {kHuge},
       {"Number of nodes in pre-stress does not match that in stress modes",
        "Problem when reading Pre-Stress Block"}},
      {32,
       {kHuge},
       {"Number of nodes in pre-strain does not match that in strain modes",
        "Problem when reading Pre-Strain Block"}},
      {33, {kHuge}, {"Problem when reading Monitor Point Block"}},
      {34, {kHuge}, {"Problem when reading Matrix Operator Block"}},
      {35, {kHuge}, {"Problem when reading Modal Load Nodal Block"}},
      {35, {1, kHuge}, {"Problem when reading Modal Load Nodal Block"}},
  };
  for (const EmptyBlock& block : huge) {
    SCOPED_TRACE(block.number);
    Datablock datablock = block.number == 4 ? Datablock(kWord) : bare_datablock();
    datablock.block(block.number).ints(block.words);
    expect_failure(datablock, block.errors);
  }
}

TEST_F(ReadMessages, CoordinatesOfAnotherNumber) {
  Datablock flat(kWord);
  flat.block(4).ints({1, 2, 5}).reals({1, 2, 3});
  FmdBody* const body =
      expect_body(flat, {"Node location should only be specified with 3 coordinates, not 2"});
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(body->Nodes[0].Coordinates[2], 3.0);
}

TEST_F(ReadMessages, ShapesForOtherModesThanEigenvalues) {
  Datablock other = bare_datablock();
  add_eigenvalues(other, {7, 8, 9});
  add_vectors(other, 8, kComposedNodes);
  expect_failure(other, {"Number of mode shapes does not match the number of eigenvalues"});
}

TEST_F(ReadMessages, MassesOfSeveralValuesAreAveraged) {
  Datablock several = bare_datablock();
  several.block(9).ints({3, 2, 10}).reals({1, 2}).ints({99}).reals({5, 5}).ints({10}).reals({3, 5});
  FmdBody* const body =
      expect_body(several, {},
                  {"Each node must possess a single scalar mass", "Generating scalar by averaging 2 values",
                   "Redefining mass of Node 10"});
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_NodalMass(body, FMD_NodeIndex(body, 10)), 4.0);
}

TEST_F(ReadMessages, InertiasInOtherPlacesOrTwice) {
  Datablock twice = bare_datablock();
  twice.block(10).ints({4, 10, 6, 5}).reals({1}).ints({10, 5, 6}).reals({1}).ints({10, 5, 6}).reals({2});
  twice.ints({10, 5, 6}).reals({3});
  FmdBody* const body =
      expect_body(twice, {}, {"Redefining mass of Nodal inertia 10", "Redefining mass of Nodal inertia 10"});
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(body->Nodes[FMD_NodeIndex(body, 10)].Inertia[5], 3.0);

  // The row is looked at before the column, and both before the value.
  Datablock row = bare_datablock();
  row.block(10).ints({1, 10, 3, 7});
  expect_failure(row, {"Row index of nodal inertia entries should be 4, 5, or 6.  3 encoutered\n",
                       "Problem reading Nodal Inertia information"});
  Datablock column = bare_datablock();
  column.block(10).ints({1, 10, 4, 7});
  expect_failure(column, {"Column index of nodal inertia entries should be 4, 5, or 6.  7 encoutered\n",
                          "Problem reading Nodal Inertia information"});
  Datablock unknown = bare_datablock();
  unknown.block(10).ints({1, 99, 4, 4}).reals({1});
  expect_failure(unknown, {"Problem reading Nodal Inertia information"});
}

TEST_F(ReadMessages, LoadsForAnotherNumberOfModes) {
  Datablock preload = bare_datablock();
  preload.block(27).ints({1, 0}).reals({1});
  expect_failure(preload, {"Number of modal preloads does not match the number of modes"});
  Datablock loads = bare_datablock();
  loads.block(28).ints({1, 1}).text("", 256).ints({0}).reals({1});
  expect_failure(loads, {"Number of modal load components does not match the number of modes"});
}

TEST_F(ReadMessages, PreloadsOfAnotherNumberOfNodesGoOn) {
  Datablock whole = whole_datablock(kWord);
  whole.again(31).ints({1}).reals({1, 2, 3, 4, 5, 6});
  whole.again(32).ints({3}).reals(Doubles(18, 0.5));
  FmdBody* const body =
      expect_body(whole, {"Number of nodes in pre-stress does not match that in stress modes",
                          "Number of nodes in pre-strain does not match that in strain modes"});
  ASSERT_NE(body, nullptr);
  Doubles values(12, 9.0);
  EXPECT_EQ(FMD_Read_Mode_Double(body, 0, 1, values.data()), 1);
  EXPECT_EQ(values, (Doubles{1, 2, 3, 4, 5, 6, 0, 0, 0, 0, 0, 0}));
}

TEST_F(ReadMessages, MonitorPointsTellTheirNumberFirst) {
  Datablock none = bare_datablock();
  none.block(33).ints({0});
  expect_allocation_failure(none);
  EXPECT_EQ(log.infos, Strings{" Monitor Point count: 0\n"});
}

TEST_F(ReadMessages, APointWithoutOperatorsNeedsNoModes) {
  Datablock plain = bare_datablock();
  plain.block(33).ints({1, 1, 1, 3}).text("NAME1234", 8).text(std::string(56, 'x'), 56).ints({5, 0});
  FmdBody* const body = expect_body(plain, {});
  ASSERT_NE(body, nullptr);
  char name[9] = {};
  char label[57] = {};
  EXPECT_EQ(FMD_GetMonitorPointNameLabel(body, 0, name, label), 0);
  EXPECT_STREQ(name, "NAME1234");
  EXPECT_STREQ(label, std::string(56, 'x').c_str());
}

TEST_F(ReadMessages, AnOperatorForNoModesTellsOfTheAllocation) {
  Datablock point = bare_datablock();
  point.block(33).ints({1, 1, 1, 3}).text("", 8).text("", 56).ints({5, 1});
  expect_allocation_failure(point);
}

TEST_F(ReadMessages, ACaseWithoutNodalLoadsIsRead) {
  Datablock cases = bare_datablock();
  cases.block(35).ints({2, 0, 1, 2, 3}).reals({0.5});
  FmdBody* const body = expect_body(cases, {});
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_GetModalLoadNodalCount(body, 0), 0);
  EXPECT_EQ(FMD_GetModalLoadNodalCount(body, 1), 1);
  EXPECT_EQ(FMD_SetModalLoadNodal(body, 0, 10, 1, 2.0), 1);
}

TEST_F(ReadMessages, PlacesThatAreNoNodes) {
  for (const int place : {-1, 4}) {
    Datablock faces = bare_datablock();
    faces.block(14).ints({0, 0, 1, 3, 2, 0, place});
    expect_failure(faces, {"Problem reading Element Faces"});
    Datablock interface_nodes = bare_datablock();
    interface_nodes.block(17).ints({1, place});
    expect_failure(interface_nodes, {"Problem when reading Interface Nodes"});
    Datablock loads = bare_datablock();
    loads.block(35).ints({1, 1, place, 3}).reals({0.5});
    expect_failure(loads, {"Problem when reading Modal Load Nodal Block"});
  }
  Datablock topology = bare_datablock();
  topology.block(5).ints({1, 1, 0, 1, 2, 0, 0, 10, 99});
  expect_failure(topology, {"Problem when reading old style element block"});
  Datablock count = bare_datablock();
  count.block(5).ints({2, 1, 0, 1, 2, 0, 0, 10, 20});
  expect_failure(count, {"Problem when reading old style element block"});
}

TEST_F(ReadMessages, ANameThatCannotBeCopiedIsAWarning) {
  store({bare_datablock()});
  ASSERT_EQ(DB_BodyCount(master.data()), 1);
  FmdBody* const body = FMD_Create(0, 0);
  int id = 0;
  DB_CloseDatablk(DB_OpenDatablk(master.data(), 1, &id));
  bool warned = false;
  for (int nth = 1; !warned && nth < 200; ++nth) {
    FmdBody* const read_body = FMD_Create(0, 0);
    log.clear();
    fmd::fail_allocation(nth);
    const int done = FMD_ReadFMD(read_body, master.data(), 1);
    fmd::fail_allocation(0);
    if (done == 1 && read_body->DataFile.Name == nullptr) {
      ASSERT_EQ(log.warnings.size(), 1U);
      EXPECT_TRUE(is_allocation_failure(log.warnings[0], "dbread"));
      EXPECT_EQ(log.errors, Strings{});
      warned = true;
    }
    FMD_UnLink(read_body);
  }
  EXPECT_TRUE(warned);
  FMD_UnLink(body);
}

}  // namespace

}  // namespace fmdtest
