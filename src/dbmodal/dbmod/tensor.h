// Tensors of a body that changes its frame. Vectors are rows, and the matrix A stands to their right.
#ifndef FMDTOOLKIT_DBMODAL_DBMOD_TENSOR_H
#define FMDTOOLKIT_DBMODAL_DBMOD_TENSOR_H

namespace fmd {

// What vectors of rotation are multiplied by: -1 where A mirrors, else 1.
int rotation_sign(const double* matrix);

// T = A^T T A for a symmetric tensor held as xx, yy, zz, xy, xz, yz.
void transform_six(double* six, const double* matrix);

}  // namespace fmd

#endif
