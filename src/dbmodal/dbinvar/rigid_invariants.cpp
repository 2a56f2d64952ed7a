// The invariants of the rigid body: total mass (1), first moment of mass (2), inertia about the origin (7).
//
// Each is taken from its cache, else from the dataset's block, else from the nodal masses, else from the
// global mass properties, and then stays in the cache.
#include "dbmodal/dbinvar/rigid_invariants.h"

#include "body/body.h"
#include "dbmodal/dbinvar/invariant_blocks.h"
#include "dbmodal/dbinvar/invariant_results.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

void sum_first_moments(FmdBody* body, double* moment) {
  for (int node = 0; node < body->NodeCount; ++node) {
    const FmdNode& from = body->Nodes[node];
    for (int k = 0; k < 3; ++k) moment[k] += from.Mass * from.Coordinates[k];
  }
}

void sum_inertias(FmdBody* body, double* inertia) {
  for (int node = 0; node < body->NodeCount; ++node) {
    FmdNode& from = body->Nodes[node];
    incr_scalar_tilde_tilde(inertia, -from.Mass, from.Coordinates, from.Coordinates);
    double tensor[9];
    if (from.Inertia == nullptr || FMD_NodalInertia(body, node, tensor) == 0) continue;
    for (int k = 0; k < 9; ++k) inertia[k] += tensor[k];
  }
}

}  // namespace fmd

namespace {

using fmd::kInvariant1Block;
using fmd::kInvariant2Block;
using fmd::kInvariant7Block;

void sum_masses(FmdBody* body, double* mass) {
  for (int node = 0; node < body->NodeCount; ++node) *mass += body->Nodes[node].Mass;
}

void mass_from_global(FmdBody* body, double* mass) {
  *mass = body->GlobalMass;
}

void moments_from_global(FmdBody* body, double* moment) {
  for (int k = 0; k < 3; ++k) moment[k] = body->GlobalMass * body->GlobalCenterOfMass[k];
}

// The invariant holds the off-diagonal entries with the opposite sign to the global tensor.
void inertia_from_global(FmdBody* body, double* inertia) {
  for (int k = 0; k < 9; ++k) inertia[k] = k % 4 == 0 ? body->GlobalInertia[k] : -body->GlobalInertia[k];
}

struct RigidInvariant {
  int size;
  int block;
  int length_power;  // of its unit, beside mass
  double* FmdBody::*cache;
  void (*from_nodes)(FmdBody*, double*);
  void (*from_global)(FmdBody*, double*);
};

constexpr RigidInvariant kInvariantOne = {1,          kInvariant1Block, 0, &FmdBody::Invar1,
                                          sum_masses, mass_from_global};
constexpr RigidInvariant kInvariantTwo = {
    3, kInvariant2Block, 1, &FmdBody::Invar2, fmd::sum_first_moments, moments_from_global};
constexpr RigidInvariant kInvariantSeven = {
    9, kInvariant7Block, 2, &FmdBody::Invar7, fmd::sum_inertias, inertia_from_global};

// The filled cache, or null after a failure that has been reported.
const double* cached(FmdBody* body, const RigidInvariant& invariant) {
  double*& cache = body->*(invariant.cache);
  if (cache != nullptr) return cache;
  auto values = fmd::allocate<double>(invariant.size, "dbinvar");
  if (values == nullptr) return nullptr;
  if (FMD_goto_block(body, invariant.block) != 0) {
    const double factor = fmd::mass_factor(*body, invariant.length_power);
    if (!fmd::read_reals(body, values.get(), invariant.size, factor)) return nullptr;
  } else if (FMD_Exists(body, fmd::kNodalMassBlock) != 0) {
    invariant.from_nodes(body, values.get());
  } else if (body->GlobalMass != 0.0) {
    invariant.from_global(body, values.get());
  }
  cache = values.release();
  return cache;
}

double* copy_of(FmdBody* body, const RigidInvariant& invariant) {
  if (CheckFMD(body) == 0) return nullptr;
  const double* values = cached(body, invariant);
  if (values == nullptr) return nullptr;
  return fmd::copy_for_caller(values, invariant.size);
}

}  // namespace

namespace fmd {

bool fill_mass_invariant(FmdBody* body) {
  return cached(body, kInvariantOne) != nullptr;
}

}  // namespace fmd

double FMD_Invar1(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0.0;
  const double* mass = cached(body, kInvariantOne);
  return mass == nullptr ? 0.0 : *mass;
}

double* FMD_Invar2(FmdBody* body) {
  return copy_of(body, kInvariantTwo);
}

double* FMD_Invar7(FmdBody* body) {
  return copy_of(body, kInvariantSeven);
}
