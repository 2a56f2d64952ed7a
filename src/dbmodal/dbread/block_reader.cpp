#include "dbmodal/dbread/block_reader.h"

#include <algorithm>

#include "solverdb/records.h"

namespace fmd {

namespace {

// What one call of the record primitives takes.
constexpr std::int64_t kPiece = 1 << 24;

}  // namespace

bool BlockReader::read_ints(std::int32_t* values, std::int64_t count) {
  if (!has(count, 1)) return false;
  for (; count > 0; count -= kPiece, values += kPiece) {
    if (DB_ReadINTs(body.DataFile, values, static_cast<int>(std::min(count, kPiece))) == 0) return false;
  }
  return true;
}

bool BlockReader::read_reals(double* values, std::int64_t count) {
  if (!has(count, words_per_real())) return false;
  for (; count > 0; count -= kPiece, values += kPiece) {
    if (DB_ReadDOUBLEs(body.DataFile, values, static_cast<int>(std::min(count, kPiece))) == 0) return false;
  }
  return true;
}

bool BlockReader::skip_words(std::int64_t count) {
  for (; count > 0; count -= kPiece) {
    if (DB_SeekFWD(body.DataFile, static_cast<int>(std::min(count, kPiece))) == 0) return false;
  }
  return true;
}

bool BlockReader::has(std::int64_t items, std::int64_t words_each) const {
  return items >= 0 && items <= words_left_in_record(body.DataFile) / words_each;
}

std::int32_t BlockReader::node_index(std::int32_t in_file) const {
  if (moved == nullptr || in_file < 0 || in_file >= body.NodeCount) return in_file;
  return moved[static_cast<std::size_t>(in_file)];
}

bool report(const char* message) {
  FMD_Error("%s", message);
  return false;
}

}  // namespace fmd
