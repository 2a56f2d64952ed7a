#include "kdcdb/crc32c.h"

#include <array>
#include <cstring>

namespace kdcdb {

namespace {

constexpr std::array<std::uint32_t, 256> make_table() {
  std::array<std::uint32_t, 256> table{};
  for (std::uint32_t byte = 0; byte < 256; ++byte) {
    std::uint32_t crc = byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0x82F63B78U : 0U);
    table[byte] = crc;
  }
  return table;
}

constexpr std::array<std::uint32_t, 256> kTable = make_table();

bool has_instruction() {
  static const bool has = __builtin_cpu_supports("sse4.2") != 0;
  return has;
}

std::uint32_t continue_by_table(const unsigned char* at, std::size_t count, std::uint32_t crc) {
  for (std::size_t i = 0; i < count; ++i) crc = (crc >> 8) ^ kTable[(crc ^ at[i]) & 0xFFU];
  return crc;
}

std::uint64_t eight_bytes(const unsigned char* at) {
  std::uint64_t value;
  std::memcpy(&value, at, sizeof value);
  return value;
}

__attribute__((target("sse4.2"))) std::uint32_t continue_by_instruction(const unsigned char* at,
                                                                        std::size_t count,
                                                                        std::uint32_t crc) {
  std::uint64_t wide = crc;
  for (; count >= 8; count -= 8, at += 8) wide = __builtin_ia32_crc32di(wide, eight_bytes(at));
  return continue_by_table(at, count, static_cast<std::uint32_t>(wide));
}

__attribute__((target("sse4.2"))) void continue_four(const unsigned char* const at[4], std::size_t count,
                                                     std::uint32_t crc[4]) {
  std::uint64_t wide[4] = {crc[0], crc[1], crc[2], crc[3]};
  const std::size_t whole = count / 8 * 8;
  for (std::size_t i = 0; i < whole; i += 8) {
    for (int k = 0; k < 4; ++k) wide[k] = __builtin_ia32_crc32di(wide[k], eight_bytes(at[k] + i));
  }
  for (int k = 0; k < 4; ++k)
    crc[k] = continue_by_table(at[k] + whole, count - whole, static_cast<std::uint32_t>(wide[k]));
}

}  // namespace

std::uint32_t crc32c_by_table(const void* bytes, std::size_t count, std::uint32_t before) {
  return ~continue_by_table(static_cast<const unsigned char*>(bytes), count, ~before);
}

std::uint32_t crc32c(const void* bytes, std::size_t count, std::uint32_t before) {
  if (!has_instruction()) return crc32c_by_table(bytes, count, before);
  return ~continue_by_instruction(static_cast<const unsigned char*>(bytes), count, ~before);
}

void crc32c_of_four(const void* const bytes[4], std::size_t count, std::uint32_t crc[4]) {
  const unsigned char* at[4];
  for (int k = 0; k < 4; ++k) {
    at[k] = static_cast<const unsigned char*>(bytes[k]);
    crc[k] = ~crc[k];
  }
  if (has_instruction()) {
    continue_four(at, count, crc);
  } else {
    for (int k = 0; k < 4; ++k) crc[k] = continue_by_table(at[k], count, crc[k]);
  }
  for (int k = 0; k < 4; ++k) crc[k] = ~crc[k];
}

}  // namespace kdcdb
