#include "calculix/constrained_solver.h"

#include <string>

#include "calculix/craig_bampton.h"

namespace calculix {

namespace {

// A motion that nothing resists leaves a pivot of rounding size, about 1e-12 of its diagonal entry with
// matrices of 14 digits; slender parts come down to 1e-10.
constexpr double smallest_pivot = 1e-11;

[[noreturn]] void fail_unheld() {
  throw ReductionError(
      "the stiffness matrix is singular with all interfaces held: the interfaces do not hold the part, or a "
      "piece of it is loose");
}

}  // namespace

ConstrainedSolver::ConstrainedSolver(const UpperMatrix& stiffness,
                                     const Eigen::SparseMatrix<double>& transposed_constraints,
                                     const std::vector<int>& anchors)
    : stiffness_(stiffness), transposed_constraints_(transposed_constraints) {
  factorise(anchors);
  add_low_rank(anchors);
}

void ConstrainedSolver::factorise(const std::vector<int>& anchors) {
  UpperMatrix held = stiffness_;
  springs_.resize(static_cast<Eigen::Index>(anchors.size()));
  for (std::size_t i = 0; i < anchors.size(); ++i) {
    const double spring = stiffness_.coeff(anchors[i], anchors[i]);
    springs_[static_cast<Eigen::Index>(i)] = spring;
    held.coeffRef(anchors[i], anchors[i]) += spring;
  }
  if (size() == 0) return;
  factor_.compute(held);
  if (factor_.info() != Eigen::Success) fail_unheld();
  const Eigen::VectorXd diagonal = factor_.permutationP() * Eigen::VectorXd(held.diagonal());
  const Eigen::VectorXd pivots = factor_.vectorD();
  for (Eigen::Index i = 0; i < size(); ++i) {
    if (!(pivots[i] > smallest_pivot * diagonal[i])) fail_unheld();
  }
}

// With B = (A^T E), spring forces w = S E^T u and z = (m, w):  K_held u = f + B z,  A u = g,  E^T u = S^-1 w.
void ConstrainedSolver::add_low_rank(const std::vector<int>& anchors) {
  const Eigen::Index columns = constraints() + springs_.size();
  low_rank_.resize(size(), columns);
  low_rank_.leftCols(constraints()) = transposed_constraints_;
  for (std::size_t i = 0; i < anchors.size(); ++i) {
    low_rank_.insert(anchors[i], constraints() + static_cast<Eigen::Index>(i)) = 1.0;
  }
  low_rank_.makeCompressed();
  if (columns == 0) return;
  response_ = factor_.solve(Eigen::MatrixXd(low_rank_));
  Eigen::MatrixXd small = low_rank_.transpose() * response_;
  small.diagonal().tail(springs_.size()) -= springs_.cwiseInverse();
  small_.compute(small);
  if (!small_.isInvertible()) fail_unheld();
}

Eigen::MatrixXd ConstrainedSolver::solve(const Eigen::MatrixXd& forces, const Eigen::MatrixXd& values,
                                         Eigen::MatrixXd& multipliers) const {
  Eigen::MatrixXd u = factor_.solve(forces);
  if (low_rank_.cols() == 0) return u;
  Eigen::MatrixXd right = -(low_rank_.transpose() * u);
  right.topRows(constraints()) += values;
  const Eigen::MatrixXd z = small_.solve(right);
  u.noalias() += response_ * z;
  multipliers = z.topRows(constraints());
  return u;
}

Eigen::MatrixXd ConstrainedSolver::solve(const Eigen::MatrixXd& forces, const Eigen::MatrixXd& values) const {
  Eigen::MatrixXd multipliers;
  return solve(forces, values, multipliers);
}

Eigen::MatrixXd ConstrainedSolver::solve_refined(const Eigen::MatrixXd& forces,
                                                 const Eigen::MatrixXd& values) const {
  Eigen::MatrixXd multipliers(constraints(), forces.cols());
  Eigen::MatrixXd u = solve(forces, values, multipliers);
  const Eigen::MatrixXd residual =
      forces + transposed_constraints_ * multipliers - stiffness_.selfadjointView<Eigen::Upper>() * u;
  const Eigen::MatrixXd gap = values - transposed_constraints_.transpose() * u;
  return u + solve(residual, gap);
}

}  // namespace calculix
