// Steps of a deck and the load cases that come of them.
#include <gtest/gtest.h>

#include <filesystem>

#include "calculix/deck_reader.h"
#include "calculix/load_cases.h"
#include "support/session.h"
#include "translators/frd_text.h"

using calculix::LoadCase;
using namespace fmdtest;

namespace {

calculix::Deck read(const std::string& steps) {
  write_file("job.inp", cube_deck() + steps);
  return calculix::read_deck("job.inp");
}

// "node direction value" of each load, nodes by id; in a cube that is the index plus 1.
std::string text_of(const LoadCase& load_case) {
  std::string text;
  for (const auto& load : load_case.loads) {
    char entry[64];
    std::snprintf(entry, sizeof entry, "%s%d %d %g", text.empty() ? "" : ", ", load.node + 1, load.direction,
                  load.value);
    text += entry;
  }
  return text;
}

// The last line of the deck of a cube.
int lines_before() {
  const std::string deck = cube_deck();
  return static_cast<int>(std::count(deck.begin(), deck.end(), '\n'));
}

std::string at_line(int line, const std::string& text) {
  return "job.inp:" + std::to_string(lines_before() + line) + ": " + text;
}

}  // namespace

class DeckStepsTest : public ::testing::Test {
 protected:
  DeckStepsTest() { write_file("job.frd", frd_text(cube())); }

  std::vector<LoadCase> cases(const std::string& steps) {
    const calculix::FrdContents contents = calculix::read_frd("job.frd", nullptr);
    notes.clear();
    return calculix::load_cases_of(read(steps), contents, notes);
  }
  std::string error_of(const std::string& steps) {
    return input_error_of([&] { cases(steps); });
  }

  TemporaryDirectory directory;
  std::vector<calculix::InputError> notes;
};

TEST_F(DeckStepsTest, GivesACaseForEachStaticStepWithLoads) {
  const auto found = cases(
      "*STEP, NAME=Pull\n*STATIC\n1., 1.\n*CLOAD\n3, 1, 2.5\ntop, 2, -1D1\n*END STEP\n"
      "*STEP\n*STATIC\n*CLOAD, OP=NEW\n 8 , 6 , 4\n*END STEP\n"
      "*STEP\n*STATIC\n*CLOAD, OP=NEW\n*END STEP\n");
  ASSERT_EQ(found.size(), 2U);
  EXPECT_EQ(found[0].label, "Step 2: PULL");  // the first step is the frequency analysis
  EXPECT_EQ(text_of(found[0]), "3 1 2.5, 5 2 -10, 6 2 -10, 7 2 -10, 8 2 -10");
  EXPECT_EQ(found[1].label, "Step 3");
  EXPECT_EQ(text_of(found[1]), "8 6 4");
}

TEST_F(DeckStepsTest, AddsWithinAStepAndReplacesWhatEarlierStepsGave) {
  const auto found = cases(
      "*STEP\n*STATIC\n*CLOAD\n1, 1, 2\n1, 1, 3\nCORNER, 1, 4\n2, 3, 1\n*CLOAD, OP=NEW\n1, 1, 1\n*END STEP\n"
      "*STEP\n*STATIC\n*CLOAD, OP=MOD\n1, 1, 7\n*CLOAD\n1, 1, 1\n4, 2, 5\n*END STEP\n"
      "*STEP\n*STATIC\n*CLOAD\n1, 1, 0\n*END STEP\n"
      "*STEP\n*STATIC\n*CLOAD, OP=NEW\n6, 1, 1\n*CLOAD\n7, 1, 1\n*END STEP\n");
  ASSERT_EQ(found.size(), 4U);
  EXPECT_EQ(text_of(found[0]), "1 1 10, 2 3 1");
  EXPECT_EQ(text_of(found[1]), "1 1 8, 2 3 1, 4 2 5");
  EXPECT_EQ(text_of(found[2]), "2 3 1, 4 2 5");
  EXPECT_EQ(text_of(found[3]), "6 1 1, 7 1 1");
}

TEST_F(DeckStepsTest, KeepsLoadsOfOtherStepsForTheStaticOnesBehindThem) {
  const auto found = cases(
      "*NSET, NSET=_ONE\n5\n*STEP\n*FREQUENCY\n1\n*CLOAD\n_one, 3, 9\n*END STEP\n"
      "*STEP\n*STATIC\n*END STEP\n");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(found[0].label, "Step 3");
  EXPECT_EQ(text_of(found[0]), "5 3 9");
  EXPECT_TRUE(cases("*STEP\n*STATIC\n*DLOAD\nEALL, GRAV, 9.81, 0,0,-1\n*END STEP\n").empty());
}

