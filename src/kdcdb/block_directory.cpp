#include "kdcdb/block_directory.h"

#include <algorithm>
#include <cstring>

#include "kdcdb/crc32c.h"
#include "kdcdb/little_endian.h"

namespace kdcdb {

namespace {

constexpr char kMagic[] = "FMDSBDIR";
constexpr std::size_t kMagicBytes = 8;
constexpr std::size_t kHeadStart = 48;
constexpr std::uint64_t kPieceMark = std::uint64_t{1} << 63;

// A page of another datablock, or of another place in this one, never passes.
std::uint32_t seed_of(std::uint64_t serial, std::uint64_t number) {
  const std::uint64_t seed[2] = {serial, number};
  return crc32c(seed, sizeof seed);
}

std::size_t marks_offset(std::size_t pieces) {
  return kHeadStart + (pieces + 1) / 2 * 8;
}

bool has_counts_of(const unsigned char* at, const StoredEntry& entry, std::uint64_t pieces) {
  return std::memcmp(at, kMagic, kMagicBytes) == 0 && get<std::uint64_t>(at, 8) == entry.serial &&
         get<std::uint64_t>(at, 16) == entry.words &&
         get<std::uint64_t>(at, 32) == pages_of_words(entry.words) && get<std::uint64_t>(at, 40) == pieces;
}

// Each mark takes a word behind the one before it.
bool are_marks(const std::vector<std::int64_t>& record_ends, std::uint64_t words) {
  std::int64_t least = 0;
  for (const std::int64_t end : record_ends) {
    if (end < least || static_cast<std::uint64_t>(end) >= words) return false;
    least = end + 1;
  }
  return true;
}

}  // namespace

std::vector<unsigned char> encode_directory_head(std::uint64_t serial, std::uint64_t words,
                                                 const DirectoryHead& head) {
  const std::size_t pieces = head.piece_checksums.size();
  const std::size_t marks = marks_offset(pieces);
  std::vector<unsigned char> bytes(marks + 8 * head.record_ends.size());
  unsigned char* const at = bytes.data();
  std::memcpy(at, kMagic, kMagicBytes);
  put(at, 8, serial);
  put(at, 16, words);
  put(at, 24, std::uint64_t{head.record_ends.size()});
  put(at, 32, pages_of_words(words));
  put(at, 40, std::uint64_t{pieces});
  for (std::size_t i = 0; i < pieces; ++i) put(at, kHeadStart + 4 * i, head.piece_checksums[i]);
  for (std::size_t i = 0; i < head.record_ends.size(); ++i) put(at, marks + 8 * i, head.record_ends[i]);
  return bytes;
}

Status decode_directory_head(const std::vector<unsigned char>& bytes, const StoredEntry& entry,
                             DirectoryHead& head) {
  const unsigned char* const at = bytes.data();
  if (bytes.size() < kHeadStart) return kDamaged;
  const std::uint64_t checksums = pages_of_words(entry.words);
  const std::uint64_t pieces = checksums / kChecksumsPerPiece + (checksums % kChecksumsPerPiece != 0 ? 1 : 0);
  const std::uint64_t marks = get<std::uint64_t>(at, 24);
  if (!has_counts_of(at, entry, pieces) || pieces > bytes.size() / 4 || marks > bytes.size() / 8 ||
      bytes.size() != marks_offset(pieces) + 8 * marks)
    return kDamaged;
  head.piece_checksums.resize(pieces);
  for (std::size_t i = 0; i < pieces; ++i)
    head.piece_checksums[i] = get<std::uint32_t>(at, kHeadStart + 4 * i);
  head.record_ends.resize(marks);
  for (std::size_t i = 0; i < marks; ++i)
    head.record_ends[i] = get<std::int64_t>(at, marks_offset(pieces) + 8 * i);
  return are_marks(head.record_ends, entry.words) ? kOk : kDamaged;
}

void checksum_pages(std::uint64_t serial, std::uint64_t first_page, const unsigned char* bytes,
                    std::size_t pages, std::uint32_t* checksums) {
  std::size_t page = 0;
  for (; page + 4 <= pages; page += 4) {
    const void* at[4];
    for (std::size_t k = 0; k < 4; ++k) {
      at[k] = bytes + (page + k) * kPageBytes;
      checksums[page + k] = seed_of(serial, first_page + page + k);
    }
    crc32c_of_four(at, kPageBytes, checksums + page);
  }
  for (; page < pages; ++page)
    checksums[page] = crc32c(bytes + page * kPageBytes, kPageBytes, seed_of(serial, first_page + page));
}

std::uint32_t checksum_piece(std::uint64_t serial, std::uint64_t piece, const unsigned char* bytes) {
  return crc32c(bytes, kPageBytes, seed_of(serial, kPieceMark + piece));
}

}  // namespace kdcdb
