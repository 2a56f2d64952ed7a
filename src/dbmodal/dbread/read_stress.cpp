// Blocks of what is known of a mode or a node beyond vectors: statistics (30), pre-stress (31), pre-strain
// (32).
#include "dbmodal/dbdata/mode_statistics.h"
#include "dbmodal/dbread/block_reader.h"

namespace fmd {

namespace {

struct PreLoadBlock {
  int type;
  double* FmdBody::*values;
  std::int32_t FmdBody::*capacity;
  const char* count_mismatch;
  const char* no_count;
  const char* out_of_memory;
  const char* problem;
};

constexpr PreLoadBlock kPreStressBlock = {kStress,
                                          &FmdBody::PreStress,
                                          &FmdBody::PreStressCapacity,
                                          "Number of nodes in pre-stress does not match that in stress modes",
                                          "Problem occurred while reading Pre-Stress info",
                                          "Out of memory while processing Pre-Stress Block",
                                          "Problem when reading Pre-Stress Block"};

constexpr PreLoadBlock kPreStrainBlock = {kStrain,
                                          &FmdBody::PreStrain,
                                          &FmdBody::PreStrainCapacity,
                                          "Number of nodes in pre-strain does not match that in strain modes",
                                          "Problem occurred while reading Pre-Strain info",
                                          "Out of memory while processing Pre-Strain Block",
                                          "Problem when reading Pre-Strain Block"};

bool read_pre_load(BlockReader& reader, const PreLoadBlock& block) {
  FmdBody& body = reader.body;
  std::int32_t nodes = 0;
  if (!reader.read_int(nodes)) return report(block.no_count);
  if (nodes != body.ModeNodeCount[block.type]) FMD_Error("%s", block.count_mismatch);
  const std::int64_t values = std::int64_t{kValuesPerNode} * nodes;
  if (nodes > 0 && !reader.has(values, reader.words_per_real())) return report(block.problem);
  auto stored = allocate_table<double>(values, block.out_of_memory);
  if (stored == nullptr) return false;
  if (!reader.read_reals(stored.get(), values)) return report(block.problem);
  install(body.*block.values, stored);
  body.*block.capacity = nodes;
  return true;
}

}  // namespace

bool read_modal_statistics(BlockReader& reader) {
  constexpr const char* kProblem = "Problem when reading Modal Statistics Block";
  constexpr int kItems = 13;
  FmdBody& body = reader.body;
  std::int32_t modes = 0;
  if (!reader.read_int(modes)) return report(kProblem);
  if (modes > 0 && !reader.has(modes, kItems * (1 + reader.words_per_real()))) return report(kProblem);
  auto records =
      allocate_table<FmdModeStatistics>(modes, "Out of memory while reading Modal Statistics Block");
  if (records == nullptr) return false;
  for (std::int32_t mode = 0; mode < modes; ++mode) {
    if (!read_statistics_record(body, records[static_cast<std::size_t>(mode)])) return report(kProblem);
  }
  install(body.ModalStatistics, records);
  body.StatisticsCount = modes;
  return true;
}

bool read_pre_stress(BlockReader& reader) {
  return read_pre_load(reader, kPreStressBlock);
}

bool read_pre_strain(BlockReader& reader) {
  return read_pre_load(reader, kPreStrainBlock);
}

}  // namespace fmd
