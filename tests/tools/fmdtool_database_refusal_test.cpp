// What the commands on databases refuse: one line, exit code 1, and all files as they were.
#include <filesystem>

#include "tools/fmdtool_database_support.h"
#include "translators/frd_text.h"

using namespace fmdtest;
using Names = std::set<std::string>;

TEST_F(FmdtoolDatabaseTest, TellsOfAFileThatIsNoDatabase) {
  write_file("text.MASTER", "no database, though it is long enough to have words: " + std::string(4000, 'x'));
  write_file("short.MASTER", "short");
  const std::vector<std::vector<std::string>> commands = {
      {"list"},
      {"contents"},
      {"export", "-o", "out.fmd"},
      {"copy"},
      {"transform", "--translate", "1,0,0", "-o", "out.fmd"}};
  for (const auto& command : commands) {
    const auto with = [&](const std::string& database) {
      std::vector<std::string> words = command;
      words.insert(words.begin() + 1, database);
      if (command[0] == "copy") words.push_back("to.MASTER");
      return run(words);
    };
    expect_one_line(with("gone.MASTER"), "gone.MASTER: no such file");
    for (const char* name : {"text.MASTER", "short.MASTER", "tmp"}) {
      const Outcome outcome = with(name);
      EXPECT_EQ(outcome.exit_code, 1) << command[0] << name;
      EXPECT_EQ(outcome.output, "");
      const std::string last =
          std::string("fmdtool: error: ") + name + ": expected a database, NAME.MASTER\n";
      ASSERT_GE(outcome.errors.size(), last.size());
      EXPECT_EQ(outcome.errors.substr(outcome.errors.size() - last.size()), last);
    }
  }
  EXPECT_EQ(made(), (Names{"text.MASTER", "short.MASTER"}));
}

TEST_F(FmdtoolDatabaseTest, RefusesTargetsThatCannotBeDatabases) {
  const auto refuse = [&](const std::string& name, const std::string& reason) {
    expect_one_line(store(name, "arm"), name + ": " + reason);
  };
  refuse("parts", "expected a database, NAME.MASTER");
  refuse("parts.fmd", "expected a database, NAME.MASTER");
  refuse(".MASTER", "expected a database, NAME.MASTER");
  refuse("no/such/parts.MASTER", "the directory of the output does not exist");
  std::filesystem::create_directory("folder.MASTER");
  refuse("folder.MASTER", "expected a database, found what is no regular file");
  EXPECT_EQ(made(), (Names{"folder.MASTER"}));
}

TEST_F(FmdtoolDatabaseTest, LeavesAFileAloneThatIsNoDatabase) {
  write_file("text.MASTER", "my notes");
  const Outcome outcome = store("text.MASTER", "arm");
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(bytes_of("text.MASTER"), "my notes");
  EXPECT_EQ(made(), (Names{"text.MASTER"}));
}

TEST_F(FmdtoolDatabaseTest, RefusesTheDatabaseThatIsReadAsOutput) {
  expect_stored("parts.MASTER", "arm");
  std::filesystem::create_symlink("parts.MASTER", "link.MASTER");
  const std::string before = bytes_of("parts.MASTER");
  expect_one_line(run({"copy", "parts.MASTER", "parts.MASTER"}),
                  "parts.MASTER: expected another database than the one that is read");
  expect_one_line(run({"copy", "parts.MASTER", "link.MASTER"}),
                  "link.MASTER: expected another database than the one that is read");
  expect_one_line(run({"export", "parts.MASTER", "-o", "parts.MASTER"}),
                  "parts.MASTER: expected an output file that is not the database");
  expect_one_line(run({"transform", "parts.MASTER", "--translate", "1,0,0", "-d", "parts.MASTER"}),
                  "parts.MASTER: expected another output than the database that is read");
  EXPECT_EQ(bytes_of("parts.MASTER"), before);
}

TEST_F(FmdtoolDatabaseTest, RefusesWhatCouldNotBeReadBack) {
  const std::string single =
      "the options full_str and single together are refused in a database: the body could not be read back";
  const std::string band =
      "lowpass and highpass are refused for a body with monitor points: their operators would keep all modes "
      "and the body could not be read back";
  expect_one_line(store("new.MASTER", "arm", {"--option", "full_str single"}), single);
  expect_one_line(store("new.MASTER", "arm", {"--monitor", "TOP", "--option", "lowpass(5)"}), band);
  expect_one_line(translate({"job.frd", "--monitor", "TOP", "--option", "highpass(5)"}), band);
  expect_stored("parts.MASTER", "arm", {"--monitor", "TOP"});
  for (const char* command : {"copy", "transform"}) {
    std::vector<std::string> words = {command, "parts.MASTER"};
    if (words[0] == "copy") words.push_back("new.MASTER");
    if (words[0] == "transform") words.insert(words.end(), {"--translate", "1,0,0", "-d", "new.MASTER"});
    words.insert(words.end(), {"--option", "single full_str"});
    expect_one_line(run(words), single);
    words.back() = "lowpass(5)";
    expect_one_line(run(words), band);
  }
  expect_one_line(run({"export", "parts.MASTER", "-o", "out.fmd", "--option", "lowpass(5)"}), band);
  settings.environment["KXI_FMDWRITE_OPTIONS"] = "single full_str";
  expect_one_line(store("new.MASTER", "arm"), single);
  EXPECT_EQ(made(), (Names{"parts.MASTER"}));
}

