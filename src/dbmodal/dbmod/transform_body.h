// A body seen from a frame that is turned or reflected about the origin.
#ifndef FMDTOOLKIT_DBMODAL_DBMOD_TRANSFORM_BODY_H
#define FMDTOOLKIT_DBMODAL_DBMOD_TRANSFORM_BODY_H

#include "body/body.h"
#include "dbmodal/dbmod/present_invariants.h"

namespace fmd {

// Row vectors r of the body become r A: coordinates, inertias, mass properties, mode shapes, stresses and
// strains, and the invariants that the body knows. What a kind of mode vector cannot do for want of memory or
// disk is reported and leaves that kind as it was. False where nothing could be moved for want of an
// invariant, or invariant 4 not be summed.
bool transform_body(FmdBody* body, double* matrix);

// Invariants 2 to 9 under A, where cross products also take the sign. They are in their caches, and nodes and
// mode shapes are transformed already.
bool transform_invariants(FmdBody* body, const PresentInvariants& present, double* matrix, int sign);

}  // namespace fmd

#endif
