// The invariants over pairs of modes: cross sums (5) and tensors (9). One sweep over nodes and modes gives
// both.
#include <algorithm>

#include "body/body.h"
#include "dbmodal/dbinvar/invariant_blocks.h"
#include "dbmodal/dbinvar/invariant_results.h"
#include "dbmodal/dbinvar/invariant_storage.h"
#include "dbmodal/dbinvar/mode_panels.h"
#include "dbmodal/dbinvar/pair_sums.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

using fmd::CArray;

// Large enough that loading and storing the sums does not count, small enough for the second cache.
constexpr int kBlockNodes = 512;
constexpr std::int64_t kWorkspaceDoubles = std::int64_t{32} << 17;

// Nodes per block, fewer where there are so many modes that the workspace would grow beyond its bound.
int block_nodes(int modes) {
  const std::int64_t fitting = kBlockNodes * kWorkspaceDoubles / fmd::pair_sums_workspace(modes, kBlockNodes);
  return static_cast<int>(std::clamp<std::int64_t>(fitting, 1, kBlockNodes));
}

CArray<double> quiet_doubles(std::int64_t count) {
  return CArray<double>(static_cast<double*>(fmd::allocate_quietly(count, sizeof(double))));
}

// Sums the pairs i <= j over all nodes.
bool sum_pairs(FmdBody* body, double* const* const* tensors) {
  fmd::ModePanels panels;
  if (!panels.open(body, fmd::ModePanels::suitable_nodes(body->ModeCount))) return false;
  const int block = block_nodes(body->ModeCount);
  const auto mass = quiet_doubles(panels.panel_nodes());
  const auto workspace = quiet_doubles(fmd::pair_sums_workspace(body->ModeCount, block));
  if (mass == nullptr || workspace == nullptr) return false;
  const fmd::VectorUnit unit = fmd::widest_vector_unit();
  const int node_count = std::min(body->NodeCount, body->ModeNodeCount[fmd::kShape]);
  for (int first = 0; first < node_count;) {
    const int nodes = std::min(panels.panel_nodes(), node_count - first);
    for (int node = 0; node < nodes; ++node)
      mass[static_cast<std::size_t>(node)] = body->Nodes[first + node].Mass;
    const fmd::PairPanel panel = {mass.get(),      nodes, panels.read(first, nodes),
                                  body->ModeCount, block, workspace.get()};
    fmd::add_pair_sums(unit, panel, tensors);
    first += nodes;
  }
  return true;
}

// Computes both invariants in place of what the body has. Without nodal mass they are zeros. With nodal mass
// but no nodes they are zeros too, and that is a failure.
bool compute_invar5_and_9(FmdBody* body) {
  fmd::ValueRows cross_sums = fmd::make_cross_sums(body->ModeCount);
  fmd::TensorRows tensors = fmd::make_pair_tensors(body->ModeCount);
  if (cross_sums == nullptr || tensors == nullptr) return false;
  const bool has_mass = FMD_Exists(body, fmd::kNodalMassBlock) != 0;
  const bool has_nodes = body->Nodes != nullptr && body->NodeCount > 0;
  if (has_mass && has_nodes) {
    if (!sum_pairs(body, tensors.get())) return false;
    fmd::finish_pair_sums(tensors.get(), body->ModeCount, cross_sums.get());
  }
  fmd::install_cross_sums(*body, std::move(cross_sums));
  fmd::install_pair_tensors(*body, std::move(tensors));
  return has_nodes || !has_mass;
}

bool read_cross_sums(FmdBody* body) {
  fmd::ValueRows rows = fmd::make_cross_sums(body->ModeCount);
  if (!fmd::reported(rows != nullptr) || !fmd::read_block_modes(body)) return false;
  const double factor = fmd::mass_factor(*body, 2);
  const std::int64_t modes = body->ModeCount;
  if (!fmd::read_reals(body, rows[0], modes * 3 * modes, factor)) return false;
  fmd::install_cross_sums(*body, std::move(rows));
  return true;
}

bool read_pair_tensors(FmdBody* body) {
  fmd::TensorRows rows = fmd::make_pair_tensors(body->ModeCount);
  if (!fmd::reported(rows != nullptr) || !fmd::read_block_modes(body)) return false;
  const double factor = fmd::mass_factor(*body, 2);
  const std::int64_t modes = body->ModeCount;
  if (!fmd::read_reals(body, rows[0][0], modes * modes * fmd::kTensorSize, factor)) return false;
  fmd::install_pair_tensors(*body, std::move(rows));
  return true;
}

bool provide_cross_sums(FmdBody* body) {
  if (body->Invar5 != nullptr) return fmd::reported(fmd::fit_cross_sums(*body));
  if (FMD_goto_block(body, fmd::kInvariant5Block) != 0) return read_cross_sums(body);
  return compute_invar5_and_9(body);
}

bool provide_pair_tensors(FmdBody* body) {
  if (body->Invar9 != nullptr) return fmd::reported(fmd::fit_pair_tensors(*body));
  if (FMD_goto_block(body, fmd::kInvariant9Block) != 0) return read_pair_tensors(body);
  return compute_invar5_and_9(body);
}

bool is_mode_index(const FmdBody& body, int mode) {
  return mode >= 0 && mode < body.ModeCount;
}

}  // namespace

double* FMD_Invar5(FmdBody* body, int mode) {
  if (CheckFMD(body) == 0 || !is_mode_index(*body, mode) || !provide_cross_sums(body)) return nullptr;
  return fmd::copy_for_caller(body->Invar5[mode], std::int64_t{3} * body->ModeCount);
}

double* FMD_Invar9(FmdBody* body, int row, int column) {
  if (CheckFMD(body) == 0 || !is_mode_index(*body, row) || !is_mode_index(*body, column) ||
      !provide_pair_tensors(body)) {
    return nullptr;
  }
  return fmd::copy_for_caller(body->Invar9[row][column], fmd::kTensorSize);
}
