#include "dbmodal/dbinvar/mode_panels.h"

#include <algorithm>

#include "dbmodal/dbdata/mode_cache.h"
#include "dbmodal/dbdata/mode_vector.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

constexpr double kNoTranslation[3] = {};

template <typename T>
bool make(CArray<T>& storage, std::int64_t count) {
  storage.reset(static_cast<T*>(allocate_quietly(count, sizeof(T))));
  return storage != nullptr;
}

bool cache_has_room(FmdBody& body) {
  if (body.ModeMemoryCapacity == 0) FMD_InitializeModeMemory(&body);
  return body.ModeMemoryUsed < body.ModeMemoryCapacity ||
         (body.ModeMemoryUsed > 0 && body.ModeMemoryNodes[kShape] != body.ModeNodeCount[kShape]);
}

}  // namespace

int ModePanels::suitable_nodes(int modes) {
  constexpr std::int64_t kCachedBytes = std::int64_t{6} << 20;
  constexpr std::int64_t kMostBytes = std::int64_t{24} << 20;
  constexpr std::int64_t kWorthReading = 1024;
  const std::int64_t per_node = std::int64_t{modes} * kValuesPerNode * std::int64_t{sizeof(double)};
  const std::int64_t wanted = std::max(kCachedBytes / per_node, kWorthReading);
  return static_cast<int>(std::max<std::int64_t>(std::min(wanted, kMostBytes / per_node), 1));
}

bool ModePanels::open(FmdBody* body, int panel_nodes) {
  body_ = body;
  if (!make(sources_, body->ModeCount) || !make(modes_, body->ModeCount)) return false;
  const bool has_shapes = body->ModePositions[kShape] != nullptr && body->ModeNodeCount[kShape] > 0;
  if (has_shapes && body->KeepModesInMemory != 0 && !fill_cache()) return false;
  for (int mode = 0; has_shapes && mode < body->ModeCount; ++mode) settle(mode);
  panel_nodes_ = std::clamp(panel_nodes, 1, body->NodeCount);
  return provide_pieces();
}

// As fetches of the modes in their order fill it. A cache without room stays as it is.
bool ModePanels::fill_cache() {
  for (int mode = 0; mode < body_->ModeCount; ++mode) {
    const int number = body_->ModeNumbers[mode];
    if (find_cached_half(*body_, number, kShape, 0) != nullptr) continue;
    if (!cache_has_room(*body_)) return true;
    if (load_mode_vector(body_, number, kShape) == 0) return false;
    double* half = add_cached_half(*body_, number, kShape, 0);
    if (half != nullptr) copy_half(body_->ModeBuffer[kShape], body_->ModeNodeCount[kShape], 0, half);
  }
  return true;
}

void ModePanels::settle(int mode) {
  Source& source = sources_[static_cast<std::size_t>(mode)];
  const int number = body_->ModeNumbers[mode];
  source.index = FMD_ModeIndex(body_, number);
  const double* half = body_->KeepModesInMemory != 0 ? find_cached_half(*body_, number, kShape, 0) : nullptr;
  const bool loaded = body_->LoadedModeIndex[kShape] == source.index &&
                      body_->ModeBuffer[kShape] != nullptr &&
                      body_->ModeBufferNodes[kShape] >= body_->ModeNodeCount[kShape];
  source.origin = half != nullptr || loaded ? Origin::kMemory : Origin::kStore;
  source.vector = half != nullptr ? half : body_->ModeBuffer[kShape];
  source.stride = half != nullptr ? 3 : kValuesPerNode;
}

bool ModePanels::provide_pieces() {
  std::int64_t stored = 0;
  for (int mode = 0; mode < body_->ModeCount; ++mode)
    stored += sources_[static_cast<std::size_t>(mode)].origin == Origin::kStore ? 1 : 0;
  return stored == 0 || make(pieces_, stored * panel_nodes_ * kValuesPerNode);
}

ModeTranslations ModePanels::read_piece(Source& source, double* piece, int first_node, int nodes) {
  if (read_stored_nodes(*body_, kShape, source.index, first_node, nodes, piece)) {
    apply_units(*body_, kShape, nodes, piece);
    return {piece, kValuesPerNode};
  }
  FMD_Error("Problem reading mode shape %d", body_->ModeNumbers[source.index]);
  source.origin = Origin::kNone;
  return {kNoTranslation, 0};
}

const ModeTranslations* ModePanels::read(int first_node, int nodes) {
  double* piece = pieces_.get();
  for (int mode = 0; mode < body_->ModeCount; ++mode) {
    Source& source = sources_[static_cast<std::size_t>(mode)];
    ModeTranslations& translations = modes_[static_cast<std::size_t>(mode)];
    if (source.origin == Origin::kStore) {
      translations = read_piece(source, piece, first_node, nodes);
      piece += std::int64_t{panel_nodes_} * kValuesPerNode;
    } else if (source.origin == Origin::kMemory) {
      translations = {source.vector + source.stride * first_node, source.stride};
    } else {
      translations = {kNoTranslation, 0};
    }
  }
  return modes_.get();
}

}  // namespace fmd
