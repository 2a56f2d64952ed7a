// Opening the datablock of a stored body, and making one.
#include "solverdb/datablocks.h"

#include <gtest/gtest.h>

#include <fstream>

#include "kdcdb/kdcdb.h"
#include "solverdb/stored_bodies.h"

namespace {

using fmdtest::Strings;

class Datablocks : public fmdtest::StoredBodiesTest {
 protected:
  int open_block(int index, int* logical_id, std::string path = "A.MASTER") {
    log.clear();
    return DB_OpenDatablk(path.data(), index, logical_id);
  }
  int create(std::string qualifiers) {
    log.clear();
    return DB_CreateFMDblk(qualifiers.data());
  }
};

TEST_F(Datablocks, OpenedTwiceABodyHasTwoMarks) {
  make_database("A.MASTER", {1, 2});
  int first = 0;
  int second = 0;
  const int one = open_block(1, &first);
  const int two = open_block(1, &second);
  EXPECT_GT(one, 0);
  EXPECT_GT(two, 0);
  EXPECT_NE(one, two);
  EXPECT_EQ(second, first + 1);
  std::int32_t trailer[7] = {one};
  EXPECT_EQ(DB_ReadTrailer(trailer), 1);
  EXPECT_EQ(trailer[1], 4);
  EXPECT_EQ(trailer[2], 700);
  EXPECT_EQ(trailer[3], 4200);
  EXPECT_EQ(trailer[4], 2);
  EXPECT_EQ(DB_CloseDatablk(one), 1);
  trailer[0] = two;
  EXPECT_EQ(DB_ReadTrailer(trailer), 1);
  EXPECT_EQ(DB_CloseDatablk(two), 1);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(Datablocks, IndexOutsideIsTooBig) {
  make_database("A.MASTER", {1, 2});
  for (int call = 0; call < 2; ++call) {
    for (const int index : {3, 0, -1, 1000000}) {
      if (call == 0) DB_ResetBrowser();
      int logical_id = -5;
      EXPECT_EQ(open_block(index, &logical_id), 0);
      EXPECT_EQ(log.all, Strings{"E:The index is too big, " + std::to_string(index) + "."}) << call;
      EXPECT_EQ(logical_id, -5);
    }
  }
}

TEST_F(Datablocks, ReasonOfAnUnusableFileIsToldOnce) {
  int logical_id = 0;
  EXPECT_EQ(open_block(1, &logical_id), 0);
  EXPECT_EQ(log.all, Strings{"E:The KD DB file A.MASTER could not be found."});
}

TEST_F(Datablocks, BodyThatIsGoneIsNotAssigned) {
  make_database("A.MASTER", {1});
  EXPECT_EQ(count("A.MASTER"), 1);
  make_database("B.MASTER", {2});
  std::filesystem::rename("B.MASTER", "A.MASTER");  // behind the back of the cache
  int logical_id = 0;
  EXPECT_EQ(open_block(1, &logical_id), 0);
  EXPECT_EQ(log.all, Strings{"E:0 datablocks are assigned."});
  std::filesystem::remove("A.MASTER");
  EXPECT_EQ(open_block(1, &logical_id), 0);
  EXPECT_EQ(log.all, Strings{"E:0 datablocks are assigned."});
}

TEST_F(Datablocks, DamagedDirectoryIsToldWithItsStatus) {
  make_database("A.MASTER", {1});
  EXPECT_EQ(count("A.MASTER"), 1);
  std::string bytes;
  {
    std::ifstream file("A.MASTER", std::ios::binary);
    bytes.assign(std::istreambuf_iterator<char>(file), {});
  }
  const std::size_t place = bytes.find("FMDSBDIR");
  ASSERT_NE(place, std::string::npos);
  bytes[place + 30] ^= 1;
  std::ofstream("A.MASTER", std::ios::binary) << bytes;
  const std::size_t before = fmdtest::open_files();
  int logical_id = 0;
  EXPECT_EQ(open_block(1, &logical_id), 0);
  EXPECT_EQ(log.all, Strings{"E:Cannot open the datablock, " +
                             std::to_string(static_cast<int>(kdcdb::kDamaged)) + "."});
  EXPECT_EQ(fmdtest::open_files(), before);
}

TEST_F(Datablocks, ClosedBlockKeepsNoFileOpen) {
  make_database("A.MASTER", {1});
  const std::size_t before = fmdtest::open_files();
  for (int call = 0; call < 10; ++call) {
    int logical_id = 0;
    const int block = open_block(1, &logical_id);
    EXPECT_GT(fmdtest::open_files(), before);
    EXPECT_EQ(DB_CloseDatablk(block), 1);
    FmdStream stream{};
    stream.Block = block;
    int word = 0;
    EXPECT_EQ(DB_ReadINTs(stream, &word, 1), 0);
    EXPECT_EQ(fmdtest::open_files(), before);
  }
}

TEST_F(Datablocks, CreationWithoutADatabaseIsToldWithItsStatus) {
  EXPECT_EQ(create("SELABEL='x'"), 0);
  EXPECT_EQ(log.all, Strings{"E:Cannot create fmd datablock, " +
                             std::to_string(static_cast<int>(kdcdb::kNoDatabase)) + "."});
}

TEST_F(Datablocks, BadQualifiersAreToldWithTheirStatus) {
  FmdBody* const body = fmdtest::make_sample_body();
  std::string path = "A.MASTER";
  ASSERT_EQ(DB_StartWrite(body, path.data()), 1);
  const auto bad = [](kdcdb::Status status) {
    return Strings{"E:Cannot create fmd datablock, " + std::to_string(static_cast<int>(status)) + "."};
  };
  for (const char* qualifiers :
       {"PROJNO", "COLOUR=1", "PROJNO=x", "PROJNO=1,PROJNO=2", "HIGHQUAL=3", "SELABEL='open",
        "PEID=99999999999", "SELABEL='a') quals(", "PROJNO=1,,VERSION=2"}) {
    EXPECT_EQ(create(qualifiers), 0) << qualifiers;
    EXPECT_EQ(log.all, bad(kdcdb::kBadCommand)) << qualifiers;
  }
  for (const char* qualifiers : {"SELABEL='a\tb'", "SELABEL='a'b'"}) {
    EXPECT_EQ(create(qualifiers), 0) << qualifiers;
    EXPECT_EQ(log.all, bad(kdcdb::kBadArgument)) << qualifiers;
  }
  EXPECT_EQ(create("SELABEL='" + std::string(5000, 'x') + "'"), 0);
  EXPECT_EQ(log.all, bad(kdcdb::kBadArgument));
  log.clear();
  const int block = DB_CreateFMDblk(nullptr);
  EXPECT_GT(block, 0);
  EXPECT_GT(create(""), block);
  EXPECT_GT(create("SELABEL='a, b', projno = 4 , VERSION=+5"), block);
  EXPECT_TRUE(log.all.empty());
}

TEST(TopLevelCommas, AloneAreReplaced) {
  const auto replaced = [](const char* text) { return fmd::ReplaceTopLevelCommas(text, " and "); };
  EXPECT_EQ(replaced(""), "");
  EXPECT_EQ(replaced(","), " and ");
  EXPECT_EQ(replaced("A=1,B=2"), "A=1 and B=2");
  EXPECT_EQ(replaced("A='x,y',B='z'"), "A='x,y' and B='z'");
  EXPECT_EQ(replaced("A='x,y,B=1"), "A='x,y,B=1");
  EXPECT_EQ(replaced("'',,''"), "'' and  and ''");
  EXPECT_EQ(fmd::ReplaceTopLevelCommas("A=1,B='c,d',", ";"), "A=1;B='c,d';");
}

}  // namespace
