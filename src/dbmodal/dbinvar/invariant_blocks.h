// Invariants as they stand in the dataset behind a body.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_INVARIANT_BLOCKS_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_INVARIANT_BLOCKS_H

#include <cstdint>

#include "body/body.h"

namespace fmd {

constexpr int kNodalMassBlock = 8;
constexpr int kInvariant1Block = 18;
constexpr int kInvariant2Block = 19;
constexpr int kInvariant3Block = 20;
constexpr int kInvariant4Block = 21;
constexpr int kInvariant5Block = 22;
constexpr int kInvariant7Block = 23;
constexpr int kInvariant8Block = 24;
constexpr int kInvariant9Block = 25;

// From the units on disk to those of the body: mass times a power of length.
double mass_factor(const FmdBody& body, int length_power);

// Reads reals from where the dataset stands and multiplies them by the factor.
bool read_reals(FmdBody* body, double* values, std::int64_t count, double factor);

// Reads the mode count in front of a matrix block. One that differs from the body's is reported, and reading
// may go on.
bool read_block_modes(FmdBody* body, int line = __builtin_LINE());

}  // namespace fmd

#endif
