// Component modes of a part from its matrices (R. R. Craig and M. C. C. Bampton, 1968): the static shapes
// that belong to unit values of the interface coordinates, and the normal modes with the interfaces held.
//
// An interface either imposes the displacements of its degrees of freedom, u = F q, or has their weighted
// sums as coordinates, q = F^T u. Those that impose leave the equations; the others are linear constraints
// with Lagrange multipliers, whose forces are spread over the group.
#ifndef FMDTOOLKIT_CALCULIX_CRAIG_BAMPTON_H
#define FMDTOOLKIT_CALCULIX_CRAIG_BAMPTON_H

#include <cstddef>
#include <functional>
#include <stdexcept>
#include <vector>

#include "calculix/sparse_matrix.h"

namespace calculix {

struct Coupling {
  bool imposes = true;
  int width = 0;                // coordinates
  std::vector<int> dofs;        // rows of the matrices, in no other coupling
  std::vector<double> factors;  // F, dofs by width, row by row
  std::vector<int> anchors;  // of one that does not impose: some of its dofs that hold all six rigid motions
};

struct ReducedModel {
  int dofs = 0;
  int constraint_modes = 0;
  int modes = 0;  // constraint modes in the order of the couplings, then those with held interfaces
  std::vector<double> vectors;    // dofs by modes, column by column
  std::vector<double> mass;       // modes by modes
  std::vector<double> stiffness;  // modes by modes

  double* vector(int mode) {
    return vectors.data() + static_cast<std::size_t>(mode) * static_cast<std::size_t>(dofs);
  }
  const double* vector(int mode) const {
    return vectors.data() + static_cast<std::size_t>(mode) * static_cast<std::size_t>(dofs);
  }
};

// Why there is no reduced model.
class ReductionError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// The mass matrix may be singular. The modes with held interfaces have unit modal mass and ascending
// frequencies. The step is told before it begins. Throws ReductionError.
ReducedModel craig_bampton(const SymmetricMatrix& stiffness, const SymmetricMatrix& mass,
                           const std::vector<Coupling>& couplings, int fixed_modes,
                           const std::function<void(const char* step)>& progress);

}  // namespace calculix

#endif
