#include "dataset_reader/item_reader.h"

#include <cstring>
#include <limits>
#include <stdexcept>

namespace dataset_reader {

ItemReader::ItemReader(const std::vector<unsigned char>& bytes, bool xdr, bool single)
    : bytes_(bytes), xdr_(xdr), single_(single) {}

void ItemReader::fail(const std::string& expectation) const {
  throw std::runtime_error("offset " + std::to_string(item_) + ", " + place_ + ": expected " + expectation);
}

void ItemReader::need(std::size_t items, std::size_t bytes_each, const char* what) {
  if (items != 0 && bytes_each > remaining() / items) {
    item_ = offset_;
    fail(std::to_string(items) + " x " + std::to_string(bytes_each) + " bytes of " + what + ", " +
         std::to_string(remaining()) + " are left");
  }
}

std::uint64_t ItemReader::raw(std::size_t width) {
  item_ = offset_;
  std::uint64_t value = 0;
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t place = xdr_ ? i : width - 1 - i;
    value = value << 8 | bytes_[offset_ + place];
  }
  offset_ += width;
  return value;
}

std::int32_t ItemReader::integer(const char* what) {
  need(1, 4, what);
  const auto bits = static_cast<std::uint32_t>(raw(4));
  std::int32_t value = 0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

std::int32_t ItemReader::count(const char* what) {
  const std::int32_t value = integer(what);
  if (value < 0) fail(std::string("a count of 0 or more as ") + what + ", found " + std::to_string(value));
  return value;
}

std::int32_t ItemReader::flag(const char* what) {
  const std::int32_t value = integer(what);
  if (value != 0 && value != 1) fail(std::string("0 or 1 as ") + what + ", found " + std::to_string(value));
  return value;
}

double ItemReader::real(const char* what) {
  need(1, real_bytes(), what);
  if (single_) {
    const auto bits = static_cast<std::uint32_t>(raw(4));
    float value = 0.0F;
    std::memcpy(&value, &bits, sizeof value);
    return static_cast<double>(value);
  }
  const std::uint64_t bits = raw(8);
  double value = 0.0;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

int ItemReader::small_number(const char* what) {
  if (!xdr_) {
    need(1, 1, what);
    const int byte = static_cast<int>(raw(1));
    return byte < 128 ? byte : byte - 256;
  }
  const std::int32_t value = integer(what);
  if (value < -128 || value > 127) fail(std::string("a sign-extended character of ") + what);
  return value;
}

std::string ItemReader::characters(std::size_t n, const char* what) {
  need(n, xdr_ ? 4 : 1, what);
  std::string text;
  for (std::size_t i = 0; i < n; ++i) text += static_cast<char>(small_number(what));
  return text;
}

std::vector<std::int32_t> ItemReader::integers(std::size_t n, const char* what) {
  need(n, 4, what);
  std::vector<std::int32_t> values(n);
  for (std::int32_t& value : values) value = integer(what);
  return values;
}

std::vector<double> ItemReader::reals(std::size_t n, const char* what) {
  need(n, real_bytes(), what);
  std::vector<double> values(n);
  for (double& value : values) value = real(what);
  return values;
}

std::size_t ItemReader::product(std::initializer_list<std::int32_t> factors, const char* what) {
  for (const std::int32_t factor : factors) {
    if (factor == 0) return 0;
  }
  std::size_t total = 1;
  for (const std::int32_t factor : factors) {
    const auto size = static_cast<std::size_t>(factor);
    if (factor < 0 || total > std::numeric_limits<std::size_t>::max() / size) {
      fail(std::string("counts of ") + what + " that fit the file");
    }
    total *= size;
  }
  return total;
}

}  // namespace dataset_reader
