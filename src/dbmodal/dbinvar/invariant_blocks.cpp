#include "dbmodal/dbinvar/invariant_blocks.h"

#include <algorithm>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

double mass_factor(const FmdBody& body, int length_power) {
  double factor = body.UnitTotalFactor[kMass];
  for (int power = 0; power < length_power; ++power) factor *= body.UnitTotalFactor[kLength];
  return factor;
}

bool read_reals(FmdBody* body, double* values, std::int64_t count, double factor) {
  constexpr std::int64_t kPiece = 1 << 24;
  while (count > 0) {
    const int piece = static_cast<int>(std::min(count, kPiece));
    if (DB_ReadDOUBLEs(body->DataFile, values, piece) == 0) return false;
    FMD_Convert_Units(values, piece, factor);
    values += piece;
    count -= piece;
  }
  return true;
}

bool read_block_modes(FmdBody* body, int line) {
  int modes = 0;
  if (DB_ReadINTs(body->DataFile, &modes, 1) == 0) return false;
  if (modes != body->ModeCount) FMD_Error("nm!=ModeCount at line %d in file %s", line, "dbinvar");
  return true;
}

}  // namespace fmd
