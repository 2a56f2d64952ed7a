#include "dbmodal/dbmod/inertia_shift.h"

namespace fmd {

namespace {

// What a point mass has about the origin: the other two coordinates squared on the diagonal, m a b off it.
double entry_of_point(double mass, const double* place, int row, int column) {
  if (row != column) return mass * place[row] * place[column];
  const double a = place[(row + 1) % 3];
  const double b = place[(row + 2) % 3];
  return mass * (a * a + b * b);
}

}  // namespace

void shift_inertia(double mass, const double* from, const double* to, double* inertia) {
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) {
      double& entry = inertia[3 * row + column];
      entry -= entry_of_point(mass, from, row, column);
      entry += entry_of_point(mass, to, row, column);
    }
  }
}

}  // namespace fmd
