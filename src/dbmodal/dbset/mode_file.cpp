#include "dbmodal/dbset/mode_file.h"

#include <algorithm>
#include <cstdint>

#include "messages/memory.h"
#include "solverdb/scratch.h"

namespace fmd {

namespace {

// In the message of modal strain the number has always been the stream's name, which is null here.
void report_unopenable(const FmdStream& stream, int type) {
  switch (type) {
    case kShape:
      return FMD_Error("Unable to open temporary mode shape file (key = %d).\n", stream.Block);
    case kStress:
      return FMD_Error("Unable to open temporary modal stress file (key = %d).\n", stream.Block);
    default:
      return FMD_Error("Unable to open temporary modal strain file (key = %d).\n",
                       static_cast<int>(reinterpret_cast<std::intptr_t>(stream.Name)));
  }
}

void tell_opened(int block, int type) {
  switch (type) {
    case kShape:
      return FMD_Info("Temp modeshape file: key = %d", block);
    case kStress:
      return FMD_Info("Temp modal stress file: key = %d", block);
    default:
      return FMD_Info("Temp modal strain file: key = %d", block);
  }
}

void report_disk_full(int block, int type) {
  switch (type) {
    case kShape:
      return FMD_Error("Insufficient disk space for temporary mode shape file (key = %d).\n", block);
    case kStress:
      return FMD_Error("Insufficient disk space for temporary modal stress file (key = %d).\n", block);
    default:
      return FMD_Error("Insufficient disk space for temporary modal strain file (key = %d).\n", block);
  }
}

// Where a slot that was never made would be: no position of any block.
constexpr FmdPosition kNoPosition = {{-1, -1}};

bool provide_positions(FmdBody& body, int type) {
  body.ModePositions[type] = allocate<FmdPosition>(body.PlannedModeCount, "dbset").release();
  if (body.ModePositions[type] == nullptr) return false;
  std::fill_n(body.ModePositions[type], body.PlannedModeCount, kNoPosition);
  if (body.PlannedNodeCount > 0) return true;
  report_allocation_failure("dbset");  // a slot of no nodes
  return false;
}

// Gives up a file that there was no memory for, so that a later call may try again.
void discard_mode_file(FmdBody& body, int type) {
  release(body.ModePositions[type]);
  DB_CloseDatablk(body.ModeFile[type].Block);
  body.ModeFile[type].Block = 0;
}

// All slots are made at once, at full size, so that a disk that is too small shows here.
bool fill_slots(FmdBody& body, int type) {
  const FmdStream& stream = body.ModeFile[type];
  const std::int64_t words = static_cast<std::int64_t>(body.PlannedNodeCount) * kValuesPerNode *
                             (stream.DoublePrecision != 0 ? 2 : 1);
  for (int slot = 0; slot < body.PlannedModeCount; ++slot) {
    FmdPosition position;
    DB_FSAVE(&position, stream);
    if (!fill_scratch_with_zeros(stream.Block, words)) return false;
    body.ModePositions[type][slot] = position;
  }
  return true;
}

}  // namespace

bool provide_mode_file(FmdBody& body, int type) {
  FmdStream& stream = body.ModeFile[type];
  if (stream.Block != 0) return true;
  stream.Block = DB_OpenScratch(&stream.Key);
  if (stream.Block == 0) {
    report_unopenable(stream, type);
    return false;
  }
  tell_opened(stream.Block, type);
  stream.UsesXdr = 0;
  stream.IsScratch = 1;
  stream.DoublePrecision = body.DataFile.DoublePrecision;
  stream.FloatBuffer = body.FloatBuffer;
  if (!provide_positions(body, type)) {
    discard_mode_file(body, type);
    return false;
  }
  if (!fill_slots(body, type)) {
    report_disk_full(stream.Block, type);
    return false;
  }
  DB_ReOpenScratch(stream.Block);
  return true;
}

}  // namespace fmd
