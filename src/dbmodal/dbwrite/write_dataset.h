// What the two ways to write a dataset, a plain file and a datablock, have in common.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_WRITE_DATASET_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_WRITE_DATASET_H

#include "dbmodal/dbwrite/job.h"

namespace fmd {

// True, with a message, for the file that the body came from.
bool is_own_file(const FmdBody& body, const char* path);

// The stages run code of the host (its handlers), which may reuse the caller's text. Null without memory.
CArray<char> copy_of_path(const char* path);

// Options, mesh stage and version word: what must be known before the sink can be made.
void prepare_dataset(WriteJob& job);

// Everything else, into the job's sink.
bool write_dataset(WriteJob& job);

}  // namespace fmd

#endif
