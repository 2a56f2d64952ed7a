// The temporary file of a mode info type: one fixed slot per planned mode.
#ifndef FMDTOOLKIT_DBMODAL_DBSET_MODE_FILE_H
#define FMDTOOLKIT_DBMODAL_DBSET_MODE_FILE_H

#include "body/body.h"

namespace fmd {

// Opens the file of the type at its full size unless the body has one. False after a message.
bool provide_mode_file(FmdBody& body, int type);

}  // namespace fmd

#endif
