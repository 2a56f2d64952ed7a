#include "system/vector_unit.h"

namespace fmd {

bool has_vector_unit(VectorUnit unit) {
  switch (unit) {
    case VectorUnit::kAvx512:
      return __builtin_cpu_supports("avx512f") != 0;
    case VectorUnit::kAvx2:
      return __builtin_cpu_supports("avx2") != 0;
    default:
      return true;
  }
}

VectorUnit widest_vector_unit() {
  if (has_vector_unit(VectorUnit::kAvx512)) return VectorUnit::kAvx512;
  return has_vector_unit(VectorUnit::kAvx2) ? VectorUnit::kAvx2 : VectorUnit::kSse2;
}

}  // namespace fmd
