// Modes are found as the largest 1/l of the inverse problem, which a singular mass matrix does not disturb:
// what has no mass has 1/l = 0. Many masses go through a Lanczos method with implicit restarts in the inner
// product of the mass (D. C. Sorensen, 1992), few through a dense solver.
#include "calculix/fixed_interface_modes.h"

#include <Spectra/SymGEigsShiftSolver.h>

#include <Eigen/Eigenvalues>
#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <string>
#include <vector>

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

[[noreturn]] void fail_to_find() {
  throw ReductionError("the modes with held interfaces were not found; ask for fewer");
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

// A unit column for each of the places.
MatrixXd selection(Index size, const std::vector<Index>& places) {
  MatrixXd columns = MatrixXd::Zero(size, static_cast<Index>(places.size()));
  for (std::size_t i = 0; i < places.size(); ++i) columns(places[i], static_cast<Index>(i)) = 1.0;
  return columns;
}

// The degrees of freedom that have mass.
std::vector<Index> massive_dofs(const UpperMatrix& mass) {
  std::vector<char> massive(static_cast<std::size_t>(mass.cols()), 0);
  for (Index column = 0; column < mass.cols(); ++column) {
    for (UpperMatrix::InnerIterator entry(mass, column); entry; ++entry) {
      if (entry.value() == 0.0) continue;
      massive[static_cast<std::size_t>(entry.row())] = massive[static_cast<std::size_t>(column)] = 1;
    }
  }
  std::vector<Index> dofs;
  for (Index i = 0; i < mass.cols(); ++i) {
    if (massive[static_cast<std::size_t>(i)] != 0) dofs.push_back(i);
  }
  return dofs;
}

// With M = L L^T, taken from its eigenvalues so that it may be singular, and P the static solution with held
// interfaces:  (L^T P L) y = y / l  and x = P L y.
MatrixXd dense_modes(const ConstrainedSolver& solver, const UpperMatrix& mass,
                     const std::vector<Index>& massive, int count) {
  const auto size = static_cast<Index>(massive.size());
  if (size < count) fail_too_few(size, count);
  const MatrixXd full = mass.selfadjointView<Eigen::Upper>() * selection(mass.cols(), massive);
  const Eigen::SelfAdjointEigenSolver<MatrixXd> of_mass(full(massive, Eigen::all));
  const VectorXd roots = of_mass.eigenvalues().cwiseMax(0.0).cwiseSqrt();
  const MatrixXd factor = of_mass.eigenvectors() * roots.asDiagonal();
  MatrixXd forces = MatrixXd::Zero(solver.size(), size);
  forces(massive, Eigen::all) = factor;
  const MatrixXd response = solver.solve(forces, MatrixXd::Zero(solver.constraints(), size));
  const MatrixXd product = factor.transpose() * response(massive, Eigen::all);
  const Eigen::SelfAdjointEigenSolver<MatrixXd> eigen(0.5 * (product + product.transpose()));
  if (of_mass.info() != Eigen::Success || eigen.info() != Eigen::Success) fail_to_find();
  const VectorXd& shares = eigen.eigenvalues();  // 1/l, ascending
  const double least = smallest_share * static_cast<double>(size) * std::max(shares[size - 1], 0.0);
  const Index found = (shares.array() > least).count();
  if (count > found) fail_too_few(found, count);
  return response * eigen.eigenvectors().rightCols(count).rowwise().reverse();
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
  try {
    eigen.init(next.data());
    eigen.compute(Spectra::SortRule::LargestMagn, most_restarts, tolerance, Spectra::SortRule::SmallestAlge);
  } catch (const std::runtime_error&) {  // of the eigenvalues of a small matrix inside
    fail_to_find();
  }
  if (eigen.info() != Spectra::CompInfo::Successful) fail_to_find();
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
  const std::vector<Index> massive = massive_dofs(mass);
  const auto rank = static_cast<Index>(massive.size());  // of the mass at most
  const bool small = rank <= largest_dense || rank < 3 * static_cast<Index>(count);
  MatrixXd modes = small ? dense_modes(solver, mass, massive, count) : lanczos_modes(solver, mass, count);
  purify(solver, mass, modes);
  if (!modes.allFinite()) fail_to_find();
  return modes;
}

}  // namespace calculix
