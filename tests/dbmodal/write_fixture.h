// Writes bodies under options and reads the files back with a reader that is not the library's.
#ifndef FMDTOOLKIT_TESTS_WRITE_FIXTURE_H
#define FMDTOOLKIT_TESTS_WRITE_FIXTURE_H

#include <cstdlib>
#include <filesystem>
#include <ostream>
#include <string>
#include <vector>

#include "dataset_reader/dataset_reader.h"
#include "support/sample_body.h"
#include "support/session.h"

namespace fmdtest {

using dataset_reader::Dataset;
using Strings = std::vector<std::string>;

// What a set of options makes of the version word, written down by hand.
struct WordCase {
  const char* options;
  unsigned word;
  bool xdr;
  bool single;
};

inline const std::vector<WordCase> kWordCases = {
    {"", 0x13C, true, false},
    {"single", 0x33C, true, true},
    {"no_xdr", 0x03C, false, false},
    {"single no_xdr", 0x23C, false, true},
    {"full_str", 41, true, false},
    {"full_str single", 51, true, true},
    {"full_str no_xdr", 40, false, false},
    {"full_str single no_xdr", 50, false, true},
    {"82_comp", 20, false, false},
    {"81_comp", 10, false, false},
};

inline std::string name_of(const WordCase& word) {
  return "Word" + std::to_string(word.word);
}

inline void PrintTo(const WordCase& word, std::ostream* out) {
  *out << '"' << word.options << '"';
}

class WriteTest : public SessionTest {
 protected:
  // Writes to the path; the messages of the call alone stay in the log.
  int write(FmdBody* body, const std::string& options = "", std::string file = "out.fmd") {
    setenv("KXI_FMDWRITE_OPTIONS", options.c_str(), 1);
    log.clear();
    return FMD_write_FMD(body, file.data());
  }

  // Writes what must succeed and reads it back.
  Dataset written(FmdBody* body, const std::string& options = "") {
    EXPECT_EQ(write(body, options), 1) << options;
    EXPECT_EQ(log.errors, Strings{}) << options;
    return dataset_reader::read_dataset_file("out.fmd");
  }

  // A write that must fail with these errors and leave no file.
  void expect_failure(FmdBody* body, const std::string& options, const Strings& errors) {
    EXPECT_EQ(write(body, options), 0) << options;
    EXPECT_EQ(log.errors, errors) << options;
    EXPECT_FALSE(std::filesystem::exists("out.fmd")) << options;
  }
};

}  // namespace fmdtest

#endif
