// The fixed pages at the head of a master file: page 0, the header that every master file must have, and the
// two root slots behind it. docs/database-format.md lists their bytes.
#ifndef FMDTOOLKIT_KDCDB_MASTER_PAGES_H
#define FMDTOOLKIT_KDCDB_MASTER_PAGES_H

#include <array>
#include <cstdint>
#include <ctime>

#include "kdcdb/kdcdb.h"
#include "kdcdb/page_cache.h"

namespace kdcdb {

constexpr std::int32_t kBufferWords = kPageBytes / 4;
constexpr std::int32_t kBufferWordsLimit = 65536;
constexpr int kHeaderBytes = 1024;
constexpr int kRootBytes = 128;
constexpr int kSecondRoot = kPageBytes / 2;  // place of a slot's second copy in its page
constexpr std::int64_t kFirstFreePage = 3;
constexpr std::uint64_t kLastGeneration = std::uint64_t{1} << 62;  // more than any file comes to

using HeaderBytes = std::array<unsigned char, kHeaderBytes>;
using RootBytes = std::array<unsigned char, kRootBytes>;

// What a root slot says. A dictionary of 0 bytes is an empty database.
struct Root {
  std::uint64_t file_id = 0;
  std::uint64_t generation = 0;
  std::uint64_t dictionary_page = 0;
  std::uint64_t dictionary_bytes = 0;
  std::uint32_t dictionary_crc = 0;
  std::uint64_t end_page = kFirstFreePage;  // first page that no extent reaches
  std::uint64_t next_serial = 1;            // of a datablock
};

HeaderBytes encode_header(std::uint64_t file_id, const std::tm& created);

// kNotADatabase for a file of another kind or layout, kDamaged for one of ours whose header is.
Status decode_header(const HeaderBytes& bytes, std::uint64_t& file_id);

// Whether a header says, but for the time, what encode_header does: its checksum can hold for other words
// too.
bool is_header_as_made(const HeaderBytes& bytes, std::uint64_t file_id);

RootBytes encode_root(const Root& root);
bool decode_root(const RootBytes& bytes, std::uint64_t file_id, Root& root);

// What a slot's page begins with: the root, zeros, and the root again.
using RootPageBytes = std::array<unsigned char, kSecondRoot + kRootBytes>;
RootPageBytes encode_root_page(const Root& root);

// The slot that a generation is written to: page 1 or 2, in turns.
constexpr std::int64_t root_page(std::uint64_t generation) {
  return generation % 2 == 1 ? 1 : 2;
}

}  // namespace kdcdb

#endif
