// Rigid body modes against the six motions of the body frame: translations along and rotations about x, y, z.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_RIGID_MODES_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_RIGID_MODES_H

#include "body/body.h"

namespace fmd {

// Magnitudes up to this are taken for rounding and become zero.
constexpr double kNoise = 1e-10;

double drop_noise(double value);

// sum m e.u / sum m u.u over nodes, e the reference field and u the mode, three doubles a node.
double mode_projection(const double* reference, const double* mode, const double* masses, int nodes);

// The displacement field of one of the six motions, axis 0 to 5, at the first nodes of the body.
void fill_rigid_motion(const FmdBody& body, int axis, int nodes, double* field);

// Row k, entry i becomes the participation of mode i in axis k; false where a mode or memory cannot be had,
// which is reported.
bool fill_participation(FmdBody* body, double** rows, int count);

}  // namespace fmd

#endif
