// Modes are found as the largest 1/l of the inverse problem, which a singular mass matrix does not disturb:
// what has no mass has 1/l = 0. Large parts go through a Lanczos method with implicit restarts in the inner
// product of the mass (D. C. Sorensen, 1992), small ones through a dense solver.
#include "calculix/fixed_interface_modes.h"

#include <Spectra/SymGEigsShiftSolver.h>

#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>
#include <string>

#include "calculix/craig_bampton.h"

namespace calculix {

namespace {

using Eigen::Index;
using Eigen::MatrixXd;
using Eigen::VectorXd;

constexpr Index largest_dense = 400;
constexpr double tolerance = 1e-12;  // of the sought 1/l
constexpr int most_restarts = 300;

// 1/l below this part of the largest belongs to what has no mass.
constexpr double smallest_share = 1e-13;

[[noreturn]] void fail_too_few(Index found, int count) {
  throw ReductionError("the part with held interfaces has " + std::to_string(found) +
                       " modes of finite frequency, " + std::to_string(count) + " were asked for");
}

// Multiplies by s M, where s brings the largest of the sought values to about one: the method has absolute
// thresholds.
class MassProduct {
 public:
  using Scalar = double;
  MassProduct(const UpperMatrix& mass, double scale) : mass_(mass), scale_(scale) {}
  Index rows() const { return mass_.rows(); }
  Index cols() const { return mass_.rows(); }
  void perform_op(const double* in, double* out) const {
    Eigen::Map<VectorXd> product(out, rows());
    product = mass_.selfadjointView<Eigen::Upper>() * Eigen::Map<const VectorXd>(in, rows());
    product *= scale_;
  }

 private:
  const UpperMatrix& mass_;
  double scale_;
};

class StaticSolution {
 public:
  using Scalar = double;
  explicit StaticSolution(const ConstrainedSolver& solver)
      : solver_(solver), no_values_(MatrixXd::Zero(solver.constraints(), 1)) {}
  Index rows() const { return solver_.size(); }
  Index cols() const { return solver_.size(); }
  void set_shift(double) {}
  void perform_op(const double* in, double* out) const {
    Eigen::Map<MatrixXd>(out, rows(), 1) =
        solver_.solve(Eigen::Map<const MatrixXd>(in, rows(), 1), no_values_);
  }

 private:
  const ConstrainedSolver& solver_;
  MatrixXd no_values_;
};

VectorXd inverse_step(const ConstrainedSolver& solver, const UpperMatrix& mass, const VectorXd& x) {
  const VectorXd forces = mass.selfadjointView<Eigen::Upper>() * x;
  return solver.solve(forces, MatrixXd::Zero(solver.constraints(), 1));
}

double modal_mass(const UpperMatrix& mass, const VectorXd& x) {
  return x.dot(mass.selfadjointView<Eigen::Upper>() * x);
}

// A start with something of every mode, the same in every run.
VectorXd mixed_vector(Index size) {
  VectorXd x(size);
  unsigned state = 1;
  for (Index i = 0; i < size; ++i) {
    state = state * 1664525U + 1013904223U;  // of W. H. Press and others, 1992
    x[i] = static_cast<double>(state >> 8) / 16777216.0 - 0.5;
  }
  return x;
}

// With A = 0 solved by the null space Z of A:  (Z^T M Z) y = t (Z^T K Z) y.
MatrixXd dense_modes(const ConstrainedSolver& solver, const UpperMatrix& mass, int count) {
  const Index size = solver.size();
  const Index free = size - solver.constraints();
  MatrixXd basis = MatrixXd::Identity(size, size);
  if (solver.constraints() > 0) {
    const Eigen::ColPivHouseholderQR<MatrixXd> qr{MatrixXd(solver.transposed_constraints())};
    basis = MatrixXd(qr.householderQ() * MatrixXd::Identity(size, size)).rightCols(free);
  }
  if (count > free) fail_too_few(free, count);
  const MatrixXd k = basis.transpose() * (solver.stiffness().selfadjointView<Eigen::Upper>() * basis);
  const MatrixXd m = basis.transpose() * (mass.selfadjointView<Eigen::Upper>() * basis);
  const Eigen::GeneralizedSelfAdjointEigenSolver<MatrixXd> eigen(m, k);
  if (eigen.info() != Eigen::Success) throw ReductionError("the modes with held interfaces were not found");
  const VectorXd& shares = eigen.eigenvalues();  // ascending 1/l
  const double least = smallest_share * static_cast<double>(free) * std::max(shares[free - 1], 0.0);
  const Index found = (shares.array() > least).count();
  if (count > found) fail_too_few(found, count);
  return basis * eigen.eigenvectors().rightCols(count).rowwise().reverse();
}

MatrixXd lanczos_modes(const ConstrainedSolver& solver, const UpperMatrix& mass, int count) {
  VectorXd start = inverse_step(solver, mass, mixed_vector(solver.size()));
  const VectorXd next = inverse_step(solver, mass, start);
  const double square = modal_mass(mass, start);
  const double next_square = modal_mass(mass, next);
  if (!(square > 0.0) || !(next_square > 0.0)) fail_too_few(0, count);
  MassProduct product(mass, std::sqrt(square / next_square));
  StaticSolution solution(solver);
  const Index basis = std::min<Index>(solver.size(), std::max<Index>(2 * count + 10, 30));
  Spectra::SymGEigsShiftSolver<StaticSolution, MassProduct, Spectra::GEigsMode::ShiftInvert> eigen(
      solution, product, count, basis, 0.0);
  eigen.init(next.data());
  eigen.compute(Spectra::SortRule::LargestMagn, most_restarts, tolerance, Spectra::SortRule::SmallestAlge);
  if (eigen.info() != Spectra::CompInfo::Successful) {
    throw ReductionError("the modes with held interfaces were not found; ask for fewer");
  }
  return eigen.eigenvectors();
}

// One more inverse step clears a vector of what has no mass and so no part in the inner product (B.
// Nour-Omid, B. N. Parlett, T. Ericsson and P. S. Jensen, 1987).
void purify(const ConstrainedSolver& solver, const UpperMatrix& mass, MatrixXd& modes) {
  for (Index i = 0; i < modes.cols(); ++i) {
    const VectorXd x = inverse_step(solver, mass, modes.col(i));
    modes.col(i) = x / std::sqrt(modal_mass(mass, x));
  }
}

}  // namespace

MatrixXd fixed_interface_modes(const ConstrainedSolver& solver, const UpperMatrix& mass, int count) {
  if (count == 0) return MatrixXd(solver.size(), 0);
  if (solver.size() <= solver.constraints()) fail_too_few(0, count);
  const bool small = solver.size() <= largest_dense || solver.size() < 3 * static_cast<Index>(count);
  MatrixXd modes = small ? dense_modes(solver, mass, count) : lanczos_modes(solver, mass, count);
  purify(solver, mass, modes);
  if (!modes.allFinite())
    throw ReductionError("the modes with held interfaces were not found; ask for fewer");
  return modes;
}

}  // namespace calculix
