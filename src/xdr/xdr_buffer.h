// XDR encoding (RFC 4506) of whole arrays into memory, for writers that drain their own buffers.
//
// Each encoder fills the room given with n items, every item big-endian, with no length in front. Source and
// destination do not overlap; the destination needs no alignment.
#ifndef FMDTOOLKIT_XDR_XDR_BUFFER_H
#define FMDTOOLKIT_XDR_XDR_BUFFER_H

#include <cstddef>
#include <cstdint>

namespace fmd::xdr {

constexpr std::size_t kWordBytes = 4;
constexpr std::size_t kDoubleBytes = 8;

// 4 bytes an item.
void encode_words(unsigned char* to, const std::int32_t* from, std::size_t n);

// 8 bytes an item.
void encode_doubles(unsigned char* to, const double* from, std::size_t n);

// 4 bytes an item: each double is narrowed to a float.
void encode_floats_from_doubles(unsigned char* to, const double* from, std::size_t n);

// 4 bytes an item: a char is a word of its own, sign-extended.
void encode_chars(unsigned char* to, const char* from, std::size_t n);

}  // namespace fmd::xdr

#endif
