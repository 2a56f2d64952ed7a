// Random changes of bytes and of words. All comes from a seed, so that a run can be repeated.
#ifndef FMDTOOLKIT_TESTS_FUZZ_MUTATION_H
#define FMDTOOLKIT_TESTS_FUZZ_MUTATION_H

#include <cstddef>
#include <cstdint>
#include <vector>

namespace fuzz {

using Bytes = std::vector<unsigned char>;
using Words = std::vector<std::int32_t>;

// The generator splitmix64 (Steele, Lea, Flood 2014).
class Random {
 public:
  explicit Random(std::uint64_t seed) : state_(seed) {}
  std::uint64_t next();
  std::size_t below(std::size_t limit);  // 0 for no limit at all
  bool one_in(std::size_t chances) { return below(chances) == 0; }

 private:
  std::uint64_t state_;
};

// One bit, byte, word of 32 or of 64 bits in [first, last) of the bytes becomes something else.
void change_value(Random& random, Bytes& bytes, std::size_t first, std::size_t last);

// Cuts the end off, takes a piece out, repeats a piece, or puts one of another input in.
void change_length(Random& random, Bytes& bytes, const Bytes& other);

// A number near the one given, or one at which counts and offsets go wrong.
std::int32_t other_number(Random& random, std::int32_t number);

}  // namespace fuzz

#endif
