#include "output_file.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <stdexcept>

#include "supervisor.h"

namespace fmdtool {

namespace fs = std::filesystem;

// A symbolic link stays one: the file that it names is replaced.
OutputFile::OutputFile(const std::string& name)
    : name_(name), target_(fs::weakly_canonical(fs::absolute(name))) {
  std::error_code error;
  if (fs::path(name).filename().empty() || fs::is_directory(target_, error)) {
    throw std::runtime_error(name_ + ": expected the name of an output file, found a directory");
  }
  if (fs::exists(target_, error) && !fs::is_regular_file(target_, error)) {
    throw std::runtime_error(name_ + ": expected a regular file as output");
  }
  if (!fs::is_directory(target_.parent_path(), error)) {
    throw std::runtime_error(name_ + ": the directory of the output does not exist");
  }
}

OutputFile::~OutputFile() {
  if (temporary_.empty()) return;
  ::unlink(temporary_.c_str());
  note_leftover(Leftover::output, "");
}

const std::string& OutputFile::make_temporary() {
  std::string name = (target_.parent_path() / ("." + target_.filename().string() + ".XXXXXX")).string();
  const SignalHold hold;
  const int file = ::mkstemp(name.data());
  if (file < 0) {
    throw std::runtime_error(name_ + ": cannot write in this directory: " + std::strerror(errno));
  }
  temporary_ = name;
  note_leftover(Leftover::output, temporary_);
  const mode_t mask = ::umask(0);
  ::umask(mask);
  ::fchmod(file, 0666 & ~mask);
  ::close(file);
  return temporary_;
}

void OutputFile::commit() {
  if (::rename(temporary_.c_str(), target_.c_str()) != 0) {
    throw std::runtime_error(name_ + ": cannot be replaced: " + std::strerror(errno));
  }
  temporary_.clear();
  note_leftover(Leftover::output, "");
}

}  // namespace fmdtool
