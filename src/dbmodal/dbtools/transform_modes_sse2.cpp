// A block of the transformation of modes for SSE2.
#include "dbmodal/dbtools/transform_modes_block.h"

namespace fmd {

bool transform_block_sse2(const RowBlock& block) {
  using Vector = double __attribute__((vector_size(16)));
  return Strip<Vector, 2, 4>::transform(block);
}

}  // namespace fmd
