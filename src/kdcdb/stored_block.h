// A stored datablock, read from its master file page by page, each page checked against its checksum.
#ifndef FMDTOOLKIT_KDCDB_STORED_BLOCK_H
#define FMDTOOLKIT_KDCDB_STORED_BLOCK_H

#include <cstdint>
#include <memory>
#include <vector>

#include "kdcdb/block_directory.h"
#include "kdcdb/datablock.h"
#include "kdcdb/stored_file.h"

namespace kdcdb {

class StoredBlock : public Datablock {
 public:
  StoredBlock(std::shared_ptr<const StoredFile> stored, std::size_t entry);

  const StoredEntry& entry() const { return stored_->entries()[entry_]; }
  const std::shared_ptr<const StoredFile>& stored() const { return stored_; }

  // Reads the directory, once.
  Status prepare() override;

  Status read(std::int64_t position, void* to, std::int64_t count) override;

  // What is stored is never changed in place.
  Status clear() override { return kNotSupported; }
  Status write(std::int64_t, const void*, std::int64_t) override { return kNotSupported; }
  Status append(const void*, std::int64_t) override { return kNotSupported; }
  Status append_zeros(std::int64_t) override { return kNotSupported; }
  Status set_trailer(const std::int32_t*) override { return kNotSupported; }
  void end_writing() override {}

 private:
  static constexpr std::uint64_t kNone = ~std::uint64_t{0};

  Status read_piece(std::uint64_t piece);
  Status read_checked(std::uint64_t page, std::size_t pages, unsigned char* to);
  Status read_into_page(std::uint64_t page);
  Status read_raw(std::uint64_t page, std::size_t pages, unsigned char* to) const;

  std::shared_ptr<const StoredFile> stored_;
  std::size_t entry_;
  DirectoryHead head_;
  bool prepared_ = false;
  std::vector<std::uint32_t> checksums_;  // one piece of the table
  std::uint64_t piece_ = kNone;
  std::vector<unsigned char> page_;  // the page that was asked for in part, last
  std::uint64_t page_number_ = kNone;
};

}  // namespace kdcdb

#endif
