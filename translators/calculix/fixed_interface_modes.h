// The lowest normal modes of a part whose interfaces are held.
#ifndef FMDTOOLKIT_CALCULIX_FIXED_INTERFACE_MODES_H
#define FMDTOOLKIT_CALCULIX_FIXED_INTERFACE_MODES_H

#include "calculix/constrained_solver.h"

namespace calculix {

// K x = l M x + A^T m with A x = 0: a column for each mode, of unit modal mass and ascending l. The mass
// matrix may be singular. Throws ReductionError where the part has fewer modes of finite frequency or they
// are not found.
Eigen::MatrixXd fixed_interface_modes(const ConstrainedSolver& solver, const UpperMatrix& mass, int count);

}  // namespace calculix

#endif
