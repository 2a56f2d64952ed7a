#include "dbmodal/dbmod/recompute_invar4.h"

#include <algorithm>

#include "dbmodal/dbinvar/invariant_blocks.h"
#include "dbmodal/dbinvar/mode_invariants.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

bool recompute_invar4(FmdBody* body) {
  const CArray<double> rows(FMD_Invar4(body));
  if (rows == nullptr) return false;
  if (FMD_Exists(body, kNodalMassBlock) == 0) {
    FMD_Error("Can not Compute Invar4 because Nodal Mass information is not presented.");
    return false;
  }
  if (!sum_moments_of_momentum(body, rows.get())) return false;
  std::copy_n(rows.get(), std::int64_t{3} * body->ModeCount, body->Invar4);
  return true;
}

}  // namespace fmd
