// The inertia invariants before a write, and what follows from them.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_INVARIANT_STAGE_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_INVARIANT_STAGE_H

#include "dbmodal/dbwrite/job.h"

namespace fmd {

// Computes the invariants that the options ask for and settles their bytes. With invariants the loads and the
// damping move to the rigid axes, nodes that only carried mass go, and the global properties are refilled.
void run_invariant_stage(WriteJob& job);

// Leaves of the content what a rigid body has: nodes, masses, faces, global properties, invariants 1, 2
// and 7.
void run_empty_stage(WriteJob& job);

}  // namespace fmd

#endif
