#include "kdcdb/master_pages.h"

#include <algorithm>
#include <cstring>

#include "kdcdb/crc32c.h"
#include "kdcdb/little_endian.h"

namespace kdcdb {

namespace {

// Offsets of the records inside the header, in words; each starts three words in front of what it holds.
constexpr std::int32_t kSmallestOffset = 11;
constexpr std::int32_t kTimeStampRecord = 16;
constexpr std::int32_t kNameRecord = 32;
constexpr std::int32_t kMachineRecord = 48;
constexpr std::int32_t kMachineLinux = 39;
constexpr std::int32_t kNumericFormat = 2;  // 32-bit words, little-endian, IEEE reals
constexpr std::int32_t kLayoutVersion = 1;

constexpr std::size_t kOwnPart = 512;  // byte where the store's own fields begin
constexpr std::size_t kHeaderCrc = kHeaderBytes - 4;
constexpr std::size_t kRootCrc = kRootBytes - 4;
constexpr char kHeaderMagic[] = "FMDSTORE";
constexpr char kRootMagic[] = "FMDSROOT";
constexpr std::size_t kMagicBytes = 8;

void put_word(HeaderBytes& bytes, std::int32_t word, std::int32_t value) {
  put(bytes.data(), 4 * static_cast<std::size_t>(word), value);
}

void put_text(HeaderBytes& bytes, std::int32_t word, const char* text) {
  std::memcpy(bytes.data() + 4 * word, text, std::strlen(text));
}

bool crc_matches(const unsigned char* bytes, std::size_t crc_offset) {
  return crc32c(bytes, crc_offset) == get<std::uint32_t>(bytes, crc_offset);
}

}  // namespace

HeaderBytes encode_header(std::uint64_t file_id, const std::tm& created) {
  HeaderBytes bytes{};
  put_word(bytes, 3, kSmallestOffset);
  put_word(bytes, 4, kBufferWords);
  put_word(bytes, 5, 3);
  put_word(bytes, 6, kTimeStampRecord);
  put_word(bytes, 8, kNameRecord);
  put_word(bytes, 10, kMachineRecord);
  put_text(bytes, kTimeStampRecord + 3, "*TIME STAMP*");
  const std::int32_t date = created.tm_year % 100 * 10000 + (created.tm_mon + 1) * 100 + created.tm_mday;
  const std::int32_t time = created.tm_hour * 10000 + created.tm_min * 100 + created.tm_sec;
  for (const int stamp : {0, 2}) {
    put_word(bytes, kTimeStampRecord + 6 + stamp, date);
    put_word(bytes, kTimeStampRecord + 7 + stamp, time);
  }
  put_text(bytes, kNameRecord + 3, "MASTER  ");
  put_word(bytes, kMachineRecord + 3, kMachineLinux);
  put_text(bytes, kMachineRecord + 8, "1.0 ");
  put_word(bytes, kMachineRecord + 15, kNumericFormat);
  std::memcpy(bytes.data() + kOwnPart, kHeaderMagic, kMagicBytes);
  put(bytes.data(), kOwnPart + 8, kLayoutVersion);
  put(bytes.data(), kOwnPart + 12, std::int32_t{kPageBytes});
  put(bytes.data(), kOwnPart + 16, file_id);
  put(bytes.data(), kHeaderCrc, crc32c(bytes.data(), kHeaderCrc));
  return bytes;
}

Status decode_header(const HeaderBytes& bytes, std::uint64_t& file_id) {
  const unsigned char* const own = bytes.data() + kOwnPart;
  if (std::memcmp(own, kHeaderMagic, kMagicBytes) != 0) return kNotADatabase;
  if (!crc_matches(bytes.data(), kHeaderCrc)) return kDamaged;
  if (get<std::int32_t>(own, 8) != kLayoutVersion || get<std::int32_t>(own, 12) != kPageBytes)
    return kNotADatabase;
  file_id = get<std::uint64_t>(own, 16);
  return kOk;
}

bool is_header_as_made(const HeaderBytes& bytes, std::uint64_t file_id) {
  constexpr std::size_t kStamps = 4 * (kTimeStampRecord + 6);
  constexpr std::size_t kBehindStamps = kStamps + 16;
  const HeaderBytes made = encode_header(file_id, std::tm{});
  return std::equal(bytes.begin(), bytes.begin() + kStamps, made.begin()) &&
         std::equal(bytes.begin() + kBehindStamps, bytes.begin() + kHeaderCrc, made.begin() + kBehindStamps);
}

RootBytes encode_root(const Root& root) {
  RootBytes bytes{};
  std::memcpy(bytes.data(), kRootMagic, kMagicBytes);
  put(bytes.data(), 8, root.file_id);
  put(bytes.data(), 16, root.generation);
  put(bytes.data(), 24, root.dictionary_page);
  put(bytes.data(), 32, root.dictionary_bytes);
  put(bytes.data(), 40, root.end_page);
  put(bytes.data(), 48, root.next_serial);
  put(bytes.data(), 56, root.dictionary_crc);
  put(bytes.data(), kRootCrc, crc32c(bytes.data(), kRootCrc));
  return bytes;
}

RootPageBytes encode_root_page(const Root& root) {
  RootPageBytes page{};
  const RootBytes bytes = encode_root(root);
  std::copy(bytes.begin(), bytes.end(), page.begin());
  std::copy(bytes.begin(), bytes.end(), page.begin() + kSecondRoot);
  return page;
}

bool decode_root(const RootBytes& bytes, std::uint64_t file_id, Root& root) {
  if (std::memcmp(bytes.data(), kRootMagic, kMagicBytes) != 0 || !crc_matches(bytes.data(), kRootCrc))
    return false;
  if (get<std::uint64_t>(bytes.data(), 8) != file_id ||
      get<std::uint64_t>(bytes.data(), 16) > kLastGeneration)
    return false;
  root.file_id = file_id;
  root.generation = get<std::uint64_t>(bytes.data(), 16);
  root.dictionary_page = get<std::uint64_t>(bytes.data(), 24);
  root.dictionary_bytes = get<std::uint64_t>(bytes.data(), 32);
  root.end_page = get<std::uint64_t>(bytes.data(), 40);
  root.next_serial = get<std::uint64_t>(bytes.data(), 48);
  root.dictionary_crc = get<std::uint32_t>(bytes.data(), 56);
  return true;
}

}  // namespace kdcdb
