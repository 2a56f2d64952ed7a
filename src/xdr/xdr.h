// XDR codec (RFC 4506) over a stdio file: the items that a dataset consists of.
//
// Every item is one or two big-endian 32-bit words. A text is a vector of chars and so costs four bytes a
// character; the dataset format wants it that way. An item operation answers false when the file could not
// take or give its words; decoding leaves the item untouched then. With the free operation items hold
// nothing to free and answer true.
#ifndef FMDTOOLKIT_XDR_XDR_H
#define FMDTOOLKIT_XDR_XDR_H

#include <cstddef>
#include <cstdint>
#include <cstdio>

namespace fmd::xdr {

enum Operation : int { kEncode = 0, kDecode = 1, kFree = 2 };

}  // namespace fmd::xdr

struct FmdXdr {
  int Operation;
  std::FILE* File;  // the caller's
};

// Puts the codec on an open file.
void xdrstdio_create(FmdXdr* codec, std::FILE* file, int operation);

namespace fmd::xdr {

bool int_item(FmdXdr* codec, std::int32_t* value);
bool char_item(FmdXdr* codec, char* value);
bool float_item(FmdXdr* codec, float* value);
bool double_item(FmdXdr* codec, double* value);  // high word first

// n items one after another, without a length; stops at the first that fails.
template <typename T>
bool vector(FmdXdr* codec, T* values, std::size_t n, bool (*item)(FmdXdr*, T*)) {
  for (std::size_t i = 0; i < n; ++i)
    if (!item(codec, values + i)) return false;
  return true;
}

// Flushes the file and leaves it open; false when the flush failed.
bool destroy(FmdXdr* codec);

}  // namespace fmd::xdr

#endif
