// The largest piece of memory that operator new was asked for; set it to 0 to begin.
#ifndef FMDTOOLKIT_TESTS_LARGEST_NEW_H
#define FMDTOOLKIT_TESTS_LARGEST_NEW_H

#include <cstddef>

namespace fmdtest {

extern std::size_t largest_allocation;

}  // namespace fmdtest

#endif
