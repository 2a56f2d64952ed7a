// A named quantity that follows from the modal coordinates alone: up to four operators over the modes.
#ifndef FMDTOOLKIT_BODY_MONITOR_POINT_H
#define FMDTOOLKIT_BODY_MONITOR_POINT_H

#include <cstdint>

struct FmdMonitorPoint {
  std::int32_t type;        // 1 MONPNT1, 2 MONPNT2, 3 MONPNT3, 4 MONDSP1
  std::int32_t resultType;  // 1 displacement, 2 stress, 3 strain, 4 force
  std::int32_t component;   // the selected components, one decimal digit each
  double location[3];
  char name[9];
  char label[57];
  std::int32_t rowCount;  // digits of component
  std::int32_t loadOperatorCount;
  std::uint32_t operatorFlags;   // bit 0 displacement, 1 velocity, 2 acceleration, 3 load
  double* displacementOperator;  // rowCount by modes, row by row
  double* velocityOperator;
  double* accelerationOperator;
  double* loadOperator;           // loadOperatorCount by rowCount by modes
  std::int32_t operatorSizes[4];  // doubles that each operator has
};

#endif
