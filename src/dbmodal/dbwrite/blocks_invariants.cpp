// The inertia invariants 1 to 5 and 7 to 9 (blocks 19 to 26), as the getters give them; of the matrices over
// modes only the exported modes.
#include "dbmodal/block_table.h"
#include "dbmodal/dbwrite/job.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr std::size_t kTensor = 9;

bool put_array(WriteJob& job, double* values, std::size_t count) {
  const CArray<double> owned(values);
  if (owned == nullptr) return false;
  job.sink->put_reals(owned.get(), count);
  return true;
}

// Three rows over all modes of the body, cut to the exported ones.
bool put_rows(WriteJob& job, double* values) {
  const CArray<double> owned(values);
  if (owned == nullptr) return false;
  for (int row = 0; row < 3; ++row) {
    const double* const from = owned.get() + as_size(row) * as_size(job.body->ModeCount);
    job.sink->put_reals(from + job.first_mode, as_size(job.mode_count));
  }
  return true;
}

}  // namespace

bool write_invariant_1(WriteJob& job) {
  job.sink->put_real(FMD_Invar1(job.body));
  return job.body->Invar1 != nullptr;
}

bool write_invariant_2(WriteJob& job) {
  return put_array(job, FMD_Invar2(job.body), 3);
}

bool write_invariant_3(WriteJob& job) {
  job.sink->put_int(job.mode_count);
  return put_rows(job, FMD_Invar3(job.body));
}

bool write_invariant_4(WriteJob& job) {
  job.sink->put_int(job.mode_count);
  return put_rows(job, FMD_Invar4(job.body));
}

bool write_invariant_5(WriteJob& job) {
  job.sink->put_int(job.mode_count);
  for (int mode = 0; mode < job.mode_count; ++mode) {
    if (!put_rows(job, FMD_Invar5(job.body, job.first_mode + mode))) return false;
  }
  return true;
}

bool write_invariant_7(WriteJob& job) {
  return put_array(job, FMD_Invar7(job.body), kTensor);
}

bool write_invariant_8(WriteJob& job) {
  job.sink->put_int(job.mode_count);
  for (int mode = 0; mode < job.mode_count; ++mode) {
    if (!put_array(job, FMD_Invar8(job.body, job.first_mode + mode), kTensor)) return false;
  }
  return true;
}

bool write_invariant_9(WriteJob& job) {
  job.sink->put_int(job.mode_count);
  for (int i = 0; i < job.mode_count; ++i) {
    for (int j = 0; j < job.mode_count; ++j) {
      if (!put_array(job, FMD_Invar9(job.body, job.first_mode + i, job.first_mode + j), kTensor))
        return false;
    }
  }
  return true;
}

}  // namespace fmd
