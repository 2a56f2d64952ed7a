#include "dbmodal/dbcoarse/coarsener.h"

#include <algorithm>
#include <cmath>

namespace fmd {

bool Coarsener::link() {
  linked_ = links_.build(mesh_) && pinches_.provide_nodes(mesh_.node_count);
  return linked_;
}

// The cheaper test comes first; neither changes anything.
Visit Coarsener::visit(std::int32_t node, const CoarseLimits& limits) {
  if (!linked_ || mesh_.live[static_cast<std::size_t>(node)] == 0) return Visit::kStays;
  if (!faces_nearly_coplanar(node, limits.cosine)) return Visit::kStays;
  if (!neighbors_within_resolution(node, limits.squared_distance)) return Visit::kStays;
  return dissolve(node);
}

bool Coarsener::neighbors_within_resolution(std::int32_t node, double squared_limit) const {
  const double* const here = mesh_.position(node);
  const char* const live = mesh_.live.get();
  const NodeFaces list = links_.faces_of(node);
  for (std::int32_t k = 0; k < list.count; ++k) {
    const CoarseFace& face = mesh_.faces[static_cast<std::size_t>(list.faces[k])];
    const bool seen = k > 0 && list.faces[k] == list.faces[k - 1];
    if (face.corners == nullptr || seen) continue;
    for (const std::int32_t* corner = face.corners; corner != face.corners + face.count; ++corner) {
      if (live[*corner] != 0 && squared_distance(here, mesh_.position(*corner)) > squared_limit) return false;
    }
  }
  return true;
}

// Faces that look the opposite way count as coplanar.
bool Coarsener::faces_nearly_coplanar(std::int32_t node, double cosine) const {
  const NodeFaces list = links_.faces_of(node);
  if (list.count < 2) return false;
  const double* const reference = mesh_.faces[static_cast<std::size_t>(list.faces[0])].normal;
  for (std::int32_t k = 1; k < list.count; ++k) {
    const CoarseFace& face = mesh_.faces[static_cast<std::size_t>(list.faces[k])];
    if (face.corners == nullptr) continue;
    if (face.count < 3) return false;
    const double product =
        face.normal[0] * reference[0] + face.normal[1] * reference[1] + face.normal[2] * reference[2];
    if (std::fabs(product) - cosine < 0.0) return false;
  }
  return true;
}

// A face is part of a polygon once, however often a list names it.
std::int64_t Coarsener::corner_total(NodeFaces list) const {
  std::int64_t total = 0;
  for (std::int32_t k = 0; k < list.count; ++k) {
    if (k == 0 || list.faces[k] != list.faces[k - 1])
      total += mesh_.faces[static_cast<std::size_t>(list.faces[k])].count;
  }
  return total;
}

// The polygon takes the slot of the first face; the others are gone.
CoarseFace& Coarsener::install(NodeFaces list, std::int32_t* polygon, std::int32_t length,
                               std::int32_t seed) {
  CoarseFace& face = mesh_.faces[static_cast<std::size_t>(list.faces[0])];
  std::copy_n(mesh_.faces[static_cast<std::size_t>(seed)].normal, 3, face.normal);
  for (std::int32_t k = 0; k < list.count; ++k) {
    CoarseFace& merged = mesh_.faces[static_cast<std::size_t>(list.faces[k])];
    mesh_.release_corners(merged);
    merged.taken = false;
  }
  face.corners = polygon;
  face.count = length;
  face.is_polygon = true;
  return face;
}

Visit Coarsener::dissolve(std::int32_t node) {
  const NodeFaces list = links_.faces_of(node);
  if (!orient_faces_around_node(mesh_.faces.get(), node, list, rotation_)) return Visit::kNoMemory;
  if (list.count == 0) return Visit::kStays;
  CArray<std::int32_t> polygon(
      static_cast<std::int32_t*>(allocate_quietly(corner_total(list), sizeof(std::int32_t))));
  if (polygon == nullptr) return Visit::kNoMemory;
  std::int32_t seed = 0;
  std::int32_t length = merge_fan(mesh_.faces.get(), list, polygon.get(), seed);
  if (length == 0) return Visit::kStays;

  // Round the node there is no way out of a closed fan; the node of an open one is a corner of the polygon.
  const auto last = static_cast<std::size_t>(length - 1);
  const bool is_closed = polygon[0] == polygon[last];
  if (!is_closed) polygon[last + 1] = node;
  if (!is_closed) ++length;
  CoarseFace& face = install(list, polygon.release(), length, seed);
  links_.replace_merged_faces(mesh_, node, list.faces, list.count);
  if (is_closed) mesh_.live[static_cast<std::size_t>(node)] = 0;
  return pinches_.remove_pinches(face.corners, face.count, mesh_.live.get()) ? Visit::kMerged
                                                                             : Visit::kNoMemory;
}

}  // namespace fmd
