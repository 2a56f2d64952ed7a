// A directory of its own for each test of the program: the current one, and beside it one for temporary
// files.
#ifndef FMDTOOLKIT_TESTS_FMDTOOL_TEST_SUPPORT_H
#define FMDTOOLKIT_TESTS_FMDTOOL_TEST_SUPPORT_H

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

#include "support/session.h"
#include "tools/run_program.h"

namespace fmdtest {

class FmdtoolTest : public ::testing::Test {
 protected:
  FmdtoolTest();

  // fmdtool with these arguments.
  Outcome run(std::vector<std::string> arguments) const;
  // fmdtool translate calculix with these.
  Outcome translate(std::vector<std::string> arguments) const;
  // A cube as job.frd and job.inp in the current directory.
  static void write_cube();

  // All names below the current directory, that of temporary files among them, and none that is left there.
  static std::set<std::string> files();

  static std::string bytes_of(const std::string& path);

  TemporaryDirectory directory;
  RunSettings settings;
};

// Expects failure with one line of errors, this one, and nothing else on either channel.
void expect_one_line(const Outcome& outcome, const std::string& line);

}  // namespace fmdtest

#endif
