// Solid faces are compared by their sorted corners: a face inside the body comes from two elements, and
// sorting all of them brings equal ones together.
#include "calculix/faces.h"

#include <algorithm>

namespace calculix {

namespace {

struct SolidFace {
  std::array<int, largest_face> key;
  std::size_t place;  // in the list of all faces
};

// The corners of a local face without repeated neighbours, as collapsed elements have them.
Face face_of(const Mesh& mesh, const Element& element, const LocalFace& local) {
  Face face{0, {-1, -1, -1, -1}};
  for (int i = 0; i < local.corners; ++i) {
    const int node = mesh.nodes_of(element)[local.nodes[static_cast<std::size_t>(i)]];
    const bool repeats = face.corners > 0 && face.nodes[static_cast<std::size_t>(face.corners - 1)] == node;
    const bool closes = i + 1 == local.corners && face.nodes[0] == node;
    if (!repeats && !closes) face.nodes[static_cast<std::size_t>(face.corners++)] = node;
  }
  return face;
}

}  // namespace

std::vector<Face> outer_faces(const Mesh& mesh) {
  std::vector<Face> faces;
  std::vector<SolidFace> solid;
  for (const Element& element : mesh.elements) {
    for (const LocalFace& local : element.type->faces) {
      const Face face = face_of(mesh, element, local);
      if (face.corners < std::min(element.type->dimension + 1, 3)) continue;
      if (element.type->dimension == 3) {
        solid.push_back({face.nodes, faces.size()});
        std::sort(solid.back().key.begin(), solid.back().key.end());
      }
      faces.push_back(face);
    }
  }
  std::sort(solid.begin(), solid.end(), [](const SolidFace& a, const SolidFace& b) { return a.key < b.key; });
  for (auto first = solid.begin(); first != solid.end();) {
    auto last = first + 1;
    while (last != solid.end() && last->key == first->key) ++last;
    if (last - first > 1) {
      for (auto inner = first; inner != last; ++inner) faces[inner->place].corners = 0;
    }
    first = last;
  }
  const auto is_inner = [](const Face& face) { return face.corners == 0; };
  faces.erase(std::remove_if(faces.begin(), faces.end(), is_inner), faces.end());
  return faces;
}

}  // namespace calculix
