// Whatever happens to the input, the answer is a model or an error with a place, never a crash.
#include <gtest/gtest.h>

#include <random>

#include "calculix/modal_rows.h"
#include "calculix/translate.h"
#include "support/session.h"
#include "translators/frd_text.h"

using namespace fmdtest;

namespace {

// 1 for a model, 0 for an error that tells file and expectation.
int outcome(const std::string& frd, const std::string& deck) {
  write_file("job.frd", frd);
  write_file("job.inp", deck);
  calculix::Job job;
  job.results = "job.frd";
  job.deck = "job.inp";
  job.interface_nodes = {"TOP"};
  job.monitor_nodes = {"CORNER"};
  try {
    const calculix::Model model = calculix::read_model(job, nullptr);
    calculix::ModalRows rows(model);
    calculix::read_mode_vectors(
        job.results, model.contents, [&](const calculix::ModeVector& vector) { rows.take(vector); }, nullptr);
    return 1;
  } catch (const calculix::InputError& error) {
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    EXPECT_TRUE(error.file() == "job.frd" || error.file() == "job.inp") << error.what();
    EXPECT_GE(error.text().size(), 10U) << error.what();
    return 0;
  }
}

std::vector<std::size_t> line_starts(const std::string& text) {
  std::vector<std::size_t> starts = {0};
  for (std::size_t i = 0; i + 1 < text.size(); ++i) {
    if (text[i] == '\n') starts.push_back(i + 1);
  }
  return starts;
}

}  // namespace

class DamageTest : public ::testing::Test {
 protected:
  TemporaryDirectory directory;
  const std::string frd = frd_text(cube());
  const std::string deck = cube_deck() +
                           "*STEP, NAME=PULL\n*STATIC\n*CLOAD\n3, 1, 2.5\nTOP, 2, -1.\n*END STEP\n"
                           "*STEP\n*STATIC\n*CLOAD, OP=NEW\n1, 6, 4\n*END STEP\n";
};

TEST_F(DamageTest, PrefixesOfTheResultsAreErrors) {
  ASSERT_EQ(outcome(frd, deck), 1);
  const std::size_t end_record = frd.find(" 9999") + 5;
  for (std::size_t length = 0; length < end_record; length += 7) {
    ASSERT_EQ(outcome(frd.substr(0, length), deck), 0) << length;
  }
}

TEST_F(DamageTest, EveryPrefixOfTheDeckIsSurvived) {
  for (std::size_t length = 0; length < deck.size(); ++length) outcome(frd, deck.substr(0, length));
}

TEST_F(DamageTest, EveryMissingAndEveryRepeatedLineIsSurvived) {
  for (const bool of_results : {true, false}) {
    const std::string& text = of_results ? frd : deck;
    const auto starts = line_starts(text);
    for (std::size_t i = 0; i < starts.size(); ++i) {
      const std::size_t end = i + 1 < starts.size() ? starts[i + 1] : text.size();
      const std::string without = text.substr(0, starts[i]) + text.substr(end);
      const std::string twice = text.substr(0, end) + text.substr(starts[i]);
      outcome(of_results ? without : frd, of_results ? deck : without);
      outcome(of_results ? twice : frd, of_results ? deck : twice);
    }
  }
}

TEST_F(DamageTest, EveryCutLineOfTheResultsIsSurvived) {
  const auto starts = line_starts(frd);
  for (std::size_t i = 0; i + 1 < starts.size(); ++i) {
    for (std::size_t keep = 0; starts[i] + keep + 1 < starts[i + 1]; keep += 11) {
      outcome(frd.substr(0, starts[i] + keep) + "\n" + frd.substr(starts[i + 1]), deck);
    }
  }
}

TEST_F(DamageTest, ChangedBytesAreSurvived) {
  std::mt19937 random(7);
  const std::string likely = "0123456789 -+.,*=ENaGI\n\t\r";
  for (int round = 0; round < 2000; ++round) {
    std::string damaged_frd = frd;
    std::string damaged_deck = deck;
    std::string& text = round % 3 == 0 ? damaged_deck : damaged_frd;
    const int changes = 1 + round % 4;
    for (int i = 0; i < changes; ++i) {
      const bool any_byte = random() % 4 == 0;
      text[random() % text.size()] =
          any_byte ? static_cast<char>(random() % 256) : likely[random() % likely.size()];
    }
    outcome(damaged_frd, damaged_deck);
  }
}
