// A block of the transformation of modes for AVX2.
#include "dbmodal/dbtools/transform_modes_block.h"

namespace fmd {

bool transform_block_avx2(const RowBlock& block) {
  using Vector = double __attribute__((vector_size(32)));
  return Strip<Vector, 3, 4>::transform(block);
}

}  // namespace fmd
