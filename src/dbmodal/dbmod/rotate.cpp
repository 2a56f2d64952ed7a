// Rotation of a body about an axis, which need not be of unit length.
#include <algorithm>

#include "body/body.h"
#include "dbmodal/dbmod/rigid_matrices.h"
#include "dbmodal/dbmod/transform_body.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

// Below this square of a length an offset is rounding.
constexpr double kNoOffset = 1e-14;

// The part of a place that is perpendicular to the axis.
void perpendicular_part(const double* place, const double* axis, double* part) {
  const double length = fmd::length(axis);
  const double along = fmd::dot(place, axis) / length;
  for (int k = 0; k < 3; ++k) part[k] = place[k] - axis[k] * along / length;
}

}  // namespace

int FMD_Rotate_Origin(FmdBody* body, double* axis, double angle, double* matrix) {
  if (CheckFMD(body) == 0) return 0;
  double turn[9];
  fmd::fill_rotation(axis, angle, turn);
  std::copy_n(turn, 9, matrix);
  return fmd::transform_body(body, turn) ? 1 : 0;
}

// Turns about the origin, then takes back by how much that has carried the axis off.
int FMD_Rotate(FmdBody* body, double* axis, double* point, double angle) {
  if (CheckFMD(body) == 0) return 0;
  double matrix[9];
  // The matrix turns against the right-hand rule.
  if (FMD_Rotate_Origin(body, axis, -angle, matrix) == 0) return 0;
  double offset[3];
  perpendicular_part(point, axis, offset);
  double turned[3];
  std::copy_n(offset, 3, turned);
  Vector_Transform(turned, matrix, 1);
  for (int k = 0; k < 3; ++k) offset[k] -= turned[k];
  if (!(fmd::dot(offset, offset) > kNoOffset)) return 1;
  return FMD_Translate(body, offset, fmd::length(offset));
}
