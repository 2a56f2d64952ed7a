// What the version word says: levels that are read, precision, and what the oldest level lacks.
#include <gtest/gtest.h>

#include "dbmodal/read_fixture.h"

namespace fmdtest {

namespace {

using ReadVersions = ReadTest;

TEST_F(ReadVersions, RefusesOtherLevels) {
  for (const unsigned level : {0U, 9U, 11U, 19U, 21U, 29U, 32U, 42U, 52U, 59U}) {
    expect_failure(bare_datablock(level | kTableBit), {"Not a valid FMD format."});
    EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
  }
}

TEST_F(ReadVersions, BitsAboveTheLevelTakeNoPartInItsCheck) {
  FmdBody* const body = read(bare_datablock(0x7FFFF000U | 0x400U | 60U));
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_IsCoarsened(body), 1);
}

TEST_F(ReadVersions, TheFirstWordMustBeTheNumberOfTheFirstBlock) {
  Datablock wrong = bare_datablock();
  wrong.records[0].number = 2;
  expect_failure(wrong, {"Not a valid FMD format."});
}

TEST_F(ReadVersions, TheSummaryMustBeTheThirdRecord) {
  Datablock wrong = bare_datablock();
  wrong.fix_summary();
  wrong.records[2].number = 4;
  expect_failure(wrong, {"Problem reading FMD table of contents."});
}

// The whole word: neither the level nor a position table makes it so.
TEST_F(ReadVersions, OnlyTheVersionWordTenRecomputesFrequencies) {
  Datablock plain(10);
  add_coordinates(plain);
  add_eigenvalues(plain);
  FmdBody* body = read(plain);
  ASSERT_NE(body, nullptr);
  ASSERT_EQ(body->ModeRecordCount, 2);
  const FmdModeRecord& record = body->ModeRecords[1];
  EXPECT_EQ(record.Mode, 9);
  EXPECT_EQ(record.Eigenvalue, 36.0);
  EXPECT_EQ(record.FrequencyRad, 6.0);
  EXPECT_EQ(record.FrequencyHz, 6.0 / 6.28318530718);
  EXPECT_EQ(record.GeneralizedMass, 1.0);
  EXPECT_EQ(record.GeneralizedStiffness, 36.0);
  for (const unsigned word : {10 | kTableBit, 20U, 20 | kTableBit, 10U | 0x400U}) {
    Datablock stored(word);
    add_coordinates(stored);
    add_eigenvalues(stored);
    body = read(stored);
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(body->ModeRecords[1].FrequencyHz, 1.5) << word;
    EXPECT_EQ(body->ModeRecords[1].FrequencyRad, 2.5) << word;
    EXPECT_EQ(body->ModeRecords[1].GeneralizedMass, 3.5) << word;
    EXPECT_EQ(body->ModeRecords[1].GeneralizedStiffness, 4.5) << word;
  }
}

// Words of one mode are not what the stride expects, as in all datablocks of this kind.
TEST_F(ReadVersions, SingleRealsWithoutATableAreReadWronglyByDesign) {
  for (const unsigned word : {50U, 51U}) {
    Datablock single(word);
    add_coordinates(single);
    add_vectors(single, 8, kComposedNodes);
    FmdBody* const body = read(single);
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(FMD_Double_Prec(body), 0);
    EXPECT_EQ(FMD_ModeNumber(body, 0), 7);
    double half[3] = {};
    EXPECT_EQ(FMD_ModeByNode(body, 7, 0, 30, half, 1), 1);
    EXPECT_EQ(half[2], composed_vector(8, 7, 30)[5]);
    EXPECT_NE(FMD_ModeNumber(body, 1), 9);
  }
}

// A single precision word with a table reads as double; the reals behind it do not.
TEST_F(ReadVersions, TheWholeWordTellsThePrecision) {
  for (const unsigned word : {50 | kTableBit, 51 | kTableBit, 50U | 0x400U}) {
    Datablock single(word);
    single.block(19).reals({1.0});
    FmdBody* const body = read(single);
    ASSERT_NE(body, nullptr);
    EXPECT_EQ(FMD_Double_Prec(body), 1) << word;
  }
}

TEST_F(ReadVersions, InvariantsThatAnOldLevelDoesNotKnowAreNotThere) {
  Datablock old = bare_datablock(31 | kTableBit);
  old.block(19).reals({8.0});
  FmdBody* const body = read(old);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_Exists(body, 18), 0);
}

}  // namespace

}  // namespace fmdtest
