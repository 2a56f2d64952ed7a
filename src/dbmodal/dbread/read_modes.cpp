// Blocks of the modes: eigenvalues (7), mode shapes (8), modal stress (18) and strain (29). Vectors stay in
// the dataset: what is read is where each begins, and which mode it is of.
#include <algorithm>
#include <cmath>

#include "dbmodal/dbdata/sorted_table.h"
#include "dbmodal/dbread/block_reader.h"
#include "dbmodal/dbread/node_order.h"

namespace fmd {

namespace {

enum class ModeWord { kNone, kIgnored, kNumber };

// The word that stands in front of a mode's values.
ModeWord mode_word(int level, int type) {
  if (level == 10) return ModeWord::kNone;
  if (level == 20) return ModeWord::kIgnored;
  if (level < 40 && type != kShape) return ModeWord::kNone;
  return ModeWord::kNumber;
}

// Moves the position of a mode past its word. The number is the word's, or follows from the order.
bool read_mode_word(BlockReader& reader, int type, std::int32_t mode, std::int32_t& number) {
  FmdBody& body = reader.body;
  FmdPosition& position = body.ModePositions[type][mode];
  const ModeWord word = mode_word(reader.level(), type);
  DB_FRESTORE(&position, body.DataFile);
  number = reader.has_eigenvalues && mode < body.ModeRecordCount ? body.ModeRecords[mode].Mode : mode + 1;
  if (word == ModeWord::kNone) return true;
  std::int32_t value = 0;
  if (!reader.read_int(value)) return false;
  if (word == ModeWord::kNumber) number = value;
  DB_FSAVE(&position, body.DataFile);
  return true;
}

bool read_eigenvalue(BlockReader& reader, FmdModeRecord& record) {
  double values[5];
  if (!reader.read_int(record.Mode) || !reader.read_reals(values, 5)) return false;
  record.Eigenvalue = values[0];
  record.FrequencyHz = values[1];
  record.FrequencyRad = values[2];
  record.GeneralizedMass = values[3];
  record.GeneralizedStiffness = values[4];
  if (reader.body.Version != 10) return true;
  // The oldest writers left nothing of use behind the eigenvalue.
  record.FrequencyRad = std::sqrt(record.Eigenvalue);
  record.FrequencyHz = record.FrequencyRad / kTwoPi;
  record.GeneralizedMass = 1.0;
  record.GeneralizedStiffness = record.Eigenvalue;
  return true;
}

struct ModeBlock {
  int type;
  const char* count_mismatch;
  const char* out_of_memory;
  const char* without_shapes;
  const char* other_order;
  const char* problem;
};

constexpr ModeBlock kStressBlock = {kStress,
                                    "Number of stress modes does not match the number of eigenvalues",
                                    "Out of memory while reading Modal Stress Block",
                                    "Stress modes are being processed before mode shapes",
                                    "Stress modes are in a different order than mode shapes",
                                    "Problem when reading Modal Stress info"};

constexpr ModeBlock kStrainBlock = {kStrain,
                                    "Number of strain modes does not match the number of eigenvalues",
                                    "Out of memory while reading Modal Strain Block",
                                    "Strain modes are being processed before mode shapes",
                                    "Strain modes are in a different order than mode shapes",
                                    "Problem when reading Modal Strain info"};

// The nodes of the block, as the two tables that lead to them and from their ids.
bool read_mode_nodes(BlockReader& reader, const ModeBlock& block, std::int32_t count) {
  FmdBody& body = reader.body;
  auto nodes = allocate_table<FmdNode*>(body.NodeCount, block.out_of_memory);
  auto pairs = nodes == nullptr ? nullptr : allocate_table<FmdIdIndex>(body.NodeCount, block.out_of_memory);
  if (pairs == nullptr) return false;
  for (std::int32_t j = 0; j < count; ++j) {
    std::int32_t id = 0;
    const int index = reader.read_int(id) ? FMD_NodeIndex(&body, id) : -1;
    if (index < 0) return report(block.problem);
    nodes[static_cast<std::size_t>(j)] = body.Nodes + index;
    pairs[static_cast<std::size_t>(j)] = {id, j};
  }
  sort_pairs(pairs.get(), count);
  install(body.ModeNodes[block.type], nodes);
  install(body.SortedModeNodes[block.type], pairs);
  body.ModeNodeCount[block.type] = count;
  return true;
}

// The numbers that the modes are known by; made here where no mode shapes came before.
bool provide_numbers(BlockReader& reader, const ModeBlock& block, std::int32_t modes, bool& made) {
  FmdBody& body = reader.body;
  made = body.ModeNumbers == nullptr && modes > 0;
  if (!made) return true;
  auto numbers = allocate<std::int32_t>(modes, "dbread");
  if (numbers == nullptr) return false;
  FMD_Warning("%s", block.without_shapes);
  install(body.ModeNumbers, numbers);
  reader.numbered_modes = modes;
  return true;
}

bool read_mode_numbers(BlockReader& reader, const ModeBlock& block, std::int32_t modes, bool made) {
  const bool stored = mode_word(reader.level(), block.type) == ModeWord::kNumber;
  for (std::int32_t mode = 0; mode < modes; ++mode) {
    std::int32_t number = 0;
    if (!read_mode_word(reader, block.type, mode, number)) return report(block.problem);
    std::int32_t& known = reader.body.ModeNumbers[mode];
    if (made) known = number;
    if (!made && stored && known != number) return report(block.other_order);
  }
  return true;
}

bool read_mode_block(BlockReader& reader, const ModeBlock& block) {
  FmdBody& body = reader.body;
  std::int32_t modes = 0;
  std::int32_t nodes = 0;
  if (!reader.read_int(modes)) return report(block.problem);
  if (reader.has_eigenvalues && modes != body.ModeRecordCount) FMD_Error("%s", block.count_mismatch);
  if (!reader.read_int(nodes) || nodes < 0 || nodes > body.NodeCount || !reader.has(nodes, 1))
    return report(block.problem);
  if (!read_mode_nodes(reader, block, nodes)) return false;

  if (modes < 1 && block.type == kStrain) return report(block.problem);
  modes = std::max(modes, 0);
  // Modes beyond those that are numbered already are none that anybody knows.
  if (body.ModeNumbers != nullptr && modes > reader.numbered_modes) return report(block.other_order);
  if (modes > body.ModePositionCount[block.type]) return report(block.problem);
  bool made = false;
  if (!provide_numbers(reader, block, modes, made)) return false;
  body.ModeCount = modes;
  return read_mode_numbers(reader, block, modes, made);
}

bool fail_at_shapes() {
  return report("Problem encountered while caching Mode shape Data");
}

// The node table takes the order of the vectors.
bool read_shape_nodes(BlockReader& reader, std::int32_t count) {
  FmdBody& body = reader.body;
  if (count < 0 || count > body.NodeCount || !reader.has(count, 1)) return fail_at_shapes();
  body.ModeNodeCount[kShape] = count;
  if (count == 0) return true;
  const auto ids = allocate<std::int32_t>(count, "dbread");
  auto nodes = ids == nullptr ? nullptr : allocate<FmdNode*>(body.NodeCount, "dbread");
  if (nodes == nullptr) return false;
  if (!reader.read_ints(ids.get(), count)) return fail_at_shapes();
  if (!order_nodes(reader, ids.get(), count)) return false;
  for (std::int32_t i = 0; i < body.NodeCount; ++i) nodes[static_cast<std::size_t>(i)] = body.Nodes + i;
  install(body.ModeNodes[kShape], nodes);
  return true;
}

}  // namespace

bool read_eigenvalues(BlockReader& reader) {
  constexpr const char* kProblem = "Problem reading Eigenvalue Data";
  FmdBody& body = reader.body;
  std::int32_t count = 0;
  if (!reader.read_int(count) || count < 0 || !reader.has(count, 1 + 5 * reader.words_per_real()))
    return report(kProblem);
  body.ModeRecordCount = 0;
  reader.has_eigenvalues = true;
  if (count == 0) return true;
  auto records = allocate_table<FmdModeRecord>(count, "Out of memory while reading Eigenvalues block");
  if (records == nullptr) return false;
  const bool done = std::all_of(records.get(), records.get() + count,
                                [&](FmdModeRecord& record) { return read_eigenvalue(reader, record); });
  if (!done) return report(kProblem);
  install(body.ModeRecords, records);
  body.ModeRecordCount = count;
  return true;
}

bool read_mode_shapes(BlockReader& reader) {
  FmdBody& body = reader.body;
  std::int32_t counts[2];
  if (!reader.read_ints(counts, 2)) return fail_at_shapes();
  if (reader.has_eigenvalues && counts[0] != body.ModeRecordCount)
    return report("Number of mode shapes does not match the number of eigenvalues");
  if (!read_shape_nodes(reader, counts[1])) return false;
  if (counts[0] < 1) return true;
  if (counts[0] > body.ModePositionCount[kShape]) return fail_at_shapes();
  auto numbers = allocate_table<std::int32_t>(counts[0], "Out of memory while reading Mode Shape block");
  if (numbers == nullptr) return false;
  for (std::int32_t mode = 0; mode < counts[0]; ++mode) {
    if (!read_mode_word(reader, kShape, mode, numbers[static_cast<std::size_t>(mode)]))
      return fail_at_shapes();
  }
  install(body.ModeNumbers, numbers);
  body.ModeCount = reader.numbered_modes = counts[0];
  return true;
}

bool read_modal_stress(BlockReader& reader) {
  return read_mode_block(reader, kStressBlock);
}

bool read_modal_strain(BlockReader& reader) {
  return read_mode_block(reader, kStrainBlock);
}

}  // namespace fmd
