// Reflection of a body in a plane given by its normal, which need not be of unit length.
#include <cmath>

#include "body/body.h"
#include "dbmodal/dbmod/rigid_matrices.h"
#include "dbmodal/dbmod/transform_body.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

// Up to this length an offset is rounding.
constexpr double kNoOffset = 1e-10;

}  // namespace

int FMD_Mirror_Origin(FmdBody* body, double* normal) {
  if (CheckFMD(body) == 0) return 0;
  double matrix[9];
  fmd::fill_reflection(normal, matrix);
  return fmd::transform_body(body, matrix) ? 1 : 0;
}

// Reflects in the parallel plane through the origin, then moves by twice the distance between the planes.
int FMD_Mirror(FmdBody* body, double* normal, double* point) {
  if (CheckFMD(body) == 0 || FMD_Mirror_Origin(body, normal) == 0) return 0;
  const double offset = 2.0 * fmd::dot(normal, point) / fmd::length(normal);
  if (!(std::fabs(offset) > kNoOffset)) return 1;
  return FMD_Translate(body, normal, offset);
}
