// Blocks of vectors against each other: order, numbers and counts of modes, with what the reader says of
// them.
#include <gtest/gtest.h>

#include "dbmodal/read_fixture.h"

namespace fmdtest {

namespace {

constexpr unsigned kWord = 60 | kTableBit;

using ReadVectors = ReadTest;

struct VectorBlock {
  int number;
  std::string small;  // "stress"
  std::string capital;
};

const VectorBlock kVectorBlocks[] = {{18, "stress", "Stress"}, {29, "strain", "Strain"}};

TEST_F(ReadVectors, OtherVectorsBeforeShapesAreNumberedByTheirWords) {
  for (const VectorBlock& block : kVectorBlocks) {
    Datablock first = bare_datablock();
    add_vectors(first, block.number, {10, 20});
    FmdBody* const body =
        expect_body(first, {}, {block.capital + " modes are being processed before mode shapes"});
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(FMD_ModeNumber(body, 0), 7);
    EXPECT_EQ(FMD_ModeNumber(body, 1), 9);
  }
}

// Where a level stores no number or one that is ignored, it comes from the eigenvalues, or counts from 1.
TEST_F(ReadVectors, OtherVectorsBeforeShapesAtLevelsWithoutNumbers) {
  for (const unsigned level : {10U, 20U, 30U, 31U}) {
    for (const bool with_eigenvalues : {true, false}) {
      Datablock first = bare_datablock(level | kTableBit);
      if (with_eigenvalues) add_eigenvalues(first);
      add_vectors(first, 18, {10, 20}, {70, 90});
      FmdBody* const body = expect_body(first, {}, {"Stress modes are being processed before mode shapes"});
      ASSERT_NE(body, nullptr);
      EXPECT_EQ(FMD_ModeNumber(body, 0), with_eigenvalues ? 7 : 1) << level;
      EXPECT_EQ(FMD_ModeNumber(body, 1), with_eigenvalues ? 9 : 2) << level;
      Doubles six(12);
      EXPECT_EQ(FMD_Read_Mode_Double(body, FMD_ModeNumber(body, 1), 1, six.data()), 1);
      EXPECT_EQ(Doubles(six.begin(), six.begin() + 6), composed_vector(18, 90, 10)) << level;
    }
  }
}

TEST_F(ReadVectors, AnIgnoredWordHasNoEffectOnTheNumbers) {
  for (const unsigned word : {20U, 20 | kTableBit}) {
    Datablock ignored = bare_datablock(word);
    add_vectors(ignored, 8, kComposedNodes, {700, 900});
    FmdBody* const body = expect_body(ignored, {});
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(FMD_ModeNumber(body, 0), 1);
    EXPECT_EQ(FMD_ModeNumber(body, 1), 2);
    Doubles values(24);
    EXPECT_EQ(FMD_Read_Mode_Double(body, 2, 0, values.data()), 1);
    EXPECT_EQ(values[0], composed_vector(8, 900, 30)[0]);
  }
}

TEST_F(ReadVectors, OtherVectorsInAnotherOrderThanShapes) {
  for (const VectorBlock& block : kVectorBlocks) {
    Datablock other = bare_datablock();
    add_vectors(other, 8, kComposedNodes);
    add_vectors(other, block.number, {10}, {9, 7});
    expect_failure(other, {block.capital + " modes are in a different order than mode shapes"});
  }
}

TEST_F(ReadVectors, OtherVectorsOfAnotherNumberThanEigenvalues) {
  for (const VectorBlock& block : kVectorBlocks) {
    Datablock other = bare_datablock();
    add_eigenvalues(other);
    add_vectors(other, 8, kComposedNodes);
    add_vectors(other, block.number, {10}, {7});
    FmdBody* const body =
        expect_body(other, {"Number of " + block.small + " modes does not match the number of eigenvalues"});
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(FMD_ModeCount(body), 1);
  }
}

TEST_F(ReadVectors, OtherVectorsOfUnknownNodes) {
  for (const VectorBlock& block : kVectorBlocks) {
    Datablock unknown = bare_datablock();
    add_vectors(unknown, block.number, {99});
    expect_failure(unknown, {"Problem when reading Modal " + block.capital + " info"});
  }
}

// The later block counts, and no vector is read from a place that there is not.
TEST_F(ReadVectors, CountsOfModesThatDifferFromBlockToBlock) {
  for (const unsigned word : {60U, kWord}) {
    Datablock differing = bare_datablock(word);
    add_vectors(differing, 8, kComposedNodes);
    add_vectors(differing, 18, {10}, {7});
    add_vectors(differing, 29, {20});
    FmdBody* const body = expect_body(differing, {});
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(FMD_ModeCount(body), 2);
    Doubles six(24);
    EXPECT_EQ(FMD_Read_Mode_Double(body, 9, 2, six.data()), 1);
    EXPECT_EQ(FMD_Read_Mode_Double(body, 9, 1, six.data()), 0);
  }
  Datablock more = bare_datablock();
  add_vectors(more, 8, kComposedNodes, {7});
  add_vectors(more, 18, {10}, {7, 9});
  expect_failure(more, {"Stress modes are in a different order than mode shapes"});
}

TEST_F(ReadVectors, ModeCountsBelowOneInStressPassAndInStrainDoNot) {
  Datablock stress = bare_datablock();
  add_eigenvalues(stress);
  stress.block(18).ints({0, 1, 10});
  FmdBody* const body =
      expect_body(stress, {"Number of stress modes does not match the number of eigenvalues"});
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_ModeCount(body), 0);
  Datablock strain = bare_datablock();
  add_eigenvalues(strain);
  strain.block(29).ints({0, 1, 10});
  expect_failure(strain, {"Number of strain modes does not match the number of eigenvalues",
                          "Problem when reading Modal Strain info"});
}

}  // namespace

}  // namespace fmdtest
