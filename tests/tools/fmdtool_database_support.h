// Bodies of the cube in databases, for the tests of the commands that keep bodies there.
#ifndef FMDTOOLKIT_TESTS_FMDTOOL_DATABASE_SUPPORT_H
#define FMDTOOLKIT_TESTS_FMDTOOL_DATABASE_SUPPORT_H

#include <nlohmann/json.hpp>

#include "fmdtoolkit/fmdtoolkit.h"
#include "tools/fmdtool_test_support.h"

namespace fmdtest {

class FmdtoolDatabaseTest : public FmdtoolTest {
 protected:
  FmdtoolDatabaseTest() { write_cube(); }

  // fmdtool store calculix job.frd with these.
  Outcome store(const std::string& database, const std::string& qualifiers,
                std::vector<std::string> arguments = {}) const;
  // The same, which must succeed.
  void expect_stored(const std::string& database, const std::string& qualifiers,
                     const std::vector<std::string>& arguments = {}) const;
  // fmdtool with these must succeed without a word on standard error; what it printed.
  std::string expect_done(const std::vector<std::string>& arguments) const;
  nlohmann::json list(const std::string& database) const;

  // Stores, past the program, what the toolkit makes of the function.
  void store_past_the_program(const char* database, const char* write_options, FmdBody* (*make)()) const;

  // The labels of the bodies, in the order of the list.
  std::vector<std::string> labels(const std::string& database) const;

  // A dataset in XDR encoding with its time of creation, 32 characters of four bytes, blanked out.
  static std::string without_time(const std::string& path);

  // The current directory but for the files of the cube and the directory of temporary files.
  static std::set<std::string> made();
};

}  // namespace fmdtest

#endif
