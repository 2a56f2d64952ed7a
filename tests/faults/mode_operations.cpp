#include "faults/operations.h"

namespace fmdtest {

namespace {

double six[] = {1, 2, 3, 4, 5, 6};

bool caches_a_half(Scene& s) {
  for (int i = 0; i < 3 * kSceneNodes; ++i) s.values[i] = i;
  return FMD_ModetoMemory(s.body, 1, 0, s.values, 1) == 1 &&
         FMD_ModeFromMemory(s.body, 1, 0, s.values + 100, 1) == 1 && s.values[105] == 5;
}

void body_with_a_cached_half(Scene& s) {
  full_body(s);
  caches_a_half(s);
}

}  // namespace

// What a failed allocation of the temporary file leaves is a file in the state that it reached, so only there
// a repeated call fails again.
const std::vector<Operation> mode_operations = {
    {"FMD_SetModeVec", empty_body, [](Scene& s) { return FMD_SetModeVec(s.body, 1, 5, 0, six) == 1; },
     Failure::kReported, false},
    {"FMD_SetModeVec.stress", empty_body, [](Scene& s) { return FMD_SetModeVec(s.body, 1, 5, 1, six) == 1; },
     Failure::kReported, false},
    {"FMD_SetModeVec.again", full_body, [](Scene& s) { return FMD_SetModeVec(s.body, 3, 700, 2, six) == 1; }},
    {"FMD_SetMode", full_body,
     [](Scene& s) { return FMD_SetMode(s.body, 3, 701, 1, 1, 2, 3, 4, 5, 6) == 1; }},
    {"FMD_SetModeEntry", full_body,
     [](Scene& s) { return FMD_SetModeEntry(s.body, 3, 702, 1, 2, 7.0) == 1; }},
    {"FMD_Mode", full_body,
     [](Scene& s) { return FMD_Mode(s.body, 2, 0, s.values, 0) == 1 && s.values[4] == 1.0; }},
    {"FMD_Mode.pre_stress", full_body,
     [](Scene& s) { return FMD_Mode(s.body, 0, 1, s.values, 0) == 1 && s.values[2] == 3.0; }},
    {"FMD_ModeByRef", full_body,
     [](Scene& s) {
       double* values = nullptr;
       return FMD_ModeByRef(s.body, 2, 1, &values, 0) == 1 && values[4] == 1.0;
     }},
    {"FMD_ModeByNode", full_body,
     [](Scene& s) {
       return FMD_ModeByNode(s.body, 2, 2, kFirstNode + 1, s.values, 0) == 1 && s.values[1] == 1.0;
     }},
    {"FMD_Read_Mode_Single", full_body,
     [](Scene& s) { return FMD_Read_Mode_Single(s.body, 2, 0, s.floats) == 0; }},
    {"FMD_Read_Mode_Double", full_body,
     [](Scene& s) { return FMD_Read_Mode_Double(s.body, 2, 0, s.values) == 1 && s.values[7] == 1.0; },
     Failure::kSilent},
    {"FMD_Double_Prec", full_body, [](Scene& s) { return FMD_Double_Prec(s.body) == 1; }},
    {"FMD_ModeExist", full_body, [](Scene& s) { return FMD_ModeExist(s.body, 1) == 1; }},

    {"FMD_InitializeModeMemory", full_body,
     [](Scene& s) {
       FMD_InitializeModeMemory(s.body);
       return true;
     }},
    {"FMD_ModetoMemory", full_body, caches_a_half},
    {"FMD_ModeFromMemory", body_with_a_cached_half,
     [](Scene& s) { return FMD_ModeFromMemory(s.body, 1, 0, s.values, 1) == 1; }},
    {"FMD_ModeFromMemoryByRef", body_with_a_cached_half,
     [](Scene& s) {
       double* values = nullptr;
       return FMD_ModeFromMemoryByRef(s.body, 1, 0, &values, 1) == 1;
     }},
    {"FMD_ModeFromMemoryByNode", body_with_a_cached_half,
     [](Scene& s) {
       return FMD_ModeFromMemoryByNode(s.body, 1, 0, kFirstNode, s.values, 1) == 1 && s.values[2] == 2;
     }},
    {"FMD_CleanModesInMemory", body_with_a_cached_half,
     [](Scene& s) {
       FMD_CleanModesInMemory(s.body);
       return FMD_ModeFromMemory(s.body, 1, 0, s.values, 1) == 0;
     }},
    {"FMD_SetKeepModesInMemory", body_with_a_cached_half,
     [](Scene& s) {
       FMD_SetKeepModesInMemory(s.body, 0);
       return FMD_ModeFromMemory(s.body, 1, 0, s.values, 1) == 0;
     }},
    {"FMD_GetKeepModesInMemory", full_body,
     [](Scene& s) { return FMD_GetKeepModesInMemory(s.body, s.ints) == 1; }},

    {"FMD_SetPreStressVec", empty_body, [](Scene& s) { return FMD_SetPreStressVec(s.body, 5, six) == 1; }},
    {"FMD_SetPreStrainVec", empty_body, [](Scene& s) { return FMD_SetPreStrainVec(s.body, 5, six) == 1; }},
    {"FMD_GetMaxModeDisplacement", full_body,
     [](Scene& s) {
       return FMD_GetMaxModeDisplacement(s.body, 1, s.ints, s.values) == 1 && s.ints[0] == 18;
     }},
    {"FMD_GetMaxModeRotation", full_body,
     [](Scene& s) { return FMD_GetMaxModeRotation(s.body, 1, s.ints, s.values) == 1 && s.ints[0] == 11; }},
    {"FMD_GetMaxVonMisesStress", full_body,
     [](Scene& s) { return FMD_GetMaxVonMisesStress(s.body, 1, s.ints, s.values) == 1 && s.ints[0] == 18; }},
    {"FMD_GetMaxVonMisesStrain", full_body,
     [](Scene& s) { return FMD_GetMaxVonMisesStrain(s.body, 1, s.ints, s.values) == 1 && s.ints[0] == 18; }},
    {"FMD_ModalStatisticsExist", full_body, [](Scene& s) { return FMD_ModalStatisticsExist(s.body) == 0; }},
};

}  // namespace fmdtest
