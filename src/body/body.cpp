#include "body/body.h"

namespace fmd {

void initialize_body(FmdBody& body, int planned_nodes, int planned_modes) {
  body.DataFile.DoublePrecision = 1;
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    body.ModeFile[type].DoublePrecision = 1;
    body.LoadedModeIndex[type] = -1;
  }
  body.Version = 31;
  for (int quantity = 0; quantity < 4; ++quantity) {
    body.UnitStepFactor[quantity] = 1.0;
    body.UnitTotalFactor[quantity] = 1.0;
  }
  body.KeepModesInMemory = 1;
  body.FreeEdgeCount = -1;
  body.ReferenceCount = 1;
  body.PlannedNodeCount = planned_nodes;
  body.PlannedModeCount = planned_modes;
}

int summary_byte_of_block(int id) {
  // Bytes 7 and 11 of the summary are reserved, which is why ids and bytes drift apart.
  if (id < 3) return -1;
  if (id <= 9) return id - 3;
  if (id <= 12) return id - 2;
  return id - 1;
}

}  // namespace fmd
