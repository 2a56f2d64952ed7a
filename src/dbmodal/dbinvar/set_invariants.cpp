// Setters of the inertia invariants.
#include <cstring>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

// Stores n values in the cache, which comes into being with its first value.
int store(FmdBody* body, double* FmdBody::*cache, int n, const double* values, fmd::SummaryByte byte) {
  if (body->*cache == nullptr) {
    body->*cache = fmd::allocate<double>(n, "dbinvar").release();
    if (body->*cache == nullptr) return 0;
  }
  std::memcpy(body->*cache, values, sizeof(double) * static_cast<std::size_t>(n));
  body->BlockExists[byte] = 1;
  return 1;
}

}  // namespace

int FMD_SetInvar1(FmdBody* body, double mass) {
  if (CheckFMD(body) == 0) return 0;
  if (!(mass > 0.0)) {
    FMD_Error("Inertia Invariant 1 must be greater than zero");
    return 0;
  }
  return store(body, &FmdBody::Invar1, 1, &mass, fmd::kInvariant1);
}

int FMD_SetInvar2(FmdBody* body, double* moment) {
  if (CheckFMD(body) == 0) return 0;
  return store(body, &FmdBody::Invar2, 3, moment, fmd::kInvariant2);
}

int FMD_SetInvar7(FmdBody* body, double* values) {
  if (CheckFMD(body) == 0) return 0;
  const double xx = values[0];
  const double yy = values[1];
  const double zz = values[2];
  const double xy = values[3];
  const double xz = values[4];
  const double yz = values[5];
  const double tensor[9] = {xx, xy, xz, xy, yy, yz, xz, yz, zz};
  return store(body, &FmdBody::Invar7, 9, tensor, fmd::kInvariant7);
}
