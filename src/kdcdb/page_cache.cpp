#include "kdcdb/page_cache.h"

#include <algorithm>
#include <new>

#include "kdcdb/scratch_file.h"

namespace kdcdb {

bool PageCache::make_tables() {
  if (table_ != nullptr) return true;
  std::uint32_t size = 4;
  while (size < 2 * static_cast<std::uint32_t>(limit_)) size *= 2;
  std::unique_ptr<Frame[]> frames(new (std::nothrow) Frame[static_cast<std::size_t>(limit_)]);
  std::unique_ptr<std::int32_t[]> table(new (std::nothrow) std::int32_t[size]);
  if (frames == nullptr || table == nullptr) return false;
  std::fill_n(table.get(), size, -1);
  frames_ = std::move(frames);
  table_ = std::move(table);
  mask_ = size - 1;
  return true;
}

Frame* PageCache::acquire(ScratchFile* owner, std::int64_t page) {
  if (!make_tables()) return nullptr;
  Frame* frame = unused_frame();
  if (frame == nullptr) return nullptr;
  frame->owner = owner;
  frame->page = page;
  frame->lo = frame->hi = 0;
  frame->changed = false;
  frame->referenced = true;
  std::uint32_t slot = home(owner->hash(), page);
  while (table_[slot] >= 0) slot = (slot + 1) & mask_;
  table_[slot] = static_cast<std::int32_t>(frame - frames_.get());
  return frame;
}

Frame* PageCache::unused_frame() {
  if (free_ >= 0) {
    Frame& frame = frames_[free_];
    free_ = frame.next_free;
    return &frame;
  }
  if (made_ < limit_) {
    Frame& frame = frames_[made_];
    frame.bytes.reset(new (std::nothrow) unsigned char[kPageBytes]);
    if (frame.bytes != nullptr) {
      ++made_;
      return &frame;
    }
  }
  return evict();
}

Frame* PageCache::evict() {
  // A disk that takes nothing more is asked a few times only: the changed pages stay, and so does their data.
  int refusals_left = 8;
  for (int steps = 2 * made_; steps > 0 && refusals_left > 0; --steps) {
    Frame& frame = frames_[hand_];
    hand_ = (hand_ + 1) % made_;
    if (frame.referenced) {
      frame.referenced = false;
    } else if (frame.changed && frame.owner->write_out(frame) != kOk) {
      --refusals_left;
    } else {
      remove_from_table(frame);
      return &frame;
    }
  }
  return nullptr;
}

void PageCache::remove_from_table(const Frame& frame) {
  const auto number = static_cast<std::int32_t>(&frame - frames_.get());
  std::uint32_t hole = home(frame.owner->hash(), frame.page);
  while (table_[hole] != number) hole = (hole + 1) & mask_;
  // Later entries of the run move up, unless they would come to stand before their home.
  for (std::uint32_t slot = (hole + 1) & mask_; table_[slot] >= 0; slot = (slot + 1) & mask_) {
    const Frame& other = frames_[table_[slot]];
    const std::uint32_t wanted = home(other.owner->hash(), other.page);
    if (((slot - wanted) & mask_) < ((slot - hole) & mask_)) continue;
    table_[hole] = table_[slot];
    hole = slot;
  }
  table_[hole] = -1;
}

void PageCache::discard(Frame& frame) {
  remove_from_table(frame);
  frame.owner = nullptr;
  frame.changed = false;
  frame.next_free = free_;
  free_ = static_cast<int>(&frame - frames_.get());
}

void PageCache::forget(const ScratchFile* owner) {
  for (int frame = 0; frame < made_; ++frame)
    if (frames_[frame].owner == owner) discard(frames_[frame]);
}

void PageCache::release_storage() {
  frames_.reset();
  table_.reset();
  made_ = hand_ = 0;
  free_ = -1;
}

}  // namespace kdcdb
