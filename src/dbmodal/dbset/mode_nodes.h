// The nodes that carry modal stress or strain.
#ifndef FMDTOOLKIT_DBMODAL_DBSET_MODE_NODES_H
#define FMDTOOLKIT_DBMODAL_DBSET_MODE_NODES_H

#include "body/body.h"

namespace fmd {

// The mode node index of a node in type 1 or 2, found or new; -1 without memory, which is reported.
int lookup_or_add_mode_node(FmdBody& body, int type, int node_index);

}  // namespace fmd

#endif
