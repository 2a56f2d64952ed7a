// Shape functions of the linear and the serendipity elements (O. C. Zienkiewicz and R. L. Taylor, The Finite
// Element Method, 1989), written once over numbers that carry their derivatives, and product rules of
// Gauss-Jacobi points, for simplices in collapsed coordinates (A. H. Stroud, Approximate Calculation of
// Multiple Integrals, 1971).
#include <array>
#include <cmath>

#include "calculix/elements.h"
#include "calculix/gauss.h"

namespace calculix {

namespace {

// A value with its derivatives by the three reference coordinates.
struct Dual {
  double value = 0.0;
  std::array<double, 3> slope{};
};

Dual constant(double value) {
  return {value, {}};
}

Dual coordinate(double value, std::size_t direction) {
  Dual result{value, {}};
  result.slope[direction] = 1.0;
  return result;
}

Dual operator+(const Dual& a, const Dual& b) {
  Dual sum{a.value + b.value, {}};
  for (std::size_t k = 0; k < 3; ++k) sum.slope[k] = a.slope[k] + b.slope[k];
  return sum;
}

Dual operator*(const Dual& a, const Dual& b) {
  Dual product{a.value * b.value, {}};
  for (std::size_t k = 0; k < 3; ++k) product.slope[k] = a.slope[k] * b.value + a.value * b.slope[k];
  return product;
}

Dual operator+(const Dual& a, double b) {
  return a + constant(b);
}
Dual operator*(double a, const Dual& b) {
  return constant(a) * b;
}
Dual operator-(double a, const Dual& b) {
  return constant(a) + -1.0 * b;
}

using Shapes = std::array<Dual, largest_element>;

// Mid-edge nodes stand between these corners, in the order of the deck.
constexpr std::size_t tetrahedron_edges[6][2] = {{0, 1}, {1, 2}, {2, 0}, {0, 3}, {1, 3}, {2, 3}};
constexpr std::size_t triangle_edges[3][2] = {{0, 1}, {1, 2}, {2, 0}};

// Triangles and tetrahedra from their barycentric coordinates.
template <std::size_t Corners, std::size_t Edges>
Shapes simplex(const std::array<Dual, Corners>& l, const std::size_t (&edges)[Edges][2], bool quadratic) {
  Shapes n;
  for (std::size_t i = 0; i < Corners; ++i) n[i] = quadratic ? l[i] * (2.0 * l[i] + -1.0) : l[i];
  if (!quadratic) return n;
  for (std::size_t e = 0; e < Edges; ++e) n[Corners + e] = 4.0 * (l[edges[e][0]] * l[edges[e][1]]);
  return n;
}

Shapes wedge(const Dual& r, const Dual& s, const Dual& z, bool quadratic) {
  const std::array<Dual, 3> l = {1.0 - (r + s), r, s};
  const Dual middle = 1.0 - z * z;
  Shapes n;
  for (std::size_t i = 0; i < 6; ++i) {
    const Dual& li = l[i % 3];
    const Dual side = 0.5 * (i < 3 ? 1.0 - z : z + 1.0);
    n[i] = li * side;
    if (quadratic) n[i] = n[i] * (2.0 * li + -1.0) + -0.5 * (li * middle);
  }
  if (!quadratic) return n;
  for (std::size_t e = 0; e < 3; ++e) {
    const Dual edge = 2.0 * (l[triangle_edges[e][0]] * l[triangle_edges[e][1]]);
    n[6 + e] = edge * (1.0 - z);
    n[9 + e] = edge * (z + 1.0);
    n[12 + e] = l[e] * middle;
  }
  return n;
}

// Places of the nodes of hexahedra; the first four corners and edges are those of the quadrangle, too.
constexpr double brick_places[20][3] = {{-1, -1, -1}, {1, -1, -1}, {1, 1, -1}, {-1, 1, -1}, {-1, -1, 1},
                                        {1, -1, 1},   {1, 1, 1},   {-1, 1, 1}, {0, -1, -1}, {1, 0, -1},
                                        {0, 1, -1},   {-1, 0, -1}, {0, -1, 1}, {1, 0, 1},   {0, 1, 1},
                                        {-1, 0, 1},   {-1, -1, 0}, {1, -1, 0}, {1, 1, 0},   {-1, 1, 0}};
constexpr std::size_t quadrangle_nodes[8] = {0, 1, 2, 3, 8, 9, 10, 11};

// Serendipity function of the node at the place, over the first "dimension" coordinates.
Dual serendipity(const std::array<Dual, 3>& x, const double (&place)[3], std::size_t dimension,
                 bool quadratic) {
  Dual product = constant(1.0);
  Dual sum = constant(1.0 - static_cast<double>(dimension));
  bool corner = true;
  for (std::size_t k = 0; k < dimension; ++k) {
    if (place[k] == 0.0) {
      product = product * (1.0 - x[k] * x[k]);
      corner = false;
    } else {
      product = 0.5 * (product * (place[k] * x[k] + 1.0));
      sum = sum + place[k] * x[k];
    }
  }
  return corner && quadratic ? product * sum : product;
}

Shapes brick(const std::array<Dual, 3>& x, int nodes) {
  Shapes n;
  for (std::size_t i = 0; i < static_cast<std::size_t>(nodes); ++i) {
    n[i] = serendipity(x, brick_places[i], 3, nodes > 8);
  }
  return n;
}

Shapes quadrangle(const std::array<Dual, 3>& x, int nodes) {
  Shapes n;
  for (std::size_t i = 0; i < static_cast<std::size_t>(nodes); ++i) {
    n[i] = serendipity(x, brick_places[quadrangle_nodes[i]], 2, nodes > 4);
  }
  return n;
}

Shapes line(const Dual& x, int nodes) {
  Shapes n;
  if (nodes == 2) {
    n[0] = 0.5 * (1.0 - x);
    n[1] = 0.5 * (x + 1.0);
    return n;
  }
  n[0] = 0.5 * (x * (x + -1.0));
  n[1] = 1.0 - x * x;
  n[2] = 0.5 * (x * (x + 1.0));
  return n;
}

Shapes shapes_at(const ElementType& type, const std::array<Dual, 3>& x) {
  const bool quadratic = type.nodes > type.corners;
  switch (type.family) {
    case Family::tetrahedron:
      return simplex<4>({1.0 - (x[0] + x[1] + x[2]), x[0], x[1], x[2]}, tetrahedron_edges, quadratic);
    case Family::triangle:
      return simplex<3>({1.0 - (x[0] + x[1]), x[0], x[1]}, triangle_edges, quadratic);
    case Family::wedge:
      return wedge(x[0], x[1], x[2], quadratic);
    case Family::hexahedron:
      return brick(x, type.nodes);
    case Family::quadrangle:
      return quadrangle(x, type.nodes);
    case Family::line:
      break;
  }
  return line(x[0], type.nodes);
}

struct Place {
  std::array<double, 3> x;
  double weight;
};

// A point of the product of three rules on 0 to 1, moved to the element's own reference shape.
Place reference_place(Family family, const GaussPoint& a, const GaussPoint& b, const GaussPoint& c) {
  const double weight = a.weight * b.weight * c.weight;
  const double left = 1.0 - a.x;
  switch (family) {
    case Family::tetrahedron:
      return {{c.x * left * (1.0 - b.x), b.x * left, a.x}, weight};
    case Family::triangle:
      return {{b.x * left, a.x, 0.0}, weight};
    case Family::wedge:
      return {{b.x * left, a.x, 2.0 * c.x - 1.0}, 2.0 * weight};
    case Family::hexahedron:
      return {{2.0 * a.x - 1.0, 2.0 * b.x - 1.0, 2.0 * c.x - 1.0}, 8.0 * weight};
    case Family::quadrangle:
      return {{2.0 * a.x - 1.0, 2.0 * b.x - 1.0, 0.0}, 4.0 * weight};
    case Family::line:
      break;
  }
  return {{2.0 * a.x - 1.0, 0.0, 0.0}, 2.0 * weight};
}

// Fifteen points of degree five (P. Keast, Moderate-degree tetrahedral quadrature formulas, 1986), the degree
// of the squared quadratic shape functions on a straight tetrahedron and one more.
std::vector<Place> quadratic_tetrahedron_places() {
  struct Ring {
    double repeated;  // three barycentric coordinates
    double weight;
  };
  std::vector<Place> places = {{{0.25, 0.25, 0.25}, 6544.0 / 216090.0}};
  for (const Ring& ring : {Ring{1.0 / 3.0, 81.0 / 13440.0}, Ring{1.0 / 11.0, 161051.0 / 13829760.0}}) {
    for (std::size_t k = 0; k < 4; ++k) {
      Place place{{ring.repeated, ring.repeated, ring.repeated}, ring.weight};
      if (k < 3) place.x[k] = 1.0 - 3.0 * ring.repeated;
      places.push_back(place);
    }
  }
  const double low = (13.0 - std::sqrt(91.0)) / 52.0;
  const double high = 0.5 - low;
  constexpr double weight = 338.0 / 30870.0;
  for (std::size_t k = 0; k < 3; ++k) {
    Place one_high{{low, low, low}, weight};
    Place two_high{{high, high, high}, weight};
    one_high.x[k] = high;
    two_high.x[k] = low;
    places.push_back(one_high);
    places.push_back(two_high);
  }
  return places;
}

std::vector<Place> reference_places(const ElementType& type) {
  if (type.family == Family::tetrahedron && type.nodes > type.corners) return quadratic_tetrahedron_places();
  const bool tetrahedron = type.family == Family::tetrahedron;
  const bool triangular = type.family == Family::triangle || type.family == Family::wedge;
  const std::vector<GaussPoint> one = {{0.0, 1.0}};
  const auto rule = [&](int power) { return gauss_jacobi(type.integration_order, power); };
  const auto first = rule(tetrahedron ? 2 : (triangular ? 1 : 0));
  const auto second = type.dimension > 1 ? rule(tetrahedron ? 1 : 0) : one;
  const auto third = type.dimension > 2 ? rule(0) : one;
  std::vector<Place> places;
  for (const GaussPoint& a : first) {
    for (const GaussPoint& b : second) {
      for (const GaussPoint& c : third) places.push_back(reference_place(type.family, a, b, c));
    }
  }
  return places;
}

}  // namespace

std::vector<IntegrationPoint> integration_points(const ElementType& type) {
  std::vector<IntegrationPoint> points;
  for (const Place& place : reference_places(type)) {
    std::array<Dual, 3> x;
    for (std::size_t k = 0; k < 3; ++k) x[k] = coordinate(place.x[k], k);
    const Shapes shapes = shapes_at(type, x);
    IntegrationPoint point{place.weight, {}, {}};
    for (std::size_t i = 0; i < largest_element; ++i) {
      point.shape[i] = shapes[i].value;
      point.slope[i] = shapes[i].slope;
    }
    points.push_back(point);
  }
  return points;
}

}  // namespace calculix
