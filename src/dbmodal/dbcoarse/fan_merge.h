// The faces around a node as one polygon: each is turned so that the node comes first, and then they are
// chained along the edges that they share.
#ifndef FMDTOOLKIT_DBMODAL_DBCOARSE_FAN_MERGE_H
#define FMDTOOLKIT_DBMODAL_DBCOARSE_FAN_MERGE_H

#include <cstdint>

#include "dbmodal/dbcoarse/coarse_mesh.h"
#include "dbmodal/dbcoarse/node_links.h"

namespace fmd {

// Room that turning a face needs. It grows to the larger of what is asked and twice what it was.
class RotationBuffer {
 public:
  RotationBuffer() = default;
  ~RotationBuffer() { fmd::release(entries_); }
  RotationBuffer(const RotationBuffer&) = delete;
  RotationBuffer& operator=(const RotationBuffer&) = delete;

  // Null without memory.
  std::int32_t* provide(std::int32_t entries);

 private:
  std::int32_t* entries_ = nullptr;
  std::int64_t capacity_ = 0;
};

// Takes faces that have no such corner off the node's list and rotates the others so that the node's first
// place becomes the first corner. False without memory.
bool orient_faces_around_node(CoarseFace* faces, std::int32_t node, NodeFaces list, RotationBuffer& buffer);

// The corners of the polygon that the listed faces, all with one node first, make around that node, without
// the node; 0 when they make none, though some may have been reversed. The polygon has room for the corners
// of all faces. On success the faces stay taken, and the seed, whose normal is the polygon's, is told.
std::int32_t merge_fan(CoarseFace* faces, NodeFaces list, std::int32_t* polygon, std::int32_t& seed);

}  // namespace fmd

#endif
