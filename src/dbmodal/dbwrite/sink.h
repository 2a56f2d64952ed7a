// Where a dataset goes while it is written: integers, reals and characters are encoded into a staging buffer,
// in the precision and byte order that were fixed when the sink was made, and drained in large pieces.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_SINK_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_SINK_H

#include <cstddef>
#include <cstdint>

#include "messages/memory.h"

namespace fmd {

struct Encoding {
  bool xdr = true;
  bool single_precision = false;
  bool whole_words = false;  // texts are filled up with zero bytes to whole words
};

// What takes the encoded bytes: all that differs between a plain file and other stores.
class Medium {
 public:
  Medium() = default;
  Medium(const Medium&) = delete;
  Medium& operator=(const Medium&) = delete;
  virtual ~Medium() = default;
  virtual bool take(const unsigned char* bytes, std::size_t count) = 0;
};

// A file open for writing; it stays the caller's.
class FileMedium : public Medium {
 public:
  explicit FileMedium(int file) : file_(file) {}
  bool take(const unsigned char* bytes, std::size_t count) override;

 private:
  int file_;
};

// A failed drain is remembered: later puts do nothing, and ok() and drain() answer false.
class Sink {
 public:
  // A sink without staging buffer (no memory; reported) is not ok.
  Sink(Medium& medium, Encoding encoding);

  void put_int(std::int32_t value) { put_ints(&value, 1); }
  void put_ints(const std::int32_t* values, std::size_t count);
  void put_real(double value) { put_reals(&value, 1); }
  void put_reals(const double* values, std::size_t count);
  void put_chars(const char* text, std::size_t count);

  // Hands on what is staged; at the end of each block, so that a failure is known for that block.
  bool drain();
  bool ok() const { return ok_; }

 private:
  // Puts count items of the size given, by pieces that fit the buffer.
  template <typename T, typename Encode>
  void put(const T* items, std::size_t count, std::size_t size, Encode encode);

  void drain_first(std::size_t bytes);

  Medium& medium_;
  Encoding encoding_;
  CArray<unsigned char> staging_;
  std::size_t staged_ = 0;
  std::size_t drained_ = 0;  // bytes handed on since the start
  bool ok_;
};

}  // namespace fmd

#endif
