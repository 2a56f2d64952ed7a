// Links between databases, selection by qualifiers, the listing: a session on its own database that looks
// into others, as opening and storing a body do.
#include <gtest/gtest.h>

#include "kdcdb/kdcdb.h"
#include "kdcdb/stored_bodies.h"
#include "support/memory_disk.h"

namespace {

using fmdtest::MemoryDisk;
using kdcdbtest::Body;
using kdcdbtest::export_bodies;
using kdcdbtest::make_body;

const std::string kSession = MemoryDisk::path("session");
const std::string kOne = MemoryDisk::path("one");
const std::string kTwo = MemoryDisk::path("two");

class LinksTest : public ::testing::Test {
 protected:
  LinksTest() {
    right.numbers = {2, 1, -7, 0, 5};
    EXPECT_EQ(export_bodies(kOne, {left, right}), kdcdb::kOk);
    kdcdb::DbaseBst("m", "./");
    EXPECT_EQ(kdcdb::DbaseNew(kSession.c_str(), "init dbfmd"), kdcdb::kOk);
  }
  ~LinksTest() override {
    kdcdb::DbaseCls();
    kdcdb::DeleteDatabase(kSession.c_str());
    char name[4096];
    std::size_t length = 0;
    kdcdb::DbaseBst("m", "./");
    if (kdcdb::GetDbName("DBS", name, sizeof name, &length) != kdcdb::kOk) return;
    const std::string own = std::string(name, length - 4);
    kdcdb::DeleteDatabase(own.c_str());  // ends the session: links and assignments go
  }
  static kdcdb::Status run(const std::string& command) { return kdcdb::FMSCommand(command.c_str()); }
  static void expect_ok(const std::string& command) { EXPECT_EQ(run(command), kdcdb::kOk) << command; }
  static int alloc(const std::string& selection, int matches_wanted) {
    int key = 0;
    int matches = 0;
    EXPECT_EQ(kdcdb::AllocDatablk(selection.c_str(), &key, &matches), kdcdb::kOk) << selection;
    EXPECT_EQ(matches, matches_wanted) << selection;
    return key;
  }
  static int by_mark(const char* name, int mark, int matches = 1) {
    return alloc("datablk=(" + std::string(name) + ") where(projno=* and version=* and highqual=" +
                     std::to_string(mark) + " and wildcard=true)",
                 matches);
  }
  static void expect_body(int key, const Body& body) {
    ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenExisting), kdcdb::kOk);
    EXPECT_EQ(kdcdbtest::read_records(key), body.records);
    std::int32_t trailer[7] = {key};
    ASSERT_EQ(kdcdb::Rdtrl(trailer), kdcdb::kOk);
    EXPECT_TRUE(std::equal(body.trailer.begin(), body.trailer.end(), trailer + 1));
  }
  static void move_to(const std::string& base, const char* commands) {
    EXPECT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
    kdcdb::DbaseBst("m", "./");
    EXPECT_EQ(kdcdb::DbaseOld(base.c_str(), commands), kdcdb::kOk);
  }
  static void move_to_new(const std::string& base) {
    EXPECT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
    kdcdb::DbaseBst("m", "./");
    EXPECT_EQ(kdcdb::DbaseNew(base.c_str(), "init dbfmd;dbsetdel dball"), kdcdb::kOk);
  }
  static int make_scratch(int mark, const std::vector<std::int32_t>& words) {
    int key = 0;
    const std::string text = "dbcreate datablk=(fmdtmp) quals(highqual=" + std::to_string(mark) + ")";
    EXPECT_EQ(kdcdb::CreateDatablk(text.c_str(), &key), kdcdb::kOk);
    EXPECT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
    EXPECT_EQ(kdcdb::Write(key, words.data(), static_cast<std::int64_t>(words.size()), true), kdcdb::kOk);
    EXPECT_EQ(kdcdb::Close(key, 1), kdcdb::kOk);
    return key;
  }
  static std::string list(const std::string& where) {
    const std::string command = "dbdict datablk(fmddb) where(" + where +
                                ") select(selabel,projno='projno',version='version',peid,desiter,stepcur)";
    char text[2000];
    EXPECT_EQ(kdcdb::GetDbdict(command.c_str(), text, sizeof text), 0);
    return text;
  }
  void locate_one() {
    expect_ok("assign dbalc1='" + kOne + ".MASTER'");
    expect_ok(
        "dblocate logical=dbalc1 datablk=(fmddb) where(selabel='left' and projno=1) convert(highqual=1)");
  }

  MemoryDisk disk;
  Body left = make_body("left", 1, {5, 9000});
  Body right = make_body("Right Arm", 2, {70000});
};

