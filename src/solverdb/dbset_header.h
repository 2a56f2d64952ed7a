// The header block of a database file, read word by word before the file is handed to the store: a wrong file
// gets a precise reason.
#ifndef FMDTOOLKIT_SOLVERDB_DBSET_HEADER_H
#define FMDTOOLKIT_SOLVERDB_DBSET_HEADER_H

#include <array>
#include <cstdint>

namespace fmd {

enum DBsetStatus : int {
  kDBsetUnknownError = -1,
  kDBsetUsable = 0,
  kDBsetForeignFormat = 1,
  kDBsetNotFound = 2,
  kDBsetNoPermission = 3,
  kDBsetNotRegular = 4,
  kDBsetNotOpened = 5,
  kDBsetTooShort = 6,
  kDBsetReadError = 7,
  kDBsetBadOffset = 10,
  kDBsetBadSignature = 11,
  kDBsetBadFormat = 12,
  kDBsetBadBuffsize = 13
};

// How numbers stand in a file: the code has one bit for the word size, one for the byte order, two for reals.
struct NumericFormat {
  int code = 0;
  int word_size = 0;     // 0: 32 bits, 1: 64 bits
  int byte_order = 0;    // 0: big-endian, 1: little-endian
  int float_format = 0;  // 0: IEEE, 1 to 3: others
};

NumericFormat numeric_format(int code);
const char* word_size_name(const NumericFormat& format);
const char* byte_order_name(const NumericFormat& format);
const char* float_format_name(const NumericFormat& format);

struct DBsetHeaderInfo {
  int system_error = 0;       // errno of a failed system call
  std::int32_t buffsize = 0;  // record length in words
  std::int64_t records = 0;   // length of the file
  NumericFormat platform;
  NumericFormat file;
  bool unreadable = false;
  std::int32_t machine = 0;
  const char* machine_name = "Unknown";
  int version_year = 0;
  int version_minor = 0;
  std::array<std::array<int, 3>, 4> stamps{};  // each year, month, day or hour, minute, second
  std::int32_t further_stamp = 0;
  char name[9] = {};
  bool is_master = false;
};

// Checks the header of the file and fills the record as far as it came.
DBsetStatus ReadDBsetHeader(const char* path, DBsetHeaderInfo& info);

}  // namespace fmd

#endif
