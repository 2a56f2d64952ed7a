// Datablocks made by hand: the records of stored bodies with other counts, levels, orders and lengths,
// written through the record primitives and read as bodies.
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>

#include "fuzz/full_body.h"
#include "fuzz/fuzzing.h"
#include "fuzz/read_everything.h"
#include "fuzz/record_stream.h"
#include "kdcdb/crc32c.h"

namespace {

using fuzz::Bytes;
using fuzz::kTrailerWords;
using fuzz::Random;
using fuzz::Stream;
using fuzz::Words;

constexpr std::uint32_t kHasTable = 1U << 12;
constexpr std::size_t kMostWords = 1 << 16;

std::vector<Stream> seeds;

void make_seeds() {
  for (const char* options : fuzz::kWriteOptions) {
    for (const bool diagonal : {true, false}) {
      seeds.push_back(fuzz::stored_stream(fuzz::make_full_body(diagonal), options));
      if (seeds.back().records.size() < 10) std::abort();
    }
  }
}

// Trailer, then each record behind its length.
Bytes encode(const Stream& stream) {
  Words words = stream.trailer;
  for (const Words& record : stream.records) {
    words.push_back(static_cast<std::int32_t>(record.size()));
    words.insert(words.end(), record.begin(), record.end());
  }
  Bytes bytes(words.size() * sizeof words[0]);
  std::memcpy(bytes.data(), words.data(), bytes.size());
  return bytes;
}

Stream decode(const Bytes& bytes) {
  Words words(std::min(bytes.size() / 4, kMostWords));
  if (!words.empty()) std::memcpy(words.data(), bytes.data(), words.size() * 4);
  Stream stream;
  const std::size_t trailer = std::min(words.size(), kTrailerWords);
  std::copy_n(words.begin(), trailer, stream.trailer.begin());
  for (std::size_t at = trailer; at < words.size();) {
    const auto asked = static_cast<std::size_t>(std::max(words[at], 0));
    const std::size_t count = std::min(asked, words.size() - at - 1);
    const auto start = words.begin() + static_cast<std::ptrdiff_t>(at + 1);
    stream.records.emplace_back(start, start + static_cast<std::ptrdiff_t>(count));
    at += 1 + count;
  }
  return stream;
}

// The front of a record, where its counts stand, is met more often.
void change_word(Random& random, Words& record) {
  if (record.empty()) return;
  const std::size_t front = std::min<std::size_t>(record.size(), random.one_in(3) ? record.size() : 5);
  std::int32_t& word = record[random.below(front)];
  word = fuzz::other_number(random, word);
}

void change_record_length(Random& random, Words& record) {
  if (random.one_in(2)) {
    record.resize(random.below(record.size() + 1));
  } else {
    record.resize(record.size() + random.below(40), static_cast<std::int32_t>(random.next()));
  }
}

void change_version(Random& random, Stream& stream) {
  constexpr std::uint32_t kLevels[] = {10, 20, 30, 31, 40, 41, 50, 51, 60, 61};
  if (stream.records.empty() || stream.records[0].size() < 2) return;
  std::uint32_t word = static_cast<std::uint32_t>(stream.records[0][1]);
  if (random.one_in(2)) word &= ~kHasTable;
  if (random.one_in(3)) word = (word & ~0xFFU) | kLevels[random.below(std::size(kLevels))];
  if (random.one_in(6)) word ^= 1U << (8 + random.below(16));
  stream.records[0][1] = static_cast<std::int32_t>(word);
}

void change_order(Random& random, Stream& stream) {
  std::vector<Words>& records = stream.records;
  const std::size_t one = random.below(records.size());
  switch (random.below(4)) {
    case 0:
      std::swap(records[one], records[random.below(records.size())]);
      return;
    case 1:
      records.erase(records.begin() + static_cast<std::ptrdiff_t>(one));
      return;
    case 2:
      records.insert(records.begin() + static_cast<std::ptrdiff_t>(one),
                     Words(records[random.below(records.size())]));
      return;
    default:
      const Stream& other = seeds[random.below(seeds.size())];
      records[one] = other.records[random.below(other.records.size())];
  }
}

Bytes make(Random& random) {
  Stream stream = seeds[random.below(seeds.size())];
  change_version(random, stream);
  for (std::size_t times = random.below(4) + 1; times > 0 && !stream.records.empty(); --times) {
    Words& record = stream.records[random.below(stream.records.size())];
    switch (random.below(10)) {
      case 0:
        change_record_length(random, record);
        break;
      case 1:
        change_order(random, stream);
        break;
      case 2:
        change_word(random, stream.trailer);
        break;
      default:
        change_word(random, record);
    }
  }
  return encode(stream);
}

void run(const Bytes& bytes) {
  const char* const path = "input.MASTER";
  if (!fuzz::store_stream(decode(bytes), path)) std::abort();
  fuzz::use_database(path, kdcdb::crc32c(bytes.data(), bytes.size()));
  unlink(path);
}

}  // namespace

int main(int argc, char** argv) {
  return fuzz::fuzz_main(argc, argv, {"records", make_seeds, make, run});
}
