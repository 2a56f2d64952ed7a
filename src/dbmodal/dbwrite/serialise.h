// From a prepared job to the items of a dataset, in the order of the blocks.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_SERIALISE_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_SERIALISE_H

#include "dbmodal/dbwrite/job.h"

namespace fmd {

// Blocks 1 and 2.
void write_version_and_header(WriteJob& job);

// Tells what the dataset will hold.
void report_content(const WriteJob& job);

// Block 3 and the present blocks after it; the first failure is reported and ends the walk.
void write_content(WriteJob& job);

}  // namespace fmd

#endif
