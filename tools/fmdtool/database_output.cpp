#include "database_output.h"

#include <fcntl.h>
#include <stdlib.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include "supervisor.h"
#include "write_options.h"

namespace fmdtool {

namespace fs = std::filesystem;

namespace {

constexpr const char* master_ending = ".MASTER";

// The new name outlives a crash of the machine.
void flush_directory(const fs::path& directory) {
  const int file = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (file < 0) return;
  ::fsync(file);
  ::close(file);
}

}  // namespace

DatabaseOutput::DatabaseOutput(const std::string& name)
    : name_(name), target_(fs::weakly_canonical(fs::absolute(name))) {
  std::error_code error;
  if (target_.extension() != master_ending || target_.stem().empty()) {
    throw std::runtime_error(name_ + ": expected a database, NAME.MASTER");
  }
  if (fs::exists(target_, error) && !fs::is_regular_file(target_, error)) {
    throw std::runtime_error(name_ + ": expected a database, found what is no regular file");
  }
  if (!fs::is_directory(target_.parent_path(), error)) {
    throw std::runtime_error(name_ + ": the directory of the output does not exist");
  }
}

DatabaseOutput::~DatabaseOutput() {
  if (written_.empty()) return;
  std::error_code error;
  for (const fs::path& path : {directory_, set_}) {
    if (!path.empty()) fs::remove_all(path, error);
  }
  note_leftover(Leftover::output, "");
}

void DatabaseOutput::make_directory() {
  std::string name = (target_.parent_path() / ("." + target_.filename().string() + ".XXXXXX")).string();
  const SignalHold hold;
  if (::mkdtemp(name.data()) == nullptr) {
    throw std::runtime_error(name_ + ": cannot write in this directory: " + std::strerror(errno));
  }
  directory_ = name;
  note_leftover(Leftover::output, name);
}

void DatabaseOutput::prepare() {
  if (!written_.empty()) return;
  std::error_code error;
  if (fs::exists(target_, error)) {
    fs::path set = target_;
    set.replace_extension(".DBFMD");
    if (!fs::exists(set, error)) set_ = set;
    note_leftover(Leftover::output, set_.string());
    written_ = target_;
    return;
  }
  make_directory();
  written_ = directory_ / target_.filename();
}

void DatabaseOutput::write(FmdBody* body, const Qualifiers& qualifiers) {
  refuse_unreadable(FMD_GetMonitorPointCount(body), true);
  prepare();
  std::string path = written_.string();
  std::string text = as_text(qualifiers);
  if (FMD_write_DB(body, path.data(), text.data()) == 0) {
    throw std::runtime_error(name_ + ": the body was not stored");
  }
}

void DatabaseOutput::commit() {
  if (directory_.empty()) return;
  if (::link(written_.c_str(), target_.c_str()) != 0) {
    throw std::runtime_error(name_ + ": cannot be made: " + std::strerror(errno));
  }
  flush_directory(target_.parent_path());
}

}  // namespace fmdtool
