#include <cstdlib>
#include <cstring>

#include "faults/failing_allocation.h"
#include "faults/operations.h"
#include "fmdtoolkit/extensions.h"
#include "services/units.h"

namespace fmdtest {

namespace {

bool names_a_module(const char* text) {
  return text != nullptr && *text != '\0';
}

}  // namespace

const std::vector<Operation> frame_operations = {
    {"SetMessageHandlers", no_body,
     [](Scene&) {
       QuietLog::install();
       return true;
     }},
    {"FMD_Error", no_body,
     [](Scene&) {
       FMD_Error("%s", "an error");
       return true;
     }},
    {"FMD_Warning", no_body,
     [](Scene&) {
       FMD_Warning("%s", "a warning");
       return true;
     }},
    {"FMD_Info", no_body,
     [](Scene&) {
       FMD_Info("%s", "some information");
       return true;
     }},
    {"FMDX_SetProgressHandler", no_body,
     [](Scene&) {
       FMDX_SetProgressHandler(nullptr);
       return true;
     }},
    {"FMDX_CheckDatabase", no_body,
     [](Scene&) { return FMDX_CheckDatabase("missing.MASTER", nullptr, nullptr) == 2; }},
    {"FMDX_ListBodies", no_body,
     [](Scene&) { return FMDX_ListBodies("missing.MASTER", nullptr, nullptr) == -1; }},
    {"fmdcreate_VersionId", no_body, [](Scene&) { return names_a_module(fmdcreate_VersionId()); }},
    {"fmddata_VersionId", no_body, [](Scene&) { return names_a_module(fmddata_VersionId()); }},
    {"fmdset_VersionId", no_body, [](Scene&) { return names_a_module(fmdset_VersionId()); }},
    {"fmdtools_VersionId", no_body, [](Scene&) { return names_a_module(fmdtools_VersionId()); }},
    {"fmdcoarse_VersionId", no_body, [](Scene&) { return names_a_module(fmdcoarse_VersionId()); }},
    {"dbinvar_VersionId", no_body, [](Scene&) { return names_a_module(dbinvar_VersionId()); }},
    {"dbread_VersionId", no_body, [](Scene&) { return names_a_module(dbread_VersionId()); }},
    {"dbunits_VersionId", no_body, [](Scene&) { return names_a_module(dbunits_VersionId()); }},
    {"dbwrite_VersionId", no_body, [](Scene&) { return names_a_module(dbwrite_VersionId()); }},
    {"FMD_cputime", no_body, [](Scene&) { return FMD_cputime() >= 0; }},
    {"FMD_localtime_ISO8601", no_body,
     [](Scene& s) {
       FMD_localtime_ISO8601(3, s.text[0]);
       return s.text[0][0] != '\0';
     }},
    {"FMD_uname", no_body,
     [](Scene& s) {
       FMD_uname(3, s.text[0]);
       return s.text[0][0] != '\0';
     }},

    {"FMD_Create", no_body,
     [](Scene& s) {
       s.body = FMD_Create(10, 10);
       return s.body != nullptr;
     },
     Failure::kSilent},
    {"FMD_Create.second", full_body, [](Scene&) { return FMD_Create(10, 10) != nullptr; }, Failure::kSilent},
    {"FMD_UnLink", full_body,
     [](Scene& s) {
       FMD_UnLink(s.body);
       const bool gone = FMD_IsValid(s.body) == 0;
       s.body = nullptr;
       return gone;
     }},
    {"FMD_DeReference", full_body,
     [](Scene& s) {
       FMD_DeReference(s.body);
       const bool gone = FMD_IsValid(s.body) == 0;
       s.body = nullptr;
       return gone;
     }},
    {"FMD_Terminate", full_body,
     [](Scene& s) {
       s.body = nullptr;
       FMD_Terminate();
       return FMD_GetFirstFMD() == nullptr;
     }},
    {"FMD_Destroy", full_body,
     [](Scene& s) {
       FMD_Destroy();
       return FMD_IsValid(s.body) == 1;
     }},
    {"FMD_FreeMemory", no_body,
     [](Scene&) {
       FMD_FreeMemory(std::malloc(10));
       return true;
     }},
    {"FMD_GetFirstFMD", full_body, [](Scene& s) { return FMD_GetFirstFMD() == s.body; }},
    {"FMD_IsValid", full_body, [](Scene& s) { return FMD_IsValid(s.body) == 1; }},
    {"CheckFMD", full_body, [](Scene& s) { return CheckFMD(s.body) == 1; }},
    {"FMD_Exists", full_body, [](Scene& s) { return FMD_Exists(s.body, 7) == 1; }},

    {"FMD_UnitsDivider", no_body, [](Scene&) { return FMD_UnitsDivider("METER", fmd::length_units) == 1.0; }},
    {"FMD_UnitsLabel", no_body, [](Scene&) { return FMD_UnitsLabel(1.0, fmd::length_units) != nullptr; }},
    {"FMD_Mass2Kilogram", full_body, [](Scene& s) { return FMD_Mass2Kilogram(s.body, 2.0) == 2.0; }},
    {"FMD_Length2Meter", full_body, [](Scene& s) { return FMD_Length2Meter(s.body, 2.0) == 2.0; }},
    {"FMD_Time2Second", full_body, [](Scene& s) { return FMD_Time2Second(s.body, 2.0) == 2.0; }},
    {"FMD_Force2Newton", full_body, [](Scene& s) { return FMD_Force2Newton(s.body, 2.0) == 2.0; }},
    {"FMD_Convert_Units", no_body,
     [](Scene& s) {
       s.values[0] = 3.0;
       return FMD_Convert_Units(s.values, 1, 2.0)[0] == 6.0;
     }},
    {"FMD_Units", full_body,
     [](Scene& s) {
       FMD_Units(s.body, s.text[0], s.text[1], s.text[2], s.text[3]);
       return std::strcmp(s.text[1], "METER") == 0;
     }},
    {"FMD_SetUnits", full_body,
     [](Scene& s) {
       char units[4][16] = {"MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON"};
       FMD_SetUnits(s.body, units[0], units[1], units[2], units[3]);
       return FMD_Length2Meter(s.body, 2000.0) == 2.0;
     }},
    {"FMD_SetUnits.change", full_body,
     [](Scene& s) {
       char units[4][16] = {"KILOGRAM", "METER", "SECOND", "NEWTON"};
       FMD_SetUnits(s.body, units[0], units[1], units[2], units[3]);
       std::strcpy(units[1], "MILLIMETER");
       FMD_SetUnits(s.body, units[0], units[1], units[2], units[3]);
       // The last node of the cube stands at (1, 1, 1).
       return FMD_NodeCoordinates(s.body, kSceneNodes - 1, s.values) == 1 && s.values[2] == 1000.0;
     }},
    {"FMD_SetUnitsByMultiplierOnSI", full_body,
     [](Scene& s) {
       FMD_SetUnitsByMultiplierOnSI(s.body, 1000.0, 0.001, 1.0, 1.0);
       return FMD_Length2Meter(s.body, 2000.0) == 2.0;
     }},
    {"FMD_ScaleDatabase", full_body,
     [](Scene& s) {
       FMD_ScaleDatabase(s.body);
       return FMD_UCF(s.body) == 1.0;
     }},
    {"FMD_UCF", full_body, [](Scene& s) { return FMD_UCF(s.body) == 1.0; }},
};

}  // namespace fmdtest
