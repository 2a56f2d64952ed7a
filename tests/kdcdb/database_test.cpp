// The store through its own header: what each operation answers, in and out of a session.
#include <gtest/gtest.h>

#include <cstring>
#include <fstream>

#include "kdcdb/kdcdb.h"
#include "support/session.h"

namespace {

using kdcdb::Status;

class DatabaseTest : public ::testing::Test {
 protected:
  void TearDown() override {
    kdcdb::DbaseCls();
    kdcdb::DeleteDatabase(base().c_str());
    const std::string own = own_base();
    if (!own.empty()) kdcdb::DeleteDatabase(own.c_str());
  }
  std::string base() { return (directory.path() / "work").string(); }
  std::string own_base() {
    char name[4096];
    std::size_t length = 0;
    if (kdcdb::GetDbName("DBS", name, sizeof name, &length) != kdcdb::kOk) return "";
    return std::string(name, length - 4);
  }
  void begin() { ASSERT_EQ(kdcdb::DbaseBst("message", "./"), kdcdb::kOk); }
  void open_new() {
    begin();
    ASSERT_EQ(kdcdb::DbaseNew(base().c_str(), "init dbfmd"), kdcdb::kOk);
  }
  int create(int highqual) {
    int key = 0;
    EXPECT_EQ(
        kdcdb::CreateDatablk(
            ("dbcreate datablk=(fmdtmp) quals(highqual=" + std::to_string(highqual) + ")").c_str(), &key),
        kdcdb::kOk);
    return key;
  }
  int alloc(const std::string& selection, int expected_matches) {
    int key = -1;
    int matches = -1;
    EXPECT_EQ(kdcdb::AllocDatablk(selection.c_str(), &key, &matches), kdcdb::kOk) << selection;
    EXPECT_EQ(matches, expected_matches) << selection;
    EXPECT_EQ(key != 0, matches != 0);
    return key;
  }
  bool exists(const char* suffix) { return std::filesystem::exists(base() + suffix); }

