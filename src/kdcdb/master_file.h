// A database's master file: made whole or not at all, opened by one writer at a time.
#ifndef FMDTOOLKIT_KDCDB_MASTER_FILE_H
#define FMDTOOLKIT_KDCDB_MASTER_FILE_H

#include <cstdint>
#include <string>

#include "kdcdb/kdcdb.h"

namespace kdcdb {

// Bytes far beyond any end of file that the locks are taken on.
constexpr std::int64_t kWriterLockByte = std::int64_t{1} << 62;
constexpr std::int64_t kReaderLockByte = kWriterLockByte + 1;

class MasterFile {
 public:
  MasterFile() = default;
  MasterFile(const MasterFile&) = delete;
  MasterFile& operator=(const MasterFile&) = delete;
  ~MasterFile() { close(); }

  // Makes the file under a name that nobody has yet, and locks it. A database that is to last is flushed.
  Status create(const char* path, bool lasting);

  // Opens the file, locks it and checks header and roots.
  Status open(const char* path);

  void close();

 private:
  Status create_unnamed(const char* path, bool lasting, int& error);
  Status create_under_another_name(char* other_name, const char* path, bool lasting);
  Status write_new(bool lasting);
  Status lock();
  Status check(const char* path);
  Status check_roots(std::uint64_t file_id);

  int file_ = -1;
};

// The directory that a path names a file in.
std::string directory_of(const std::string& path);

}  // namespace kdcdb

#endif
