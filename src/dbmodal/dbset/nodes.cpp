// Nodes come into being: the node table, the tables that grow with it, and the nodes of stress and strain.
#include <algorithm>
#include <iterator>
#include <limits>

#include "body/body.h"
#include "dbmodal/dbdata/node_tables.h"
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
void move_pointers(FmdBody& body, std::uintptr_t old_nodes, int first_type) {
  for (int type = first_type; type < TOTAL_MODE_INFO_TYPES; ++type) {
    if (body.ModeNodes[type] == nullptr) continue;
    for (int place = 0; place < body.ModeNodeCount[type]; ++place) {
      FmdNode*& node = body.ModeNodes[type][place];
      node = body.Nodes + (reinterpret_cast<std::uintptr_t>(node) - old_nodes) / sizeof(FmdNode);
    }
  }
}

void fill_mode_nodes(FmdBody& body) {
  if (body.ModeNodes[fmd::kShape] == nullptr) return;
  for (int node = 0; node < body.NodeCount; ++node) body.ModeNodes[fmd::kShape][node] = body.Nodes + node;
}

// Storage for as many nodes as the capacity tells, and some ahead.
bool reserve_nodes(FmdBody& body) {
  const std::int64_t room = room_for(body, body.NodeCapacity);
  const auto old_nodes = reinterpret_cast<std::uintptr_t>(body.Nodes);
  const bool lacks_mode_nodes = body.ModeNodes[fmd::kShape] == nullptr;
  const bool grown = grow_tables(body, room);
  // A body may have come with nodes but without mode shapes.
  if (lacks_mode_nodes) fill_mode_nodes(body);
  body.SortedModeNodes[fmd::kShape] = body.SortedNodes;
  if (reinterpret_cast<std::uintptr_t>(body.Nodes) != old_nodes)
    move_pointers(body, old_nodes, lacks_mode_nodes ? fmd::kStress : fmd::kShape);
  if (!grown) {
    fmd::report_allocation_failure("dbset");
    return false;
  }
  body.ReservedNodes =
      static_cast<std::int32_t>(std::min<std::int64_t>(room, std::numeric_limits<std::int32_t>::max()));
  return true;
}

bool provide_node(FmdBody& body) {
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    if (!fmd::provide_sorted(body, type)) return false;
  }
  if (body.NodeCount >= body.NodeCapacity) {
    if (body.NodeCapacity > std::numeric_limits<std::int32_t>::max() - kStep) {
      fmd::report_allocation_failure("dbset");
      return false;
    }
    // The step counts even where its storage cannot be had; the next node asks for that again.
    body.NodeCapacity += kStep;
  }
  return body.NodeCapacity <= body.ReservedNodes || reserve_nodes(body);
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
  if (CheckFMD(body) == 0 || !fmd::provide_sorted(*body, fmd::kShape)) return -1;
  const int index = FMD_NodeIndex(body, id);
  return index >= 0 ? index : FMD_AddNode(body, id);
}

namespace fmd {

int lookup_or_add_mode_node(FmdBody& body, int type, int node_index) {
  if (!provide_sorted(body, type)) return -1;
  FmdNode& node = body.Nodes[node_index];
  const int found = FMD_ModeNodeIndex(&body, type, node.Id);
  if (found >= 0) return found;
  const int place = body.ModeNodeCount[type];
  if (place >= body.NodeCount) return -1;
  // A body that came without these tables gets them with its first such node.
  if (body.SortedModeNodes[type] == nullptr) {
    body.SortedModeNodes[type] = allocate<FmdIdIndex>(node_room(body), "dbset").release();
  }
  if (body.ModeNodes[type] == nullptr) {
    body.ModeNodes[type] = allocate<FmdNode*>(node_room(body), "dbset").release();
  }
  if (body.SortedModeNodes[type] == nullptr || body.ModeNodes[type] == nullptr) return -1;
  body.ModeNodes[type][place] = &node;
  insert_pair(body.SortedModeNodes[type], place, {node.Id, place});
  ++body.ModeNodeCount[type];
  return place;
}

}  // namespace fmd
