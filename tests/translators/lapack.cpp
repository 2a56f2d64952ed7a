#include "translators/lapack.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

extern "C" {
void dggev_(const char* left, const char* right, const int* n, double* a, const int* lda, double* b,
            const int* ldb, double* real, double* imaginary, double* beta, double* vl, const int* ldvl,
            double* vr, const int* ldvr, double* work, const int* lwork, int* info);
void dgesv_(const int* n, const int* columns, double* a, const int* lda, int* pivots, double* b,
            const int* ldb, int* info);
}

namespace fmdtest {

std::vector<double> finite_eigenvalues(std::vector<double> a, std::vector<double> b) {
  const int n = static_cast<int>(std::lround(std::sqrt(static_cast<double>(a.size()))));
  const auto size = static_cast<std::size_t>(n);
  std::vector<double> real(size), imaginary(size), beta(size), work(16 * size + 64);
  const int work_size = static_cast<int>(work.size());
  const int one = 1;
  double unused = 0.0;
  int info = 0;
  dggev_("N", "N", &n, a.data(), &n, b.data(), &n, real.data(), imaginary.data(), beta.data(), &unused, &one,
         &unused, &one, work.data(), &work_size, &info);
  EXPECT_EQ(info, 0);
  const double largest = *std::max_element(beta.begin(), beta.end());
  std::vector<double> finite;
  for (std::size_t i = 0; i < size; ++i) {
    if (std::fabs(beta[i]) > 1e-12 * largest) finite.push_back(real[i] / beta[i]);
  }
  std::sort(finite.begin(), finite.end());
  return finite;
}

std::vector<double> solution(std::vector<double> a, std::vector<double> b) {
  const int n = static_cast<int>(std::lround(std::sqrt(static_cast<double>(a.size()))));
  const int columns = static_cast<int>(b.size()) / n;
  std::vector<int> pivots(static_cast<std::size_t>(n));
  int info = 0;
  dgesv_(&n, &columns, a.data(), &n, pivots.data(), b.data(), &n, &info);
  EXPECT_EQ(info, 0);
  return b;
}

}  // namespace fmdtest
