// A display mesh while it is coarsened: private copies of faces and node positions.
#ifndef FMDTOOLKIT_DBMODAL_DBCOARSE_COARSE_MESH_H
#define FMDTOOLKIT_DBMODAL_DBCOARSE_COARSE_MESH_H

#include <cstdint>

#include "dbmodal/dbtools/face_strip.h"
#include "messages/memory.h"

namespace fmd {

struct CoarseFace {
  std::int32_t* corners;  // node indices in order; null once the face has become part of a polygon
  std::int32_t count;
  bool is_polygon;   // merged: its corners are an allocation of its own
  bool taken;        // part of the polygon that is being tried
  double normal[3];  // unit normal; zeros below three corners
};

struct CoarseMesh {
  CoarseMesh() = default;
  ~CoarseMesh();
  CoarseMesh(const CoarseMesh&) = delete;
  CoarseMesh& operator=(const CoarseMesh&) = delete;

  // Copies a sound face list. False without memory, and for a list of no faces.
  bool unpack_faces(const std::int32_t* list, std::int32_t count, std::int32_t length);

  // Nodes at the origin, all live. False without memory, and for no nodes.
  bool make_nodes(std::int32_t count);

  double* position(std::int32_t node) const { return positions.get() + std::int64_t{3} * node; }

  // Of the box that holds all nodes, on faces or not.
  double diagonal() const;

  void compute_normals();

  // Faces with corners, and the length of their list; then the list itself.
  FaceListSize packed_size() const;
  void pack_faces(std::int32_t* list) const;

  void release_corners(CoarseFace& face);

  CArray<std::int32_t> list;  // the copy; faces that are no polygons have their corners in it
  std::int32_t list_length = 0;
  CArray<CoarseFace> faces;
  std::int32_t face_count = 0;
  CArray<double> positions;  // x, y, z a node
  // 1: has a record. A node that is preserved, on no face or dissolved has none: it is never visited, holds
  // no neighbour back, and is never dropped from a polygon.
  CArray<char> live;
  std::int32_t node_count = 0;
};

// Squared distance of two nodes.
inline double squared_distance(const double* one, const double* other) {
  const double x = other[0] - one[0];
  const double y = other[1] - one[1];
  const double z = other[2] - one[2];
  return x * x + y * y + z * z;
}

}  // namespace fmd

#endif
