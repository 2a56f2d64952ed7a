#include "kdcdb/scratch_block.h"

namespace kdcdb {

Status ScratchBlock::clear() {
  const Status status = file.clear();
  if (status != kOk) return status;
  words = 0;
  record_ends.clear();
  ++generation;
  return kOk;
}

Status ScratchBlock::read(std::int64_t position, void* to, std::int64_t count) {
  return file.read(position * kWordBytes, to, count * kWordBytes);
}

Status ScratchBlock::write(std::int64_t position, const void* from, std::int64_t count) {
  return file.write(position * kWordBytes, from, count * kWordBytes);
}

Status ScratchBlock::append(const void* from, std::int64_t count) {
  if (count > kMostWords - words) return kNoSpace;
  Status status = file.reserve_ahead((words + count) * kWordBytes);
  if (status != kOk) return status;
  status = file.write(words * kWordBytes, from, count * kWordBytes);
  if (status == kOk) words += count;
  return status;
}

Status ScratchBlock::append_zeros(std::int64_t count) {
  if (count > kMostWords - words) return kNoSpace;
  const Status status = file.reserve((words + count) * kWordBytes);
  if (status == kOk) words += count;
  return status;
}

void ScratchBlock::end_writing() {
  file.trim(words * kWordBytes);
}

}  // namespace kdcdb
