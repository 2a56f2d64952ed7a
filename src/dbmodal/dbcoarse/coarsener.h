// Dissolves nodes of a display mesh: where all faces around a node are nearly coplanar and all their corners
// near, the faces become one polygon and the node goes, or stays as a corner on the rim.
//
// Nodes are visited once each, and each merge changes what later nodes see: their order is part of the
// result.
#ifndef FMDTOOLKIT_DBMODAL_DBCOARSE_COARSENER_H
#define FMDTOOLKIT_DBMODAL_DBCOARSE_COARSENER_H

#include <cstdint>

#include "dbmodal/dbcoarse/coarse_mesh.h"
#include "dbmodal/dbcoarse/fan_merge.h"
#include "dbmodal/dbcoarse/node_links.h"
#include "dbmodal/dbcoarse/pinches.h"

namespace fmd {

struct CoarseLimits {
  double squared_distance;  // of a corner from the node, at most
  double cosine;            // between normals, at least
};

enum class Visit {
  kStays,    // the faces around the node are as they were, but for their first corner and their direction
  kMerged,   // they are one polygon
  kNoMemory  // either, and something had to be left out
};

class Coarsener {
 public:
  explicit Coarsener(CoarseMesh& mesh) : mesh_(mesh) {}

  // Comes first; nodes on no face lose their record. Without memory, and then false, every node stays.
  bool link();

  Visit visit(std::int32_t node, const CoarseLimits& limits);

 private:
  bool neighbors_within_resolution(std::int32_t node, double squared_distance) const;
  bool faces_nearly_coplanar(std::int32_t node, double cosine) const;
  Visit dissolve(std::int32_t node);
  std::int64_t corner_total(NodeFaces list) const;
  CoarseFace& install(NodeFaces list, std::int32_t* polygon, std::int32_t length, std::int32_t seed);

  CoarseMesh& mesh_;
  NodeLinks links_;
  RotationBuffer rotation_;
  PinchRemoval pinches_;
  bool linked_ = false;
};

}  // namespace fmd

#endif
