// Third stage: the blocks of two rows of the quasi-triangular A. One with real eigenvalues is split by a
// reflection from each side; one with a complex pair stays, and the pair comes from complex transformations
// that are worked out and not applied.
#include <fmdtoolkit/fmdtoolkit.h>

#include "qz/reflection.h"

namespace {

using fmd::qz::Matrix;
using fmd::qz::reflect_columns;
using fmd::qz::reflect_rows;
using fmd::qz::reflection_of;

// The pair's rows and columns, each matrix divided by the sum of its magnitudes.
struct Block {
  double a_scale, a11, a12, a21, a22;
  double b_scale, b11, b12, b22;
};

// The eigenvalues of a block are origin + half_trace -+ sqrt(discriminant).
struct Roots {
  double origin, half_trace, discriminant;
};

Block scaled_block(const Matrix& a, const Matrix& b, int k) {
  const double a_scale =
      std::fabs(a(k, k)) + std::fabs(a(k, k + 1)) + std::fabs(a(k + 1, k)) + std::fabs(a(k + 1, k + 1));
  const double b_scale = std::fabs(b(k, k)) + std::fabs(b(k, k + 1)) + std::fabs(b(k + 1, k + 1));
  return {
      a_scale, a(k, k) / a_scale, a(k, k + 1) / a_scale, a(k + 1, k) / a_scale,    a(k + 1, k + 1) / a_scale,
      b_scale, b(k, k) / b_scale, b(k, k + 1) / b_scale, b(k + 1, k + 1) / b_scale};
}

Roots roots_of(const Block& p) {
  double origin = p.a11 / p.b11;
  const double other = p.a22 / p.b22;
  const double s = p.a21 / (p.b11 * p.b22);
  double t = (p.a22 - origin * p.b22) / p.b22;
  if (std::fabs(origin) > std::fabs(other)) {
    origin = other;
    t = (p.a11 - origin * p.b11) / p.b11;
  }
  const double c = 0.5 * (t - s * p.b12);
  return {origin, c, c * c + s * (p.a12 - origin * p.b12)};
}

// One eigenvalue of a complex pair, as the ratio that is delivered.
struct Ratio {
  double alfr, alfi, beta;
};

// From a diagonal element of both transformed matrices.
Ratio ratio_of(const Block& p, double a_re, double a_im, double b_re, double b_im) {
  const double im = a_im * b_re - a_re * b_im;
  const double r = std::sqrt(b_re * b_re + b_im * b_im);
  return {p.a_scale * (a_re * b_re + a_im * b_im) / r, p.a_scale * im / r, p.b_scale * r};
}

// A complex plane rotation; its cosine is real.
struct Rotation {
  double c, re, im;
};

// The one that carries (x1 + i x1_im, x2 + i x2_im) to its first axis.
Rotation complex_rotation(double x1, double x1_im, double x2, double x2_im) {
  const double c = std::sqrt(x1 * x1 + x1_im * x1_im);
  if (c == 0.0) return {0.0, 1.0, 0.0};
  const double re = (x1 * x2 + x1_im * x2_im) / c;
  const double im = (x1 * x2_im - x1_im * x2) / c;
  const double r = std::sqrt(c * c + re * re + im * im);
  return {c / r, re / r, im / r};
}

class Eigenvalues {
 public:
  Eigenvalues(const Matrix& a, const Matrix& b, const Matrix* z, int n, double small_b, double* alfr,
              double* alfi, double* beta)
      : a_(a), b_(b), z_(z), n_(n), small_b_(small_b), alfr_(alfr), alfi_(alfi), beta_(beta) {}

  void run() {
    for (int last = n_ - 1; last >= 0; --last) {
      if (last > 0 && a_(last, last - 1) != 0.0) {
        --last;
        reduce_pair(last);
      } else {
        store_real(last);
      }
    }
  }

 private:
  void store_real(int i);
  void reduce_pair(int k);
  void split_pair(int k, const Block& p, const Roots& roots);
  void store_complex_pair(int k, const Block& p, const Roots& roots);
  void store(int i, const Ratio& ratio);
  void reflect_pair_columns(int k, double x1, double x2);
  void reflect_pair_rows(int k, double x1, double x2);

