// One fixed text per module: its name and revision.
#include "fmdtoolkit/fmdtoolkit.h"

const char* fmdcreate_VersionId(void) {
  return "fmdcreate 0.2.0";
}
const char* fmddata_VersionId(void) {
  return "fmddata 0.2.0";
}
const char* fmdset_VersionId(void) {
  return "fmdset 0.2.0";
}
const char* fmdtools_VersionId(void) {
  return "fmdtools 0.2.0";
}
const char* fmdcoarse_VersionId(void) {
  return "fmdcoarse 0.2.0";
}
const char* dbinvar_VersionId(void) {
  return "dbinvar 0.2.0";
}
const char* dbread_VersionId(void) {
  return "dbread 0.2.0";
}
const char* dbunits_VersionId(void) {
  return "dbunits 0.2.0";
}
const char* dbwrite_VersionId(void) {
  return "dbwrite 0.2.0";
}
