// Asks a body all that it can tell, into buffers of the sizes that the interface asks for, and edits and
// exports it.
#ifndef FMDTOOLKIT_TESTS_FUZZ_READ_EVERYTHING_H
#define FMDTOOLKIT_TESTS_FUZZ_READ_EVERYTHING_H

#include <cstdint>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fuzz {

void read_everything(FmdBody* body);

// As a stream file in the current directory, which is removed, with options that the choice picks.
void export_stream(FmdBody* body, std::uint64_t choice);

// Opens bodies of the database, reads each and exports it; then stores another body there.
void use_database(const char* path, std::uint64_t choice);

}  // namespace fuzz

#endif
