#include "dbmodal/dbdata/mode_peaks.h"

#include <cmath>

namespace fmd {

namespace {

double squared_length(const double* v) {
  return v[0] * v[0] + v[1] * v[1] + v[2] * v[2];
}

// a^2 + b^2 + c^2 - ab - bc - ca
double distortion(const double* n) {
  return n[0] * n[0] + n[1] * n[1] + n[2] * n[2] - n[0] * n[1] - n[1] * n[2] - n[2] * n[0];
}

template <typename Measure>
Peak largest(int nodes, Measure measure) {
  Peak peak;
  for (int node = 0; node < nodes; ++node) {
    const double value = measure(static_cast<long>(node) * 3);
    if (value > peak.value) peak = {node, value};
  }
  peak.value = std::sqrt(peak.value);
  return peak;
}

}  // namespace

Peak largest_length(const double* vectors, int nodes) {
  return largest(nodes, [=](long at) { return squared_length(vectors + at); });
}

Peak largest_von_mises_stress(const double* normal, const double* shear, int nodes) {
  return largest(nodes, [=](long at) { return distortion(normal + at) + 3.0 * squared_length(shear + at); });
}

Peak largest_von_mises_strain(const double* normal, const double* shear, int nodes) {
  return largest(nodes, [=](long at) {
    return 0.4444444444444444 * distortion(normal + at) + 0.3333333333333333 * squared_length(shear + at);
  });
}

}  // namespace fmd
