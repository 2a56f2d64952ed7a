// What other modules need of matrix operators beyond the exported operations.
#ifndef FMDTOOLKIT_DBMODAL_DBMTXOP_MATRIX_OPERATORS_H
#define FMDTOOLKIT_DBMODAL_DBMTXOP_MATRIX_OPERATORS_H

#include "body/body.h"
#include "body/matrix_operator.h"

namespace fmd {

void release_matrix_operators(FmdBody& body);

}  // namespace fmd

#endif
