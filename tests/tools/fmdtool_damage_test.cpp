// What the program does when it cannot do its work: one line, exit code 1, no output, nothing left behind.
#include <gtest/gtest.h>

#include <filesystem>

#include "tools/fmdtool_test_support.h"
#include "translators/frd_text.h"

using namespace fmdtest;

class FmdtoolDamageTest : public FmdtoolTest {
 protected:
  FmdtoolDamageTest() { write_cube(); }

  // Damaged results give this line, and what was there stays as it was.
  void expect_failure(const std::string& results, const std::string& line) {
    write_file("job.frd", results);
    write_file("job.fmd", "an older file");
    const auto before = files();
    expect_one_line(translate({"job.frd"}), line);
    EXPECT_EQ(files(), before);
    EXPECT_EQ(bytes_of("job.fmd"), "an older file");
    std::filesystem::remove("job.fmd");
    expect_one_line(translate({"job.frd"}), line);
    EXPECT_FALSE(std::filesystem::exists("job.fmd"));
  }

  const std::string text = frd_text(cube());
};

TEST_F(FmdtoolDamageTest, NamesFileLineAndExpectationOfDamagedResults) {
  expect_failure(text.substr(0, text.find("    3C")),
                 "job.frd:16: expected the record 9999 at the end, the file is cut off");
  expect_failure(
      text.substr(0, text.find(" -1         4 1.04250E+02") + 9),
      "job.frd:31: expected the end of the block of dataset values, a record -3, the file is cut off");
  expect_failure(exchange(text, frd_elements(cube()), ""),
                 "job.frd: expected a block of elements (3C), found none");
  expect_failure(exchange(text, " -2         1", " -2         9"),
                 "job.frd:18: expected a node of the node block in element 5, found unknown node 9");
  expect_failure(exchange(text, frd_displacements(cube(), cube().modes[1]), ""),
                 "job.frd:68: expected displacements, a dataset DISP, of mode 2");
  expect_failure(
      exchange(text, " -1         4 1.04250E+02", " -1         4         NaN"),
      "job.frd:30: expected a value, a finite number, in columns 14 to 25, found \"         NaN\"");
  expect_failure(
      exchange(text, "    2C                             8", "    2C                             9"),
      "job.frd:15: expected 9 records in the block of nodes as its head says, found 8");
  expect_failure(exchange(text, " -1         5    1", " -1         5   99"),
                 "job.frd:17: expected an element type code from 1 to 12, found 99");
  expect_failure("\x1f\x8b\x08 broken",
                 "job.frd:1: cannot be read: the compressed data is damaged or cut off");
  expect_failure("", "job.frd:1: expected the record 9999 at the end, the file is cut off");
  expect_failure(
      std::string("\0\1\2\3\n", 5),
      "job.frd:1: expected the header record 1C of a CalculiX result file in text form, found \"????\"");
}

TEST_F(FmdtoolDamageTest, NamesWhatIsWrongWithTheDeckAndTheNames) {
  expect_one_line(translate({"gone.frd", "--deck", "job.inp"}),
                  "gone.frd: cannot be opened: No such file or directory");
  expect_one_line(translate({"gone.frd"}),
                  "gone.inp: expected the input deck of the job; name another one with --deck");
  expect_one_line(translate({"job.frd", "--deck", "gone.inp"}),
                  "gone.inp: cannot be opened: No such file or directory");
  expect_one_line(
      translate({"job.frd", "--interface-nodes", "NO"}),
      "job.inp: expected a node set of the deck or a file for the interface nodes, found neither of the name "
      "\"NO\" (sets: CORNER, NALL, TOP)");
  write_file("job.inp", exchange(cube_deck(), "*ELEMENT", "*INCLUDE, INPUT=gone.inc\n*ELEMENT"));
  expect_one_line(translate({"job.frd"}), "job.inp:13: expected the included file gone.inc, it is not there");
  write_file("job.inp", exchange(cube_deck(), "*ELEMENT", "*INCLUDE, INPUT=job.inp\n*ELEMENT"));
  expect_one_line(translate({"job.frd"}),
                  "job.inp:13: expected no file that includes itself, found job.inp inside itself");
  write_file("job.inp", cube_deck() + "*STEP\n*STATIC\n*CLOAD\n9, 1, 1.\n*END STEP\n");
  expect_one_line(translate({"job.frd"}), "job.inp:30: expected a node of the deck, found unknown node 9");
  write_file("job.inp", cube_deck() + "*STEP\n*STATIC\n*CLOAD\n8, 1, 1.\n");
  expect_one_line(translate({"job.frd"}), "job.inp:30: expected *END STEP");
  write_file("job.inp", cube_deck());
  expect_one_line(
      translate({"job.frd", "--monitor", "NO"}),
      "job.inp: expected a node set of the deck or a file for the monitor points, found neither of the name "
      "\"NO\" (sets: CORNER, NALL, TOP)");
  EXPECT_EQ(files(), (std::set<std::string>{"tmp", "job.frd", "job.inp"}));
}