TEST_F(LinksTest, LocatedDatablockIsReadThroughItsMark) {
  locate_one();
  expect_body(by_mark("fmddb", 1), left);
  by_mark("fmddb", 2, 0);
  by_mark("fmddb", 0, 0);  // the session's own database stores nothing
  by_mark("fmdtmp", 1, 0);
}

TEST_F(LinksTest, ConditionsSelectByEachQualifierInAnyCase) {
  expect_ok("ASSIGN DbAlc1='" + kOne + ".MASTER'");
  int mark = 10;
  const auto count = [&](const std::string& where) {
    expect_ok("dblocate logical=DBALC1 datablk=(FMDDB) where(" + where +
              ") convert(highqual=" + std::to_string(++mark) + ")");
    int key = 0;
    int matches = 0;
    const std::string selection = "datablk=(fmddb) where(highqual=" + std::to_string(mark) + ")";
    EXPECT_EQ(kdcdb::AllocDatablk(selection.c_str(), &key, &matches), kdcdb::kOk);
    return matches;
  };
  EXPECT_EQ(count("projno=* and version=*"), 2);
  EXPECT_EQ(count("SELABEL='left   '"), 1);
  EXPECT_EQ(count("selabel='Left'"), 0);
  EXPECT_EQ(count("selabel=*"), 2);
  EXPECT_EQ(count("selabel='*'"), 0);
  EXPECT_EQ(count("ProjNo=2 and PEID=-7"), 1);
  EXPECT_EQ(count("SELABEL='Right Arm' and PROJNO=2 and VERSION=1 and PEID=-7 and DESITER=0 and STEPCUR=5"),
            1);
  EXPECT_EQ(count("SELABEL='Right Arm' and PROJNO=2 and VERSION=1 and PEID=-7 and DESITER=0 and STEPCUR=4"),
            0);
  EXPECT_EQ(count("highqual=0"), 2);
  EXPECT_EQ(count("highqual=1"), 0);
  EXPECT_EQ(run("dblocate logical=dbalc1 datablk=(fmddb) where(colour=1)"), kdcdb::kBadCommand);
  EXPECT_EQ(run("dblocate logical=dbalc1 datablk=(fmddb) where(peid=x)"), kdcdb::kBadCommand);
}

TEST_F(LinksTest, ConversionSetsOrKeepsQualifiers) {
  expect_ok("assign b='" + kOne + ".MASTER'");
  expect_ok(
      "dblocate logical=b datablk=(fmddb) where(projno=*) "
      "convert(projno=projno;version=3;PEID=PEID;stepcur=-4;highqual=-1)");
  EXPECT_EQ(list("highqual=-1"),
            "SELABEL     PROJNO VERSION PEID DESITER STEPCUR\n"
            "-----------------------------------------------\n"
            "'left'      1      3       0    0       -4\n"
            "'Right Arm' 2      3       -7   0       -4\n");
  EXPECT_EQ(run("dblocate logical=b datablk=(fmddb) where() convert(peid)"), kdcdb::kBadCommand);
  EXPECT_EQ(run("dblocate logical=b datablk=(fmddb) where() convert(peid=version)"), kdcdb::kBadCommand);
  EXPECT_EQ(run("dblocate logical=b datablk=(fmddb) where() convert(selabel=1)"), kdcdb::kBadCommand);
}

