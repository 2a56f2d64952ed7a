// The strip of the pair sums for AVX-512.
#include "dbmodal/dbinvar/pair_strip.h"

namespace fmd {

void add_strip_avx512(const PairBlock& block, int first, double* const* const* tensors) {
  using Vector = double __attribute__((vector_size(64)));
  add_strip<Vector, 2>(block, first, tensors);
}

}  // namespace fmd
