// A scratch datablock: its qualifiers, its words in an anonymous file, the ends of its records, its trailer.
#ifndef FMDTOOLKIT_KDCDB_SCRATCH_BLOCK_H
#define FMDTOOLKIT_KDCDB_SCRATCH_BLOCK_H

#include <array>
#include <cstdint>
#include <vector>

#include "kdcdb/kdcdb.h"
#include "kdcdb/scratch_file.h"

namespace kdcdb {

constexpr std::int64_t kWordBytes = 4;

// Far beyond any disk, and safe to multiply and add.
constexpr std::int64_t kMostWords = std::int64_t{1} << 56;

struct ScratchBlock {
  explicit ScratchBlock(PageCache& cache) : file(cache) {}

  // Bounds of the record that a place belongs to; the place before a mark belongs to the record it ends.
  struct Record {
    std::int64_t start;
    std::int64_t end;
    bool is_last;  // no mark behind it yet
  };
  Record record_at(std::int64_t position) const;

  Status clear();
  Status append(const void* from, std::int64_t count);
  Status append_mark();
  Status append_zeros(std::int64_t count);

  std::int32_t highqual = 0;
  ScratchFile file;
  std::int64_t words = 0;                 // marks included
  std::vector<std::int64_t> record_ends;  // place of each mark
  std::uint64_t generation = 0;           // how often the words were cleared
  std::vector<int> keys;                  // that name this datablock
  std::array<std::int32_t, kTrailerWords - 1> trailer{};
};

}  // namespace kdcdb

#endif