TEST_F(LinksTest, ListingTellsTheLengthThatItNeeds) {
  expect_ok("assign b='" + kOne + ".MASTER'");
  expect_ok("dblocate logical=b datablk=(fmddb) where(selabel='left') convert(highqual=-1)");
  const char* const command = "dbdict datablk(fmddb) where(highqual=-1) select(peid,SELABEL)";
  const std::string wanted = "PEID SELABEL\n------------\n0    'left'\n";
  char text[100] = "x";
  EXPECT_EQ(kdcdb::GetDbdict(command, text, 1), static_cast<int>(wanted.size()));
  EXPECT_EQ(kdcdb::GetDbdict(command, text, wanted.size()), static_cast<int>(wanted.size()));
  EXPECT_STREQ(text, "x");
  EXPECT_EQ(kdcdb::GetDbdict(command, text, wanted.size() + 1), 0);
  EXPECT_EQ(text, wanted);
  EXPECT_EQ(list("highqual=-2"), "");
  for (const char* bad :
       {"dbdict datablk(fmddb) where() select()", "dbdict datablk(fmddb) where() select(colour)",
        "dbdict datablk(fmddb) where() select(highqual)"})
    EXPECT_EQ(kdcdb::GetDbdict(bad, text, sizeof text), -kdcdb::kBadCommand) << bad;
}

TEST_F(LinksTest, LocationNeedsAnAssignedNameOfADatabase) {
  EXPECT_EQ(run("dblocate logical=b datablk=(fmddb) where()"), kdcdb::kNoFile);
  expect_ok("assign b='" + MemoryDisk::path("missing.MASTER") + "'");
  EXPECT_EQ(run("dblocate logical=b datablk=(fmddb) where()"), kdcdb::kNoFile);
  disk.put("text", fmdtest::FileBytes(60000, 'x'));
  expect_ok("assign b='" + MemoryDisk::path("text") + "'");
  EXPECT_EQ(run("dblocate logical=b datablk=(fmddb) where()"), kdcdb::kNotADatabase);
  disk.bytes("one.MASTER")[16384] ^= 1;
  disk.bytes("one.MASTER")[16384 + 8192] ^= 1;
  disk.bytes("one.MASTER")[2 * 16384] ^= 1;
  disk.bytes("one.MASTER")[2 * 16384 + 8192] ^= 1;
  expect_ok("assign b='" + kOne + ".MASTER'");
  EXPECT_EQ(run("dblocate logical=b datablk=(fmddb) where()"), kdcdb::kDamaged);
}

TEST_F(LinksTest, LinkIsASnapshotThatOutlivesReplacementAndItsSpace) {
  locate_one();
  const int key = by_mark("fmddb", 1);
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenExisting), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  for (int i = 0; i < 4; ++i) ASSERT_EQ(export_bodies(kOne, {make_body("left", 50 + i, {9000})}), kdcdb::kOk);
  kdcdb::DbaseBst("m", "./");
  ASSERT_EQ(kdcdb::DbaseOld(kSession.c_str(), "restart"), kdcdb::kOk);
  expect_body(by_mark("fmddb", 1), left);
  // A link that is made now sees the new one.
  expect_ok("dblocate logical=dbalc1 datablk=(fmddb) where(selabel='left') convert(highqual=2)");
  expect_body(by_mark("fmddb", 2), make_body("left", 53, {9000}));
}

TEST_F(LinksTest, StoredDatablockIsNeverWrittenThroughALink) {
  locate_one();
  const int key = by_mark("fmddb", 1);
  EXPECT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kNotSupported);
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenAgain), kdcdb::kOk);
  const std::int32_t word = 1;
  EXPECT_EQ(kdcdb::Write(key, &word, 1, false), kdcdb::kNotSupported);
  const std::int32_t trailer[7] = {key, 9, 9, 9, 9, 9, 9};
  EXPECT_EQ(kdcdb::Wrttrl(trailer), kdcdb::kNotSupported);
  expect_body(key, left);
}

