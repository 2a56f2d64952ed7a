// The diagonal of each element's consistent mass matrix, scaled to the element's mass (E. Hinton, T. Rock and
// O. C. Zienkiewicz, A note on mass lumping and related processes in the finite element method, 1976). It is
// positive for every element, where row sums give quadratic elements negative corner masses.
#include "calculix/lumping.h"

#include <cmath>
#include <map>

namespace calculix {

namespace {

double determinant(const Point& a, const Point& b, const Point& c) {
  return a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
         a[2] * (b[0] * c[1] - b[1] * c[0]);
}

double area(const Point& a, const Point& b) {
  const double x = a[1] * b[2] - a[2] * b[1];
  const double y = a[2] * b[0] - a[0] * b[2];
  const double z = a[0] * b[1] - a[1] * b[0];
  return std::sqrt(x * x + y * y + z * z);
}

// Volume, area or length by reference measure; only a solid can be inside out.
double measure(int dimension, const std::array<Point, 3>& tangents) {
  if (dimension == 3) return determinant(tangents[0], tangents[1], tangents[2]);
  if (dimension == 2) return area(tangents[0], tangents[1]);
  const Point& t = tangents[0];
  return std::sqrt(t[0] * t[0] + t[1] * t[1] + t[2] * t[2]);
}

struct Diagonal {
  std::array<double, largest_element> entries{};
  double sum = 0.0;
  double measure = 0.0;
};

// diag_i = integral of N_i^2 over the element of unit density.
Diagonal consistent_diagonal(const Mesh& mesh, const Element& element,
                             const std::vector<IntegrationPoint>& points) {
  const auto count = static_cast<std::size_t>(element.type->nodes);
  const auto dimension = static_cast<std::size_t>(element.type->dimension);
  std::array<Point, largest_element> corners;
  for (std::size_t i = 0; i < count; ++i) {
    corners[i] = mesh.points[static_cast<std::size_t>(mesh.nodes_of(element)[i])];
  }
  Diagonal diagonal;
  for (const IntegrationPoint& point : points) {
    std::array<Point, 3> tangents{};
    for (std::size_t i = 0; i < count; ++i) {
      for (std::size_t k = 0; k < dimension; ++k) {
        for (std::size_t d = 0; d < 3; ++d) tangents[k][d] += point.slope[i][k] * corners[i][d];
      }
    }
    const double piece = point.weight * measure(element.type->dimension, tangents);
    diagonal.measure += piece;
    for (std::size_t i = 0; i < count; ++i) diagonal.entries[i] += piece * point.shape[i] * point.shape[i];
  }
  for (std::size_t i = 0; i < count; ++i) diagonal.sum += diagonal.entries[i];
  return diagonal;
}

bool is_positive(double value) {
  return value > 0.0 && std::isfinite(value);
}

}  // namespace

int lump_masses(const Mesh& mesh, const std::vector<double>& densities, std::vector<double>& masses) {
  std::map<int, std::vector<IntegrationPoint>> points_of;
  for (std::size_t e = 0; e < mesh.elements.size(); ++e) {
    const Element& element = mesh.elements[e];
    std::vector<IntegrationPoint>& points = points_of[element.type->code];
    if (points.empty()) points = integration_points(*element.type);
    const Diagonal diagonal = consistent_diagonal(mesh, element, points);
    if (!is_positive(diagonal.measure) || !is_positive(diagonal.sum)) return static_cast<int>(e);
    const double scale = densities[e] * diagonal.measure / diagonal.sum;
    for (int i = 0; i < element.type->nodes; ++i) {
      const auto node = static_cast<std::size_t>(mesh.nodes_of(element)[i]);
      masses[node] += scale * diagonal.entries[static_cast<std::size_t>(i)];
    }
  }
  return -1;
}

}  // namespace calculix
