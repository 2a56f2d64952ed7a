#include "faults/operations.h"

namespace fmdtest {

namespace {

char target[] = "body.fmd";

bool free_and_tell(double* array) {
  const bool is_there = array != nullptr;
  FMD_FreeMemory(array);
  return is_there;
}

void body_with_transformation(Scene& s) {
  full_body(s);
  double identity[] = {1, 0, 0, 1};
  FMD_SetTransformation(s.body, identity);
}

bool sets_transformation(Scene& s) {
  double matrix[] = {1, 2, 3, 4};
  return FMD_SetTransformation(s.body, matrix) == 1;
}

// Modes that need the eigenproblem, with all that has to follow them.
void body_of_coupled_modes(Scene& s) {
  full_body(s);
  FMD_SetGeneralizedMass(s.body, 2, 1, 0.5);
  FMD_SetModalPreload(s.body, 1, 2.0);
  FMD_SetModalLoad(s.body, 0, 2, 3.0);
  double location[] = {1, 2, 3};
  double rows[] = {1, 2};
  char name[] = "P";
  FMD_SetMonitorPointInfo(s.body, 1, 1, 1, 0, location, name, name);
  FMD_SetMonitorPointOperator(s.body, 0, 1, rows);
}

using Selected = int (*)(FmdBody*, double**, int, int*);

bool reads_selected(Scene& s, Selected get, double expected) {
  int modes[] = {1, 2};
  double* rows[] = {s.values, s.values + 2};
  return get(s.body, rows, 2, modes) == 1 && s.values[3] == expected;
}

}  // namespace

const std::vector<Operation> matrix_operations = {
    {"FMD_SetGeneralizedMass", empty_body,
     [](Scene& s) { return FMD_SetGeneralizedMass(s.body, 1, 1, 2.0) == 1; }},
    {"FMD_SetGeneralizedStiffness", empty_body,
     [](Scene& s) { return FMD_SetGeneralizedStiffness(s.body, 1, 1, 2.0) == 1; }},
    {"FMD_SetGeneralizedDamping", empty_body,
     [](Scene& s) { return FMD_SetGeneralizedDamping(s.body, 1, 1, 2.0) == 1; }},
    {"FMD_SetShouldMassNormalizeModes", full_body,
     [](Scene& s) {
       FMD_SetShouldMassNormalizeModes(s.body, 0);
       return true;
     }},
    {"FMD_NumberOfGenStiff", full_body, [](Scene& s) { return FMD_NumberOfGenStiff(s.body) == 2; }},
    {"FMD_NumberOfGenMass", full_body, [](Scene& s) { return FMD_NumberOfGenMass(s.body) == 2; }},
    {"FMD_NumberOfGenDamp", full_body, [](Scene& s) { return FMD_NumberOfGenDamp(s.body) == 2; }},
    {"FMD_GenDampExist", full_body, [](Scene& s) { return FMD_GenDampExist(s.body) != 0; }},
    {"FMD_GenStiffSparse", full_body,
     [](Scene& s) {
       return FMD_GenStiffSparse(s.body, s.values, s.ints, s.ints + 9) == 1 && s.values[1] == 8;
     }},
    {"FMD_GenMassSparse", full_body,
     [](Scene& s) {
       return FMD_GenMassSparse(s.body, s.values, s.ints, s.ints + 9) == 1 && s.values[1] == 1;
     }},
    {"FMD_GenDampSparse", full_body,
     [](Scene& s) { return FMD_GenDampSparse(s.body, s.values, s.ints, s.ints + 9) == 1; }},
    {"FMD_GenStiffSelected", full_body, [](Scene& s) { return reads_selected(s, FMD_GenStiffSelected, 8.0); },
     Failure::kSilent},
    {"FMD_GenMassSelected", full_body, [](Scene& s) { return reads_selected(s, FMD_GenMassSelected, 1.0); },
     Failure::kSilent},
    {"FMD_GenStiffFull", full_body,
     [](Scene& s) { return FMD_GenStiffFull(s.body, s.values, 2) == 1 && s.values[3] == 8.0; },
     Failure::kSilent},
    {"FMD_GenMassFull", full_body,
     [](Scene& s) { return FMD_GenMassFull(s.body, s.values, 2) == 1 && s.values[3] == 1.0; },
     Failure::kSilent},
    {"FMD_GenDampFull", full_body,
     [](Scene& s) { return FMD_GenDampFull(s.body, s.values, 2) == 1 && s.values[3] == 0.1; },
     Failure::kSilent},
    {"FMD_Eigenvalue", full_body,
     [](Scene& s) {
       return FMD_Eigenvalue(s.body, 2, s.values, nullptr, nullptr, nullptr, nullptr) == 1 &&
              s.values[0] == 8.0;
     }},
    {"FMD_Transformation", body_with_transformation,
     [](Scene& s) { return FMD_Transformation(s.body, s.values) == 1 && s.values[3] == 1.0; }},
    {"FMD_SetTransformation", full_body, sets_transformation},
    {"FMD_SetTransformation.second", body_with_transformation, sets_transformation},
    {"FMD_OrthoNormalize", full_body, [](Scene& s) { return FMD_OrthoNormalize(s.body) == 1; }},
    {"FMD_OrthoNormalize.coupled", body_of_coupled_modes,
     [](Scene& s) { return FMD_OrthoNormalize(s.body) == 1; }},
    {"FMD_OrthoNormalize.masses",
     [](Scene& s) {
       full_body(s);
       FMD_SetGeneralizedMass(s.body, 3, 3, 4.0);
       FMD_SetMode(s.body, 3, kFirstNode, 0, 6, 0, 0, 0, 0, 0);
     },
     [](Scene& s) {
       return FMD_OrthoNormalize(s.body) == 1 && FMD_Mode(s.body, 3, 0, s.values, 0) == 1 &&
              s.values[0] == 3.0;
     }},
    {"FMD_TransformModes", full_body,
     [](Scene& s) {
       double identity[] = {1, 0, 0, 1};
       return FMD_TransformModes(s.body, 1, 2, identity) == 1;
     }},

    {"FMD_SetGlobalMass", full_body,
     [](Scene& s) { return FMD_SetGlobalMass(s.body, 2.0, s.values, s.values + 3) == 1; }},
    {"FMD_TotalMassInertia", full_body,
     [](Scene& s) {
       return FMD_TotalMassInertia(s.body, s.values, s.values + 1, s.values + 10) == 1 && s.values[0] == 32.0;
     }},
    {"FMD_CalculateGlobalMassFromNodeMass", full_body,
     [](Scene& s) { return FMD_CalculateGlobalMassFromNodeMass(s.body) == 1; }},
    {"FMD_Invar1", full_body, [](Scene& s) { return FMD_Invar1(s.body) == 32.0; }},
    {"FMD_Invar2", full_body, [](Scene& s) { return free_and_tell(FMD_Invar2(s.body)); }},
    {"FMD_Invar7", full_body, [](Scene& s) { return free_and_tell(FMD_Invar7(s.body)); }},
    {"FMD_SetInvar1", full_body, [](Scene& s) { return FMD_SetInvar1(s.body, 3.0) == 1; }},
    {"FMD_SetInvar2", full_body, [](Scene& s) { return FMD_SetInvar2(s.body, s.values) == 1; }},
    {"FMD_SetInvar7", full_body, [](Scene& s) { return FMD_SetInvar7(s.body, s.values) == 1; }},
    {"incr_scalar_tilde_vec", no_body,
     [](Scene& s) {
       incr_scalar_tilde_vec(s.values, 1.0, s.values + 3, s.values + 6);
       return s.values[0] == 0.0;
     }},
    {"incr_scalar_tilde_tilde", no_body,
     [](Scene& s) {
       incr_scalar_tilde_tilde(s.values, 1.0, s.values + 9, s.values + 12);
       return s.values[0] == 0.0;
     }},

    {"FMD_write_FMD", full_body, [](Scene& s) { return FMD_write_FMD(s.body, target) == 1; }},
    {"FMD_write_FMD.coupled", body_of_coupled_modes,
     [](Scene& s) { return FMD_write_FMD(s.body, target) == 1; }},
};

}  // namespace fmdtest
