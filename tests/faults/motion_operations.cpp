// Rigid motions of a body, on one that knows its invariants and on one that does not.
#include "faults/operations.h"

namespace fmdtest {

namespace {

void body_with_invariants(Scene& scene) {
  full_body(scene);
  FMD_FreeMemory(FMD_Invar2(scene.body));
  FMD_FreeMemory(FMD_Invar3(scene.body));
  FMD_FreeMemory(FMD_Invar4(scene.body));
  FMD_FreeMemory(FMD_Invar5(scene.body, 0));
  FMD_FreeMemory(FMD_Invar7(scene.body));
  FMD_FreeMemory(FMD_Invar8(scene.body, 0));
}

bool translate(Scene& scene) {
  double direction[] = {1.0, 2.0, 2.0};
  return FMD_Translate(scene.body, direction, 3.0) == 1;
}

}  // namespace

const std::vector<Operation> motion_operations = {
    {"FMD_Translate", full_body, translate},
    {"FMD_Translate.invariants", body_with_invariants, translate},
};

}  // namespace fmdtest
