// Filling the summary of a write from the body.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_SUMMARY_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_SUMMARY_H

#include "dbmodal/dbwrite/job.h"

namespace fmd {

// Takes over the body's own bytes from the first to the last.
void copy_from_body(WriteJob& job, int first_byte, int last_byte);

// A body with faces has one of two blocks, by level.
void place_faces(WriteJob& job);

}  // namespace fmd

#endif
