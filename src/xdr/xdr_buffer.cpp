#include "xdr/xdr_buffer.h"

#include <cstring>

namespace fmd::xdr {

namespace {

inline void put_word(unsigned char* to, std::uint32_t word) {
  const std::uint32_t swapped = __builtin_bswap32(word);
  std::memcpy(to, &swapped, sizeof swapped);
}

// The loops are compiled twice, for any processor and for wide registers, which swap several items at once; a
// byte swap gives the same bytes either way.
__attribute__((always_inline)) inline void swap_words(unsigned char* to, const std::int32_t* from,
                                                      std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) put_word(to + kWordBytes * i, static_cast<std::uint32_t>(from[i]));
}

__attribute__((always_inline)) inline void swap_doubles(unsigned char* to, const double* from,
                                                        std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    std::uint64_t bits;
    std::memcpy(&bits, from + i, sizeof bits);
    bits = __builtin_bswap64(bits);
    std::memcpy(to + kDoubleBytes * i, &bits, sizeof bits);
  }
}

__attribute__((always_inline)) inline void swap_narrowed(unsigned char* to, const double* from,
                                                         std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    const auto narrowed = static_cast<float>(from[i]);
    std::uint32_t bits;
    std::memcpy(&bits, &narrowed, sizeof bits);
    put_word(to + kWordBytes * i, bits);
  }
}

__attribute__((target("avx2"))) void swap_words_wide(unsigned char* to, const std::int32_t* from,
                                                     std::size_t n) {
  swap_words(to, from, n);
}

__attribute__((target("avx2"))) void swap_doubles_wide(unsigned char* to, const double* from, std::size_t n) {
  swap_doubles(to, from, n);
}

__attribute__((target("avx2"))) void swap_narrowed_wide(unsigned char* to, const double* from,
                                                        std::size_t n) {
  swap_narrowed(to, from, n);
}

bool has_wide_registers() {
  static const bool has = __builtin_cpu_supports("avx2") != 0;
  return has;
}

}  // namespace

void encode_words(unsigned char* to, const std::int32_t* from, std::size_t n) {
  return has_wide_registers() ? swap_words_wide(to, from, n) : swap_words(to, from, n);
}

void encode_doubles(unsigned char* to, const double* from, std::size_t n) {
  return has_wide_registers() ? swap_doubles_wide(to, from, n) : swap_doubles(to, from, n);
}

void encode_floats_from_doubles(unsigned char* to, const double* from, std::size_t n) {
  return has_wide_registers() ? swap_narrowed_wide(to, from, n) : swap_narrowed(to, from, n);
}

void encode_chars(unsigned char* to, const char* from, std::size_t n) {
  for (std::size_t i = 0; i < n; ++i) {
    const auto extended = static_cast<std::int32_t>(static_cast<signed char>(from[i]));
    put_word(to + kWordBytes * i, static_cast<std::uint32_t>(extended));
  }
}

}  // namespace fmd::xdr
