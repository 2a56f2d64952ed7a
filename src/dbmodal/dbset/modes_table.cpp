// Modes come into being, as many as were planned.
#include <initializer_list>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

int FMD_AddMode(FmdBody* body, int number) {
  if (CheckFMD(body) == 0) return -1;
  if (body->ModeCount >= body->PlannedModeCount) {
    FMD_Error(
        "Insufficient room for mode %d in temporary mode shape file.  \nSpecify larger number of modes in "
        "FMD_Create.\n",
        number);
    return -1;
  }
  if (body->ModeNumbers == nullptr) {
    body->ModeNumbers = fmd::allocate<std::int32_t>(body->PlannedModeCount, "dbset").release();
    if (body->ModeNumbers == nullptr) return -1;
  }
  // A loaded pre-stress or pre-strain stands under the index that the new mode takes over.
  for (const int type : {fmd::kStress, fmd::kStrain}) {
    if (body->LoadedModeIndex[type] == body->ModeCount) body->LoadedModeIndex[type] = -1;
  }
  body->ModeNumbers[body->ModeCount] = number;
  return body->ModeCount++;
}

int FMD_LookupOrAddMode(FmdBody* body, int number) {
  if (CheckFMD(body) == 0) return -1;
  const int index = FMD_ModeIndex(body, number);
  return index >= 0 ? index : FMD_AddMode(body, number);
}
