#include "dbmodal/dbwrite/prepare.h"

#include <algorithm>
#include <iterator>

#include "dbmodal/dbwrite/frequency_band.h"
#include "dbmodal/dbwrite/invariant_stage.h"
#include "dbmodal/dbwrite/summary.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

void run_orthonormal_stage(WriteJob& job) {
  FmdBody* const body = job.body;
  const bool had_modes = body->ModeCount > 0;
  const bool transformed = FMD_OrthoNormalize(body) != 0;
  if (!transformed && had_modes) {
    job.ok = false;
    return;
  }
  job.summary[kTransformation] = transformed || body->Transformation != nullptr ? 1 : 0;
  job.summary[kEigenvalues] = body->ModeCount > 0 ? 1 : 0;
  select_frequency_band(job);
}

// Matrices as they stand in place of eigenvalues; all modes, numbers unchanged.
void keep_modes_as_they_are(WriteJob& job) {
  job.summary[kGeneralizedStiffness] = 1;
  job.summary[kGeneralizedMass] = 1;
  job.first_mode = 0;
  job.mode_count = job.body->ModeCount;
}

// One record a mode, by mode index, so that the getters find them; only the exported ones are written.
void renew_statistics(WriteJob& job) {
  FmdBody* const body = job.body;
  release(body->ModalStatistics);
  body->StatisticsCount = 0;
  job.summary[kModalStatistics] = 0;
  if (job.mode_count == 0) return;
  body->ModalStatistics = allocate<FmdModeStatistics>(body->ModeCount, "dbwrite").release();
  if (body->ModalStatistics == nullptr) {
    job.ok = false;
    return;
  }
  body->StatisticsCount = body->ModeCount;
  job.summary[kModalStatistics] = 1;
}

void change_to_si_units(FmdBody* body) {
  char mass[] = "KILOGRAM";
  char length[] = "METER";
  char time[] = "SECOND";
  char force[] = "NEWTON";
  FMD_SetUnits(body, mass, length, time, force);
}

}  // namespace

void choose_version(WriteJob& job) {
  const VersionChoice choice = choose_version(job.options);
  for (int i = 0; i < choice.conflict_count; ++i) {
    FMD_Error("%s", choice.conflicts[i]);
    job.ok = false;
  }
  job.version = choice.word;
}

void run_content_stages(WriteJob& job) {
  std::fill(std::begin(job.summary), std::end(job.summary), '\0');
  copy_from_body(job, kNodalCoordinates, kNodalCoordinates);
  copy_from_body(job, kModeShapes, kNodalInertias);
  job.summary[kUnits] = 1;
  copy_from_body(job, kGeneralizedDamping, kGeneralizedDamping);
  copy_from_body(job, kInterfaceNodes, kInterfaceNodes);
  place_faces(job);

  if (job.options.no_ortho) {
    keep_modes_as_they_are(job);
  } else {
    run_orthonormal_stage(job);
  }
  if (!job.ok) return;

  copy_from_body(job, kInvariant1, kInvariant9);
  run_invariant_stage(job);
  if (!job.ok) return;

  copy_from_body(job, kModalStress, kModalStress);
  copy_from_body(job, kModalPreload, kModalStrain);
  copy_from_body(job, kPreStress, kModalLoadNodal);
  renew_statistics(job);
  if (!job.ok) return;

  if (job.options.empty) run_empty_stage(job);
  if (job.options.mks && job.may_change_units) change_to_si_units(job.body);
}

}  // namespace fmd
