// One block of rows of the product behind the transformation of modes. Each vector unit has a source file of
// its own that compiles this for it; nothing here may be shared with files compiled for another.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_TRANSFORM_MODES_BLOCK_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_TRANSFORM_MODES_BLOCK_H

namespace fmd {

// New modes that are summed together, and the old modes that have a part in any of them, ascending.
struct ColumnGroup {
  const double* coefficients;  // per old mode: one for each column of the unit's width, zeros to fill up
  const int* modes;
  int mode_count;
  int first;    // new mode
  int columns;  // at most the unit's width
};

// Rows of all modes from a value on.
struct RowBlock {
  double* const* pieces;  // per mode, old values and then new ones
  long first;
  int values;
  int modes;
  double* packed;  // modes times kBlockValues, on a boundary of 64 bytes
  const ColumnGroup* groups;
  int group_count;
};

// A multiple of the rows that any unit takes together.
constexpr int kBlockValues = 192;

// Puts the new values in the place of the old ones. False, and nothing changed, where an old value is not
// finite: it would spoil sums in which it has no part.
using TransformBlock = bool (*)(const RowBlock& block);

bool transform_block_sse2(const RowBlock& block);
bool transform_block_avx2(const RowBlock& block);
bool transform_block_avx512(const RowBlock& block);

}  // namespace fmd

namespace {

template <typename Vector>
inline Vector load(const double* from) {
  Vector vector;
  __builtin_memcpy(&vector, from, sizeof vector);
  return vector;
}

template <typename Vector>
inline void store(double* to, Vector vector) {
  __builtin_memcpy(to, &vector, sizeof vector);
}

// As many rows as fit so many vectors, by the columns of a group.
template <typename Vector, int vectors, int columns>
struct Strip {
  static constexpr int kLanes = static_cast<int>(sizeof(Vector) / sizeof(double));
  static constexpr int kRows = vectors * kLanes;

  // Copies one strip; zero times a value that is not finite is not a number.
  static void pack_rows(const double* from, double* to, Vector& unsound) {
    for (int k = 0; k < vectors; ++k, from += kLanes, to += kLanes) {
      const Vector values = load<Vector>(from);
      unsound += 0.0 * values;
      store(to, values);
    }
  }

  // Rows of each mode side by side, strip by strip; rows beyond the block are zeros.
  static bool pack(const fmd::RowBlock& block) {
    Vector unsound{};
    const long next_strip = static_cast<long>(block.modes) * kRows;
    for (int mode = 0; mode < block.modes; ++mode) {
      const double* from = block.pieces[mode] + block.first;
      double* to = block.packed + static_cast<long>(mode) * kRows;
      int left = block.values;
      for (; left >= kRows; left -= kRows, from += kRows, to += next_strip) pack_rows(from, to, unsound);
      if (left == 0) continue;
      double rest[kRows] = {};
      for (int row = 0; row < left; ++row) rest[row] = from[row];
      pack_rows(rest, to, unsound);
    }
    double sum = 0.0;
    for (int lane = 0; lane < kLanes; ++lane) sum += unsound[lane];
    return sum == 0.0;
  }

  // sum over the modes of the group, ascending; each product and each addition rounded by itself
  static void multiply(const double* packed, const fmd::ColumnGroup& group, double* const* to, int rows) {
    Vector sum[columns][vectors] = {};
    const double* t = group.coefficients;
    for (int at = 0; at < group.mode_count; ++at, t += columns) {
      const double* from = packed + static_cast<long>(group.modes[at]) * kRows;
      Vector values[vectors];
#pragma GCC unroll 4
      for (int k = 0; k < vectors; ++k) values[k] = load<Vector>(from + long{k} * kLanes);
#pragma GCC unroll 8
      for (int c = 0; c < columns; ++c) {
#pragma GCC unroll 4
        for (int k = 0; k < vectors; ++k) sum[c][k] += t[c] * values[k];
      }
    }
#pragma GCC unroll 8
    for (int c = 0; c < columns; ++c) {
      if (c >= group.columns) continue;
      if (rows == kRows) {
        for (int k = 0; k < vectors; ++k) store(to[c] + long{k} * kLanes, sum[c][k]);
      } else {
        double whole[kRows];
        __builtin_memcpy(whole, sum[c], sizeof whole);
        for (int row = 0; row < rows; ++row) to[c][row] = whole[row];
      }
    }
  }

  static bool transform(const fmd::RowBlock& block) {
    static_assert(fmd::kBlockValues % kRows == 0);
    if (!pack(block)) return false;
    const double* packed = block.packed;
    for (int row = 0; row < block.values; row += kRows, packed += static_cast<long>(block.modes) * kRows) {
      const int rows = block.values - row < kRows ? block.values - row : kRows;
      for (int at = 0; at < block.group_count; ++at) {
        const fmd::ColumnGroup& group = block.groups[at];
        double* to[columns];
        for (int c = 0; c < group.columns; ++c) to[c] = block.pieces[group.first + c] + block.first + row;
        multiply(packed, group, to, rows);
      }
    }
    return true;
  }
};

}  // namespace

#endif
