// Translation of a body. Mode shapes, and what is made of them alone, do not change.
#include <algorithm>

#include "body/body.h"
#include "dbmodal/dbinvar/invariant_blocks.h"
#include "dbmodal/dbinvar/rigid_invariants.h"
#include "dbmodal/dbmod/inertia_shift.h"
#include "dbmodal/dbmod/present_invariants.h"
#include "dbmodal/dbmod/recompute_invar4.h"
#include "dbmodal/dbmod/rigid_matrices.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

bool has_nodal_mass(FmdBody* body) {
  return FMD_Exists(body, fmd::kNodalMassBlock) != 0;
}

void move_mass_and_nodes(FmdBody* body, double* t) {
  double center[3];
  std::copy_n(body->GlobalCenterOfMass, 3, center);
  Move_Vector(body->GlobalCenterOfMass, t);
  if (body->GlobalMass != 0.0)
    fmd::shift_inertia(body->GlobalMass, center, body->GlobalCenterOfMass, body->GlobalInertia);
  for (int node = 0; node < body->NodeCount; ++node) Move_Vector(body->Nodes[node].Coordinates, t);
}

bool move_invariant2(FmdBody* body) {
  if (body->GlobalMass != 0.0) {
    for (int k = 0; k < 3; ++k) body->Invar2[k] = body->GlobalMass * body->GlobalCenterOfMass[k];
    return true;
  }
  if (!has_nodal_mass(body)) {
    FMD_Error("Can not Compute Invar2.\n");
    return false;
  }
  std::fill_n(body->Invar2, 3, 0.0);
  fmd::sum_first_moments(body, body->Invar2);
  return true;
}

// Momentum of a mode: its column of invariant 3.
void momentum_of(const FmdBody& body, int mode, double* momentum) {
  for (int k = 0; k < 3; ++k) momentum[k] = body.Invar3[std::int64_t{k} * body.ModeCount + mode];
}

// I4 += t x I3
bool shift_invariant4(FmdBody* body, double* t) {
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    double momentum[3];
    momentum_of(*body, mode, momentum);
    double column[3];
    for (int k = 0; k < 3; ++k) column[k] = body->Invar4[std::int64_t{k} * body->ModeCount + mode];
    incr_scalar_tilde_vec(column, 1.0, t, momentum);
    if (FMD_SetInvar4(body, body->ModeNumbers[mode], column) == 0) return false;
  }
  return true;
}

bool move_invariant4(FmdBody* body, double* t, bool has_momentum) {
  if (has_nodal_mass(body)) return fmd::recompute_invar4(body);
  if (!has_momentum) {
    FMD_Error("Can not compute Invar4. \nInvar3 or Nodal Mass inforamtion is needed to compute Invar4.");
    return false;
  }
  return shift_invariant4(body, t);
}

// The invariant holds the off-diagonal entries with the opposite sign to the global tensor.
bool move_invariant7(FmdBody* body) {
  if (body->GlobalMass != 0.0) {
    for (int k = 0; k < 9; ++k)
      body->Invar7[k] = k % 4 == 0 ? body->GlobalInertia[k] : -body->GlobalInertia[k];
    return true;
  }
  if (!has_nodal_mass(body)) {
    FMD_Error("Can not Compute Invar7.\n");
    return false;
  }
  std::fill_n(body->Invar7, 9, 0.0);
  fmd::sum_inertias(body, body->Invar7);
  return true;
}

// I8 += ~t ~I3. Without invariant 3 the tensors stay behind, which does not fail the translation.
void move_invariant8(FmdBody* body, double* t, bool has_momentum) {
  if (!has_momentum) {
    FMD_Error("Can not compute Invar8. \nInvar3 is needed to compute Invar8.");
    return;
  }
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    double momentum[3];
    momentum_of(*body, mode, momentum);
    incr_scalar_tilde_tilde(body->Invar8[mode], 1.0, t, momentum);
  }
}

}  // namespace

int FMD_Translate(FmdBody* body, double* direction, double distance) {
  if (CheckFMD(body) == 0) return 0;
  double t[3];
  const double length = fmd::length(direction);
  for (int k = 0; k < 3; ++k) t[k] = direction[k] * distance / length;

  const fmd::PresentInvariants present(*body);
  const bool computed = FMD_CalculateGlobalMassFromNodeMass(body) != 0;
  if (!present.settle(body, {2, 3, 4, 7, 8}) || !computed) return 0;

  move_mass_and_nodes(body, t);
  if (present.has(2) && !move_invariant2(body)) return 0;
  if (present.has(4) && !move_invariant4(body, t, present.has(3))) return 0;
  if (present.has(7) && !move_invariant7(body)) return 0;
  if (present.has(8)) move_invariant8(body, t, present.has(3));
  return 1;
}
