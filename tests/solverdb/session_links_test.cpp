// What a session knows beyond its files: scratch datablocks, assignments and links, and the lock of a target.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <fstream>

#include "kdcdb/kdcdb.h"
#include "kdcdb/locks.h"
#include "solverdb/stored_bodies.h"

namespace {

namespace fs = std::filesystem;
using Words = std::vector<std::int32_t>;

class SessionLinks : public fmdtest::SessionTest {
 protected:
  void TearDown() override {
    kdcdb::DbaseCls();
    for (const char* base : {"home", "target", "third"}) kdcdb::DeleteDatabase(base);
    // Ends what a session of the store knows.
    kdcdb::DbaseBst("message", "./");
    char name[4096];
    std::size_t length = 0;
    if (kdcdb::GetDbName("DBS", name, sizeof name, &length) == kdcdb::kOk)
      kdcdb::DeleteDatabase(std::string(name, length - 4).c_str());
    SessionTest::TearDown();
  }

  void make(const char* base, const char* commands = "init dbfmd") {
    ASSERT_EQ(kdcdb::DbaseBst("message", "./"), kdcdb::kOk);
    ASSERT_EQ(kdcdb::DbaseNew(base, commands), kdcdb::kOk);
  }
  void open(const char* base, const char* commands = "") {
    ASSERT_EQ(kdcdb::DbaseBst("message", "./"), kdcdb::kOk);
    ASSERT_EQ(kdcdb::DbaseOld(base, commands), kdcdb::kOk);
  }
  void close() { ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk); }
  void go_to(const char* base, const char* commands = "") {
    close();
    open(base, commands);
  }
  void run(const std::string& command) {
    EXPECT_EQ(kdcdb::FMSCommand(command.c_str()), kdcdb::kOk) << command;
  }

  // A scratch datablock of two records.
  int make_scratch(int mark, const Words& first, const Words& second) {
    int key = 0;
    const std::string command = "dbcreate datablk=(fmdtmp) quals(highqual=" + std::to_string(mark) + ")";
    EXPECT_EQ(kdcdb::CreateDatablk(command.c_str(), &key), kdcdb::kOk);
    write(key, first, second);
    return key;
  }
  void make_stored(const std::string& qualifiers, const Words& first, const Words& second) {
    int key = 0;
    const std::string command = "dbcreate datablk=(fmddb) quals(" + qualifiers + ")";
    EXPECT_EQ(kdcdb::CreateDatablk(command.c_str(), &key), kdcdb::kOk);
    write(key, first, second);
  }
  void write(int key, const Words& first, const Words& second) {
    EXPECT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
    for (const Words* words : {&first, &second})
      EXPECT_EQ(kdcdb::Write(key, words->data(), static_cast<std::int64_t>(words->size()), true), kdcdb::kOk);
    EXPECT_EQ(kdcdb::Close(key, 1), kdcdb::kOk);
  }

  int matches(const std::string& name, const std::string& conditions) {
    int key = 0;
    int found = -1;
    const std::string selection = "datablk=(" + name + ") where(" + conditions + ")";
    EXPECT_EQ(kdcdb::AllocDatablk(selection.c_str(), &key, &found), kdcdb::kOk) << selection;
    return found;
  }
  // The words of the first record of the one datablock meant, opened and left open.
  Words words_of(const std::string& name, const std::string& conditions, int* opened = nullptr) {
    int key = 0;
    int found = 0;
    const std::string selection = "datablk=(" + name + ") where(" + conditions + ")";
    EXPECT_EQ(kdcdb::AllocDatablk(selection.c_str(), &key, &found), kdcdb::kOk) << selection;
    EXPECT_EQ(found, 1) << selection;
    if (found != 1) return {};
    EXPECT_EQ(kdcdb::Gopen(key, kdcdb::kOpenExisting), kdcdb::kOk);
    if (opened != nullptr) *opened = key;
    return record_of(key);
  }
  Words record_of(int key) {
    std::int64_t left = 0;
    EXPECT_EQ(kdcdb::Remaining(key, &left), kdcdb::kOk);
    Words words(static_cast<std::size_t>(left));
    std::int64_t actual = 0;
    EXPECT_EQ(kdcdb::Read(key, words.data(), left, &actual), kdcdb::kOk);
    return words;
  }

