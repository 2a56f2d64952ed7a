// The eigenproblem of the generalized matrices of a body, K x = lambda G x, and what follows from it.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_MODAL_EIGENPROBLEM_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_MODAL_EIGENPROBLEM_H

#include "body/body.h"

namespace fmd {

// Finds the modes that are orthonormal in the generalized mass, tells of them, and gives the body their
// eigenvalue table in place of the matrices. Column c of t, ModeCount squared doubles row by row, makes mode
// c of the modes before. False and an unchanged body where memory is short, which is reported.
bool solve_modal_eigenproblem(FmdBody* body, double* t);

}  // namespace fmd

#endif
