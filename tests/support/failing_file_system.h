// A file system whose n-th writing or opening call fails.
#ifndef FMDTOOLKIT_TESTS_FAILING_FILE_SYSTEM_H
#define FMDTOOLKIT_TESTS_FAILING_FILE_SYSTEM_H

#include <cerrno>

#include "system/file_system.h"

namespace fmdtest {

// Installs itself for its lifetime. Calls that can fail for want of space, permission or a sound disk are
// counted from 1; the n-th fails with the error given. 0 fails none and only counts.
class FailingFileSystem : public fmd::FileSystem {
 public:
  explicit FailingFileSystem(long failing_call = 0, int error = ENOSPC);
  ~FailingFileSystem() override;

  long calls() const { return calls_; }
  bool has_failed() const { return failing_call_ > 0 && calls_ >= failing_call_; }

  int open(const char* path, int flags, mode_t mode) override;
  int close(int file) override;
  ssize_t pread(int file, void* buffer, std::size_t bytes, off_t offset) override;
  ssize_t pwrite(int file, const void* buffer, std::size_t bytes, off_t offset) override;
  ssize_t write(int file, const void* buffer, std::size_t bytes) override;
  int fallocate(int file, int mode, off_t offset, off_t bytes) override;
  int ftruncate(int file, off_t bytes) override;
  int fdatasync(int file) override;
  int fsync(int file) override;
  int linkat(int file, const char* to) override;
  int mkstemp(char* path_template) override;

 private:
  bool fails();

  long failing_call_;
  int error_;
  long calls_ = 0;
};

}  // namespace fmdtest

#endif
