// What the operations on global mass need of the invariants beyond their exported getters.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_RIGID_INVARIANTS_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_RIGID_INVARIANTS_H

#include "body/body.h"

namespace fmd {

// Fills the cache of invariant 1; false after a failure, which FMD_Invar1 cannot tell from a mass of zero.
bool fill_mass_invariant(FmdBody* body);

}  // namespace fmd

#endif
