// The invariants over modes.
#include "faults/operations.h"

namespace fmdtest {

namespace {

bool free_and_tell(double* array) {
  FMD_FreeMemory(array);
  return array != nullptr;
}

}  // namespace

const std::vector<Operation> invariant_operations = {
    {"FMD_Invar3", full_body, [](Scene& s) { return free_and_tell(FMD_Invar3(s.body)); }},
    {"FMD_Invar4", full_body, [](Scene& s) { return free_and_tell(FMD_Invar4(s.body)); }},
    {"FMD_Invar5", full_body, [](Scene& s) { return free_and_tell(FMD_Invar5(s.body, 0)); },
     Failure::kSilent},
    {"FMD_Invar6", full_body, [](Scene& s) { return free_and_tell(FMD_Invar6(s.body)); }, Failure::kSilent},
    {"FMD_Invar8", full_body, [](Scene& s) { return free_and_tell(FMD_Invar8(s.body, 0)); }},
    {"FMD_Invar9", full_body, [](Scene& s) { return free_and_tell(FMD_Invar9(s.body, 0, 1)); },
     Failure::kSilent},
    {"FMD_SetInvar3", full_body, [](Scene& s) { return FMD_SetInvar3(s.body, 1, s.values) == 1; }},
    {"FMD_SetInvar4", full_body, [](Scene& s) { return FMD_SetInvar4(s.body, 1, s.values) == 1; }},
    {"FMD_SetInvar5", full_body, [](Scene& s) { return FMD_SetInvar5(s.body, 1, 2, s.values) == 1; }},
    {"FMD_SetInvar6", full_body,
     [](Scene& s) {
       double ones[] = {1.0, 1.0};
       return FMD_SetInvar6(s.body, ones) == 1;
     }},
    {"FMD_SetInvar8", full_body, [](Scene& s) { return FMD_SetInvar8(s.body, 1, s.values) == 1; }},
    {"FMD_SetInvar9", full_body, [](Scene& s) { return FMD_SetInvar9(s.body, 1, 2, s.values) == 1; }},
};

}  // namespace fmdtest
