#include "fuzz/master_repair.h"

#include <algorithm>
#include <cstring>

#include "kdcdb/crc32c.h"

namespace fuzz {

namespace {

// From docs/database-format.md.
constexpr std::size_t kPage = 16384;
constexpr std::size_t kHeaderChecksum = 1020;
constexpr std::size_t kRootChecksum = 124;
constexpr std::size_t kRootBytes = 128;
constexpr std::size_t kChecksumsAPiece = kPage / 4;
constexpr std::uint64_t kPieceMark = std::uint64_t{1} << 63;

template <typename T>
T number_at(const Bytes& file, std::size_t at) {
  T value{};
  if (at + sizeof value <= file.size()) std::memcpy(&value, file.data() + at, sizeof value);
  return value;
}

template <typename T>
void set_number(Bytes& file, std::size_t at, T value) {
  if (at + sizeof value <= file.size()) std::memcpy(file.data() + at, &value, sizeof value);
}

std::uint32_t checksum(const Bytes& file, Part part, std::uint32_t before = 0) {
  if (part.first + part.bytes > file.size()) return 0;
  return kdcdb::crc32c(file.data() + part.first, part.bytes, before);
}

std::uint32_t seeded(const Bytes& file, std::size_t page, std::uint64_t serial, std::uint64_t number) {
  const std::uint64_t seed[] = {serial, number};
  return checksum(file, {page, kPage}, kdcdb::crc32c(seed, sizeof seed));
}

std::vector<std::size_t> root_places() {
  return {kPage, kPage + kPage / 2, 2 * kPage, 2 * kPage + kPage / 2};
}

MasterLayout::Block block_at(const Bytes& file, std::size_t entry) {
  MasterLayout::Block block;
  block.entry = entry;
  block.serial = number_at<std::uint64_t>(file, entry + 8);
  block.head = {number_at<std::uint64_t>(file, entry + 72) * kPage,
                number_at<std::uint64_t>(file, entry + 80)};
  block.bytes = 4 * number_at<std::uint64_t>(file, entry + 64);
  block.table = block.head.first + (block.head.bytes + kPage - 1) / kPage * kPage;
  for (std::uint32_t i = 0; i < number_at<std::uint32_t>(file, entry + 92); ++i) {
    const auto page = number_at<std::uint64_t>(file, entry + 96 + 16 * i);
    const auto pages = number_at<std::uint64_t>(file, entry + 104 + 16 * i);
    for (std::uint64_t k = 0; k < pages; ++k) block.pages.push_back((page + k) * kPage);
  }
  return block;
}

void repair_pages(Bytes& file, const MasterLayout::Block& block) {
  for (std::size_t i = 0; i < block.pages.size(); ++i)
    set_number(file, block.table + 4 * i, seeded(file, block.pages[i], block.serial, i));
  for (std::size_t piece = 0; piece * kChecksumsAPiece < block.pages.size(); ++piece)
    set_number(file, block.head.first + 48 + 4 * piece,
               seeded(file, block.table + piece * kPage, block.serial, kPieceMark + piece));
}

}  // namespace

MasterLayout find_layout(const Bytes& file) {
  MasterLayout layout;
  std::size_t newest = kPage;
  for (const std::size_t root : root_places()) {
    if (number_at<std::uint64_t>(file, root + 16) > number_at<std::uint64_t>(file, newest + 16))
      newest = root;
  }
  layout.dictionary = {number_at<std::uint64_t>(file, newest + 24) * kPage,
                       number_at<std::uint64_t>(file, newest + 32)};
  std::size_t at = layout.dictionary.first + 16;
  for (std::uint32_t left = number_at<std::uint32_t>(file, layout.dictionary.first + 8); left > 0; --left) {
    layout.blocks.push_back(block_at(file, at));
    at += number_at<std::uint32_t>(file, at);
  }
  return layout;
}

void repair(Bytes& file, const MasterLayout& layout, From from) {
  for (const MasterLayout::Block& block : layout.blocks) {
    if (from == From::kPages) repair_pages(file, block);
    if (from <= From::kDirectories) set_number(file, block.entry + 88, checksum(file, block.head));
  }
  for (const std::size_t root : root_places()) {
    const bool is_root = number_at<std::uint64_t>(file, root + 16) != 0;
    const bool is_ours = number_at<std::uint64_t>(file, root + 24) * kPage == layout.dictionary.first;
    if (is_root && is_ours && from <= From::kDictionary) {
      const Part part{layout.dictionary.first, number_at<std::uint64_t>(file, root + 32)};
      if (part.bytes <= file.size()) set_number(file, root + 56, checksum(file, part));
    }
    if (is_root) set_number(file, root + kRootChecksum, checksum(file, {root, kRootChecksum}));
  }
  set_number(file, kHeaderChecksum, checksum(file, {0, kHeaderChecksum}));
  static_assert(kRootChecksum + 4 == kRootBytes, "the checksum is the end of a root");
}

}  // namespace fuzz
