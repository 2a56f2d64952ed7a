// A datablock as its keys see it, wherever its words are kept: the words, the ends of its records, its
// trailer.
#ifndef FMDTOOLKIT_KDCDB_DATABLOCK_H
#define FMDTOOLKIT_KDCDB_DATABLOCK_H

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

#include "kdcdb/kdcdb.h"

namespace kdcdb {

constexpr std::int64_t kWordBytes = 4;

// Far beyond any disk, and safe to multiply and add.
constexpr std::int64_t kMostWords = std::int64_t{1} << 56;

class Datablock {
 public:
  Datablock() = default;
  Datablock(const Datablock&) = delete;
  Datablock& operator=(const Datablock&) = delete;
  virtual ~Datablock() = default;

  // Bounds of the record that a place belongs to; the place before a mark belongs to the record it ends.
  struct Record {
    std::int64_t start;
    std::int64_t end;
    bool is_last;  // no mark behind it yet
  };
  Record record_at(std::int64_t position) const;

  // Before the first word is asked for: fetches what words, marks and trailer need.
  virtual Status prepare() { return kOk; }

  // Empties the datablock, to be written from the start.
  virtual Status clear() = 0;

  // Within the words that are there.
  virtual Status read(std::int64_t position, void* to, std::int64_t count) = 0;
  virtual Status write(std::int64_t position, const void* from, std::int64_t count) = 0;

  // Behind the last word.
  virtual Status append(const void* from, std::int64_t count) = 0;
  virtual Status append_zeros(std::int64_t count) = 0;
  Status append_mark();

  // A key that was open for writing has closed.
  virtual void end_writing() = 0;

  virtual Status set_trailer(const std::int32_t* from) {
    std::copy_n(from, kTrailerWords - 1, trailer.begin());
    return kOk;
  }

  // Its writer did not come to the end: not to be stored.
  virtual void abandon() {}

  std::int64_t words = 0;                 // marks included
  std::vector<std::int64_t> record_ends;  // place of each mark
  std::uint64_t generation = 0;           // how often the words were cleared
  std::vector<int> keys;                  // that name this datablock
  std::array<std::int32_t, kTrailerWords - 1> trailer{};
};

}  // namespace kdcdb

#endif
