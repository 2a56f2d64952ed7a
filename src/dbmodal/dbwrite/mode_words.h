// What the blocks of mode vectors share.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_MODE_WORDS_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_MODE_WORDS_H

#include "dbmodal/dbwrite/job.h"

namespace fmd {

// The word before a mode's values: none at level 10, one of no meaning at level 20, else the mode number. The
// record form notes its place.
void put_mode_word(WriteJob& job, int type, int exported);

// True for a vector of six values a node that holds nothing but zeros.
bool is_zero(const double* rows, int nodes);

}  // namespace fmd

#endif
