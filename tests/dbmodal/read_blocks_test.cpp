// What a body holds after reading a datablock that was composed by hand, at every level, with and without a
// position table.
#include <gtest/gtest.h>

#include <cmath>

#include "body/matrix_operator.h"
#include "body/monitor_point.h"
#include "dbmodal/read_fixture.h"
#include "messages/memory.h"

namespace fmdtest {

namespace {

Doubles vector_of(FmdBody* body, int mode, int type, int node) {
  Doubles six(6, -1.0);
  EXPECT_EQ(FMD_ModeByNode(body, mode, type, node, six.data(), 0), 1);
  EXPECT_EQ(FMD_ModeByNode(body, mode, type, node, six.data() + 3, 1), 1);
  return six;
}

void expect_nodes(FmdBody* body) {
  ASSERT_EQ(FMD_NodeCount(body), 4);
  for (const int node : kComposedNodes) {
    double xyz[3] = {};
    ASSERT_EQ(FMD_NodeCoordinates(body, FMD_NodeIndex(body, node), xyz), 1) << node;
    for (int axis = 0; axis < 3; ++axis) EXPECT_EQ(xyz[axis], composed_coordinate(node, axis)) << node;
  }
  EXPECT_EQ(FMD_NodalMass(body, FMD_NodeIndex(body, 10)), 1.5);
  EXPECT_EQ(FMD_NodalMass(body, FMD_NodeIndex(body, 40)), 2.5);
  EXPECT_EQ(FMD_NodalMass(body, FMD_NodeIndex(body, 20)), 0.0);
  const FmdNode& node = body->Nodes[FMD_NodeIndex(body, 20)];
  EXPECT_EQ(Doubles(node.Inertia, node.Inertia + 6), (Doubles{1.0, 0, 0, 0, 0.25, 0}));
  const FmdNode& other = body->Nodes[FMD_NodeIndex(body, 10)];
  EXPECT_EQ(Doubles(other.Inertia, other.Inertia + 6), (Doubles{0, 0, 0, 0, 0, 0.125}));
  EXPECT_EQ(body->Nodes[FMD_NodeIndex(body, 30)].Inertia, nullptr);
}

// What counts nodes by their place in block 4.
void expect_references(FmdBody* body) {
  int faces = 0;
  int words = 0;
  EXPECT_EQ(FMD_FaceListSize(body, &faces, &words), 8);
  EXPECT_EQ(faces, 2);
  EXPECT_EQ(body->FacesReserved, 77);
  Ints corners;
  for (const int word : {1, 2, 3, 5, 6, 7}) corners.push_back(FMD_NodeID(body, body->FaceList[word]));
  EXPECT_EQ(corners, (Ints{30, 10, 20, 10, 20, 40}));
  Ints interface_nodes;
  for (int i = 0; i < body->InterfaceNodeCount; ++i)
    interface_nodes.push_back(FMD_NodeID(body, body->InterfaceNodes[i]));
  EXPECT_EQ(interface_nodes, (Ints{30, 40}));
}

void expect_nodal_loads(FmdBody* body) {
  ASSERT_EQ(FMD_GetModalLoadNodalCaseCount(body), 1);
  const FmdNodalLoadCase& loads = body->NodalLoadCases[0];
  ASSERT_EQ(loads.Count, 2);
  EXPECT_EQ(loads.Capacity, 2);
  EXPECT_EQ(FMD_NodeID(body, loads.Nodes[0]), 30);
  EXPECT_EQ(FMD_NodeID(body, loads.Nodes[1]), 40);
  EXPECT_EQ(loads.Coordinates[0], 3);
  EXPECT_EQ(loads.Coordinates[1], 6);
  EXPECT_EQ(loads.Values[0], 1.5);
  EXPECT_EQ(loads.Values[1], -2.5);
}

void expect_vectors(FmdBody* body, const Ints& numbers, bool has_strain = true) {
  ASSERT_EQ(FMD_ModeCount(body), 2);
  for (std::size_t i = 0; i < 2; ++i) {
    const int mode = numbers[i];
    const int in_file = kComposedModes[i];
    EXPECT_EQ(FMD_ModeNumber(body, static_cast<int>(i)), mode);
    for (const int node : kComposedNodes)
      EXPECT_EQ(vector_of(body, mode, 0, node), composed_vector(8, in_file, node));
    for (const int node : kComposedStressNodes)
      EXPECT_EQ(vector_of(body, mode, 1, node), composed_vector(18, in_file, node));
    if (!has_strain) continue;
    for (const int node : kComposedStrainNodes)
      EXPECT_EQ(vector_of(body, mode, 2, node), composed_vector(29, in_file, node));
  }
}

void expect_header_and_units(FmdBody* body) {
  EXPECT_STREQ(body->Title, "A title");
  EXPECT_STREQ(body->CreationTime, "Sat Nov 21 15:00:00 2026");
  EXPECT_STREQ(body->InputFileName, "arm.inp");
  EXPECT_STREQ(body->InputFileType, "deck");
  EXPECT_STREQ(body->Comment1, "one");
  EXPECT_STREQ(body->Comment2, "");
  EXPECT_STREQ(body->Comment3, "three");
  EXPECT_STREQ(body->MassUnit, "GRAM");
  EXPECT_STREQ(body->LengthUnit, "METER");
  EXPECT_STREQ(body->TimeUnit, "SECOND");
  EXPECT_STREQ(body->ForceUnit, "no unit");
}

void expect_matrices(FmdBody* body) {
  ASSERT_EQ(body->GenStiffCount, 2);
  EXPECT_EQ(body->GenStiff[1].Row, 6);
  EXPECT_EQ(body->GenStiff[1].Column, 8);
  EXPECT_EQ(body->GenStiff[1].Value, 0.5);
  ASSERT_EQ(body->GenMassCount, 1);
  EXPECT_EQ(body->GenMass[0].Row, 8);
  ASSERT_EQ(body->GenDampCount, 1);
  EXPECT_EQ(body->GenDamp[0].Column, 1);
  EXPECT_EQ(body->DampingOnPrincipalAxes, 1);
  EXPECT_EQ(Ints(body->TransformationModes, body->TransformationModes + 2), (Ints{1, 2}));
  EXPECT_EQ(Doubles(body->Transformation, body->Transformation + 4), (Doubles{16, 16.125, 16.25, 16.375}));
  EXPECT_EQ(body->GlobalMass, 6.0);
  EXPECT_EQ(body->GlobalCenterOfMass[0], 6.125);
  EXPECT_EQ(body->GlobalInertia[8], 7.5);
}

void expect_operators(FmdBody* body) {
  ASSERT_EQ(FMD_GetMonitorPointCount(body), 1);
  const FmdMonitorPoint& point = *body->MonitorPoints[0];
  EXPECT_STREQ(point.name, "TIP");
  EXPECT_STREQ(point.label, "tip of the arm");
  EXPECT_EQ(point.rowCount, 2);
  EXPECT_EQ(point.operatorFlags, 15U);
  Doubles operators(4);
  for (int kind = 1; kind <= 4; ++kind) {
    EXPECT_EQ(FMD_GetMonitorPointOperator(body, 0, kind, operators.data()), 0);
    EXPECT_EQ(operators, (Doubles{kind + 0.0, kind + 0.125, kind + 0.25, kind + 0.375})) << kind;
  }
  ASSERT_EQ(FMD_GetMatrixOperatorCount(body), 1);
  const FmdMatrixOperator& matrix = *body->MatrixOperators[0];
  EXPECT_STREQ(matrix.name, "OUT");
  EXPECT_STREQ(matrix.rowLabels[0], "first row");
  ASSERT_EQ(matrix.subOperatorCount, 1);
  EXPECT_EQ(matrix.subOperators[0]->columnCount, 3);
  EXPECT_EQ(matrix.subOperators[0]->data[5], 5.625);
}

void expect_loads_and_more(FmdBody* body) {
  EXPECT_EQ(Doubles(body->ModalPreload, body->ModalPreload + 2), (Doubles{0.5, -0.5}));
  EXPECT_EQ(body->PreloadProcessed, 1);
  ASSERT_EQ(body->LoadCaseCount, 1);
  EXPECT_STREQ(body->LoadCases[0].Label, "gravity");
  EXPECT_EQ(body->LoadCases[0].Processed, 1);
  EXPECT_EQ(body->LoadCases[0].Loads[1], 3.5);
  int node = 0;
  double value = 0.0;
  EXPECT_EQ(FMD_GetMaxModeDisplacement(body, 9, &node, &value), 1);
  EXPECT_EQ(node, 20);
  // Stored in metres where the labels say nothing else: no factor has been applied yet.
  EXPECT_EQ(value, 2.5);
  Doubles six(12);
  EXPECT_EQ(FMD_Read_Mode_Double(body, 0, 1, six.data()), 1);
  EXPECT_EQ(six[11], 32.375);
  EXPECT_EQ(FMD_Read_Mode_Double(body, 0, 2, six.data()), 1);
  EXPECT_EQ(six[0], 32.0);
}

// Lengths are in millimetres, masses in grams; what is fetched later is in the units of the file.
void expect_invariants(FmdBody* body) {
  EXPECT_EQ(FMD_Invar1(body), 8.0);
  const fmd::CArray<double> second(FMD_Invar2(body));
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(Doubles(second.get(), second.get() + 3), (Doubles{20, 20.125, 20.25}));
}

using ReadBlocks = ReadTest;

class ReadLevels : public ReadTest, public testing::WithParamInterface<unsigned> {};

bool is_old(unsigned word) {
  return (word & 0xFFU) < 40;
}

TEST_P(ReadLevels, GivesEveryBlockAsItStands) {
  FmdBody* const body = read(whole_datablock(GetParam()));
  ASSERT_NE(body, nullptr) << testing::PrintToString(log.errors);
  EXPECT_EQ(log.errors, Strings{});
  EXPECT_EQ(log.warnings, Strings{});
  EXPECT_EQ(FMD_Version(body), static_cast<int>(GetParam() & 0xFFU));
  EXPECT_EQ(body->Version, GetParam());
  expect_header_and_units(body);
  expect_nodes(body);
  expect_references(body);
  expect_vectors(body, kComposedModes, !is_old(GetParam()));
  expect_matrices(body);
  EXPECT_EQ(FMD_ModeExist(body, 2), is_old(GetParam()) ? 0 : 1);
  EXPECT_EQ(FMD_Double_Prec(body), whole_datablock(GetParam()).is_single() ? 0 : 1);
  for (int byte = 17; byte < 100; ++byte)
    EXPECT_EQ(body->BlockExists[byte], !is_old(GetParam()) && byte <= 33 ? 1 : 0) << byte;
  if (is_old(GetParam())) return;
  EXPECT_EQ(log.infos, Strings{" Monitor Point count: 1\n"});
  expect_nodal_loads(body);
  expect_operators(body);
  expect_loads_and_more(body);
  expect_invariants(body);
}

constexpr unsigned kSingle = 0x200;

// Without a table the stride of the walk fits levels that have a word in front of every vector.
INSTANTIATE_TEST_SUITE_P(Of, ReadLevels,
                         testing::Values(10 | kTableBit, 20 | kTableBit, 30 | kTableBit, 31 | kTableBit,
                                         40 | kTableBit, 41 | kTableBit, 60 | kTableBit, 61 | kTableBit,
                                         255 | kTableBit, 60 | kSingle | kTableBit, 61 | kSingle | kTableBit,
                                         20U, 40U, 41U, 60U, 61U, 255U, 60U | 0x100U));

TEST_F(ReadBlocks, WithoutUnitsTheBodyIsInThoseOfTheSystem) {
  FmdBody* const body = read(bare_datablock());
  ASSERT_NE(body, nullptr);
  EXPECT_STREQ(body->MassUnit, "KILOGRAM");
  EXPECT_STREQ(body->LengthUnit, "METER");
  EXPECT_STREQ(body->TimeUnit, "SECOND");
  EXPECT_STREQ(body->ForceUnit, "NEWTON");
}

TEST_F(ReadBlocks, TrimsTheTextsOfTheHeaderButOne) {
  Datablock blanks = bare_datablock();
  blanks.again(2).text("Title  " + std::string(121, ' '), 128).text("then" + std::string(28, ' '), 32);
  blanks.text("a file ", 128).text("deck  " + std::string(10, ' '), 16);
  for (int comment = 0; comment < 3; ++comment) blanks.text("c" + std::string(79, ' '), 80);
  FmdBody* const body = read(blanks);
  ASSERT_NE(body, nullptr);
  EXPECT_STREQ(body->Title, "Title");
  EXPECT_STREQ(body->CreationTime, "then");
  // A field that ends in zero bytes keeps its blank.
  EXPECT_STREQ(body->InputFileName, "a file ");
  EXPECT_EQ(std::string(body->InputFileType).substr(0, 6), "deck  ");
  EXPECT_STREQ(body->Comment3, "c");
}

TEST_F(ReadBlocks, TerminateStringStopsAtTheFirstOtherByte) {
  char field[] = {'a', ' ', 'b', ' ', ' ', 'x'};
  terminate_string(field, 5);
  EXPECT_EQ(std::string(field, 6), std::string("a b\0\0x", 6));
  char ended[] = {'a', ' ', '\0'};
  terminate_string(ended, 3);
  EXPECT_EQ(ended[1], ' ');
  char blanks[] = "  ";
  terminate_string(blanks, 2);
  EXPECT_EQ(blanks[0], '\0');
  terminate_string(nullptr, 0);
}

TEST_F(ReadBlocks, ABodyWithoutTheLastBlockIsRead) {
  Datablock most = whole_datablock(60 | kTableBit);
  most.remove(35);
  EXPECT_NE(read(most), nullptr);
}

TEST_F(ReadBlocks, TopologyOfTheOldStyleStandsInForMissingFaces) {
  for (const unsigned word : {20U, 60 | kTableBit}) {
    Datablock old = bare_datablock(word);
    old.block(5).ints({3, 2, 0, 2, 2, 1, 1, 3});
    old.ints({-1, -1, 30, 10, -1, -1, 10, 40, -1, -1, 20, 40, 30});
    FmdBody* const body = read(old);
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(body->FaceCount, 3);
    ASSERT_EQ(body->FaceListLength, 10);
    EXPECT_EQ(Ints(body->FaceList, body->FaceList + 10), (Ints{2, 0, 1, 2, 1, 3, 3, 2, 3, 0}));
  }
  // Where both are there the faces count.
  Datablock both = bare_datablock();
  both.block(5).ints({1, 1, 0, 1, 2, 0, 0, 30, 10});
  both.block(14).ints({0, 0, 1, 3, 2, 3, 2});
  FmdBody* const body = read(both);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(Ints(body->FaceList, body->FaceList + 3), (Ints{2, 3, 2}));
}

// Stress may stand in front of the mode shapes; what counts is the order of reading.
TEST_F(ReadBlocks, RecordsMayStandInAnotherOrder) {
  for (const unsigned word : {60U, 60 | kTableBit, 41U, 41 | kTableBit}) {
    Datablock moved = whole_datablock(word, {40, 30, 20, 10});
    const ComposedRecord stress = moved.record(18);
    moved.records.erase(moved.records.begin() + (&moved.record(18) - moved.records.data()));
    moved.records.insert(moved.records.begin() + (&moved.record(8) - moved.records.data()), stress);
    FmdBody* const body = read(moved);
    ASSERT_NE(body, nullptr) << testing::PrintToString(log.errors);
    EXPECT_EQ(log.warnings, Strings{});
    EXPECT_EQ(FMD_NodeID(body, 0), 40);
    expect_nodes(body);
    expect_references(body);
    expect_nodal_loads(body);
    expect_vectors(body, kComposedModes);
  }
}

TEST_F(ReadBlocks, TheSecondTimeABlockNumberComesItIsNotItsPlace) {
  Datablock twice(60);
  add_coordinates(twice, {5, 6});
  add_coordinates(twice, {7, 8, 9});
  FmdBody* const body = read(twice);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_NodeCount(body), 2);
}

TEST_F(ReadBlocks, MatricesAreReadIntoTablesThatTheCallerHasMade) {
  FmdBody* const body = read(whole_datablock(60 | kTableBit));
  ASSERT_NE(body, nullptr);
  body->GenStiff[0] = body->GenStiff[1] = FmdMatrixEntry{};
  body->DampingOnPrincipalAxes = 0;
  EXPECT_EQ(FMD_ReadGeneralizedStiffness(body), 1);
  EXPECT_EQ(body->GenStiff[0].Value, 49.0);
  EXPECT_EQ(FMD_ReadGeneralizedMass(body), 1);
  EXPECT_EQ(FMD_ReadGeneralizedDamping(body), 1);
  EXPECT_EQ(body->DampingOnPrincipalAxes, 1);
  body->GenStiffCapacity = 1;
  EXPECT_EQ(FMD_ReadGeneralizedStiffness(body), 0);
  body->GenStiffCapacity = 2;
  FmdBody* const empty = FMD_Create(1, 1);
  EXPECT_EQ(FMD_ReadGeneralizedStiffness(empty), 1);
  EXPECT_EQ(FMD_ReadGeneralizedMass(empty), 1);
  EXPECT_EQ(FMD_ReadGeneralizedDamping(empty), 1);
}

TEST_F(ReadBlocks, ABodyThatIsNoneIsRefused) {
  EXPECT_EQ(FMD_ReadFMD(nullptr, master.data(), 1), 0);
  EXPECT_EQ(log.all, Strings{});
  EXPECT_EQ(FMD_get_position_of_blocks(nullptr), 0);
  EXPECT_EQ(FMD_get_position_of_blocks(FMD_Create(1, 1)), 0);
}

}  // namespace

}  // namespace fmdtest
