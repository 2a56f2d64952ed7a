// Monitor points (33) and matrix operators (34). Both cover all modes of the body, whatever the frequency
// band.
#include <algorithm>
#include <cstring>

#include "body/matrix_operator.h"
#include "dbmodal/block_table.h"
#include "dbmodal/dbmonpnt/monitor_points.h"
#include "dbmodal/dbwrite/job.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr int kLoadOperator = 4;

// A text in a field of fixed width, without terminator when full.
template <std::size_t width>
void put_text(WriteJob& job, const char* text) {
  char field[width] = {};
  std::memcpy(field, text, std::min(width, std::strlen(text)));
  job.sink->put_chars(field, width);
}

// Records that could not be made when they were set have a place in the table and nothing else.
template <typename T>
int count_made(T* const* table, int count) {
  return static_cast<int>(std::count_if(table, table + count, [](const T* made) { return made != nullptr; }));
}

// A block that is marked as present and has nothing is one that could not be had.
bool refuse_empty() {
  report_allocation_failure("dbwrite");
  return false;
}

// An operator of that many doubles; what the record lacks is zero.
void put_operator(WriteJob& job, const FmdMonitorPoint& point, int kind, std::int64_t size) {
  const double* const values = point.*operator_field(kind);
  const std::int64_t stored =
      values == nullptr ? 0 : std::min<std::int64_t>(size, point.operatorSizes[kind - 1]);
  job.sink->put_reals(values, static_cast<std::size_t>(stored));
  for (std::int64_t i = stored; i < size; ++i) job.sink->put_real(0.0);
}

void put_monitor_point(WriteJob& job, const FmdMonitorPoint& point) {
  job.sink->put_int(point.type);
  job.sink->put_int(point.resultType);
  job.sink->put_int(point.component);
  put_text<8>(job, point.name);
  put_text<56>(job, point.label);
  job.sink->put_int(point.rowCount);
  job.sink->put_int(static_cast<std::int32_t>(point.operatorFlags));
  const std::int64_t layer = std::int64_t{point.rowCount} * job.body->ModeCount;
  for (int kind = 1; kind <= kOperatorKinds; ++kind) {
    if ((point.operatorFlags & (1U << (kind - 1))) == 0) continue;
    put_operator(job, point, kind, kind == kLoadOperator ? layer * job.body->LoadCaseCount : layer);
  }
}

void put_sub_operator(WriteJob& job, const FmdSubOperator& sub, int rows) {
  job.sink->put_int(sub.columnCount);
  put_text<8>(job, sub.tag);
  job.sink->put_reals(sub.data, as_size(rows) * as_size(sub.columnCount));
}

void put_matrix_operator(WriteJob& job, const FmdMatrixOperator& from) {
  job.sink->put_int(from.rowCount);
  put_text<8>(job, from.name);
  for (int row = 0; row < from.rowCount; ++row) put_text<80>(job, from.rowLabels[row]);
  job.sink->put_int(from.subOperatorCount);
  for (int sub = 0; sub < from.subOperatorCount; ++sub) {
    put_sub_operator(job, *from.subOperators[sub], from.rowCount);
  }
}

}  // namespace

bool write_monitor_points(WriteJob& job) {
  const FmdBody& body = *job.body;
  const int count = count_made(body.MonitorPoints, body.MonitorPointCount);
  if (count == 0) return refuse_empty();
  FMD_Info("\nMonitor Point info:\n   Count: %ld", static_cast<long>(count));
  job.sink->put_int(count);
  for (int i = 0; i < body.MonitorPointCount; ++i) {
    if (body.MonitorPoints[i] != nullptr) put_monitor_point(job, *body.MonitorPoints[i]);
  }
  return true;
}

bool write_matrix_operators(WriteJob& job) {
  const FmdBody& body = *job.body;
  const int count = count_made(body.MatrixOperators, body.MatrixOperatorCount);
  if (count == 0) return refuse_empty();
  FMD_Info("\nMatrix Operator Info:\n   Count: %ld", static_cast<long>(count));
  job.sink->put_int(count);
  for (int i = 0; i < body.MatrixOperatorCount; ++i) {
    if (body.MatrixOperators[i] != nullptr) put_matrix_operator(job, *body.MatrixOperators[i]);
  }
  return true;
}

}  // namespace fmd
