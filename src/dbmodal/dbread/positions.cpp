// Where the blocks and modes of a dataset begin: from its position table, or by a walk over its records.
#include <algorithm>
#include <cstring>
#include <iterator>

#include "dbmodal/dbread/block_reader.h"

namespace {

using fmd::BlockReader;

constexpr int kTableSlots = 100;
constexpr int kWordsPerPosition = 2;

void clear_positions(FmdBody& body) {
  std::fill(std::begin(body.BlockPosition), std::end(body.BlockPosition), FmdPosition{});
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    fmd::release(body.ModePositions[type]);
    body.ModePositionCount[type] = 0;
  }
}

bool provide_positions(FmdBody& body, int type, std::int32_t modes) {
  auto positions = fmd::allocate<FmdPosition>(modes, "dbread");
  if (positions == nullptr) return false;
  fmd::install(body.ModePositions[type], positions);
  body.ModePositionCount[type] = modes;
  return true;
}

bool read_mode_table(BlockReader& reader, int type, std::int32_t modes) {
  FmdBody& body = reader.body;
  static_assert(sizeof(FmdPosition) == kWordsPerPosition * sizeof(std::int32_t), "read as words");
  if (modes < 1) return true;
  if (!reader.has(modes, kWordsPerPosition) || !provide_positions(body, type, modes)) return false;
  return reader.read_ints(body.ModePositions[type][0].Word, std::int64_t{kWordsPerPosition} * modes);
}

// The trailer has the number of modes and the place of the table.
bool read_table(BlockReader& reader) {
  FmdBody& body = reader.body;
  std::int32_t trailer[7] = {body.DataFile.Block};
  if (DB_ReadTrailer(trailer) == 0) return false;
  const std::int32_t modes = trailer[1];
  FmdPosition table;
  std::memcpy(table.Word, trailer + 5, sizeof table.Word);
  DB_FRESTORE(&table, body.DataFile);
  FmdPosition slots[kTableSlots];
  if (!reader.read_ints(slots[0].Word, std::int64_t{kWordsPerPosition} * kTableSlots)) return false;
  std::copy_n(slots + 1, fmd::kBlockCount, body.BlockPosition);
  const char* const present = body.BlockExists;
  return (present[fmd::kModeShapes] == 0 || read_mode_table(reader, fmd::kShape, modes)) &&
         (present[fmd::kModalStress] == 0 || read_mode_table(reader, fmd::kStress, modes)) &&
         (present[fmd::kModalStrain] == 0 || read_mode_table(reader, fmd::kStrain, modes));
}

// Modes of old datasets are found by one stride, that of six doubles a node and one word a mode, whatever
// they hold: what does not have this form was never readable.
bool walk_modes(BlockReader& reader, int type) {
  FmdBody& body = reader.body;
  std::int32_t counts[2];
  if (!reader.read_ints(counts, 2)) return true;
  const std::int32_t modes = counts[0];
  if (modes < 1 || !reader.has(modes, 1)) return true;
  if (!provide_positions(body, type, modes)) return false;
  const std::int64_t stride = 12 * std::int64_t{counts[1]} + 1;
  if (counts[1] < 0 || !reader.skip_words(counts[1])) return true;
  bool is_there = true;
  for (std::int32_t mode = 0; mode < modes; ++mode) {
    FmdPosition& position = body.ModePositions[type][mode];
    position = fmd::kNoPosition;
    if (is_there) DB_FSAVE(&position, body.DataFile);
    is_there = is_there && reader.skip_words(stride);
  }
  return true;
}

int mode_type_of(std::int32_t block) {
  if (block == 8) return fmd::kShape;
  if (block == 18) return fmd::kStress;
  return block == 29 ? fmd::kStrain : -1;
}

bool walk_records(BlockReader& reader) {
  FmdBody& body = reader.body;
  DB_REWIND(body.DataFile);
  for (int seen = 0; seen < fmd::kBlockCount; ++seen) {
    std::int32_t number = 0;
    if (!reader.read_int(number)) return true;
    if (number > seen && number <= fmd::kBlockCount) DB_FSAVE(&body.BlockPosition[number - 1], body.DataFile);
    const int type = mode_type_of(number);
    if (type >= 0 && !walk_modes(reader, type)) return false;
    if (DB_SkipRecord(body.DataFile) == 0) return true;
  }
  return true;
}

}  // namespace

int FMD_get_position_of_blocks(FmdBody* body) {
  if (CheckFMD(body) == 0 || body->DataFile.Block == 0) return 0;
  BlockReader reader(*body);
  clear_positions(*body);
  const bool done = (body->Version & fmd::kVersionHasTable) != 0 ? read_table(reader) : walk_records(reader);
  return done ? 1 : 0;
}