  // Whether another writer could have the database now.
  bool is_free(const std::string& base) {
    const int file = ::open((base + ".MASTER").c_str(), O_RDWR | O_CLOEXEC);
    struct flock range {};
    range.l_type = F_WRLCK;
    range.l_whence = SEEK_SET;
    range.l_start = kdcdb::kWriterLockByte;
    range.l_len = 1;
    const bool taken = fcntl(file, F_OFD_SETLK, &range) == 0;
    ::close(file);
    return taken;
  }
};

TEST_F(SessionLinks, ScratchSpaceIsGivenBackByReleaseAlone) {
  make("home");
  const std::size_t before = fmdtest::open_files();
  const int key = make_scratch(1, {1, 2}, {3});
  EXPECT_EQ(fmdtest::open_files(), before + 1);
  kdcdb::Close(key, 1);
  EXPECT_EQ(fmdtest::open_files(), before + 1);
  go_to("home");
  EXPECT_EQ(words_of("fmdtmp", "highqual=1"), (Words{1, 2}));
  EXPECT_EQ(fmdtest::open_files(), before + 1);
  int again = 0;
  words_of("fmdtmp", "highqual=1", &again);
  EXPECT_EQ(kdcdb::ReleaseDatablk(again), kdcdb::kOk);
  EXPECT_EQ(fmdtest::open_files(), before);
  EXPECT_EQ(matches("fmdtmp", "highqual=1"), 0);
}

TEST_F(SessionLinks, ReleaseThroughALinkGivesBackWhereTheBlockLives) {
  make("home");
  make_scratch(1, {1, 2}, {3});
  close();
  make("target", "init dbfmd;dbsetdel dball");
  run("assign t1='home.MASTER'");
  run("dblocate logical=t1 datablk=(fmdtmp) where(highqual=1)");
  int key = 0;
  EXPECT_EQ(words_of("fmdtmp", "highqual=1", &key), (Words{1, 2}));
  const std::size_t before = fmdtest::open_files();
  EXPECT_EQ(kdcdb::ReleaseDatablk(key), kdcdb::kOk);
  EXPECT_EQ(fmdtest::open_files(), before - 1);
  EXPECT_EQ(matches("fmdtmp", "highqual=1"), 0);
  go_to("home");
  EXPECT_EQ(matches("fmdtmp", "highqual=1"), 0);
}

TEST_F(SessionLinks, LinksAndAssignmentsSurviveClosingAndAreInNoFile) {
  make("target", "init dbfmd;dbsetdel dball");
  make_stored("selabel='one'", {7, 8}, {9});
  go_to("target", "dbsetdel dbfmd");
  close();
  make("home");
  const auto bytes = fs::file_size("home.MASTER");
  run("assign x='target.MASTER'");
  run("dblocate logical=x datablk=(fmddb) where(selabel='one') convert(highqual=5)");
  for (int visit = 0; visit < 3; ++visit) {
    EXPECT_EQ(words_of("fmddb", "highqual=5"), (Words{7, 8}));
    go_to(visit == 1 ? "target" : "home", visit == 1 ? "dbsetdel dbfmd" : "restart");
    if (visit != 1) continue;
    EXPECT_EQ(matches("fmddb", "highqual=5"), 0);  // of another database
    go_to("home", "restart");
  }
  // The assignment, too.
  run("dblocate logical=x datablk=(fmddb) where(selabel='one') convert(highqual=6)");
  EXPECT_EQ(matches("fmddb", "highqual=6"), 1);
  EXPECT_EQ(fs::file_size("home.MASTER"), bytes);
  close();
  std::ifstream file("home.MASTER", std::ios::binary);
  const std::string content(std::istreambuf_iterator<char>(file), {});
  EXPECT_EQ(content.find("target"), std::string::npos);
}

TEST_F(SessionLinks, LinkIsASnapshotOfOneDatablock) {
  make("target", "init dbfmd;dbsetdel dball");
  make_stored("selabel='one'", {1, 1}, {1});
  go_to("target", "dbsetdel dbfmd");
  close();
  make("home");
  run("assign x='target.MASTER'");
  run("dblocate logical=x datablk=(fmddb) where(selabel='one') convert(highqual=5)");
  for (std::int32_t round = 2; round < 6; ++round) {
    go_to("target", "init dbfmd");
    make_stored("selabel='one'", {round, round}, {round});
    go_to("target", "dbsetdel dbfmd");
    go_to("home");
    EXPECT_EQ(words_of("fmddb", "highqual=5"), (Words{1, 1}));
  }
  run("dblocate logical=x datablk=(fmddb) where(selabel='one') convert(highqual=6)");
  EXPECT_EQ(words_of("fmddb", "highqual=6"), (Words{5, 5}));
  EXPECT_EQ(words_of("fmddb", "highqual=5"), (Words{1, 1}));
  // Even without its file.
  fs::rename("target.MASTER", "elsewhere");
  EXPECT_EQ(words_of("fmddb", "highqual=5"), (Words{1, 1}));
  fs::rename("elsewhere", "target.MASTER");
}

