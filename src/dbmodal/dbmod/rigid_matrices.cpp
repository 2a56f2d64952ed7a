// A vector n is brought to the x axis by a turn about z and one about y:
//   n Z Y = (|n|, 0, 0),
// what is wanted is done about that axis, and both turns are undone: A = Z Y X Yt Zt.
#include "dbmodal/dbmod/rigid_matrices.h"

#include <cmath>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

constexpr double kPi = 3.141592653589793;

struct Matrix {
  double entry[9];
};

Matrix transposed(const Matrix& m) {
  const double* const e = m.entry;
  return {{e[0], e[3], e[6], e[1], e[4], e[7], e[2], e[5], e[8]}};
}

struct AxisFrame {
  Matrix about_z;
  Matrix about_y;
};

AxisFrame frame_of(const double* n) {
  const double d = std::sqrt(n[0] * n[0] + n[1] * n[1]);
  const double c = d == 0.0 ? 1.0 : n[0] / d;
  const double s = d == 0.0 ? 0.0 : n[1] / d;
  const double h = n[0] * c + n[1] * s;
  const double e = std::sqrt(n[2] * n[2] + h * h);
  const double p = n[2] / e;
  const double q = h / e;
  return {{{c, -s, 0.0, s, c, 0.0, 0.0, 0.0, 1.0}}, {{q, 0.0, -p, 0.0, 1.0, 0.0, p, 0.0, q}}};
}

// Z Y X Yt Zt
void fill_about(const double* axis, Matrix about_x, double* matrix) {
  AxisFrame frame = frame_of(axis);
  Matrix back_y = transposed(frame.about_y);
  Matrix back_z = transposed(frame.about_z);
  Matrix_Multiply(frame.about_z.entry, frame.about_y.entry, matrix);
  Matrix_Multiply(matrix, about_x.entry, matrix);
  Matrix_Multiply(matrix, back_y.entry, matrix);
  Matrix_Multiply(matrix, back_z.entry, matrix);
}

}  // namespace

double dot(const double* a, const double* b) {
  return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

double length(const double* vector) {
  return std::sqrt(dot(vector, vector));
}

void fill_rotation(const double* axis, double degrees, double* matrix) {
  const double theta = degrees / 180.0 * kPi;
  const double cosine = std::cos(theta);
  const double sine = std::sin(theta);
  fill_about(axis, {{1.0, 0.0, 0.0, 0.0, cosine, -sine, 0.0, sine, cosine}}, matrix);
}

void fill_reflection(const double* normal, double* matrix) {
  fill_about(normal, {{-1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0}}, matrix);
}

}  // namespace fmd
