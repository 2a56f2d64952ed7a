// The status of a failed system call.
#ifndef FMDTOOLKIT_KDCDB_SYSTEM_STATUS_H
#define FMDTOOLKIT_KDCDB_SYSTEM_STATUS_H

#include <cerrno>

#include "kdcdb/kdcdb.h"
#include "system/file_system.h"

namespace kdcdb {

inline Status status_of_error(int error) {
  switch (error) {
    case ENOSPC:
    case EDQUOT:
    case EFBIG:
      return kNoSpace;
    case ENOMEM:
      return kNoMemory;
    case ENOENT:
      return kNoFile;
    case EEXIST:
      return kExists;
    case EAGAIN:
      return kLocked;
    default:
      return kInputOutput;
  }
}

// Reads all bytes; a file that ends before is damaged.
inline Status read_exactly(int file, void* to, std::size_t bytes, off_t offset) {
  errno = 0;
  if (fmd::read_all_at(file, to, bytes, offset)) return kOk;
  return errno == 0 ? kDamaged : status_of_error(errno);
}

}  // namespace kdcdb

#endif
