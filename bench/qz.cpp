// The generalized eigensolver with vectors beside LAPACK's dggev, the driver whose reduction works element by
// element as well. One thread. Random pairs, symmetric as a stiffness and a mass are and nonsymmetric, where
// most eigenvalues are complex.
//
// bench_qz [rounds at the largest order]
#include <cblas.h>
#include <fmdtoolkit/fmdtoolkit.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <random>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/environment.h"

extern "C" void dggev_(const char* jobvl, const char* jobvr, const int* n, double* a, const int* lda,
                       double* b, const int* ldb, double* alphar, double* alphai, double* beta, double* vl,
                       const int* ldvl, double* vr, const int* ldvr, double* work, const int* lwork,
                       int* info, std::size_t jobvl_length, std::size_t jobvr_length);

namespace {

using fmdbench::require;
using fmdbench::seconds;
using Matrix = std::vector<double>;  // by columns

constexpr double kMost = 2.0;
constexpr int kLargest = 300;

struct Pair {
  int n;
  Matrix a;
  Matrix b;
};

Matrix random_matrix(int n, std::mt19937& random) {
  std::normal_distribution<double> normal;
  Matrix m(static_cast<std::size_t>(n) * static_cast<std::size_t>(n));
  for (double& value : m) value = normal(random);
  return m;
}

// M^T M
Matrix squares(int n, const Matrix& m) {
  Matrix result(m.size());
  cblas_dgemm(CblasColMajor, CblasTrans, CblasNoTrans, n, n, n, 1.0, m.data(), n, m.data(), n, 0.0,
              result.data(), n);
  return result;
}

Pair make_pair_of(int n, bool is_symmetric) {
  std::mt19937 random(static_cast<unsigned>(n));
  Matrix a = random_matrix(n, random);
  Matrix b = random_matrix(n, random);
  if (is_symmetric) return {n, squares(n, a), squares(n, b)};
  return {n, a, b};
}

// Room for a solution and the copies that are overwritten on the way to it.
class Solver {
 public:
  explicit Solver(const Pair& pair) : given_(pair), n_(pair.n), z_(pair.a.size()) {
    alfr_ = alfi_ = beta_ = std::vector<double>(static_cast<std::size_t>(n_));
    double size = 0.0;
    call_dggev(&size, -1);
    work_.resize(static_cast<std::size_t>(size));
  }

  double run_toolkit() {
    work_on_ = given_;
    int error = -1;
    int with_vectors = 1;
    double tolerance = 0.0;
    double* const a = work_on_.a.data();
    double* const b = work_on_.b.data();
    const double time = seconds([&] {
      FMD_QZHESS(&n_, &n_, a, b, &with_vectors, z_.data());
      FMD_QZITT(&n_, &n_, a, b, &tolerance, &with_vectors, z_.data(), &error);
      FMD_QZVALL(&n_, &n_, a, b, alfr_.data(), alfi_.data(), beta_.data(), &with_vectors, z_.data());
      FMD_QZVECC(&n_, &n_, a, b, alfr_.data(), alfi_.data(), beta_.data(), z_.data());
    });
    require(error == 0, "all eigenvalues are found");
    return time;
  }

  double run_lapack() {
    work_on_ = given_;
    int error = -1;
    const double time = seconds([&] { error = call_dggev(work_.data(), static_cast<int>(work_.size())); });
    require(error == 0, "the peer finds all eigenvalues");
    return time;
  }

  // beta A x = alpha B x for every vector of the last run, to rounding.
  void check() const {
    const Matrix az = times_vectors(given_.a);
    const Matrix bz = times_vectors(given_.b);
    const double a_norm = cblas_dnrm2(n_ * n_, given_.a.data(), 1);
    const double b_norm = cblas_dnrm2(n_ * n_, given_.b.data(), 1);
    for (int j = 0; j < n_; ++j) {
      const std::size_t i = static_cast<std::size_t>(j);
      const bool is_pair = alfi_[i] != 0.0;
      double rest = 0.0;
      double length = 0.0;
      for (std::size_t k = i * order(); k < (i + 1) * order(); ++k) {
        const std::size_t im = k + order();
        rest += square(beta_[i] * az[k] - alfr_[i] * bz[k] + (is_pair ? alfi_[i] * bz[im] : 0.0));
        length += square(z_[k]);
        if (!is_pair) continue;
        rest += square(beta_[i] * az[im] - alfr_[i] * bz[im] - alfi_[i] * bz[k]);
        length += square(z_[im]);
      }
      const double size = beta_[i] * a_norm + std::hypot(alfr_[i], alfi_[i]) * b_norm;
      require(std::sqrt(rest) <= n_ * 0x1p-53 * size * std::sqrt(length), "the residuals are small");
      if (is_pair) ++j;
    }
  }

 private:
  static double square(double x) { return x * x; }
  std::size_t order() const { return static_cast<std::size_t>(n_); }

  Matrix times_vectors(const Matrix& m) const {
    Matrix result(m.size());
    cblas_dgemm(CblasColMajor, CblasNoTrans, CblasNoTrans, n_, n_, n_, 1.0, m.data(), n_, z_.data(), n_, 0.0,
                result.data(), n_);
    return result;
  }

  int call_dggev(double* work, int size) {
    int error = -1;
    double no_left_vectors = 0.0;
    const int one = 1;
    dggev_("N", "V", &n_, work_on_.a.data(), &n_, work_on_.b.data(), &n_, alfr_.data(), alfi_.data(),
           beta_.data(), &no_left_vectors, &one, z_.data(), &n_, work, &size, &error, 1, 1);
    return error;
  }

  Pair given_;
  Pair work_on_;
  int n_;
  Matrix z_;
  std::vector<double> alfr_, alfi_, beta_, work_;
};

void compare_solvers(int n, bool is_symmetric, int rounds) {
  Solver solver(make_pair_of(n, is_symmetric));
  solver.run_lapack();
  solver.check();
  solver.run_toolkit();
  solver.check();
  const fmdbench::Comparison comparison = fmdbench::compare(
      rounds, [&] { return solver.run_lapack(); }, [&] { return solver.run_toolkit(); });
  fmdbench::report_time(std::to_string(n) + (is_symmetric ? ", symmetric" : ", nonsymmetric"), comparison,
                        kMost);
}

}  // namespace

int main(int argc, char** argv) {
  openblas_set_num_threads(1);
  const int rounds = fmdbench::argument(argc, argv, 1, 9);
  fmdbench::print_environment();
  std::printf("peer      dggev, right vectors, %s, core type %s, one thread\n", openblas_get_config(),
              openblas_get_corename());
  std::printf("job       all eigenvalues and vectors of a pair of matrices\n");
  for (const bool is_symmetric : {true, false})
    for (const int n : {50, 100, 200, kLargest})
      compare_solvers(n, is_symmetric, rounds * (kLargest / n) * (kLargest / n));
  return 0;
}
