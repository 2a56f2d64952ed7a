// A key's view of a datablock: how it is open and where it stands.
#ifndef FMDTOOLKIT_KDCDB_CURSOR_H
#define FMDTOOLKIT_KDCDB_CURSOR_H

#include <cstdint>
#include <memory>
#include <utility>

#include "kdcdb/datablock.h"

namespace kdcdb {

class Cursor {
 public:
  explicit Cursor(std::shared_ptr<Datablock> block) : block_(std::move(block)) {}

  Datablock* block() const { return block_.get(); }
  bool is_writing() const { return mode_ == Mode::kWriting; }

  Status open(int option);
  void close();

  Status to_next_record();
  Status save(std::int64_t* position, bool* end_of_record, bool* end_of_file);
  Status restore(std::int64_t position);
  Status remaining(std::int64_t* words);
  Status skip(std::int64_t count);
  Status read(void* words, std::int64_t count, std::int64_t* actual);
  Status write(const void* words, std::int64_t count);
  Status end_record();
  Status write_zeros(std::int64_t count);

 private:
  enum class Mode { kClosed, kReading, kWriting };
  static constexpr std::int64_t kNowhere = -1;

  // Also follows what came through another key: marks, and the datablock opened as new.
  Status check() {
    if (mode_ == Mode::kClosed || generation_ != block_->generation) return kNotOpen;
    if (at_ == kNowhere) return kBadPosition;
    if (marks_ != block_->record_ends.size()) stand_at(at_);
    return kOk;
  }
  std::int64_t record_end() const { return record_.is_last ? block_->words : record_.end; }
  void stand_at(std::int64_t position);

  std::shared_ptr<Datablock> block_;
  Mode mode_ = Mode::kClosed;
  std::int64_t at_ = 0;
  Datablock::Record record_{0, 0, true};
  std::size_t marks_ = 0;
  std::uint64_t generation_ = 0;
};

}  // namespace kdcdb

#endif