  Matrix a_;
  Matrix b_;
  const Matrix* z_;  // null without vectors
  int n_;
  double small_b_;
  double* alfr_;
  double* alfi_;
  double* beta_;
};

void Eigenvalues::store_real(int i) {
  alfr_[i] = b_(i, i) < 0.0 ? -a_(i, i) : a_(i, i);
  alfi_[i] = 0.0;
  beta_[i] = std::fabs(b_(i, i));
}

// Rows and columns k and k + 1. A negligible diagonal element of B counts as zero, an infinite eigenvalue.
void Eigenvalues::reduce_pair(int k) {
  if (std::fabs(b_(k, k)) <= small_b_) {
    b_(k, k) = 0.0;
    reflect_pair_rows(k, a_(k, k), a_(k + 1, k));
  } else if (std::fabs(b_(k + 1, k + 1)) <= small_b_) {
    b_(k + 1, k + 1) = 0.0;
    reflect_pair_columns(k, a_(k + 1, k + 1), a_(k + 1, k));
  } else {
    const Block p = scaled_block(a_, b_, k);
    const Roots roots = roots_of(p);
    if (roots.discriminant < 0.0) {
      store_complex_pair(k, p, roots);
      return;
    }
    split_pair(k, p, roots);
  }
  a_(k + 1, k) = 0.0;
  b_(k + 1, k) = 0.0;
  store_real(k);
  store_real(k + 1);
}

// Columns that bring A - e B to a null column, then rows that clear the larger of A and B below the diagonal.
void Eigenvalues::split_pair(int k, const Block& p, const Roots& roots) {
  const double e =
      roots.origin + (roots.half_trace + std::copysign(std::sqrt(roots.discriminant), roots.half_trace));
  const double a11 = p.a11 - e * p.b11;
  const double a12 = p.a12 - e * p.b12;
  const double a22 = p.a22 - e * p.b22;
  if (std::fabs(a11) + std::fabs(a12) < std::fabs(p.a21) + std::fabs(a22)) {
    reflect_pair_columns(k, a22, p.a21);
  } else {
    reflect_pair_columns(k, a12, a11);
  }
  if (p.a_scale < std::fabs(e) * p.b_scale) {
    reflect_pair_rows(k, a_(k, k), a_(k + 1, k));
  } else {
    reflect_pair_rows(k, b_(k, k), b_(k + 1, k));
  }
}

void Eigenvalues::reflect_pair_columns(int k, double x1, double x2) {
  const auto h = reflection_of(x1, x2);
  if (!h) return;
  reflect_columns(*h, a_, k, 0, k + 2);
  reflect_columns(*h, b_, k, 0, k + 2);
  if (z_ != nullptr) reflect_columns(*h, *z_, k, 0, n_);
}

void Eigenvalues::reflect_pair_rows(int k, double x1, double x2) {
  const auto h = reflection_of(x1, x2);
  if (!h) return;
  reflect_rows(*h, a_, k, k, n_);
  reflect_rows(*h, b_, k, k, n_);
}

void Eigenvalues::store_complex_pair(int k, const Block& p, const Roots& roots) {
  const double e = roots.origin + roots.half_trace;
  const double ei = std::sqrt(-roots.discriminant);
  const double a11 = p.a11 - e * p.b11;
  const double a11_im = ei * p.b11;
  const double a12 = p.a12 - e * p.b12;
  const double a12_im = ei * p.b12;
  const double a22 = p.a22 - e * p.b22;
  const double a22_im = ei * p.b22;
  const bool upper_row = std::fabs(a11) + std::fabs(a11_im) + std::fabs(a12) + std::fabs(a12_im) >=
                         std::fabs(p.a21) + std::fabs(a22) + std::fabs(a22_im);
  const Rotation z =
      upper_row ? complex_rotation(a12, a12_im, -a11, -a11_im) : complex_rotation(a22, a22_im, -p.a21, 0.0);
  const Rotation q =
      p.a_scale >= (std::fabs(e) + ei) * p.b_scale
          ? complex_rotation(z.c * p.b11 + z.re * p.b12, z.im * p.b12, z.re * p.b22, z.im * p.b22)
          : complex_rotation(z.c * p.a11 + z.re * p.a12, z.im * p.a12, z.c * p.a21 + z.re * p.a22,
                             z.im * p.a22);
  const double both = q.re * z.re + q.im * z.im;
  const double both_im = q.re * z.im - q.im * z.re;
  const Ratio first =
      ratio_of(p, q.c * z.c * p.a11 + q.c * z.re * p.a12 + q.re * z.c * p.a21 + both * p.a22,
               q.c * z.im * p.a12 - q.im * z.c * p.a21 + both_im * p.a22,
               q.c * z.c * p.b11 + q.c * z.re * p.b12 + both * p.b22, q.c * z.im * p.b12 + both_im * p.b22);
  const Ratio second =
      ratio_of(p, both * p.a11 - q.re * z.c * p.a12 - q.c * z.re * p.a21 + q.c * z.c * p.a22,
               -both_im * p.a11 - q.im * z.c * p.a12 + q.c * z.im * p.a21,
               both * p.b11 - q.re * z.c * p.b12 + q.c * z.c * p.b22, -both_im * p.b11 - q.im * z.c * p.b12);
  if (first.alfi * second.alfi < 0.0) {
    // The one with the positive imaginary part comes first.
    store(first.alfi > 0.0 ? k : k + 1, first);
    store(first.alfi > 0.0 ? k + 1 : k, second);
  } else {
    // Rounding has eaten the imaginary parts of a pair that it alone made complex. The vectors want one.
    const double im = p.a_scale / p.b_scale * ei;
    store(k, {first.alfr, im * first.beta, first.beta});
    store(k + 1, {second.alfr, -im * second.beta, second.beta});
  }
}

void Eigenvalues::store(int i, const Ratio& ratio) {
  alfr_[i] = ratio.alfr;
  alfi_[i] = ratio.alfi;
  beta_[i] = ratio.beta;
}

}  // namespace

void FMD_QZVALL(int* nm, int* n, double* a, double* b, double* alfr, double* alfi, double* beta, int* matz,
                double* z) {
  if (*n < 1) return;
  const Matrix mass(b, *nm);
  const Matrix vectors(z, *nm);
  // The corner belongs to the matrix while a pair is as large as the matrix.
  double& corner = mass(*n - 1, 0);
  const double small_b = corner;
  if (*n > 1) corner = 0.0;
  Eigenvalues(Matrix(a, *nm), mass, *matz != 0 ? &vectors : nullptr, *n, small_b, alfr, alfi, beta).run();
  corner = small_b;
}
