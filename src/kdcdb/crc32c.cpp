#include "kdcdb/crc32c.h"

#include <array>

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

}  // namespace

std::uint32_t crc32c(const void* bytes, std::size_t count, std::uint32_t before) {
  const auto* at = static_cast<const unsigned char*>(bytes);
  std::uint32_t crc = ~before;
  for (std::size_t i = 0; i < count; ++i) crc = (crc >> 8) ^ kTable[(crc ^ at[i]) & 0xFFU];
  return ~crc;
}

}  // namespace kdcdb
