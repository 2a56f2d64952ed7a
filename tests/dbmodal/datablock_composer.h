// Datasets of the record form put together by hand, word by word, and stored without the library's writer of
// bodies.
#ifndef FMDTOOLKIT_TESTS_DATABLOCK_COMPOSER_H
#define FMDTOOLKIT_TESTS_DATABLOCK_COMPOSER_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace fmdtest {

struct ComposedRecord {
  int number;
  std::vector<std::int32_t> words;       // behind the number
  std::vector<std::size_t> mode_places;  // where each mode of a block of vectors begins
};

class Datablock {
 public:
  // The version record; header and summary follow from it.
  explicit Datablock(unsigned version);

  // Begins a record and marks its block as present. Items go into the record begun last.
  Datablock& block(int number);
  Datablock& ints(const std::vector<int>& values);
  Datablock& reals(const std::vector<double>& values);
  Datablock& text(const std::string& value, std::size_t width);
  Datablock& mode();

  ComposedRecord& record(int number);
  // Puts an emptied record in the place of one, its block still present.
  Datablock& again(int number);
  void remove(int number);
  // Puts the summary as it is into its record, for tests that change the words; a store does it otherwise.
  void fix_summary();

  std::uint32_t version() const { return version_; }
  int level() const { return static_cast<int>(version_ & 0xFF); }
  bool is_single() const;

  std::vector<ComposedRecord> records;
  std::array<char, 100> summary = {};
  bool has_fixed_summary = false;
  int trailer_modes = 0;

 private:
  std::uint32_t version_;
  std::size_t current_ = 0;
};

// Summary byte of a block, by its number.
int summary_byte_of(int number);

constexpr unsigned kTableBit = 0x1000;

// Stores the datablocks in a database of their own, in this order, with a position table where the version
// word has the bit; ends without a live body. Nonzero PEID qualifiers keep them apart.
void store_datablocks(const std::vector<Datablock>& datablocks, const std::string& master);

}  // namespace fmdtest

#endif
