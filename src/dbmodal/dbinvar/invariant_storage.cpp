#include "dbmodal/dbinvar/invariant_storage.h"

#include <algorithm>

namespace fmd {

namespace {

CArray<double> zeros(std::int64_t count) {
  return CArray<double>(static_cast<double*>(allocate_quietly(count, sizeof(double))));
}

// Row pointers to `length` values each.
ValueRows make_value_rows(std::int64_t rows, std::int64_t length) {
  std::int64_t count = 0;
  if (__builtin_mul_overflow(rows, length, &count)) return nullptr;
  auto values = zeros(count);
  CArray<double*> pointers(static_cast<double**>(allocate_quietly(rows, sizeof(double*))));
  if (values == nullptr || pointers == nullptr) return nullptr;
  for (std::int64_t row = 0; row < rows; ++row)
    pointers[static_cast<std::size_t>(row)] = values.get() + row * length;
  values.release();
  return ValueRows(pointers.release());
}

// Copies the part of a matrix that both sizes share; columns are modes.
void copy_columns(const double* from, int from_modes, double* to, int to_modes) {
  const int shared = std::min(from_modes, to_modes);
  for (int row = 0; row < 3; ++row)
    std::copy_n(from + std::int64_t{row} * from_modes, shared, to + std::int64_t{row} * to_modes);
}

}  // namespace

void release_value_rows(double**& rows) {
  if (rows == nullptr) return;
  std::free(rows[0]);
  release(rows);
}

void release_tensor_rows(double***& rows) {
  if (rows == nullptr) return;
  release_value_rows(rows[0]);
  release(rows);
}

CArray<double> make_mode_columns(int modes) {
  return zeros(std::int64_t{3} * modes);
}

ValueRows make_cross_sums(int modes) {
  return make_value_rows(modes, std::int64_t{3} * modes);
}

ValueRows make_mode_tensors(int modes) {
  return make_value_rows(modes, kTensorSize);
}

TensorRows make_pair_tensors(int modes) {
  ValueRows tensors = make_value_rows(std::int64_t{modes} * modes, kTensorSize);
  CArray<double**> rows(static_cast<double***>(allocate_quietly(modes, sizeof(double**))));
  if (tensors == nullptr || rows == nullptr) return nullptr;
  for (int mode = 0; mode < modes; ++mode)
    rows[static_cast<std::size_t>(mode)] = tensors.get() + std::int64_t{mode} * modes;
  tensors.release();
  return TensorRows(rows.release());
}

bool fit_mode_columns(double*& values, std::int32_t& modes, int wanted) {
  if (values != nullptr && modes == wanted) return true;
  auto fitting = make_mode_columns(wanted);
  if (fitting == nullptr) return false;
  if (values != nullptr) copy_columns(values, modes, fitting.get(), wanted);
  std::free(values);
  values = fitting.release();
  modes = wanted;
  return true;
}

bool fit_cross_sums(FmdBody& body) {
  if (body.Invar5 != nullptr && body.Invar5Modes == body.ModeCount) return true;
  ValueRows rows = make_cross_sums(body.ModeCount);
  if (rows == nullptr) return false;
  const int shared = body.Invar5 == nullptr ? 0 : std::min(body.Invar5Modes, body.ModeCount);
  for (int mode = 0; mode < shared; ++mode)
    copy_columns(body.Invar5[mode], body.Invar5Modes, rows[static_cast<std::size_t>(mode)], body.ModeCount);
  install_cross_sums(body, std::move(rows));
  return true;
}

bool fit_mode_tensors(FmdBody& body) {
  if (body.Invar8 != nullptr && body.Invar8Modes == body.ModeCount) return true;
  ValueRows rows = make_mode_tensors(body.ModeCount);
  if (rows == nullptr) return false;
  const int shared = body.Invar8 == nullptr ? 0 : std::min(body.Invar8Modes, body.ModeCount);
  for (int mode = 0; mode < shared; ++mode)
    std::copy_n(body.Invar8[mode], kTensorSize, rows[static_cast<std::size_t>(mode)]);
  install_mode_tensors(body, std::move(rows));
  return true;
}

bool fit_pair_tensors(FmdBody& body) {
  if (body.Invar9 != nullptr && body.Invar9Modes == body.ModeCount) return true;
  TensorRows rows = make_pair_tensors(body.ModeCount);
  if (rows == nullptr) return false;
  const int shared = body.Invar9 == nullptr ? 0 : std::min(body.Invar9Modes, body.ModeCount);
  for (int i = 0; i < shared; ++i) {
    for (int j = 0; j < shared; ++j)
      std::copy_n(body.Invar9[i][j], kTensorSize, rows[static_cast<std::size_t>(i)][j]);
  }
  install_pair_tensors(body, std::move(rows));
  return true;
}

void install_cross_sums(FmdBody& body, ValueRows rows) {
  release_value_rows(body.Invar5);
  body.Invar5 = rows.release();
  body.Invar5Modes = body.ModeCount;
}

void install_mode_tensors(FmdBody& body, ValueRows rows) {
  release_value_rows(body.Invar8);
  body.Invar8 = rows.release();
  body.Invar8Modes = body.ModeCount;
}

void install_pair_tensors(FmdBody& body, TensorRows rows) {
  release_tensor_rows(body.Invar9);
  body.Invar9 = rows.release();
  body.Invar9Modes = body.ModeCount;
}

}  // namespace fmd
