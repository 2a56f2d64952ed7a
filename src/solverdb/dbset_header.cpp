#include "solverdb/dbset_header.h"

#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>

#include "kdcdb/kdcdb.h"
#include "system/file_system.h"

namespace fmd {

namespace {

constexpr int kHeaderWords = 256;
constexpr std::int32_t kLargestOffset = 252;
constexpr int kPlatformFormat = 2;  // 32 bits, little-endian, IEEE

struct Machine {
  std::int32_t code;
  const char* name;
};

constexpr Machine kMachines[] = {{1, "Compaq OpenVMS"},
                                 {2, "IBM MVS"},
                                 {5, "Cray"},
                                 {9, "HP-UX"},
                                 {17, "Convex"},
                                 {19, "Sun-3"},
                                 {20, "Intel 386 (SCO)"},
                                 {21, "Hitachi"},
                                 {22, "NEC"},
                                 {24, "Sun Solaris"},
                                 {27, "Silicon Graphics"},
                                 {30, "AIX"},
                                 {32, "Fujitsu"},
                                 {34, "Compaq Alpha"},
                                 {35, "Sun Solaris"},
                                 {36, "Windows"},
                                 {37, "Fujitsu"},
                                 {38, "Windows"},
                                 {39, "Linux"}};

// The words of a header block under one of the layouts that it may have. A place beyond the words read has no
// value: 0, and a text that matches nothing.
class HeaderWords {
 public:
  HeaderWords(const std::uint32_t* words, bool wide, bool reversed)
      : words_(words), wide_(wide), reversed_(reversed) {}

  std::int32_t value(std::int64_t k) const {
    const std::int64_t at = wide_ ? 2 * k + (reversed_ ? 1 : 0) : k;
    if (!is_there(at)) return 0;
    const std::uint32_t word = words_[at];
    return static_cast<std::int32_t>(reversed_ ? __builtin_bswap32(word) : word);
  }

  // Four characters; false beyond the words read.
  bool text(std::int64_t k, char* to) const {
    const std::int64_t at = wide_ ? 2 * k : k;
    if (!is_there(at)) return false;
    std::memcpy(to, words_ + at, 4);
    return true;
  }

  bool has_value(std::int64_t k) const { return is_there(wide_ ? 2 * k + 1 : k); }

 private:
  static bool is_there(std::int64_t at) { return at >= 0 && at < kHeaderWords; }

