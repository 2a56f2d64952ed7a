// A test fixture with a database session in a temporary directory of its own.
#ifndef FMDTOOLKIT_TESTS_SESSION_H
#define FMDTOOLKIT_TESTS_SESSION_H

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "support/message_log.h"

namespace fmdtest {

// An empty directory that is the current one as long as the object lives, and is removed after it.
class TemporaryDirectory {
 public:
  TemporaryDirectory();
  ~TemporaryDirectory();
  TemporaryDirectory(const TemporaryDirectory&) = delete;
  TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
  std::filesystem::path previous_;
};

// Sets an environment variable for a scope; a null value unsets it.
class EnvironmentVariable {
 public:
  EnvironmentVariable(std::string name, const char* value);
  ~EnvironmentVariable();
  EnvironmentVariable(const EnvironmentVariable&) = delete;
  EnvironmentVariable& operator=(const EnvironmentVariable&) = delete;

 private:
  std::string name_;
  std::string previous_;
  bool was_set_;
};

// Directory, messages, KXI_KADCDB_DIR set, KXI_FMDWRITE_OPTIONS and FMD_MAX_MODE_MEMORY unset; ends the
// session after the test.
class SessionTest : public ::testing::Test {
 protected:
  void TearDown() override;

  TemporaryDirectory directory;
  MessageLog log;
  EnvironmentVariable database_directory{"KXI_KADCDB_DIR", directory.path().c_str()};
  EnvironmentVariable write_options{"KXI_FMDWRITE_OPTIONS", nullptr};
  EnvironmentVariable mode_memory{"FMD_MAX_MODE_MEMORY", nullptr};
};

}  // namespace fmdtest

#endif
