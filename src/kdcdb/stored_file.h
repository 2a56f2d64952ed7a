// A master file as its readers see it: one state of the database, which stays readable as long as this object
// lives, whatever writers do meanwhile.
#ifndef FMDTOOLKIT_KDCDB_STORED_FILE_H
#define FMDTOOLKIT_KDCDB_STORED_FILE_H

#include <sys/types.h>

#include <cstdint>
#include <memory>
#include <vector>

#include "kdcdb/dictionary.h"
#include "kdcdb/kdcdb.h"
#include "kdcdb/master_content.h"

namespace kdcdb {

class StoredFile {
 public:
  // Takes the lock of readers, then reads the newest state that checks; the object given, which may be null,
  // is handed out again where it is that state.
  static Status open(const char* path, std::shared_ptr<const StoredFile> known,
                     std::shared_ptr<const StoredFile>& opened);

  StoredFile() = default;
  StoredFile(const StoredFile&) = delete;
  StoredFile& operator=(const StoredFile&) = delete;
  ~StoredFile();

  // In the order in which they are listed.
  const std::vector<StoredEntry>& entries() const { return entries_; }
  int file() const { return file_; }

 private:
  Status read_newest(const MasterContent& content);
  bool is_state(const MasterContent& content) const;

  int file_ = -1;
  Root root_;
  std::vector<StoredEntry> entries_;
};

}  // namespace kdcdb

#endif
