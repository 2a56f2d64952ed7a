// The two locks of a master file, on bytes far beyond any end of file. They belong to the open file
// description: they hold against the same process as well, and end when the file is closed.
#ifndef FMDTOOLKIT_KDCDB_LOCKS_H
#define FMDTOOLKIT_KDCDB_LOCKS_H

#include <cstdint>

#include "kdcdb/kdcdb.h"

namespace kdcdb {

constexpr std::int64_t kWriterLockByte = std::int64_t{1} << 62;
constexpr std::int64_t kReaderLockByte = kWriterLockByte + 1;

// The one writer's; kLocked where another has it.
Status lock_for_writing(int file);

// The readers', which they share and no writer takes: it keeps writers from taking back what the roots lead
// to.
Status lock_for_reading(int file);

// Whether anybody else reads; true also where that cannot be told. Takes no lock, so no reader is turned
// away.
bool has_readers(int file);

}  // namespace kdcdb

#endif
