// The items of a dataset - integers, reals, characters - in one encoding and precision, bounds-checked.
#ifndef FMDTOOLKIT_TESTS_DATASET_READER_ITEM_READER_H
#define FMDTOOLKIT_TESTS_DATASET_READER_ITEM_READER_H

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

namespace dataset_reader {

class ItemReader {
 public:
  ItemReader(const std::vector<unsigned char>& bytes, bool xdr, bool single);

  std::size_t offset() const { return offset_; }
  std::size_t remaining() const { return bytes_.size() - offset_; }

  // What is being read, for messages: "block 8 (mode shapes)".
  void enter(const std::string& place) { place_ = place; }
  // Throws with the offset of the item read last.
  [[noreturn]] void fail(const std::string& expectation) const;

  std::int32_t integer(const char* what);
  std::int32_t count(const char* what);  // not negative
  std::int32_t flag(const char* what);   // 0 or 1
  double real(const char* what);
  std::string characters(std::size_t n, const char* what);
  int small_number(const char* what);  // CHAR[1]

  std::vector<std::int32_t> integers(std::size_t n, const char* what);
  std::vector<double> reals(std::size_t n, const char* what);

  // Product of counts, refused where it exceeds what the input can hold.
  std::size_t product(std::initializer_list<std::int32_t> factors, const char* what);
  // Refuses a number of items of at least so many bytes each that the input is too short for.
  void need(std::size_t items, std::size_t bytes_each, const char* what);

  std::size_t real_bytes() const { return single_ ? 4 : 8; }

 private:
  std::uint64_t raw(std::size_t width);

  const std::vector<unsigned char>& bytes_;
  bool xdr_;
  bool single_;
  std::size_t offset_ = 0;
  std::size_t item_ = 0;
  std::string place_ = "start";
};

}  // namespace dataset_reader

#endif