TEST_F(SessionLinks, LinkToALinkNeedsTheAssignmentsInForceAndSleepsWithout) {
  make("third", "init dbfmd;dbsetdel dball");
  make_stored("selabel='deep'", {4, 2}, {0});
  go_to("third", "dbsetdel dbfmd");
  close();
  make("home");
  run("assign deep='third.MASTER'");
  run("dblocate logical=deep datablk=(fmddb) where(selabel='deep') convert(highqual=9)");
  close();
  make("target", "init dbfmd;dbsetdel dball");
  run("assign tmp='home.MASTER'");
  // The name that the first link goes through means nothing here yet.
  run("dblocate logical=tmp datablk=(fmddb) where(highqual=9)");
  EXPECT_EQ(matches("fmddb", "highqual=9"), 0);
  run("assign deep='third.MASTER'");
  run("dblocate logical=tmp datablk=(fmddb) where(highqual=9)");
  EXPECT_EQ(words_of("fmddb", "highqual=9"), (Words{4, 2}));
  EXPECT_EQ(kdcdb::FMSCommand("dblocate logical=unknown datablk=(fmddb) where(highqual=9)"), kdcdb::kNoFile);
  run("undblocate logical=unknown");
}

TEST_F(SessionLinks, UndblocateDropsLinksAndNothingElse) {
  make("home");
  make_scratch(1, {1}, {});
  make_scratch(2, {2}, {});
  close();
  make("target", "init dbfmd;dbsetdel dball");
  make_scratch(3, {3}, {});
  run("assign a='home.MASTER'");
  run("assign b='home.MASTER'");
  run("dblocate logical=a datablk=(fmdtmp) where(highqual=1)");
  run("dblocate logical=b datablk=(fmdtmp) where(highqual=2)");
  EXPECT_EQ(matches("fmdtmp", "highqual=*"), 3);
  run("undblocate logical=b");
  EXPECT_EQ(matches("fmdtmp", "highqual=*"), 2);
  EXPECT_EQ(matches("fmdtmp", "highqual=2"), 0);
  run("undblocate logical=*");
  EXPECT_EQ(words_of("fmdtmp", "highqual=*"), Words{3});
  run("dblocate logical=A datablk=(fmdtmp) where(highqual=1)");  // assigned as ever
  EXPECT_EQ(words_of("fmdtmp", "highqual=1"), Words{1});
  go_to("home");
  EXPECT_EQ(words_of("fmdtmp", "highqual=1"), Words{1});
  EXPECT_EQ(words_of("fmdtmp", "highqual=2"), Words{2});
}

TEST_F(SessionLinks, CopyKeepsEveryPlaceAndOutlivesItsLink) {
  make("target", "init dbfmd;dbsetdel dball");
  Words large(50000);
  for (std::size_t i = 0; i < large.size(); ++i) large[i] = static_cast<std::int32_t>(3 * i + 1);
  make_scratch(4, large, {6, 7});
  int key = 0;
  words_of("fmdtmp", "highqual=4", &key);
  std::int64_t position = 0;
  bool end_of_record = false;
  bool end_of_file = false;
  ASSERT_EQ(kdcdb::Fwdrec(key), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Savps3(key, &position, &end_of_record, &end_of_file), kdcdb::kOk);
  close();
  make("home");
  run("assign t='target.MASTER'");
  const std::size_t before = fmdtest::open_files();
  run("dblocate logical=t datablk=(fmdtmp) where(highqual=4) copy");
  run("dblocate logical=t datablk=(fmdtmp) where(highqual=77) copy");  // nothing is a success
  run("undblocate logical=t");
  EXPECT_EQ(fmdtest::open_files(), before);  // no bytes were moved
  EXPECT_EQ(words_of("fmdtmp", "highqual=4", &key), large);
  ASSERT_EQ(kdcdb::Filps3(key, position), kdcdb::kOk);
  EXPECT_EQ(record_of(key), (Words{6, 7}));
  go_to("target", "dbsetdel dbfmd");
  EXPECT_EQ(matches("fmdtmp", "highqual=4"), 0);
  go_to("home");
  EXPECT_EQ(words_of("fmdtmp", "highqual=4"), large);
}

