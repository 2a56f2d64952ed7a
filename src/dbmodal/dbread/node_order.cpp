#include "dbmodal/dbread/node_order.h"

#include <utility>

#include "dbmodal/dbdata/sorted_table.h"

namespace fmd {

namespace {

bool are_in_order(const FmdBody& body, const std::int32_t* ids, std::int32_t count) {
  for (std::int32_t place = 0; place < count; ++place) {
    if (ids[place] != 0 && ids[place] != body.Nodes[place].Id) return false;
  }
  return true;
}

// Who stands where, by the place in the node block ("first") and by the place now.
struct Places {
  CArray<std::int32_t> of_first;
  CArray<std::int32_t> first_at;

  bool start(std::int32_t count) {
    of_first = allocate<std::int32_t>(count, "dbread");
    first_at = allocate<std::int32_t>(count, "dbread");
    if (of_first == nullptr || first_at == nullptr) return false;
    for (std::int32_t i = 0; i < count; ++i) {
      of_first[static_cast<std::size_t>(i)] = i;
      first_at[static_cast<std::size_t>(i)] = i;
    }
    return true;
  }

  void exchange(FmdBody& body, std::int32_t a, std::int32_t b) {
    std::swap(body.Nodes[a], body.Nodes[b]);
    std::int32_t& first_a = first_at[static_cast<std::size_t>(a)];
    std::int32_t& first_b = first_at[static_cast<std::size_t>(b)];
    std::swap(first_a, first_b);
    of_first[static_cast<std::size_t>(first_a)] = a;
    of_first[static_cast<std::size_t>(first_b)] = b;
  }
};

}  // namespace

bool order_nodes(BlockReader& reader, const std::int32_t* ids, std::int32_t count) {
  FmdBody& body = reader.body;
  if (are_in_order(body, ids, count)) return true;
  Places places;
  const auto pairs = allocate<FmdIdIndex>(body.NodeCount, "dbread");
  if (pairs == nullptr || !places.start(body.NodeCount)) return false;
  for (std::int32_t i = 0; i < body.NodeCount; ++i)
    pairs[static_cast<std::size_t>(i)] = {body.Nodes[i].Id, i};
  sort_pairs(pairs.get(), body.NodeCount);

  std::int32_t hint = 0;
  for (std::int32_t place = 0; place < count; ++place) {
    if (ids[place] == 0 || ids[place] == body.Nodes[place].Id) continue;
    const int found = find_id(pairs.get(), body.NodeCount, ids[place], hint);
    if (found < 0) continue;
    const std::int32_t first = pairs[static_cast<std::size_t>(found)].Index;
    places.exchange(body, place, places.of_first[static_cast<std::size_t>(first)]);
  }
  reader.moved = std::move(places.of_first);
  // Lookups by id are made anew from the table as it stands now.
  release(body.SortedNodes);
  body.SortedModeNodes[kShape] = nullptr;
  return true;
}

}  // namespace fmd
