#include "dbmodal/dbwrite/invariant_stage.h"

#include <algorithm>
#include <iterator>

#include "dbmodal/dbinvar/invariant_sets.h"
#include "dbmodal/dbtools/geometry_nodes.h"
#include "dbmodal/dbwrite/summary.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

void mark(WriteJob& job, std::initializer_list<SummaryByte> bytes, char value) {
  for (const SummaryByte byte : bytes) job.summary[byte] = value;
}

// False for an option that names no set; it is told and does not end the write.
bool compute_set(WriteJob& job) {
  if (job.options.full_invariants) {
    compute_full_invariants(job.body);
    mark(job,
         {kInvariant1, kInvariant2, kInvariant3, kInvariant4, kInvariant5, kInvariant7, kInvariant8,
          kInvariant9},
         1);
    return true;
  }
  if (job.options.fast_invariants) {
    compute_fast_invariants(job.body);
    mark(job, {kInvariant1, kInvariant2, kInvariant3, kInvariant4, kInvariant7, kInvariant8}, 1);
    mark(job, {kInvariant5, kInvariant9}, 0);
    return true;
  }
  FMD_Error("Illegal invariants option, use full_invar or fast_invar.");
  return false;
}

// The invariants of the rigid body must be had before the nodes go that they are summed over.
void refill_global_properties(WriteJob& job, bool remove_nodes) {
  if (FMD_CalculateGlobalMassFromNodeMass(job.body) == 0) job.ok = false;
  if (job.ok && remove_nodes && RemoveNonGeometryNodes(job.body) == 0) job.may_change_units = false;
  job.summary[kGlobalProperties] = 1;
}

}  // namespace

void run_invariant_stage(WriteJob& job) {
  const bool legal = !job.options.invariants || compute_set(job);
  if (!legal) job.may_change_units = false;
  const bool computed = job.options.invariants && legal;
  if (computed || job.summary[kInvariant3] != 0) {
    FMD_RigidBodyForcesOnPrincipalAxes(job.body);
    if (FMD_DampingOnPrincipalAxes(job.body) == 0) job.ok = false;
    if (job.ok) refill_global_properties(job, legal);
    return;
  }
  const char* const exists = job.body->BlockExists;
  const bool has_masses = exists[kNodalCoordinates] != 0 && exists[kNodalMasses] != 0;
  job.summary[kGlobalProperties] = exists[kGlobalProperties] != 0 || has_masses ? 1 : 0;
}

void run_empty_stage(WriteJob& job) {
  std::fill(std::begin(job.summary), std::end(job.summary), '\0');
  copy_from_body(job, kNodalCoordinates, kNodalCoordinates);
  copy_from_body(job, kNodalMasses, kNodalInertias);
  copy_from_body(job, kInterfaceNodes, kInterfaceNodes);
  place_faces(job);
  compute_rigid_invariants(job.body);
  mark(job, {kGlobalProperties, kUnits, kInvariant1, kInvariant2, kInvariant7}, 1);
}

}  // namespace fmd
