// Temporary datablocks of the mode store.
#include "solverdb/scratch.h"

#include <cstdio>

#include "fmdtoolkit/fmdtoolkit.h"
#include "kdcdb/kdcdb.h"

namespace {

int scratchSerial = 1000;

}  // namespace

int DB_OpenScratch(int* scratch) {
  *scratch = ++scratchSerial;
  char command[80];
  std::snprintf(command, sizeof command, "dbcreate datablk=(fmdtmp) quals(highqual=%d)", scratchSerial);
  int key = 0;
  kdcdb::Status status = kdcdb::CreateDatablk(command, &key);
  if (status == kdcdb::kOk) {
    status = kdcdb::Gopen(key, kdcdb::kOpenNew);
    if (status != kdcdb::kOk) kdcdb::ReleaseDatablk(key);
  }
  if (status == kdcdb::kOk) return key;
  FMD_Error("Cannot open temporary datablock, %d.", static_cast<int>(status));
  return 0;
}

int DB_ReOpenScratch(int block) {
  kdcdb::Close(block, 1);
  kdcdb::Gopen(block, kdcdb::kOpenAgain);
  return 1;
}

namespace fmd {

bool fill_scratch_with_zeros(int block, std::int64_t words) {
  return kdcdb::WriteZeros(block, words) == kdcdb::kOk;
}

}  // namespace fmd
