// The dictionary of a master file: one entry for each stored datablock. docs/database-format.md has the
// bytes.
#ifndef FMDTOOLKIT_KDCDB_DICTIONARY_H
#define FMDTOOLKIT_KDCDB_DICTIONARY_H

#include <array>
#include <cstdint>
#include <vector>

#include "kdcdb/kdcdb.h"
#include "kdcdb/qualifiers.h"

namespace kdcdb {

struct Extent {
  std::uint64_t page = 0;
  std::uint64_t pages = 0;
};

struct StoredEntry {
  Qualifiers qualifiers;
  std::uint64_t serial = 0;
  std::array<std::int32_t, kTrailerWords - 1> trailer{};
  std::uint64_t words = 0;  // marks included
  std::uint64_t directory_page = 0;
  std::uint64_t directory_bytes = 0;  // of the head
  std::uint32_t directory_crc = 0;    // of the head
  std::vector<Extent> extents;
};

// Pages that so many bytes or words take.
std::uint64_t pages_of_bytes(std::uint64_t bytes);
std::uint64_t pages_of_words(std::uint64_t words);

// The directory of an entry in whole: its head and the table of page checksums behind it.
Extent directory_extent(const StoredEntry& entry);

std::vector<unsigned char> encode_dictionary(const std::vector<StoredEntry>& entries);

// kDamaged for bytes that are no dictionary of a file of so many pages: nothing in an entry reaches
// beyond the file, takes pages of another one, or has counts that do not fit together.
Status decode_dictionary(const std::vector<unsigned char>& bytes, std::uint64_t file_pages,
                         std::vector<StoredEntry>& entries);

// Everything that the entries occupy, in ascending order.
std::vector<Extent> occupied_extents(const std::vector<StoredEntry>& entries);

}  // namespace kdcdb

#endif
