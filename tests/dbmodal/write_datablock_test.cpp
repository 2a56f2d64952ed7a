// Storing a body: version words, refusals, messages, and what is left after a failure.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

#include "dbmodal/record_reader.h"
#include "dbmodal/store_fixture.h"
#include "support/sample_body.h"

namespace fmdtest {

namespace {

using Strings = std::vector<std::string>;

class WriteDatablock : public StoreTest {
 protected:
  unsigned stored_word(int index) {
    const StoredWords stored = read_stored_words("bodies.MASTER", index);
    const unsigned word = stored.records.empty() ? 0 : static_cast<unsigned>(stored.records[0].at(1));
    DB_CloseDatablk(stored.key);
    return word;
  }
};

TEST_F(WriteDatablock, WordsFollowTheOptions) {
  for (const StoredWord& stored : kStoredWords) {
    SCOPED_TRACE(stored.options);
    std::filesystem::remove("bodies.MASTER");
    ASSERT_EQ(store(make_sample_body(), stored.options), 1);
    EXPECT_EQ(log.errors, Strings{});
    FMD_Terminate();
    EXPECT_EQ(stored_word(1), stored.word);
    FMD_Terminate();
  }
}

TEST_F(WriteDatablock, EncodingIsNotAskedFor) {
  int index = 0;
  for (const char* options : {"no_xdr", "no_xdr single", "no_xdr full_str", "no_xdr full_str single",
                              "no_xdr 82_comp", "no_xdr 81_comp"}) {
    SCOPED_TRACE(options);
    const std::string qualifiers = "PEID=" + std::to_string(++index);
    ASSERT_EQ(store(make_sample_body(), options, qualifiers), 1);
    EXPECT_EQ(log.errors, Strings{});
    const unsigned expected = kStoredWords[static_cast<std::size_t>(index - 1)].word;
    FMD_Terminate();
    EXPECT_EQ(stored_word(index), expected);
    FMD_Terminate();
  }
}

TEST_F(WriteDatablock, ACoarsenedBodyStaysOne) {
  FmdBody* const body = make_sample_body();
  body->Coarsened = 1;
  ASSERT_EQ(store(body), 1);
  FmdBody* const read = open(1);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(read->Version, 0x143CU);
  EXPECT_EQ(FMD_IsCoarsened(read), 1);
}

TEST_F(WriteDatablock, TheFileOfTheBodyIsNoTarget) {
  ASSERT_EQ(store(make_sample_body()), 1);
  FmdBody* const body = open(1);
  ASSERT_NE(body, nullptr);
  FmdBody* const other = make_sample_body();
  const int block = body->DataFile.Block;
  const auto time = std::filesystem::last_write_time("bodies.MASTER");
  EXPECT_EQ(store(body), 0);
  EXPECT_EQ(log.all, Strings{"E:The output FMD name must be different than the current FMD name.\n"
                             "  Current FMD name:  bodies.MASTER\n  Output FMD name:  bodies.MASTER"});
  // The session has not moved.
  EXPECT_EQ(body->DataFile.Block, block);
  EXPECT_EQ(std::filesystem::last_write_time("bodies.MASTER"), time);
  double half[3] = {};
  EXPECT_EQ(FMD_ModeByNode(body, 1, 0, 20, half, 0), 1);
  EXPECT_EQ(FMD_SetMode(other, 7, 20, 0, 1, 2, 3, 4, 5, 6), 1);
}

TEST_F(WriteDatablock, NoBodyIsRefusedWithoutASession) {
  EXPECT_EQ(store(nullptr), 0);
  EXPECT_EQ(log.errors, Strings{"The database has not been initialized."});
}

TEST_F(WriteDatablock, QualifiersThatAreNoneFail) {
  for (const char* qualifiers :
       {"NOSUCH=1", "PEID=one", "PEID", "HIGHQUAL=3", "SELABEL='open", "PEID=1 PEID=2"}) {
    SCOPED_TRACE(qualifiers);
    ASSERT_EQ(store(make_sample_body(), "", "PEID=9"), 1);
    EXPECT_EQ(store(make_sample_body(), "", qualifiers), 0);
    ASSERT_EQ(log.errors.size(), 2U);
    EXPECT_EQ(log.errors[0].substr(0, 29), "Cannot create fmd datablock, ");
    EXPECT_EQ(log.errors[1], "Unable to open bodies.MASTER for write. Please check the name and qualifier.");
    FMD_Terminate();
    EXPECT_EQ(open(1)->DataFile.BodyIndex, 1);
    char path[] = "bodies.MASTER";
    EXPECT_EQ(DB_BodyCount(path), 1);
    FMD_Terminate();
  }
}

TEST_F(WriteDatablock, ATargetThatIsNoDatabaseFails) {
  std::filesystem::create_directory("folder.MASTER");
  EXPECT_EQ(store(make_sample_body(), "", "", "folder.MASTER"), 0);
  EXPECT_EQ(log.errors,
            (Strings{"Specified KD DB file folder.MASTER not a normal/regular file.",
                     "Unable to open folder.MASTER for write. Please check the name and qualifier."}));
  FMD_Terminate();
  EXPECT_EQ(store(make_sample_body(), "", "", "no/such/folder.MASTER"), 0);
  EXPECT_EQ(log.errors,
            Strings{"Unable to open no/such/folder.MASTER for write. Please check the name and qualifier."});
}

// The options are looked at on the target, and a conflict stores nothing.
TEST_F(WriteDatablock, OptionsThatExcludeEachOther) {
  ASSERT_EQ(store(make_sample_body(), "", "PEID=1"), 1);
  FmdBody* const body = make_sample_body();
  EXPECT_EQ(store(body, "full_str sparse_str", "PEID=2"), 0);
  EXPECT_EQ(log.errors, (Strings{"Cannot specify full and sparse stress and strain modes.",
                                 "Problem writing version number."}));
  FMD_Terminate();
  char path[] = "bodies.MASTER";
  EXPECT_EQ(DB_BodyCount(path), 1);
  FMD_Terminate();
  EXPECT_NE(open(1), nullptr);
}

TEST_F(WriteDatablock, AFailedWriteLeavesWhatWasStored) {
  ASSERT_EQ(store(make_sample_body(), "", "PEID=1"), 1);
  FMD_Terminate();
  FmdBody* const body = make_sample_body();
  body->BlockExists[fmd::kModalLoads] = 1;
  EXPECT_EQ(store(body, "", "PEID=1"), 0);
  EXPECT_EQ(log.errors.back(), "Problem writing Modal Loads.\n");
  FMD_Terminate();
  FmdBody* const read = open(1);
  ASSERT_NE(read, nullptr);
  EXPECT_EQ(FMD_NodeCount(read), 4);
}

TEST_F(WriteDatablock, SaysWhatTheWriteOfAPlainFileSays) {
  FmdBody* const body = make_sample_body();
  FmdBody* const twin = make_sample_body();
  ASSERT_EQ(store(body), 1);
  const Strings stored = log.all;
  ASSERT_EQ(write(twin, ""), 1);
  EXPECT_EQ(stored, log.all);
}

TEST_F(WriteDatablock, TheForwarderStoresToo) {
  char path[] = "bodies.MASTER";
  char qualifiers[] = "SELABEL='arm',PROJNO=3";
  EXPECT_EQ(DB_write_DB(make_sample_body(), path, qualifiers), 1);
  char row[256];
  EXPECT_EQ(DB_GetBodyInfo(path, 1, row), 1);
  EXPECT_STREQ(row, "SELABEL='arm',PROJNO=3,VERSION=1,PEID=0,DESITER=0,STEPCUR=0");
}

TEST_F(WriteDatablock, ABodyMayBeStoredTwiceAndEdited) {
  FmdBody* const body = make_sample_body();
  ASSERT_EQ(store(body, "", "PEID=1"), 1);
  FMD_SetNodalMass(body, 20, 123.0);
  ASSERT_EQ(store(body, "", "PEID=2"), 1);
  FmdBody* const second = open(2);
  ASSERT_NE(second, nullptr);
  EXPECT_EQ(FMD_NodalMass(second, FMD_NodeIndex(second, 20)), 123.0);
  FmdBody* const first = open(1);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(FMD_NodalMass(first, FMD_NodeIndex(first, 20)), sample_mass(20));
}

}  // namespace

}  // namespace fmdtest
