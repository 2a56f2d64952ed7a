// A stored dataset into a body: what is small at once, mode vectors and invariants when they are asked for.
#include <algorithm>
#include <cstring>

#include "dbmodal/block_table.h"
#include "dbmodal/dbread/block_reader.h"
#include "services/units.h"

// Blanks at the end of a text field become NUL bytes; a field that ends in NUL is left alone.
void terminate_string(char* field, int width) {
  for (int at = width - 1; at >= 0 && field[at] == ' '; --at) field[at] = '\0';
}

namespace {

using fmd::BlockReader;

constexpr int kHeaderBlock = 1;
constexpr int kUnitsBlock = 10;

// The streams of a body share the datablock and the name of its file.
void bind_streams(FmdBody& body, int block, const char* file_name, int index, int logical_id) {
  auto* const name = static_cast<char*>(
      fmd::allocate_quietly(static_cast<std::int64_t>(std::strlen(file_name)) + 1, sizeof(char)));
  if (name == nullptr) {
    FMD_Warning("Failed to allocate memory at line %d in file %s.\n", __LINE__, "dbread");
  } else {
    std::strcpy(name, file_name);
  }
  FmdStream stream{};
  stream.Name = name;
  stream.Block = block;
  stream.BodyIndex = index;
  stream.Key = logical_id;
  // Integers and texts alone are read before the precision is known.
  stream.DoublePrecision = 1;
  DB_FSAVE(&stream.StartPosition, stream);
  body.DataFile = stream;
  for (FmdStream& modes : body.ModeFile) modes = stream;
}

bool is_known_level(int level) {
  for (const int known : {10, 20, 30, 31, 40, 41, 50, 51}) {
    if (level == known) return true;
  }
  return level > 59;
}

bool read_version(BlockReader& reader) {
  FmdBody& body = reader.body;
  std::int32_t words[2];
  if (!reader.read_ints(words, 2) || words[0] != 1 || DB_SkipRecord(body.DataFile) == 0) return false;
  const auto version = static_cast<std::uint32_t>(words[1]);
  if (!is_known_level(fmd::format_level(version))) return false;
  body.Version = version;
  const int double_precision = fmd::is_single_precision(version) ? 0 : 1;
  body.DataFile.DoublePrecision = double_precision;
  for (FmdStream& modes : body.ModeFile) modes.DoublePrecision = double_precision;
  if ((version & fmd::kVersionCoarsened) != 0) body.Coarsened = 1;
  return true;
}

bool read_summary(BlockReader& reader) {
  FmdBody& body = reader.body;
  std::int32_t number = 0;
  if (DB_SkipRecord(body.DataFile) == 0 || !reader.read_int(number) || number != 3) return false;
  return reader.read_chars(body.BlockExists) && DB_SkipRecord(body.DataFile) != 0;
}

// Levels up to 31 knew only the first 17 bytes.
void clear_unknown_bytes(FmdBody& body) {
  constexpr int kKnownBytes = 17;
  const int level = fmd::format_level(body.Version);
  if (level < 40) std::memset(body.BlockExists + kKnownBytes, 0, sizeof body.BlockExists - kKnownBytes);
}

template <std::size_t size>
void trim(char (&field)[size]) {
  terminate_string(field, static_cast<int>(size));
  field[size - 1] = '\0';
}

// A problem here does not stop the read.
void read_units(BlockReader& reader) {
  FmdBody& body = reader.body;
  std::strcpy(body.MassUnit, "KILOGRAM");
  std::strcpy(body.LengthUnit, "METER");
  std::strcpy(body.TimeUnit, "SECOND");
  std::strcpy(body.ForceUnit, "NEWTON");
  if (FMD_goto_block(&body, kUnitsBlock) == 0) return;
  for (auto* label : {&body.MassUnit, &body.LengthUnit, &body.TimeUnit, &body.ForceUnit}) {
    if (!reader.read_chars(*label)) return;
    trim(*label);
    fmd::accept_unit_label(*label);
  }
}

bool read_header(BlockReader& reader) {
  FmdBody& body = reader.body;
  if (FMD_goto_block(&body, kHeaderBlock) == 0) return false;
  if (!reader.read_chars(body.Title) || !reader.read_chars(body.CreationTime) ||
      !reader.read_chars(body.InputFileName) || !reader.read_chars(body.InputFileType) ||
      !reader.read_chars(body.Comment1) || !reader.read_chars(body.Comment2) ||
      !reader.read_chars(body.Comment3))
    return false;
  trim(body.Title);
  trim(body.CreationTime);
  trim(body.InputFileName);
  body.InputFileType[sizeof body.InputFileType - 1] = '\0';
  trim(body.Comment1);
  trim(body.Comment2);
  trim(body.Comment3);
  return true;
}

// The blocks of vectors may tell different numbers of modes, of which the last one counts: modes that a block
// does not have are at no place.
bool complete_positions(FmdBody& body) {
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    const std::int32_t known = body.ModePositionCount[type];
    if (body.ModePositions[type] == nullptr || known >= body.ModeCount) continue;
    if (!fmd::grow(body.ModePositions[type], body.ModeCount)) {
      fmd::report_allocation_failure("dbread");
      return false;
    }
    std::fill(body.ModePositions[type] + known, body.ModePositions[type] + body.ModeCount, fmd::kNoPosition);
    body.ModePositionCount[type] = body.ModeCount;
  }
  return true;
}

// In ascending number; topology of the old style is looked for in the place of the faces, where those are
// missing.
bool read_blocks(BlockReader& reader) {
  constexpr int kTopology = 5;
  constexpr int kFaces = 14;
  for (const fmd::Block& next : fmd::block_table()) {
    if (next.number == kTopology) continue;
    const bool old_style = next.number == kFaces && FMD_Exists(&reader.body, kFaces - 1) == 0;
    const fmd::Block& block = old_style ? fmd::block_table()[kTopology - 1] : next;
    if (block.read == nullptr || FMD_goto_block(&reader.body, block.number - 1) == 0) continue;
    if (!block.read(reader)) return false;
  }
  return complete_positions(reader.body);
}

}  // namespace

int FMD_ReadFMD(FmdBody* body, char* fileName, int index) {
  if (body == nullptr) return 0;
  int logical_id = 0;
  const int block = DB_OpenDatablk(fileName, index, &logical_id);
  if (block == 0) return 0;
  bind_streams(*body, block, fileName, index, logical_id);
  BlockReader reader(*body);
  if (!read_version(reader)) {
    fmd::report("Not a valid FMD format.");
    return 0;
  }
  const bool has_summary = read_summary(reader);
  clear_unknown_bytes(*body);
  if (!has_summary || FMD_get_position_of_blocks(body) == 0) {
    fmd::report("Problem reading FMD table of contents.");
    return 0;
  }
  read_units(reader);
  if (!read_header(reader)) {
    fmd::report("Problem reading Header information");
    return 0;
  }
  return read_blocks(reader) ? 1 : 0;
}