// Records of 5 and 9000 words: marks at words 5 and 9006.
TEST_F(LinksTest, PlacesBeforeAndBehindAMarkAreTwo) {
  locate_one();
  const int key = by_mark("fmddb", 1);
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenExisting), kdcdb::kOk);
  struct Place {
    std::int64_t position;
    bool end_of_record;
    bool end_of_file;
    std::int64_t remaining;
  };
  for (const Place& place :
       {Place{0, false, false, 5}, Place{5, true, false, 0}, Place{6, false, false, 9000},
        Place{9006, true, false, 0}, Place{9007, false, true, 0}}) {
    ASSERT_EQ(kdcdb::Filps3(key, place.position), kdcdb::kOk);
    std::int64_t position = -1;
    std::int64_t remaining = -1;
    bool end_of_record = !place.end_of_record;
    bool end_of_file = !place.end_of_file;
    ASSERT_EQ(kdcdb::Savps3(key, &position, &end_of_record, &end_of_file), kdcdb::kOk);
    EXPECT_EQ(position, place.position);
    EXPECT_EQ(end_of_record, place.end_of_record) << position;
    EXPECT_EQ(end_of_file, place.end_of_file) << position;
    EXPECT_EQ(kdcdb::Remaining(key, &remaining), kdcdb::kOk);
    EXPECT_EQ(remaining, place.remaining) << position;
    std::int32_t word = 0;
    std::int64_t actual = -1;
    EXPECT_EQ(kdcdb::Read(key, &word, 1, &actual), remaining > 0 ? kdcdb::kOk : kdcdb::kEndOfRecord);
    EXPECT_EQ(actual, remaining > 0 ? 1 : 0);
  }
  EXPECT_EQ(kdcdb::Filps3(key, 9008), kdcdb::kBadPosition);
  EXPECT_EQ(kdcdb::Filps3(key, -1), kdcdb::kBadPosition);
}

TEST_F(LinksTest, DroppingLinksDropsNothingElse) {
  locate_one();
  expect_ok("assign other='" + kOne + ".MASTER'");
  expect_ok("dblocate logical=other datablk=(fmddb) where(selabel='Right Arm') convert(highqual=2)");
  const int open_key = by_mark("fmddb", 1);
  ASSERT_EQ(kdcdb::Gopen(open_key, kdcdb::kOpenExisting), kdcdb::kOk);
  expect_ok("undblocate logical=DBALC1");
  by_mark("fmddb", 1, 0);
  expect_body(open_key, left);  // the key goes on
  expect_body(by_mark("fmddb", 2), right);
  expect_ok("undblocate logical=*");
  by_mark("fmddb", 2, 0);
  expect_ok("dblocate logical=other datablk=(fmddb) where(selabel='Right Arm') convert(highqual=3)");
  expect_body(by_mark("fmddb", 3), right);  // the assignment has stayed
  expect_ok("undblocate logical=nobody");
}

TEST_F(LinksTest, LinkToALinkSleepsUntilItsNamesAreAssigned) {
  locate_one();
  move_to_new(kTwo);
  by_mark("fmddb", 1, 0);
  expect_ok("assign dbtmp1='" + kSession + ".MASTER'");
  const std::string through =
      "dblocate logical=dbtmp1 datablk=(fmddb) where(projno=* and version=* and "
      "highqual=1 and wildcard=true)";
  expect_ok(through);  // finds nothing yet, and that is no error
  by_mark("fmddb", 1, 0);
  expect_ok("assign dbalc1='" + kOne + ".MASTER'");
  expect_ok(through);
  expect_body(by_mark("fmddb", 1), left);
  move_to(kSession, "restart");
  expect_body(by_mark("fmddb", 1), left);
  move_to(kTwo, "");
  expect_body(by_mark("fmddb", 1), left);  // links are kept by database
  expect_ok("undblocate logical=dbtmp1");
  by_mark("fmddb", 1, 0);
}

