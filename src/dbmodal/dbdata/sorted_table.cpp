#include "dbmodal/dbdata/sorted_table.h"

#include <algorithm>

namespace fmd {

namespace {

bool before(const FmdIdIndex& pair, std::int32_t id) {
  return pair.Id < id;
}

}  // namespace

int find_id(const FmdIdIndex* table, int count, std::int32_t id, std::int32_t& hint) {
  for (int place = std::max(hint, 0); place < count && place <= hint + 1; ++place) {
    if (table[place].Id != id) continue;
    hint = place;
    return place;
  }
  const FmdIdIndex* const found = std::lower_bound(table, table + count, id, before);
  if (found == table + count || found->Id != id) return -1;
  hint = static_cast<std::int32_t>(found - table);
  return hint;
}

void insert_pair(FmdIdIndex* table, int count, FmdIdIndex pair) {
  FmdIdIndex* place = table + count;
  if (count > 0 && table[count - 1].Id > pair.Id) {
    place = std::upper_bound(table, table + count, pair.Id,
                             [](std::int32_t id, const FmdIdIndex& entry) { return id < entry.Id; });
    std::copy_backward(place, table + count, table + count + 1);
  }
  *place = pair;
}

void sort_pairs(FmdIdIndex* table, int count) {
  std::stable_sort(table, table + count,
                   [](const FmdIdIndex& left, const FmdIdIndex& right) { return left.Id < right.Id; });
}

}  // namespace fmd
