// Page frames in front of scratch files: small writes anywhere in a large file without a system call each.
//
// A frame holds one 16 KiB page of one file. Its bytes [lo, hi) are valid; the rest has not been looked at. A
// write that touches the interval extends it, so a page that is filled in pieces is never read. Frames are
// found by an open hash with linear probing and given up by CLOCK, which writes [lo, hi) of a changed one.
#ifndef FMDTOOLKIT_KDCDB_PAGE_CACHE_H
#define FMDTOOLKIT_KDCDB_PAGE_CACHE_H

#include <cstdint>
#include <memory>

namespace kdcdb {

constexpr int kPageBits = 14;
constexpr int kPageBytes = 1 << kPageBits;
constexpr int kDefaultFrames = 2048;  // 32 MiB

class ScratchFile;

struct Frame {
  std::unique_ptr<unsigned char[]> bytes;
  ScratchFile* owner = nullptr;  // null: free
  std::int64_t page = 0;
  int lo = 0;
  int hi = 0;
  int next_free = -1;
  bool changed = false;
  bool referenced = false;
};

class PageCache {
 public:
  explicit PageCache(int frames = kDefaultFrames) : limit_(frames) {}
  PageCache(const PageCache&) = delete;
  PageCache& operator=(const PageCache&) = delete;

  Frame* find(const ScratchFile* owner, std::uint64_t owner_hash, std::int64_t page) {
    if (table_ == nullptr) return nullptr;
    for (std::uint32_t slot = home(owner_hash, page);; slot = (slot + 1) & mask_) {
      if (table_[slot] < 0) return nullptr;
      Frame& frame = frames_[table_[slot]];
      if (frame.page == page && frame.owner == owner) return &frame;
    }
  }

  // A frame for a page that has none, with an empty interval; null when memory is short or no frame can be
  // written out, and the caller then works on the file itself.
  Frame* acquire(ScratchFile* owner, std::int64_t page);

  // Gives up a frame, or all frames of a file, without writing.
  void discard(Frame& frame);
  void forget(const ScratchFile* owner);

  // Gives the storage back to the system; all frames are free then.
  void release_storage();

  // Room of one page for whoever is at work.
  unsigned char* bounce() { return bounce_; }

 private:
  std::uint32_t home(std::uint64_t owner_hash, std::int64_t page) const {
    const std::uint64_t mixed = (owner_hash + static_cast<std::uint64_t>(page)) * 0x9E3779B97F4A7C15U;
    return static_cast<std::uint32_t>(mixed >> 40) & mask_;
  }
  bool make_tables();
  Frame* unused_frame();
  Frame* evict();
  void remove_from_table(const Frame& frame);

  int limit_;
  int made_ = 0;
  int hand_ = 0;
  int free_ = -1;
  std::uint32_t mask_ = 0;
  std::unique_ptr<Frame[]> frames_;
  std::unique_ptr<std::int32_t[]> table_;  // frame numbers, -1 for none
  unsigned char bounce_[kPageBytes];
};

}  // namespace kdcdb

#endif
