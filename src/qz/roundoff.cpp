// The roundoff level that the solver takes for negligible.
#include <fmdtoolkit/fmdtoolkit.h>

#include <cmath>

double EIGPSN(double* x) {
  do {
    *x *= 0.5;
  } while (1.0 + *x > 1.0 && !std::isinf(*x));  // halving leaves infinity as it is
  return *x;
}
