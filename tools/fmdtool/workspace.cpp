#include "workspace.h"

#include <stdlib.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>
#include <string>

#include "supervisor.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

constexpr const char* directory_variable = "KXI_KADCDB_DIR";

fs::path make_directory() {
  std::string name = (fs::temp_directory_path() / "fmdtool-XXXXXX").string();
  const SignalHold hold;
  if (mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error("cannot make the temporary directory " + name + ": " + std::strerror(errno));
  }
  note_leftover(Leftover::directory, name);
  return name;
}

}  // namespace

Workspace::Workspace() : previous_(fs::current_path()), path_(make_directory()) {
  const char* given = std::getenv(directory_variable);
  const fs::path directory = given == nullptr ? path_ : fs::absolute(given);
  setenv(directory_variable, directory.c_str(), 1);
  fs::current_path(path_);
}

Workspace::~Workspace() {
  std::error_code error;
  fs::current_path(previous_, error);
  fs::remove_all(path_, error);
  note_leftover(Leftover::directory, "");
}

}  // namespace fmdtool
