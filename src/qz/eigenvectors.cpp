// Last stage: the eigenvectors of the quasi-triangular pair by back-substitution, carried back to the
// coordinates of the given matrices and normalized.
//
// The vector of eigenvalue k has the elements 0..k only and needs the columns 0..k of A and B only, so it
// takes the place of column k of B, from the last column to the first. What the elements known so far
// contribute to the equations above, r = (beta A - alpha B) x, waits there for its element. A complex vector
// takes the two columns of its pair, real and imaginary part.
#include <fmdtoolkit/fmdtoolkit.h>

#include <algorithm>

#include "qz/reflection.h"

namespace {

using fmd::qz::Matrix;

// A larger element scales its vector down, long before anything overflows. Powers of two round nothing.
constexpr double kLargeElement = 0x1p200;
constexpr double kScaleDown = 0x1p-200;

struct Complex {
  double re, im;
};

Complex divide(const Complex& x, const Complex& y) {
  if (std::fabs(y.im) <= std::fabs(y.re)) {
    const double ratio = y.im / y.re;
    const double d = y.re + y.im * ratio;
    return {(x.re + x.im * ratio) / d, (x.im - x.re * ratio) / d};
  }
  const double ratio = y.re / y.im;
  const double d = y.re * ratio + y.im;
  return {(x.re * ratio + x.im) / d, (x.im * ratio - x.re) / d};
}

// The quasi-triangular pair as the equations of one vector see it.
struct Pair {
  Matrix a;
  Matrix b;
  double small_b;
};

class RealVector {
 public:
  RealVector(const Pair& pair, double alpha, double beta, int k)
      : a_(pair.a), b_(pair.b), small_b_(pair.small_b), alpha_(alpha), beta_(beta), k_(k), x_(b_.column(k)) {}

  void solve() {
    x_[k_] = 1.0;
    const double* const a = a_.column(k_);
    for (int i = 0; i < k_; ++i) x_[i] = beta_ * a[i] - alpha_ * x_[i];
    for (int i = k_ - 1; i >= 0; --i) {
      if (i > 0 && beta_ * a_(i, i - 1) != 0.0) {
        solve_two(--i);
      } else {
        solve_one(i);
      }
    }
  }

 private:
  double equation(int i, int j) const { return beta_ * a_(i, j) - alpha_ * b_(i, j); }
  double nonzero(double divisor) const { return divisor == 0.0 ? small_b_ : divisor; }

  void solve_one(int i) {
    const double w = equation(i, i);
    x_[i] = -x_[i] / nonzero(w);
    carry(i, i);
  }

  // The equations i and i + 1, which hang together.
  void solve_two(int i) {
    const double w = equation(i, i);
    const double x = equation(i, i + 1);
    const double y = beta_ * a_(i + 1, i);
    const double z = equation(i + 1, i + 1);
    const double r = x_[i];
    const double s = x_[i + 1];
    const double t = (x * s - z * r) / nonzero(w * z - x * y);
    x_[i] = t;
    x_[i + 1] = std::fabs(x) > std::fabs(z) ? (-r - w * t) / x : (-s - y * t) / nonzero(z);
    carry(i + 1, i);
    carry(i, i);
  }

  // Puts element j into the equations before end.
  void carry(int j, int end) {
    if (std::fabs(x_[j]) > kLargeElement)
      for (int i = 0; i <= k_; ++i) x_[i] *= kScaleDown;
    const double* const a = a_.column(j);
    const double* const b = b_.column(j);
    double* __restrict const r = x_;
    const double a_factor = beta_ * x_[j];
    const double b_factor = alpha_ * x_[j];
    for (int i = 0; i < end; ++i) r[i] += a_factor * a[i] - b_factor * b[i];
  }

  Matrix a_;
  Matrix b_;
  double small_b_;
  double alpha_;
  double beta_;
  int k_;
  double* x_;
};

// The vector of the eigenvalue with the positive imaginary part, in the columns k and k + 1.
class ComplexVector {
 public:
  ComplexVector(const Pair& pair, const Complex& alpha, double beta, int k)
      : a_(pair.a),
        b_(pair.b),
        small_b_(pair.small_b),
        alpha_(alpha),
        beta_(beta),
        k_(k),
        re_(b_.column(k)),
        im_(b_.column(k + 1)) {}

  void solve() {
    start();
    for (int i = k_ - 1; i >= 0; --i) {
      if (i > 0 && beta_ * a_(i, i - 1) != 0.0) {
        solve_two(--i);
      } else {
        solve_one(i);
      }
    }
  }

 private:
  Complex equation(int i, int j) const {
    return {beta_ * a_(i, j) - alpha_.re * b_(i, j), -alpha_.im * b_(i, j)};
  }

  // The last element is chosen imaginary, so that the real part stays triangular.
  void start() {
    const Complex last = equation(k_ + 1, k_ + 1);
    const double y = beta_ * a_(k_ + 1, k_);
    const Complex x = {last.im / y, -last.re / y};
    for (int i = 0; i < k_; ++i) {
      const Complex c = equation(i, k_);
      const Complex d = equation(i, k_ + 1);
      re_[i] = c.re * x.re - c.im * x.im - d.im;
      im_[i] = c.re * x.im + c.im * x.re + d.re;
    }
    re_[k_] = x.re;
    im_[k_] = x.im;
    re_[k_ + 1] = 0.0;
    im_[k_ + 1] = 1.0;
  }

