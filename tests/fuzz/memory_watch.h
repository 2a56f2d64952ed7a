// How much memory an input makes the library take. Only programs with the address sanitizer can tell.
#ifndef FMDTOOLKIT_TESTS_FUZZ_MEMORY_WATCH_H
#define FMDTOOLKIT_TESTS_FUZZ_MEMORY_WATCH_H

#include <cstddef>

namespace fuzz {

// From now on, beyond what is in use now: more than this at once ends the program with a message.
void limit_memory(std::size_t bytes);
void lift_memory_limit();

// Ends the program with a report where memory has been lost.
void require_no_leak();

}  // namespace fuzz

#endif
