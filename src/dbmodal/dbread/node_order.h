// The node table in the order in which the mode vectors of a dataset list the nodes.
#ifndef FMDTOOLKIT_DBMODAL_DBREAD_NODE_ORDER_H
#define FMDTOOLKIT_DBMODAL_DBREAD_NODE_ORDER_H

#include "dbmodal/dbread/block_reader.h"

namespace fmd {

// Brings the nodes into the order of the ids, place by place from the start: an id of 0, or one that no node
// has, leaves its place as it is. Notes in the reader where each node went. False without memory, which is
// reported.
bool order_nodes(BlockReader& reader, const std::int32_t* ids, std::int32_t count);

}  // namespace fmd

#endif
