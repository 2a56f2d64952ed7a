// A datablock that is being stored: its words go into free pages of the master file as they come, so that a
// large one needs no memory but for its page checksums. The commit makes it part of the database.
#ifndef FMDTOOLKIT_KDCDB_NEW_BLOCK_H
#define FMDTOOLKIT_KDCDB_NEW_BLOCK_H

#include <cstdint>
#include <vector>

#include "kdcdb/datablock.h"
#include "kdcdb/dictionary.h"
#include "kdcdb/page_allocator.h"

namespace kdcdb {

class NewBlock : public Datablock {
 public:
  // In the file given, which stays the caller's, as the allocator does.
  NewBlock(int file, PageAllocator& allocator, Qualifiers qualifiers, std::uint64_t serial);

  Status clear() override;
  Status read(std::int64_t position, void* to, std::int64_t count) override;
  Status write(std::int64_t position, const void* from, std::int64_t count) override;
  Status append(const void* from, std::int64_t count) override;
  Status append_zeros(std::int64_t count) override;
  void end_writing() override;
  void abandon() override {
    complete_ = false;
    failure_ = kOk;
  }

  // Written without an error and closed.
  bool is_complete() const { return complete_; }

  // What went wrong in a datablock that was not abandoned, its closing included.
  Status failure() const { return failure_; }
  const Qualifiers& qualifiers() const { return qualifiers_; }

  // Writes the directory and tells the dictionary what to say.
  Status store_directory(StoredEntry& entry);

 private:
  Status fail(Status status);
  Status take_into_staging(const unsigned char* from, std::int64_t bytes);
  Status flush(std::size_t pages);
  Status write_to_pages(const unsigned char* from, std::uint64_t pages);
  std::int64_t flushed_bytes() const;
  std::int64_t offset_of(std::uint64_t page) const;
  template <typename Visit>
  Status visit_pages(std::int64_t offset, std::int64_t bytes, Visit visit);

  int file_;
  PageAllocator& allocator_;
  Qualifiers qualifiers_;
  std::uint64_t serial_;
  std::vector<unsigned char> staging_;
  std::size_t staged_ = 0;  // bytes
  std::vector<Extent> extents_;
  std::vector<std::uint32_t> checksums_;  // of the pages that have left the staging buffer
  Status failure_ = kOk;
  bool complete_ = false;
};

}  // namespace kdcdb

#endif
