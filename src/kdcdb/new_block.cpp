#include "kdcdb/new_block.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "kdcdb/block_directory.h"
#include "kdcdb/crc32c.h"
#include "kdcdb/master_pages.h"
#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

constexpr std::size_t kStagedPages = 16;
constexpr std::size_t kStagingBytes = kStagedPages * kPageBytes;

}  // namespace

NewBlock::NewBlock(int file, PageAllocator& allocator, Qualifiers qualifiers, std::uint64_t serial)
    : file_(file), allocator_(allocator), qualifiers_(std::move(qualifiers)), serial_(serial) {}

// What went wrong once is not mended by writing on.
Status NewBlock::fail(Status status) {
  if (failure_ == kOk) failure_ = status;
  return status;
}

Status NewBlock::clear() {
  staging_.resize(kStagingBytes);
  for (const Extent& extent : extents_) allocator_.give_back(extent);
  extents_.clear();
  checksums_.clear();
  record_ends.clear();
  words = 0;
  staged_ = 0;
  failure_ = kOk;
  complete_ = false;
  ++generation;
  return kOk;
}

std::int64_t NewBlock::flushed_bytes() const {
  return static_cast<std::int64_t>(checksums_.size()) * kPageBytes;
}

// Where a flushed page stands in the file.
std::int64_t NewBlock::offset_of(std::uint64_t page) const {
  for (const Extent& extent : extents_) {
    if (page < extent.pages) return static_cast<std::int64_t>((extent.page + page) * kPageBytes);
    page -= extent.pages;
  }
  return 0;
}

Status NewBlock::write_to_pages(const unsigned char* from, std::uint64_t pages) {
  while (pages > 0) {
    const std::uint64_t behind = extents_.empty() ? 0 : extents_.back().page + extents_.back().pages;
    extents_.reserve(extents_.size() + 1);
    const Extent taken = allocator_.take(pages, behind);
    if (taken.page == behind) {
      extents_.back().pages += taken.pages;
    } else {
      extents_.push_back(taken);
    }
    const std::size_t bytes = taken.pages * kPageBytes;
    if (!fmd::write_all_at(file_, from, bytes, static_cast<off_t>(taken.page * kPageBytes)))
      return status_of_error(errno);
    from += bytes;
    pages -= taken.pages;
  }
  return kOk;
}

// The first staged pages go to the file; the rest moves up. Memory that runs out on the way is a failure like
// any other, which no later write may hide.
Status NewBlock::flush(std::size_t pages) {
  failure_ = kNoMemory;
  const std::size_t first = checksums_.size();
  checksums_.resize(first + pages);
  checksum_pages(serial_, first, staging_.data(), pages, checksums_.data() + first);
  failure_ = write_to_pages(staging_.data(), pages);
  if (failure_ != kOk) return failure_;
  const std::size_t gone = std::min(staged_, pages * kPageBytes);
  std::memmove(staging_.data(), staging_.data() + gone, staged_ - gone);
  staged_ -= gone;
  return kOk;
}

Status NewBlock::take_into_staging(const unsigned char* from, std::int64_t bytes) {
  if (failure_ != kOk) return failure_;
  auto left = static_cast<std::size_t>(bytes);
  while (left > 0) {
    const std::size_t piece = std::min(left, kStagingBytes - staged_);
    if (from == nullptr) {
      std::memset(staging_.data() + staged_, 0, piece);
    } else {
      std::memcpy(staging_.data() + staged_, from, piece);
      from += piece;
    }
    staged_ += piece;
    left -= piece;
    if (staged_ < kStagingBytes) continue;
    const Status status = flush(kStagedPages);
    if (status != kOk) return status;
  }
  return kOk;
}

Status NewBlock::append(const void* from, std::int64_t count) {
  if (count > kMostWords - words) return fail(kNoSpace);
  const Status status = take_into_staging(static_cast<const unsigned char*>(from), count * kWordBytes);
  if (status == kOk) words += count;
  return status;
}

Status NewBlock::append_zeros(std::int64_t count) {
  if (count > kMostWords - words) return fail(kNoSpace);
  const Status status = take_into_staging(nullptr, count * kWordBytes);
  if (status == kOk) words += count;
  return status;
}

// Calls visit(page, offset in the page, bytes) for the pieces of pages that have left the staging buffer.
template <typename Visit>
Status NewBlock::visit_pages(std::int64_t offset, std::int64_t bytes, Visit visit) {
  while (bytes > 0) {
    const auto page = static_cast<std::uint64_t>(offset / kPageBytes);
    const std::int64_t at = offset % kPageBytes;
    const std::int64_t piece = std::min(bytes, kPageBytes - at);
    const Status status = visit(page, at, static_cast<std::size_t>(piece));
    if (status != kOk) return status;
    offset += piece;
    bytes -= piece;
  }
  return kOk;
}