TEST_F(LinksTest, ScratchIsReachedThroughALinkAndGivenBackThroughIt) {
  const std::vector<std::int32_t> words = {4, 5, 6};
  make_scratch(1001, words);
  make_scratch(1002, words);
  move_to_new(kTwo);
  expect_ok("assign dbtmp1='" + kSession + ".MASTER'");
  for (const int mark : {1001, 1002, 1003})
    expect_ok("dblocate logical=dbtmp1 datablk=(fmdtmp) where(highqual=" + std::to_string(mark) + ")");
  by_mark("fmdtmp", 1003, 0);
  const int linked = by_mark("fmdtmp", 1001);
  ASSERT_EQ(kdcdb::Gopen(linked, kdcdb::kOpenAgain), kdcdb::kOk);
  const std::int32_t nine = 9;
  EXPECT_EQ(kdcdb::Write(linked, &nine, 1, false), kdcdb::kOk);
  EXPECT_EQ(kdcdb::ReleaseDatablk(by_mark("fmdtmp", 1002)), kdcdb::kOk);
  by_mark("fmdtmp", 1002, 0);
  move_to(kSession, "restart");
  by_mark("fmdtmp", 1002, 0);
  const int home = by_mark("fmdtmp", 1001);
  ASSERT_EQ(kdcdb::Gopen(home, kdcdb::kOpenExisting), kdcdb::kOk);
  EXPECT_EQ(kdcdbtest::read_records(home), (std::vector<std::vector<std::int32_t>>{{9, 5, 6}}));
}

TEST_F(LinksTest, CopiedScratchMovesWithoutItsBytesAndOutlivesTheLink) {
  move_to_new(kTwo);
  make_scratch(1001, {1, 2, 3});
  move_to(kSession, "restart");
  expect_ok("assign dbtmp2='" + kTwo + ".MASTER'");
  long writes = 0;
  disk.fault = [&](const char* call) {
    writes += std::string(call) == "pwrite" ? 1 : 0;
    return 0;
  };
  expect_ok("dblocate logical=dbtmp2 datablk=(fmdtmp) where(highqual=1001) copy");
  EXPECT_EQ(writes, 0);
  expect_ok("dblocate logical=dbtmp2 datablk=(fmdtmp) where(highqual=1001) copy");  // gone already: no match
  expect_ok("undblocate logical=dbtmp2");
  const int key = by_mark("fmdtmp", 1001);
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenExisting), kdcdb::kOk);
  EXPECT_EQ(kdcdbtest::read_records(key), (std::vector<std::vector<std::int32_t>>{{1, 2, 3}}));
  move_to(kTwo, "dbsetdel dbfmd");
  by_mark("fmdtmp", 1001, 0);
  move_to(kSession, "");
  by_mark("fmdtmp", 1001);  // what was moved is not cleaned up with the target
}

TEST_F(LinksTest, ScratchThatIsNotMovedGoesWithTheTemporarySet) {
  move_to_new(kTwo);
  const int key = make_scratch(1001, {1});
  expect_ok("dbsetdel dbfmd");
  EXPECT_EQ(kdcdb::Gopen(key, kdcdb::kOpenExisting), kdcdb::kNoDatablock);
  by_mark("fmdtmp", 1001, 0);
}

TEST_F(LinksTest, CopyOntoATakenMarkIsRefused) {
  make_scratch(1001, {1});
  move_to_new(kTwo);
  make_scratch(1001, {2});
  move_to(kSession, "restart");
  expect_ok("assign dbtmp2='" + kTwo + ".MASTER'");
  EXPECT_EQ(run("dblocate logical=dbtmp2 datablk=(fmdtmp) where(highqual=1001) copy"), kdcdb::kExists);
}

TEST_F(LinksTest, CopyOfAStoredDatablockKeepsEveryWordInItsPlace) {
  move_to_new(kTwo);
  expect_ok("assign a='" + kOne + ".MASTER'");
  expect_ok("dblocate logical=a datablk=(fmddb) where(projno=*) convert(version=8) copy");
  expect_ok("dblocate logical=a datablk=(fmddb) where(projno=77) copy");
  EXPECT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  std::vector<Body> found;
  ASSERT_EQ(kdcdbtest::read_bodies(kTwo + ".MASTER", found), kdcdb::kOk);
  left.numbers[1] = 8;
  right.numbers[1] = 8;
  EXPECT_EQ(found, (std::vector<Body>{left, right}));
  EXPECT_EQ(kdcdbtest::check(kTwo + ".MASTER"), kdcdb::kOk);
  kdcdb::DbaseBst("m", "./");
  EXPECT_EQ(kdcdb::DbaseOld(kTwo.c_str(), "dbsetdel dbfmd"), kdcdb::kOk);
}

