// What other modules need of monitor points beyond the exported operations.
#ifndef FMDTOOLKIT_DBMODAL_DBMONPNT_MONITOR_POINTS_H
#define FMDTOOLKIT_DBMODAL_DBMONPNT_MONITOR_POINTS_H

#include "body/body.h"
#include "body/monitor_point.h"

namespace fmd {

// Kinds of operator: 1 displacement, 2 velocity, 3 acceleration, 4 load.
constexpr int kOperatorKinds = 4;

double* FmdMonitorPoint::*operator_field(int kind);

void release_monitor_points(FmdBody& body);

}  // namespace fmd

#endif
