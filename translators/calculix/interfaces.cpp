// A group's nodes at the distances d from the reference point follow its rigid motion as u = t + r x d. The
// average motion is the one that fits the displacements with the least sum of squares: with the distances e
// from the centre, mean of u and inverse(sum of e.e I - e e^T) times the sum of e x u, every node weighing
// the same.
#include "calculix/interfaces.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "calculix/input_error.h"
#include "calculix/number_text.h"

namespace calculix {

namespace {

using Matrix3 = std::array<std::array<double, 3>, 3>;

// Determinant of the nodes' inertia beside that of a ball of the same trace: 0 for nodes on a line.
constexpr double line_limit = 1e-9;

constexpr std::size_t group_width = 6;

std::optional<InterfaceKind> kind_of(const std::string& name) {
  if (name == "nodes") return InterfaceKind::nodes;
  if (name == "rigid") return InterfaceKind::rigid;
  if (name == "average") return InterfaceKind::average;
  return {};
}

Point parse_point(const std::string& text) {
  Point point{};
  std::string_view rest = text;
  for (std::size_t k = 0; k < 3; ++k) {
    const std::size_t comma = rest.find(',');
    const bool last = comma == std::string_view::npos;
    if (last != (k == 2) || !parse_real(rest.substr(0, comma), point[k])) {
      throw std::invalid_argument("expected a reference point X,Y,Z, found " + quote(text));
    }
    if (!last) rest.remove_prefix(comma + 1);
  }
  return point;
}

Point difference(const Point& a, const Point& b) {
  return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

// (x d) with (x d) u = d x u.
Matrix3 cross_matrix(const Point& d) {
  return {{{0.0, -d[2], d[1]}, {d[2], 0.0, -d[0]}, {-d[1], d[0], 0.0}}};
}

Matrix3 product(const Matrix3& a, const Matrix3& b) {
  Matrix3 result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      for (std::size_t k = 0; k < 3; ++k) result[i][j] += a[i][k] * b[k][j];
    }
  }
  return result;
}

// The sum of e.e I - e e^T.
Matrix3 inertia_of(const std::vector<InterfaceNode>& nodes, const Point& centre) {
  Matrix3 sum{};
  for (const InterfaceNode& node : nodes) {
    const Point e = difference(node.at, centre);
    const double square = e[0] * e[0] + e[1] * e[1] + e[2] * e[2];
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t j = 0; j < 3; ++j) sum[i][j] += (i == j ? square : 0.0) - e[i] * e[j];
    }
  }
  return sum;
}

// By cofactors; throws where the nodes lie on a line.
Matrix3 inverse_inertia(const Matrix3& a) {
  Matrix3 cofactors{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const std::size_t r = (i + 1) % 3;
      const std::size_t s = (i + 2) % 3;
      const std::size_t c = (j + 1) % 3;
      const std::size_t d = (j + 2) % 3;
      cofactors[i][j] = a[r][c] * a[s][d] - a[r][d] * a[s][c];
    }
  }
  const double determinant =
      a[0][0] * cofactors[0][0] + a[0][1] * cofactors[0][1] + a[0][2] * cofactors[0][2];
  const double third = (a[0][0] + a[1][1] + a[2][2]) / 3.0;
  if (!(determinant > line_limit * third * third * third)) {
    throw ReductionError("expected three nodes or more that do not lie on a line");
  }
  Matrix3 result{};
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) result[i][j] = cofactors[j][i] / determinant;
  }
  return result;
}

std::array<int, 3> rows_of(const InterfaceNode& node, const RowIndex& rows) {
  std::array<int, 3> result{};
  for (int axis = 0; axis < 3; ++axis) {
    const int row = rows.find(node.id, axis);
    if (row < 0) {
      throw ReductionError("expected three degrees of freedom of node " + std::to_string(node.id) +
                           ", the matrices lack " + std::to_string(node.id) + "." + std::to_string(axis + 1));
    }
    result[static_cast<std::size_t>(axis)] = row;
  }
  return result;
}

Coupling coupling_of_node(const InterfaceNode& node, const RowIndex& rows) {
  const auto dofs = rows_of(node, rows);
  Coupling coupling;
  coupling.width = 3;
  coupling.dofs.assign(dofs.begin(), dofs.end());
  coupling.factors = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  return coupling;
}

// A row of factors for each axis of the node: those of the translations, then those of the rotations.
void add_node(Coupling& coupling, const std::array<int, 3>& dofs, const Matrix3& translations,
              const Matrix3& rotations) {
  coupling.dofs.insert(coupling.dofs.end(), dofs.begin(), dofs.end());
  for (std::size_t axis = 0; axis < 3; ++axis) {
    coupling.factors.insert(coupling.factors.end(), translations[axis].begin(), translations[axis].end());
    coupling.factors.insert(coupling.factors.end(), rotations[axis].begin(), rotations[axis].end());
  }
}

Coupling rigid_coupling(const std::vector<InterfaceNode>& nodes, const Point& reference,
                        const RowIndex& rows) {
  inverse_inertia(inertia_of(nodes, centre_of(nodes)));
  Coupling coupling;
  coupling.width = static_cast<int>(group_width);
  const Matrix3 unit = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
  for (const InterfaceNode& node : nodes) {
    // r x d = -d x r.
    const Matrix3 turned = cross_matrix(difference(reference, node.at));
    add_node(coupling, rows_of(node, rows), unit, turned);
  }
  return coupling;
}

double square_distance(const Point& a, const Point& b) {
  const Point d = difference(a, b);
  return d[0] * d[0] + d[1] * d[1] + d[2] * d[2];
}

