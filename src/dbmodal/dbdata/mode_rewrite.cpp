#include "dbmodal/dbdata/mode_rewrite.h"

#include <algorithm>
#include <limits>

#include "dbmodal/dbdata/mode_vector.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "solverdb/scratch.h"

namespace fmd {

namespace {

constexpr std::int64_t kLeastFloats = 512;  // that a conversion buffer has

bool say_disk_full() {
  FMD_Error("Insufficient disk space for temporary file.");
  return false;
}

}  // namespace

bool ModeRewrite::open(FmdBody& body, int kind) {
  const FmdStream& old = body.ModeFile[kind];
  kind_ = kind;
  stream_.Block = DB_OpenScratch(&stream_.Key);
  if (stream_.Block == 0) {
    FMD_Error("Unable to open temporary block for write.");
    return false;
  }
  stream_.Name = old.Name;
  stream_.IsScratch = 1;
  stream_.DoublePrecision = old.DoublePrecision;
  stream_.BodyIndex = old.BodyIndex;
  if (!is_double() && !provide_float_buffer(body)) return false;
  stream_.FloatBuffer = body.FloatBuffer;
  DB_FSAVE(&stream_.StartPosition, stream_);
  return true;
}

// The buffer through which whoever writes to a stream in single precision narrows.
bool ModeRewrite::provide_float_buffer(FmdBody& body) {
  if (body.FloatBuffer != nullptr) return true;
  const std::int64_t values = std::int64_t{kValuesPerNode} * body.NodeCount;
  const std::int64_t room = std::max<std::int64_t>({values, body.ModeCount, kLeastFloats});
  body.FloatBuffer = allocate<float>(room, module_).release();
  return body.FloatBuffer != nullptr;
}

void ModeRewrite::tell_shortened() const {
  constexpr const char* kWord[TOTAL_MODE_INFO_TYPES] = {"Shape", "Stress", "Strain"};
  FMD_Info(" Shortened %s mode file: key = %d\n", kWord[kind_], stream_.Key);
}

bool ModeRewrite::provide_slots(const FmdBody& body, std::int64_t nodes) {
  slot_nodes_ = nodes;
  slots_ = std::max(body.ModeCount, body.PlannedModeCount);
  positions_ = allocate<FmdPosition>(slots_, module_);
  return positions_ != nullptr;
}

void ModeRewrite::begin(int slot) {
  DB_FSAVE(&positions_[static_cast<std::size_t>(slot)], stream_);
}

bool ModeRewrite::end(std::int64_t nodes) const {
  return nodes >= slot_nodes_ || write_zeros(slot_nodes_ - nodes);
}

bool ModeRewrite::write_empty_slots(int first) {
  for (int slot = first; slot < slots_; ++slot) {
    begin(slot);
    if (!write_zeros(slot_nodes_)) return false;
  }
  return true;
}

bool ModeRewrite::move_to(int slot, std::int64_t node) const {
  return DB_FRESTORE(&positions_[static_cast<std::size_t>(slot)], stream_) != 0 && skip_nodes(stream_, node);
}

bool ModeRewrite::write(const double* values, std::int64_t count) const {
  if (!is_double()) return write_narrowed(values, count) || say_disk_full();
  constexpr std::int64_t kMost = std::numeric_limits<int>::max() / 2;
  for (std::int64_t done = 0; done < count; done += kMost) {
    const auto piece = static_cast<int>(std::min(kMost, count - done));
    if (DB_WriteDOUBLEs(stream_, values + done, piece) == 0) return say_disk_full();
  }
  return true;
}

// The buffer may have been made for fewer nodes than there are by now, so it takes its least room at a time.
bool ModeRewrite::write_narrowed(const double* values, std::int64_t count) const {
  for (std::int64_t done = 0; done < count; done += kLeastFloats) {
    const auto piece = static_cast<int>(std::min(kLeastFloats, count - done));
    if (DB_WriteDOUBLEs(stream_, values + done, piece) == 0) return false;
  }
  return true;
}

bool ModeRewrite::write_words(const std::int32_t* words, int count) const {
  return DB_WriteINTs(stream_, words, count) != 0 || say_disk_full();
}

bool ModeRewrite::write_zeros(std::int64_t nodes) const {
  return fill_scratch_with_zeros(stream_.Block, nodes * kValuesPerNode * (is_double() ? 2 : 1)) ||
         say_disk_full();
}

void ModeRewrite::install(FmdBody& body) {
  DB_ReOpenScratch(stream_.Block);
  FmdStream& stream = body.ModeFile[kind_];
  if (stream.IsScratch != 0 && stream.Block != 0) DB_CloseDatablk(stream.Block);
  release(body.ModePositions[kind_]);
  body.ModePositions[kind_] = positions_.release();
  stream = stream_;
  stream_.Block = 0;
  body.LoadedModeIndex[kind_] = -1;
}

void ModeRewrite::close() {
  if (stream_.Block != 0) DB_CloseDatablk(stream_.Block);
  stream_.Block = 0;
  positions_.reset();
}

std::int64_t slot_nodes(const FmdBody& body, int kind) {
  return std::max(body.ModeNodeCount[kind], body.PlannedNodeCount);
}

UncachedModes::UncachedModes(FmdBody* body) : body_(body) {
  FMD_GetKeepModesInMemory(body_, &kept_);
  FMD_SetKeepModesInMemory(body_, 0);
}

UncachedModes::~UncachedModes() {
  FMD_SetKeepModesInMemory(body_, kept_);
}

bool fetch_nodes(const FmdBody& body, int kind, int index, int first_node, int nodes, double* values) {
  const bool loaded = index == 0 && body.LoadedModeIndex[kind] == 0 && body.ModeBuffer[kind] != nullptr &&
                      body.ModeBufferNodes[kind] >= body.ModeNodeCount[kind] &&
                      body.ModeBufferBroken[kind] == 0;
  if (loaded) {
    std::copy_n(body.ModeBuffer[kind] + std::int64_t{kValuesPerNode} * first_node,
                std::int64_t{kValuesPerNode} * nodes, values);
    return true;
  }
  if (body.ModePositions[kind] == nullptr) return false;
  if (!read_stored_nodes(body, kind, index, first_node, nodes, values)) {
    report_unreadable_mode(body.ModeNumbers[index], kind);
    return false;
  }
  apply_units(body, kind, nodes, values);
  return true;
}

}  // namespace fmd
