#include "dbmodal/dbtools/sketch_file.h"

#include <cctype>
#include <limits>

#include "messages/memory.h"

namespace fmd {

namespace {

constexpr std::int64_t kStep = 1000;
constexpr std::int64_t kMostEntries = std::numeric_limits<std::int32_t>::max();

bool is_digit(int character) {
  return character >= '0' && character <= '9';
}

}  // namespace

bool read_sketch_number(std::FILE* file, std::int32_t& value) {
  int character = std::getc(file);
  while (character != EOF && std::isspace(character) != 0) character = std::getc(file);
  const bool negative = character == '-';
  if (negative || character == '+') character = std::getc(file);
  if (!is_digit(character)) return false;

  constexpr std::int64_t kBeyond = std::int64_t{1} << 32;
  std::int64_t magnitude = 0;
  for (; is_digit(character); character = std::getc(file)) {
    if (magnitude < kBeyond) magnitude = 10 * magnitude + (character - '0');
  }
  if (character != EOF) std::ungetc(character, file);
  const std::int64_t number = negative ? -magnitude : magnitude;
  value = static_cast<std::int32_t>(number);
  return number == value;
}

SketchedFaces::~SketchedFaces() {
  fmd::release(entries_);
}

bool SketchedFaces::reserve(std::int64_t entries) {
  if (entries <= capacity_) return true;
  const std::int64_t capacity = (entries + kStep - 1) / kStep * kStep;
  if (entries > kMostEntries || !grow(entries_, capacity)) {
    report_allocation_failure("dbtools");
    return false;
  }
  capacity_ = capacity;
  return true;
}

bool SketchedFaces::append(std::int32_t entry) {
  if (!reserve(length_ + 1)) return false;
  entries_[length_++] = entry;
  return true;
}

std::int32_t* SketchedFaces::release() {
  std::int32_t* entries = entries_;
  entries_ = nullptr;
  length_ = capacity_ = 0;
  return entries;
}

}  // namespace fmd
