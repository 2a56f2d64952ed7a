// The sets of invariants that a writer fills before it writes.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_INVARIANT_SETS_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_INVARIANT_SETS_H

#include "body/body.h"

namespace fmd {

// Each announces itself and has every getter of its set fill its cache: rigid those of the rigid body, fast
// all but 5 and 9, full all. Too little mass data is reported, and what cannot be computed becomes zero.
void compute_rigid_invariants(FmdBody* body);
void compute_fast_invariants(FmdBody* body);
void compute_full_invariants(FmdBody* body);

}  // namespace fmd

#endif
