// What the mode store needs of scratch datablocks beyond the exported primitives.
#ifndef FMDTOOLKIT_SOLVERDB_SCRATCH_H
#define FMDTOOLKIT_SOLVERDB_SCRATCH_H

#include <cstdint>

namespace fmd {

// Appends so many zero words to a block open for writing. Disk space for them is reserved, so a full disk
// shows here, and no page is touched. Positions between the words are word offsets as ever: save one, fill,
// and save the next.
bool fill_scratch_with_zeros(int block, std::int64_t words);

}  // namespace fmd

#endif
