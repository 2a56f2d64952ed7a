// The status of a failed system call.
#ifndef FMDTOOLKIT_KDCDB_SYSTEM_STATUS_H
#define FMDTOOLKIT_KDCDB_SYSTEM_STATUS_H

#include <cerrno>

#include "kdcdb/kdcdb.h"

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

}  // namespace kdcdb

#endif
