// Makes the modes of a body orthonormal in its generalized mass, and all that is expressed in them follow.
//
// The eigenvalue table and the transformation come first, then what is in memory, then the mode vectors,
// whose rewriting needs disk space and may fail. What it had not come to is remembered in the body, and the
// next call goes on from there.
#include <algorithm>
#include <utility>

#include "body/body.h"
#include "dbmodal/dbtools/modal_eigenproblem.h"
#include "dbmodal/dbtools/modal_quantities.h"
#include "dbmodal/dbtools/mode_records.h"
#include "dbmodal/dbtools/orthonormal_kernels.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

using fmd::CArray;

bool is_diagonal_and_normalised(const FmdBody& body) {
  return body.HasOffDiagonalGenMatrix == 0 && body.ShouldMassNormalizeModes == 0;
}

// Whether an earlier call was broken off among the mode vectors, which its transformation still fits.
bool is_unfinished(const FmdBody& body) {
  return body.Untransformed != 0 && body.Transformation != nullptr &&
         body.TransformationOrder == body.ModeCount;
}

void fill_identity(double* matrix, int order) {
  const auto n = static_cast<std::size_t>(order);
  for (std::size_t i = 0; i < n; ++i) matrix[i * n + i] = 1.0;
}

// The eigenvalue table, and in t, which is zero, the modes that it speaks of.
bool find_modes(FmdBody* body, double* t) {
  if (body->HasOffDiagonalGenMatrix != 0) return fmd::solve_modal_eigenproblem(body, t);
  fill_identity(t, body->ModeCount);
  return fmd::build_mode_records(body);
}

void take_over_transformation(FmdBody& body, CArray<double> t) {
  fmd::release(body.Transformation);
  body.Transformation = t.release();
  body.TransformationOrder = body.ModeCount;
}

// Everything in memory follows; the roots are those of the generalized masses.
void transform_memory(FmdBody* body, double* roots, double* scratch) {
  fmd::mass_normalize_records(body->ModeRecords, body->ModeRecordCount, body->ModeCount, roots);
  const int rigid_modes = FMD_RigidBodyModeCount(body);
  fmd::divide_columns(body->Transformation, body->ModeCount, roots);
  fmd::divide_damping(*body, roots);
  fmd::transform_loads(*body, rigid_modes, body->Transformation, scratch);
  // Peaks that were worked out are those of the modes before; one of 0.0 is worked out anew.
  std::fill_n(body->ModalStatistics, body->StatisticsCount, FmdModeStatistics{});
  body->Untransformed = fmd::kAllVectorBits;
}

// The mode vectors, and the modes that have no place in the new set.
int finish(FmdBody* body) {
  const int active = fmd::count_active_modes(*body);
  if (!fmd::loads_fit_modes(*body) || !fmd::transform_vectors(body, active)) return 0;
  fmd::drop_modes(*body, active);
  return 1;
}

}  // namespace

int FMD_OrthoNormalize(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  if (is_unfinished(*body)) return finish(body);
  const bool changes_modes = !is_diagonal_and_normalised(*body);
  if (!changes_modes && body->Transformation != nullptr) return 1;
  const int modes = body->ModeCount;
  if (modes == 0) return 0;
  auto t = fmd::allocate<double>(std::int64_t{modes} * modes, "dbtools");
  if (t == nullptr) return 0;
  // All memory comes before the first change: a body without it stays as it was.
  const auto roots = fmd::allocate<double>(modes, "dbtools");
  if (roots == nullptr) {
    FMD_Error("Failed to mass normalize the eigen vectors\n");
    return 0;
  }
  const auto scratch = fmd::allocate<double>(modes, "dbtools");
  if (scratch == nullptr || !find_modes(body, t.get())) return 0;
  take_over_transformation(*body, std::move(t));
  if (changes_modes) {
    transform_memory(body, roots.get(), scratch.get());
    return finish(body);
  }
  fmd::drop_modes(*body, fmd::count_active_modes(*body));
  return 1;
}
