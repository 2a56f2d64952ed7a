// The matrices of rigid motions. Vectors are rows and the matrix stands to their right: v' = v A.
#ifndef FMDTOOLKIT_DBMODAL_DBMOD_RIGID_MATRICES_H
#define FMDTOOLKIT_DBMODAL_DBMOD_RIGID_MATRICES_H

namespace fmd {

double dot(const double* a, const double* b);
double length(const double* vector);

// Turns by the angle about the axis, which need not be of unit length, against the right-hand rule: about the
// x axis, y goes to y cos - z sin. An axis of no length gives NaNs.
void fill_rotation(const double* axis, double degrees, double* matrix);

// Reflects in the plane through the origin with this normal, which need not be of unit length. A normal of no
// length gives NaNs.
void fill_reflection(const double* normal, double* matrix);

}  // namespace fmd

#endif
