#include "dbmodal/dbcoarse/fan_merge.h"

#include <algorithm>

#include "messages/memory.h"

namespace fmd {

namespace {

bool is_free(const CoarseFace& face) {
  return face.corners != nullptr && !face.taken;
}

void reverse_tail(CoarseFace& face) {
  if (face.count > 1) std::reverse(face.corners + 1, face.corners + face.count);
}

// The next face of the chain behind a corner: one that goes on from it as listed, or else one that does so
// once reversed. Null for none.
CoarseFace* find_adjacent_face(CoarseFace* faces, NodeFaces list, std::int32_t corner) {
  for (std::int32_t k = 0; k < list.count; ++k) {
    CoarseFace& face = faces[list.faces[k]];
    if (is_free(face) && face.count > 1 && face.corners[1] == corner) return &face;
  }
  for (std::int32_t k = 0; k < list.count; ++k) {
    CoarseFace& face = faces[list.faces[k]];
    if (is_free(face) && face.count > 0 && face.corners[face.count - 1] == corner) {
      reverse_tail(face);
      return &face;
    }
  }
  return nullptr;
}

// Corners from a place on to the end of the polygon; the face is then part of it.
void take(CoarseFace& face, std::int32_t from, std::int32_t* polygon, std::int32_t& length) {
  face.taken = true;
  if (face.count <= from) return;
  std::copy(face.corners + from, face.corners + face.count, polygon + length);
  length += face.count - from;
}

// One attempt, from one seed. On failure all faces are free again.
std::int32_t chain_from(CoarseFace* faces, NodeFaces list, CoarseFace& seed, std::int32_t* polygon) {
  std::int32_t length = 0;
  take(seed, 1, polygon, length);
  std::int32_t chained = 1;
  while (chained < list.count && length > 0) {
    CoarseFace* const next = find_adjacent_face(faces, list, polygon[length - 1]);
    if (next == nullptr) break;
    take(*next, 2, polygon, length);
    ++chained;
  }
  if (chained == list.count && length > 0) return length;
  for (std::int32_t k = 0; k < list.count; ++k) faces[list.faces[k]].taken = false;
  return 0;
}

}  // namespace

std::int32_t* RotationBuffer::provide(std::int32_t entries) {
  if (entries > capacity_) {
    const std::int64_t capacity = std::max<std::int64_t>(entries, 2 * capacity_);
    if (!grow(entries_, capacity)) return nullptr;
    capacity_ = capacity;
  }
  return entries_;
}

bool orient_faces_around_node(CoarseFace* faces, std::int32_t node, NodeFaces list, RotationBuffer& buffer) {
  std::int32_t kept = 0;
  bool enough_memory = true;
  for (std::int32_t k = 0; k < list.count; ++k) {
    CoarseFace& face = faces[list.faces[k]];
    if (face.corners == nullptr) continue;
    std::int32_t* const end = face.corners + face.count;
    std::int32_t* const place = std::find(face.corners, end, node);
    if (place == end) continue;
    list.faces[kept++] = list.faces[k];
    if (place == face.corners) continue;
    const auto before = static_cast<std::int32_t>(place - face.corners);
    std::int32_t* const head = buffer.provide(before);
    if (head == nullptr) {
      enough_memory = false;
      continue;
    }
    std::copy(face.corners, place, head);
    std::copy_n(head, before, std::copy(place, end, face.corners));
  }
  list.count = kept;
  return enough_memory;
}

// Each face is tried as the seed, and then each again the other way round. The first of the second round has
// no other way round: it is tried as it is.
std::int32_t merge_fan(CoarseFace* faces, NodeFaces list, std::int32_t* polygon, std::int32_t& seed) {
  for (const bool reversed : {false, true}) {
    for (std::int32_t start = 0; start < list.count; ++start) {
      seed = list.faces[start];
      if (reversed && start > 0) reverse_tail(faces[seed]);
      const std::int32_t length = chain_from(faces, list, faces[seed], polygon);
      if (length > 0) return length;
    }
  }
  return 0;
}

}  // namespace fmd
