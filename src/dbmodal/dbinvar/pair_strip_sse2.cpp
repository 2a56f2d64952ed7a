// The strip of the pair sums for SSE2.
#include "dbmodal/dbinvar/pair_strip.h"

namespace fmd {

void add_strip_sse2(const PairBlock& block, int first, double* const* const* tensors) {
  using Vector = double __attribute__((vector_size(16)));
  add_strip<Vector, 1>(block, first, tensors);
}

}  // namespace fmd
