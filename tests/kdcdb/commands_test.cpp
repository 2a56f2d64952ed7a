#include "kdcdb/commands.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

using kdcdb::Command;
using kdcdb::Entry;
using kdcdb::Item;

// The commands written out with every part marked, to compare with text worked out by hand.
std::string describe(const Entry& entry) {
  std::string text = entry.name;
  if (entry.has_value) text += entry.quoted ? "='" + entry.value + "'" : "=" + entry.value;
  return text;
}

std::string describe(const std::vector<Command>& commands) {
  std::string text;
  for (const Command& command : commands) {
    for (const Item& item : command) {
      text += "[" + describe(item);
      if (item.has_group) {
        text += "(";
        for (const Entry& entry : item.group) text += "<" + describe(entry) + ">";
        text += ")";
      }
      text += "]";
    }
    text += ";";
  }
  return text;
}

std::string parse(const std::string& text) {
  std::vector<Command> commands;
  const kdcdb::Status status = kdcdb::parse_commands(text.c_str(), commands);
  return status == kdcdb::kOk ? describe(commands) : "status " + std::to_string(status);
}

TEST(Commands, OfASessionAreUnderstood) {
  EXPECT_EQ(parse(""), "");
  EXPECT_EQ(parse("init dbfmd"), "[init][dbfmd];");
  EXPECT_EQ(parse("init dbfmd;dbsetdel dball"), "[init][dbfmd];[dbsetdel][dball];");
  EXPECT_EQ(parse("dbcreate datablk=(fmdtmp) quals(highqual=1001)"),
            "[dbcreate][datablk(<fmdtmp>)][quals(<highqual=1001>)];");
  EXPECT_EQ(parse("assign dbtmp1='/a b/c.MASTER'"), "[assign][dbtmp1='/a b/c.MASTER'];");
  EXPECT_EQ(parse("datablk=(fmddb) where(projno=* and version=* and highqual=-3 and wildcard=true)"),
            "[datablk(<fmddb>)][where(<projno=*><version=*><highqual=-3><wildcard=true>)];");
  EXPECT_EQ(parse("dblocate logical=dbbrw1 datablk=(fmddb) where(projno=*) "
                  "convert(projno=projno;version=version;highqual=-1)"),
            "[dblocate][logical=dbbrw1][datablk(<fmddb>)][where(<projno=*>)]"
            "[convert(<projno=projno><version=version><highqual=-1>)];");
  EXPECT_EQ(parse("dblocate logical=dbtmp2 datablk=(fmdtmp) where(highqual=5) copy"),
            "[dblocate][logical=dbtmp2][datablk(<fmdtmp>)][where(<highqual=5>)][copy];");
  EXPECT_EQ(parse("undblocate logical=*"), "[undblocate][logical=*];");
  EXPECT_EQ(parse("dbdict datablk(fmddb) where(highqual=-1) select(selabel,projno='projno',peid)"),
            "[dbdict][datablk(<fmddb>)][where(<highqual=-1>)][select(<selabel><projno='projno'><peid>)];");
}

TEST(Commands, NamesCountInAnyCaseAndValuesKeepTheirs) {
  EXPECT_EQ(parse("DBCREATE Datablk=(FmdTmp) QUALS(HighQual=12;SELabel='Left Arm')"),
            "[dbcreate][datablk(<fmdtmp>)][quals(<highqual=12><selabel='Left Arm'>)];");
}

TEST(Commands, BlanksAndEmptyCommandsDoNotCount) {
  EXPECT_EQ(parse("  ;; init\t dbfmd \n;"), "[init][dbfmd];");
  EXPECT_EQ(parse("a = ( c = d , e AND f )"), "[a(<c=d><e><f>)];");
  EXPECT_EQ(parse("a=b (c)"), "status 3") << "a group belongs to a name";
}

TEST(Commands, QuotedTextMayHoldSeparatorsAndQuotes) {
  EXPECT_EQ(parse("assign x='a;b,c(d) and e'"), "[assign][x='a;b,c(d) and e'];");
  EXPECT_EQ(parse("assign x='/home/o'brien/body.MASTER';init dbfmd"),
            "[assign][x='/home/o'brien/body.MASTER'];[init][dbfmd];");
  EXPECT_EQ(parse("where(selabel='' and peid=1)"), "[where(<selabel=''><peid=1>)];");
}

TEST(Commands, NonsenseIsABadCommand) {
  for (const char* text :
       {"=",   "a=",  "(",     ")",     "a(",    "a(b", "a(b c)", "a(b,)", "a(,b)",   "a=(b", "a='b",
        "a='", "'a'", "a b !", "a(b=)", "a(=b)", "a)b", "a(b))",  "a==b",  "a(b(c))", "\x01", "\xff"})
    EXPECT_EQ(parse(text), "status 3") << text;
}

TEST(Commands, HaveNoLengthLimit) {
  const std::string name(100000, 'n');
  EXPECT_EQ(parse("assign x='" + name + "'"), "[assign][x='" + name + "'];");
  std::string many = "quals(a=0";
  for (int i = 0; i < 20000; ++i) many += ";a=1";
  std::vector<Command> commands;
  ASSERT_EQ(kdcdb::parse_commands((many + ")").c_str(), commands), kdcdb::kOk);
  EXPECT_EQ(commands[0][0].group.size(), 20001U);
}

TEST(Commands, EveryPrefixOfACommandIsReadSafely) {
  const std::string text =
      "dblocate logical=l datablk=(fmddb) where(selabel='a b' and peid=*) convert(highqual=1) copy";
  for (std::size_t length = 0; length <= text.size(); ++length) {
    std::vector<Command> commands;
    const kdcdb::Status status = kdcdb::parse_commands(text.substr(0, length).c_str(), commands);
    EXPECT_TRUE(status == kdcdb::kOk || status == kdcdb::kBadCommand);
  }
}

TEST(Commands, RandomBytesAreReadSafely) {
  std::mt19937 random(12345);
  const std::string alphabet = "ab1=(),;' *\t\xE9\x01-+._and";
  for (int run = 0; run < 20000; ++run) {
    std::string text;
    for (std::size_t length = random() % 40; length > 0; --length)
      text += run % 2 == 0 ? static_cast<char>(random() % 255 + 1) : alphabet[random() % alphabet.size()];
    std::vector<Command> commands;
    const kdcdb::Status status = kdcdb::parse_commands(text.c_str(), commands);
    ASSERT_TRUE(status == kdcdb::kOk || status == kdcdb::kBadCommand);
    for (const Command& command : commands) ASSERT_FALSE(command.empty());
  }
}

TEST(Commands, IntegersAreTakenWholeAndInRange) {
  std::int32_t value = 0;
  EXPECT_TRUE(kdcdb::parse_integer("-2147483648", value));
  EXPECT_EQ(value, -2147483647 - 1);
  EXPECT_TRUE(kdcdb::parse_integer("+17", value));
  EXPECT_EQ(value, 17);
  for (const char* text :
       {"", "-", "+", "1x", "x1", " 1", "1 ", "2147483648", "99999999999999999999", "1-2", "*", "1.0"})
    EXPECT_FALSE(kdcdb::parse_integer(text, value)) << text;
  EXPECT_EQ(value, 17);
}

}  // namespace
