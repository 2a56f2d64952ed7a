// Vertices in the middle of a nearly straight edge.
#ifndef FMDTOOLKIT_DBMODAL_DBCOARSE_COLINEAR_VERTICES_H
#define FMDTOOLKIT_DBMODAL_DBCOARSE_COLINEAR_VERTICES_H

#include "dbmodal/dbcoarse/coarse_mesh.h"

namespace fmd {

// Drops from each face of at least four corners those whose two edges are short and within ten degrees of a
// line, and those at the place of the one before. A corner without a record stays, and so do its neighbours.
void remove_colinear_vertices(CoarseMesh& mesh, double diagonal);

}  // namespace fmd

#endif
