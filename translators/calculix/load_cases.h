// From the steps of a deck to load cases.
#ifndef FMDTOOLKIT_CALCULIX_LOAD_CASES_H
#define FMDTOOLKIT_CALCULIX_LOAD_CASES_H

#include <vector>

#include "calculix/deck_reader.h"
#include "calculix/translate.h"

namespace calculix {

// One case for each static step in which concentrated loads act. Within a step loads at one node in one
// direction add up; loads of earlier steps go on unless the step drops them or gives that node and direction
// anew. Notes tell what a case lacks. Throws InputError for a node or set that is not there.
std::vector<LoadCase> load_cases_of(const Deck& deck, const FrdContents& contents,
                                    std::vector<InputError>& notes);

}  // namespace calculix

#endif