  fmdtest::TemporaryDirectory directory;
};

TEST_F(DatabaseTest, WithoutADatabaseEveryOperationAnswersAStatus) {
  begin();
  int key = 7;
  int matches = 7;
  char text[8];
  EXPECT_EQ(kdcdb::DbaseNdl("x"), kdcdb::kNoDatabase);
  EXPECT_EQ(kdcdb::DbaseCls(), kdcdb::kNoDatabase);
  EXPECT_EQ(kdcdb::FMSCommand("init dbfmd"), kdcdb::kNoDatabase);
  EXPECT_EQ(kdcdb::GetDbdict("dbdict datablk(fmddb) where() select()", text, 8), -kdcdb::kNoDatabase);
  EXPECT_EQ(kdcdb::AllocDatablk("datablk=(fmdtmp) where()", &key, &matches), kdcdb::kNoDatabase);
  EXPECT_EQ(key, 0);
  EXPECT_EQ(matches, 0);
  EXPECT_EQ(kdcdb::CreateDatablk("dbcreate datablk=(fmdtmp) quals(highqual=1)", &key), kdcdb::kNoDatabase);
  EXPECT_EQ(kdcdb::Gopen(1, 0), kdcdb::kNoDatablock);
  EXPECT_EQ(kdcdb::Close(1, 1), kdcdb::kNoDatablock);
  EXPECT_EQ(kdcdb::ReleaseDatablk(1), kdcdb::kNoDatablock);
  EXPECT_EQ(kdcdb::Fwdrec(1), kdcdb::kNoDatablock);
  EXPECT_EQ(kdcdb::Filps3(1, 0), kdcdb::kNoDatablock);
  EXPECT_EQ(kdcdb::WriteZeros(1, 1), kdcdb::kNoDatablock);
}

TEST_F(DatabaseTest, NewDatabaseHasTheFilesThatItsCommandsLeave) {
  open_new();
  EXPECT_TRUE(exists(".MASTER") && exists(".DBALL") && exists(".DBFMD"));
  EXPECT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  EXPECT_EQ(kdcdb::DeleteDatabase(base().c_str()), kdcdb::kOk);
  EXPECT_FALSE(exists(".MASTER") || exists(".DBALL") || exists(".DBFMD"));

  EXPECT_EQ(kdcdb::DbaseNew(base().c_str(), ""), kdcdb::kNoDatabase);  // closing has ended the session
  begin();
  ASSERT_EQ(kdcdb::DbaseNew(base().c_str(), "init dbfmd;dbsetdel dball"), kdcdb::kOk);
  EXPECT_TRUE(exists(".MASTER") && !exists(".DBALL") && exists(".DBFMD"));
  EXPECT_EQ(kdcdb::FMSCommand("dbsetdel dbfmd"), kdcdb::kOk);
  EXPECT_FALSE(exists(".DBFMD"));
  EXPECT_EQ(kdcdb::DeleteDatabase(base().c_str()), kdcdb::kDatabaseOpen);
}

TEST_F(DatabaseTest, OneDatabaseIsOpenAtATime) {
  open_new();
  EXPECT_EQ(kdcdb::DbaseBst("m", "./"), kdcdb::kDatabaseOpen);
  EXPECT_EQ(kdcdb::DbaseNew((base() + "2").c_str(), ""), kdcdb::kDatabaseOpen);
  EXPECT_EQ(kdcdb::DbaseOld(base().c_str(), ""), kdcdb::kDatabaseOpen);
  EXPECT_EQ(kdcdb::DbaseNdl("anything"), kdcdb::kOk);
}

TEST_F(DatabaseTest, BadNamesAndCommandsOpenNothing) {
  begin();
  for (const char* command :
       {"init", "init dbxyz", "init=dbfmd", "dbsetdel master", "init dbfmd extra", "restart now", "nonsense",
        "init(dbfmd)", "assign", "dbcreate datablk=(fmdtmp) quals(highqual=1)", "a="})
    EXPECT_EQ(kdcdb::DbaseNew(base().c_str(), command), kdcdb::kBadCommand) << command;
  EXPECT_EQ(kdcdb::DbaseNew("", ""), kdcdb::kBadArgument);
  EXPECT_EQ(kdcdb::DbaseNew("missing/base", ""), kdcdb::kNoFile);
  EXPECT_EQ(kdcdb::DbaseOld(base().c_str(), ""), kdcdb::kNoFile);
  EXPECT_EQ(kdcdb::DeleteDatabase("missing/base"), kdcdb::kNoFile);
  EXPECT_EQ(kdcdb::DbaseBst("m", "missing"), kdcdb::kNoFile);
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_F(DatabaseTest, FailedCreationTakesItsFilesBack) {
  begin();
  std::filesystem::create_directory(base() + ".DBFMD");  // the set cannot be made
  EXPECT_NE(kdcdb::DbaseNew(base().c_str(), "init dbfmd"), kdcdb::kOk);
  EXPECT_FALSE(exists(".MASTER") || exists(".DBALL"));
  std::filesystem::remove(base() + ".DBFMD");
  ASSERT_EQ(kdcdb::DbaseNew(base().c_str(), ""), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  begin();
  EXPECT_EQ(kdcdb::DbaseNew(base().c_str(), ""), kdcdb::kExists);
  EXPECT_TRUE(exists(".MASTER"));  // of the one that was there
  std::filesystem::create_directory(base() + ".DBFMD");
  EXPECT_NE(kdcdb::DbaseOld(base().c_str(), "init dbfmd"), kdcdb::kOk);
  std::filesystem::remove(base() + ".DBFMD");
  EXPECT_EQ(kdcdb::DbaseOld(base().c_str(), "restart"), kdcdb::kOk);
}

TEST_F(DatabaseTest, PhysicalNamesAreTheSessionsOwnAndEndInTheLogicalName) {
  char name[4096];
  std::size_t length = 0;
  EXPECT_EQ(kdcdb::GetDbName("DBS", name, sizeof name, &length), kdcdb::kNoDatabase);
  begin();
  ASSERT_EQ(kdcdb::GetDbName("DBS", name, sizeof name, &length), kdcdb::kOk);
  const std::string scratch(name, length);
  EXPECT_EQ(scratch.substr(scratch.rfind('_')), "_DBS");
  ASSERT_EQ(kdcdb::GetDbName("F06", name, sizeof name, &length), kdcdb::kOk);
  EXPECT_EQ(std::string(name, length), scratch.substr(0, scratch.rfind('_')) + "_F06");
  EXPECT_EQ(kdcdb::GetDbName("DBS", name, length, &length), kdcdb::kBadArgument);
  EXPECT_EQ(kdcdb::GetDbName("DBX", name, sizeof name, &length), kdcdb::kBadArgument);
}

TEST_F(DatabaseTest, NonsensicalDatablockCommandsAreRefused) {
  open_new();
  int key = 0;
  int matches = 0;
  for (const char* command :
       {"", "dbcreate", "dbcreate datablk=(fmdtmp)", "dbcreate datablk=(other) quals(highqual=1)",
        "dbcreate datablk=(fmdtmp,fmddb) quals(highqual=1)", "dbcreate datablk=(fmdtmp=1) quals(highqual=1)",
        "dbcreate datablk=fmdtmp quals(highqual=1)", "dbcreate datablk=(fmdtmp) quals(highqual=x)",
        "dbcreate datablk=(fmdtmp) quals()", "dbcreate datablk=(fmdtmp) quals(peid=1)",
        "dbcreate datablk=(fmdtmp) quals(highqual=1;highqual=2)",
        "dbcreate datablk=(fmdtmp) quals(highqual=1) x",
        "dbcreate datablk=(fmdtmp) quals(highqual=1);init dbfmd",
        "dbcreate=1 datablk=(fmdtmp) quals(highqual=1)", "make datablk=(fmdtmp) quals(highqual=1)",
        "dbcreate datablk=(fmdtmp) quals(highqual)"})
    EXPECT_EQ(kdcdb::CreateDatablk(command, &key), kdcdb::kBadCommand) << command;
  for (const char* selection :
       {"", "datablk=(fmdtmp)", "where(highqual=1)", "datablk=(fmdtmp) where(highqual)",
        "datablk=(fmdtmp) where(highqual=a)", "datablk=(fmdtmp) where(colour=1)",
        "datablk=(fmdtmp) where(peid=x)", "datablk=(fmdtmp) where(wildcard=maybe)",
        "datablk=(x) where(highqual=1)", "dbdict datablk=(fmdtmp) where()",
        "datablk=(fmdtmp) where() where()", "datablk=(fmdtmp) when()"})
    EXPECT_EQ(kdcdb::AllocDatablk(selection, &key, &matches), kdcdb::kBadCommand) << selection;
  for (const char* command :
       {"", "dbdict", "dbdict datablk(fmddb) where(highqual=1)", "dbdict datablk(fmddb) select(a)",
        "list datablk(fmddb) where() select(a)", "dbdict datablk(x) where() select(a)"})
    EXPECT_EQ(kdcdb::GetDbdict(command, nullptr, 0), -kdcdb::kBadCommand) << command;
  for (const char* text :
       {"dbcreate datablk=(fmdtmp) quals(highqual=1)", "assign", "assign x", "assign x=''", "assign x='y' z",
        "dblocate", "dblocate logical=x", "dblocate datablk=(fmddb) where() logical=x",
        "dblocate logical=x datablk=(fmddb)", "dblocate logical=x datablk=(other) where()",
        "dblocate logical=x datablk=(fmddb) where() move",
        "dblocate logical=x datablk=(fmddb) where() copy=1", "undblocate", "undblocate logical",
        "undblocate x=1", "undblocate logical=x y"})
    EXPECT_EQ(kdcdb::FMSCommand(text), kdcdb::kBadCommand) << text;
}

TEST_F(DatabaseTest, SelectionFindsScratchDatablocksByTheirQualifiers) {
  open_new();
  create(1001);
  create(1002);
  const std::string start = "datablk=(fmdtmp) where(";
  alloc(start + "projno=* and version=* and highqual=1002 and wildcard=true)", 1);
  alloc(start + "highqual=1003)", 0);
  alloc(start + "highqual=*)", 2);
  alloc(start + ")", 2);
  alloc(start + "projno=1,version=1;peid=0 and desiter=0 and stepcur=0 and selabel='  ')", 2);
  alloc(start + "projno=2)", 0);
  alloc(start + "stepcur=1)", 0);
  alloc(start + "selabel='a')", 0);
  alloc(start + "selabel=*)", 2);
  alloc(start + "selabel='*')", 0);
  int key = 0;
  EXPECT_EQ(kdcdb::CreateDatablk("dbcreate datablk=(fmdtmp) quals(highqual=1001)", &key), kdcdb::kExists);
}

TEST_F(DatabaseTest, ScratchDataOutlivesClosingAndReopeningAndKeysDoNot) {
  open_new();
  const int key = create(5);
  const std::int32_t words[3] = {7, 8, 9};
  const std::int32_t trailer[7] = {key, 1, 2, 3, 4, 5, 6};
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Write(key, words, 3, true), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Close(key, 1), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Wrttrl(trailer), kdcdb::kOk);  // to a closed one
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  EXPECT_EQ(kdcdb::Gopen(key, kdcdb::kOpenExisting), kdcdb::kNoDatablock);
  begin();
  ASSERT_EQ(kdcdb::DbaseOld(base().c_str(), ""), kdcdb::kOk);
  const int again = alloc("datablk=(fmdtmp) where(highqual=5)", 1);
  EXPECT_GT(again, key);
  ASSERT_EQ(kdcdb::Gopen(again, kdcdb::kOpenExisting), kdcdb::kOk);
  std::int32_t read[3] = {};
  std::int64_t actual = 0;
  EXPECT_EQ(kdcdb::Read(again, read, 3, &actual), kdcdb::kOk);
  EXPECT_EQ(std::memcmp(read, words, sizeof words), 0);
  std::int32_t kept[7] = {again};
  EXPECT_EQ(kdcdb::Rdtrl(kept), kdcdb::kOk);
  EXPECT_EQ(std::memcmp(kept + 1, trailer + 1, 24), 0);
}

TEST_F(DatabaseTest, ReadingGivesWhatIsLeftOfTheRecord) {
  open_new();
  const int key = create(1);
  const std::int32_t words[3] = {7, 8, 9};
  std::int32_t read[5] = {};
  std::int64_t actual = -1;
  EXPECT_EQ(kdcdb::Read(key, read, 1, &actual), kdcdb::kNotOpen);
  EXPECT_EQ(kdcdb::Write(key, words, 1, false), kdcdb::kNotOpen);
  EXPECT_EQ(kdcdb::Filps3(key, 0), kdcdb::kNotOpen);
  EXPECT_EQ(kdcdb::Gopen(key, 3), kdcdb::kBadArgument);
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
  EXPECT_EQ(kdcdb::Close(key, 2), kdcdb::kBadArgument);
  ASSERT_EQ(kdcdb::Write(key, words, 3, true), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Write(key, words, 1, true), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Filps3(key, 1), kdcdb::kOk);
  EXPECT_EQ(kdcdb::Read(key, read, 5, &actual), kdcdb::kEndOfRecord);
  EXPECT_EQ(actual, 2);
  EXPECT_EQ(read[1], 9);
  std::int64_t position = 0;
  bool end_of_record = false;
  bool end_of_file = true;
  ASSERT_EQ(kdcdb::Savps3(key, &position, &end_of_record, &end_of_file), kdcdb::kOk);
  EXPECT_EQ(position, 3);
  EXPECT_TRUE(end_of_record);
  EXPECT_FALSE(end_of_file);
  ASSERT_EQ(kdcdb::Fwdrec(key), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Fwdrec(key), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Savps3(key, &position, &end_of_record, &end_of_file), kdcdb::kOk);
  EXPECT_EQ(position, 6);
  EXPECT_FALSE(end_of_record);
  EXPECT_TRUE(end_of_file);
  EXPECT_EQ(kdcdb::Fwdrec(key), kdcdb::kEndOfDatablock);
  EXPECT_EQ(kdcdb::Filps3(key, 7), kdcdb::kBadPosition);
  EXPECT_EQ(kdcdb::Fwdrec(key), kdcdb::kBadPosition);
  EXPECT_EQ(kdcdb::Savps3(key, &position, &end_of_record, &end_of_file), kdcdb::kBadPosition);
  EXPECT_EQ(kdcdb::Filps3(key, -1), kdcdb::kBadPosition);
  ASSERT_EQ(kdcdb::Filps3(key, 0), kdcdb::kOk);
  EXPECT_EQ(kdcdb::Read(key, nullptr, INT64_MIN, &actual), kdcdb::kBadArgument);
  EXPECT_EQ(kdcdb::Write(key, words, INT64_MAX, false), kdcdb::kEndOfRecord);
  EXPECT_EQ(kdcdb::Write(key, words, -1, false), kdcdb::kBadArgument);
}

TEST_F(DatabaseTest, RecordMayBeEndedOnlyAtItsEnd) {
  open_new();
  const int key = create(1);
  const std::int32_t words[4] = {1, 2, 3, 4};
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Write(key, words, 2, true), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Write(key, words, 3, false), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Filps3(key, 4), kdcdb::kOk);
  EXPECT_EQ(kdcdb::Write(key, words, 0, true), kdcdb::kBadPosition);
  EXPECT_EQ(kdcdb::WriteZeros(key, 4), kdcdb::kBadPosition);
  EXPECT_EQ(kdcdb::Write(key, words, 4, true), kdcdb::kOk);  // partly in place, partly grown
  ASSERT_EQ(kdcdb::Filps3(key, 0), kdcdb::kOk);
  EXPECT_EQ(kdcdb::Write(key, words + 2, 2, true), kdcdb::kOk);  // rewritten up to its mark, and past it
  std::int32_t read[5];
  std::int64_t actual = 0;
  EXPECT_EQ(kdcdb::Read(key, read, 5, &actual), kdcdb::kOk);
  const std::int32_t expected[5] = {1, 1, 2, 3, 4};
  EXPECT_EQ(std::memcmp(read, expected, sizeof read), 0);
}

TEST_F(DatabaseTest, KeysOfOneDatablockSeeTheSameWords) {
  open_new();
  const int writer = create(1);
  const int reader = alloc("datablk=(fmdtmp) where(highqual=1)", 1);
  const std::int32_t words[3] = {1, 2, 3};
  ASSERT_EQ(kdcdb::Gopen(writer, kdcdb::kOpenNew), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Gopen(reader, kdcdb::kOpenExisting), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Write(writer, words, 2, true), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Write(writer, words, 3, false), kdcdb::kOk);
  std::int32_t read[3] = {};
  std::int64_t actual = 0;
  EXPECT_EQ(kdcdb::Read(reader, read, 3, &actual), kdcdb::kEndOfRecord);  // the mark came through the writer
  EXPECT_EQ(actual, 2);
  ASSERT_EQ(kdcdb::Gopen(writer, kdcdb::kOpenNew), kdcdb::kOk);
  EXPECT_EQ(kdcdb::Read(reader, read, 1, &actual), kdcdb::kNotOpen);  // what it was opened on is gone
  EXPECT_EQ(kdcdb::Filps3(reader, 0), kdcdb::kNotOpen);
  EXPECT_EQ(kdcdb::ReleaseDatablk(reader), kdcdb::kOk);
  EXPECT_EQ(kdcdb::Write(writer, words, 1, false), kdcdb::kNoDatablock);
  alloc("datablk=(fmdtmp) where(highqual=1)", 0);
}

TEST_F(DatabaseTest, CallersFilesAreNotTakenForDatabases) {
  begin();
  std::ofstream(base() + ".MASTER") << std::string(60000, 'x');
  EXPECT_EQ(kdcdb::DbaseOld(base().c_str(), ""), kdcdb::kNotADatabase);
  EXPECT_EQ(kdcdb::DbaseNew(base().c_str(), "init dbfmd"), kdcdb::kExists);
  EXPECT_EQ(std::filesystem::file_size(base() + ".MASTER"), 60000U);
  EXPECT_FALSE(exists(".DBFMD"));
}

}  // namespace
