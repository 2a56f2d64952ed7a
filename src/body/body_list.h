// The process-wide list of live bodies, oldest first.
#ifndef FMDTOOLKIT_BODY_BODY_LIST_H
#define FMDTOOLKIT_BODY_BODY_LIST_H

#include "body/body.h"

namespace fmd {

FmdBody* first_body();
bool is_listed(const FmdBody* body);
void append_body(FmdBody* body);
// Takes the body off the list; false if it is not on it.
bool remove_body(FmdBody* body);

}  // namespace fmd

#endif
