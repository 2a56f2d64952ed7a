// One mode's entry of the statistics block.
#ifndef FMDTOOLKIT_DBMODAL_DBDATA_MODE_STATISTICS_H
#define FMDTOOLKIT_DBMODAL_DBDATA_MODE_STATISTICS_H

#include "body/body.h"

namespace fmd {

// From where the dataset of the body stands, in the body's present units.
bool read_statistics_record(const FmdBody& body, FmdModeStatistics& record);

}  // namespace fmd

#endif
