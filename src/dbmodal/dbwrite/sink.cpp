#include "dbmodal/dbwrite/sink.h"

#include <algorithm>
#include <cstring>

#include "system/file_system.h"
#include "xdr/xdr_buffer.h"

namespace fmd {

namespace {

// Large enough to make a write call cheap, small enough to stay in a core's cache.
constexpr std::size_t kStagingBytes = std::size_t{256} * 1024;

// A full buffer is drained up to a page's end, so that the file takes no page in two pieces; the item that
// crosses that end stays behind in part.
constexpr std::size_t kPageBytes = 4096;
constexpr std::size_t kLargestItem = 8;

template <typename T>
void copy_items(unsigned char* to, const T* from, std::size_t count) {
  std::memcpy(to, from, count * sizeof(T));
}

void copy_narrowed(unsigned char* to, const double* from, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const auto narrow = static_cast<float>(from[i]);
    std::memcpy(to + i * sizeof narrow, &narrow, sizeof narrow);
  }
}

}  // namespace

bool FileMedium::take(const unsigned char* bytes, std::size_t count) {
  return write_all(file_, bytes, count);
}

Sink::Sink(Medium& medium, Encoding encoding)
    : medium_(medium),
      encoding_(encoding),
      staging_(allocate<unsigned char>(kStagingBytes + kLargestItem, "dbwrite")),
      ok_(staging_ != nullptr) {}

template <typename T, typename Encode>
void Sink::put(const T* items, std::size_t count, std::size_t size, Encode encode) {
  while (ok_ && count > 0) {
    const std::size_t full = kStagingBytes - drained_ % kPageBytes;
    if (staged_ >= full) {
      drain_first(full);
      continue;
    }
    const std::size_t piece = std::min(count, (full - staged_ + size - 1) / size);
    encode(staging_.get() + staged_, items, piece);
    staged_ += piece * size;
    items += piece;
    count -= piece;
  }
}

void Sink::put_ints(const std::int32_t* values, std::size_t count) {
  put(values, count, 4, encoding_.xdr ? xdr::encode_words : copy_items<std::int32_t>);
}

void Sink::put_reals(const double* values, std::size_t count) {
  if (encoding_.single_precision) {
    put(values, count, 4, encoding_.xdr ? xdr::encode_floats_from_doubles : copy_narrowed);
  } else {
    put(values, count, 8, encoding_.xdr ? xdr::encode_doubles : copy_items<double>);
  }
}

void Sink::put_chars(const char* text, std::size_t count) {
  put(text, count, encoding_.xdr ? 4 : 1, encoding_.xdr ? xdr::encode_chars : copy_items<char>);
  constexpr char kFiller[4] = {};
  if (encoding_.whole_words) put(kFiller, (4 - count % 4) % 4, 1, copy_items<char>);
}

bool Sink::drain() {
  drain_first(staged_);
  return ok_;
}

void Sink::drain_first(std::size_t bytes) {
  if (ok_ && bytes > 0) ok_ = medium_.take(staging_.get(), bytes);
  drained_ += bytes;
  staged_ -= bytes;
  if (staged_ > 0) std::memmove(staging_.get(), staging_.get() + bytes, staged_);
}

}  // namespace fmd
