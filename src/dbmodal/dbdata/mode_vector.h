// One mode vector in memory: loading it into the body's buffer, and its two halves.
#ifndef FMDTOOLKIT_DBMODAL_DBDATA_MODE_VECTOR_H
#define FMDTOOLKIT_DBMODAL_DBDATA_MODE_VECTOR_H

#include <cstdint>

#include "body/body.h"

namespace fmd {

inline bool is_mode_info_type(int type) {
  return type >= 0 && type < TOTAL_MODE_INFO_TYPES;
}

inline bool is_part(int part) {
  return part == 0 || part == 1;
}

// Mode number 0 names the pre-stress or pre-strain vector, but an ordinary mode among mode shapes.
inline bool is_pseudo_mode(int mode, int type) {
  return mode == 0 && type != kShape;
}

// Brings a mode's whole vector, six doubles per mode node with the units applied, into ModeBuffer[type] and
// answers 1. A failed read has said so and answers 1 too: the buffer then holds what it holds. 0 where there
// is no such vector, or no memory.
int load_mode_vector(FmdBody* body, int mode, int type);

// Says that a mode's vector could not be read.
void report_unreadable_mode(int mode, int type);

// The pre-stress (type 1) or pre-strain vector as six values per mode node; nodes that were never given any
// are zero. False where the body has none.
bool copy_pseudo_mode(const FmdBody& body, int type, double* values);

// Copies the three values of a part out of each node's six.
void copy_half(const double* vector, int nodes, int part, double* half);

// What mode vectors are multiplied by to bring them from the units on disk to those of the body: the length
// factor for the translations of mode shapes, force per area for stress, nothing for strain.
void apply_units(const FmdBody& body, int type, int nodes, double* values);
void apply_units(const FmdBody& body, int type, int nodes, float* values);

// The way back, for vectors that go to the store again.
void take_units_out(const FmdBody& body, int type, int nodes, double* values);

// Moves a stream of mode vectors on by whole nodes.
bool skip_nodes(const FmdStream& stream, std::int64_t nodes);

// Reads some nodes of a stored vector, by mode index and as they stand in the store. Says nothing.
bool read_stored_nodes(const FmdBody& body, int type, int index, int first_node, int nodes, double* values);

}  // namespace fmd

#endif
