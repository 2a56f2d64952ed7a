#include "calculix/craig_bampton.h"

#include <Eigen/Dense>
#include <Eigen/Sparse>
#include <algorithm>

#include "calculix/constrained_solver.h"
#include "calculix/fixed_interface_modes.h"

namespace calculix {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Triplets = std::vector<Eigen::Triplet<double>>;

constexpr int columns_at_once = 16;

Eigen::Map<const UpperMatrix> view(const SymmetricMatrix& matrix) {
  return {matrix.size,          matrix.size,        static_cast<Index>(matrix.rows.size()),
          matrix.starts.data(), matrix.rows.data(), matrix.values.data()};
}

// Which degrees of freedom are imposed and which are left as unknowns.
class Partition {
 public:
  Partition(int dofs, const std::vector<Coupling>& couplings) : place_(static_cast<std::size_t>(dofs), 0) {
    for (const Coupling& coupling : couplings) {
      if (!coupling.imposes) continue;
      for (const int dof : coupling.dofs) place_[static_cast<std::size_t>(dof)] = imposed;
    }
    for (int dof = 0; dof < dofs; ++dof) {
      int& place = place_[static_cast<std::size_t>(dof)];
      if (place == imposed) continue;
      place = static_cast<int>(unknowns_.size());
      unknowns_.push_back(dof);
    }
  }

  // The place among the unknowns, or below 0.
  int place(int dof) const { return place_[static_cast<std::size_t>(dof)]; }
  const std::vector<int>& unknowns() const { return unknowns_; }
  Index size() const { return static_cast<Index>(unknowns_.size()); }

  UpperMatrix among_unknowns(const SymmetricMatrix& matrix) const {
    Triplets entries;
    for (int column = 0; column < matrix.size; ++column) {
      if (place(column) < 0) continue;
      const auto c = static_cast<std::size_t>(column);
      for (auto i = static_cast<std::size_t>(matrix.starts[c]);
           i < static_cast<std::size_t>(matrix.starts[c + 1]); ++i) {
        if (place(matrix.rows[i]) >= 0) {
          entries.emplace_back(place(matrix.rows[i]), place(column), matrix.values[i]);
        }
      }
    }
    UpperMatrix result(size(), size());
    result.setFromTriplets(entries.begin(), entries.end());
    return result;
  }

  MatrixXd rows_of_unknowns(const MatrixXd& full) const { return full(unknowns_, Eigen::all); }

 private:
  static constexpr int imposed = -1;
  std::vector<int> place_;
  std::vector<int> unknowns_;
};

double factor(const Coupling& coupling, std::size_t dof, int coordinate) {
  return coupling
      .factors[dof * static_cast<std::size_t>(coupling.width) + static_cast<std::size_t>(coordinate)];
}

// F of the couplings that do not impose, side by side.
Eigen::SparseMatrix<double> constraint_columns(const std::vector<Coupling>& couplings,
                                               const Partition& partition) {
  Triplets entries;
  int column = 0;
  for (const Coupling& coupling : couplings) {
    if (coupling.imposes) continue;
    for (std::size_t i = 0; i < coupling.dofs.size(); ++i) {
      for (int k = 0; k < coupling.width; ++k) {
        entries.emplace_back(partition.place(coupling.dofs[i]), column + k, factor(coupling, i, k));
      }
    }
    column += coupling.width;
  }
  Eigen::SparseMatrix<double> result(partition.size(), column);
  result.setFromTriplets(entries.begin(), entries.end());
  return result;
}

std::vector<int> anchors_of(const std::vector<Coupling>& couplings, const Partition& partition) {
  std::vector<int> anchors;
  for (const Coupling& coupling : couplings) {
    for (const int dof : coupling.anchors) anchors.push_back(partition.place(dof));
  }
  return anchors;
}

// One interface coordinate is one, all others zero.
struct UnitCase {
  const Coupling* coupling;
  int coordinate;
  int constraint;  // its row among the constraints; -1 where displacements are imposed
};

std::vector<UnitCase> unit_cases(const std::vector<Coupling>& couplings) {
  std::vector<UnitCase> cases;
  int constraint = 0;
  for (const Coupling& coupling : couplings) {
    for (int k = 0; k < coupling.width; ++k) {
      cases.push_back({&coupling, k, coupling.imposes ? -1 : constraint++});
    }
  }
  return cases;
}

class Reduction {
 public:
  Reduction(const SymmetricMatrix& stiffness, const SymmetricMatrix& mass,
            const std::vector<Coupling>& couplings)
      : stiffness_(stiffness),
        mass_(mass),
        cases_(unit_cases(couplings)),
        partition_(stiffness.size, couplings),
        inner_stiffness_(partition_.among_unknowns(stiffness)),
        solver_(inner_stiffness_, constraint_columns(couplings, partition_),
                anchors_of(couplings, partition_)) {}

