// The sample body with everything that a dataset has a block for, but matrices in place of eigenvalues.
#ifndef FMDTOOLKIT_TESTS_WHOLE_BODY_H
#define FMDTOOLKIT_TESTS_WHOLE_BODY_H

#include <cstddef>
#include <vector>

#include "support/sample_body.h"

namespace fmdtest {

constexpr std::size_t kWholeModes = 3;
constexpr std::size_t kWholeLoadCases = 2;

// Values by place; multiples of an eighth, so that single precision holds them.
double eighths(std::size_t seed, std::size_t place);
std::vector<double> values_of(std::size_t seed, std::size_t count);

FmdBody* make_whole_body();

}  // namespace fmdtest

#endif
