#include "system/file_system.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>

namespace fmd {

int FileSystem::open(const char* path, int flags, mode_t mode) {
  return ::open(path, flags | O_CLOEXEC, mode);
}
int FileSystem::close(int file) {
  return ::close(file);
}
ssize_t FileSystem::pread(int file, void* buffer, std::size_t bytes, off_t offset) {
  return ::pread(file, buffer, bytes, offset);
}
ssize_t FileSystem::pwrite(int file, const void* buffer, std::size_t bytes, off_t offset) {
  return ::pwrite(file, buffer, bytes, offset);
}
ssize_t FileSystem::write(int file, const void* buffer, std::size_t bytes) {
  return ::write(file, buffer, bytes);
}
int FileSystem::fallocate(int file, int mode, off_t offset, off_t bytes) {
  return ::fallocate(file, mode, offset, bytes);
}
int FileSystem::ftruncate(int file, off_t bytes) {
  return ::ftruncate(file, bytes);
}
int FileSystem::fdatasync(int file) {
  return ::fdatasync(file);
}
int FileSystem::fsync(int file) {
  return ::fsync(file);
}
int FileSystem::fstat(int file, struct stat* status) {
  return ::fstat(file, status);
}
int FileSystem::stat(const char* path, struct stat* status) {
  return ::stat(path, status);
}
int FileSystem::access(const char* path, int mode) {
  return ::access(path, mode);
}
int FileSystem::unlink(const char* path) {
  return ::unlink(path);
}
int FileSystem::link(const char* from, const char* to) {
  return ::link(from, to);
}
int FileSystem::linkat(int file, const char* to) {
  char from[64];
  std::snprintf(from, sizeof from, "/proc/self/fd/%d", file);
  return ::linkat(AT_FDCWD, from, AT_FDCWD, to, AT_SYMLINK_FOLLOW);
}
int FileSystem::rename_new(const char* from, const char* to) {
  return ::renameat2(AT_FDCWD, from, AT_FDCWD, to, RENAME_NOREPLACE);
}
int FileSystem::mkstemp(char* path_template) {
  return ::mkostemp(path_template, O_CLOEXEC);
}
int FileSystem::lock(int file, int command, struct flock* range) {
  return ::fcntl(file, command, range);
}
char* FileSystem::realpath(const char* path, char* resolved) {
  return ::realpath(path, resolved);
}

namespace {
FileSystem own;
FileSystem* current = &own;
}  // namespace

FileSystem& file_system() {
  return *current;
}

void replace_file_system(FileSystem* replacement) {
  current = replacement == nullptr ? &own : replacement;
}

bool write_all_at(int file, const void* buffer, std::size_t bytes, off_t offset) {
  const char* from = static_cast<const char*>(buffer);
  while (bytes > 0) {
    const ssize_t written = file_system().pwrite(file, from, bytes, offset);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    from += written;
    offset += written;
    bytes -= static_cast<std::size_t>(written);
  }
  return true;
}

bool write_all(int file, const void* buffer, std::size_t bytes) {
  const char* from = static_cast<const char*>(buffer);
  while (bytes > 0) {
    const ssize_t written = file_system().write(file, from, bytes);
    if (written < 0 && errno == EINTR) continue;
    if (written <= 0) return false;
    from += written;
    bytes -= static_cast<std::size_t>(written);
  }
  return true;
}

bool read_all_at(int file, void* buffer, std::size_t bytes, off_t offset) {
  char* to = static_cast<char*>(buffer);
  while (bytes > 0) {
    const ssize_t got = file_system().pread(file, to, bytes, offset);
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    to += got;
    offset += got;
    bytes -= static_cast<std::size_t>(got);
  }
  return true;
}

}  // namespace fmd
