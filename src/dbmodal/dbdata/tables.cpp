// Between the caller's node ids and mode numbers and the dense indices of the tables.
#include <algorithm>

#include "body/body.h"
#include "dbmodal/dbdata/node_tables.h"
#include "dbmodal/dbdata/sorted_table.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

bool is_type(int type) {
  return type >= 0 && type < TOTAL_MODE_INFO_TYPES;
}

const FmdNode& node_at(const FmdBody& body, int type, int place) {
  return type == fmd::kShape ? body.Nodes[place] : *body.ModeNodes[type][place];
}

}  // namespace

namespace fmd {

std::int32_t node_room(const FmdBody& body) {
  return std::max(body.NodeCapacity, body.ReservedNodes);
}

bool provide_sorted(FmdBody& body, int type) {
  const std::int32_t count = type == kShape ? body.NodeCount : body.ModeNodeCount[type];
  FmdIdIndex*& table = type == kShape ? body.SortedNodes : body.SortedModeNodes[type];
  if (table != nullptr || count == 0) return true;
  auto pairs = allocate<FmdIdIndex>(node_room(body), "dbdata");
  if (pairs == nullptr) return false;
  for (std::int32_t place = 0; place < count; ++place) {
    pairs[static_cast<std::size_t>(place)] = {node_at(body, type, place).Id, place};
  }
  sort_pairs(pairs.get(), count);
  table = pairs.release();
  body.SortedModeNodes[kShape] = body.SortedNodes;
  return true;
}

}  // namespace fmd

int FMD_NodeIndex(FmdBody* body, int id) {
  if (CheckFMD(body) == 0 || body->NodeCount == 0) return -1;
  if (!fmd::provide_sorted(*body, fmd::kShape)) return -1;
  const int place = fmd::find_id(body->SortedNodes, body->NodeCount, id, body->LastNodePlace);
  return place < 0 ? -1 : body->SortedNodes[place].Index;
}

int FMD_NodeID(FmdBody* body, int index) {
  if (CheckFMD(body) == 0 || body->Nodes == nullptr) return 0;
  return index < 0 || index >= body->NodeCount ? 0 : body->Nodes[index].Id;
}

int FMD_NodeCount(FmdBody* body) {
  return CheckFMD(body) == 0 ? 0 : body->NodeCount;
}

int FMD_ModeCount(FmdBody* body) {
  return CheckFMD(body) == 0 ? 0 : body->ModeCount;
}

int FMD_ModeIndex(FmdBody* body, int number) {
  if (body == nullptr) return -1;
  // The hint is the first mode of its number, as the scan would find it, since numbers only shift together.
  const int last = body->LastModeIndex;
  if (last < body->ModeCount && body->ModeNumbers[last] == number) return last;
  for (int index = 0; index < body->ModeCount; ++index) {
    if (body->ModeNumbers[index] != number) continue;
    body->LastModeIndex = index;
    return index;
  }
  return -1;
}

int FMD_ModeNumber(FmdBody* body, int index) {
  if (CheckFMD(body) == 0) return -1;
  return index < 0 || index >= body->ModeCount ? -1 : body->ModeNumbers[index];
}

int FMD_ModeNodeCount(FmdBody* body, int type) {
  return CheckFMD(body) == 0 || !is_type(type) ? 0 : body->ModeNodeCount[type];
}

int FMD_ModeNodeID(FmdBody* body, int type, int index) {
  if (CheckFMD(body) == 0 || !is_type(type) || body->ModeNodes[type] == nullptr) return 0;
  return index < 0 || index >= body->ModeNodeCount[type] ? 0 : body->ModeNodes[type][index]->Id;
}

int FMD_ModeNodeIndex(FmdBody* body, int type, int id) {
  if (type == fmd::kShape) {
    const int index = FMD_NodeIndex(body, id);
    // Mode shapes of a stored body may end before its nodes do.
    return index < 0 || index >= body->ModeNodeCount[fmd::kShape] ? -1 : index;
  }
  if (CheckFMD(body) == 0 || !is_type(type) || body->ModeNodeCount[type] == 0) return -1;
  if (!fmd::provide_sorted(*body, type)) return -1;
  FmdIdIndex* const pairs = body->SortedModeNodes[type];
  const int place = fmd::find_id(pairs, body->ModeNodeCount[type], id, body->LastModeNodePlace[type]);
  return place < 0 ? -1 : pairs[place].Index;
}
