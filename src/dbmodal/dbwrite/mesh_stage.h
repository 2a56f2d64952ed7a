// The first stage of a write: the reference frame and the display mesh, as the options ask.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_MESH_STAGE_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_MESH_STAGE_H

#include "dbmodal/dbwrite/job.h"

namespace fmd {

// Shift of the frame, sketch, stripping and coarsening of the faces; before the version word. What goes wrong
// with the mesh is reported and ends no write.
void run_mesh_stage(WriteJob& job);

}  // namespace fmd

#endif
