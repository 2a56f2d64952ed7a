// Blocks of the operators over modes: monitor points (33), matrix operators (34).
#include <climits>
#include <cstring>

#include "body/matrix_operator.h"
#include "body/monitor_point.h"
#include "dbmodal/dbmonpnt/monitor_points.h"
#include "dbmodal/dbread/block_reader.h"

namespace fmd {

namespace {

constexpr const char* kPointProblem = "Problem when reading Monitor Point Block";
constexpr const char* kOperatorProblem = "Problem when reading Matrix Operator Block";
constexpr int kLoadOperator = 4;

bool fail_at_points() {
  return report(kPointProblem);
}

bool fail_at_operators() {
  return report(kOperatorProblem);
}

// The values of an operator, which the record must have.
bool read_values(BlockReader& reader, std::int64_t count, double*& values, const char* problem) {
  if (count > INT_MAX || (count > 0 && !reader.has(count, reader.words_per_real()))) return report(problem);
  values = allocate<double>(count, "dbread").release();
  if (values == nullptr) return false;
  return reader.read_reals(values, count) || report(problem);
}

bool read_point_operator(BlockReader& reader, FmdMonitorPoint& point, int kind, int modes, int load_cases) {
  if ((point.operatorFlags & (1U << (kind - 1))) == 0) return true;
  const std::int64_t rows = std::int64_t{point.rowCount} * (kind == kLoadOperator ? load_cases : 1);
  if (rows > INT_MAX) return fail_at_points();
  if (!read_values(reader, rows * modes, point.*operator_field(kind), kPointProblem)) return false;
  point.operatorSizes[kind - 1] = static_cast<std::int32_t>(rows * modes);
  return true;
}

bool read_point(BlockReader& reader, FmdMonitorPoint& point, int modes, int load_cases) {
  char name[8];
  char label[56];
  std::int32_t flags = 0;
  if (!reader.read_int(point.type) || !reader.read_int(point.resultType) ||
      !reader.read_int(point.component) || !reader.read_chars(name) || !reader.read_chars(label) ||
      !reader.read_int(point.rowCount) || !reader.read_int(flags) || point.rowCount < 0)
    return fail_at_points();
  std::memcpy(point.name, name, sizeof name);
  std::memcpy(point.label, label, sizeof label);
  point.operatorFlags = static_cast<std::uint32_t>(flags);
  point.loadOperatorCount = load_cases;
  for (int kind = 1; kind <= kOperatorKinds; ++kind) {
    if (!read_point_operator(reader, point, kind, modes, load_cases)) return false;
  }
  return true;
}

bool read_sub_operator(BlockReader& reader, FmdSubOperator& sub, std::int32_t rows) {
  if (!reader.read_int(sub.columnCount) || !reader.read_chars(sub.tag) || sub.columnCount < 0)
    return fail_at_operators();
  return read_values(reader, std::int64_t{sub.columnCount} * rows, sub.data, kOperatorProblem);
}

bool read_row_labels(BlockReader& reader, FmdMatrixOperator& to) {
  constexpr int kLabelSize = 80;
  constexpr int kLabelWords = kLabelSize / 4;
  if (to.rowCount == 0) return true;
  if (!reader.has(to.rowCount, kLabelWords)) return fail_at_operators();
  to.rowLabels = allocate<char*>(to.rowCount, "dbread").release();
  if (to.rowLabels == nullptr) return false;
  for (std::int32_t row = 0; row < to.rowCount; ++row) {
    to.rowLabels[row] = allocate<char>(kLabelSize, "dbread").release();
    if (to.rowLabels[row] == nullptr) return false;
    if (DB_ReadCHARs(reader.body.DataFile, to.rowLabels[row], kLabelSize) == 0) return fail_at_operators();
    to.rowLabels[row][kLabelSize - 1] = '\0';
  }
  return true;
}

bool read_sub_operators(BlockReader& reader, FmdMatrixOperator& to) {
  std::int32_t count = 0;
  if (!reader.read_int(count) || !reader.has(count, 3)) return fail_at_operators();
  if (count == 0) return true;
  to.subOperators = allocate<FmdSubOperator*>(count, "dbread").release();
  if (to.subOperators == nullptr) return false;
  to.subOperatorCapacity = count;
  for (; to.subOperatorCount < count; ++to.subOperatorCount) {
    auto sub = allocate<FmdSubOperator>(1, "dbread");
    if (sub == nullptr) return false;
    const bool done = read_sub_operator(reader, sub[0], to.rowCount);
    to.subOperators[to.subOperatorCount] = sub.release();
    if (!done) {
      ++to.subOperatorCount;
      return false;
    }
  }
  return true;
}

bool read_operator(BlockReader& reader, FmdMatrixOperator& to) {
  char name[8];
  std::int32_t rows = 0;
  if (!reader.read_int(rows) || !reader.read_chars(name) || rows < 0) return fail_at_operators();
  std::memcpy(to.name, name, sizeof name);
  to.rowCount = rows;
  return read_row_labels(reader, to) && read_sub_operators(reader, to);
}

}  // namespace

bool read_monitor_points(BlockReader& reader) {
  FmdBody& body = reader.body;
  const int modes = FMD_ModeCount(&body);
  std::int32_t count = 0;
  if (!reader.read_int(count)) return fail_at_points();
  FMD_Info(" Monitor Point count: %d\n", count);
  if (count > 0 && !reader.has(count, 21)) return fail_at_points();
  auto points = allocate<FmdMonitorPoint*>(count, "dbread");
  if (points == nullptr) return false;
  body.MonitorPoints = points.release();
  body.MonitorPointCount = body.MonitorPointCapacity = count;
  const int load_cases = FMD_GetModalLoadCaseCount(&body);
  for (std::int32_t i = 0; i < count; ++i) {
    body.MonitorPoints[i] = allocate<FmdMonitorPoint>(1, "dbread").release();
    if (body.MonitorPoints[i] == nullptr) return false;
    if (!read_point(reader, *body.MonitorPoints[i], modes, load_cases)) return false;
  }
  return true;
}

bool read_matrix_operators(BlockReader& reader) {
  FmdBody& body = reader.body;
  std::int32_t count = 0;
  if (!reader.read_int(count) || (count > 0 && !reader.has(count, 4))) return fail_at_operators();
  auto operators = allocate<FmdMatrixOperator*>(count, "dbread");
  if (operators == nullptr) return false;
  body.MatrixOperators = operators.release();
  body.MatrixOperatorCount = body.MatrixOperatorCapacity = count;
  for (std::int32_t i = 0; i < count; ++i) {
    body.MatrixOperators[i] = allocate<FmdMatrixOperator>(1, "dbread").release();
    if (body.MatrixOperators[i] == nullptr) return false;
    if (!read_operator(reader, *body.MatrixOperators[i])) return false;
  }
  return true;
}

}  // namespace fmd
