#include "kdcdb/datablock.h"

#include <algorithm>

namespace kdcdb {

Datablock::Record Datablock::record_at(std::int64_t position) const {
  const auto mark = std::lower_bound(record_ends.begin(), record_ends.end(), position);
  const std::int64_t start = mark == record_ends.begin() ? 0 : *(mark - 1) + 1;
  if (mark == record_ends.end()) return {start, words, true};
  return {start, *mark, false};
}

Status Datablock::append_mark() {
  const std::int32_t mark = 0;
  record_ends.push_back(words);
  const Status status = append(&mark, 1);
  if (status != kOk) record_ends.pop_back();
  return status;
}

}  // namespace kdcdb
