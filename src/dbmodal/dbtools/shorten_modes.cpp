#include <algorithm>
#include <limits>

#include "dbmodal/dbdata/mode_vector.h"
#include "dbmodal/dbtools/shorten.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "solverdb/scratch.h"

namespace fmd {

namespace {

constexpr int kWordsPerDouble = 2;
constexpr int kLeastFloats = 512;
constexpr std::int32_t kMostNodes =
    std::numeric_limits<std::int32_t>::max() / (kValuesPerNode * kWordsPerDouble);

int words_per_row(const FmdStream& stream) {
  return kValuesPerNode * (stream.DoublePrecision != 0 ? kWordsPerDouble : 1);
}

// The buffer through which whoever writes to a stream in single precision narrows.
bool provide_float_buffer(FmdBody& body) {
  if (body.FloatBuffer != nullptr) return true;
  const std::int64_t values = std::int64_t{kValuesPerNode} * body.NodeCount;
  const std::int64_t room = std::max<std::int64_t>({values, body.ModeCount, kLeastFloats});
  body.FloatBuffer = allocate<float>(room, "dbtools").release();
  return body.FloatBuffer != nullptr;
}

bool read_vector(const FmdBody& body, int kind, int mode, std::int32_t* words) {
  const FmdStream& stream = body.ModeFile[kind];
  return DB_FRESTORE(&body.ModePositions[kind][mode], stream) != 0 &&
         DB_ReadMODE(stream, words, body.ModeNodeCount[kind] * kValuesPerNode) != 0;
}

}  // namespace

ShortenedModes::~ShortenedModes() {
  close_scratch();
}

void ShortenedModes::close_scratch() {
  if (stream_.Block != 0) DB_CloseDatablk(stream_.Block);
  stream_.Block = 0;
  positions_.reset();
}

bool ShortenedModes::map_rows(FmdBody& body, int kind, const KeptNodes& kept) {
  rows_ = allocate<std::int32_t>(kept.count, "dbtools");
  if (rows_ == nullptr) return false;
  kept_count_ = kept.count;
  const std::int32_t rows = body.ModeNodeCount[kind];
  for (std::int32_t place = 0; place < kept.count; ++place) {
    const int row = FMD_ModeNodeIndex(&body, kind, body.Nodes[kept.nodes[place]].Id);
    // The table is made with the first lookup, which has said so if there was no memory for it.
    if (rows > 0 && body.SortedModeNodes[kind] == nullptr) return false;
    rows_[static_cast<std::size_t>(place)] = row < rows ? row : -1;
    if (carries(place)) ++row_count_;
  }
  return true;
}

bool ShortenedModes::open_scratch(FmdBody& body, int kind) {
  constexpr const char* kWord[TOTAL_MODE_INFO_TYPES] = {"Shape", "Stress", "Strain"};
  const FmdStream& old = body.ModeFile[kind];
  stream_.Block = DB_OpenScratch(&stream_.Key);
  if (stream_.Block == 0) {
    FMD_Error("Unable to open temporary block for write.");
    return false;
  }
  FMD_Info(" Shortened %s mode file: key = %d\n", kWord[kind], stream_.Key);
  stream_.Name = old.Name;
  stream_.IsScratch = 1;
  stream_.DoublePrecision = old.DoublePrecision;
  stream_.BodyIndex = old.BodyIndex;
  if (stream_.DoublePrecision == 0 && !provide_float_buffer(body)) return false;
  stream_.FloatBuffer = body.FloatBuffer;
  DB_FSAVE(&stream_.StartPosition, stream_);
  return true;
}

bool ShortenedModes::ShortenModeFile(FmdBody& body, int kind) {
  if (!open_scratch(body, kind)) return false;
  if (body.ModeCount == 0) {
    FMD_Warning("No Mode Shape Data found in this Database file. \n");
    close_scratch();
    return true;
  }
  if (body.ModePositions[kind] == nullptr || row_count_ == 0) {
    replaces_file_ = row_count_ == 0;
    close_scratch();
    return true;
  }
  if (!copy_modes(body, kind)) {
    close_scratch();
    return false;
  }
  DB_ReOpenScratch(stream_.Block);
  replaces_file_ = true;
  return true;
}

bool ShortenedModes::copy_modes(const FmdBody& body, int kind) {
  const int row_words = words_per_row(stream_);
  const std::int64_t words = std::int64_t{row_count_} * row_words;
  const std::int32_t nodes = body.ModeNodeCount[kind];
  // A vector beyond what one call reads counts as one beyond memory.
  const auto vector =
      allocate<std::int32_t>(nodes <= kMostNodes ? std::int64_t{nodes} * row_words : 0, "dbtools");
  const auto shortened = allocate<std::int32_t>(words, "dbtools");
  positions_ = allocate<FmdPosition>(std::max(body.ModeCount, body.PlannedModeCount), "dbtools");
  if (vector == nullptr || shortened == nullptr || positions_ == nullptr) return false;

  bool done = true;
  for (int mode = 0; mode < body.ModeCount; ++mode) {
    if (!read_vector(body, kind, mode, vector.get())) {
      report_unreadable_mode(body.ModeNumbers[mode], kind);
      done = false;
      continue;
    }
    std::int32_t* end = shortened.get();
    for (std::int32_t place = 0; place < kept_count_; ++place) {
      const std::int32_t row = rows_[static_cast<std::size_t>(place)];
      if (row >= 0) end = std::copy_n(vector.get() + std::ptrdiff_t{row} * row_words, row_words, end);
    }
    DB_FSAVE(&positions_[static_cast<std::size_t>(mode)], stream_);
    if (DB_WriteINTs(stream_, shortened.get(), static_cast<int>(words)) != 0) continue;
    FMD_Error("Insufficient disk space for temporary file.");
    done = false;
  }
  return done && write_unused_slots(body, words);
}

// A body under construction keeps a slot for each mode that it may still get.
bool ShortenedModes::write_unused_slots(const FmdBody& body, std::int64_t words) {
  for (int slot = body.ModeCount; slot < body.PlannedModeCount; ++slot) {
    DB_FSAVE(&positions_[static_cast<std::size_t>(slot)], stream_);
    if (fill_scratch_with_zeros(stream_.Block, words)) continue;
    FMD_Error("Insufficient disk space for temporary file.");
    return false;
  }
  return true;
}

bool ShortenedModes::shorten_pre_load(const FmdBody& body, int kind) {
  const double* stored = kind == kStress ? body.PreStress : body.PreStrain;
  if (kind == kShape || stored == nullptr || row_count_ == 0) return true;
  const std::int32_t given = kind == kStress ? body.PreStressCapacity : body.PreStrainCapacity;
  pre_load_ = allocate<double>(std::int64_t{row_count_} * kValuesPerNode, "dbtools");
  if (pre_load_ == nullptr) return false;
  double* end = pre_load_.get();
  for (std::int32_t place = 0; place < kept_count_; ++place) {
    const std::int32_t row = rows_[static_cast<std::size_t>(place)];
    if (row < 0) continue;
    // Nodes that were never given any values have zeros.
    if (row < given) std::copy_n(stored + std::ptrdiff_t{row} * kValuesPerNode, kValuesPerNode, end);
    end += kValuesPerNode;
  }
  return true;
}

void ShortenedModes::install(FmdBody& body, int kind) {
  install_file(body, kind);
  if (kind != kShape) install_pre_load(body, kind);
  body.LoadedModeIndex[kind] = -1;
}

// A kind of which no row is left has no file any more.
void ShortenedModes::install_file(FmdBody& body, int kind) {
  if (!replaces_file_) return;
  FmdStream& stream = body.ModeFile[kind];
  if (stream.IsScratch != 0 && stream.Block != 0) DB_CloseDatablk(stream.Block);
  release(body.ModePositions[kind]);
  body.ModePositions[kind] = positions_.release();
  stream = stream_;
  stream_.Block = 0;
}

void ShortenedModes::install_pre_load(FmdBody& body, int kind) {
  double*& stored = kind == kStress ? body.PreStress : body.PreStrain;
  if (stored == nullptr) return;
  release(stored);
  stored = pre_load_.release();
  (kind == kStress ? body.PreStressCapacity : body.PreStrainCapacity) = row_count_;
}

}  // namespace fmd
