#include "kdcdb/scratch_file.h"

#include <algorithm>
#include <cstring>

#include "kdcdb/master_file.h"
#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

constexpr std::int64_t kMebibyte = 1 << 20;
constexpr std::int64_t kLeastStep = 64 << 10;
constexpr std::int64_t kLargestStep = 64 * kMebibyte;

std::uint64_t file_count = 0;

std::int64_t pages_of(std::int64_t bytes) {
  return (bytes + kPageBytes - 1) >> kPageBits;
}

}  // namespace

ScratchFile::ScratchFile(PageCache& cache) : cache_(cache), hash_(++file_count << 32) {}

ScratchFile::~ScratchFile() {
  cache_.forget(this);
  if (file_ >= 0) fmd::file_system().close(file_);
}

Status ScratchFile::create(const std::string& beside) {
  fmd::FileSystem& system = fmd::file_system();
  const std::string directory = directory_of(beside);
  std::string named = beside + "_XXXXXX";
  file_ = system.open(directory.c_str(), O_TMPFILE | O_RDWR, 0600);
  if (file_ >= 0) return kOk;
  if (errno != EOPNOTSUPP && errno != EISDIR && errno != EINVAL) return status_of_error(errno);
  file_ = system.mkstemp(named.data());
  if (file_ < 0) return status_of_error(errno);
  if (system.unlink(named.c_str()) == 0) return kOk;
  const Status status = status_of_error(errno);
  system.close(file_);
  file_ = -1;
  return status;
}

Status ScratchFile::reserve(std::int64_t bytes) {
  if (bytes <= reserved_) return kOk;
  written_.resize(static_cast<std::size_t>(pages_of(bytes) + 63) / 64);
  const Status status = allocate_on_disk(reserved_, bytes);
  if (status == kOk) reserved_ = bytes;
  return status;
}

Status ScratchFile::reserve_ahead(std::int64_t bytes) {
  if (bytes <= reserved_) return kOk;
  const std::int64_t step = std::clamp(reserved_ / 4, kLeastStep, kLargestStep);
  return reserve(bytes + step) == kOk ? kOk : reserve(bytes);
}

// Not posix_fallocate: where the file system has no such call, that writes a byte to every block.
Status ScratchFile::allocate_on_disk(std::int64_t from, std::int64_t to) {
  fmd::FileSystem& system = fmd::file_system();
  int result;
  do {
    result = system.fallocate(file_, 0, from, to - from);
  } while (result != 0 && errno == EINTR);
  if (result == 0) return kOk;
  Status status = status_of_error(errno);
  if (errno == EOPNOTSUPP || errno == EINVAL) status = write_zeros(from, to);
  // What was allocated before the disk was full would stay with the file.
  if (status != kOk) system.ftruncate(file_, from);
  return status;
}

Status ScratchFile::write_zeros(std::int64_t from, std::int64_t to) {
  const std::vector<unsigned char> zeros(static_cast<std::size_t>(std::min(kMebibyte, to - from)));
  for (std::int64_t at = from; at < to; at += kMebibyte) {
    const Status status = write_to_disk(at, zeros.data(), std::min(kMebibyte, to - at));
    if (status != kOk) return status;
  }
  return kOk;
}

void ScratchFile::trim(std::int64_t bytes) {
  if (bytes < reserved_ && fmd::file_system().ftruncate(file_, bytes) == 0) reserved_ = bytes;
}

Status ScratchFile::clear() {
  cache_.forget(this);
  if (reserved_ > 0 && fmd::file_system().ftruncate(file_, 0) != 0) return status_of_error(errno);
  reserved_ = 0;
  written_.clear();
  return kOk;
}

bool ScratchFile::is_written(std::int64_t page) const {
  return (written_[static_cast<std::size_t>(page >> 6)] >> (page & 63) & 1) != 0;
}

void ScratchFile::mark_written(std::int64_t first_page, std::int64_t last_page) {
  for (std::int64_t page = first_page; page <= last_page; ++page)
    written_[static_cast<std::size_t>(page >> 6)] |= std::uint64_t{1} << (page & 63);
}

Status ScratchFile::write_to_disk(std::int64_t offset, const unsigned char* from, std::int64_t bytes) {
  return fmd::write_all_at(file_, from, static_cast<std::size_t>(bytes), offset) ? kOk
                                                                                 : status_of_error(errno);
}

// The file may end before the room reserved; zeros are meant there.
Status ScratchFile::read_from_disk(std::int64_t offset, unsigned char* to, std::int64_t bytes) const {
  while (bytes > 0) {
    const ssize_t got = fmd::file_system().pread(file_, to, static_cast<std::size_t>(bytes), offset);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return status_of_error(errno);
    if (got == 0) {
      std::memset(to, 0, static_cast<std::size_t>(bytes));
      return kOk;
    }
    to += got;
    offset += got;
    bytes -= got;
  }
  return kOk;
}

Status ScratchFile::write_out(Frame& frame) {
  const std::int64_t offset = (frame.page << kPageBits) + frame.lo;
  const Status status = write_to_disk(offset, frame.bytes.get() + frame.lo, frame.hi - frame.lo);
  if (status != kOk) return status;
  mark_written(frame.page, frame.page);
  frame.changed = false;
  return kOk;
}

// Makes the whole page valid.
Status ScratchFile::fill(Frame& frame) {
  unsigned char* const bytes = frame.bytes.get();
  const auto before = static_cast<std::size_t>(frame.lo);
  const auto behind = static_cast<std::size_t>(kPageBytes - frame.hi);
  if (is_written(frame.page)) {
    const Status status = read_from_disk(frame.page << kPageBits, cache_.bounce(), kPageBytes);
    if (status != kOk) return status;
    std::memcpy(bytes, cache_.bounce(), before);
    std::memcpy(bytes + frame.hi, cache_.bounce() + frame.hi, behind);
  } else {
    std::memset(bytes, 0, before);
    std::memset(bytes + frame.hi, 0, behind);
  }
  frame.lo = 0;
  frame.hi = kPageBytes;
  return kOk;
}

