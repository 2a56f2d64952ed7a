// A file system in memory: one directory, whose files tests look into, cut and flip, and whose history they
// replay as a power cut would leave it.
#ifndef FMDTOOLKIT_TESTS_MEMORY_DISK_H
#define FMDTOOLKIT_TESTS_MEMORY_DISK_H

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "system/file_system.h"

namespace fmdtest {

using FileBytes = std::vector<unsigned char>;

// What happened to a file or to the directory. A sync makes all before it on the same file last; the
// directory is file 0.
struct DiskEvent {
  enum class Kind { kWrite, kResize, kSync, kLink, kUnlink };
  Kind kind;
  int file;
  std::int64_t offset;  // of a write; the length of a resize
  FileBytes bytes;
  std::string name;  // kLink: the file's, kUnlink
};

class MemoryDisk : public fmd::FileSystem {
 public:
  static constexpr const char* kDirectory = "/disk";

  // Installs itself for its lifetime; several may be alive, the last installed counts.
  MemoryDisk();
  ~MemoryDisk() override;
  void install() { fmd::replace_file_system(this); }

  static std::string path(const std::string& name) { return std::string(kDirectory) + '/' + name; }
  bool has(const std::string& name) const { return names_.count(path(name)) != 0; }
  FileBytes& bytes(const std::string& name) { return files_[names_.at(path(name))]; }
  std::vector<std::string> names() const;
  void put(const std::string& name, FileBytes bytes);
  std::size_t open_files() const { return open_.size(); }

  // From here on, what happens is written down.
  void record();
  const std::vector<DiskEvent>& events() const { return events_; }

  // The disk as it was when recording began. Only names and bytes are copied.
  std::unique_ptr<MemoryDisk> before() const;

  // Applies one event of another disk's record, in part where fewer bytes are asked for.
  void apply(const DiskEvent& event, std::size_t bytes = SIZE_MAX);

  // Called before each call that can fail for the disk's sake; an errno other than 0 fails it.
  std::function<int(const char* call)> fault;

  // Bytes that all files together may take: a write that meets the limit is cut short there.
  std::size_t capacity = SIZE_MAX;
  std::size_t used() const;

  int open(const char* path, int flags, mode_t mode) override;
  int close(int file) override;
  ssize_t pread(int file, void* buffer, std::size_t bytes, off_t offset) override;
  ssize_t pwrite(int file, const void* buffer, std::size_t bytes, off_t offset) override;
  int fallocate(int file, int mode, off_t offset, off_t bytes) override;
  int ftruncate(int file, off_t bytes) override;
  int fdatasync(int file) override;
  int fsync(int file) override;
  int fstat(int file, struct stat* status) override;
  int stat(const char* path, struct stat* status) override;
  int unlink(const char* path) override;
  int link(const char* from, const char* to) override;
  int linkat(int file, const char* to) override;
  int rename_new(const char* from, const char* to) override;
  int mkstemp(char* path_template) override;
  int lock(int file, int command, struct flock* range) override;
  char* realpath(const char* path, char* resolved) override;

 private:
  int fail(int error);
  bool fails(const char* call);
  int file_of(int descriptor) const;
  int new_descriptor(int file);
  int add_name(const std::string& name, int file);
  void note(DiskEvent event);
  void resize(int file, std::size_t bytes);

  std::map<int, FileBytes> files_;    // by number, from 1
  std::map<std::string, int> names_;  // by path
  std::map<int, int> open_;           // descriptor to file; the directory is 0
  std::map<std::pair<int, std::int64_t>, std::map<int, short>> locks_;  // file, byte: descriptor and kind
  int next_file_ = 1;
  bool recording_ = false;
  std::map<int, FileBytes> first_files_;
  std::map<std::string, int> first_names_;
  std::vector<DiskEvent> events_;
};

}  // namespace fmdtest

#endif