TEST_F(FmdtoolDamageTest, RefusesOutputsThatAreNoFileOfTheirOwn) {
  expect_one_line(translate({"job.frd", "-o", "tmp"}),
                  "tmp: expected the name of an output file, found a directory");
  expect_one_line(translate({"job.frd", "-o", "no/such/place.fmd"}),
                  "no/such/place.fmd: the directory of the output does not exist");
  expect_one_line(translate({"job.frd", "-o", "/dev/null"}), "/dev/null: expected a regular file as output");
  expect_one_line(translate({"job.frd", "-o", "job.inp"}),
                  "job.inp: expected an output file that is not an input file");
  EXPECT_EQ(bytes_of("job.inp"), cube_deck());
}

TEST_F(FmdtoolDamageTest, TellsOfATemporaryDirectoryThatIsNotThere) {
  settings.environment["TMPDIR"] = "/no/such/place";
  const Outcome outcome = translate({"job.frd"});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(files(), (std::set<std::string>{"tmp", "job.frd", "job.inp"}));
}

TEST_F(FmdtoolDamageTest, LeavesNoFileWhenTheToolkitRefusesAnOption) {
  write_file("job.fmd", "an older file");
  const Outcome outcome = translate({"job.frd", "--option", "full_str sparse_str"});
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.errors,
            "fmdtool: error: Cannot specify full and sparse stress and strain modes.\n"
            "fmdtool: error: Problem writing version number.\n"
            "fmdtool: error: job.fmd: the dataset was not written\n");
  EXPECT_EQ(files(), (std::set<std::string>{"tmp", "job.frd", "job.inp", "job.fmd"}));
  EXPECT_EQ(bytes_of("job.fmd"), "an older file");
}

// A small limit fails the temporary files of the modes, a larger one the dataset.
TEST_F(FmdtoolDamageTest, SurvivesAFullDisk) {
  write_file("job.fmd", "an older file");
  for (const long limit : {1L, 512L, 1024L, 2048L, 3000L}) {
    settings.file_size_limit = limit;
    const Outcome outcome = translate({"job.frd"});
    EXPECT_EQ(outcome.exit_code, 1) << limit;
    EXPECT_EQ(outcome.output, "");
    EXPECT_NE(outcome.errors, "");
    EXPECT_EQ(files(), (std::set<std::string>{"tmp", "job.frd", "job.inp", "job.fmd"})) << limit;
    EXPECT_EQ(bytes_of("job.fmd"), "an older file");
  }
}

TEST_F(FmdtoolDamageTest, LeavesNothingBehindWhenInterrupted) {
  FrdModel large = cube();
  for (int number = 3; number < 400; ++number) large.modes.push_back({number, number * 1.0});
  write_file("job.frd", frd_text(large));
  int interrupted = 0;
  for (int delay = 0; delay < 120; delay += 8) {
    settings.signal_after_milliseconds = delay;
    const Outcome outcome = translate({"job.frd"});
    EXPECT_TRUE(outcome.exit_code == 0 || outcome.exit_code == 130) << outcome.exit_code;
    std::set<std::string> expected = {"tmp", "job.frd", "job.inp"};
    if (outcome.exit_code == 0) expected.insert("job.fmd");
    const auto found = files();
    if (outcome.exit_code != 0 && found.count("job.fmd") != 0)
      expected.insert("job.fmd");  // it was whole by then
    EXPECT_EQ(found, expected) << delay;
    interrupted += outcome.exit_code == 130 ? 1 : 0;
    std::filesystem::remove("job.fmd");
  }
  EXPECT_GT(interrupted, 0);
}
