// What other modules need of the invariants of the rigid body beyond their exported getters.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_RIGID_INVARIANTS_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_RIGID_INVARIANTS_H

#include "body/body.h"

namespace fmd {

// Fills the cache of invariant 1; false after a failure, which FMD_Invar1 cannot tell from a mass of zero.
bool fill_mass_invariant(FmdBody* body);

// Sums over the nodes in node order: moment[3] += m r; inertia[9] += -m ~r ~r + J.
void sum_first_moments(FmdBody* body, double* moment);
void sum_inertias(FmdBody* body, double* inertia);

}  // namespace fmd

#endif
