// The points are the roots of the Jacobi polynomials P(power, 0), found by Newton's method with the roots
// already known divided out; the polynomials come from their three-term recurrence (Abramowitz and Stegun,
// Handbook of Mathematical Functions, 1964, 22.7.1 and 25.4.33).
#include "calculix/gauss.h"

#include <cmath>

namespace calculix {

namespace {

struct Polynomial {
  double value;
  double slope;
};

// P(power, 0) of the degree at t on -1 to 1.
Polynomial jacobi(int degree, int power, double t) {
  const double a = power;
  Polynomial before{1.0, 0.0};
  Polynomial here{a + 1.0 + (a + 2.0) * (t - 1.0) / 2.0, (a + 2.0) / 2.0};
  for (int k = 2; k <= degree; ++k) {
    const double n = k;
    const double s = 2.0 * n + a;
    const double lead = 2.0 * n * (n + a) * (s - 2.0);
    const double linear = (s - 1.0) * s * (s - 2.0) / lead;
    const double constant = (s - 1.0) * a * a / lead;
    const double back = 2.0 * (n + a - 1.0) * (n - 1.0) * s / lead;
    const Polynomial next{(linear * t + constant) * here.value - back * before.value,
                          (linear * t + constant) * here.slope + linear * here.value - back * before.slope};
    before = here;
    here = next;
  }
  return here;
}

}  // namespace

std::vector<GaussPoint> gauss_jacobi(int count, int power) {
  constexpr int most_steps = 100;
  constexpr double pi = 3.14159265358979323846;
  std::vector<double> roots;
  std::vector<GaussPoint> points;
  for (int i = 0; i < count; ++i) {
    double t = -std::cos(pi * (i + 0.5) / count);
    for (int step = 0; step < most_steps; ++step) {
      const Polynomial p = jacobi(count, power, t);
      double known = 0.0;
      for (const double root : roots) known += 1.0 / (t - root);
      const double change = p.value / (p.slope - p.value * known);
      t -= change;
      if (std::fabs(change) < 1e-16) break;
    }
    roots.push_back(t);
    const double slope = jacobi(count, power, t).slope;
    points.push_back({(1.0 + t) / 2.0, 1.0 / ((1.0 - t * t) * slope * slope)});
  }
  return points;
}

}  // namespace calculix
