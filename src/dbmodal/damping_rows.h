// Rows and columns of the generalized damping count from 0 in a body, from 1 in datasets and listings.
#ifndef FMDTOOLKIT_DBMODAL_DAMPING_ROWS_H
#define FMDTOOLKIT_DBMODAL_DAMPING_ROWS_H

namespace fmd {

// Unsigned arithmetic wraps where signed would overflow: a damaged dataset's row may be any number.
constexpr int counted_from_one(int index) {
  return static_cast<int>(static_cast<unsigned>(index) + 1U);
}

}  // namespace fmd

#endif