  const std::uint32_t* words_;
  bool wide_;
  bool reversed_;
};

bool has_legal_offsets(const HeaderWords& words) {
  const std::int32_t least = words.value(3);
  const auto is_legal = [](std::int32_t offset, std::int32_t from) {
    return offset >= from && offset <= kLargestOffset;
  };
  return is_legal(least, 1) && words.value(5) >= 3 && is_legal(words.value(6), least) &&
         is_legal(words.value(8), 1) && is_legal(words.value(10), least);
}

bool has_signature(const HeaderWords& words) {
  char text[12];
  const std::int64_t stamp = words.value(6);
  for (int i = 0; i < 3; ++i) {
    if (!words.text(stamp + 3 + i, text + 4 * i)) return false;
  }
  return std::memcmp(text, "*TIME STAMP*", sizeof text) == 0;
}

bool has_legal_buffsize(const HeaderWords& words) {
  std::int32_t limit = 0;
  std::int32_t second = 0;
  kdcdb::GetBuffsizeLimit(&limit, &second);
  return words.value(4) >= 1 && words.value(4) <= limit;
}

void read_version(const HeaderWords& words, std::int64_t machine, DBsetHeaderInfo& info) {
  char text[5] = {};
  if (!words.text(machine + 8, text)) return;
  if (std::sscanf(text, "%d.%d", &info.version_year, &info.version_minor) >= 1 && info.version_year < 30)
    info.version_year += 2000;
}

const char* machine_name(std::int32_t code) {
  for (const Machine& machine : kMachines) {
    if (machine.code == code) return machine.name;
  }
  return "Unknown";
}

void derive_fields(const HeaderWords& words, std::int64_t file_bytes, DBsetHeaderInfo& info) {
  const std::int64_t stamp = words.value(6);
  const std::int64_t name = words.value(8);
  const std::int64_t machine = words.value(10);
  info.buffsize = words.value(4);
  info.file = numeric_format(words.value(machine + 15));
  const std::int64_t word_bytes = info.file.word_size == 0 ? 4 : 8;
  if (info.buffsize > 0) info.records = file_bytes / (info.buffsize * word_bytes);
  for (int i = 0; i < 4; ++i) {
    const std::int32_t digits = words.value(stamp + 6 + i);
    info.stamps[static_cast<std::size_t>(i)] = {digits / 10000, digits / 100 % 100, digits % 100};
  }
  info.further_stamp = words.value(stamp + 10);
  if (words.text(name + 3, info.name) && words.text(name + 4, info.name + 4))
    info.is_master = std::strcmp(info.name, "MASTER  ") == 0;
  info.machine = words.value(machine + 3);
  info.machine_name = machine_name(info.machine);
  read_version(words, machine, info);
}

// The platform's own layout is final where its offsets are legal; the others only say why a file is no use.
DBsetStatus try_layouts(const std::uint32_t* words, std::int64_t file_bytes, DBsetHeaderInfo& info) {
  const HeaderWords own(words, false, false);
  if (has_legal_offsets(own)) {
    derive_fields(own, file_bytes, info);
    if (!has_signature(own)) return kDBsetBadSignature;
    const std::int64_t format = std::int64_t{own.value(10)} + 15;
    if (!own.has_value(format) || own.value(format) != kPlatformFormat) return kDBsetBadFormat;
    return has_legal_buffsize(own) ? kDBsetUsable : kDBsetBadBuffsize;
  }
  const HeaderWords others[] = {{words, false, true}, {words, true, true}, {words, true, false}};
  for (const HeaderWords& other : others) {
    if (!has_legal_offsets(other) || !has_signature(other) || !has_legal_buffsize(other)) continue;
    derive_fields(other, file_bytes, info);
    return kDBsetForeignFormat;
  }
  return kDBsetBadOffset;
}

DBsetStatus status_of_missing(int error) {
  if (error == ENOENT) return kDBsetNotFound;
  return error == EACCES ? kDBsetNoPermission : kDBsetUnknownError;
}

// Reads up to so many bytes; below 0 for an error.
ssize_t read_start(int file, void* to, std::size_t bytes) {
  std::size_t got = 0;
  while (got < bytes) {
    const ssize_t more =
        file_system().pread(file, static_cast<char*>(to) + got, bytes - got, static_cast<off_t>(got));
    if (more < 0 && errno == EINTR) continue;
    if (more < 0) return more;
    if (more == 0) break;
    got += static_cast<std::size_t>(more);
  }
  return static_cast<ssize_t>(got);
}

}  // namespace

NumericFormat numeric_format(int code) {
  return {code, code & 1, (code >> 1) & 1, (code >> 2) & 3};
}

const char* word_size_name(const NumericFormat& format) {
  return format.word_size == 0 ? "32-bit" : "64-bit";
}

const char* byte_order_name(const NumericFormat& format) {
  return format.byte_order == 0 ? "big-endian" : "little-endian";
}

const char* float_format_name(const NumericFormat& format) {
  constexpr const char* kNames[4] = {"IEEE", "CRAY", "IBM", "VAX"};
  return kNames[format.float_format];
}

DBsetStatus ReadDBsetHeader(const char* path, DBsetHeaderInfo& info) {
  info.platform = numeric_format(kPlatformFormat);
  struct stat status {};
  if (file_system().stat(path, &status) != 0) {
    info.system_error = errno;
    return status_of_missing(errno);
  }
  if (!S_ISREG(status.st_mode)) return kDBsetNotRegular;
  info.unreadable = file_system().access(path, R_OK) != 0;
  const int file = file_system().open(path, O_RDONLY, 0);
  if (file < 0) {
    info.system_error = errno;
    return kDBsetNotOpened;
  }
  std::uint32_t words[kHeaderWords];
  const ssize_t got = read_start(file, words, sizeof words);
  if (got < 0) info.system_error = errno;
  file_system().close(file);
  if (got < 0) return kDBsetReadError;
  if (static_cast<std::size_t>(got) < sizeof words) return kDBsetTooShort;
  return try_layouts(words, status.st_size, info);
}

}  // namespace fmd
