// The vector units that a kernel may have a version for, and which of them this machine has.
#ifndef FMDTOOLKIT_SYSTEM_VECTOR_UNIT_H
#define FMDTOOLKIT_SYSTEM_VECTOR_UNIT_H

namespace fmd {

enum class VectorUnit { kSse2, kAvx2, kAvx512 };

// Whether this machine has the unit, and the widest one that it has.
bool has_vector_unit(VectorUnit unit);
VectorUnit widest_vector_unit();

}  // namespace fmd

#endif
