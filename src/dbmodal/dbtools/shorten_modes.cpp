#include <algorithm>
#include <limits>

#include "dbmodal/dbdata/mode_vector.h"
#include "dbmodal/dbtools/shorten.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

constexpr int kWordsPerDouble = 2;
constexpr std::int32_t kMostNodes =
    std::numeric_limits<std::int32_t>::max() / (kValuesPerNode * kWordsPerDouble);

bool read_vector(const FmdBody& body, int kind, int mode, std::int32_t* words) {
  const FmdStream& stream = body.ModeFile[kind];
  return DB_FRESTORE(&body.ModePositions[kind][mode], stream) != 0 &&
         DB_ReadMODE(stream, words, body.ModeNodeCount[kind] * kValuesPerNode) != 0;
}

}  // namespace

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

bool ShortenedModes::ShortenModeFile(FmdBody& body, int kind) {
  if (!file_.open(body, kind)) return false;
  file_.tell_shortened();
  if (body.ModeCount == 0) {
    FMD_Warning("No Mode Shape Data found in this Database file. \n");
    file_.close();
    return true;
  }
  if (body.ModePositions[kind] == nullptr || row_count_ == 0) {
    removes_file_ = row_count_ == 0;
    file_.close();
    return true;
  }
  if (!copy_modes(body, kind)) {
    file_.close();
    return false;
  }
  replaces_file_ = true;
  return true;
}

bool ShortenedModes::copy_modes(const FmdBody& body, int kind) {
  const int row_words = kValuesPerNode * (file_.is_double() ? kWordsPerDouble : 1);
  const std::int64_t words = std::int64_t{row_count_} * row_words;
  const std::int32_t nodes = body.ModeNodeCount[kind];
  // A vector beyond what one call reads counts as one beyond memory.
  const auto vector =
      allocate<std::int32_t>(nodes <= kMostNodes ? std::int64_t{nodes} * row_words : 0, "dbtools");
  const auto shortened = allocate<std::int32_t>(words, "dbtools");
  if (vector == nullptr || shortened == nullptr || !file_.provide_slots(body, row_count_)) return false;

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
    file_.begin(mode);
    if (!file_.write_words(shortened.get(), static_cast<int>(words))) done = false;
  }
  return done && file_.write_empty_slots(body.ModeCount);
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
  if (replaces_file_) file_.install(body);
  if (!removes_file_) return;
  FmdStream& stream = body.ModeFile[kind];
  if (stream.IsScratch != 0 && stream.Block != 0) DB_CloseDatablk(stream.Block);
  release(body.ModePositions[kind]);
  stream.Block = 0;
}

void ShortenedModes::install_pre_load(FmdBody& body, int kind) {
  double*& stored = kind == kStress ? body.PreStress : body.PreStrain;
  if (stored == nullptr) return;
  release(stored);
  stored = pre_load_.release();
  (kind == kStress ? body.PreStressCapacity : body.PreStrainCapacity) = row_count_;
}

}  // namespace fmd
