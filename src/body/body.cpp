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

}  // namespace fmd
