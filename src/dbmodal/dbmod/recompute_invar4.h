#ifndef FMDTOOLKIT_DBMODAL_DBMOD_RECOMPUTE_INVAR4_H
#define FMDTOOLKIT_DBMODAL_DBMOD_RECOMPUTE_INVAR4_H

#include "body/body.h"

namespace fmd {

// Replaces invariant 4, which has no simple law of its own under a motion of the body, by the sums over the
// nodes and mode shapes as they are now. False, with a report, where there is no nodal mass or no memory; the
// body then keeps what it had.
bool recompute_invar4(FmdBody* body);

}  // namespace fmd

#endif
