// Records that end before they should, at every word of every block: a message or a body, never a crash.
#include <gtest/gtest.h>

#include <map>

#include "dbmodal/read_fixture.h"

namespace fmdtest {

namespace {

// What is said of a record that ends too early, by the number of its block. Units and what is read on demand
// say nothing.
const std::map<int, std::string> kProblems = {
    {1, "Not a valid FMD format."},
    {2, "Problem reading Header information"},
    {3, "Problem reading FMD table of contents."},
    {4, "Problem reading Node Coordinates Data"},
    {5, "Problem when reading old style element block"},
    {6, "Problem reading Global Body Properties"},
    {7, "Problem reading Eigenvalue Data"},
    {8, "Problem encountered while caching Mode shape Data"},
    {9, "Problem reading Nodal Mass information"},
    {10, "Problem reading Nodal Inertia information"},
    {12, "Problem reading Generalized Stiffness information"},
    {13, "Problem reading Generalized Mass information"},
    {14, "Problem reading Element Faces"},
    {15, "Problem reading Generalized Damping information"},
    {16, "Problem when reading Mode Shape Transformation"},
    {17, "Problem when reading Interface Nodes"},
    {18, "Problem when reading Modal Stress info"},
    {27, "Problem when reading Modal Preloads Block"},
    {28, "Problem when reading Modal Loads Block"},
    {29, "Problem when reading Modal Strain info"},
    {30, "Problem when reading Modal Statistics Block"},
    {31, "Problem when reading Pre-Stress Block"},
    {32, "Problem when reading Pre-Strain Block"},
    {33, "Problem when reading Monitor Point Block"},
    {34, "Problem when reading Matrix Operator Block"},
    {35, "Problem when reading Modal Load Nodal Block"},
};

std::string problem_of(int number, std::size_t words) {
  if (words == 0 && number == 31) return "Problem occurred while reading Pre-Stress info";
  if (words == 0 && number == 32) return "Problem occurred while reading Pre-Strain info";
  const auto found = kProblems.find(number);
  return found == kProblems.end() ? "" : found->second;
}

// Vectors are not read, only the word in front of each.
bool is_enough(const Datablock& whole, const ComposedRecord& record, std::size_t words) {
  if (record.mode_places.empty()) return problem_of(record.number, 0).empty();
  return words >= record.mode_places.back() + (has_mode_word(whole.level(), record.number) ? 1 : 0);
}

struct Cut {
  int number;
  std::size_t words;
  bool is_read;
};

class ReadTruncated : public ReadTest, public testing::WithParamInterface<unsigned> {
 protected:
  void cut_at_every_word(const Datablock& whole) {
    for (const ComposedRecord& record : whole.records) {
      for (std::size_t words = 0; words < record.words.size(); ++words) {
        datablocks.push_back(whole);
        datablocks.back().record(record.number).words.resize(words);
        cuts.push_back({record.number, words, is_enough(whole, record, words)});
      }
    }
  }

  void expect_cut(int index, const Cut& cut) {
    SCOPED_TRACE("block " + std::to_string(cut.number) + " of " + std::to_string(cut.words) + " words");
    FmdBody* const body = open(index);
    EXPECT_EQ(body != nullptr, cut.is_read);
    if (cut.is_read) {
      EXPECT_EQ(log.errors, Strings{});
      contents_of(body);
      FMD_UnLink(body);
    } else {
      EXPECT_EQ(log.errors, Strings{problem_of(cut.number, cut.words)});
    }
  }

  std::vector<Datablock> datablocks;
  std::vector<Cut> cuts;
};

TEST_P(ReadTruncated, EndsInTheMessageOfItsBlock) {
  Datablock whole = whole_datablock(GetParam());
  whole.fix_summary();
  cut_at_every_word(whole);
  Datablock old = bare_datablock(GetParam());
  old.block(5).ints({3, 2, 0, 2, 2, 1, 1, 3}).ints({0, 0, 30, 10, 0, 0, 10, 40, 0, 0, 20, 40, 30});
  old.fix_summary();
  cut_at_every_word(old);
  ASSERT_GT(cuts.size(), 800U);
  store(datablocks);
  for (std::size_t i = 0; i < cuts.size() && !HasFailure(); ++i) expect_cut(static_cast<int>(i) + 1, cuts[i]);
}

INSTANTIATE_TEST_SUITE_P(Of, ReadTruncated,
                         testing::Values(60 | kTableBit, 40 | kTableBit, 60U, 60 | 0x200 | kTableBit));

class ReadDamaged : public ReadTest {
 protected:
  // What can be read is listed, and reduced where what was damaged counts for that; what cannot has said why.
  void open_all(const std::vector<Datablock>& damaged, bool reduces) {
    store(damaged);
    for (std::size_t i = 0; i < damaged.size(); ++i) {
      FmdBody* const body = open(static_cast<int>(i) + 1);
      EXPECT_TRUE(body != nullptr || !log.errors.empty());
      ++(body != nullptr ? read_count : refused_count);
      if (body == nullptr) continue;
      contents_of(body);
      if (reduces) FMD_RemoveInternalGeometry(body);
      FMD_UnLink(body);
    }
  }

  int read_count = 0;
  int refused_count = 0;
};

TEST_F(ReadDamaged, EveryWordOfEveryBlockMayHoldAnything) {
  // Texts are long, and one word of them is as good as another.
  constexpr std::size_t kWords = 60;
  const Datablock whole = whole_datablock(60 | kTableBit);
  for (const ComposedRecord& record : whole.records) {
    if (record.number <= 3) continue;
    std::vector<Datablock> damaged;
    for (std::size_t word = 0; word < record.words.size() && word < kWords; ++word) {
      for (const int value : {-1, 0x7FFFFFFF, 3}) {
        damaged.push_back(whole);
        damaged.back().record(record.number).words[word] = value;
      }
    }
    const int number = record.number;
    open_all(damaged, number == 14 || number == 17 || number == 31 || number == 35);
  }
  EXPECT_GT(read_count, 500);
  EXPECT_GT(refused_count, 100);
}

// The last record is the table itself, which the trailer leads to.
TEST_F(ReadDamaged, AMissingTableIsNone) {
  Datablock without = bare_datablock(60);
  without.records[0].words[0] = 60 | kTableBit;
  expect_failure(without, {"Problem reading FMD table of contents."});
}

// More modes than the table has places for.
TEST_F(ReadDamaged, ATrailerOfOtherModes) {
  for (const int modes : {1, 0}) {
    Datablock other = bare_datablock();
    add_vectors(other, 8, kComposedNodes);
    other.trailer_modes = modes;
    expect_failure(other, {"Problem encountered while caching Mode shape Data"});
  }
}

// A block may stand in the summary that the table knows no place of.
TEST_F(ReadDamaged, ABlockWithoutAPlace) {
  for (int number = 4; number <= 35; ++number) {
    Datablock absent = bare_datablock();
    absent.summary[static_cast<std::size_t>(summary_byte_of(number))] = 1;
    FmdBody* const body = read(absent);
    EXPECT_TRUE(body != nullptr || !log.errors.empty()) << number;
    if (body != nullptr) contents_of(body);
  }
}

}  // namespace

}  // namespace fmdtest
