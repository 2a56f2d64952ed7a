// An anonymous file of bytes behind page frames: it has no name and vanishes with the process.
//
// Disk space is reserved before anything is written, so that a full disk shows in reserve() and not when a
// frame is written out. Bytes that were reserved and never written are zero. Nothing is mapped: a disk that
// fails is a status and never a signal.
#ifndef FMDTOOLKIT_KDCDB_SCRATCH_FILE_H
#define FMDTOOLKIT_KDCDB_SCRATCH_FILE_H

#include <cstdint>
#include <string>
#include <vector>

#include "kdcdb/kdcdb.h"
#include "kdcdb/page_cache.h"

namespace kdcdb {

class ScratchFile {
 public:
  explicit ScratchFile(PageCache& cache);
  ~ScratchFile();
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  // Makes the file beside the path given: without a name, or with one that is gone at once.
  Status create(const std::string& beside);

  // Room for so many bytes from the start, exactly or with some ahead.
  Status reserve(std::int64_t bytes);
  Status reserve_ahead(std::int64_t bytes);

  // Gives back room beyond so many bytes, or everything.
  void trim(std::int64_t bytes);
  Status clear();

  // Within the room reserved.
  Status write(std::int64_t offset, const void* from, std::int64_t bytes);
  Status read(std::int64_t offset, void* to, std::int64_t bytes);

  // For the cache: writes the valid bytes of a frame to the file.
  Status write_out(Frame& frame);
  std::uint64_t hash() const { return hash_; }

 private:
  Frame* find(std::int64_t page) {
    if (last_ != nullptr && last_->page == page && last_->owner == this) return last_;
    Frame* frame = cache_.find(this, hash_, page);
    if (frame != nullptr) last_ = frame;
    return frame;
  }
  bool is_written(std::int64_t page) const;
  void mark_written(std::int64_t first_page, std::int64_t last_page);
  Status allocate_on_disk(std::int64_t from, std::int64_t to);
  Status write_zeros(std::int64_t from, std::int64_t to);
  Status fill(Frame& frame);
  Status write_piece(std::int64_t page, int at, const unsigned char* from, int bytes);
  Status read_piece(std::int64_t page, int at, unsigned char* to, int bytes);
  Status write_whole_pages(std::int64_t offset, const unsigned char* from, std::int64_t bytes);
  Status read_large(std::int64_t offset, unsigned char* to, std::int64_t bytes);
  Status read_run(std::int64_t offset, unsigned char* to, std::int64_t bytes);
  Status write_to_disk(std::int64_t offset, const unsigned char* from, std::int64_t bytes);
  Status read_from_disk(std::int64_t offset, unsigned char* to, std::int64_t bytes) const;

  PageCache& cache_;
  std::uint64_t hash_;
  Frame* last_ = nullptr;
  int file_ = -1;
  std::int64_t reserved_ = 0;           // bytes
  std::vector<std::uint64_t> written_;  // one bit a page: the file holds data of it
};

}  // namespace kdcdb

#endif
