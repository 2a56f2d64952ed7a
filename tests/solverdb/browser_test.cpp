// Which bodies a database holds, as rows of text.
#include <gtest/gtest.h>

#include <fstream>

#include "fmdtoolkit/extensions.h"
#include "kdcdb/kdcdb.h"
#include "solverdb/stored_bodies.h"
#include "support/failing_file_system.h"

namespace {

using fmdtest::Strings;

class Browser : public fmdtest::StoredBodiesTest {
 protected:
  void store_sample(const std::string& qualifiers) {
    FmdBody* const body = fmdtest::make_sample_body();
    ASSERT_EQ(store(body, "A.MASTER", qualifiers), 1) << qualifiers;
    FMD_UnLink(body);
  }
  int browse(int index, char* to, std::string path = "A.MASTER") {
    return DB_BodyBrowser(path.data(), index, to);
  }
};

TEST_F(Browser, RowsNameAllQualifiersInTheirOrder) {
  store_sample("");
  store_sample("SELABEL='arm',PROJNO=2,VERSION=3,PEID=4,DESITER=5,STEPCUR=6");
  store_sample("stepcur=-7,selabel='left'");
  EXPECT_EQ(count("A.MASTER"), 3);
  EXPECT_EQ(row("A.MASTER", 1), "SELABEL='',PROJNO=1,VERSION=1,PEID=0,DESITER=0,STEPCUR=0");
  EXPECT_EQ(row("A.MASTER", 2), "SELABEL='arm',PROJNO=2,VERSION=3,PEID=4,DESITER=5,STEPCUR=6");
  EXPECT_EQ(row("A.MASTER", 3), "SELABEL='left',PROJNO=1,VERSION=1,PEID=0,DESITER=0,STEPCUR=-7");
  EXPECT_TRUE(log.errors.empty());
}

TEST_F(Browser, LabelsKeepCommasAndInnerBlanksAndLoseTrailingOnes) {
  store_sample("SELABEL='upper arm, left   '");
  store_sample("SELABEL='  two'");
  store_sample("SELABEL='    '");
  store_sample("SELABEL='a=b;c (d) and e'");
  EXPECT_EQ(row("A.MASTER", 1), "SELABEL='upper arm, left',PROJNO=1,VERSION=1,PEID=0,DESITER=0,STEPCUR=0");
  EXPECT_EQ(row("A.MASTER", 2).substr(0, 15), "SELABEL='  two'");
  EXPECT_EQ(row("A.MASTER", 3).substr(0, 11), "SELABEL='',");
  EXPECT_EQ(row("A.MASTER", 4).substr(0, 25), "SELABEL='a=b;c (d) and e'");
  for (int index = 1; index <= 4; ++index) {
    FmdBody* const body = open("A.MASTER", index);
    ASSERT_NE(body, nullptr) << index;
    EXPECT_EQ(log.errors, Strings{}) << index;
  }
}

struct Told {
  int nodes;
  int modes;
  long long bytes;
};

void note(int nodes, int modes, long long bytes, void* list) {
  static_cast<std::vector<Told>*>(list)->push_back({nodes, modes, bytes});
}

TEST_F(Browser, ListsTheSizesOfAllBodiesWithoutOpeningOne) {
  store_sample("SELABEL='small'");
  make_database("A.MASTER", {1});
  std::vector<Told> told;
  EXPECT_EQ(FMDX_ListBodies("A.MASTER", note, &told), 2);
  ASSERT_EQ(told.size(), 2U);
  EXPECT_EQ(told[0].nodes, 4);
  EXPECT_EQ(told[0].modes, 3);
  EXPECT_EQ(told[1].nodes, 700);
  EXPECT_EQ(told[1].modes, 4);
  const long long vectors = 4LL * (700 + 700 + 350) * 6 * 8;  // every second node carries strain
  EXPECT_GT(told[1].bytes, vectors);
  EXPECT_LT(told[1].bytes, 2 * vectors);
  EXPECT_LT(told[0].bytes, 16384);
  EXPECT_EQ(FMDX_ListBodies("A.MASTER", nullptr, nullptr), 2);
}

TEST_F(Browser, ListsNoSizesOfWhatIsNoDatabase) {
  std::ofstream("B.MASTER") << "no database";
  std::vector<Told> told;
  EXPECT_EQ(FMDX_ListBodies("B.MASTER", note, &told), -1);
  EXPECT_EQ(FMDX_ListBodies("missing.MASTER", note, &told), -1);
  EXPECT_TRUE(told.empty());
}

TEST_F(Browser, LongestRowHas255Characters) {
  const std::string rest = ",PROJNO=1,VERSION=1,PEID=0,DESITER=0,STEPCUR=0";
  const std::size_t room = 255 - rest.size() - std::string("SELABEL=''").size();
  store_sample("SELABEL='" + std::string(room, 'x') + "'");
  char text[300];
  std::fill_n(text, sizeof text, '#');
  EXPECT_EQ(browse(1, text), 1);
  EXPECT_EQ(text, "SELABEL='" + std::string(room, 'x') + "'" + rest);
  EXPECT_EQ(text[255], '\0');
  EXPECT_EQ(text[256], '#');
  EXPECT_NE(open("A.MASTER"), nullptr);

  FmdBody* const body = fmdtest::make_sample_body();
  EXPECT_EQ(store(body, "A.MASTER", "SELABEL='" + std::string(room + 1, 'x') + "'"), 0);
  ASSERT_EQ(log.errors.size(), 2U);
  EXPECT_EQ(log.errors[0],
            "Cannot create fmd datablock, " + std::to_string(static_cast<int>(kdcdb::kBadArgument)) + ".");
}

TEST_F(Browser, IndexCountsFromOneAndZeroGivesNoRow) {
  make_database("A.MASTER", {1, 2});
  char text[256] = "untouched";
  for (int call = 0; call < 2; ++call) {  // not yet browsed, and browsed
    DB_ResetBrowser();
    for (const int index : {3, 100, -1, INT32_MIN}) {
      if (call == 0) DB_ResetBrowser();
      EXPECT_EQ(browse(index, text), 0) << call << ' ' << index;
      EXPECT_STREQ(text, "untouched");
      std::string path = "A.MASTER";
      EXPECT_EQ(DB_GetBodyInfo(path.data(), index, text), 0);
    }
  }
  EXPECT_EQ(browse(0, text), 2);
  EXPECT_STREQ(text, "untouched");
  EXPECT_EQ(browse(0, nullptr), 2);
  EXPECT_EQ(browse(2, nullptr), 2);
  EXPECT_EQ(browse(2, text), 2);
  EXPECT_STREQ(text, "SELABEL='s2',PROJNO=1,VERSION=1,PEID=0,DESITER=0,STEPCUR=0");
  EXPECT_TRUE(log.errors.empty());
}

TEST_F(Browser, SecondCallDoesNotTouchTheDatabase) {
  make_database("A.MASTER", {1, 2});
  EXPECT_EQ(count("A.MASTER"), 2);
  const fmdtest::FailingFileSystem counting;
  EXPECT_EQ(count("A.MASTER"), 2);
  EXPECT_EQ(row("A.MASTER", 2).substr(0, 12), "SELABEL='s2'");
  EXPECT_EQ(counting.calls(), 0);
  std::filesystem::remove("A.MASTER");
  EXPECT_EQ(count("A.MASTER"), 2);
  EXPECT_TRUE(log.errors.empty());
}

TEST_F(Browser, ChangesAreSeenAfterAReset) {
  make_database("A.MASTER", {1});
  EXPECT_EQ(count("A.MASTER"), 1);
  make_database("A.MASTER", {2});
  EXPECT_EQ(count("A.MASTER"), 1);
  EXPECT_EQ(count("./A.MASTER"), 2);  // another text, another entry
  DB_ResetBrowser();
  EXPECT_EQ(count("A.MASTER"), 2);
  DB_ResetBrowser();
  DB_ResetBrowser();
}

TEST_F(Browser, EndOfTheSessionEmptiesTheCache) {
  make_database("A.MASTER", {1});
  EXPECT_EQ(count("A.MASTER"), 1);
  make_database("A.MASTER", {2});
  DB_TermBase();
  EXPECT_EQ(count("A.MASTER"), 2);
}

TEST_F(Browser, DatabaseWithoutBodiesIsBrowsedAgainEachTime) {
  FmdBody* const body = fmdtest::make_sample_body();
  EXPECT_EQ(store(body, "A.MASTER", "SELABEL="), 0);  // leaves an empty database
  FMD_Terminate();
  log.clear();
  EXPECT_EQ(count("A.MASTER"), 0);
  EXPECT_EQ(row("A.MASTER", 1), "");
  EXPECT_EQ(log.all, Strings{});
  make_database("A.MASTER", {1});
  EXPECT_EQ(count("A.MASTER"), 1);
}

TEST_F(Browser, FileOfAnotherKindIsToldByTheCheckAlone) {
  std::ofstream("A.MASTER") << "short";
  EXPECT_EQ(count("A.MASTER"), 0);
  EXPECT_EQ(log.all, Strings{"E:KD DB file A.MASTER is too short."});
  log.clear();
  EXPECT_EQ(count("B.MASTER"), 0);
  EXPECT_EQ(log.all, Strings{"E:The KD DB file B.MASTER could not be found."});
}

TEST_F(Browser, DamageBehindTheHeaderGivesNoBodiesAndNoWords) {
  make_database("A.MASTER", {1});
  {
    std::fstream file("A.MASTER", std::ios::in | std::ios::out | std::ios::binary);
    file.seekp(16384);
    file << std::string(2 * 16384, '\x7f');
  }
  EXPECT_EQ(count("A.MASTER"), 0);
  EXPECT_TRUE(log.errors.empty());
}

TEST_F(Browser, StartsASession) {
  make_database("A.MASTER", {1});
  FMD_Terminate();
  EXPECT_EQ(files(), Strings{"A.MASTER"});
  EXPECT_EQ(count("A.MASTER"), 1);
  DB_TermBase();
  const fmdtest::EnvironmentVariable unset("KXI_KADCDB_DIR", nullptr);
  log.clear();
  EXPECT_EQ(count("A.MASTER"), 0);
  EXPECT_EQ(log.all, Strings{"E:Cannot get KXI_KADCDB_DIR."});
}

TEST_F(Browser, BrowsingKeepsNoFileOpen) {
  make_database("A.MASTER", {1, 2});
  const std::size_t before = fmdtest::open_files();
  for (int call = 0; call < 20; ++call) {
    EXPECT_EQ(count("A.MASTER"), 2);
    DB_ResetBrowser();
  }
  EXPECT_EQ(fmdtest::open_files(), before);
}

}  // namespace
