#include "calculix/id_index.h"

#include <algorithm>
#include <cstdint>

namespace calculix {

IdIndex::IdIndex(const std::vector<int>& ids) {
  if (ids.empty()) return;
  const auto [lowest, highest] = std::minmax_element(ids.begin(), ids.end());
  lowest_ = *lowest;
  const std::int64_t span = std::int64_t{*highest} - *lowest + 1;
  constexpr std::int64_t sparsest = 8;
  if (span <= sparsest * static_cast<std::int64_t>(ids.size())) {
    table_.assign(static_cast<std::size_t>(span), -1);
    for (std::size_t i = 0; i < ids.size(); ++i) {
      int& place = table_[static_cast<std::size_t>(std::int64_t{ids[i]} - lowest_)];
      if (place < 0) {
        place = static_cast<int>(i);
      } else if (duplicate_ < 0) {
        duplicate_ = static_cast<int>(i);
      }
    }
    return;
  }
  for (std::size_t i = 0; i < ids.size(); ++i) sorted_.emplace_back(ids[i], static_cast<int>(i));
  std::sort(sorted_.begin(), sorted_.end());
  for (std::size_t i = 1; i < sorted_.size(); ++i) {
    if (sorted_[i].first == sorted_[i - 1].first && (duplicate_ < 0 || sorted_[i].second < duplicate_)) {
      duplicate_ = sorted_[i].second;
    }
  }
}

int IdIndex::find(int id) const {
  if (!table_.empty()) {
    const std::int64_t place = std::int64_t{id} - lowest_;
    if (place < 0 || place >= static_cast<std::int64_t>(table_.size())) return -1;
    return table_[static_cast<std::size_t>(place)];
  }
  const auto found = std::lower_bound(sorted_.begin(), sorted_.end(), std::make_pair(id, -1));
  return found != sorted_.end() && found->first == id ? found->second : -1;
}

}  // namespace calculix