TEST_F(SessionLinks, CopyOfAStoredDatablockKeepsEveryPlaceToo) {
  make("target", "init dbfmd;dbsetdel dball");
  make_stored("selabel='s',peid=3", {1, 2, 3}, {4});
  go_to("target", "dbsetdel dbfmd");
  close();
  make("third", "init dbfmd;dbsetdel dball");
  run("assign t='target.MASTER'");
  run("dblocate logical=t datablk=(fmddb) where(peid=3) copy");
  run("undblocate logical=t");
  go_to("third", "dbsetdel dbfmd");
  int key = 0;
  EXPECT_EQ(words_of("fmddb", "selabel='s' and peid=3", &key), (Words{1, 2, 3}));
  ASSERT_EQ(kdcdb::Filps3(key, 4), kdcdb::kOk);
  EXPECT_EQ(record_of(key), Words{4});
}

TEST_F(SessionLinks, LockOfATargetIsHeldUntilItHasBeenCleanedUp) {
  make("target", "init dbfmd;dbsetdel dball");
  EXPECT_FALSE(is_free("target"));
  close();
  EXPECT_FALSE(is_free("target"));
  make("home");
  EXPECT_FALSE(is_free("target"));
  EXPECT_FALSE(is_free("home"));
  go_to("target", "dbsetdel dbfmd");
  EXPECT_FALSE(is_free("target"));
  close();
  EXPECT_TRUE(is_free("target"));
  open("target", "init dbfmd");
  close();
  EXPECT_FALSE(is_free("target"));
  open("target", "dbsetdel dbfmd");
  close();
  EXPECT_TRUE(is_free("target"));
}

TEST_F(SessionLinks, EndOfTheSessionGivesUpATargetThatWasLeft) {
  make("target", "init dbfmd;dbsetdel dball");
  make_scratch(8, {1}, {});
  const std::size_t with_scratch = fmdtest::open_files();
  close();
  EXPECT_TRUE(fs::exists("target.DBFMD"));
  kdcdb::DbaseBst("message", "./");
  char name[4096];
  std::size_t length = 0;
  ASSERT_EQ(kdcdb::GetDbName("DBS", name, sizeof name, &length), kdcdb::kOk);
  EXPECT_EQ(kdcdb::DeleteDatabase(std::string(name, length - 4).c_str()), kdcdb::kOk);
  EXPECT_TRUE(is_free("target"));
  EXPECT_FALSE(fs::exists("target.DBFMD"));
  EXPECT_TRUE(fs::exists("target.MASTER"));
  EXPECT_LT(fmdtest::open_files(), with_scratch);
  open("target", "");
  EXPECT_EQ(matches("fmdtmp", "highqual=8"), 0);
}

TEST_F(SessionLinks, SessionEndsThoughItsFolderIsGone) {
  fs::create_directory("gone");
  fs::current_path("gone");
  ASSERT_EQ(DB_StartBase(), 1);
  fs::current_path("..");
  fs::remove_all("gone");
  DB_TermBase();
  ASSERT_EQ(DB_StartBase(), 1);
  int mark = 0;
  EXPECT_GT(DB_OpenScratch(&mark), 0);
}

TEST_F(SessionLinks, PrintFileNeverHasANameThatIsTaken) {
  fs::create_directory("own");
  fs::current_path("own");
  for (const char* name : {"F06", "analysis.f06", "fmd_F06", "home_F06", "_F06"})
    std::ofstream(name) << "mine";
  FmdBody* const body = fmdtest::make_sample_body();
  std::string path = "home.MASTER";
  std::string none;
  EXPECT_EQ(FMD_write_DB(body, path.data(), none.data()), 1);
  FMD_Terminate();
  for (const char* name : {"F06", "analysis.f06", "fmd_F06", "home_F06", "_F06"})
    EXPECT_EQ(fs::file_size(name), 4U);
  EXPECT_EQ(std::distance(fs::directory_iterator("."), {}), 6);
  fs::current_path("..");
}

}  // namespace
