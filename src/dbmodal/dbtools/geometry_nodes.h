// The nodes that display and loads need, and the removal of all others.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_GEOMETRY_NODES_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_GEOMETRY_NODES_H

#include <cstdint>

#include "body/body.h"

namespace fmd {

// Kernel: sorts the values, skips the leading -1s and keeps one of each other value. How many are left.
std::int32_t keep_distinct_nodes(std::int32_t* values, std::int64_t count);

// Whether the cached geometry nodes, if there are any, have all nodes that faces, interface nodes and loads
// refer to by now.
bool is_geometry_cache_complete(const FmdBody& body);

// Removes every node that no face, interface node or nodal load refers to, and its rows of all mode data. 1
// also for a body without geometry nodes, which stays as it is. On failure, which has been reported, the body
// keeps all its nodes and the result is 0.
int RemoveNonGeometryNodes(FmdBody* body);

}  // namespace fmd

#endif
