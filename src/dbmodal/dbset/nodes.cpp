// Nodes come into being: the node table, the tables that grow with it, and the nodes of stress and strain.
#include <algorithm>
#include <iterator>
#include <limits>

#include "body/body.h"
#include "dbmodal/dbdata/sorted_table.h"
#include "dbmodal/dbset/mode_nodes.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr std::int32_t kStep = 1000;

// The capacity steps by 1000, but storage is reserved ahead by halves, so that a million nodes do not move a
// thousand times.
std::int64_t room_for(const FmdBody& body, std::int64_t capacity) {
  return std::max<std::int64_t>(capacity, body.ReservedNodes + body.ReservedNodes / 2);
}

bool grow_tables(FmdBody& body, std::int64_t room) {
  return fmd::grow(body.Nodes, room) && fmd::grow(body.SortedNodes, room) &&
         fmd::grow(body.ModeNodes[fmd::kShape], room) &&
         fmd::grow(body.SortedModeNodes[fmd::kStress], room) &&
         fmd::grow(body.ModeNodes[fmd::kStress], room) &&
         fmd::grow(body.SortedModeNodes[fmd::kStrain], room) && fmd::grow(body.ModeNodes[fmd::kStrain], room);
}

// Pointers into a node table that has moved are found again by their distance from its old start.
void move_pointers(FmdBody& body, std::uintptr_t old_nodes) {
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    if (body.ModeNodes[type] == nullptr) continue;
    for (int place = 0; place < body.ModeNodeCount[type]; ++place) {
      FmdNode*& node = body.ModeNodes[type][place];
      node = body.Nodes + (reinterpret_cast<std::uintptr_t>(node) - old_nodes) / sizeof(FmdNode);
    }
  }
}

// Tables that a body came without are built by the first search; a search must come before they grow.
bool build_missing_tables(FmdBody& body) {
  if (body.NodeCount > 0) FMD_NodeIndex(&body, 0);
  for (const int type : {fmd::kStress, fmd::kStrain}) {
    if (body.ModeNodeCount[type] == 0) continue;
    FMD_ModeNodeIndex(&body, type, 0);
    if (body.SortedModeNodes[type] == nullptr) return false;
  }
  return body.NodeCount == 0 || body.SortedNodes != nullptr;
}

bool provide_node(FmdBody& body) {
  if (body.SortedNodes == nullptr && !build_missing_tables(body)) return false;
  if (body.NodeCount < body.NodeCapacity) return true;
  if (body.NodeCapacity > std::numeric_limits<std::int32_t>::max() - kStep) {
    fmd::report_allocation_failure("dbset");
    return false;
  }
  const std::int32_t capacity = body.NodeCapacity + kStep;
  if (capacity > body.ReservedNodes) {
    const std::int64_t room = room_for(body, capacity);
    const auto old_nodes = reinterpret_cast<std::uintptr_t>(body.Nodes);
    const bool grown = grow_tables(body, room);
    body.SortedModeNodes[fmd::kShape] = body.SortedNodes;
    if (reinterpret_cast<std::uintptr_t>(body.Nodes) != old_nodes) move_pointers(body, old_nodes);
    if (!grown) {
      fmd::report_allocation_failure("dbset");
      return false;
    }
    body.ReservedNodes =
        static_cast<std::int32_t>(std::min<std::int64_t>(room, std::numeric_limits<std::int32_t>::max()));
  }
  body.NodeCapacity = capacity;
  return true;
}

}  // namespace

int FMD_AddNode(FmdBody* body, int id) {
  if (CheckFMD(body) == 0 || !provide_node(*body)) return -1;
  const int index = body->NodeCount;
  FmdNode& node = body->Nodes[index];
  node.Id = id;
  node.Mass = 0.0;
  node.Inertia = nullptr;
  // Until they are set coordinates hold whatever the allocation gave; zeros are as good as anything.
  std::fill(std::begin(node.Coordinates), std::end(node.Coordinates), 0.0);
  body->ModeNodes[fmd::kShape][index] = &node;
  // A place beyond the stress nodes in use, filled since ever.
  if (index >= body->ModeNodeCount[fmd::kStress]) body->ModeNodes[fmd::kStress][index] = &node;
  fmd::insert_pair(body->SortedNodes, index, {id, index});
  ++body->ModeNodeCount[fmd::kShape];
  ++body->NodeCount;
  return index;
}

int FMD_LookupOrAddNode(FmdBody* body, int id) {
  if (CheckFMD(body) == 0) return -1;
  const int index = FMD_NodeIndex(body, id);
  return index >= 0 ? index : FMD_AddNode(body, id);
}

namespace fmd {

int lookup_or_add_mode_node(FmdBody& body, int type, int node_index) {
  FmdNode& node = body.Nodes[node_index];
  const int found = FMD_ModeNodeIndex(&body, type, node.Id);
  if (found >= 0) return found;
  const int place = body.ModeNodeCount[type];
  if (place >= body.NodeCapacity) return -1;
  // A body that came without these tables gets them with its first such node.
  if (body.SortedModeNodes[type] == nullptr) {
    body.SortedModeNodes[type] = allocate<FmdIdIndex>(body.NodeCapacity, "dbset").release();
  }
  if (body.ModeNodes[type] == nullptr) {
    body.ModeNodes[type] = allocate<FmdNode*>(body.NodeCapacity, "dbset").release();
  }
  if (body.SortedModeNodes[type] == nullptr || body.ModeNodes[type] == nullptr) return -1;
  body.ModeNodes[type][place] = &node;
  insert_pair(body.SortedModeNodes[type], place, {node.Id, place});
  ++body.ModeNodeCount[type];
  return place;
}

}  // namespace fmd
