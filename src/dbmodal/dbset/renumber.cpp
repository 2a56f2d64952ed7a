// Node ids change hands: exchange of two nodes, shift of all ids, new ids for the interface nodes.
#include <algorithm>
#include <utility>

#include "body/body.h"
#include "dbmodal/dbdata/node_tables.h"
#include "dbmodal/dbdata/sorted_table.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

// Ids are the caller's and may be anything: unsigned arithmetic wraps where signed would overflow.
std::int32_t shifted(std::int32_t id, int offset) {
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(id) + static_cast<std::uint32_t>(offset));
}

// The pair of a mode node index, found by its index and not by its id, which is what changes.
FmdIdIndex* pair_of(FmdBody& body, int type, int index) {
  FmdIdIndex* const pairs = body.SortedModeNodes[type];
  if (pairs == nullptr) return nullptr;
  FmdIdIndex* const end = pairs + body.ModeNodeCount[type];
  FmdIdIndex* const found =
      std::find_if(pairs, end, [index](const FmdIdIndex& pair) { return pair.Index == index; });
  return found == end ? nullptr : found;
}

void give_id(FmdBody& body, int type, int index, std::int32_t id) {
  FmdIdIndex* const pair = pair_of(body, type, index);
  if (pair != nullptr) pair->Id = id;
}

void sort_table(FmdBody& body, int type) {
  if (body.SortedModeNodes[type] == nullptr) return;
  fmd::sort_pairs(body.SortedModeNodes[type], body.ModeNodeCount[type]);
}

// Gives a node an id that is free.
void rename_node(FmdBody& body, int index, std::int32_t id) {
  FmdNode& node = body.Nodes[index];
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    const int place = type == fmd::kShape ? index : FMD_ModeNodeIndex(&body, type, node.Id);
    if (place < 0) continue;
    give_id(body, type, place, id);
    sort_table(body, type);
  }
  node.Id = id;
}

bool has_all_tables(FmdBody& body) {
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    if (!fmd::provide_sorted(body, type)) return false;
  }
  return true;
}

// Two nodes exchange their ids.
void exchange_ids(FmdBody& body, int first, int second) {
  FmdNode& one = body.Nodes[first];
  FmdNode& other = body.Nodes[second];
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    const int p = type == fmd::kShape ? first : FMD_ModeNodeIndex(&body, type, one.Id);
    const int q = type == fmd::kShape ? second : FMD_ModeNodeIndex(&body, type, other.Id);
    FmdIdIndex* const pair_p = p < 0 ? nullptr : pair_of(body, type, p);
    FmdIdIndex* const pair_q = q < 0 ? nullptr : pair_of(body, type, q);
    if (pair_p != nullptr) pair_p->Id = other.Id;
    if (pair_q != nullptr) pair_q->Id = one.Id;
    sort_table(body, type);
  }
  std::swap(one.Id, other.Id);
}

}  // namespace

void FMD_SwapNodesByID(FmdBody* body, int first, int second) {
  if (CheckFMD(body) == 0) return;
  const int a = FMD_NodeIndex(body, first);
  const int b = FMD_NodeIndex(body, second);
  if (a < 0 || b < 0) return;
  // The pairs stay as they are: an id still answers its old index, where the other record now lies.
  std::swap(body->Nodes[a], body->Nodes[b]);
}

int FMD_RenumberNodes(FmdBody* body, int offset) {
  if (CheckFMD(body) == 0) return 1;
  for (int node = 0; node < body->NodeCount; ++node) {
    body->Nodes[node].Id = shifted(body->Nodes[node].Id, offset);
  }
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    FmdIdIndex* const pairs = body->SortedModeNodes[type];
    if (pairs == nullptr) continue;
    for (int place = 0; place < body->ModeNodeCount[type]; ++place) {
      pairs[place].Id = shifted(pairs[place].Id, offset);
    }
    // A shift keeps the order unless an id wrapped around.
    sort_table(*body, type);
  }
  return 1;
}

int FMD_RenumberInterfaceNodes(FmdBody* body, int count, int* ids) {
  if (CheckFMD(body) == 0) return 1;
  if (count > body->InterfaceNodeCount) {
    FMD_Warning("Too many interface ID are given. Only the first %d will be used.\n",
                body->InterfaceNodeCount);
    count = body->InterfaceNodeCount;
  }
  // Without them a taken id would look free.
  if (count > 0 && !has_all_tables(*body)) return 1;
  for (int i = 0; i < count; ++i) {
    const int index = body->InterfaceNodes[i];
    if (index < 0 || index >= body->NodeCount) continue;
    const int holder = FMD_NodeIndex(body, ids[i]);
    if (holder == index) continue;
    if (holder < 0) {
      rename_node(*body, index, ids[i]);
    } else {
      exchange_ids(*body, index, holder);
    }
  }
  return 1;
}
