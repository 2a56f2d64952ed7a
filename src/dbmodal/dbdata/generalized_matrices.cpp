// The generalized matrices, handed out sparse, full or for selected modes. Where there is no list the
// diagonal of the eigenvalue table serves.
#include <algorithm>

#include "body/body.h"
#include "dbmodal/dbdata/mode_record.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

using SparseGetter = int (*)(FmdBody*, double*, int*, int*);

void copy_entries(const FmdMatrixEntry* entries, int count, int capacity, double* values, int* rows,
                  int* columns) {
  for (int i = 0; i < count; ++i) {
    const FmdMatrixEntry& entry = i < capacity ? entries[i] : fmd::kNoEntry;
    rows[i] = entry.Row;
    columns[i] = entry.Column;
    values[i] = entry.Value;
  }
}

// The diagonal from table or defaults; a null values array asks for the places alone.
void copy_diagonal(FmdBody* body, double fmd::ModalPair::*quantity, double* values, int* rows, int* columns) {
  for (int i = 0; i < body->ModeCount; ++i) {
    rows[i] = i;
    columns[i] = i;
    if (values != nullptr) values[i] = fmd::diagonal_pair(*body, i).*quantity;
  }
}

// The sparse reading in temporary arrays. A failed allocation says nothing: the reading just fails.
struct SparseEntries {
  int count = 0;
  fmd::CArray<double> values;
  fmd::CArray<int> rows;
  fmd::CArray<int> columns;

  bool read(FmdBody* body, int entries, SparseGetter get) {
    count = entries;
    values.reset(static_cast<double*>(fmd::allocate_quietly(entries, sizeof(double))));
    rows.reset(static_cast<int*>(fmd::allocate_quietly(entries, sizeof(int))));
    columns.reset(static_cast<int*>(fmd::allocate_quietly(entries, sizeof(int))));
    if (values == nullptr || rows == nullptr || columns == nullptr) return false;
    return get(body, values.get(), rows.get(), columns.get()) != 0;
  }
};

void zero_full(double* matrix, int n) {
  if (n > 0) std::fill_n(matrix, std::int64_t{n} * n, 0.0);
}

// Entries outside of the caller's matrix are left out.
bool fill_full(FmdBody* body, int entries, SparseGetter get, double* matrix, int n) {
  SparseEntries sparse;
  if (!sparse.read(body, entries, get)) return false;
  for (int i = 0; i < sparse.count; ++i) {
    const int row = sparse.rows[static_cast<std::size_t>(i)];
    const int column = sparse.columns[static_cast<std::size_t>(i)];
    if (row < 0 || column < 0 || row >= n || column >= n) continue;
    const double value = sparse.values[static_cast<std::size_t>(i)];
    matrix[std::int64_t{row} * n + column] = value;
    matrix[std::int64_t{column} * n + row] = value;
  }
  return true;
}

int fill_selected(FmdBody* body, int entries, SparseGetter get, double** matrix, int n, int* selected) {
  for (int row = 0; row < n; ++row) std::fill_n(matrix[row], n, 0.0);
  if (CheckFMD(body) == 0) return 0;
  SparseEntries sparse;
  if (!sparse.read(body, entries, get)) return 0;
  for (int i = 0; i < sparse.count; ++i) {
    const auto at = static_cast<std::size_t>(i);
    const int row = sparse.rows[at];
    const int column = sparse.columns[at];
    if (row < 0 || column < 0 || row >= body->ModeCount || column >= body->ModeCount) continue;
    const int a = SelectedModeIndex(body->ModeNumbers[row], selected, n);
    const int b = SelectedModeIndex(body->ModeNumbers[column], selected, n);
    if (a < 0 || b < 0) continue;
    matrix[a][b] = sparse.values[at];
    matrix[b][a] = sparse.values[at];
  }
  return 1;
}

}  // namespace

int FMD_NumberOfGenStiff(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  return body->GenStiff != nullptr ? body->GenStiffCount : body->ModeCount;
}

int FMD_NumberOfGenMass(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  return body->GenMass != nullptr ? body->GenMassCount : body->ModeCount;
}

int FMD_NumberOfGenDamp(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  return body->GenDamp != nullptr ? body->GenDampCount : 0;
}

int FMD_GenDampExist(FmdBody* body) {
  return CheckFMD(body) != 0 && body->GenDamp != nullptr && body->GenDampCount > 0 ? 1 : 0;
}

int FMD_GenStiffSparse(FmdBody* body, double* values, int* rows, int* columns) {
  if (CheckFMD(body) == 0) return 0;
  if (body->GenStiff != nullptr) {
    copy_entries(body->GenStiff, body->GenStiffCount, body->GenStiffCapacity, values, rows, columns);
  } else {
    copy_diagonal(body, &fmd::ModalPair::stiffness, values, rows, columns);
  }
  return 1;
}

int FMD_GenMassSparse(FmdBody* body, double* values, int* rows, int* columns) {
  if (CheckFMD(body) == 0) return 0;
  if (body->GenMass != nullptr) {
    copy_entries(body->GenMass, body->GenMassCount, body->GenMassCapacity, values, rows, columns);
  } else {
    copy_diagonal(body, &fmd::ModalPair::mass, values, rows, columns);
  }
  return 1;
}

int FMD_GenDampSparse(FmdBody* body, double* values, int* rows, int* columns) {
  if (CheckFMD(body) == 0 || body->GenDamp == nullptr) return 0;
  copy_entries(body->GenDamp, body->GenDampCount, body->GenDampCapacity, values, rows, columns);
  return 1;
}

int FMD_GenStiffSelected(FmdBody* body, double** rows, int n, int* selected) {
  return fill_selected(body, body == nullptr ? 0 : FMD_NumberOfGenStiff(body), FMD_GenStiffSparse, rows, n,
                       selected);
}

int FMD_GenMassSelected(FmdBody* body, double** rows, int n, int* selected) {
  return fill_selected(body, body == nullptr ? 0 : FMD_NumberOfGenMass(body), FMD_GenMassSparse, rows, n,
                       selected);
}

int FMD_GenStiffFull(FmdBody* body, double* matrix, int n) {
  zero_full(matrix, n);
  if (CheckFMD(body) == 0) return 0;
  return fill_full(body, FMD_NumberOfGenStiff(body), FMD_GenStiffSparse, matrix, n) ? 1 : 0;
}

int FMD_GenMassFull(FmdBody* body, double* matrix, int n) {
  if (CheckFMD(body) == 0) return 0;
  zero_full(matrix, n);
  return fill_full(body, FMD_NumberOfGenMass(body), FMD_GenMassSparse, matrix, n) ? 1 : 0;
}

int FMD_GenDampFull(FmdBody* body, double* matrix, int n) {
  if (CheckFMD(body) == 0 || body->GenDamp == nullptr) return 0;
  zero_full(matrix, n);
  return fill_full(body, FMD_NumberOfGenDamp(body), FMD_GenDampSparse, matrix, n) ? 1 : 0;
}

int FMD_Transformation(FmdBody* body, double* matrix) {
  if (CheckFMD(body) == 0 || body->Transformation == nullptr) return 0;
  // Modes added since the matrix was stored have zeros.
  const int order = body->ModeCount;
  const int stored = std::min(order, body->TransformationOrder);
  std::fill_n(matrix, std::int64_t{order} * order, 0.0);
  for (int row = 0; row < stored; ++row) {
    const double* const from = body->Transformation + std::int64_t{row} * body->TransformationOrder;
    std::copy_n(from, stored, matrix + std::int64_t{row} * order);
  }
  return 1;
}
