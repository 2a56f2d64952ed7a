#include "dataset_reader/dataset_reader.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

#include "dataset_reader/block_parsers.h"
#include "dataset_reader/item_reader.h"

namespace dataset_reader {

namespace {

constexpr std::uint32_t kXdrBit = 0x100;
constexpr std::uint32_t kSingleBit = 0x200;
constexpr std::uint32_t kCoarsenedBit = 0x400;

// No version word reaches its upper half, so the two zero bytes tell the byte order.
bool bytes_are_xdr(const ByteVector& bytes) {
  if (bytes.size() < 4) throw std::runtime_error("offset 0: expected a version word of 4 bytes");
  const bool big = bytes[0] == 0 && bytes[1] == 0;
  const bool little = bytes[2] == 0 && bytes[3] == 0;
  if (big == little) throw std::runtime_error("offset 0: expected a version word, half of it zero");
  return big;
}

std::uint32_t version_word(const ByteVector& bytes, bool xdr) {
  const std::uint32_t high = xdr ? bytes[2] : bytes[1];
  const std::uint32_t low = xdr ? bytes[3] : bytes[0];
  return high << 8 | low;
}

bool is_known_level(int level) {
  for (const int known : {10, 20, 30, 31, 40, 41, 50, 51}) {
    if (level == known) return true;
  }
  return level >= 60;
}

Dataset begin_dataset(const ByteVector& bytes) {
  Dataset dataset{};
  dataset.xdr = bytes_are_xdr(bytes);
  const std::uint32_t word = version_word(bytes, dataset.xdr);
  dataset.version_word = word;
  dataset.level = static_cast<int>(word & 0xFF);
  dataset.coarsened = (word & kCoarsenedBit) != 0;
  const int level = dataset.level;
  dataset.single = level == 50 || level == 51 || (word & kSingleBit) != 0;
  if (!is_known_level(level)) throw std::runtime_error("offset 0: expected a known format level");
  if ((word & ~(0xFFU | kXdrBit | kSingleBit | kCoarsenedBit)) != 0) {
    throw std::runtime_error("offset 0: expected a version word of the stream form");
  }
  const bool says_xdr = level == 31 || level == 41 || level == 51 || (word & kXdrBit) != 0;
  if (says_xdr != dataset.xdr) {
    throw std::runtime_error("offset 0: expected bytes in the encoding that the version word tells");
  }
  return dataset;
}

void parse_header(ItemReader& items, Header& header) {
  header.title = items.characters(128, "title");
  header.date = items.characters(32, "date");
  header.input_file_name = items.characters(128, "input file name");
  header.input_file_type = items.characters(16, "input file type");
  for (std::string& comment : header.comments) comment = items.characters(80, "comment");
}

bool is_reserved_byte(std::size_t byte) {
  return byte == 7 || byte == 11 || byte >= 34;
}

void parse_summary(ItemReader& items, std::array<unsigned char, 100>& summary) {
  for (std::size_t i = 0; i < summary.size(); ++i) {
    const int byte = items.small_number("content summary");
    if (byte != 0 && (byte != 1 || is_reserved_byte(i))) {
      items.fail("summary byte " + std::to_string(i) + (is_reserved_byte(i) ? " as 0" : " as 0 or 1"));
    }
    summary[i] = static_cast<unsigned char>(byte);
  }
}

template <typename Parse>
void parse_block(ItemReader& items, Dataset& dataset, int number, const std::string& name, Parse parse) {
  const std::size_t offset = items.offset();
  items.enter("block " + std::to_string(number) + " (" + name + ")");
  parse();
  dataset.blocks.push_back({number, offset, items.offset() - offset});
}

}  // namespace

Dataset read_dataset(const ByteVector& bytes) {
  Dataset dataset = begin_dataset(bytes);
  ItemReader items(bytes, dataset.xdr, dataset.single);
  parse_block(items, dataset, 1, "version code", [&] { items.integer("version word"); });
  parse_block(items, dataset, 2, "header", [&] { parse_header(items, dataset.header); });
  parse_block(items, dataset, 3, "content summary", [&] { parse_summary(items, dataset.summary); });
  for (const BlockParser& parser : kBlockParsers) {
    if (dataset.summary[static_cast<std::size_t>(parser.summary_byte)] == 0) continue;
    parse_block(items, dataset, parser.number, parser.name, [&] { parser.parse(items, dataset); });
  }
  if (items.remaining() != 0) {
    throw std::runtime_error("offset " + std::to_string(items.offset()) + ": expected the end of the file, " +
                             std::to_string(items.remaining()) + " bytes are left");
  }
  return dataset;
}

ByteVector read_bytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) throw std::runtime_error(path + ": cannot be opened");
  return ByteVector(std::istreambuf_iterator<char>(file), {});
}

Dataset read_dataset_file(const std::string& path) {
  return read_dataset(read_bytes(path));
}

std::string trimmed(const std::string& field) {
  const std::size_t last = field.find_last_not_of(std::string(" \0", 2));
  return last == std::string::npos ? std::string() : field.substr(0, last + 1);
}

const BlockExtent* Dataset::block(int number) const {
  for (const BlockExtent& extent : blocks) {
    if (extent.number == number) return &extent;
  }
  return nullptr;
}

std::array<double, 6> ModeVectors::at(std::size_t mode, std::size_t node) const {
  std::array<double, 6> six;
  for (std::size_t i = 0; i < 6; ++i) six[i] = values.at((mode * node_ids.size() + node) * 6 + i);
  return six;
}

}  // namespace dataset_reader
