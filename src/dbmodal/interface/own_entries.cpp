// The few DB_ functions with a body of their own.
#include <cstdarg>
#include <cstdint>

#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

// Arrays of node ids stay allocated, as they always have; the chain keeps them known.
struct KeptIds {
  KeptIds* next;
};

KeptIds* kept_ids = nullptr;

int* allocate_kept_ids(int count) {
  const std::int64_t bytes = static_cast<std::int64_t>(sizeof(KeptIds)) + std::int64_t{count} * 4;
  auto* const kept = static_cast<KeptIds*>(fmd::allocate_quietly(bytes, 1));
  if (kept == nullptr) {
    fmd::report_allocation_failure("dbset");
    return nullptr;
  }
  kept->next = kept_ids;
  kept_ids = kept;
  return reinterpret_cast<int*>(kept + 1);
}

}  // namespace

int DB_GetFlexType(void) {
  return 1;
}

int FMD_DiscreteMethod(void) {
  return 0;
}

void _terminate(void) {}

int DB_AnsysAddGenMass(void* body, int firstCount, int secondCount) {
  return FMD_AnsysAddGenMass(static_cast<FmdBody*>(body), firstCount, secondCount);
}

int DB_SetFace(void* body, int count, ...) {
  auto* const face_of = static_cast<FmdBody*>(body);
  if (count < 1) return FMD_SetFaceList(face_of, count, nullptr);
  int* const ids = allocate_kept_ids(count);
  if (ids == nullptr) return 0;
  std::va_list arguments;
  va_start(arguments, count);
  for (int k = 0; k < count; ++k) ids[k] = va_arg(arguments, int);
  va_end(arguments);
  return FMD_SetFaceList(face_of, count, ids);
}