TEST_F(DeckStepsTest, ReadsLoadsOfAnIncludeAndNamesItInErrors) {
  write_file("loads.inc", "1, 1, 1\n77, 1, 1\n");
  EXPECT_EQ(error_of("*STEP\n*STATIC\n*CLOAD\n*INCLUDE, INPUT=loads.inc\n*END STEP\n"),
            "loads.inc:2: expected a node of the deck, found unknown node 77");
}

TEST_F(DeckStepsTest, NotesWhatACaseLacks) {
  const auto found = cases(
      "*STEP\n*STATIC\n*DLOAD\nEALL, GRAV, 9.81, 0,0,-1\n*CLOAD, AMPLITUDE=A1\n1, 5, 1\n"
      "*CLOAD, USER\n1, 1, 1\n*CLOAD, LOAD CASE=2\n2, 1, 1\n*END STEP\n"
      "*STEP\n*FREQUENCY\n1\n*DLOAD\nEALL, GRAV, 9.81, 0,0,-1\n*END STEP\n");
  ASSERT_EQ(found.size(), 1U);
  EXPECT_EQ(text_of(found[0]), "1 5 1");
  const std::pair<int, const char*> expected[] = {
      {3, "loads of *DLOAD are not translated"},
      {5, "the amplitude \"A1\" of *CLOAD is not applied"},
      {7, "loads of *CLOAD with USER are not translated"},
      {9, "loads of *CLOAD that are an imaginary part are not translated"},
      {6, "moments have no part in the modal loads: the results have no rotations"}};
  ASSERT_EQ(notes.size(), std::size(expected));
  for (std::size_t i = 0; i < notes.size(); ++i) {
    EXPECT_EQ(notes[i].text(), expected[i].second);
    EXPECT_EQ(notes[i].line(), lines_before() + expected[i].first);
  }
}

TEST_F(DeckStepsTest, NamesTheLineAndWhatItExpected) {
  const std::string static_step = "*STEP\n*STATIC\n*CLOAD\n";
  const std::string end = "\n*END STEP\n";
  const std::pair<std::string, std::string> wrong[] = {
      {"*CLOAD\n1, 1, 1\n", at_line(1, "expected *CLOAD in a step")},
      {"*STATIC\n", at_line(1, "expected *STATIC in a step")},
      {"*STEP\n*CLOAD, OP=OLD" + end, at_line(2, "expected OP=NEW or OP=MOD of *CLOAD, found \"OLD\"")},
      {static_step + "x1" + end, at_line(4, "expected a direction, found \"\"")},
      {static_step + ", 1, 1" + end, at_line(4, "expected a node id or the name of a node set, found \"\"")},
      {static_step + "1x, 1, 1" + end,
       at_line(4, "expected a node id or the name of a node set, found \"1x\"")},
      {static_step + "1, x, 1" + end, at_line(4, "expected a direction, found \"x\"")},
      {static_step + "1, 0, 1" + end, at_line(4, "expected a direction from 1 to 6, found 0")},
      {static_step + "1, 7, 1" + end, at_line(4, "expected a direction from 1 to 6, found 7")},
      {static_step + "1, 1" + end, at_line(4, "expected a magnitude, a finite number, found \"\"")},
      {static_step + "1, 1, inf" + end, at_line(4, "expected a magnitude, a finite number, found \"inf\"")},
      {static_step + "1, 1, 1.7e308\n1, 1, 1.7e308" + end,
       at_line(5, "expected loads that add up to a finite number")},
      {static_step + "1, 1, 1\n9, 1, 1" + end,
       at_line(5, "expected a node of the deck, found unknown node 9")},
      {static_step + "-1, 1, 1" + end, at_line(4, "expected a node of the deck, found unknown node -1")},
      {static_step + "SIDE, 1, 1" + end,
       at_line(4, "expected a node set of the deck, found unknown set SIDE")},
      {static_step + "1, 1, 1\n", at_line(4, "expected *END STEP")},
      {static_step + "1, 1, 1\n*STEP\n", at_line(5, "expected *END STEP")},
      {"*TRANSFORM\n", at_line(1, "expected the parameter NSET of *TRANSFORM")},
      {"*TRANSFORM, NSET=TOP\n0,1,0,-1,0,0\n" + static_step + "4, 1, 1\n5, 1, 1" + end,
       at_line(7, "expected a load along the global axes, found node 5 in a set of *TRANSFORM")},
      {"*NODE\n20, 3, 3, 3\n" + static_step + "20, 1, 1" + end,
       at_line(6, "expected a node of the results, found node 20 of the deck only")}};
  for (const auto& [steps, message] : wrong) EXPECT_EQ(error_of(steps), message) << steps;
}
