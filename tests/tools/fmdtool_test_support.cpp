#include "tools/fmdtool_test_support.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "translators/frd_text.h"

namespace fmdtest {

namespace fs = std::filesystem;

FmdtoolTest::FmdtoolTest() {
  const fs::path temporary = directory.path() / "tmp";
  fs::create_directory(temporary);
  settings.environment = {{"TMPDIR", temporary.string()}};
}

Outcome FmdtoolTest::run(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), FMDTOOL);
  return run_program(arguments, settings);
}

Outcome FmdtoolTest::translate(std::vector<std::string> arguments) const {
  arguments.insert(arguments.begin(), {"translate", "calculix"});
  return run(arguments);
}

void FmdtoolTest::write_cube() {
  write_file("job.frd", frd_text(cube()));
  write_file("job.inp", cube_deck());
}

std::set<std::string> FmdtoolTest::files() {
  std::set<std::string> names;
  for (const auto& entry : fs::recursive_directory_iterator(fs::current_path())) {
    names.insert(fs::relative(entry.path()).string());
  }
  return names;
}

std::string FmdtoolTest::bytes_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void expect_one_line(const Outcome& outcome, const std::string& line) {
  EXPECT_EQ(outcome.exit_code, 1);
  EXPECT_EQ(outcome.output, "");
  EXPECT_EQ(outcome.errors, "fmdtool: error: " + line + "\n");
}

}  // namespace fmdtest
