// The one object under all system calls on files: the store and the dataset writer ask it, tests replace it
// to fail the n-th call, to record a run or to play a crash.
//
// Each member is the system call of its name, with its results and errno.
#ifndef FMDTOOLKIT_SYSTEM_FILE_SYSTEM_H
#define FMDTOOLKIT_SYSTEM_FILE_SYSTEM_H

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>

namespace fmd {

class FileSystem {
 public:
  FileSystem() = default;
  FileSystem(const FileSystem&) = delete;
  FileSystem& operator=(const FileSystem&) = delete;
  virtual ~FileSystem() = default;

  virtual int open(const char* path, int flags, mode_t mode);
  virtual int close(int file);
  virtual ssize_t pread(int file, void* buffer, std::size_t bytes, off_t offset);
  virtual ssize_t pwrite(int file, const void* buffer, std::size_t bytes, off_t offset);
  virtual ssize_t write(int file, const void* buffer, std::size_t bytes);
  virtual int fallocate(int file, int mode, off_t offset, off_t bytes);
  virtual int ftruncate(int file, off_t bytes);
  virtual int fdatasync(int file);
  virtual int fsync(int file);
  virtual int fstat(int file, struct stat* status);
  virtual int stat(const char* path, struct stat* status);
  virtual int access(const char* path, int mode);
  virtual int unlink(const char* path);
  virtual int link(const char* from, const char* to);
  virtual int linkat(int file, const char* to);              // gives an unnamed file a name
  virtual int rename_new(const char* from, const char* to);  // fails where there is a file of the new name
  virtual int mkstemp(char* path_template);
  virtual int lock(int file, int command, struct flock* range);  // open-file-description locks
  virtual char* realpath(const char* path, char* resolved);
};

FileSystem& file_system();

// Null brings the system's own calls back.
void replace_file_system(FileSystem* replacement);

// Writes all bytes at the offset, or at the file's end of writing, through short writes and interruptions.
bool write_all_at(int file, const void* buffer, std::size_t bytes, off_t offset);
bool write_all(int file, const void* buffer, std::size_t bytes);

// Reads all bytes; false also where the file ends before.
bool read_all_at(int file, void* buffer, std::size_t bytes, off_t offset);

}  // namespace fmd

#endif
