// Loads: modal preload (27), modal load cases (28), nodal modal load cases (35). Entries of the exported
// modes only.
#include "dbmodal/block_table.h"
#include "dbmodal/dbwrite/job.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

// A block that is marked as present and has no table is one that could not be had.
bool has_table(const void* table) {
  if (table == nullptr) report_allocation_failure("dbwrite");
  return table != nullptr;
}

// The exported part of a vector over modes; modes that came after the vector have zero.
void put_exported(WriteJob& job, const double* values, int count) {
  for (int mode = job.first_mode; mode < job.first_mode + job.mode_count; ++mode) {
    job.sink->put_real(mode < count ? values[mode] : 0.0);
  }
}

}  // namespace

bool write_modal_preload(WriteJob& job) {
  const FmdBody& body = *job.body;
  if (!has_table(body.ModalPreload)) return false;
  job.sink->put_int(job.mode_count);
  job.sink->put_int(FMD_ModalPreloadProcessed(job.body));
  put_exported(job, body.ModalPreload, body.PreloadCount);
  return true;
}

bool write_modal_loads(WriteJob& job) {
  const FmdBody& body = *job.body;
  if (!has_table(body.LoadCases)) return false;
  job.sink->put_int(job.mode_count);
  job.sink->put_int(body.LoadCaseCount);
  for (int i = 0; i < body.LoadCaseCount; ++i) {
    const FmdLoadCase& load_case = body.LoadCases[i];
    job.sink->put_chars(load_case.Label, sizeof load_case.Label);
    job.sink->put_int(load_case.Processed);
    put_exported(job, load_case.Loads, load_case.LoadCount);
  }
  return true;
}

bool write_modal_load_nodal(WriteJob& job) {
  const FmdBody& body = *job.body;
  if (!has_table(body.NodalLoadCases)) return false;
  FMD_Info("\nModal Load Nodal Info:\n   Count: %ld", static_cast<long>(body.NodalLoadCaseCount));
  job.sink->put_int(body.NodalLoadCaseCount);
  for (int i = 0; i < body.NodalLoadCaseCount; ++i) {
    const FmdNodalLoadCase& nodal = body.NodalLoadCases[i];
    job.sink->put_int(nodal.Count);
    for (int entry = 0; entry < nodal.Count; ++entry) {
      job.sink->put_int(nodal.Nodes[entry]);
      job.sink->put_int(nodal.Coordinates[entry]);
      job.sink->put_real(nodal.Values[entry]);
    }
  }
  return true;
}

}  // namespace fmd