TEST_F(LinksTest, RestartTakesAssignmentsAlongWhateverItsLength) {
  locate_one();
  std::string text = "restart";
  for (int i = 1; i <= 500; ++i) text += ";assign dbalc" + std::to_string(i) + "='" + kOne + ".MASTER'";
  move_to(kSession, text.c_str());
  expect_body(by_mark("fmddb", 1), left);
  expect_ok("dblocate logical=dbalc500 datablk=(fmddb) where(selabel='Right Arm') convert(highqual=500)");
  expect_body(by_mark("fmddb", 500), right);
  EXPECT_EQ(run("restart now"), kdcdb::kBadCommand);
}

class QualifiersTest : public LinksTest {
 protected:
  kdcdb::Status create(const std::string& qualifiers) {
    int key = 0;
    const std::string command = "dbcreate datablk=(fmddb) quals(" + qualifiers + ")";
    const kdcdb::Status status = kdcdb::CreateDatablk(command.c_str(), &key);
    if (status != kdcdb::kOk) return status;
    EXPECT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
    EXPECT_EQ(kdcdb::Close(key, 1), kdcdb::kOk);
    return status;
  }
  std::vector<Body> stored() {
    kdcdb::DbaseCls();
    std::vector<Body> found;
    EXPECT_EQ(kdcdbtest::read_bodies(kTwo + ".MASTER", found), kdcdb::kOk);
    kdcdb::DbaseBst("m", "./");
    EXPECT_EQ(kdcdb::DbaseOld(kTwo.c_str(), "init dbfmd"), kdcdb::kOk);
    return found;
  }
  QualifiersTest() { move_to_new(kTwo); }
  ~QualifiersTest() override { EXPECT_EQ(run("dbsetdel dbfmd"), kdcdb::kOk); }
};

TEST_F(QualifiersTest, HaveDefaultsAndNamesInAnyCase) {
  ASSERT_EQ(create(""), kdcdb::kOk);
  ASSERT_EQ(create("SeLabel='A b, c; (d) and e  ';PROJNO=3;version=-4;PeId=5;DESITER=6;stepcur=7"),
            kdcdb::kOk);
  const auto found = stored();
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].label, "");
  EXPECT_EQ(found[0].numbers, (std::array<std::int32_t, 5>{1, 1, 0, 0, 0}));
  EXPECT_EQ(found[1].label, "A b, c; (d) and e");  // trailing blanks do not count
  EXPECT_EQ(found[1].numbers, (std::array<std::int32_t, 5>{3, -4, 5, 6, 7}));
}

TEST_F(QualifiersTest, ThatMakeNoSenseAreRefused) {
  for (const char* bad : {"highqual=0", "HIGHQUAL=3", "colour=1", "peid=x", "peid", "selabel",
                          "peid=1;peid=1", "selabel='a';SELABEL='a'", "peid=2147483648", "peid='1' x"})
    EXPECT_EQ(create(bad), kdcdb::kBadCommand) << bad;
  for (const char* bad :
       {"selabel='O'Brien'", "selabel='tab\there'", "selabel='new\nline'", "selabel='\x7f'"})
    EXPECT_EQ(create(bad), kdcdb::kBadArgument) << bad;
  EXPECT_EQ(create("selabel='\xC3\xA4rm'"), kdcdb::kOk);
}

// SELABEL='...',PROJNO=1,VERSION=1,PEID=0,DESITER=0,STEPCUR=0 has 255 characters with a label of 199.
TEST_F(QualifiersTest, LabelFillsARowAndNoMore) {
  const std::string row = "SELABEL='',PROJNO=1,VERSION=1,PEID=0,DESITER=0,STEPCUR=0";
  const std::string longest(255 - row.size(), 'x');
  EXPECT_EQ(create("selabel='" + longest + "'"), kdcdb::kOk);
  EXPECT_EQ(create("selabel='" + longest + "x'"), kdcdb::kBadArgument);
  EXPECT_EQ(create("selabel='" + longest + "';peid=-1"), kdcdb::kBadArgument);
  EXPECT_EQ(create("selabel='" + longest + "     '"), kdcdb::kOk);
  EXPECT_EQ(stored().size(), 1U);
}

}  // namespace
