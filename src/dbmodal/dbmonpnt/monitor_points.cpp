// Monitor points. Accessors answer 0 for success and -1 for failure, as this family always has.
#include "dbmodal/dbmonpnt/monitor_points.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "body/body.h"
#include "body/monitor_point.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

double* FmdMonitorPoint::*operator_field(int kind) {
  constexpr double* FmdMonitorPoint::*kFields[] = {
      &FmdMonitorPoint::displacementOperator, &FmdMonitorPoint::velocityOperator,
      &FmdMonitorPoint::accelerationOperator, &FmdMonitorPoint::loadOperator};
  return kFields[kind - 1];
}

std::int64_t operator_size(const FmdBody& body, const FmdMonitorPoint& point, int kind) {
  constexpr int kLoadOperator = 4;
  const std::int64_t layer = std::int64_t{point.rowCount} * body.ModeCount;
  if (kind != kLoadOperator) return layer;
  return layer > 0 && point.loadOperatorCount > INT32_MAX / layer ? 0 : layer * point.loadOperatorCount;
}

void release_monitor_points(FmdBody& body) {
  for (int index = 0; index < body.MonitorPointCount; ++index) {
    FmdMonitorPoint* point = body.MonitorPoints[index];
    if (point == nullptr) continue;
    for (int kind = 1; kind <= kOperatorKinds; ++kind) release(point->*operator_field(kind));
    std::free(point);
  }
  release(body.MonitorPoints);
  body.MonitorPointCount = 0;
}

}  // namespace fmd

namespace {

constexpr int kStep = 20;

bool is_kind(int kind) {
  return kind >= 1 && kind <= fmd::kOperatorKinds;
}

// The point at an index, or null; says nothing.
FmdMonitorPoint* point_at(const FmdBody* body, int index) {
  if (body == nullptr || body->MonitorPoints == nullptr) return nullptr;
  return index < 0 || index >= body->MonitorPointCount ? nullptr : body->MonitorPoints[index];
}

int digits_of(int component) {
  char text[16];
  return std::snprintf(text, sizeof text, "%d", component);
}

bool provide_place(FmdBody& body) {
  if (body.MonitorPointCount < body.MonitorPointCapacity) return true;
  if (!fmd::grow(body.MonitorPoints, std::int64_t{body.MonitorPointCapacity} + kStep)) {
    fmd::report_allocation_failure("dbmonpnt");
    return false;
  }
  body.MonitorPointCapacity += kStep;
  return true;
}

}  // namespace

void FMD_SetMonitorPointInfo(FmdBody* body, int type, int resultType, int component, int loadOperatorCount,
                             double* location, char* name, char* label) {
  if (CheckFMD(body) == 0 || !provide_place(*body)) return;
  const int index = body->MonitorPointCount++;
  body->MonitorPoints[index] = nullptr;
  auto* const point = fmd::allocate<FmdMonitorPoint>(1, "dbmonpnt").release();
  if (point == nullptr) return;
  point->type = type;
  point->resultType = resultType;
  point->component = component;
  point->loadOperatorCount = loadOperatorCount;
  std::copy_n(location, 3, point->location);
  std::snprintf(point->name, sizeof point->name, "%s", name);
  std::snprintf(point->label, sizeof point->label, "%s", label);
  point->rowCount = digits_of(component);
  body->MonitorPoints[index] = point;
  body->BlockExists[fmd::kMonitorPoints] = 1;
}

int FMD_GetMonitorPointCount(FmdBody* body) {
  return CheckFMD(body) == 0 ? -1 : body->MonitorPointCount;
}

int FMD_GetMonitorPointType(FmdBody* body, int index) {
  const FmdMonitorPoint* const point = point_at(body, index);
  return point == nullptr ? -1 : point->type;
}

int FMD_GetMonitorPointResultType(FmdBody* body, int index) {
  const FmdMonitorPoint* const point = point_at(body, index);
  return point == nullptr ? -1 : point->resultType;
}

int FMD_GetMonitorPointComponent(FmdBody* body, int index) {
  const FmdMonitorPoint* const point = point_at(body, index);
  return point == nullptr ? -1 : point->component;
}

int FMD_GetMonitorPointNameLabel(FmdBody* body, int index, char* name, char* label) {
  const FmdMonitorPoint* const point = point_at(body, index);
  if (point == nullptr) return -1;
  std::strcpy(name, point->name);
  std::strcpy(label, point->label);
  return 0;
}

int FMD_GetMonitorPointLocation(FmdBody* body, int index, double* location) {
  const FmdMonitorPoint* const point = point_at(body, index);
  if (point == nullptr) return -1;
  std::copy_n(point->location, 3, location);
  return 0;
}

int FMD_GetMonitorPointOperatorSize(FmdBody* body, int index, int* rows, int* columns) {
  const FmdMonitorPoint* const point = point_at(body, index);
  if (point == nullptr) return -1;
  *rows = point->rowCount;
  *columns = body->ModeCount;
  return 0;
}

int FMD_GetMonitorPointNumLoadOperator(FmdBody* body, int index) {
  const FmdMonitorPoint* const point = point_at(body, index);
  return point == nullptr ? 0 : point->loadOperatorCount;
}

int FMD_MonitorPointHasOperator(FmdBody* body, int index, int kind) {
  const FmdMonitorPoint* const point = point_at(body, index);
  if (point == nullptr || !is_kind(kind)) return 0;
  return static_cast<int>(point->operatorFlags & (1U << (kind - 1)));
}

int FMD_SetMonitorPointOperator(FmdBody* body, int index, int kind, double* data) {
  if (CheckFMD(body) == 0) return -1;
  FmdMonitorPoint* const point = point_at(body, index);
  if (point == nullptr) {
    FMD_Error("Invalid monitor point index: %d.\n", index);
    return -1;
  }
  if (!is_kind(kind)) {
    FMD_Error("Invalid operator type. Valid choices are: 1 for disp operator, 2 for load operator.\n");
    return -1;
  }
  double*& field = point->*fmd::operator_field(kind);
  std::int32_t& size = point->operatorSizes[kind - 1];
  fmd::release(field);
  size = 0;
  const std::int64_t count = fmd::operator_size(*body, *point, kind);
  field = fmd::allocate<double>(count, "dbmonpnt").release();
  if (field == nullptr) return -1;
  std::copy_n(data, count, field);
  size = static_cast<std::int32_t>(count);
  point->operatorFlags |= 1U << (kind - 1);
  return 0;
}

int FMD_GetMonitorPointOperator(FmdBody* body, int index, int kind, double* out) {
  if (FMD_MonitorPointHasOperator(body, index, kind) == 0) return -1;
  const FmdMonitorPoint* const point = point_at(body, index);
  const double* const field = point->*fmd::operator_field(kind);
  if (field == nullptr) return -1;
  // An operator set with fewer modes than the body has now ends in zeros.
  const std::int64_t count = fmd::operator_size(*body, *point, kind);
  const std::int64_t stored = std::min<std::int64_t>(count, point->operatorSizes[kind - 1]);
  std::copy_n(field, stored, out);
  std::fill(out + stored, out + count, 0.0);
  return 0;
}
