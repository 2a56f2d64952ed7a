// Matrix operators. Accessors answer 0 for success and -1 for failure, as this family always has.
#include "dbmodal/dbmtxop/matrix_operators.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr int kStep = 5;
constexpr int kLabelSize = 80;

void release_operator(FmdMatrixOperator* from) {
  if (from == nullptr) return;
  if (from->rowLabels != nullptr) {
    for (int row = 0; row < from->rowCount; ++row) fmd::release(from->rowLabels[row]);
    fmd::release(from->rowLabels);
  }
  for (int sub = 0; sub < from->subOperatorCount; ++sub) {
    fmd::release(from->subOperators[sub]->data);
    fmd::release(from->subOperators[sub]);
  }
  fmd::release(from->subOperators);
  std::free(from);
}

FmdMatrixOperator* operator_at(const FmdBody* body, int index) {
  if (body == nullptr || body->MatrixOperators == nullptr) return nullptr;
  return index < 0 || index >= body->MatrixOperatorCount ? nullptr : body->MatrixOperators[index];
}

const FmdSubOperator* sub_operator_at(const FmdBody* body, int index, int sub) {
  const FmdMatrixOperator* const from = operator_at(body, index);
  if (from == nullptr || sub < 0 || sub >= from->subOperatorCount) return nullptr;
  return from->subOperators[sub];
}

// One more place in a table of pointers that grows by steps; false without memory, which is reported.
template <typename T>
bool provide_place(T**& table, std::int32_t count, std::int32_t& capacity) {
  if (count < capacity) return true;
  if (!fmd::grow(table, std::int64_t{capacity} + kStep)) {
    fmd::report_allocation_failure("dbmtxop");
    return false;
  }
  capacity += kStep;
  return true;
}

bool fill_labels(FmdMatrixOperator& to, char** labels) {
  if (to.rowCount == 0) return true;
  to.rowLabels = fmd::allocate<char*>(to.rowCount, "dbmtxop").release();
  if (to.rowLabels == nullptr) return false;
  for (int row = 0; row < to.rowCount; ++row) {
    to.rowLabels[row] = fmd::allocate<char>(kLabelSize, "dbmtxop").release();
    if (to.rowLabels[row] == nullptr) return false;
    if (labels != nullptr) std::snprintf(to.rowLabels[row], kLabelSize, "%s", labels[row]);
  }
  return true;
}

}  // namespace

namespace fmd {

void release_matrix_operators(FmdBody& body) {
  for (int index = 0; index < body.MatrixOperatorCount; ++index)
    release_operator(body.MatrixOperators[index]);
  release(body.MatrixOperators);
  body.MatrixOperatorCount = 0;
}

}  // namespace fmd

int FMD_SetMatrixOperatorInfo(FmdBody* body, char* name, char** labels, int rowCount) {
  if (CheckFMD(body) == 0) return -1;
  if (!provide_place(body->MatrixOperators, body->MatrixOperatorCount, body->MatrixOperatorCapacity))
    return -1;
  const int index = body->MatrixOperatorCount++;
  body->MatrixOperators[index] = nullptr;
  auto* const made = fmd::allocate<FmdMatrixOperator>(1, "dbmtxop").release();
  if (made == nullptr) return -1;
  std::snprintf(made->name, sizeof made->name, "%s", name);
  made->rowCount = rowCount;
  if (!fill_labels(*made, labels)) {
    release_operator(made);
    return -1;
  }
  body->MatrixOperators[index] = made;
  body->BlockExists[fmd::kMatrixOperators] = 1;
  return index;
}

int FMD_SetMatrixOperatorData(FmdBody* body, int index, char* tag, int columnCount, double* data) {
  FmdMatrixOperator* const to = operator_at(body, index);
  if (to == nullptr) {
    FMD_Error("Invalid monitor point index: %d.\n", index);
    return -1;
  }
  auto made = fmd::allocate<FmdSubOperator>(1, "dbmtxop");
  if (made == nullptr) return -1;
  const std::int64_t count = std::int64_t{to->rowCount} * columnCount;
  auto values = fmd::allocate<double>(count, "dbmtxop");
  if (values == nullptr) return -1;
  std::snprintf(made[0].tag, sizeof made[0].tag, "%s", tag);
  made[0].columnCount = columnCount;
  std::copy_n(data, count, values.get());
  if (!provide_place(to->subOperators, to->subOperatorCount, to->subOperatorCapacity)) return -1;
  made[0].data = values.release();
  to->subOperators[to->subOperatorCount] = made.release();
  return to->subOperatorCount++;
}

int FMD_GetMatrixOperatorCount(FmdBody* body) {
  return CheckFMD(body) == 0 ? -1 : body->MatrixOperatorCount;
}

int FMD_GetMatrixOperatorNumRows(FmdBody* body, int index) {
  const FmdMatrixOperator* const from = operator_at(body, index);
  return from == nullptr ? -1 : from->rowCount;
}

int FMD_GetMatrixOperatorName(FmdBody* body, int index, char* name) {
  const FmdMatrixOperator* const from = operator_at(body, index);
  if (from == nullptr) return -1;
  std::strcpy(name, from->name);
  return 0;
}

int FMD_GetMatrixOperatorLabels(FmdBody* body, int index, char** labels) {
  const FmdMatrixOperator* const from = operator_at(body, index);
  if (from == nullptr) return -1;
  for (int row = 0; row < from->rowCount; ++row) std::strcpy(labels[row], from->rowLabels[row]);
  return 0;
}

int FMD_GetMatrixOperatorNumSubOperator(FmdBody* body, int index) {
  const FmdMatrixOperator* const from = operator_at(body, index);
  return from == nullptr ? 0 : from->subOperatorCount;
}

int FMD_GetMatrixOperatorSubNumCols(FmdBody* body, int index, int sub) {
  const FmdSubOperator* const from = sub_operator_at(body, index, sub);
  return from == nullptr ? -1 : from->columnCount;
}

int FMD_GetMatrixOperatorSubTag(FmdBody* body, int index, int sub, char* tag) {
  const FmdSubOperator* const from = sub_operator_at(body, index, sub);
  if (from == nullptr) return -1;
  std::strcpy(tag, from->tag);
  return 0;
}

int FMD_GetMatrixOperatorSubData(FmdBody* body, int index, int sub, double* out) {
  const FmdSubOperator* const from = sub_operator_at(body, index, sub);
  if (from == nullptr) return -1;
  std::copy_n(from->data, std::int64_t{operator_at(body, index)->rowCount} * from->columnCount, out);
  return 0;
}
