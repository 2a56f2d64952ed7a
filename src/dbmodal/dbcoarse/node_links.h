// Which faces each node is on, and the way back.
//
// A node's list of faces ascends. It may be stale: a face whose polygon has dropped the node stays listed
// until the node is visited. So the way back, from a face to the nodes that list it, cannot be read off the
// corners of polygons and is kept as a chain per face. It makes the replacement of merged faces a matter of
// the nodes around them, not of all nodes.
#ifndef FMDTOOLKIT_DBMODAL_DBCOARSE_NODE_LINKS_H
#define FMDTOOLKIT_DBMODAL_DBCOARSE_NODE_LINKS_H

#include <cstdint>

#include "dbmodal/dbcoarse/coarse_mesh.h"
#include "messages/memory.h"

namespace fmd {

// The faces of one node; the list can only become shorter.
struct NodeFaces {
  std::int32_t* faces;
  std::int32_t& count;
};

class NodeLinks {
 public:
  // Lists for each node its faces, one entry per corner that it is; a node on no face loses its record. False
  // without memory.
  bool build(CoarseMesh& mesh);

  NodeFaces faces_of(std::int32_t node) const {
    return {faces_.get() + starts_[static_cast<std::size_t>(node)], counts_[static_cast<std::size_t>(node)]};
  }

  // In the lists of all later nodes with a record, the first face of the merged ones takes the place of the
  // others; a list that changed is sorted and has each face once. Merged faces are not listed by any of these
  // nodes any more.
  void replace_merged_faces(const CoarseMesh& mesh, std::int32_t node, const std::int32_t* merged,
                            std::int32_t count);

 private:
  bool allocate(const CoarseMesh& mesh);
  void list_faces(const CoarseMesh& mesh);
  void chain_nodes(const CoarseMesh& mesh);
  bool move_link(std::int32_t node, std::int32_t from, std::int32_t to);
  void append(std::int32_t face, std::int32_t entry);

  CArray<std::int32_t> starts_;  // per node: where its list starts in faces_
  CArray<std::int32_t> counts_;  // per node
  CArray<std::int32_t> faces_;
  CArray<std::int32_t> entry_nodes_;  // chain entries, at the places of the corners in the face list
  CArray<std::int32_t> entry_next_;   // -1 at the end
  CArray<std::int32_t> heads_;        // per face; -1 none
  CArray<std::int32_t> tails_;
};

}  // namespace fmd

#endif
