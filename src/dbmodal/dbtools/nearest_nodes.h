// Kernels that scan nodes by distance from a point. Distances are compared squared.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_NEAREST_NODES_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_NEAREST_NODES_H

#include <cstdint>

#include "body/body.h"

namespace fmd {

// The nodes that are searched: some, in the order of a list of indices, or all in the order of the table.
struct Candidates {
  const FmdNode* nodes;
  const std::int32_t* list;  // null: all nodes
  std::int32_t count;

  std::int32_t operator[](std::int32_t place) const { return list != nullptr ? list[place] : place; }
};

inline double squared_distance(const FmdNode& node, const double* point) {
  const double x = node.Coordinates[0] - point[0];
  const double y = node.Coordinates[1] - point[1];
  const double z = node.Coordinates[2] - point[2];
  return x * x + y * y + z * z;
}

// The node index of the nearest candidate, of several the first; -1 without candidates. A candidate at the
// point itself ends the search.
std::int32_t find_nearest(const Candidates& candidates, const double* point);

// The node indices of the nearest candidates in ascending order of distance, ties in candidate order. Both
// arrays have room for one entry more than wanted. How many were found.
std::int32_t find_nearest(const Candidates& candidates, const double* point, std::int32_t wanted,
                          std::int32_t* found, double* distances);

// Sorts node indices by distance from the point; of equally distant ones the later comes first.
void sort_by_distance(const FmdNode* nodes, const double* point, std::int32_t* list, std::int32_t count);

}  // namespace fmd

#endif
