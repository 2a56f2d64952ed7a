// Accumulation of the tensor algebra of the inertia invariants. ~x is the skew matrix of x, so that
// ~x y = x cross y.
#include "fmdtoolkit/fmdtoolkit.h"

// out += s (a x b)
void incr_scalar_tilde_vec(double* out, double s, double* a, double* b) {
  out[0] += s * (a[1] * b[2] - a[2] * b[1]);
  out[1] += s * (a[2] * b[0] - a[0] * b[2]);
  out[2] += s * (a[0] * b[1] - a[1] * b[0]);
}

// out(i, j) += s (b_i a_j - delta_ij a.b)
void incr_scalar_tilde_tilde(double* out, double s, double* a, double* b) {
  const double s1 = s * a[0];
  const double s2 = s * a[1];
  const double s3 = s * a[2];
  out[0] -= s2 * b[1] + s3 * b[2];
  out[1] += s2 * b[0];
  out[2] += s3 * b[0];
  out[3] += s1 * b[1];
  out[4] -= s3 * b[2] + s1 * b[0];
  out[5] += s3 * b[1];
  out[6] += s1 * b[2];
  out[7] += s2 * b[2];
  out[8] -= s2 * b[1] + s1 * b[0];
}
