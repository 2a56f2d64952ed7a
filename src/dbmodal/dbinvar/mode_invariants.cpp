// The invariants with one entry per mode: momentum (3), moment of momentum (4), moment tensor (8), and the
// generalized mass (6).
//
// Each is taken from its cache, else from the dataset's block, else from nodes and mode shapes, and then
// stays in the cache.
#include "dbmodal/dbinvar/mode_invariants.h"

#include <algorithm>

#include "body/body.h"
#include "dbmodal/dbinvar/invariant_blocks.h"
#include "dbmodal/dbinvar/invariant_results.h"
#include "dbmodal/dbinvar/invariant_storage.h"
#include "dbmodal/dbinvar/mode_sums.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

using fmd::CArray;

// One half of a mode shape after the other, in room for three doubles a node.
class ShapeHalves {
 public:
  // False where there is no room, as for a body without nodes; that is reported.
  bool open(FmdBody* body) {
    body_ = body;
    const std::int64_t nodes = std::max(body->NodeCount, body->ModeNodeCount[fmd::kShape]);
    half_ = fmd::allocate<double>(3 * nodes, "dbinvar");
    return half_ != nullptr;
  }

  // The half of a mode by index, zeros where the body has no mode shapes, null where it could not be loaded.
  double* fetch(int index, int part) {
    if (FMD_Mode(body_, body_->ModeNumbers[index], fmd::kShape, half_.get(), part) != 0) return half_.get();
    if (body_->ModePositions[fmd::kShape] != nullptr) return nullptr;
    std::fill_n(half_.get(), std::int64_t{3} * body_->NodeCount, 0.0);
    return half_.get();
  }

 private:
  FmdBody* body_ = nullptr;
  CArray<double> half_;
};

bool sum_momentum(FmdBody* body, ShapeHalves& halves, int mode, double* sum) {
  const double* translations = halves.fetch(mode, 0);
  if (translations == nullptr) return false;
  fmd::add_momentum(body->Nodes, body->NodeCount, translations, sum);
  return true;
}

bool sum_moment_of_momentum(FmdBody* body, ShapeHalves& halves, int mode, double* sum) {
  double* translations = halves.fetch(mode, 0);
  if (translations == nullptr) return false;
  fmd::add_moment_of_momentum(body->Nodes, body->NodeCount, translations, sum);
  const double* rotations = halves.fetch(mode, 1);
  if (rotations == nullptr) return false;
  fmd::add_spin(body->Nodes, body->NodeCount, rotations, sum);
  return true;
}

// An invariant of three rows with a column per mode.
struct ColumnInvariant {
  int block;
  int length_power;  // of its unit, beside mass
  double* FmdBody::*cache;
  std::int32_t FmdBody::*cache_modes;
  bool (*sum)(FmdBody*, ShapeHalves&, int mode, double*);
};

constexpr ColumnInvariant kInvariantThree = {fmd::kInvariant3Block, 1, &FmdBody::Invar3,
                                             &FmdBody::Invar3Modes, sum_momentum};
constexpr ColumnInvariant kInvariantFour = {fmd::kInvariant4Block, 2, &FmdBody::Invar4, &FmdBody::Invar4Modes,
                                            sum_moment_of_momentum};

bool sum_columns(FmdBody* body, const ColumnInvariant& invariant, double* rows) {
  ShapeHalves halves;
  if (!halves.open(body)) return false;
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    double column[3] = {};
    if (!invariant.sum(body, halves, mode, column)) return false;
    for (int k = 0; k < 3; ++k) rows[std::int64_t{k} * body->ModeCount + mode] = column[k];
  }
  return true;
}

bool find_columns(FmdBody* body, const ColumnInvariant& invariant, double* rows) {
  if (FMD_goto_block(body, invariant.block) != 0) {
    const double factor = fmd::mass_factor(*body, invariant.length_power);
    return fmd::read_block_modes(body) &&
           fmd::read_reals(body, rows, std::int64_t{3} * body->ModeCount, factor);
  }
  return FMD_Exists(body, fmd::kNodalMassBlock) == 0 || sum_columns(body, invariant, rows);
}

bool provide_columns(FmdBody* body, const ColumnInvariant& invariant) {
  double*& cache = body->*(invariant.cache);
  if (cache != nullptr) {
    return fmd::reported(fmd::fit_mode_columns(cache, body->*(invariant.cache_modes), body->ModeCount));
  }
  auto rows = fmd::allocate<double>(std::int64_t{3} * body->ModeCount, "dbinvar");
  if (rows == nullptr || !find_columns(body, invariant, rows.get())) return false;
  cache = rows.release();
  body->*(invariant.cache_modes) = body->ModeCount;
  return true;
}

double* copy_of_columns(FmdBody* body, const ColumnInvariant& invariant) {
  if (CheckFMD(body) == 0 || body->ModeCount <= 0 || !provide_columns(body, invariant)) return nullptr;
  return fmd::copy_for_caller(body->*(invariant.cache), std::int64_t{3} * body->ModeCount);
}

// Nodes without mass count with none, so nodal masses are not asked for.
bool sum_tensors(FmdBody* body, double* const* tensors) {
  ShapeHalves halves;
  if (!halves.open(body)) return false;
  for (int mode = 0; mode < body->ModeCount; ++mode) {
    double* translations = halves.fetch(mode, 0);
    if (translations == nullptr) return false;
    fmd::add_moment_tensor(body->Nodes, body->NodeCount, translations, tensors[mode]);
  }
  return true;
}

bool find_tensors(FmdBody* body, double* const* tensors) {
  if (FMD_goto_block(body, fmd::kInvariant8Block) == 0) return sum_tensors(body, tensors);
  return fmd::read_block_modes(body) &&
         fmd::read_reals(body, tensors[0], std::int64_t{fmd::kTensorSize} * body->ModeCount,
                         fmd::mass_factor(*body, 2));
}

bool provide_tensors(FmdBody* body) {
  if (body->Invar8 != nullptr) return fmd::reported(fmd::fit_mode_tensors(*body));
  fmd::ValueRows tensors = fmd::make_mode_tensors(body->ModeCount);
  if (!fmd::reported(tensors != nullptr) || !find_tensors(body, tensors.get())) return false;
  fmd::install_mode_tensors(*body, std::move(tensors));
  return true;
}

}  // namespace

namespace fmd {

bool sum_moments_of_momentum(FmdBody* body, double* rows) {
  return sum_columns(body, kInvariantFour, rows);
}

}  // namespace fmd

double* FMD_Invar3(FmdBody* body) {
  return copy_of_columns(body, kInvariantThree);
}

double* FMD_Invar4(FmdBody* body) {
  return copy_of_columns(body, kInvariantFour);
}

double* FMD_Invar6(FmdBody* body) {
  if (CheckFMD(body) == 0 || body->ModeCount <= 0) return nullptr;
  auto matrix = fmd::allocate<double>(std::int64_t{body->ModeCount} * body->ModeCount, "dbinvar");
  if (matrix == nullptr || FMD_GenMassFull(body, matrix.get(), body->ModeCount) == 0) return nullptr;
  return matrix.release();
}

double* FMD_Invar8(FmdBody* body, int mode) {
  if (CheckFMD(body) == 0 || mode < 0 || mode >= body->ModeCount || !provide_tensors(body)) return nullptr;
  return fmd::copy_for_caller(body->Invar8[mode], fmd::kTensorSize);
}
