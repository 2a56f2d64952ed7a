// What the getters and setters of the invariants share.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_INVARIANT_RESULTS_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_INVARIANT_RESULTS_H

#include <algorithm>
#include <cstdint>

#include "messages/memory.h"

namespace fmd {

// Whether storage could be had; if not, that is reported for the caller's line.
inline bool reported(bool done, int line = __builtin_LINE()) {
  if (!done) report_allocation_failure("dbinvar", line);
  return done;
}

// A new array for the caller of a getter, or null with a report.
inline double* copy_for_caller(const double* values, std::int64_t count, int line = __builtin_LINE()) {
  auto copy = allocate<double>(count, "dbinvar", line);
  if (copy != nullptr) std::copy_n(values, count, copy.get());
  return copy.release();
}

}  // namespace fmd

#endif
