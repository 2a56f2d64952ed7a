// Between the caller's node ids and mode numbers and the dense indices of the tables.
#include "body/body.h"
#include "dbmodal/dbdata/sorted_table.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

bool is_type(int type) {
  return type >= 0 && type < TOTAL_MODE_INFO_TYPES;
}

// The pairs of a body that was read without them.
bool build_sorted_nodes(FmdBody& body) {
  auto pairs = fmd::allocate<FmdIdIndex>(body.NodeCapacity, "dbdata");
  if (pairs == nullptr) return false;
  for (int node = 0; node < body.NodeCount; ++node) {
    pairs[static_cast<std::size_t>(node)] = {body.Nodes[node].Id, node};
  }
  fmd::sort_pairs(pairs.get(), body.NodeCount);
  body.SortedNodes = pairs.release();
  body.SortedModeNodes[fmd::kShape] = body.SortedNodes;
  return true;
}

bool build_sorted_mode_nodes(FmdBody& body, int type) {
  auto pairs = fmd::allocate<FmdIdIndex>(body.NodeCapacity, "dbdata");
  if (pairs == nullptr) return false;
  for (int place = 0; place < body.ModeNodeCount[type]; ++place) {
    pairs[static_cast<std::size_t>(place)] = {body.ModeNodes[type][place]->Id, place};
  }
  fmd::sort_pairs(pairs.get(), body.ModeNodeCount[type]);
  body.SortedModeNodes[type] = pairs.release();
  return true;
}

}  // namespace

int FMD_NodeIndex(FmdBody* body, int id) {
  if (CheckFMD(body) == 0 || body->NodeCount == 0) return -1;
  if (body->SortedNodes == nullptr && !build_sorted_nodes(*body)) return -1;
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
  if (type == fmd::kShape) return FMD_NodeIndex(body, id);
  if (CheckFMD(body) == 0 || !is_type(type) || body->ModeNodeCount[type] == 0) return -1;
  if (body->SortedModeNodes[type] == nullptr && !build_sorted_mode_nodes(*body, type)) return -1;
  FmdIdIndex* const pairs = body->SortedModeNodes[type];
  const int place = fmd::find_id(pairs, body->ModeNodeCount[type], id, body->LastModeNodePlace[type]);
  return place < 0 ? -1 : pairs[place].Index;
}
