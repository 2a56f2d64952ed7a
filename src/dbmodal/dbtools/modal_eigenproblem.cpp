#include "dbmodal/dbtools/modal_eigenproblem.h"

#include <utility>

#include "dbmodal/dbtools/eigenvalue_table.h"
#include "dbmodal/dbtools/mode_records.h"
#include "dbmodal/dbtools/orthonormal_kernels.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

using Getter = int (*)(FmdBody*, double*, int);

// The full matrix. All that can fail is the memory that the getter needs, of which it says nothing.
bool load_matrix(FmdBody* body, Getter get, double* matrix) {
  if (get(body, matrix, body->ModeCount) != 0) return true;
  report_allocation_failure("dbtools");
  return false;
}

// Arrays of the solution. Symmetric matrices lie alike by rows and by columns; the solver leaves its vectors
// in the columns of z.
class Eigenproblem {
 public:
  bool allocate(int modes);
  bool load(FmdBody* body);
  // Solves and leaves the pairs ascending.
  void solve();
  // Vectors by row, and the eigenvalues.
  void deliver(double* t, double* eigenvalues) const;
  // Makes t orthonormal in the mass, and finds the stiffness of its columns. Both matrices are loaded anew,
  // as the solver has worked on them in place.
  bool orthonormalise(FmdBody* body, double* t);

  double* eigenvalues() { return alfr_.get(); }
  double* quotients() { return alfi_.get(); }

 private:
  void take_eigenvalue(std::size_t i);

  int n_ = 0;
  CArray<double> z_;
  CArray<double> stiffness_;
  CArray<double> mass_;
  CArray<double> alfr_;
  CArray<double> alfi_;
  CArray<double> beta_;
  CArray<Eigenpair> pairs_;
  CArray<double> scratch_;
};

bool Eigenproblem::allocate(int modes) {
  n_ = modes;
  const std::int64_t square = std::int64_t{modes} * modes;
  for (CArray<double>* matrix : {&z_, &stiffness_, &mass_}) {
    *matrix = fmd::allocate<double>(square, "dbtools");
    if (*matrix == nullptr) return false;
  }
  for (CArray<double>* vector : {&alfr_, &alfi_, &beta_}) {
    *vector = fmd::allocate<double>(modes, "dbtools");
    if (*vector == nullptr) return false;
  }
  pairs_ = fmd::allocate<Eigenpair>(modes, "dbtools");
  if (pairs_ == nullptr) return false;
  scratch_ = fmd::allocate<double>(std::int64_t{3} * modes, "dbtools");
  return scratch_ != nullptr;
}

bool Eigenproblem::load(FmdBody* body) {
  return load_matrix(body, FMD_GenStiffFull, stiffness_.get()) &&
         load_matrix(body, FMD_GenMassFull, mass_.get());
}

// What is not a real finite number is told of, and made one as far as it goes.
void Eigenproblem::take_eigenvalue(std::size_t i) {
  const int mode = static_cast<int>(i) + 1;
  double value = alfr_[i] / beta_[i];
  if (alfi_[i] != 0.0) {
    FMD_Warning(
        "Flexible component is not physically meaningful\nIt contains an eigenvalue with a nonzero imaginary "
        "part, %lf\nThis imaginary part is being ignored.  Please verify that this is acceptable.",
        alfi_[i] / beta_[i]);
  } else if (beta_[i] == 0.0) {
    FMD_Warning(
        "Mode %d is not physically meaningful\nIt contains an infinite eigenvalue.  Ignoring this mode.\n",
        mode);
    value = kInfiniteEigenvalue;
  }
  pairs_[i] = {value, mode - 1};
}

void Eigenproblem::solve() {
  int n = n_;
  int with_vectors = 1;
  double default_tolerance = 0.0;
  // A solver that gave up early leaves what it has; it goes on from there.
  int unfinished = 0;
  FMD_Info("  (Finding upper Hessenberg and upper triangular forms)");
  FMD_QZHESS(&n, &n, stiffness_.get(), mass_.get(), &with_vectors, z_.get());
  FMD_Info("  (Converting upper Hessenberg form to quasi-upper triangular)");
  FMD_QZITT(&n, &n, stiffness_.get(), mass_.get(), &default_tolerance, &with_vectors, z_.get(), &unfinished);
  FMD_Info("  (Calculating Eigenvalues)");
  FMD_QZVALL(&n, &n, stiffness_.get(), mass_.get(), alfr_.get(), alfi_.get(), beta_.get(), &with_vectors,
             z_.get());
  FMD_Info("  (Calculating Eigenvectors)");
  FMD_QZVECC(&n, &n, stiffness_.get(), mass_.get(), alfr_.get(), alfi_.get(), beta_.get(), z_.get());
  for (std::size_t i = 0; i < static_cast<std::size_t>(n_); ++i) take_eigenvalue(i);
  sort_eigenpairs(pairs_.get(), n_);
}

void Eigenproblem::deliver(double* t, double* eigenvalues) const {
  gather_vectors(z_.get(), pairs_.get(), n_, t);
  for (std::size_t i = 0; i < static_cast<std::size_t>(n_); ++i) eigenvalues[i] = pairs_[i].value;
}

bool Eigenproblem::orthonormalise(FmdBody* body, double* t) {
  if (!load(body)) return false;
  FMD_Info("\n  Applying Gram-Schmidt to eigenvectors \n ");
  // Vectors of nearly equal eigenvalues may be nearly parallel, and one pass then loses as many digits as
  // their angle squared. Once more, from vectors that are nearly orthonormal, is enough (L. Giraud, J. Langou
  // and M. Rozloznik, Comput. Math. Appl. 50, 2005). The solver's vectors are in t, and their place is free.
  gram_schmidt(mass_.get(), t, n_, z_.get(), scratch_.get());
  gram_schmidt(mass_.get(), z_.get(), n_, t, scratch_.get());
  rayleigh_quotients(stiffness_.get(), t, n_, quotients(), scratch_.get());
  return true;
}

}  // namespace

bool solve_modal_eigenproblem(FmdBody* body, double* t) {
  FMD_Info("\nSolving Generalized Eigenvalue Problem to orthogonalize mode shapes.");
  const int modes = body->ModeCount;
  Eigenproblem problem;
  NewModeRecords made;
  if (!problem.allocate(modes) || !made.allocate(modes) || !problem.load(body)) return false;
  const double consistency = FMD_UCF(body);
  problem.solve();
  problem.deliver(t, problem.eigenvalues());
  report_eigenvalues(problem.eigenvalues(), modes, consistency);
  if (!problem.orthonormalise(body, t)) return false;
  fill_orthonormal_records(problem.eigenvalues(), problem.quotients(), modes, consistency,
                           made.records.get());
  take_over_records(*body, std::move(made));
  return true;
}

}  // namespace fmd