Status ScratchFile::write_piece(std::int64_t page, int at, const unsigned char* from, int bytes) {
  Frame* frame = find(page);
  if (frame == nullptr) {
    frame = last_ = cache_.acquire(this, page);
    if (frame == nullptr) {
      const Status status = write_to_disk((page << kPageBits) + at, from, bytes);
      if (status == kOk) mark_written(page, page);
      return status;
    }
    frame->lo = frame->hi = at;
  } else if (at > frame->hi || at + bytes < frame->lo) {
    const Status status = fill(*frame);
    if (status != kOk) return status;
  }
  std::memcpy(frame->bytes.get() + at, from, static_cast<std::size_t>(bytes));
  frame->lo = std::min(frame->lo, at);
  frame->hi = std::max(frame->hi, at + bytes);
  frame->changed = true;
  frame->referenced = true;
  return kOk;
}

Status ScratchFile::read_piece(std::int64_t page, int at, unsigned char* to, int bytes) {
  Frame* frame = find(page);
  const bool is_new = frame == nullptr;
  if (is_new) {
    frame = last_ = cache_.acquire(this, page);
    if (frame == nullptr) return read_from_disk((page << kPageBits) + at, to, bytes);
  }
  if (at < frame->lo || at + bytes > frame->hi) {
    const Status status = fill(*frame);
    if (status != kOk) {
      if (is_new) cache_.discard(*frame);
      return status;
    }
  }
  std::memcpy(to, frame->bytes.get() + at, static_cast<std::size_t>(bytes));
  frame->referenced = true;
  return kOk;
}

Status ScratchFile::write(std::int64_t offset, const void* from, std::int64_t bytes) {
  const auto* source = static_cast<const unsigned char*>(from);
  while (bytes > 0) {
    const auto at = static_cast<int>(offset & (kPageBytes - 1));
    std::int64_t piece = std::min<std::int64_t>(bytes, kPageBytes - at);
    Status status;
    if (piece == kPageBytes) {
      piece = bytes & ~static_cast<std::int64_t>(kPageBytes - 1);
      status = write_whole_pages(offset, source, piece);
    } else {
      status = write_piece(offset >> kPageBits, at, source, static_cast<int>(piece));
    }
    if (status != kOk) return status;
    source += piece;
    offset += piece;
    bytes -= piece;
  }
  return kOk;
}

Status ScratchFile::write_whole_pages(std::int64_t offset, const unsigned char* from, std::int64_t bytes) {
  const Status status = write_to_disk(offset, from, bytes);
  if (status != kOk) return status;
  const std::int64_t first = offset >> kPageBits;
  const std::int64_t last = first + (bytes >> kPageBits) - 1;
  mark_written(first, last);
  for (std::int64_t page = first; page <= last; ++page) {
    Frame* frame = find(page);
    if (frame != nullptr) cache_.discard(*frame);
  }
  return kOk;
}

Status ScratchFile::read(std::int64_t offset, void* to, std::int64_t bytes) {
  auto* target = static_cast<unsigned char*>(to);
  if (bytes >= kPageBytes) return read_large(offset, target, bytes);
  while (bytes > 0) {
    const auto at = static_cast<int>(offset & (kPageBytes - 1));
    const auto piece = static_cast<int>(std::min<std::int64_t>(bytes, kPageBytes - at));
    const Status status = read_piece(offset >> kPageBits, at, target, piece);
    if (status != kOk) return status;
    target += piece;
    offset += piece;
    bytes -= piece;
  }
  return kOk;
}

// Pages that frames know whole are copied; each run between them is one transfer into the caller's array.
Status ScratchFile::read_large(std::int64_t offset, unsigned char* to, std::int64_t bytes) {
  const std::int64_t end = offset + bytes;
  std::int64_t run = offset;
  for (std::int64_t at = offset; at < end;) {
    const std::int64_t start = at & ~static_cast<std::int64_t>(kPageBytes - 1);
    const std::int64_t piece_end = std::min(start + kPageBytes, end);
    const Frame* frame = find(at >> kPageBits);
    if (frame != nullptr && frame->lo <= at - start && frame->hi >= piece_end - start) {
      const Status status = read_run(run, to + (run - offset), at - run);
      if (status != kOk) return status;
      std::memcpy(to + (at - offset), frame->bytes.get() + (at - start),
                  static_cast<std::size_t>(piece_end - at));
      run = piece_end;
    }
    at = piece_end;
  }
  return read_run(run, to + (run - offset), end - run);
}

// From the file, then what the frames know better.
Status ScratchFile::read_run(std::int64_t offset, unsigned char* to, std::int64_t bytes) {
  const Status status = read_from_disk(offset, to, bytes);
  if (status != kOk) return status;
  const std::int64_t end = offset + bytes;
  for (std::int64_t page = offset >> kPageBits; page << kPageBits < end; ++page) {
    const Frame* frame = find(page);
    if (frame == nullptr || !frame->changed) continue;
    const std::int64_t start = page << kPageBits;
    const std::int64_t lo = std::max(start + frame->lo, offset);
    const std::int64_t hi = std::min(start + frame->hi, end);
    if (lo < hi)
      std::memcpy(to + (lo - offset), frame->bytes.get() + (lo - start), static_cast<std::size_t>(hi - lo));
  }
  return kOk;
}

}  // namespace kdcdb
