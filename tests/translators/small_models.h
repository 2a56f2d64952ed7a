// Small structures as dense matrices, whose solutions are known or can be worked out densely.
#ifndef FMDTOOLKIT_TESTS_SMALL_MODELS_H
#define FMDTOOLKIT_TESTS_SMALL_MODELS_H

#include <cstddef>
#include <vector>

#include "calculix/interfaces.h"

namespace fmdtest {

struct DenseMatrix {
  explicit DenseMatrix(int n)
      : size(n), values(static_cast<std::size_t>(n) * static_cast<std::size_t>(n), 0.0) {}
  double& at(int row, int column) {
    return values[static_cast<std::size_t>(column) * static_cast<std::size_t>(size) +
                  static_cast<std::size_t>(row)];
  }
  double at(int row, int column) const { return const_cast<DenseMatrix*>(this)->at(row, column); }

  int size;
  std::vector<double> values;
};

struct Structure {
  DenseMatrix stiffness;
  DenseMatrix mass;
};

calculix::SymmetricMatrix sparse(const DenseMatrix& matrix);

// So many equal masses in a line, one degree of freedom each, equal springs between neighbours.
Structure chain(int masses, double spring, double mass);

// Pin-jointed bars between all pairs of nodes, so that only rigid motions are free, and a different mass at
// each node. The one of a shape of its own has nodes from 11.
Structure truss_of(const std::vector<calculix::InterfaceNode>& nodes);
std::vector<calculix::DegreeOfFreedom> dofs_of(const std::vector<calculix::InterfaceNode>& nodes);
std::vector<calculix::InterfaceNode> truss_nodes();
Structure truss();
std::vector<calculix::DegreeOfFreedom> truss_dofs();

// K and A^T beside each other over A and zeros, or M alone in a matrix of that size.
DenseMatrix bordered(const DenseMatrix& matrix, const std::vector<std::vector<double>>& constraints);

// The six sums of a coupling that does not impose, each over all degrees of freedom.
std::vector<std::vector<double>> constraints_of(const calculix::Coupling& coupling, int size);

}  // namespace fmdtest

#endif
