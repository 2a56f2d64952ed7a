#include "kdcdb/cursor.h"

#include <algorithm>

namespace kdcdb {

Status Cursor::open(int option) {
  Status status = block_->prepare();
  if (status != kOk) return status;
  if (option == kOpenNew) {
    status = block_->clear();
    if (status != kOk) return status;
    mode_ = Mode::kWriting;
  } else if (option == kOpenExisting || option == kOpenAgain) {
    mode_ = Mode::kReading;
  } else {
    return kBadArgument;
  }
  generation_ = block_->generation;
  stand_at(0);
  return kOk;
}

void Cursor::close() {
  if (mode_ == Mode::kWriting) block_->end_writing();
  mode_ = Mode::kClosed;
}

void Cursor::stand_at(std::int64_t position) {
  at_ = position;
  record_ = block_->record_at(position);
  marks_ = block_->record_ends.size();
}

Status Cursor::to_next_record() {
  const Status status = check();
  if (status != kOk) return status;
  if (record_.is_last) return kEndOfDatablock;
  stand_at(record_.end + 1);
  return kOk;
}

Status Cursor::save(std::int64_t* position, bool* end_of_record, bool* end_of_file) {
  const Status status = check();
  if (status != kOk) return status;
  *position = at_;
  *end_of_record = !record_.is_last && at_ == record_.end;
  *end_of_file = at_ == block_->words;
  return kOk;
}

Status Cursor::restore(std::int64_t position) {
  if (mode_ == Mode::kClosed || generation_ != block_->generation) return kNotOpen;
  if (position < 0 || position > block_->words) {
    at_ = kNowhere;
    return kBadPosition;
  }
  // Mostly the place is in the record where the cursor stands already.
  const bool known = marks_ == block_->record_ends.size() && position >= record_.start;
  if (known && (record_.is_last || position <= record_.end)) {
    at_ = position;
  } else {
    stand_at(position);
  }
  return kOk;
}

Status Cursor::remaining(std::int64_t* words) {
  const Status status = check();
  if (status == kOk) *words = record_end() - at_;
  return status;
}

Status Cursor::skip(std::int64_t count) {
  const Status status = check();
  if (status != kOk) return status;
  const std::int64_t end = record_end();
  if (count > end - at_) return kEndOfRecord;
  if (count == end - at_ && count > 0 && record_.is_last && mode_ == Mode::kReading) return kEndOfRecord;
  at_ += count;
  return kOk;
}

Status Cursor::read(void* words, std::int64_t count, std::int64_t* actual) {
  *actual = 0;
  Status status = check();
  if (status != kOk) return status;
  const std::int64_t available = std::min(count, record_end() - at_);
  status = block_->read(at_, words, available);
  if (status != kOk) return status;
  at_ += available;
  *actual = available;
  return available < count ? kEndOfRecord : kOk;
}

Status Cursor::write(const void* words, std::int64_t count) {
  const Status status = check();
  if (status != kOk) return status;
  const std::int64_t inside = std::min(count, record_end() - at_);
  if (inside < count && !(record_.is_last && mode_ == Mode::kWriting)) return kEndOfRecord;
  const Status written = block_->write(at_, words, inside);
  if (written != kOk) return written;
  if (inside < count) {
    const auto* rest = static_cast<const std::int32_t*>(words) + inside;
    const Status appended = block_->append(rest, count - inside);
    if (appended != kOk) return appended;
  }
  at_ += count;
  return kOk;
}

// At the end of a record that has its mark, moves past it: a record that is rewritten ends where it did.
Status Cursor::end_record() {
  Status status = check();
  if (status != kOk) return status;
  if (at_ != record_end()) return kBadPosition;
  if (record_.is_last) {
    if (mode_ != Mode::kWriting) return kEndOfRecord;
    status = block_->append_mark();
    if (status != kOk) return status;
  }
  stand_at(at_ + 1);
  return kOk;
}

Status Cursor::write_zeros(std::int64_t count) {
  const Status status = check();
  if (status != kOk) return status;
  if (mode_ != Mode::kWriting) return kNotOpen;
  if (at_ != block_->words) return kBadPosition;
  const Status appended = block_->append_zeros(count);
  if (appended == kOk) at_ += count;
  return appended;
}

}  // namespace kdcdb
