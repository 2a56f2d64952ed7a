// Places in the mode cache, for the operations that read modes through it.
#ifndef FMDTOOLKIT_DBMODAL_DBDATA_MODE_CACHE_H
#define FMDTOOLKIT_DBMODAL_DBDATA_MODE_CACHE_H

#include "body/body.h"

namespace fmd {

// The cached half vector, or null. A vector that nodes added since have made too short counts as absent.
const double* find_cached_half(FmdBody& body, int mode, int type, int part);

// A cached half vector to be filled by the caller, or null: no room, no memory, no such mode.
double* add_cached_half(FmdBody& body, int mode, int type, int part);

}  // namespace fmd

#endif
