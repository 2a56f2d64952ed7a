// The stages of a write that follow the mesh stage, in the order in which they run. What a stage did stays in
// the body.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_PREPARE_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_PREPARE_H

#include "dbmodal/dbwrite/job.h"

namespace fmd {

// Version word and conflicts; a conflict clears the job's status.
void choose_version(WriteJob& job);

// Orthonormalisation with the frequency band, invariants, statistics, closing stages; settles the summary,
// the exported modes and so the content of the dataset.
void run_content_stages(WriteJob& job);

}  // namespace fmd

#endif
