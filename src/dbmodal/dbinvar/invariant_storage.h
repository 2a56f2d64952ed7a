// Storage of the invariants that have one entry per mode or per pair of modes.
//
// Values of one invariant stand in one piece; where the body has pointers to its parts, they point into it:
//   invariants 3 and 4   3 rows of `modes` values
//   invariant 5          `modes` rows of 3 * modes values
//   invariant 8          `modes` rows of nine values
//   invariant 9          `modes` rows of `modes` tensors of nine values
// The body keeps beside each how many modes it was made for. Nothing here reports.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_INVARIANT_STORAGE_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_INVARIANT_STORAGE_H

#include <cstdint>
#include <memory>

#include "body/body.h"
#include "messages/memory.h"

namespace fmd {

constexpr int kTensorSize = 9;

void release_value_rows(double**& rows);
void release_tensor_rows(double***& rows);

struct ValueRowsDeleter {
  void operator()(double** rows) const { release_value_rows(rows); }
};
struct TensorRowsDeleter {
  void operator()(double*** rows) const { release_tensor_rows(rows); }
};
using ValueRows = std::unique_ptr<double*[], ValueRowsDeleter>;
using TensorRows = std::unique_ptr<double**[], TensorRowsDeleter>;

// Zeroed storage, or null where there is no memory.
CArray<double> make_mode_columns(int modes);
ValueRows make_cross_sums(int modes);
ValueRows make_mode_tensors(int modes);
TensorRows make_pair_tensors(int modes);

// Bring the body's invariant to its present number of modes: made of zeros where there is none, enlarged by
// zeros where modes have been added. False where there is no memory; the body keeps what it had then.
bool fit_mode_columns(double*& values, std::int32_t& modes, int wanted);
bool fit_cross_sums(FmdBody& body);
bool fit_mode_tensors(FmdBody& body);
bool fit_pair_tensors(FmdBody& body);

// Give the body an invariant made for its present number of modes.
void install_cross_sums(FmdBody& body, ValueRows rows);
void install_mode_tensors(FmdBody& body, ValueRows rows);
void install_pair_tensors(FmdBody& body, TensorRows rows);

}  // namespace fmd

#endif
