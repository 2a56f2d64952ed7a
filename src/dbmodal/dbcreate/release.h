// Release of a body with all that hangs on it.
#ifndef FMDTOOLKIT_DBMODAL_DBCREATE_RELEASE_H
#define FMDTOOLKIT_DBMODAL_DBCREATE_RELEASE_H

#include "body/body.h"

namespace fmd {

// Frees a body that is no longer on the list; its files and datablocks are closed, scratch ones deleted.
void release_body(FmdBody* body);

// Frees the inertia invariants.
void release_invariants(FmdBody& body);

}  // namespace fmd

#endif
