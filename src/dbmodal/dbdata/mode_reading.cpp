// Reading mode vectors: by halves through the cache and the loaded vector, or whole past both.
#include <algorithm>
#include <cstdint>
#include <limits>

#include "body/body.h"
#include "dbmodal/dbdata/mode_cache.h"
#include "dbmodal/dbdata/mode_vector.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

// Puts a half of the loaded vector into the cache. A cache without room is no failure of the reading.
void cache_loaded_half(FmdBody& body, int mode, int type, int part) {
  if (body.KeepModesInMemory == 0) return;
  double* half = add_cached_half(body, mode, type, part);
  if (half != nullptr) copy_half(body.ModeBuffer[type], body.ModeNodeCount[type], part, half);
}

// The array is shared by all types, so it fits the one with the most nodes.
bool provide_reference_buffer(FmdBody& body) {
  const std::int32_t nodes =
      *std::max_element(body.ModeNodeCount, body.ModeNodeCount + TOTAL_MODE_INFO_TYPES);
  if (body.ModeRefBuffer != nullptr && body.ModeRefBufferNodes >= nodes) return true;
  release(body.ModeRefBuffer);
  body.ModeRefBuffer = allocate<double>(3 * static_cast<std::int64_t>(nodes), "dbdata").release();
  body.ModeRefBufferNodes = body.ModeRefBuffer != nullptr ? nodes : 0;
  return body.ModeRefBuffer != nullptr;
}

// Reads a stored vector in the width of the store, which must be the one asked for.
bool read_stored_mode(FmdBody& body, int mode, int type, int double_precision, void* values) {
  const int index = FMD_ModeIndex(&body, mode);
  const FmdStream& stream = body.ModeFile[type];
  if (index < 0 || body.ModePositions[type] == nullptr) return false;
  if (body.ModeNodeCount[type] > std::numeric_limits<int>::max() / kValuesPerNode) return false;
  return DB_FRESTORE(&body.ModePositions[type][index], stream) != 0 &&
         (stream.DoublePrecision != 0) == (double_precision != 0) &&
         DB_ReadMODE(stream, values, body.ModeNodeCount[type] * kValuesPerNode) != 0;
}

bool copy_pseudo_mode_narrow(const FmdBody& body, int type, float* values) {
  const double* stored = type == kStress ? body.PreStress : body.PreStrain;
  if (stored == nullptr) return false;
  const std::int64_t wanted = std::int64_t{body.ModeNodeCount[type]} * kValuesPerNode;
  const std::int64_t capacity = type == kStress ? body.PreStressCapacity : body.PreStrainCapacity;
  const std::int64_t given = std::min(wanted, capacity * kValuesPerNode);
  for (std::int64_t entry = 0; entry < given; ++entry) values[entry] = static_cast<float>(stored[entry]);
  std::fill(values + given, values + wanted, 0.0F);
  return true;
}

bool can_read_whole(FmdBody* body, int type) {
  return CheckFMD(body) != 0 && is_mode_info_type(type) && body->ModeNodeCount[type] >= 1;
}

}  // namespace

}  // namespace fmd

int FMD_Mode(FmdBody* body, int mode, int type, double* values, int part) {
  if (CheckFMD(body) == 0 || !fmd::is_part(part)) return 0;
  if (body->KeepModesInMemory != 0 && FMD_ModeFromMemory(body, mode, type, values, part) != 0) return 1;
  if (fmd::load_mode_vector(body, mode, type) == 0) return 0;
  fmd::copy_half(body->ModeBuffer[type], body->ModeNodeCount[type], part, values);
  fmd::cache_loaded_half(*body, mode, type, part);
  return 1;
}

int FMD_ModeByRef(FmdBody* body, int mode, int type, double** values, int part) {
  if (CheckFMD(body) == 0 || !fmd::is_part(part)) return 0;
  if (body->KeepModesInMemory != 0 && FMD_ModeFromMemoryByRef(body, mode, type, values, part) != 0) return 1;
  if (fmd::load_mode_vector(body, mode, type) == 0 || !fmd::provide_reference_buffer(*body)) return 0;
  fmd::copy_half(body->ModeBuffer[type], body->ModeNodeCount[type], part, body->ModeRefBuffer);
  *values = body->ModeRefBuffer;
  fmd::cache_loaded_half(*body, mode, type, part);
  return 1;
}

int FMD_ModeByNode(FmdBody* body, int mode, int type, int node, double* values, int part) {
  if (CheckFMD(body) == 0) return 0;
  if (fmd::is_part(part) && body->KeepModesInMemory != 0 &&
      FMD_ModeFromMemoryByNode(body, mode, type, node, values, part) != 0)
    return 1;
  std::fill_n(values, 3, 0.0);
  if (!fmd::is_part(part) || fmd::load_mode_vector(body, mode, type) == 0) return 0;
  const int place = FMD_ModeNodeIndex(body, type, node);
  if (place < 0) return 0;
  const double* row = body->ModeBuffer[type] + static_cast<std::ptrdiff_t>(place) * fmd::kValuesPerNode;
  std::copy_n(part == 0 ? row : row + 3, 3, values);
  fmd::cache_loaded_half(*body, mode, type, part);
  return 1;
}

int FMD_Read_Mode_Double(FmdBody* body, int mode, int type, double* values) {
  if (!fmd::can_read_whole(body, type)) return 0;
  const bool done = fmd::is_pseudo_mode(mode, type) ? fmd::copy_pseudo_mode(*body, type, values)
                                                    : fmd::read_stored_mode(*body, mode, type, 1, values);
  if (!done) return 0;
  fmd::apply_units(*body, type, body->ModeNodeCount[type], values);
  return 1;
}

int FMD_Read_Mode_Single(FmdBody* body, int mode, int type, float* values) {
  if (!fmd::can_read_whole(body, type)) return 0;
  const bool done = fmd::is_pseudo_mode(mode, type) ? fmd::copy_pseudo_mode_narrow(*body, type, values)
                                                    : fmd::read_stored_mode(*body, mode, type, 0, values);
  if (!done) return 0;
  fmd::apply_units(*body, type, body->ModeNodeCount[type], values);
  return 1;
}

int FMD_Double_Prec(FmdBody* body) {
  return CheckFMD(body) != 0 ? body->ModeFile[fmd::kShape].DoublePrecision : 0;
}

int FMD_ModeExist(FmdBody* body, int type) {
  constexpr int kBlockOfType[TOTAL_MODE_INFO_TYPES] = {7, 17, 28};
  if (CheckFMD(body) == 0 || !fmd::is_mode_info_type(type)) return 0;
  return FMD_Exists(body, kBlockOfType[type]);
}
