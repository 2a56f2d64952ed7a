#include "dbmodal/dbtools/nearest_nodes.h"

#include <algorithm>

namespace fmd {

std::int32_t find_nearest(const Candidates& candidates, const double* point) {
  if (candidates.count < 1) return -1;
  std::int32_t nearest = candidates[0];
  double least = squared_distance(candidates.nodes[nearest], point);
  for (std::int32_t place = 1; place < candidates.count && least != 0.0; ++place) {
    const std::int32_t node = candidates[place];
    const double distance = squared_distance(candidates.nodes[node], point);
    if (distance < least) {
      least = distance;
      nearest = node;
    }
  }
  return nearest;
}

std::int32_t find_nearest(const Candidates& candidates, const double* point, std::int32_t wanted,
                          std::int32_t* found, double* distances) {
  std::int32_t count = 0;
  for (std::int32_t i = 0; i < candidates.count; ++i) {
    const std::int32_t node = candidates[i];
    const double distance = squared_distance(candidates.nodes[node], point);
    std::int32_t place = count;
    for (; place > 0 && distances[place - 1] > distance; --place) {
      distances[place] = distances[place - 1];
      found[place] = found[place - 1];
    }
    // The spare entry takes the candidate that falls off the end.
    distances[place] = distance;
    found[place] = node;
    if (count < wanted) ++count;
  }
  return count;
}

void sort_by_distance(const FmdNode* nodes, const double* point, std::int32_t* list, std::int32_t count) {
  std::reverse(list, list + count);
  std::stable_sort(list, list + count, [=](std::int32_t left, std::int32_t right) {
    return squared_distance(nodes[left], point) < squared_distance(nodes[right], point);
  });
}

}  // namespace fmd
