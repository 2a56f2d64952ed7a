#include "dbmodal/dbtools/transform_modes_kernel.h"

#include <algorithm>

namespace fmd {

namespace {

constexpr std::uintptr_t kAlign = 64;  // bytes of the widest vector

struct Unit {
  int width;  // columns of a group
  TransformBlock transform_block;
};

Unit unit_of(VectorUnit unit) {
  switch (unit) {
    case VectorUnit::kAvx512:
      return {8, transform_block_avx512};
    case VectorUnit::kAvx2:
      return {4, transform_block_avx2};
    default:
      return {4, transform_block_sse2};
  }
}

template <typename T>
bool make(CArray<T>& storage, std::int64_t count) {
  storage.reset(static_cast<T*>(allocate_quietly(count, sizeof(T))));
  return storage != nullptr;
}

double* aligned(double* storage) {
  const auto past = reinterpret_cast<std::uintptr_t>(storage) % kAlign;
  return past == 0 ? storage : storage + (kAlign - past) / sizeof(double);
}

}  // namespace

bool ModeProduct::prepare(VectorUnit unit, const double* matrix, int modes, int columns) {
  const auto [width, transform_block] = unit_of(unit);
  matrix_ = matrix;
  modes_ = modes;
  columns_ = columns;
  transform_block_ = transform_block;
  group_count_ = (columns + width - 1) / width;
  const std::int64_t spare = kAlign / sizeof(double);
  return make(packed_, std::int64_t{modes} * kBlockValues + spare) && (columns < 1 || make_groups(width));
}

bool ModeProduct::make_groups(int width) {
  const std::int64_t per_group = modes_;
  if (!make(groups_, group_count_) || !make(coefficients_, group_count_ * per_group * width) ||
      !make(group_modes_, group_count_ * per_group))
    return false;
  for (std::int64_t at = 0; at < group_count_; ++at) {
    ColumnGroup& group = groups_[static_cast<std::size_t>(at)];
    group.first = static_cast<int>(at) * width;
    group.columns = std::min(width, columns_ - group.first);
    fill_group(group, width, coefficients_.get() + at * per_group * width,
               group_modes_.get() + at * per_group);
  }
  return true;
}

void ModeProduct::fill_group(ColumnGroup& group, int width, double* coefficients, int* modes) const {
  group.coefficients = coefficients;
  group.modes = modes;
  group.mode_count = 0;
  for (int mode = 0; mode < modes_; ++mode) {
    const double* row = matrix_ + std::int64_t{mode} * modes_ + group.first;
    if (std::all_of(row, row + group.columns, [](double t) { return t == 0.0; })) continue;
    std::copy_n(row, group.columns, coefficients);
    coefficients += width;
    modes[group.mode_count++] = mode;
  }
}

void ModeProduct::transform(double* const* pieces, std::int64_t values) {
  RowBlock block = {pieces, 0, 0, modes_, aligned(packed_.get()), groups_.get(), group_count_};
  for (; block.first < values; block.first += kBlockValues) {
    block.values = static_cast<int>(std::min<std::int64_t>(kBlockValues, values - block.first));
    if (!transform_block_(block)) transform_plainly(block);
  }
}

void ModeProduct::transform_plainly(const RowBlock& block) const {
  double* const old = block.packed;
  for (long value = block.first; value < block.first + block.values; ++value) {
    for (int mode = 0; mode < modes_; ++mode) old[mode] = block.pieces[mode][value];
    for (int column = 0; column < columns_; ++column) {
      double sum = 0.0;
      for (int mode = 0; mode < modes_; ++mode) {
        const double t = matrix_[std::int64_t{mode} * modes_ + column];
        if (t != 0.0) sum += t * old[mode];
      }
      block.pieces[column][value] = sum;
    }
  }
}

void add_multiple(double t, const double* values, std::int64_t count, double* sum) {
  for (std::int64_t at = 0; at < count; ++at) sum[at] += t * values[at];
}

}  // namespace fmd
