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

// With the identity, so that a second call finds what the first one left.
template <int type>
bool rewrite(Scene& scene) {
  double identity[] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  transform_mode(scene.body, identity, type);
  double half[3] = {};
  return FMD_ModeByNode(scene.body, 2, type, kFirstNode + 1, half, 0) == 1 && half[0] == 2.0 &&
         half[1] == 1.0;
}

}  // namespace

const std::vector<Operation> motion_operations = {
    {"FMD_Translate", full_body, translate},
    {"FMD_Translate.invariants", body_with_invariants, translate},
    {"transform_mode", full_body, rewrite<0>},
    {"transform_mode.stress", full_body, rewrite<1>},
    {"transform_mode.strain", full_body, rewrite<2>},
};

}  // namespace fmdtest
