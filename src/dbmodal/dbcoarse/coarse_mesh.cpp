#include "dbmodal/dbcoarse/coarse_mesh.h"

#include <algorithm>
#include <cmath>

namespace fmd {

namespace {

template <typename T>
CArray<T> make_array(std::int64_t count) {
  return CArray<T>(static_cast<T*>(allocate_quietly(count, sizeof(T))));
}

// (p2 - p1) x (p0 - p1) as a unit vector, where it has a length.
void compute_normal(const double* p0, const double* p1, const double* p2, double* normal) {
  const double a[3] = {p2[0] - p1[0], p2[1] - p1[1], p2[2] - p1[2]};
  const double b[3] = {p0[0] - p1[0], p0[1] - p1[1], p0[2] - p1[2]};
  normal[0] = a[1] * b[2] - a[2] * b[1];
  normal[1] = a[2] * b[0] - a[0] * b[2];
  normal[2] = a[0] * b[1] - a[1] * b[0];
  const double length = std::sqrt(normal[0] * normal[0] + normal[1] * normal[1] + normal[2] * normal[2]);
  if (length == 0.0) return;
  for (int k = 0; k < 3; ++k) normal[k] /= length;
}

}  // namespace

CoarseMesh::~CoarseMesh() {
  for (std::int32_t face = 0; face < face_count; ++face)
    release_corners(faces[static_cast<std::size_t>(face)]);
}

void CoarseMesh::release_corners(CoarseFace& face) {
  if (face.is_polygon) std::free(face.corners);
  face.corners = nullptr;
  face.is_polygon = false;
}

bool CoarseMesh::unpack_faces(const std::int32_t* from, std::int32_t count, std::int32_t length) {
  list = make_array<std::int32_t>(length);
  faces = make_array<CoarseFace>(count);
  if (list == nullptr || faces == nullptr) return false;
  std::copy_n(from, length, list.get());
  list_length = length;
  face_count = count;
  std::int32_t* place = list.get();
  for (CoarseFace* face = faces.get(); face != faces.get() + count; ++face) {
    face->count = *place;
    face->corners = place + 1;
    place += face->count + 1;
  }
  return true;
}

bool CoarseMesh::make_nodes(std::int32_t count) {
  positions = make_array<double>(std::int64_t{3} * count);
  live = make_array<char>(count);
  if (positions == nullptr || live == nullptr) return false;
  node_count = count;
  std::fill_n(live.get(), count, '\1');
  return true;
}

double CoarseMesh::diagonal() const {
  double squares = 0.0;
  for (int axis = 0; axis < 3; ++axis) {
    double least = position(0)[axis];
    double most = least;
    for (std::int32_t node = 1; node < node_count; ++node) {
      least = std::min(least, position(node)[axis]);
      most = std::max(most, position(node)[axis]);
    }
    squares += (most - least) * (most - least);
  }
  return std::sqrt(squares);
}

void CoarseMesh::compute_normals() {
  for (CoarseFace* face = faces.get(); face != faces.get() + face_count; ++face) {
    if (face->count < 3) continue;
    const std::int32_t* const corners = face->corners;
    compute_normal(position(corners[0]), position(corners[1]), position(corners[2]), face->normal);
  }
}

FaceListSize CoarseMesh::packed_size() const {
  FaceListSize size = {0, 0};
  for (const CoarseFace* face = faces.get(); face != faces.get() + face_count; ++face) {
    if (face->corners == nullptr || face->count == 0) continue;
    ++size.faces;
    size.length += face->count + 1;
  }
  return size;
}

void CoarseMesh::pack_faces(std::int32_t* to) const {
  for (const CoarseFace* face = faces.get(); face != faces.get() + face_count; ++face) {
    if (face->corners == nullptr || face->count == 0) continue;
    *to++ = face->count;
    to = std::copy_n(face->corners, face->count, to);
  }
}

}  // namespace fmd
