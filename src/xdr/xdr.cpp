#include "xdr/xdr.h"

#include <arpa/inet.h>

#include <cstring>

void xdrstdio_create(FmdXdr* codec, std::FILE* file, int operation) {
  codec->Operation = operation;
  codec->File = file;
}

namespace fmd::xdr {

namespace {

// Moves one word, in the machine's order on this side.
bool word(FmdXdr* codec, std::uint32_t* value) {
  std::uint32_t wire = 0;
  switch (codec->Operation) {
    case kEncode:
      wire = htonl(*value);
      return std::fwrite(&wire, sizeof wire, 1, codec->File) == 1;
    case kDecode:
      if (std::fread(&wire, sizeof wire, 1, codec->File) != 1) return false;
      *value = ntohl(wire);
      return true;
    default:
      return codec->Operation == kFree;
  }
}

}  // namespace

bool int_item(FmdXdr* codec, std::int32_t* value) {
  auto bits = static_cast<std::uint32_t>(*value);
  if (!word(codec, &bits)) return false;
  *value = static_cast<std::int32_t>(bits);
  return true;
}

bool char_item(FmdXdr* codec, char* value) {
  std::int32_t extended = static_cast<signed char>(*value);
  if (!int_item(codec, &extended)) return false;
  *value = static_cast<char>(extended);
  return true;
}

bool float_item(FmdXdr* codec, float* value) {
  std::uint32_t bits;
  std::memcpy(&bits, value, sizeof bits);
  if (!word(codec, &bits)) return false;
  std::memcpy(value, &bits, sizeof bits);
  return true;
}

bool double_item(FmdXdr* codec, double* value) {
  std::uint64_t bits;
  std::memcpy(&bits, value, sizeof bits);
  auto high = static_cast<std::uint32_t>(bits >> 32);
  auto low = static_cast<std::uint32_t>(bits);
  if (!word(codec, &high) || !word(codec, &low)) return false;
  bits = static_cast<std::uint64_t>(high) << 32 | low;
  std::memcpy(value, &bits, sizeof bits);
  return true;
}

bool destroy(FmdXdr* codec) {
  return codec->Operation != kEncode || std::fflush(codec->File) == 0;
}

}  // namespace fmd::xdr
