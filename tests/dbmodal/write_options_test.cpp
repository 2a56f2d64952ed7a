// The option text and the version words, row by row.
#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "dbmodal/dbwrite/options.h"
#include "dbmodal/version_word.h"

namespace {

using fmd::choose_version;
using fmd::parse_write_options;
using fmd::WriteOptions;

std::vector<std::string> conflicts(const char* text) {
  const auto choice = choose_version(parse_write_options(text));
  return {choice.conflicts, choice.conflicts + choice.conflict_count};
}

unsigned word(const char* text) {
  return choose_version(parse_write_options(text)).word;
}

TEST(WriteOptions, NoTextIsNoOption) {
  const WriteOptions options = parse_write_options(nullptr);
  EXPECT_FALSE(options.no_ortho || options.sparse_stress || options.invariants || options.empty);
  EXPECT_EQ(options.highest_frequency, 1.0e8);
  EXPECT_EQ(options.lowest_frequency, -1.0);
}

TEST(WriteOptions, NamesAreFoundAnywhereAndUnknownOnesIgnored) {
  const WriteOptions options = parse_write_options("xno_orthox;;MKSlbrf2cm unknown strip_faces");
  EXPECT_TRUE(options.no_ortho);
  EXPECT_TRUE(options.mks);
  EXPECT_TRUE(options.shift_to_center_of_mass);
  EXPECT_TRUE(options.strip_faces);
  EXPECT_FALSE(options.single_precision);
  EXPECT_FALSE(parse_write_options("mks").mks);
}

TEST(WriteOptions, InvarIsFoundInItsLongForms) {
  EXPECT_TRUE(parse_write_options("full_invar").invariants);
  EXPECT_TRUE(parse_write_options("full_invar").full_invariants);
  EXPECT_TRUE(parse_write_options("fast_invar").invariants);
  EXPECT_FALSE(parse_write_options("invar").full_invariants);
}

TEST(WriteOptions, SketchTakesThreeFormsOfAName) {
  EXPECT_EQ(parse_write_options("sketch(\"a) b.txt\")").sketch, "a) b.txt");
  EXPECT_EQ(parse_write_options("x sketch('c d')").sketch, "c d");
  EXPECT_EQ(parse_write_options("sketch(bare.txt) single").sketch, "bare.txt");
  EXPECT_EQ(parse_write_options("sketch(open end").sketch, "open end");
  EXPECT_EQ(parse_write_options("sketch()").sketch, "");
  EXPECT_EQ(parse_write_options("sketch(\"\")").sketch, "\"\"");
  EXPECT_EQ(parse_write_options("sketch").sketch, "");
  EXPECT_EQ(parse_write_options("no_ortho,sketch(").sketch, "");  // found by fuzz_commands
  EXPECT_EQ(parse_write_options("sketch('").sketch, "'");
}

TEST(WriteOptions, CoarsenTakesItsOwnCharactersOnly) {
  EXPECT_EQ(parse_write_options("coarsen(0.5, 30,preserve_str)").coarsen, "0.5, 30,preserve_str");
  EXPECT_EQ(parse_write_options("coarsen(12x)").coarsen, "12");
  EXPECT_EQ(parse_write_options("coarsen(x)").coarsen, "");
}

TEST(WriteOptions, BandEdgesAreNumbers) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  EXPECT_EQ(parse_write_options("lowpass(1000)").highest_frequency, 1000.0);
  EXPECT_EQ(parse_write_options("lowpass( 2.5e3 )").highest_frequency, 2500.0);
  EXPECT_EQ(parse_write_options("highpass(-5e-1)").lowest_frequency, -0.5);
  EXPECT_EQ(parse_write_options("highpass(1-2)").lowest_frequency, 1.0);
  EXPECT_EQ(parse_write_options("highpass(e)").lowest_frequency, 0.0);
  EXPECT_EQ(parse_write_options("highpass()").lowest_frequency, -1.0);
  EXPECT_EQ(parse_write_options("lowpass(1e999)").highest_frequency, kInfinity);
  EXPECT_EQ(parse_write_options("highpass(-1e999)").lowest_frequency, -kInfinity);
  EXPECT_EQ(parse_write_options("lowpass(1e-999)").highest_frequency, 0.0);
}

TEST(VersionWord, FollowsTheTable) {
  EXPECT_EQ(word(nullptr), 0x13CU);
  EXPECT_EQ(word(""), 316U);
  EXPECT_EQ(word("single"), 0x33CU);
  EXPECT_EQ(word("no_xdr"), 0x03CU);
  EXPECT_EQ(word("single,no_xdr"), 0x23CU);
  EXPECT_EQ(word("full_str"), 0x029U);
  EXPECT_EQ(word("full_str single"), 0x033U);
  EXPECT_EQ(word("no_xdr full_str"), 0x028U);
  EXPECT_EQ(word("full_str single no_xdr"), 0x032U);
  EXPECT_EQ(word("82_comp"), 0x014U);
  EXPECT_EQ(word("81_comp"), 0x00AU);
}

TEST(VersionWord, LaterTestsOverwriteIt) {
  EXPECT_EQ(word("82_comp no_xdr"), 20U);
  EXPECT_EQ(word("81_comp 82_comp"), 10U);
  EXPECT_EQ(word("82_comp full_str"), 20U);
  EXPECT_TRUE(conflicts("82_comp full_str no_xdr").empty());
}

TEST(VersionWord, ConflictsAreNamedInOrder) {
  EXPECT_EQ(conflicts("full_str sparse_str"),
            std::vector<std::string>{"Cannot specify full and sparse stress and strain modes."});
  EXPECT_EQ(conflicts("82_comp fast_invar single sparse_str"),
            (std::vector<std::string>{"8.2 compatible FMD cannot contain Invariants",
                                      "8.2 compatible FMD cannot be single precision",
                                      "8.2 compatible FMD cannot have sparse stress or strain modes"}));
  EXPECT_EQ(conflicts("81_comp single"),
            std::vector<std::string>{"8.1 compatible FMD cannot be single precision"});
  EXPECT_EQ(conflicts("81_comp 82_comp full_str sparse_str single invar").size(), 7U);
}

TEST(VersionWord, TellsPrecisionAndEncodingByTheWholeWord) {
  EXPECT_TRUE(fmd::is_single_precision(50));
  EXPECT_TRUE(fmd::is_single_precision(51));
  EXPECT_TRUE(fmd::is_single_precision(0x23C));
  EXPECT_FALSE(fmd::is_single_precision(51 | 0x400));
  EXPECT_TRUE(fmd::is_xdr(31));
  EXPECT_TRUE(fmd::is_xdr(41));
  EXPECT_TRUE(fmd::is_xdr(0x13C));
  EXPECT_FALSE(fmd::is_xdr(41 | 0x400));
  EXPECT_FALSE(fmd::is_xdr(60));
  EXPECT_EQ(fmd::format_level(0x73C), 60);
}

}  // namespace
