#include "calculix/elements.h"

namespace calculix {

namespace {

// The result file puts the edges between the layers before those of the upper layer, the deck after them;
// and a curved beam's ends before its middle.
constexpr int brick_place[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15};
constexpr int wedge_place[] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11};
constexpr int beam_place[] = {0, 2, 1};

std::vector<LocalFace> tetrahedron_faces() {
  return {{3, {0, 2, 1}}, {3, {0, 1, 3}}, {3, {1, 2, 3}}, {3, {2, 0, 3}}};
}

std::vector<LocalFace> wedge_faces() {
  return {{3, {0, 2, 1}}, {3, {3, 4, 5}}, {4, {0, 1, 4, 3}}, {4, {1, 2, 5, 4}}, {4, {2, 0, 3, 5}}};
}

std::vector<LocalFace> hexahedron_faces() {
  return {{4, {0, 3, 2, 1}}, {4, {4, 5, 6, 7}}, {4, {0, 1, 5, 4}},
          {4, {1, 2, 6, 5}}, {4, {2, 3, 7, 6}}, {4, {3, 0, 4, 7}}};
}

// The order of integration is that of the square of a shape function times the Jacobian determinant, which
// for curved shells and beams, where the latter is no polynomial, is that of flat and straight ones. The
// quadratic tetrahedron has a rule of its own.
const std::vector<ElementType>& all_types() {
  static const std::vector<ElementType> types = {
      {1, Family::hexahedron, 3, 8, 8, 3, nullptr, hexahedron_faces()},
      {2, Family::wedge, 3, 6, 6, 3, nullptr, wedge_faces()},
      {3, Family::tetrahedron, 3, 4, 4, 2, nullptr, tetrahedron_faces()},
      {4, Family::hexahedron, 3, 20, 8, 5, brick_place, hexahedron_faces()},
      {5, Family::wedge, 3, 15, 6, 5, wedge_place, wedge_faces()},
      {6, Family::tetrahedron, 3, 10, 4, 0, nullptr, tetrahedron_faces()},
      {7, Family::triangle, 2, 3, 3, 2, nullptr, {{3, {0, 1, 2}}}},
      {8, Family::triangle, 2, 6, 3, 4, nullptr, {{3, {0, 1, 2}}}},
      {9, Family::quadrangle, 2, 4, 4, 2, nullptr, {{4, {0, 1, 2, 3}}}},
      {10, Family::quadrangle, 2, 8, 4, 4, nullptr, {{4, {0, 1, 2, 3}}}},
      {11, Family::line, 1, 2, 2, 2, nullptr, {{2, {0, 1}}}},
      {12, Family::line, 1, 3, 2, 3, beam_place, {{2, {0, 2}}}},
  };
  return types;
}

}  // namespace

const ElementType* element_type(int code) {
  for (const ElementType& type : all_types()) {
    if (type.code == code) return &type;
  }
  return nullptr;
}

}  // namespace calculix
