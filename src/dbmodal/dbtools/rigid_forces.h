// Modal force vectors on the six axes of the rigid body.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_RIGID_FORCES_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_RIGID_FORCES_H

#include "body/body.h"

namespace fmd {

// Both put forces and moments in the place of the first entries of a modal force vector of the length given,
// from its first rigid entries. From the nodal masses: all six entries that the vector has.
void rigid_force_from_mass(FmdBody* body, double* values, int length, int rigid);

// From a fit of rigid motions to the node cloud and the body's total mass: the first rigid entries only.
void rigid_force_from_fit(FmdBody* body, double* values, int length, int rigid);

}  // namespace fmd

#endif
