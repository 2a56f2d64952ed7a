// The operators of monitor points follow a change of the modal coordinates: each row becomes row times T.
#include <algorithm>

#include "dbmodal/dbmonpnt/monitor_points.h"
#include "dbmodal/dbtools/orthonormal_kernels.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

// Calls visit(point, kind) for every operator that is there, as long as it answers true.
template <typename Visit>
bool for_each_operator(FmdBody& body, Visit visit) {
  for (int index = 0; index < body.MonitorPointCount; ++index) {
    FmdMonitorPoint* const point = body.MonitorPoints[index];
    if (point == nullptr) continue;
    for (int kind = 1; kind <= fmd::kOperatorKinds; ++kind) {
      if (point->*fmd::operator_field(kind) != nullptr && !visit(*point, kind)) return false;
    }
  }
  return true;
}

// Gives an operator that was set with fewer modes the zeros that a getter would end it with.
bool fill_up(const FmdBody& body, FmdMonitorPoint& point, int kind) {
  const std::int64_t count = fmd::operator_size(body, point, kind);
  std::int32_t& size = point.operatorSizes[kind - 1];
  if (size >= count) return true;
  double*& field = point.*fmd::operator_field(kind);
  if (!fmd::grow(field, count)) {
    fmd::report_allocation_failure("dbmonpnt");
    return false;
  }
  std::fill(field + size, field + count, 0.0);
  size = static_cast<std::int32_t>(count);
  return true;
}

void transform_rows(double* rows, std::int64_t count, const double* t, int modes, double* scratch) {
  for (std::int64_t r = 0; r < count; ++r, rows += modes) {
    std::copy_n(rows, modes, scratch);
    fmd::transform_row(scratch, t, modes, 0, rows);
  }
}

}  // namespace

namespace fmd {

void drop_operator_columns(FmdBody& body, int modes) {
  for_each_operator(body, [&](FmdMonitorPoint& point, int kind) {
    const std::int64_t count = operator_size(body, point, kind);
    std::int32_t& size = point.operatorSizes[kind - 1];
    if (count == 0 || size != count) return true;
    double* const field = point.*operator_field(kind);
    const std::int64_t rows = count / body.ModeCount;
    for (std::int64_t r = 1; r < rows; ++r) std::copy_n(field + r * body.ModeCount, modes, field + r * modes);
    size = static_cast<std::int32_t>(rows * modes);
    return true;
  });
}

}  // namespace fmd

int FMD_TransformMonitorPoints(FmdBody* body, double* t) {
  if (CheckFMD(body) == 0 || t == nullptr) return 0;
  const int modes = body->ModeCount;
  if (body->MonitorPointCount == 0 || modes == 0) return 1;
  const auto scratch = fmd::allocate<double>(modes, "dbmonpnt");
  if (scratch == nullptr) return 0;
  const auto fill = [&](FmdMonitorPoint& point, int kind) { return fill_up(*body, point, kind); };
  // All of the memory first, so that a failure leaves every operator as it was.
  if (!for_each_operator(*body, fill)) return 0;
  for_each_operator(*body, [&](FmdMonitorPoint& point, int kind) {
    const std::int64_t rows = fmd::operator_size(*body, point, kind) / modes;
    transform_rows(point.*fmd::operator_field(kind), rows, t, modes, scratch.get());
    return true;
  });
  return 1;
}
