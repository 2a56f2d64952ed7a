#include "kdcdb/stored_block.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

#include "kdcdb/crc32c.h"
#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

// So many pages are read and checked while they are still in the processor's cache.
constexpr std::size_t kPagesAtOnce = 16;

}  // namespace

StoredBlock::StoredBlock(std::shared_ptr<const StoredFile> stored, std::size_t entry)
    : stored_(std::move(stored)), entry_(entry) {
  trailer = this->entry().trailer;
  words = static_cast<std::int64_t>(this->entry().words);
}

Status StoredBlock::prepare() {
  if (prepared_) return kOk;
  std::vector<unsigned char> bytes(entry().directory_bytes);
  const auto offset = static_cast<off_t>(entry().directory_page * kPageBytes);
  Status status = read_exactly(stored_->file(), bytes.data(), bytes.size(), offset);
  if (status != kOk) return status;
  if (crc32c(bytes.data(), bytes.size()) != entry().directory_crc) return kDamaged;
  status = decode_directory_head(bytes, entry(), head_);
  if (status != kOk) return status;
  record_ends = std::move(head_.record_ends);
  prepared_ = true;
  return kOk;
}

Status StoredBlock::read_piece(std::uint64_t piece) {
  if (piece == piece_) return kOk;
  piece_ = kNone;
  checksums_.resize(kChecksumsPerPiece);
  auto* const bytes = reinterpret_cast<unsigned char*>(checksums_.data());
  const std::uint64_t page = entry().directory_page + pages_of_bytes(entry().directory_bytes) + piece;
  const Status status =
      read_exactly(stored_->file(), bytes, kPageBytes, static_cast<off_t>(page * kPageBytes));
  if (status != kOk) return status;
  if (checksum_piece(entry().serial, piece, bytes) != head_.piece_checksums[piece]) return kDamaged;
  piece_ = piece;
  return kOk;
}

// Pages of the datablock as they stand in the file, over the ends of extents.
Status StoredBlock::read_raw(std::uint64_t page, std::size_t pages, unsigned char* to) const {
  for (const Extent& extent : entry().extents) {
    if (page >= extent.pages) {
      page -= extent.pages;
      continue;
    }
    const auto here = static_cast<std::size_t>(std::min<std::uint64_t>(pages, extent.pages - page));
    const auto offset = static_cast<off_t>((extent.page + page) * kPageBytes);
    const Status status = read_exactly(stored_->file(), to, here * kPageBytes, offset);
    if (status != kOk) return status;
    to += here * kPageBytes;
    pages -= here;
    page = 0;
    if (pages == 0) break;
  }
  return pages == 0 ? kOk : kDamaged;
}

Status StoredBlock::read_checked(std::uint64_t page, std::size_t pages, unsigned char* to) {
  std::array<std::uint32_t, kPagesAtOnce> found;
  while (pages > 0) {
    const std::uint64_t in_piece = page % kChecksumsPerPiece;
    const std::size_t here = std::min({pages, kPagesAtOnce, kChecksumsPerPiece - in_piece});
    Status status = read_piece(page / kChecksumsPerPiece);
    if (status == kOk) status = read_raw(page, here, to);
    if (status != kOk) return status;
    checksum_pages(entry().serial, page, to, here, found.data());
    if (!std::equal(found.data(), found.data() + here, checksums_.data() + in_piece)) return kDamaged;
    page += here;
    pages -= here;
    to += here * kPageBytes;
  }
  return kOk;
}

Status StoredBlock::read_into_page(std::uint64_t page) {
  if (page == page_number_) return kOk;
  page_number_ = kNone;
  page_.resize(kPageBytes);
  const Status status = read_checked(page, 1, page_.data());
  if (status == kOk) page_number_ = page;
  return status;
}

// Whole pages go straight to the caller, parts of pages through the page kept.
Status StoredBlock::read(std::int64_t position, void* to, std::int64_t count) {
  auto* out = static_cast<unsigned char*>(to);
  auto page = static_cast<std::uint64_t>(position * kWordBytes / kPageBytes);
  auto at = static_cast<std::size_t>(position * kWordBytes % kPageBytes);
  auto left = static_cast<std::size_t>(count * kWordBytes);
  while (left > 0) {
    const std::size_t whole = at == 0 ? left / kPageBytes : 0;
    const std::size_t bytes = whole > 0 ? whole * kPageBytes : std::min(left, kPageBytes - at);
    const Status status = whole > 0 ? read_checked(page, whole, out) : read_into_page(page);
    if (status != kOk) return status;
    if (whole == 0) std::memcpy(out, page_.data() + at, bytes);
    page += whole > 0 ? whole : 1;
    at = 0;
    out += bytes;
    left -= bytes;
  }
  return kOk;
}

}  // namespace kdcdb
