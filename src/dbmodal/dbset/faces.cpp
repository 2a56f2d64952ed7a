// Display faces, added one by one to the flat list: per face its corner count, then node indices.
#include <algorithm>
#include <cstdarg>
#include <limits>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr int kStep = 100;
constexpr int kMostCorners = 256;

// Room for a face of that many corners and its count, by as many steps as it takes.
bool provide_room(FmdBody& body, int corners) {
  const std::int64_t needed = std::int64_t{body.FaceListLength} + std::max(corners, 0) + 1;
  if (body.FaceList != nullptr && needed < body.FaceListCapacity) return true;
  const std::int64_t start = body.FaceList == nullptr ? kStep : body.FaceListCapacity;
  const std::int64_t steps = needed < start ? 0 : (needed - start) / kStep + 1;
  const std::int64_t capacity = start + steps * kStep;
  if (capacity > std::numeric_limits<std::int32_t>::max() || !fmd::grow(body.FaceList, capacity)) {
    fmd::report_allocation_failure("dbset");
    return false;
  }
  body.FaceListCapacity = static_cast<std::int32_t>(capacity);
  return true;
}

// Puts the node indices of a face behind its count: repeated neighbours are dropped, and a last corner that
// closes the face. The number of corners stored, or -1 when a node could not be made.
int store_corners(FmdBody& body, int count, const int* ids) {
  std::int32_t* const corners = body.FaceList + body.FaceListLength + 1;
  int stored = 0;
  for (int k = 0; k < count; ++k) {
    const int node = FMD_LookupOrAddNode(&body, ids[k]);
    if (node < 0) return -1;
    const bool repeated = stored > 0 && corners[stored - 1] == node;
    const bool closes = stored > 0 && k == count - 1 && corners[0] == node;
    if (!repeated && !closes) corners[stored++] = node;
  }
  return stored;
}

}  // namespace

int FMD_SetFaceList(FmdBody* body, int count, int* ids) {
  if (CheckFMD(body) == 0 || !provide_room(*body, count) || count < 1) return 0;
  const int stored = store_corners(*body, count, ids);
  if (stored < 2) return 0;
  body->FaceList[body->FaceListLength] = stored;
  body->FaceListLength += stored + 1;
  ++body->FaceCount;
  body->BlockExists[fmd::kElementFaces] = 1;
  return 1;
}

int FMD_SetFace(FmdBody* body, int count, ...) {
  if (CheckFMD(body) == 0 || count > kMostCorners) return 0;
  int ids[kMostCorners];
  std::va_list arguments;
  va_start(arguments, count);
  for (int k = 0; k < count; ++k) ids[k] = va_arg(arguments, int);
  va_end(arguments);
  return FMD_SetFaceList(body, count, ids);
}
