// Kernels on tables of (id, index) pairs in ascending order of id, the one search structure of the library.
#ifndef FMDTOOLKIT_DBMODAL_DBDATA_SORTED_TABLE_H
#define FMDTOOLKIT_DBMODAL_DBDATA_SORTED_TABLE_H

#include <cstdint>

#include "body/body.h"

namespace fmd {

// The place of an id, or -1. The hint is the place found last: ids are mostly asked for in ascending order,
// so the pair there and the one after it are tried before the table is bisected.
int find_id(const FmdIdIndex* table, int count, std::int32_t id, std::int32_t& hint);

// Puts a pair behind all pairs of an id not greater. The table has room for one more.
void insert_pair(FmdIdIndex* table, int count, FmdIdIndex pair);

void sort_pairs(FmdIdIndex* table, int count);

}  // namespace fmd

#endif
