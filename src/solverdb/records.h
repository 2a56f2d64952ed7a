// What readers of records need beyond the exported primitives.
#ifndef FMDTOOLKIT_SOLVERDB_RECORDS_H
#define FMDTOOLKIT_SOLVERDB_RECORDS_H

#include <cstdint>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

// Words from where the stream stands to the end of its record; 0 for a stream without a place.
std::int64_t words_left_in_record(const FmdStream& stream);

}  // namespace fmd

#endif
