// The modes that are exported.
#ifndef FMDTOOLKIT_DBMODAL_DBWRITE_FREQUENCY_BAND_H
#define FMDTOOLKIT_DBMODAL_DBWRITE_FREQUENCY_BAND_H

#include "dbmodal/dbwrite/job.h"

namespace fmd {

// Cuts the modes to the band of the options and renumbers the body's modes so that export starts at 1.
void select_frequency_band(WriteJob& job);

}  // namespace fmd

#endif
