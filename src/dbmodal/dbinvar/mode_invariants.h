// What other modules need of the invariants over modes beyond their exported getters.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_MODE_INVARIANTS_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_MODE_INVARIANTS_H

#include "body/body.h"

namespace fmd {

// The three rows of invariant 4 from the nodes and mode shapes as they are, whatever the cache has. False
// where a mode or memory cannot be had, which is reported.
bool sum_moments_of_momentum(FmdBody* body, double* rows);

}  // namespace fmd

#endif