// Three nodes far from each other and from one line, which hold all rigid motions: the one farthest from the
// centre, the one farthest from it, and the one that spans the largest triangle with both.
std::array<std::size_t, 3> spread_nodes(const std::vector<InterfaceNode>& nodes, const Point& centre) {
  const auto farthest = [&](const auto& measure) {
    std::size_t best = 0;
    for (std::size_t i = 1; i < nodes.size(); ++i) {
      if (measure(nodes[i].at) > measure(nodes[best].at)) best = i;
    }
    return best;
  };
  const std::size_t first = farthest([&](const Point& at) { return square_distance(at, centre); });
  const Point& a = nodes[first].at;
  const std::size_t second = farthest([&](const Point& at) { return square_distance(at, a); });
  const Matrix3 along = cross_matrix(difference(nodes[second].at, a));
  const std::size_t third = farthest([&](const Point& at) {
    const Point d = difference(at, a);
    double square = 0.0;
    for (const auto& row : along) {
      const double component = row[0] * d[0] + row[1] * d[1] + row[2] * d[2];
      square += component * component;
    }
    return square;
  });
  return {first, second, third};
}

Coupling average_coupling(const std::vector<InterfaceNode>& nodes, const Point& reference,
                          const RowIndex& rows) {
  const Point centre = centre_of(nodes);
  const Matrix3 inverse = inverse_inertia(inertia_of(nodes, centre));
  const Matrix3 to_reference = cross_matrix(difference(centre, reference));
  const double share = 1.0 / static_cast<double>(nodes.size());
  Coupling coupling;
  coupling.imposes = false;
  coupling.width = static_cast<int>(group_width);
  for (const InterfaceNode& node : nodes) {
    const Matrix3 rotation = product(inverse, cross_matrix(difference(node.at, centre)));
    Matrix3 translation = product(to_reference, rotation);  // r x (reference - centre)
    for (std::size_t k = 0; k < 3; ++k) translation[k][k] += share;
    Matrix3 translations{};
    Matrix3 rotations{};
    for (std::size_t i = 0; i < 3; ++i) {
      for (std::size_t k = 0; k < 3; ++k) {
        translations[i][k] = translation[k][i];
        rotations[i][k] = rotation[k][i];
      }
    }
    add_node(coupling, rows_of(node, rows), translations, rotations);
  }
  for (const std::size_t node : spread_nodes(nodes, centre)) {
    for (std::size_t axis = 0; axis < 3; ++axis) coupling.anchors.push_back(coupling.dofs[3 * node + axis]);
  }
  return coupling;
}

}  // namespace

InterfaceRequest parse_interface(const std::string& text) {
  const std::size_t colon = text.find(':');
  const auto kind = kind_of(text.substr(0, colon));
  if (colon == std::string::npos || !kind) {
    throw std::invalid_argument(
        "expected nodes:SET, rigid:SET or average:SET, of groups also with a reference point as "
        "rigid:SET@X,Y,Z, found " +
        quote(text));
  }
  InterfaceRequest request;
  request.kind = *kind;
  const std::size_t at = text.rfind('@');
  if (at != std::string::npos && at > colon) {
    request.reference = parse_point(text.substr(at + 1));
    if (request.kind == InterfaceKind::nodes) {
      throw std::invalid_argument("expected no reference point of single nodes, found " + quote(text));
    }
  }
  request.nodes = text.substr(colon + 1, request.reference ? at - colon - 1 : std::string::npos);
  if (request.nodes.empty()) throw std::invalid_argument("expected nodes of the interface " + quote(text));
  return request;
}

std::vector<int> ids_of_list(const std::string& nodes) {
  std::vector<int> ids;
  std::string_view rest = nodes;
  for (;;) {
    const std::size_t comma = rest.find(',');
    int id = 0;
    if (!parse_int(rest.substr(0, comma), id)) return {};
    ids.push_back(id);
    if (comma == std::string_view::npos) return ids;
    rest.remove_prefix(comma + 1);
  }
}

Point centre_of(const std::vector<InterfaceNode>& nodes) {
  Point centre{};
  for (const InterfaceNode& node : nodes) {
    for (std::size_t k = 0; k < 3; ++k) centre[k] += node.at[k] / static_cast<double>(nodes.size());
  }
  return centre;
}

RowIndex::RowIndex(const std::vector<DegreeOfFreedom>& dofs) {
  std::vector<int> ids;
  ids.reserve(dofs.size());
  for (const DegreeOfFreedom& dof : dofs) ids.push_back(dof.node);
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  nodes_ = IdIndex(ids);
  rows_.assign(3 * ids.size(), -1);
  for (std::size_t row = 0; row < dofs.size(); ++row) {
    const auto place = static_cast<std::size_t>(nodes_.find(dofs[row].node));
    rows_[3 * place + static_cast<std::size_t>(dofs[row].axis)] = static_cast<int>(row);
  }
}

int RowIndex::find(int node, int axis) const {
  const int place = nodes_.find(node);
  return place < 0 ? -1 : rows_[3 * static_cast<std::size_t>(place) + static_cast<std::size_t>(axis)];
}

std::vector<Coupling> couplings_of(InterfaceKind kind, const std::vector<InterfaceNode>& nodes,
                                   const Point& reference, const RowIndex& rows) {
  if (kind == InterfaceKind::rigid) return {rigid_coupling(nodes, reference, rows)};
  if (kind == InterfaceKind::average) return {average_coupling(nodes, reference, rows)};
  std::vector<Coupling> couplings;
  couplings.reserve(nodes.size());
  for (const InterfaceNode& node : nodes) couplings.push_back(coupling_of_node(node, rows));
  return couplings;
}

}  // namespace calculix
