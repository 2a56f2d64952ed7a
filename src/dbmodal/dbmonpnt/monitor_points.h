// What other modules need of monitor points beyond the exported operations.
#ifndef FMDTOOLKIT_DBMODAL_DBMONPNT_MONITOR_POINTS_H
#define FMDTOOLKIT_DBMODAL_DBMONPNT_MONITOR_POINTS_H

#include "body/body.h"
#include "body/monitor_point.h"

namespace fmd {

// Kinds of operator: 1 displacement, 2 velocity, 3 acceleration, 4 load.
constexpr int kOperatorKinds = 4;

double* FmdMonitorPoint::*operator_field(int kind);

// Doubles of an operator of that kind with the present mode count; 0 where they cannot be counted.
std::int64_t operator_size(const FmdBody& body, const FmdMonitorPoint& point, int kind);

// Takes the columns of modes beyond a new, smaller count out of every operator that has the present count.
void drop_operator_columns(FmdBody& body, int modes);

void release_monitor_points(FmdBody& body);

}  // namespace fmd

#endif