Status NewBlock::read(std::int64_t position, void* to, std::int64_t count) {
  auto* out = static_cast<unsigned char*>(to);
  const std::int64_t offset = position * kWordBytes;
  const std::int64_t bytes = count * kWordBytes;
  const std::int64_t on_disk = std::clamp<std::int64_t>(flushed_bytes() - offset, 0, bytes);
  const Status status = visit_pages(offset, on_disk, [&](std::uint64_t page, std::int64_t at, std::size_t n) {
    const Status read = read_exactly(file_, out, n, static_cast<off_t>(offset_of(page) + at));
    out += n;
    return read;
  });
  if (status != kOk) return status;
  const std::int64_t start = offset + on_disk - flushed_bytes();
  if (bytes > on_disk) std::memcpy(out, staging_.data() + start, static_cast<std::size_t>(bytes - on_disk));
  return kOk;
}

Status NewBlock::write(std::int64_t position, const void* from, std::int64_t count) {
  if (failure_ != kOk) return failure_;
  const auto* in = static_cast<const unsigned char*>(from);
  const std::int64_t offset = position * kWordBytes;
  const std::int64_t bytes = count * kWordBytes;
  const std::int64_t on_disk = std::clamp<std::int64_t>(flushed_bytes() - offset, 0, bytes);
  std::vector<unsigned char> whole(on_disk > 0 ? kPageBytes : 0);
  const Status status = visit_pages(offset, on_disk, [&](std::uint64_t page, std::int64_t at, std::size_t n) {
    const auto place = static_cast<off_t>(offset_of(page));
    const Status known = read_exactly(file_, whole.data(), kPageBytes, place);
    if (known != kOk) return fail(known);
    std::memcpy(whole.data() + at, in, n);
    checksum_pages(serial_, page, whole.data(), 1, &checksums_[page]);
    if (!fmd::write_all_at(file_, whole.data(), kPageBytes, place)) return fail(status_of_error(errno));
    in += n;
    return kOk;
  });
  if (status != kOk) return status;
  const std::int64_t start = offset + on_disk - flushed_bytes();
  if (bytes > on_disk) std::memcpy(staging_.data() + start, in, static_cast<std::size_t>(bytes - on_disk));
  return kOk;
}

void NewBlock::end_writing() {
  if (failure_ != kOk) return;
  const std::size_t pages = pages_of_bytes(staged_);
  std::memset(staging_.data() + staged_, 0, pages * kPageBytes - staged_);
  try {
    complete_ = pages == 0 || flush(pages) == kOk;
  } catch (const std::bad_alloc&) {
    complete_ = false;
  }
  if (complete_) std::vector<unsigned char>().swap(staging_);
}

Status NewBlock::store_directory(StoredEntry& entry) {
  const std::size_t pieces = (checksums_.size() + kChecksumsPerPiece - 1) / kChecksumsPerPiece;
  std::vector<std::uint32_t> table = checksums_;
  table.resize(pieces * kChecksumsPerPiece);
  const auto* const table_bytes = reinterpret_cast<const unsigned char*>(table.data());
  DirectoryHead head;
  head.record_ends = record_ends;
  for (std::size_t piece = 0; piece < pieces; ++piece)
    head.piece_checksums.push_back(checksum_piece(serial_, piece, table_bytes + piece * kPageBytes));

  std::vector<unsigned char> bytes = encode_directory_head(serial_, static_cast<std::uint64_t>(words), head);
  entry.qualifiers = qualifiers_;
  entry.serial = serial_;
  entry.trailer = trailer;
  entry.words = static_cast<std::uint64_t>(words);
  entry.directory_bytes = bytes.size();
  entry.directory_crc = crc32c(bytes.data(), bytes.size());
  entry.extents = extents_;
  bytes.resize(pages_of_bytes(bytes.size()) * kPageBytes);
  bytes.insert(bytes.end(), table_bytes, table_bytes + pieces * kPageBytes);
  const Extent place = allocator_.take_run(bytes.size() / kPageBytes);
  entry.directory_page = place.page;
  if (!fmd::write_all_at(file_, bytes.data(), bytes.size(), static_cast<off_t>(place.page * kPageBytes)))
    return fail(status_of_error(errno));
  return kOk;
}

}  // namespace kdcdb
