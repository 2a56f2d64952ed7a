// Solves K u = f + A^T m with A u = g: a part in equilibrium whose weighted sums of displacements are given.
// K may be singular where only the sums hold the part.
//
// K is factorised with a spring at each anchor, which holds it. The springs and the constraints form a dense
// system of low rank that takes the springs out again and puts the constraints in (J. Sherman and
// W. J. Morrison, 1950; M. A. Woodbury, 1950), so that the pattern of K stays as it is.
#ifndef FMDTOOLKIT_CALCULIX_CONSTRAINED_SOLVER_H
#define FMDTOOLKIT_CALCULIX_CONSTRAINED_SOLVER_H

#include <Eigen/Dense>
#include <Eigen/SparseCholesky>
#include <vector>

namespace calculix {

using UpperMatrix = Eigen::SparseMatrix<double>;  // of a symmetric one the upper triangle

class ConstrainedSolver {
 public:
  // The transpose of A has a column for each constraint. Throws ReductionError where the part can still move.
  ConstrainedSolver(const UpperMatrix& stiffness, const Eigen::SparseMatrix<double>& transposed_constraints,
                    const std::vector<int>& anchors);

  Eigen::Index size() const { return stiffness_.rows(); }
  Eigen::Index constraints() const { return transposed_constraints_.cols(); }

  // u for f and g, a column for each case.
  Eigen::MatrixXd solve(const Eigen::MatrixXd& forces, const Eigen::MatrixXd& values) const;

  // The same, and once more for what the residual leaves.
  Eigen::MatrixXd solve_refined(const Eigen::MatrixXd& forces, const Eigen::MatrixXd& values) const;

 private:
  void factorise(const std::vector<int>& anchors);
  void add_low_rank(const std::vector<int>& anchors);
  Eigen::MatrixXd solve(const Eigen::MatrixXd& forces, const Eigen::MatrixXd& values,
                        Eigen::MatrixXd& multipliers) const;

  const UpperMatrix& stiffness_;
  Eigen::SparseMatrix<double> transposed_constraints_;
  Eigen::SimplicialLDLT<UpperMatrix, Eigen::Upper> factor_;
  Eigen::VectorXd springs_;               // stiffness at each anchor
  Eigen::SparseMatrix<double> low_rank_;  // A^T and a unit vector for each anchor
  Eigen::MatrixXd response_;              // of the held part to the columns of low_rank_
  Eigen::FullPivLU<Eigen::MatrixXd> small_;
};

}  // namespace calculix

#endif
