// CRC-32C (Castagnoli polynomial, reflected 0x82F63B78), as iSCSI uses it (RFC 3720, section 12.1).
#ifndef FMDTOOLKIT_KDCDB_CRC32C_H
#define FMDTOOLKIT_KDCDB_CRC32C_H

#include <cstddef>
#include <cstdint>

namespace kdcdb {

// The checksum of the bytes, continuing that of what stood before them.
std::uint32_t crc32c(const void* bytes, std::size_t count, std::uint32_t before = 0);

// The same, on processors that have no instruction for it.
std::uint32_t crc32c_by_table(const void* bytes, std::size_t count, std::uint32_t before = 0);

// The same of four pieces at once, each continuing its own: one processor does the four in the time of one.
void crc32c_of_four(const void* const bytes[4], std::size_t count, std::uint32_t crc[4]);

}  // namespace kdcdb

#endif
