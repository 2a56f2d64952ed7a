// Nodes by position: the nearest one, the nearest few, those within a radius.
#include <algorithm>

#include "body/body.h"
#include "dbmodal/dbtools/nearest_nodes.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

Candidates all_nodes(const FmdBody& body) {
  return {body.Nodes, nullptr, body.NodeCount};
}

// None where an interface node is no node of the table.
Candidates interface_nodes(const FmdBody& body) {
  const bool sound = std::all_of(body.InterfaceNodes, body.InterfaceNodes + body.InterfaceNodeCount,
                                 [&](std::int32_t node) { return node >= 0 && node < body.NodeCount; });
  return {body.Nodes, body.InterfaceNodes, sound ? body.InterfaceNodeCount : 0};
}

Candidates candidates_of(const FmdBody& body, int interface_only) {
  return interface_only != 0 ? interface_nodes(body) : all_nodes(body);
}

// Cuts an array to what is in use; one that is empty goes.
int* shrink(CArray<std::int32_t>& list, std::int32_t count) {
  if (count == 0) return nullptr;
  std::int32_t* entries = list.release();
  grow(entries, count);  // where it cannot move it is merely too long
  return entries;
}

}  // namespace

}  // namespace fmd

// Silent about a null body, as it always was.
int FMD_ClosestNode(FmdBody* body, double* point, int interfaceOnly) {
  if (body == nullptr) return -1;
  const int restricted = body->InterfaceNodeCount > 0 ? interfaceOnly : 0;
  return fmd::find_nearest(fmd::candidates_of(*body, restricted), point);
}

int* FMD_ClosestNodes(FmdBody* body, double* point, int wanted, int interfaceOnly, int* found) {
  *found = 0;
  if (CheckFMD(body) == 0) return nullptr;
  const fmd::Candidates candidates = fmd::candidates_of(*body, interfaceOnly);
  // No more room than there are candidates to fill it.
  const std::int64_t room = std::int64_t{std::min<std::int32_t>(wanted, candidates.count)} + 1;
  auto list = fmd::allocate<std::int32_t>(room, "dbtools");
  if (list == nullptr) return nullptr;
  const auto distances = fmd::allocate<double>(room, "dbtools");
  if (distances == nullptr) return nullptr;
  *found = fmd::find_nearest(candidates, point, wanted, list.get(), distances.get());
  return fmd::shrink(list, *found);
}

int* FMD_ClosestNodesInNeighborhood(FmdBody* body, double* point, double radius, int interfaceOnly,
                                    int* found) {
  constexpr std::int32_t kStep = 10;
  *found = 0;
  if (CheckFMD(body) == 0) return nullptr;
  const fmd::Candidates candidates = fmd::candidates_of(*body, interfaceOnly);
  std::int32_t* list = nullptr;
  std::int64_t capacity = 0;
  std::int32_t count = 0;
  for (std::int32_t place = 0; place < candidates.count; ++place) {
    const std::int32_t node = candidates[place];
    if (!(fmd::squared_distance(candidates.nodes[node], point) <= radius * radius)) continue;
    if (count == capacity) {
      if (!fmd::grow(list, capacity + kStep)) {
        fmd::report_allocation_failure("dbtools");
        continue;
      }
      capacity += kStep;
    }
    list[count++] = node;
  }
  fmd::CArray<std::int32_t> owned(list);
  fmd::sort_by_distance(candidates.nodes, point, list, count);
  *found = count;
  return fmd::shrink(owned, count);
}
