// The parallel axis theorem for the inertia of the whole body.
#ifndef FMDTOOLKIT_DBMODAL_DBMOD_INERTIA_SHIFT_H
#define FMDTOOLKIT_DBMODAL_DBMOD_INERTIA_SHIFT_H

namespace fmd {

// Nine values about the origin whose off-diagonal entries are the sums of m a b, with a plus sign, while the
// centre of mass goes from one place to another.
void shift_inertia(double mass, const double* from, const double* to, double* inertia);

}  // namespace fmd

#endif
