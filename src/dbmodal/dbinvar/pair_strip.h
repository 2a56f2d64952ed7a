// One strip of the pair sums: all modes i against as many modes j as a vector has lanes. Each vector unit has
// a source file of its own that compiles this for it; nothing here may be shared with files compiled for
// another.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_PAIR_STRIP_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_PAIR_STRIP_H

namespace fmd {

// A block of nodes, ready for the strips. Component c of node p is entry 3 p + c.
struct PairBlock {
  int nodes;
  int modes;
  const double* weighted;  // per mode i, modes rounded up to even: m phi_i, 3 * nodes entries
  const double* packed;    // of the modes j of the strip: phi, 3 * nodes entries of a vector each
};

// Adds the block to the tensors (i, j) with first <= j < first + lanes and i <= j.
using AddStrip = void (*)(const PairBlock& block, int first, double* const* const* tensors);

void add_strip_sse2(const PairBlock& block, int first, double* const* const* tensors);
void add_strip_avx2(const PairBlock& block, int first, double* const* const* tensors);
void add_strip_avx512(const PairBlock& block, int first, double* const* const* tensors);

}  // namespace fmd

namespace {

constexpr int kTensor = 9;

template <typename Vector>
constexpr int kLanes = static_cast<int>(sizeof(Vector) / sizeof(double));

template <typename Vector>
inline Vector load(const double* from) {
  Vector vector;
  __builtin_memcpy(&vector, from, sizeof vector);
  return vector;
}

// Modes i, i + 1, ... of a tile against the modes of a strip.
template <typename Vector, int rows>
struct PairTile {
  Vector sum[rows][kTensor];

  // Lanes outside of the pairs i <= j < modes start at zero and are dropped at the end.
  static bool holds(int i, int j, int modes) { return i <= j && j < modes; }

  inline void load_sums(int i, int first, int modes, double* const* const* tensors) {
    for (int row = 0; row < rows; ++row) {
      double lanes[kTensor][kLanes<Vector>] = {};
      for (int lane = 0; lane < kLanes<Vector>; ++lane) {
        if (!holds(i + row, first + lane, modes)) continue;
        const double* tensor = tensors[i + row][first + lane];
        for (int k = 0; k < kTensor; ++k) lanes[k][lane] = tensor[k];
      }
      for (int k = 0; k < kTensor; ++k) sum[row][k] = load<Vector>(lanes[k]);
    }
  }

  inline void store_sums(int i, int first, int modes, double* const* const* tensors) const {
    for (int row = 0; row < rows; ++row) {
      double lanes[kTensor][kLanes<Vector>];
      __builtin_memcpy(lanes, sum[row], sizeof lanes);
      for (int lane = 0; lane < kLanes<Vector>; ++lane) {
        if (!holds(i + row, first + lane, modes)) continue;
        double* tensor = tensors[i + row][first + lane];
        for (int k = 0; k < kTensor; ++k) tensor[k] = lanes[k][lane];
      }
    }
  }

  inline void add_nodes(const double* weighted, const double* packed, int nodes) {
    const long entries = 3L * nodes;
    for (long at = 0; at < entries; at += 3, packed += 3 * kLanes<Vector>) {
      const Vector b1 = load<Vector>(packed);
      const Vector b2 = load<Vector>(packed + kLanes<Vector>);
      const Vector b3 = load<Vector>(packed + 2 * kLanes<Vector>);
#pragma GCC unroll 4
      for (int row = 0; row < rows; ++row) {
        const double* s = weighted + row * entries + at;
        Vector* t = sum[row];
        const Vector p1 = s[0] * b1;
        t[3] += s[0] * b2;
        t[6] += s[0] * b3;
        const Vector p2 = s[1] * b2;
        t[1] += s[1] * b1;
        t[7] += s[1] * b3;
        t[8] -= p2 + p1;
        const Vector p3 = s[2] * b3;
        t[2] += s[2] * b1;
        t[5] += s[2] * b2;
        t[0] -= p2 + p3;
        t[4] -= p3 + p1;
      }
    }
  }
};

template <typename Vector, int rows>
inline void add_strip(const fmd::PairBlock& block, int first, double* const* const* tensors) {
  const int strip_end = first + kLanes<Vector>;
  const int last = strip_end < block.modes ? strip_end : block.modes;
  for (int i = 0; i < last; i += rows) {
    PairTile<Vector, rows> tile;
    tile.load_sums(i, first, block.modes, tensors);
    tile.add_nodes(block.weighted + 3L * block.nodes * i, block.packed, block.nodes);
    tile.store_sums(i, first, block.modes, tensors);
  }
}

}  // namespace

#endif
