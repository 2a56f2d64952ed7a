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

double axis[] = {1.0, 2.0, 2.0};
double point[] = {1.0, 0.5, 0.25};
double turn[9];

bool translate(Scene& scene) {
  return FMD_Translate(scene.body, axis, 3.0) == 1;
}

bool rotate(Scene& scene) {
  return FMD_Rotate(scene.body, axis, point, 30.0) == 1;
}

bool mirror(Scene& scene) {
  return FMD_Mirror(scene.body, axis, point) == 1;
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
    {"FMD_Rotate", full_body, rotate},
    {"FMD_Rotate.invariants", body_with_invariants, rotate},
    {"FMD_Rotate_Origin", full_body,
     [](Scene& s) { return FMD_Rotate_Origin(s.body, axis, 30.0, turn) == 1; }},
    {"FMD_Mirror", full_body, mirror},
    {"FMD_Mirror.invariants", body_with_invariants, mirror},
    {"FMD_Mirror_Origin", full_body, [](Scene& s) { return FMD_Mirror_Origin(s.body, axis) == 1; }},
    {"transform_mode", full_body, rewrite<0>},
    {"transform_mode.stress", full_body, rewrite<1>},
    {"transform_mode.strain", full_body, rewrite<2>},
};

}  // namespace fmdtest
