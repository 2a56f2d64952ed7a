// The element types of a result file: node order, corners, faces, shape functions and integration points.
//
// Nodes of an element are held in the order of the input deck. Reference coordinates: hexahedra, quadrangles
// and lines from -1 to 1, tetrahedra and triangles from 0 to 1, wedges a triangle times -1 to 1.
#ifndef FMDTOOLKIT_CALCULIX_ELEMENTS_H
#define FMDTOOLKIT_CALCULIX_ELEMENTS_H

#include <array>
#include <vector>

namespace calculix {

enum class Family { tetrahedron, wedge, hexahedron, triangle, quadrangle, line };

constexpr int largest_element = 20;  // nodes
constexpr int largest_face = 4;      // corners

// A polygon over local node numbers, from 0. Faces of solids are oriented outward.
struct LocalFace {
  int corners;
  std::array<int, largest_face> nodes;
};

struct ElementType {
  int code;
  Family family;
  int dimension;  // 3 solid, 2 shell, 1 beam
  int nodes;
  int corners;
  int integration_order;  // points in each direction that integrate the consistent mass exactly; 0 for a rule
                          // of its own
  const int* place_in_deck;  // per node of the result file its place in the deck's order; null for the same
  std::vector<LocalFace> faces;
};

// Null for a code that is not known.
const ElementType* element_type(int code);

// Weight, shape functions and their derivatives by the reference coordinates at one integration point.
struct IntegrationPoint {
  double weight;
  std::array<double, largest_element> shape;
  std::array<std::array<double, 3>, largest_element> slope;
};

std::vector<IntegrationPoint> integration_points(const ElementType& type);

}  // namespace calculix

#endif
