#include "support/failing_file_system.h"

namespace fmdtest {

FailingFileSystem::FailingFileSystem(long failing_call, int error)
    : failing_call_(failing_call), error_(error) {
  fmd::replace_file_system(this);
}

FailingFileSystem::~FailingFileSystem() {
  fmd::replace_file_system(nullptr);
}

bool FailingFileSystem::fails() {
  if (++calls_ != failing_call_) return false;
  errno = error_;
  return true;
}

int FailingFileSystem::open(const char* path, int flags, mode_t mode) {
  return fails() ? -1 : FileSystem::open(path, flags, mode);
}

int FailingFileSystem::close(int file) {
  // A failing close gives the descriptor back all the same, as the system does.
  const int result = FileSystem::close(file);
  return fails() ? -1 : result;
}

ssize_t FailingFileSystem::pread(int file, void* buffer, std::size_t bytes, off_t offset) {
  return fails() ? -1 : FileSystem::pread(file, buffer, bytes, offset);
}

ssize_t FailingFileSystem::pwrite(int file, const void* buffer, std::size_t bytes, off_t offset) {
  return fails() ? -1 : FileSystem::pwrite(file, buffer, bytes, offset);
}

ssize_t FailingFileSystem::write(int file, const void* buffer, std::size_t bytes) {
  return fails() ? -1 : FileSystem::write(file, buffer, bytes);
}

int FailingFileSystem::fallocate(int file, int mode, off_t offset, off_t bytes) {
  return fails() ? -1 : FileSystem::fallocate(file, mode, offset, bytes);
}

int FailingFileSystem::ftruncate(int file, off_t bytes) {
  return fails() ? -1 : FileSystem::ftruncate(file, bytes);
}

int FailingFileSystem::fdatasync(int file) {
  return fails() ? -1 : FileSystem::fdatasync(file);
}

int FailingFileSystem::fsync(int file) {
  return fails() ? -1 : FileSystem::fsync(file);
}

int FailingFileSystem::linkat(int file, const char* to) {
  return fails() ? -1 : FileSystem::linkat(file, to);
}

int FailingFileSystem::mkstemp(char* path_template) {
  return fails() ? -1 : FileSystem::mkstemp(path_template);
}

}  // namespace fmdtest
