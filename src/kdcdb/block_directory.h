// The directory of a stored datablock: where its records end, and the checksum of each of its pages.
#ifndef FMDTOOLKIT_KDCDB_BLOCK_DIRECTORY_H
#define FMDTOOLKIT_KDCDB_BLOCK_DIRECTORY_H

#include <cstdint>
#include <vector>

#include "kdcdb/dictionary.h"
#include "kdcdb/page_cache.h"

namespace kdcdb {

// Page checksums in one piece of the table, which is a page itself.
constexpr std::size_t kChecksumsPerPiece = kPageBytes / 4;

struct DirectoryHead {
  std::vector<std::uint32_t> piece_checksums;
  std::vector<std::int64_t> record_ends;
};

std::vector<unsigned char> encode_directory_head(std::uint64_t serial, std::uint64_t words,
                                                 const DirectoryHead& head);

// kDamaged for bytes that are not the head of the entry's datablock.
Status decode_directory_head(const std::vector<unsigned char>& bytes, const StoredEntry& entry,
                             DirectoryHead& head);

// Checksums of pages of a datablock, the first of them with the number given.
void checksum_pages(std::uint64_t serial, std::uint64_t first_page, const unsigned char* bytes,
                    std::size_t pages, std::uint32_t* checksums);

// Checksum of one piece of the table.
std::uint32_t checksum_piece(std::uint64_t serial, std::uint64_t piece, const unsigned char* bytes);

}  // namespace kdcdb

#endif
