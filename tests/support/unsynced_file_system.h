// A file system that does not wait for the disk, for tests that store many databases and pull no plug.
#ifndef FMDTOOLKIT_TESTS_UNSYNCED_FILE_SYSTEM_H
#define FMDTOOLKIT_TESTS_UNSYNCED_FILE_SYSTEM_H

#include "system/file_system.h"

namespace fmdtest {

// Installs itself for its lifetime.
class UnsyncedFileSystem : public fmd::FileSystem {
 public:
  UnsyncedFileSystem() { fmd::replace_file_system(this); }
  ~UnsyncedFileSystem() override { fmd::replace_file_system(nullptr); }

  int fdatasync(int) override { return 0; }
  int fsync(int) override { return 0; }
};

}  // namespace fmdtest

#endif
