#include "support/session.h"

#include <cstdlib>
#include <system_error>

#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "system/file_system.h"

namespace fmdtest {

TemporaryDirectory::TemporaryDirectory() : previous_(std::filesystem::current_path()) {
  std::string name = (std::filesystem::temp_directory_path() / "fmdtest-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::system_error(errno, std::generic_category(), name);
  path_ = name;
  std::filesystem::current_path(path_);
}

TemporaryDirectory::~TemporaryDirectory() {
  std::error_code ignored;
  std::filesystem::current_path(previous_, ignored);
  std::filesystem::remove_all(path_, ignored);
}

EnvironmentVariable::EnvironmentVariable(std::string name, const char* value) : name_(std::move(name)) {
  const char* previous = std::getenv(name_.c_str());
  was_set_ = previous != nullptr;
  if (was_set_) previous_ = previous;
  if (value != nullptr) {
    setenv(name_.c_str(), value, 1);
  } else {
    unsetenv(name_.c_str());
  }
}

EnvironmentVariable::~EnvironmentVariable() {
  if (was_set_) {
    setenv(name_.c_str(), previous_.c_str(), 1);
  } else {
    unsetenv(name_.c_str());
  }
}

void SessionTest::TearDown() {
  fmd::fail_allocation(0);
  fmd::replace_file_system(nullptr);
  FMD_Terminate();
}

}  // namespace fmdtest
