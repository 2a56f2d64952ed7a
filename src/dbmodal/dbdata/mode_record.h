// A mode's entry of the eigenvalue table, and its diagonal pair of mass and stiffness.
#ifndef FMDTOOLKIT_DBMODAL_DBDATA_MODE_RECORD_H
#define FMDTOOLKIT_DBMODAL_DBDATA_MODE_RECORD_H

#include "body/body.h"

namespace fmd {

struct ModalPair {
  double mass;
  double stiffness;
};

// The record that serves for a mode index, or null where the table does not.
const FmdModeRecord* mode_record(const FmdBody& body, int index);

// Mass and stiffness of a mode by the table, or by the lists read as diagonal ones, with the defaults of what
// is not given.
ModalPair diagonal_pair(const FmdBody& body, int index);

}  // namespace fmd

#endif
