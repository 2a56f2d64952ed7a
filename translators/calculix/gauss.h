// Gauss-Jacobi rules on 0 to 1.
#ifndef FMDTOOLKIT_CALCULIX_GAUSS_H
#define FMDTOOLKIT_CALCULIX_GAUSS_H

#include <vector>

namespace calculix {

struct GaussPoint {
  double x;
  double weight;
};

// The integral of (1 - x)^power f(x) over 0 to 1, exact for polynomials f of degree 2 count - 1.
std::vector<GaussPoint> gauss_jacobi(int count, int power);

}  // namespace calculix

#endif
