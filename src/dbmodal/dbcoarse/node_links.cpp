#include "dbmodal/dbcoarse/node_links.h"

#include <algorithm>

namespace fmd {

namespace {

CArray<std::int32_t> make_integers(std::int64_t count) {
  return CArray<std::int32_t>(static_cast<std::int32_t*>(allocate_quietly(count, sizeof(std::int32_t))));
}

}  // namespace

bool NodeLinks::allocate(const CoarseMesh& mesh) {
  starts_ = make_integers(mesh.node_count);
  counts_ = make_integers(mesh.node_count);
  faces_ = make_integers(mesh.list_length);
  entry_nodes_ = make_integers(mesh.list_length);
  entry_next_ = make_integers(mesh.list_length);
  heads_ = make_integers(mesh.face_count);
  tails_ = make_integers(mesh.face_count);
  return starts_ != nullptr && counts_ != nullptr && faces_ != nullptr && entry_nodes_ != nullptr &&
         entry_next_ != nullptr && heads_ != nullptr && tails_ != nullptr;
}

void NodeLinks::list_faces(const CoarseMesh& mesh) {
  for (std::int32_t face = 0; face < mesh.face_count; ++face) {
    const CoarseFace& record = mesh.faces[static_cast<std::size_t>(face)];
    for (std::int32_t k = 0; k < record.count; ++k) ++counts_[static_cast<std::size_t>(record.corners[k])];
  }
  std::int32_t start = 0;
  for (std::int32_t node = 0; node < mesh.node_count; ++node) {
    const auto place = static_cast<std::size_t>(node);
    starts_[place] = start;
    start += counts_[place];
    if (counts_[place] == 0) mesh.live[place] = 0;
    counts_[place] = 0;
  }
  for (std::int32_t face = 0; face < mesh.face_count; ++face) {
    const CoarseFace& record = mesh.faces[static_cast<std::size_t>(face)];
    for (std::int32_t k = 0; k < record.count; ++k) {
      const NodeFaces node = faces_of(record.corners[k]);
      node.faces[node.count++] = face;
    }
  }
}

void NodeLinks::chain_nodes(const CoarseMesh& mesh) {
  std::copy_n(mesh.list.get(), mesh.list_length, entry_nodes_.get());
  for (std::int32_t face = 0; face < mesh.face_count; ++face) {
    const CoarseFace& record = mesh.faces[static_cast<std::size_t>(face)];
    const auto first = static_cast<std::int32_t>(record.corners - mesh.list.get());
    heads_[static_cast<std::size_t>(face)] = tails_[static_cast<std::size_t>(face)] = -1;
    for (std::int32_t k = 0; k < record.count; ++k) append(face, first + k);
  }
}

void NodeLinks::append(std::int32_t face, std::int32_t entry) {
  const auto place = static_cast<std::size_t>(face);
  entry_next_[static_cast<std::size_t>(entry)] = -1;
  if (heads_[place] < 0) {
    heads_[place] = entry;
  } else {
    entry_next_[static_cast<std::size_t>(tails_[place])] = entry;
  }
  tails_[place] = entry;
}

bool NodeLinks::build(CoarseMesh& mesh) {
  if (!allocate(mesh)) return false;
  list_faces(mesh);
  chain_nodes(mesh);
  return true;
}

// Whether the node now lists a face that it did not list before.
bool NodeLinks::move_link(std::int32_t node, std::int32_t from, std::int32_t to) {
  const NodeFaces list = faces_of(node);
  std::int32_t* const end = list.faces + list.count;
  if (std::find(list.faces, end, from) == end) return false;
  const bool listed = std::find(list.faces, end, to) != end;
  std::replace(list.faces, end, from, to);
  std::sort(list.faces, end);
  list.count = static_cast<std::int32_t>(std::unique(list.faces, end) - list.faces);
  return !listed;
}

// Entries of nodes that have been visited or have no record are left behind: nobody asks for them again.
void NodeLinks::replace_merged_faces(const CoarseMesh& mesh, std::int32_t node, const std::int32_t* merged,
                                     std::int32_t count) {
  for (std::int32_t k = 1; k < count; ++k) {
    const auto face = static_cast<std::size_t>(merged[k]);
    std::int32_t entry = heads_[face];
    heads_[face] = tails_[face] = -1;
    while (entry >= 0) {
      const std::int32_t next = entry_next_[static_cast<std::size_t>(entry)];
      const std::int32_t other = entry_nodes_[static_cast<std::size_t>(entry)];
      const bool concerned = other > node && mesh.live[static_cast<std::size_t>(other)] != 0;
      if (concerned && move_link(other, merged[k], merged[0])) append(merged[0], entry);
      entry = next;
    }
  }
}

}  // namespace fmd
