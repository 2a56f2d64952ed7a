#include "fuzz/mutation.h"

#include <algorithm>
#include <cstring>

namespace fuzz {

namespace {

constexpr std::int32_t kHostile[] = {0,
                                     1,
                                     2,
                                     -1,
                                     -2,
                                     3,
                                     15,
                                     16,
                                     17,
                                     35,
                                     36,
                                     255,
                                     256,
                                     4095,
                                     4096,
                                     16384,
                                     65535,
                                     65536,
                                     0x1000000,
                                     0x10000000,
                                     0x15555556,
                                     89478486,
                                     0x3FFFFFFF,
                                     0x40000000,
                                     INT32_MAX,
                                     INT32_MIN,
                                     INT32_MIN + 1,
                                     INT32_MAX - 1};

template <typename T>
void put_at(Bytes& bytes, std::size_t at, T value) {
  std::memcpy(bytes.data() + at, &value, sizeof value);
}

template <typename T>
T get_at(const Bytes& bytes, std::size_t at) {
  T value;
  std::memcpy(&value, bytes.data() + at, sizeof value);
  return value;
}

std::ptrdiff_t place(std::size_t at) {
  return static_cast<std::ptrdiff_t>(at);
}

}  // namespace

std::uint64_t Random::next() {
  state_ += 0x9E3779B97F4A7C15U;
  std::uint64_t mixed = state_;
  mixed = (mixed ^ (mixed >> 30)) * 0xBF58476D1CE4E5B9U;
  mixed = (mixed ^ (mixed >> 27)) * 0x94D049BB133111EBU;
  return mixed ^ (mixed >> 31);
}

std::size_t Random::below(std::size_t limit) {
  return limit == 0 ? 0 : static_cast<std::size_t>(next() % limit);
}

std::int32_t other_number(Random& random, std::int32_t number) {
  const auto wide = static_cast<std::int64_t>(number);
  switch (random.below(5)) {
    case 0:
      return kHostile[random.below(sizeof kHostile / sizeof *kHostile)];
    case 1:
      return static_cast<std::int32_t>(wide + 1 + static_cast<std::int64_t>(random.below(4)));
    case 2:
      return static_cast<std::int32_t>(wide - 1 - static_cast<std::int64_t>(random.below(4)));
    case 3:
      return static_cast<std::int32_t>(wide ^ (std::int64_t{1} << random.below(32)));
    default:
      return static_cast<std::int32_t>(random.below(64));
  }
}

void change_value(Random& random, Bytes& bytes, std::size_t first, std::size_t last) {
  last = std::min(last, bytes.size());
  if (first >= last) return;
  const std::size_t at = first + random.below(last - first);
  const std::size_t word = at / 4 * 4;
  const std::size_t wide = at / 8 * 8;
  switch (random.below(4)) {
    case 0:
      bytes[at] = static_cast<unsigned char>(bytes[at] ^ (1U << random.below(8)));
      return;
    case 1:
      bytes[at] = static_cast<unsigned char>(random.next());
      return;
    case 2:
      if (word + 4 <= last) put_at(bytes, word, other_number(random, get_at<std::int32_t>(bytes, word)));
      return;
    default:
      if (wide + 8 > last) return;
      put_at(bytes, wide,
             random.one_in(2) ? get_at<std::uint64_t>(bytes, wide) + random.below(5) - 2
                              : std::uint64_t{1} << random.below(64));
  }
}

void change_length(Random& random, Bytes& bytes, const Bytes& other) {
  if (bytes.empty()) return;
  const std::size_t from = random.below(bytes.size());
  const std::size_t count = random.below(bytes.size() - from) + 1;
  const std::size_t to = random.below(bytes.size());
  switch (random.below(4)) {
    case 0:
      bytes.resize(from);
      return;
    case 1:
      bytes.erase(bytes.begin() + place(from), bytes.begin() + place(from + count));
      return;
    case 2: {
      const Bytes piece(bytes.begin() + place(from), bytes.begin() + place(from + count));
      bytes.insert(bytes.begin() + place(to), piece.begin(), piece.end());
      return;
    }
    default: {
      const std::size_t here = std::min(other.size() - std::min(from, other.size()), bytes.size() - from);
      std::copy_n(other.begin() + place(std::min(from, other.size())), std::min(count, here),
                  bytes.begin() + place(from));
    }
  }
}

}  // namespace fuzz
