// Mass, centre of mass and inertia of the whole body: checked against the invariants, or taken from them.
#include <cmath>
#include <cstring>

#include "body/body.h"
#include "dbmodal/dbinvar/rigid_invariants.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr double kTolerance = 1e-8;

// Relative to a where a is above 1 in magnitude, absolute otherwise.
bool disagree(double a, double b) {
  const double scale = std::fabs(a) > 1.0 ? a : 1.0;
  return std::fabs((a - b) / scale) > kTolerance;
}

bool is_diagonal(int entry) {
  return entry % 4 == 0;
}

bool center_disagrees(const double* center, const double* moment, double mass) {
  for (int k = 0; k < 3; ++k) {
    if (disagree(center[k], mass == 0.0 ? moment[k] : moment[k] / mass)) return true;
  }
  return false;
}

// The invariant holds the off-diagonal entries with the opposite sign to the tensor.
bool inertia_disagrees(const double* inertia, const double* invariant) {
  for (int k = 0; k < 9; ++k) {
    if (disagree(is_diagonal(k) ? inertia[k] : -inertia[k], invariant[k])) return true;
  }
  return false;
}

using Values = fmd::CArray<double>;

}  // namespace

int FMD_SetGlobalMass(FmdBody* body, double mass, double* center, double* inertia) {
  if (CheckFMD(body) == 0 || center == nullptr || inertia == nullptr) return 0;
  if (!fmd::fill_mass_invariant(body)) return 0;
  const double invariant_mass = FMD_Invar1(body);
  const Values moment(FMD_Invar2(body));
  if (moment == nullptr) return 0;
  const Values invariant_inertia(FMD_Invar7(body));
  if (invariant_inertia == nullptr) return 0;

  if (disagree(invariant_mass, mass)) {
    FMD_Warning("Global mass is inconsistent with INVAR1 setting or sum of nodal masses.");
  }
  const double divisor = invariant_mass != 0.0 ? invariant_mass : mass;
  if (divisor == 0.0) FMD_Info("Global mass is being set to zero.");
  if (center_disagrees(center, moment.get(), divisor)) {
    FMD_Warning("Global center of mass is inconsistent with INVAR2 setting or nodal data.");
  }
  if (inertia_disagrees(inertia, invariant_inertia.get())) {
    FMD_Warning("Global mass inertia is inconsistent with INVAR7 setting or nodal data.");
  }

  body->GlobalMass = mass;
  std::memcpy(body->GlobalCenterOfMass, center, sizeof body->GlobalCenterOfMass);
  std::memcpy(body->GlobalInertia, inertia, sizeof body->GlobalInertia);
  body->BlockExists[fmd::kGlobalProperties] = 1;
  return 1;
}

int FMD_CalculateGlobalMassFromNodeMass(FmdBody* body) {
  if (CheckFMD(body) == 0 || !fmd::fill_mass_invariant(body)) return 0;
  const double mass = FMD_Invar1(body);
  const Values moment(FMD_Invar2(body));
  if (moment == nullptr) return 0;
  const Values inertia(FMD_Invar7(body));
  if (inertia == nullptr) return 0;

  body->GlobalMass = mass;
  for (int k = 0; k < 3; ++k) body->GlobalCenterOfMass[k] = mass == 0.0 ? 0.0 : moment[k] / mass;
  for (int k = 0; k < 9; ++k) body->GlobalInertia[k] = is_diagonal(k) ? inertia[k] : -inertia[k];
  return 1;
}

int FMD_TotalMassInertia(FmdBody* body, double* mass, double* inertia, double* center) {
  if (CheckFMD(body) == 0) return 0;
  if (FMD_CalculateGlobalMassFromNodeMass(body) == 0) {
    *mass = 0.0;
    std::memset(inertia, 0, sizeof body->GlobalInertia);
    std::memset(center, 0, sizeof body->GlobalCenterOfMass);
    return 0;
  }
  *mass = body->GlobalMass;
  std::memcpy(inertia, body->GlobalInertia, sizeof body->GlobalInertia);
  std::memcpy(center, body->GlobalCenterOfMass, sizeof body->GlobalCenterOfMass);
  return 1;
}