TEST_F(FmdtoolDatabaseTest, RefusesQualifiersThatAreNone) {
  const std::pair<const char*, const char*> refused[] = {
      {"LABEL='arm'",
       "expected a qualifier, one of SELABEL PROJNO VERSION PEID DESITER STEPCUR, found \"LABEL\""},
      {"PROJNO=two", "expected an integer for PROJNO, found \"two\""},
      {"PROJNO=1,arm", "expected NAME=VALUE, found \"arm\""},
      {"it's", "expected a label without single quotes and control characters"}};
  for (const auto& [text, reason] : refused) {
    const Outcome outcome = store("new.MASTER", text);
    EXPECT_NE(outcome.exit_code, 0);
    EXPECT_NE(outcome.errors.find(reason), std::string::npos) << outcome.errors;
  }
  EXPECT_NE(store("new.MASTER", std::string(200, 'x')).errors.find("expected a shorter label"),
            std::string::npos);
  EXPECT_EQ(made(), (Names{}));
}

TEST_F(FmdtoolDatabaseTest, RefusesABadCommandLine) {
  expect_stored("parts.MASTER", "arm");
  const std::vector<std::vector<std::string>> lines = {
      {"list"},
      {"store", "calculix", "job.frd"},
      {"contents", "parts.MASTER", "--block", "36"},
      {"contents", "parts.MASTER", "--block", "0"},
      {"contents", "parts.MASTER", "--body", "0"},
      {"contents", "parts.MASTER", "--body", "1", "--select", "arm"},
      {"contents", "parts.MASTER", "--select", "COLOUR=2"},
      {"export", "parts.MASTER"},
      {"copy", "parts.MASTER"},
      {"transform", "parts.MASTER", "-o", "out.fmd"},
      {"transform", "parts.MASTER", "--translate", "1,0,0"},
      {"transform", "parts.MASTER", "--translate", "1,0", "-o", "out.fmd"},
      {"transform", "parts.MASTER", "--translate", "1,0,x", "-o", "out.fmd"},
      {"transform", "parts.MASTER", "--rotate", "0,0,0,90", "-o", "out.fmd"},
      {"transform", "parts.MASTER", "--mirror", "0,0,0", "-o", "out.fmd"},
      {"transform", "parts.MASTER", "--units", "TON,METER,SECOND,NEWTON", "-o", "out.fmd"},
      {"transform", "parts.MASTER", "--translate", "1,0,0", "-o", "out.fmd", "--database", "to.MASTER"},
      {"transform", "parts.MASTER", "--translate", "1,0,0", "-o", "out.fmd", "--qualifiers", "arm"},
      {"check"}};
  for (const auto& line : lines) {
    const Outcome outcome = run(line);
    EXPECT_GT(outcome.exit_code, 2) << line[0];
    EXPECT_LT(outcome.exit_code, 128);
    EXPECT_NE(outcome.errors, "");
  }
  EXPECT_EQ(made(), (Names{"parts.MASTER"}));
}

TEST_F(FmdtoolDatabaseTest, CopiesOneBodyUnderNewQualifiersOnly) {
  expect_stored("parts.MASTER", "one");
  expect_stored("parts.MASTER", "two");
  expect_one_line(run({"copy", "parts.MASTER", "to.MASTER", "--qualifiers", "arm"}),
                  "--qualifiers: expected one body to copy, found 2; say which with --body");
}

TEST_F(FmdtoolDatabaseTest, KeepsADatabaseWhenTheDiskIsFull) {
  expect_stored("parts.MASTER", "arm");
  const std::string before = bytes_of("parts.MASTER");
  for (const long limit : {1L, 2048L, 20000L, 40000L}) {
    settings.file_size_limit = limit;
    EXPECT_EQ(store("parts.MASTER", "leg").exit_code, 1) << limit;
    EXPECT_EQ(store("new.MASTER", "leg").exit_code, 1) << limit;
    EXPECT_EQ(made(), (Names{"parts.MASTER"})) << limit;
    settings.file_size_limit = 0;
    EXPECT_EQ(labels("parts.MASTER"), (std::vector<std::string>{"arm"}));
  }
  expect_stored("parts.MASTER", "leg");
  EXPECT_EQ(labels("parts.MASTER"), (std::vector<std::string>{"arm", "leg"}));
}

TEST_F(FmdtoolDatabaseTest, LeavesNothingBehindWhenInterruptedWhileStoring) {
  FrdModel large = cube();
  for (int number = 3; number < 400; ++number) large.modes.push_back({number, number * 1.0});
  expect_stored("old.MASTER", "arm");
  write_file("job.frd", frd_text(large));
  int interrupted = 0;
  for (int delay = 0; delay < 160; delay += 8) {
    const char* const target = delay % 16 == 0 ? "new.MASTER" : "old.MASTER";
    settings.signal_after_milliseconds = delay;
    const Outcome outcome = store(target, "leg");
    settings.signal_after_milliseconds = -1;
    EXPECT_TRUE(outcome.exit_code == 0 || outcome.exit_code == 130) << outcome.exit_code;
    interrupted += outcome.exit_code == 130 ? 1 : 0;
    Names found = made();
    if (found.erase("new.MASTER") != 0) {
      EXPECT_EQ(labels("new.MASTER"), (std::vector<std::string>{"leg"}));
    }
    EXPECT_EQ(found, (Names{"old.MASTER"})) << delay;
    const auto stored = labels("old.MASTER");
    EXPECT_EQ(stored[0], "arm");
    EXPECT_LE(stored.size(), 2U);
    std::filesystem::remove("new.MASTER");
  }
  EXPECT_GT(interrupted, 0);
}
