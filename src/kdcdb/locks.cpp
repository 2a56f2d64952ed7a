#include "kdcdb/locks.h"

#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

struct flock lock_of_byte(std::int64_t byte, short type) {
  struct flock range {};
  range.l_type = type;
  range.l_whence = SEEK_SET;
  range.l_start = byte;
  range.l_len = 1;
  return range;
}

}  // namespace

Status lock_for_writing(int file) {
  struct flock range = lock_of_byte(kWriterLockByte, F_WRLCK);
  if (fmd::file_system().lock(file, F_OFD_SETLK, &range) == 0) return kOk;
  return errno == EACCES ? kLocked : status_of_error(errno);
}

Status lock_for_reading(int file) {
  struct flock range = lock_of_byte(kReaderLockByte, F_RDLCK);
  return fmd::file_system().lock(file, F_OFD_SETLK, &range) == 0 ? kOk : status_of_error(errno);
}

bool has_readers(int file) {
  struct flock range = lock_of_byte(kReaderLockByte, F_WRLCK);
  return fmd::file_system().lock(file, F_OFD_GETLK, &range) != 0 || range.l_type != F_UNLCK;
}

}  // namespace kdcdb
