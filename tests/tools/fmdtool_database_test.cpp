// The commands that keep bodies in databases: store, list, contents, export, copy.
#include <algorithm>
#include <filesystem>
#include <thread>

#include "dataset_reader/dataset_reader.h"
#include "tools/fmdtool_database_support.h"
#include "translators/frd_text.h"

using namespace fmdtest;
using dataset_reader::read_dataset_file;
using Names = std::set<std::string>;
using Labels = std::vector<std::string>;

namespace {

bool contains(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

}  // namespace

TEST_F(FmdtoolDatabaseTest, StoresABodyAndListsItInATable) {
  const Outcome outcome = store("parts.MASTER", "SELABEL='left arm',projno=7");
  EXPECT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  EXPECT_TRUE(
      contains(outcome.output,
               "  database          parts.MASTER\n"
               "  qualifiers        SELABEL='left arm',PROJNO=7,VERSION=1,PEID=0,DESITER=0,STEPCUR=0\n"))
      << outcome.output;
  EXPECT_EQ(made(), (Names{"parts.MASTER"}));
  expect_stored("parts.MASTER", "");
  const std::string bytes = list("parts.MASTER")["bodies"][0]["bytes"].dump();
  const std::string padding(14 - bytes.size(), ' ');
  EXPECT_EQ(expect_done({"list", "parts.MASTER"}),
            "  body       nodes   modes           bytes  qualifiers\n"
            "     1           8       2  " +
                padding + bytes +
                "  SELABEL='left arm',PROJNO=7,VERSION=1,PEID=0,DESITER=0,STEPCUR=0\n"
                "     2           8       2  " +
                padding + bytes + "  SELABEL='',PROJNO=1,VERSION=1,PEID=0,DESITER=0,STEPCUR=0\n");
  EXPECT_EQ(made(), (Names{"parts.MASTER"}));
}

TEST_F(FmdtoolDatabaseTest, ExplainsEachCommandAndItsExitStatus) {
  for (const char* command : {"list", "contents", "export", "copy", "transform", "check"}) {
    const std::string help = expect_done({command, "--help"});
    EXPECT_TRUE(contains(help, "Exit status: 0 when")) << command;
    EXPECT_TRUE(contains(help, std::string("  fmdtool ") + command + " parts.MASTER")) << command;
  }
  EXPECT_TRUE(contains(expect_done({"store", "calculix", "--help"}), "Exit status: 0 when"));
  EXPECT_TRUE(contains(expect_done({"translate", "calculix", "--help"}), "Exit status: 0 when"));
}

TEST_F(FmdtoolDatabaseTest, ListsInJson) {
  expect_stored("parts.MASTER", "SELABEL='a, b',PROJNO=2,VERSION=3,PEID=-4,DESITER=5,STEPCUR=6");
  const auto json = list("parts.MASTER");
  EXPECT_EQ(json["database"], "parts.MASTER");
  ASSERT_EQ(json["bodies"].size(), 1U);
  const auto& body = json["bodies"][0];
  EXPECT_EQ(body["body"], 1);
  EXPECT_EQ(body["nodes"], 8);
  EXPECT_EQ(body["modes"], 2);
  EXPECT_EQ(body["qualifiers"], nlohmann::json::parse(R"({"SELABEL": "a, b", "PROJNO": 2, "VERSION": 3,
            "PEID": -4, "DESITER": 5, "STEPCUR": 6})"));
  // The vectors alone: two modes of shapes and stresses, eight nodes, six doubles.
  EXPECT_GT(body["bytes"], 2 * 2 * 8 * 6 * 8);
  EXPECT_LT(body["bytes"], std::filesystem::file_size("parts.MASTER"));
}

TEST_F(FmdtoolDatabaseTest, TellsWhatItStoredInJson) {
  const Outcome outcome = store("parts.MASTER", "arm", {"--json", "--invariants", "fast"});
  const auto json = nlohmann::json::parse(outcome.output);
  EXPECT_EQ(json["database"], "parts.MASTER");
  EXPECT_EQ(json.count("dataset"), 0U);
  EXPECT_EQ(json["qualifiers"], "SELABEL='arm',PROJNO=1,VERSION=1,PEID=0,DESITER=0,STEPCUR=0");
  EXPECT_EQ(json["bytes"], std::filesystem::file_size("parts.MASTER"));
  EXPECT_EQ(json["invariants"]["set"], "fast");
}

TEST_F(FmdtoolDatabaseTest, ReplacesTheBodyOfTheSameQualifiersInItsPlace) {
  expect_stored("parts.MASTER", "one");
  expect_stored("parts.MASTER", "two");
  expect_stored("parts.MASTER", "one", {"--option", "lowpass(5)"});
  EXPECT_EQ(labels("parts.MASTER"), (Labels{"one", "two"}));
  const auto bodies = list("parts.MASTER")["bodies"];
  EXPECT_EQ(bodies[0]["modes"], 1);
  EXPECT_EQ(bodies[1]["modes"], 2);
}

TEST_F(FmdtoolDatabaseTest, ExportsTheBytesOfADatasetWrittenDirectly) {
  const std::vector<std::string> variants[] = {
      {},
      {"--invariants", "full", "--monitor", "TOP", "--interface-nodes", "TOP"},
      {"--option", "no_ortho"},
      {"--units", "KILOGRAM,METER,SECOND,NEWTON"}};
  for (const auto& variant : variants) {
    expect_stored("parts.MASTER", "arm", variant);
    std::vector<std::string> direct = variant;
    direct.insert(direct.begin(), {"job.frd", "-o", "direct.fmd"});
    ASSERT_EQ(translate(direct).exit_code, 0);
    std::vector<std::string> command = {"export", "parts.MASTER", "--body", "1", "-o", "out.fmd"};
    if (!variant.empty() && variant[0] == "--option") command.insert(command.end(), {"--option", "no_ortho"});
    expect_done(command);
    EXPECT_TRUE(without_time("out.fmd") == without_time("direct.fmd")) << (variant.empty() ? "" : variant[0]);
  }
  EXPECT_EQ(made(), (Names{"parts.MASTER", "direct.fmd", "out.fmd"}));
}

TEST_F(FmdtoolDatabaseTest, ExportsUnderTheOptionsOfTheWriter) {
  expect_stored("parts.MASTER", "one");
  expect_done({"export", "parts.MASTER", "-o", "out.fmd", "--option", "single", "--option", "lowpass(5)"});
  const auto dataset = read_dataset_file("out.fmd");
  EXPECT_EQ(dataset.version_word, 0x33CU);
  EXPECT_EQ(dataset.eigenvalues->size(), 1U);
  settings.environment["KXI_FMDWRITE_OPTIONS"] = "no_xdr";
  expect_done({"export", "parts.MASTER", "-o", "out.fmd"});
  EXPECT_EQ(read_dataset_file("out.fmd").version_word, 0x03CU);
}

TEST_F(FmdtoolDatabaseTest, SelectsBodiesByQualifiersOrLabel) {
  expect_stored("parts.MASTER", "SELABEL='arm',PROJNO=1");
  expect_stored("parts.MASTER", "SELABEL='arm',PROJNO=2", {"--option", "lowpass(5)"});
  expect_stored("parts.MASTER", "leg");
  const auto modes = [&](const std::string& select) {
    expect_done({"export", "parts.MASTER", "--select", select, "-o", "out.fmd"});
    return read_dataset_file("out.fmd").eigenvalues->size();
  };
  EXPECT_EQ(modes("leg"), 2U);
  EXPECT_EQ(modes("SELABEL='arm',PROJNO=2"), 1U);
  EXPECT_EQ(modes("projno=2"), 1U);
  EXPECT_EQ(modes("selabel=arm, version=*, Projno=1"), 2U);
  const auto refuse = [&](const std::string& select, const std::string& line) {
    expect_one_line(run({"export", "parts.MASTER", "--select", select, "-o", "none.fmd"}), line);
  };
  refuse("arm", "parts.MASTER: expected one body, found 2 (1, 2); say which with --body");
  refuse("*", "parts.MASTER: expected one body, found 3 (1, 2, 3); say which with --body");
  refuse("SELABEL='toe',PEID=4", "parts.MASTER: no body with SELABEL='toe',PEID=4");
  expect_one_line(run({"export", "parts.MASTER", "-o", "none.fmd"}),
                  "parts.MASTER: expected one body, found 3 (1, 2, 3); say which with --body");
  expect_one_line(run({"export", "parts.MASTER", "--body", "4", "-o", "none.fmd"}),
                  "parts.MASTER: expected a body from 1 to 3, found 4");
  EXPECT_EQ(made(), (Names{"parts.MASTER", "out.fmd"}));
}

TEST_F(FmdtoolDatabaseTest, ShowsWhatIsInABody) {
  expect_stored("parts.MASTER", "one");
  expect_stored("parts.MASTER", "two");
  const std::string all = expect_done({"contents", "parts.MASTER", "--body", "2"});
  EXPECT_EQ(all.rfind("parts.MASTER, body 2: SELABEL='two',PROJNO=1", 0), 0U) << all.substr(0, 200);
  for (const char* block : {"Block   1:", "Block   4:", "Block   7:", "Block   8:", "Block  18:"}) {
    EXPECT_TRUE(contains(all, block)) << block;
  }
  EXPECT_FALSE(contains(all, "Block  33:"));
  const std::string block = expect_done({"contents", "parts.MASTER", "--select", "one", "--block", "7"});
  EXPECT_TRUE(contains(block, "Eigenvalues:"));
  EXPECT_TRUE(contains(block, "1.2500000000e+01")) << block;
  EXPECT_FALSE(contains(block, "Block   4:"));
  const std::string both = expect_done({"contents", "parts.MASTER", "--block", "2"});
  EXPECT_TRUE(contains(both, "body 1: SELABEL='one'"));
  EXPECT_TRUE(contains(both, "body 2: SELABEL='two'"));
  EXPECT_EQ(made(), (Names{"parts.MASTER"}));
}

TEST_F(FmdtoolDatabaseTest, CopiesBodiesBetweenDatabases) {
  for (const char* label : {"one", "two", "three"}) expect_stored("parts.MASTER", label);
  expect_done({"copy", "parts.MASTER", "all.MASTER"});
  EXPECT_EQ(labels("all.MASTER"), (Labels{"one", "two", "three"}));
  expect_done({"copy", "parts.MASTER", "some.MASTER", "--body", "2"});
  expect_done({"copy", "parts.MASTER", "some.MASTER", "--select", "one"});
  EXPECT_EQ(labels("some.MASTER"), (Labels{"two", "one"}));
  expect_done({"copy", "parts.MASTER", "some.MASTER", "--select", "one", "--qualifiers", "VERSION=9"});
  const auto body = list("some.MASTER")["bodies"][2];
  EXPECT_EQ(body["qualifiers"]["SELABEL"], "one");
  EXPECT_EQ(body["qualifiers"]["VERSION"], 9);
  EXPECT_EQ(labels("parts.MASTER"), (Labels{"one", "two", "three"}));
  EXPECT_EQ(made(), (Names{"parts.MASTER", "all.MASTER", "some.MASTER"}));
}

// The time of creation goes along, too.
TEST_F(FmdtoolDatabaseTest, ACopyHasTheFormOfItsOriginal) {
  const std::pair<const char*, const char*> forms[] = {{"", "60"},         {"single", "60"},
                                                       {"full_str", "40"}, {"82_comp", "20"},
                                                       {"81_comp", "10"},  {"no_ortho", "60"}};
  for (const auto& [option, level] : forms) {
    const std::string label = std::string("form ") + option;
    std::vector<std::string> options;
    if (*option != '\0') options = {"--option", option};
    expect_stored("parts.MASTER", label, options);
  }
  expect_done({"copy", "parts.MASTER", "copy.MASTER"});
  const auto original = list("parts.MASTER")["bodies"];
  const auto copied = list("copy.MASTER")["bodies"];
  EXPECT_EQ(original, copied);
  for (std::size_t i = 0; i < std::size(forms); ++i) {
    const std::string number = std::to_string(i + 1);
    const auto text = [&](const std::string& database) {
      const std::string all = expect_done({"contents", database, "--body", number});
      return all.substr(all.find('\n'));
    };
    EXPECT_EQ(text("parts.MASTER"), text("copy.MASTER")) << forms[i].first;
  }
  expect_done({"copy", "parts.MASTER", "other.MASTER", "--body", "3", "--option", "lowpass(5)"});
  EXPECT_EQ(list("other.MASTER")["bodies"][0]["modes"], 1);
}

// The second to come is turned away or waits its turn; what it says is what has been done.
TEST_F(FmdtoolDatabaseTest, TwoWritersAtOnceSayWhatTheyDid) {
  for (int round = 0; round < 4; ++round) {
    const std::string database = round < 2 ? "new" + std::to_string(round) + ".MASTER" : "new0.MASTER";
    const std::string names[2] = {"a" + std::to_string(round), "b" + std::to_string(round)};
    const Labels before = std::filesystem::exists(database) ? labels(database) : Labels{};
    Outcome outcomes[2];
    std::thread other([&] { outcomes[1] = store(database, names[1]); });
    outcomes[0] = store(database, names[0]);
    other.join();
    Labels expected = before;
    for (int i = 0; i < 2; ++i) {
      if (outcomes[i].exit_code == 0) {
        expected.push_back(names[i]);
      } else {
        EXPECT_TRUE(contains(outcomes[i].errors, "fmdtool: error: ")) << outcomes[i].exit_code;
      }
    }
    Labels found = labels(database);
    std::sort(found.begin(), found.end());
    std::sort(expected.begin(), expected.end());
    EXPECT_EQ(found, expected);
    EXPECT_GT(found.size(), before.size());
  }
  EXPECT_EQ(made(), (Names{"new0.MASTER", "new1.MASTER"}));
}
