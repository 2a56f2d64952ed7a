// Blocks over pairs of modes or of the rigid body: generalized stiffness (12), mass (13) and damping (15),
// mode shape transformation (16), and the invariants 1, 2 and 7 (19, 20, 24).
#include "dbmodal/block_table.h"
#include "dbmodal/damping_rows.h"
#include "dbmodal/dbwrite/job.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

struct SparseMatrix {
  int count = 0;
  CArray<double> values;
  CArray<std::int32_t> rows;
  CArray<std::int32_t> columns;
};

using SparseGetter = int (*)(FmdBody*, double*, int*, int*);

// A matrix without entries counts as one that could not be had.
bool fetch(FmdBody* body, int count, SparseGetter get, SparseMatrix& matrix) {
  matrix.count = count;
  matrix.values = allocate<double>(count, "dbwrite");
  if (matrix.values == nullptr) return false;
  matrix.rows = allocate<std::int32_t>(count, "dbwrite");
  if (matrix.rows == nullptr) return false;
  matrix.columns = allocate<std::int32_t>(count, "dbwrite");
  if (matrix.columns == nullptr) return false;
  return get(body, matrix.values.get(), matrix.rows.get(), matrix.columns.get()) != 0;
}

// Each entry with its row and column through a numbering of mode indices.
template <typename Number>
void put_entries(WriteJob& job, const SparseMatrix& matrix, Number number) {
  for (int i = 0; i < matrix.count; ++i) {
    job.sink->put_int(number(matrix.rows[as_size(i)]));
    job.sink->put_int(number(matrix.columns[as_size(i)]));
    job.sink->put_real(matrix.values[as_size(i)]);
    job.sink->put_int(1);
  }
}

bool write_by_mode_number(WriteJob& job, int count, SparseGetter get) {
  SparseMatrix matrix;
  if (!fetch(job.body, count, get, matrix)) return false;
  job.sink->put_int(count);
  job.sink->put_int(job.mode_count);
  put_entries(job, matrix, [&](int index) { return FMD_ModeNumber(job.body, index); });
  return true;
}

}  // namespace

bool write_generalized_stiffness(WriteJob& job) {
  return write_by_mode_number(job, FMD_NumberOfGenStiff(job.body), FMD_GenStiffSparse);
}

bool write_generalized_mass(WriteJob& job) {
  return write_by_mode_number(job, FMD_NumberOfGenMass(job.body), FMD_GenMassSparse);
}

bool write_generalized_damping(WriteJob& job) {
  SparseMatrix matrix;
  if (!fetch(job.body, FMD_NumberOfGenDamp(job.body), FMD_GenDampSparse, matrix)) return false;
  job.sink->put_int(matrix.count);
  job.sink->put_int(job.body->DampingOnPrincipalAxes);
  put_entries(job, matrix, counted_from_one);
  return true;
}

// All modes of the body, whatever the frequency band.
bool write_transformation(WriteJob& job) {
  const FmdBody& body = *job.body;
  const int modes = body.ModeCount;
  if (modes > 0 && (body.Transformation == nullptr || body.TransformationOrder < modes)) return false;
  job.sink->put_int(modes);
  const std::int32_t* const numbers =
      body.TransformationModes != nullptr ? body.TransformationModes : body.ModeNumbers;
  job.sink->put_ints(numbers, as_size(modes));
  for (int row = 0; row < modes; ++row) {
    const double* const from = body.Transformation + as_size(row) * as_size(body.TransformationOrder);
    job.sink->put_reals(from, as_size(modes));
  }
  return true;
}

}  // namespace fmd
