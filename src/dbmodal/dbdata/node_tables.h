// The tables that lead from node ids to indices. A body that came without them gets them when they are
// needed.
#ifndef FMDTOOLKIT_DBMODAL_DBDATA_NODE_TABLES_H
#define FMDTOOLKIT_DBMODAL_DBDATA_NODE_TABLES_H

#include "body/body.h"

namespace fmd {

// Entries that a new table over nodes gets, so that it grows no sooner than the others.
std::int32_t node_room(const FmdBody& body);

// Builds the sorted table of a type where nodes of that type have none. False without memory, which is
// reported: then a search that finds nothing does not mean that the id is new.
bool provide_sorted(FmdBody& body, int type);

}  // namespace fmd

#endif
