// The stiffness and the mass matrix that a job with SOLVER=MATRIXSTORAGE leaves, and what their rows belong
// to.
#ifndef FMDTOOLKIT_CALCULIX_MATRIX_READER_H
#define FMDTOOLKIT_CALCULIX_MATRIX_READER_H

#include <string>
#include <vector>

#include "calculix/frd_reader.h"
#include "calculix/sparse_matrix.h"

namespace calculix {

// A row of the matrices: translation of a node along an axis.
struct DegreeOfFreedom {
  int node;  // id
  int axis;  // 0 to 2
};

// Reads the .dof file, a line "node.direction" for each row. Throws InputError.
std::vector<DegreeOfFreedom> read_degrees_of_freedom(const std::string& path);

// Reads a .sti or .mas file, a line "row column value" for each entry of the upper triangle, of a matrix with
// so many rows. Entries of zero off the diagonal are left out. Throws InputError.
SymmetricMatrix read_matrix(const std::string& path, int size, const FractionHandler& progress);

}  // namespace calculix

#endif
