// Dense solutions by LAPACK to compare with. Matrices are column by column.
#ifndef FMDTOOLKIT_TESTS_LAPACK_H
#define FMDTOOLKIT_TESTS_LAPACK_H

#include <vector>

namespace fmdtest {

// The finite l of A x = l B x, ascending, of a pair with real ones; B may be singular.
std::vector<double> finite_eigenvalues(std::vector<double> a, std::vector<double> b);

// X of A X = B.
std::vector<double> solution(std::vector<double> a, std::vector<double> b);

}  // namespace fmdtest

#endif
