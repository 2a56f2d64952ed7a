#include "kdcdb/scratch_block.h"

#include <algorithm>

namespace kdcdb {

ScratchBlock::Record ScratchBlock::record_at(std::int64_t position) const {
  const auto mark = std::lower_bound(record_ends.begin(), record_ends.end(), position);
  const std::int64_t start = mark == record_ends.begin() ? 0 : *(mark - 1) + 1;
  if (mark == record_ends.end()) return {start, words, true};
  return {start, *mark, false};
}

Status ScratchBlock::clear() {
  const Status status = file.clear();
  if (status != kOk) return status;
  words = 0;
  record_ends.clear();
  ++generation;
  return kOk;
}

Status ScratchBlock::append(const void* from, std::int64_t count) {
  if (count > kMostWords - words) return kNoSpace;
  Status status = file.reserve_ahead((words + count) * kWordBytes);
  if (status != kOk) return status;
  status = file.write(words * kWordBytes, from, count * kWordBytes);
  if (status == kOk) words += count;
  return status;
}

Status ScratchBlock::append_mark() {
  const std::int32_t mark = 0;
  record_ends.push_back(words);
  const Status status = append(&mark, 1);
  if (status != kOk) record_ends.pop_back();
  return status;
}

Status ScratchBlock::append_zeros(std::int64_t count) {
  if (count > kMostWords - words) return kNoSpace;
  const Status status = file.reserve((words + count) * kWordBytes);
  if (status == kOk) words += count;
  return status;
}

}  // namespace kdcdb
