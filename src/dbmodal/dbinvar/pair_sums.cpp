#include "dbmodal/dbinvar/pair_sums.h"

#include <algorithm>

#include "dbmodal/dbinvar/pair_strip.h"

namespace fmd {

namespace {

constexpr int kWidest = 8;           // lanes of the widest unit
constexpr int kRowsTogether = 2;     // weighted rows come in pairs
constexpr std::int64_t kAlign = 64;  // bytes of the widest vector

struct Unit {
  int lanes;
  AddStrip add_strip;
};

Unit unit_of(VectorUnit unit) {
  switch (unit) {
    case VectorUnit::kAvx512:
      return {8, add_strip_avx512};
    case VectorUnit::kAvx2:
      return {4, add_strip_avx2};
    default:
      return {2, add_strip_sse2};
  }
}

double* aligned(double* workspace) {
  const auto address = reinterpret_cast<std::uintptr_t>(workspace);
  const std::uintptr_t past = address % kAlign;
  return past == 0 ? workspace : workspace + (kAlign - past) / sizeof(double);
}

int rounded_up(int count, int step) {
  return (count + step - 1) / step * step;
}

// m phi of one mode
void weight(const double* mass, int nodes, const ModeTranslations& mode, std::int64_t first,
            double* weighted) {
  const double* from = mode.values + first * mode.stride;
  for (int node = 0; node < nodes; ++node, from += mode.stride, weighted += 3) {
    const double m = mass[node];
    weighted[0] = m * from[0];
    weighted[1] = m * from[1];
    weighted[2] = m * from[2];
  }
}

// Translations of `lanes` modes side by side; lanes without a mode are zero.
template <int lanes>
void pack(const PairPanel& panel, std::int64_t first, int nodes, int first_mode, double* packed) {
  static constexpr double kNothing[3] = {};
  const double* from[lanes];
  std::int64_t stride[lanes];
  for (int lane = 0; lane < lanes; ++lane) {
    const int mode = first_mode + lane;
    const bool there = mode < panel.mode_count;
    stride[lane] = there ? panel.modes[mode].stride : 0;
    from[lane] = there ? panel.modes[mode].values + first * stride[lane] : kNothing;
  }
  for (int node = 0; node < nodes; ++node) {
    for (int component = 0; component < 3; ++component, packed += lanes)
      for (int lane = 0; lane < lanes; ++lane) packed[lane] = from[lane][component];
    for (int lane = 0; lane < lanes; ++lane) from[lane] += stride[lane];
  }
}

void pack_strip(int lanes, const PairPanel& panel, std::int64_t first, int nodes, int first_mode,
                double* packed) {
  switch (lanes) {
    case 8:
      return pack<8>(panel, first, nodes, first_mode, packed);
    case 4:
      return pack<4>(panel, first, nodes, first_mode, packed);
    default:
      return pack<2>(panel, first, nodes, first_mode, packed);
  }
}

void copy_transposed(const double* tensor, double* to) {
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 3; ++column) to[3 * row + column] = tensor[3 * column + row];
}

}  // namespace

std::int64_t pair_sums_workspace(int modes, int block_nodes) {
  const std::int64_t rows = std::int64_t{rounded_up(modes, kRowsTogether)} + kWidest;
  return std::int64_t{3} * block_nodes * rows + kAlign / static_cast<std::int64_t>(sizeof(double));
}

void add_pair_sums(VectorUnit unit, const PairPanel& panel, double* const* const* tensors) {
  const auto [lanes, add_strip] = unit_of(unit);
  double* const packed = aligned(panel.workspace);
  double* const weighted = packed + std::int64_t{3} * panel.block_nodes * kWidest;
  for (int first = 0; first < panel.nodes; first += panel.block_nodes) {
    const int nodes = std::min(panel.block_nodes, panel.nodes - first);
    const PairBlock block = {nodes, panel.mode_count, weighted, packed};
    const std::int64_t entries = std::int64_t{3} * nodes;
    for (int mode = 0; mode < panel.mode_count; ++mode)
      weight(panel.mass + first, nodes, panel.modes[mode], first, weighted + entries * mode);
    if (panel.mode_count % kRowsTogether != 0)
      std::fill_n(weighted + entries * panel.mode_count, entries, 0.0);
    for (int mode = 0; mode < panel.mode_count; mode += lanes) {
      pack_strip(lanes, panel, first, nodes, mode, packed);
      add_strip(block, mode, tensors);
    }
  }
}

void finish_pair_sums(double* const* const* tensors, int mode_count, double* const* cross_sums) {
  const std::int64_t stride = mode_count;
  for (int i = 0; i < mode_count; ++i) {
    double* own = tensors[i][i];
    own[1] = own[3];
    own[2] = own[6];
    own[5] = own[7];
    for (int j = i; j < mode_count; ++j) {
      const double* tensor = tensors[i][j];
      if (j != i) copy_transposed(tensor, tensors[j][i]);
      const double cross[3] = {tensor[7] - tensor[5], tensor[2] - tensor[6], tensor[3] - tensor[1]};
      for (int k = 0; k < 3; ++k) {
        cross_sums[i][k * stride + j] = cross[k];
        cross_sums[j][k * stride + i] = -cross[k];
      }
    }
  }
}

}  // namespace fmd
