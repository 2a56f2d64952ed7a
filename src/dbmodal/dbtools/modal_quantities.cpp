#include "dbmodal/dbtools/modal_quantities.h"

#include <algorithm>

#include "dbmodal/dbmonpnt/monitor_points.h"
#include "dbmodal/dbtools/orthonormal_kernels.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

bool fits_modes(const FmdBody& body, std::int32_t entries) {
  if (entries == body.ModeCount) return true;
  FMD_Error("Failed to transform modal loads following orthonormalization.\n");
  return false;
}

void transform_load(double* load, std::int32_t entries, int first, int modes, const double* t,
                    double* scratch) {
  if (entries != modes) return;
  std::copy_n(load, modes, scratch);
  transform_row(scratch, t, modes, first, load);
}

bool is_there(const FmdBody& body, std::int32_t bit) {
  if (bit == kMonitorPointsBit) return body.BlockExists[kMonitorPoints] != 0;
  if (bit == 1 << kStress) return body.BlockExists[kModalStress] != 0;
  if (bit == 1 << kStrain) return body.BlockExists[kModalStrain] != 0;
  return true;
}

bool transform_one(FmdBody* body, std::int32_t bit, int new_modes) {
  if (bit == kMonitorPointsBit) return FMD_TransformMonitorPoints(body, body->Transformation) != 0;
  const int type = bit == 1 << kShape ? kShape : bit == 1 << kStress ? kStress : kStrain;
  return FMD_TransformModes(body, type, new_modes, body->Transformation) != 0;
}

// A dataset must not name modes that it has not. A list that nothing is left of is none.
void drop_damping(FmdBody& body, int modes) {
  if (body.GenDamp == nullptr) return;
  const auto is_dropped = [&](const FmdMatrixEntry& entry) {
    return entry.Row >= modes || entry.Column >= modes;
  };
  FmdMatrixEntry* const end = body.GenDamp + std::min(body.GenDampCount, body.GenDampCapacity);
  body.GenDampCount = static_cast<std::int32_t>(std::remove_if(body.GenDamp, end, is_dropped) - body.GenDamp);
  if (body.GenDampCount > 0) return;
  release(body.GenDamp);
  body.GenDampCapacity = 0;
  body.BlockExists[kGeneralizedDamping] = 0;
}

// The upper left square of the transformation, packed.
void repack_transformation(FmdBody& body, int order) {
  for (int r = 1; r < order; ++r) {
    const double* const from = body.Transformation + std::int64_t{r} * body.TransformationOrder;
    std::copy_n(from, order, body.Transformation + std::int64_t{r} * order);
  }
  body.TransformationOrder = order;
}

}  // namespace

void divide_damping(FmdBody& body, const double* divisors) {
  const int entries = std::min(body.GenDampCount, body.GenDampCapacity);
  for (int i = 0; i < entries; ++i) {
    FmdMatrixEntry& entry = body.GenDamp[i];
    const bool names_modes =
        entry.Row >= 0 && entry.Row < body.ModeCount && entry.Column >= 0 && entry.Column < body.ModeCount;
    if (!names_modes) continue;
    const double product = divisors[entry.Row] * divisors[entry.Column];
    if (product != 0.0) entry.Value /= product;
  }
}

bool loads_fit_modes(const FmdBody& body) {
  bool fit = true;
  for (int i = 0; i < body.LoadCaseCount; ++i) fit = fits_modes(body, body.LoadCases[i].LoadCount) && fit;
  if (body.ModalPreload != nullptr) fit = fits_modes(body, body.PreloadCount) && fit;
  return fit;
}

void transform_loads(FmdBody& body, int rigid_modes, const double* t, double* scratch) {
  const int modes = body.ModeCount;
  for (int i = 0; i < body.LoadCaseCount; ++i) {
    FmdLoadCase& load_case = body.LoadCases[i];
    const int first = load_case.Processed != 0 ? rigid_modes : 0;
    transform_load(load_case.Loads, load_case.LoadCount, first, modes, t, scratch);
  }
  if (body.ModalPreload == nullptr) return;
  const int first = FMD_ModalPreloadProcessed(&body) != 0 ? rigid_modes : 0;
  transform_load(body.ModalPreload, body.PreloadCount, first, modes, t, scratch);
}

bool transform_vectors(FmdBody* body, int new_modes) {
  for (std::int32_t bit = 1; bit <= kMonitorPointsBit; bit <<= 1) {
    if ((body->Untransformed & bit) == 0) continue;
    if (is_there(*body, bit) && !transform_one(body, bit, new_modes)) return false;
    body->Untransformed &= ~bit;
  }
  return true;
}

void drop_modes(FmdBody& body, int modes) {
  if (modes == body.ModeCount) return;
  drop_operator_columns(body, modes);
  drop_damping(body, modes);
  repack_transformation(body, modes);
  for (int i = 0; i < body.LoadCaseCount; ++i) {
    body.LoadCases[i].LoadCount = std::min(body.LoadCases[i].LoadCount, modes);
  }
  body.PreloadCount = std::min(body.PreloadCount, modes);
  // A mode that is added takes over an index of theirs.
  FMD_CleanModesInMemory(&body);
  // The pre-stress is loaded under the index that follows the last mode, which is another one now.
  for (std::int32_t& loaded : body.LoadedModeIndex) loaded = -1;
  body.ModeCount = modes;
}

}  // namespace fmd