  void store(int i, const Complex& x) {
    re_[i] = x.re;
    im_[i] = x.im;
  }

  Complex divide_by_diagonal(const Complex& x, const Complex& w) const {
    return divide(x, w.re == 0.0 && w.im == 0.0 ? Complex{small_b_, 0.0} : w);
  }

  void solve_one(int i) {
    store(i, divide_by_diagonal({-re_[i], -im_[i]}, equation(i, i)));
    carry(i, i);
  }

  // The equations i and i + 1, which hang together.
  void solve_two(int i) {
    const Complex w = equation(i, i);
    const Complex x = equation(i, i + 1);
    const double y = beta_ * a_(i + 1, i);
    const Complex z = equation(i + 1, i + 1);
    const Complex r = {re_[i], im_[i]};
    const Complex s = {re_[i + 1], im_[i + 1]};
    const Complex lower =
        divide_by_diagonal({y * r.re - w.re * s.re + w.im * s.im, y * r.im - w.re * s.im - w.im * s.re},
                           {w.re * z.re - w.im * z.im - x.re * y, w.re * z.im + w.im * z.re - x.im * y});
    store(i + 1, lower);
    if (std::fabs(y) > std::fabs(w.re) + std::fabs(w.im)) {
      store(i, {(-s.re - z.re * lower.re + z.im * lower.im) / y,
                (-s.im - z.re * lower.im - z.im * lower.re) / y});
    } else {
      store(i,
            divide_by_diagonal(
                {-r.re - x.re * lower.re + x.im * lower.im, -r.im - x.re * lower.im - x.im * lower.re}, w));
    }
    carry(i + 1, i);
    carry(i, i);
  }

  // Puts element j into the equations before end.
  void carry(int j, int end) {
    if (std::fabs(re_[j]) + std::fabs(im_[j]) > kLargeElement) scale_down();
    const double* const a = a_.column(j);
    const double* const b = b_.column(j);
    double* __restrict const re = re_;
    double* __restrict const im = im_;
    const Complex x = {re_[j], im_[j]};
    for (int i = 0; i < end; ++i) {
      const double c = beta_ * a[i] - alpha_.re * b[i];
      const double d = alpha_.im * b[i];
      re[i] += c * x.re + d * x.im;
      im[i] += c * x.im - d * x.re;
    }
  }

  void scale_down() {
    for (int i = 0; i <= k_ + 1; ++i) {
      re_[i] *= kScaleDown;
      im_[i] *= kScaleDown;
    }
  }

  Matrix a_;
  Matrix b_;
  double small_b_;
  Complex alpha_;
  double beta_;
  int k_;
  double* re_;
  double* im_;
};

// z_j = z_0 x_0 + ... + z_j x_j for the elements x of column j of the vectors. The columns before j still
// hold the transformations.
void carry_back(const Matrix& z, const double* x, int j, int n) {
  double* __restrict const sum = z.column(j);
  for (int i = 0; i < n; ++i) sum[i] *= x[j];
  int k = 0;
  for (; k + 4 <= j; k += 4) {
    const double* const z0 = z.column(k);
    const double* const z1 = z.column(k + 1);
    const double* const z2 = z.column(k + 2);
    const double* const z3 = z.column(k + 3);
    for (int i = 0; i < n; ++i)
      sum[i] += z0[i] * x[k] + z1[i] * x[k + 1] + z2[i] * x[k + 2] + z3[i] * x[k + 3];
  }
  for (; k < j; ++k) {
    const double* const zk = z.column(k);
    for (int i = 0; i < n; ++i) sum[i] += zk[i] * x[k];
  }
}

// Divides by the largest magnitude; im is null for a real vector.
void normalize(double* re, double* im, int n) {
  double largest = 0.0;
  for (int i = 0; i < n; ++i)
    largest = std::max(largest, std::fabs(re[i]) + (im != nullptr ? std::fabs(im[i]) : 0.0));
  if (largest == 0.0) return;
  for (int i = 0; i < n; ++i) {
    re[i] /= largest;
    if (im != nullptr) im[i] /= largest;
  }
}

}  // namespace

void FMD_QZVECC(int* nm, int* n, double* a, double* b, double* alfr, double* alfi, double* beta, double* z) {
  if (*n < 1) return;
  const int order = *n;
  const Matrix mass(b, *nm);
  const Matrix vectors(z, *nm);
  const Pair pair = {Matrix(a, *nm), mass, mass(order - 1, 0)};
  for (int k = order - 1; k >= 0; --k) {
    if (k > 0 && alfi[k] != 0.0) {
      --k;
      ComplexVector(pair, {alfr[k], alfi[k]}, beta[k], k).solve();
    } else {
      RealVector(pair, alfr[k], beta[k], k).solve();
    }
  }
  for (int j = order - 1; j >= 0; --j) carry_back(vectors, mass.column(j), j, order);
  for (int j = 0; j < order; ++j) {
    const bool is_pair = alfi[j] != 0.0 && j + 1 < order;
    normalize(vectors.column(j), is_pair ? vectors.column(j + 1) : nullptr, order);
    if (is_pair) ++j;
  }
}
