// A block of the transformation of modes for AVX-512.
#include "dbmodal/dbtools/transform_modes_block.h"

namespace fmd {

bool transform_block_avx512(const RowBlock& block) {
  using Vector = double __attribute__((vector_size(64)));
  return Strip<Vector, 3, 8>::transform(block);
}

}  // namespace fmd