  ReducedModel make(int fixed_modes, const std::function<void(const char*)>& progress);

 private:
  MatrixXd constraint_modes(Index first, Index count) const;
  void add_fixed_modes(int count, Eigen::Map<MatrixXd> modes) const;
  static void project(const SymmetricMatrix& matrix, const Eigen::Map<MatrixXd>& modes,
                      std::vector<double>& result);

  const SymmetricMatrix& stiffness_;
  const SymmetricMatrix& mass_;
  std::vector<UnitCase> cases_;
  Partition partition_;
  UpperMatrix inner_stiffness_;
  ConstrainedSolver solver_;
};

// Static shapes of unit cases: the imposed displacements load the unknowns with -K u.
MatrixXd Reduction::constraint_modes(Index first, Index count) const {
  MatrixXd full = MatrixXd::Zero(stiffness_.size, count);
  MatrixXd values = MatrixXd::Zero(solver_.constraints(), count);
  for (Index c = 0; c < count; ++c) {
    const UnitCase& unit = cases_[static_cast<std::size_t>(first + c)];
    if (unit.constraint >= 0) {
      values(unit.constraint, c) = 1.0;
      continue;
    }
    for (std::size_t i = 0; i < unit.coupling->dofs.size(); ++i) {
      full(unit.coupling->dofs[i], c) = factor(*unit.coupling, i, unit.coordinate);
    }
  }
  if (solver_.size() == 0) return full;
  const MatrixXd forces = -(view(stiffness_).selfadjointView<Eigen::Upper>() * full);
  full(partition_.unknowns(), Eigen::all) =
      solver_.solve_refined(partition_.rows_of_unknowns(forces), values);
  return full;
}

void Reduction::add_fixed_modes(int count, Eigen::Map<MatrixXd> modes) const {
  const UpperMatrix mass = partition_.among_unknowns(mass_);
  modes.setZero();
  modes(partition_.unknowns(), Eigen::all) = fixed_interface_modes(solver_, mass, count);
}

// P^T X P, the same on both sides of the diagonal to the last bit.
void Reduction::project(const SymmetricMatrix& matrix, const Eigen::Map<MatrixXd>& modes,
                        std::vector<double>& result) {
  const Index size = modes.cols();
  result.resize(static_cast<std::size_t>(size * size));
  Eigen::Map<MatrixXd> small(result.data(), size, size);
  for (Index first = 0; first < size; first += columns_at_once) {
    const Index count = std::min<Index>(columns_at_once, size - first);
    const MatrixXd product = view(matrix).selfadjointView<Eigen::Upper>() * modes.middleCols(first, count);
    small.middleCols(first, count).noalias() = modes.transpose() * product;
  }
  const MatrixXd mean = 0.5 * (small + small.transpose());
  small = mean;
}

ReducedModel Reduction::make(int fixed_modes, const std::function<void(const char*)>& progress) {
  ReducedModel result;
  result.dofs = stiffness_.size;
  result.constraint_modes = static_cast<int>(cases_.size());
  result.modes = result.constraint_modes + fixed_modes;
  result.vectors.resize(static_cast<std::size_t>(result.dofs) * static_cast<std::size_t>(result.modes));
  Eigen::Map<MatrixXd> modes(result.vectors.data(), result.dofs, result.modes);
  if (progress) progress("Solving constraint modes");
  for (Index first = 0; first < result.constraint_modes; first += columns_at_once) {
    const Index count = std::min<Index>(columns_at_once, result.constraint_modes - first);
    modes.middleCols(first, count) = constraint_modes(first, count);
  }
  if (progress) progress("Solving fixed-interface modes");
  add_fixed_modes(fixed_modes,
                  Eigen::Map<MatrixXd>(result.vector(result.constraint_modes), result.dofs, fixed_modes));
  if (progress) progress("Projecting matrices");
  project(mass_, modes, result.mass);
  project(stiffness_, modes, result.stiffness);
  return result;
}

}  // namespace

ReducedModel craig_bampton(const SymmetricMatrix& stiffness, const SymmetricMatrix& mass,
                           const std::vector<Coupling>& couplings, int fixed_modes,
                           const std::function<void(const char*)>& progress) {
  if (progress) progress("Factorising");
  return Reduction(stiffness, mass, couplings).make(fixed_modes, progress);
}

}  // namespace calculix
