#include "translators/small_models.h"

#include <cmath>

namespace fmdtest {

calculix::SymmetricMatrix sparse(const DenseMatrix& matrix) {
  calculix::SymmetricMatrix result;
  result.size = matrix.size;
  result.starts.push_back(0);
  for (int column = 0; column < matrix.size; ++column) {
    for (int row = 0; row <= column; ++row) {
      if (row != column && matrix.at(row, column) == 0.0) continue;
      result.rows.push_back(row);
      result.values.push_back(matrix.at(row, column));
    }
    result.starts.push_back(static_cast<int>(result.rows.size()));
  }
  return result;
}

Structure chain(int masses, double spring, double mass) {
  Structure structure{DenseMatrix(masses), DenseMatrix(masses)};
  for (int i = 0; i < masses; ++i) structure.mass.at(i, i) = mass;
  for (int i = 0; i + 1 < masses; ++i) {
    structure.stiffness.at(i, i) += spring;
    structure.stiffness.at(i + 1, i + 1) += spring;
    structure.stiffness.at(i, i + 1) -= spring;
    structure.stiffness.at(i + 1, i) -= spring;
  }
  return structure;
}

std::vector<calculix::InterfaceNode> truss_nodes() {
  return {{11, {0, 0, 0}}, {12, {3, 0.5, 0}}, {13, {0.25, 2, 0.5}}, {14, {3, 2.5, 1}},
          {15, {0, 0, 4}}, {16, {2.5, 0, 5}}, {17, {0.5, 2, 4.5}},  {18, {3, 3, 4}}};
}

std::vector<calculix::DegreeOfFreedom> dofs_of(const std::vector<calculix::InterfaceNode>& nodes) {
  std::vector<calculix::DegreeOfFreedom> dofs;
  for (const auto& node : nodes) {
    for (int axis = 0; axis < 3; ++axis) dofs.push_back({node.id, axis});
  }
  return dofs;
}

std::vector<calculix::DegreeOfFreedom> truss_dofs() {
  return dofs_of(truss_nodes());
}

Structure truss() {
  return truss_of(truss_nodes());
}

Structure truss_of(const std::vector<calculix::InterfaceNode>& nodes) {
  const int size = 3 * static_cast<int>(nodes.size());
  Structure structure{DenseMatrix(size), DenseMatrix(size)};
  for (int i = 0; i < size; ++i) structure.mass.at(i, i) = 1.0 + i / 3;
  for (std::size_t a = 0; a < nodes.size(); ++a) {
    for (std::size_t b = a + 1; b < nodes.size(); ++b) {
      double along[3];
      double square = 0.0;
      for (std::size_t k = 0; k < 3; ++k) {
        along[k] = nodes[b].at[k] - nodes[a].at[k];
        square += along[k] * along[k];
      }
      const double factor = 100.0 / (square * std::sqrt(square));
      for (int i = 0; i < 3; ++i) {
        for (int j = 0; j < 3; ++j) {
          const double value = factor * along[i] * along[j];
          const int p = 3 * static_cast<int>(a);
          const int q = 3 * static_cast<int>(b);
          structure.stiffness.at(p + i, p + j) += value;
          structure.stiffness.at(q + i, q + j) += value;
          structure.stiffness.at(p + i, q + j) -= value;
          structure.stiffness.at(q + i, p + j) -= value;
        }
      }
    }
  }
  return structure;
}

DenseMatrix bordered(const DenseMatrix& matrix, const std::vector<std::vector<double>>& constraints) {
  DenseMatrix result(matrix.size + static_cast<int>(constraints.size()));
  for (int row = 0; row < matrix.size; ++row) {
    for (int column = 0; column < matrix.size; ++column) result.at(row, column) = matrix.at(row, column);
  }
  for (std::size_t c = 0; c < constraints.size(); ++c) {
    for (int i = 0; i < matrix.size && !constraints[c].empty(); ++i) {
      const double value = constraints[c][static_cast<std::size_t>(i)];
      result.at(i, matrix.size + static_cast<int>(c)) = value;
      result.at(matrix.size + static_cast<int>(c), i) = value;
    }
  }
  return result;
}

std::vector<std::vector<double>> constraints_of(const calculix::Coupling& coupling, int size) {
  const auto width = static_cast<std::size_t>(coupling.width);
  std::vector<std::vector<double>> result(width, std::vector<double>(static_cast<std::size_t>(size), 0.0));
  for (std::size_t i = 0; i < coupling.dofs.size(); ++i) {
    for (std::size_t k = 0; k < width; ++k) {
      result[k][static_cast<std::size_t>(coupling.dofs[i])] = coupling.factors[i * width + k];
    }
  }
  return result;
}

}  // namespace fmdtest
