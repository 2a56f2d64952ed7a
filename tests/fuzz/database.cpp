// Damaged master files, opened and read through all blocks of all bodies.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "fuzz/full_body.h"
#include "fuzz/fuzzing.h"
#include "fuzz/master_repair.h"
#include "fuzz/read_everything.h"
#include "kdcdb/crc32c.h"

namespace {

using fuzz::Bytes;
using fuzz::From;
using fuzz::MasterLayout;
using fuzz::Part;
using fuzz::Random;

constexpr std::size_t kPage = 16384;

struct Seed {
  Bytes file;
  MasterLayout layout;
};

std::vector<Seed> seeds;

Bytes read_file(const char* path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

// Databases of two bodies each, in all forms that a write knows; the second body of a commit of its own.
void make_seeds() {
  char path[] = "seed.MASTER";
  for (std::size_t i = 0; i < fuzz::kWriteOptions.size(); ++i) {
    for (int place = 0; place < 2; ++place) {
      const std::size_t options = place == 0 ? i : (i * 7 + 3) % fuzz::kWriteOptions.size();
      setenv("KXI_FMDWRITE_OPTIONS", fuzz::kWriteOptions[options], 1);
      std::string qualifiers = "SELABEL='body " + std::to_string(place) + "'";
      FmdBody* const body = fuzz::make_full_body(i % 2 == 0);
      if (FMD_write_DB(body, path, qualifiers.data()) != 1) std::abort();
      FMD_Terminate();
    }
    Seed seed;
    seed.file = read_file(path);
    seed.layout = fuzz::find_layout(seed.file);
    if (seed.layout.blocks.size() != 2) std::abort();
    seeds.push_back(std::move(seed));
    unlink(path);
  }
}

// Words of the datablock, and perhaps some of them in the place of others.
void damage_data(Random& random, Bytes& file, const MasterLayout& layout) {
  const MasterLayout::Block& block = layout.blocks[random.below(layout.blocks.size())];
  const std::size_t place = random.below(block.pages.size());
  const std::size_t page = block.pages[place];
  const std::size_t used = std::min(kPage, block.bytes - place * kPage);
  for (std::size_t times = random.below(3) + 1; times > 0; --times)
    fuzz::change_value(random, file, page, page + used);
  if (!random.one_in(4)) return;
  const std::size_t from = random.below(used / 4) * 4;
  const std::size_t to = random.below(used / 4) * 4;
  const std::size_t count = std::min({random.below(64) * 4, used - from, used - to});
  const Bytes piece(file.data() + page + from, file.data() + page + from + count);
  std::copy(piece.begin(), piece.end(), file.data() + page + to);
}

void damage_part(Random& random, Bytes& file, const Part& part) {
  for (std::size_t times = random.below(3) + 1; times > 0; --times)
    fuzz::change_value(random, file, part.first, part.first + part.bytes);
}

Bytes make(Random& random) {
  const Seed& seed = seeds[random.below(seeds.size())];
  const MasterLayout& layout = seed.layout;
  Bytes file = seed.file;
  switch (random.below(12)) {
    case 0:
      damage_part(random, file, {0, file.size()});
      break;
    case 1:
      fuzz::change_length(random, file, seeds[random.below(seeds.size())].file);
      if (random.one_in(2)) fuzz::repair(file, layout, From::kPages);
      break;
    case 2:
      damage_part(random, file, {0, 1024});
      fuzz::repair(file, layout, From::kRoots);
      break;
    case 3:
      for (const std::size_t slot : {kPage, kPage + kPage / 2, 2 * kPage, 2 * kPage + kPage / 2})
        if (!random.one_in(3)) damage_part(random, file, {slot, 128});
      fuzz::repair(file, layout, From::kRoots);
      break;
    case 4:
    case 5:
      damage_part(random, file, layout.dictionary);
      fuzz::repair(file, layout, From::kDictionary);
      break;
    case 6:
    case 7:
      damage_part(random, file, layout.blocks[random.below(layout.blocks.size())].head);
      fuzz::repair(file, layout, From::kDirectories);
      break;
    default:
      damage_data(random, file, layout);
      fuzz::repair(file, layout, From::kPages);
  }
  return file;
}

void run(const Bytes& file) {
  const char* const path = "input.MASTER";
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(file.data()), static_cast<std::streamsize>(file.size()));
  fuzz::use_database(path, kdcdb::crc32c(file.data(), file.size()));
  unlink(path);
}

}  // namespace

int main(int argc, char** argv) {
  return fuzz::fuzz_main(argc, argv, {"database", make_seeds, make, run});
}
