// A small body with something in every block that can stand beside the others.
#ifndef FMDTOOLKIT_TESTS_FUZZ_FULL_BODY_H
#define FMDTOOLKIT_TESTS_FUZZ_FULL_BODY_H

#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fuzz {

FmdBody* make_full_body(bool diagonal);

// Write options of all levels and forms that a database takes.
extern const std::vector<const char*> kWriteOptions;

}  // namespace fuzz

#endif
