// A database's master file: made whole or not at all, opened by one writer at a time.
#ifndef FMDTOOLKIT_KDCDB_MASTER_FILE_H
#define FMDTOOLKIT_KDCDB_MASTER_FILE_H

#include <cstdint>
#include <string>

#include "kdcdb/kdcdb.h"
#include "kdcdb/master_writer.h"

namespace kdcdb {

class MasterFile {
 public:
  MasterFile() = default;
  MasterFile(const MasterFile&) = delete;
  MasterFile& operator=(const MasterFile&) = delete;
  ~MasterFile() { close(); }

  // Makes the file under a name that nobody has yet, and locks it. A database that is to last is flushed.
  Status create(const char* path, bool lasting);

  // Opens the file, locks it and checks header, roots and dictionary.
  Status open(const char* path);

  // Goes on with a file that is open and locked still, if the name means it still.
  Status resume(const char* path);

  // Gives the file up as it is: what has not been committed is lost.
  void close();

  MasterWriter& writer() { return writer_; }

 private:
  Status create_unnamed(const char* path, bool lasting, int& error);
  Status create_under_another_name(char* other_name, const char* path, bool lasting);
  Status write_new(bool lasting);
  Status check_name(const char* path);

  int file_ = -1;
  MasterWriter writer_;
};

// The directory that a path names a file in.
std::string directory_of(const std::string& path);

}  // namespace kdcdb

#endif
