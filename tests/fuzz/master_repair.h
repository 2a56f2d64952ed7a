// Where the parts of a master file stand, and their checksums made to hold again after damage, so that it
// meets the checks behind them.
#ifndef FMDTOOLKIT_TESTS_FUZZ_MASTER_REPAIR_H
#define FMDTOOLKIT_TESTS_FUZZ_MASTER_REPAIR_H

#include <cstddef>
#include <vector>

#include "fuzz/mutation.h"

namespace fuzz {

struct Part {
  std::size_t first = 0;
  std::size_t bytes = 0;
};

struct MasterLayout {
  struct Block {
    std::uint64_t serial = 0;
    std::size_t entry = 0;           // in the file
    Part head;                       // of its directory
    std::size_t table = 0;           // of page checksums
    std::vector<std::size_t> pages;  // of its data, in order
    std::size_t bytes = 0;           // of its data, without what fills the last page
  };
  Part dictionary;
  std::vector<Block> blocks;
};

// Of a sound file.
MasterLayout find_layout(const Bytes& file);

// How far up a repair begins: what is below stays with the checksum that it had.
enum class From { kPages, kDirectories, kDictionary, kRoots };

void repair(Bytes& file, const MasterLayout& layout, From from);

}  // namespace fuzz

#endif
