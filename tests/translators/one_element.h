// One straight-edged element of each code, with its deck-order node places, and meshes of them.
#ifndef FMDTOOLKIT_TESTS_ONE_ELEMENT_H
#define FMDTOOLKIT_TESTS_ONE_ELEMENT_H

#include <array>
#include <vector>

#include "calculix/mesh.h"

namespace fmdtest {

using Place = std::array<double, 3>;

// Corners of the shape and the edges whose middles follow them, in the order of the deck.
struct Outline {
  int linear_code;
  int quadratic_code;
  double measure;
  std::vector<Place> corners;
  std::vector<std::pair<int, int>> edges;
};

inline std::vector<Outline> outlines() {
  return {
      {1,
       4,
       1.0,
       {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}},
       {{1, 2}, {2, 3}, {3, 4}, {4, 1}, {5, 6}, {6, 7}, {7, 8}, {8, 5}, {1, 5}, {2, 6}, {3, 7}, {4, 8}}},
      {2,
       5,
       0.5,
       {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {0, 1, 1}},
       {{1, 2}, {2, 3}, {3, 1}, {4, 5}, {5, 6}, {6, 4}, {1, 4}, {2, 5}, {3, 6}}},
      {3,
       6,
       1.0 / 6,
       {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}},
       {{1, 2}, {2, 3}, {3, 1}, {1, 4}, {2, 4}, {3, 4}}},
      {7, 8, 0.5, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {{1, 2}, {2, 3}, {3, 1}}},
      {9, 10, 1.0, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{1, 2}, {2, 3}, {3, 4}, {4, 1}}},
  };
}

// Node places in the order of the deck.
inline std::vector<Place> places_of(const Outline& outline, bool quadratic) {
  std::vector<Place> places = outline.corners;
  if (!quadratic) return places;
  for (const auto& [a, b] : outline.edges) {
    const Place& p = outline.corners[static_cast<std::size_t>(a - 1)];
    const Place& q = outline.corners[static_cast<std::size_t>(b - 1)];
    places.push_back({(p[0] + q[0]) / 2, (p[1] + q[1]) / 2, (p[2] + q[2]) / 2});
  }
  return places;
}

// A mesh of one element; node indices in the order of the deck.
inline calculix::Mesh mesh_of(int code, const std::vector<Place>& places) {
  calculix::Mesh mesh;
  for (const Place& place : places) {
    mesh.node_ids.push_back(static_cast<int>(mesh.points.size()) + 1);
    mesh.element_nodes.push_back(static_cast<int>(mesh.points.size()));
    mesh.points.push_back(place);
  }
  mesh.elements.push_back({1, calculix::element_type(code), 0, 1});
  return mesh;
}

}  // namespace fmdtest

#endif
