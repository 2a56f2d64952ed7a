// The mode cache: half vectors as callers see them, units applied, within a budget and without eviction. What
// is in stays in until the cache is emptied; when it is full, new vectors stay out.
#include "dbmodal/dbdata/mode_cache.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>

#include "dbmodal/dbdata/mode_vector.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr std::int32_t kDefaultBudget = 209715200;  // 200 megabytes
constexpr std::int32_t kBytesPerNode = 3 * sizeof(double);
constexpr std::size_t kLongestSetting = 100;

// The budget in bytes. Megabytes of the environment are shifted in 32 bits, so large ones wrap around.
std::int32_t cache_budget() {
  const char* setting = std::getenv("FMD_MAX_MODE_MEMORY");
  if (setting == nullptr) return kDefaultBudget;
  char digits[kLongestSetting + 1] = {};
  std::memcpy(digits, setting, strnlen(setting, kLongestSetting));
  const long megabytes = std::strtol(digits, nullptr, 10);
  if (megabytes <= 0) return kDefaultBudget;
  return static_cast<std::int32_t>(static_cast<std::uint32_t>(megabytes) << 20);
}

bool is_sound(const FmdBody& body, int mode, int type, int part) {
  return is_mode_info_type(type) && is_part(part) && !is_pseudo_mode(mode, type) &&
         body.ModeMemory[type][part] != nullptr;
}

void release_cached_halves(FmdBody& body, int type) {
  for (int part = 0; part < 2; ++part) {
    for (int row = 0; row < body.ModeMemoryRows[type][part]; ++row) {
      double*& half = body.ModeMemory[type][part][row];
      if (half != nullptr) --body.ModeMemoryUsed;
      release(half);
    }
  }
}

// One pointer per mode; modes added since the array was made get null pointers.
bool provide_rows(FmdBody& body, int type, int part) {
  std::int32_t& rows = body.ModeMemoryRows[type][part];
  if (rows >= body.ModeCount) return true;
  if (!grow(body.ModeMemory[type][part], body.ModeCount)) {
    report_allocation_failure("dbdata");
    return false;
  }
  std::fill(body.ModeMemory[type][part] + rows, body.ModeMemory[type][part] + body.ModeCount, nullptr);
  rows = body.ModeCount;
  return true;
}

}  // namespace

const double* find_cached_half(FmdBody& body, int mode, int type, int part) {
  if (!is_sound(body, mode, type, part) || body.ModeMemoryNodes[type] < body.ModeNodeCount[type])
    return nullptr;
  const int index = FMD_ModeIndex(&body, mode);
  if (index < 0 || index >= body.ModeMemoryRows[type][part]) return nullptr;
  return body.ModeMemory[type][part][index];
}

double* add_cached_half(FmdBody& body, int mode, int type, int part) {
  if (!is_mode_info_type(type) || !is_part(part) || is_pseudo_mode(mode, type)) return nullptr;
  if (body.ModeMemoryCapacity == 0) FMD_InitializeModeMemory(&body);
  if (body.ModeMemoryNodes[type] != body.ModeNodeCount[type]) release_cached_halves(body, type);
  if (body.ModeMemoryUsed >= body.ModeMemoryCapacity || !provide_rows(body, type, part)) return nullptr;
  CArray<double> half = allocate<double>(3 * static_cast<std::int64_t>(body.ModeNodeCount[type]), "dbdata");
  const int index = half != nullptr ? FMD_ModeIndex(&body, mode) : -1;
  if (index < 0) return nullptr;
  double*& entry = body.ModeMemory[type][part][index];
  if (entry == nullptr) ++body.ModeMemoryUsed;
  std::free(entry);
  entry = half.release();
  body.ModeMemoryNodes[type] = body.ModeNodeCount[type];
  return entry;
}

}  // namespace fmd

void FMD_InitializeModeMemory(FmdBody* body) {
  if (CheckFMD(body) == 0) return;
  const std::int32_t nodes =
      *std::max_element(body->ModeNodeCount, body->ModeNodeCount + TOTAL_MODE_INFO_TYPES);
  if (nodes <= 0) return;
  const std::int32_t fitting = fmd::cache_budget() / nodes / fmd::kBytesPerNode;
  const std::int64_t wanted = static_cast<std::int64_t>(TOTAL_MODE_INFO_TYPES) * body->ModeCount;
  body->ModeMemoryCapacity = static_cast<std::int32_t>(std::min<std::int64_t>(fitting, wanted));
}

int FMD_ModetoMemory(FmdBody* body, int mode, int type, double* values, int part) {
  if (CheckFMD(body) == 0) return 0;
  double* half = fmd::add_cached_half(*body, mode, type, part);
  if (half == nullptr) return 0;
  std::copy_n(values, 3 * static_cast<std::ptrdiff_t>(body->ModeNodeCount[type]), half);
  return 1;
}

int FMD_ModeFromMemory(FmdBody* body, int mode, int type, double* values, int part) {
  if (CheckFMD(body) == 0) return 0;
  const double* half = fmd::find_cached_half(*body, mode, type, part);
  if (half == nullptr) return 0;
  std::copy_n(half, 3 * static_cast<std::ptrdiff_t>(body->ModeNodeCount[type]), values);
  return 1;
}

int FMD_ModeFromMemoryByRef(FmdBody* body, int mode, int type, double** values, int part) {
  if (CheckFMD(body) == 0) return 0;
  const double* half = fmd::find_cached_half(*body, mode, type, part);
  if (half == nullptr) return 0;
  *values = const_cast<double*>(half);
  return 1;
}

int FMD_ModeFromMemoryByNode(FmdBody* body, int mode, int type, int node, double* values, int part) {
  if (CheckFMD(body) == 0) return 0;
  const double* half = fmd::find_cached_half(*body, mode, type, part);
  const int place = half != nullptr ? FMD_ModeNodeIndex(body, type, node) : -1;
  if (place < 0) return 0;
  std::copy_n(half + 3 * static_cast<std::ptrdiff_t>(place), 3, values);
  return 1;
}

void FMD_CleanModesInMemory(FmdBody* body) {
  if (CheckFMD(body) == 0) return;
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    fmd::release_cached_halves(*body, type);
    for (int part = 0; part < 2; ++part) {
      fmd::release(body->ModeMemory[type][part]);
      body->ModeMemoryRows[type][part] = 0;
    }
    body->ModeMemoryNodes[type] = 0;
  }
  body->ModeMemoryCapacity = 0;
  body->ModeMemoryUsed = 0;
}

void FMD_SetKeepModesInMemory(FmdBody* body, int flag) {
  if (CheckFMD(body) == 0) return;
  if (body->KeepModesInMemory != 0 && flag == 0) FMD_CleanModesInMemory(body);
  body->KeepModesInMemory = flag;
}

int FMD_GetKeepModesInMemory(FmdBody* body, int* flag) {
  if (CheckFMD(body) == 0) return 0;
  *flag = body->KeepModesInMemory;
  return *flag;
}
