#include "support/sample_body.h"

#include <array>
#include <cstddef>
#include <vector>

#include "support/comparison.h"

namespace fmdbench {

namespace {

// A pool small enough to stay in the processor's cache, so that making the values costs neither side
// anything.
constexpr int kPool = 1024;

std::vector<std::array<double, 6>> make_pool() {
  std::vector<std::array<double, 6>> pool(kPool);
  for (int i = 0; i < kPool; ++i) {
    for (int k = 0; k < 6; ++k)
      pool[static_cast<std::size_t>(i)][static_cast<std::size_t>(k)] = 1e-3 * (6 * i + k) - 3.0;
  }
  return pool;
}

}  // namespace

double* sample_vector(int mode, int node) {
  static std::vector<std::array<double, 6>> pool = make_pool();
  return pool[static_cast<std::size_t>((mode * 37 + node) % kPool)].data();
}

FmdBody* make_body_without_vectors(int nodes, int modes) {
  FmdBody* body = FMD_Create(nodes, modes);
  require(body != nullptr, "a body can be made");
  FMD_SetKeepModesInMemory(body, 0);
  char unit[4][16] = {"KILOGRAM", "METER", "SECOND", "NEWTON"};
  FMD_SetUnits(body, unit[0], unit[1], unit[2], unit[3]);
  for (int node = 1; node <= nodes; ++node) {
    FMD_SetNodeCoordinates(body, node, node % 100, node / 100 % 100, node / 10000);
    FMD_SetNodalMass(body, node, 0.001);
  }
  for (int mode = 1; mode <= modes; ++mode) {
    FMD_SetGeneralizedMass(body, mode, mode, 1.0);
    FMD_SetGeneralizedStiffness(body, mode, mode, 1000.0 * mode);
  }
  return body;
}

FmdBody* make_body(int nodes, int modes) {
  FmdBody* body = make_body_without_vectors(nodes, modes);
  for (int mode = 1; mode <= modes; ++mode) {
    for (int node = 1; node <= nodes; ++node) FMD_SetModeVec(body, mode, node, 0, sample_vector(mode, node));
  }
  return body;
}

bool has_sample_vectors(FmdBody* body, int nodes, int modes) {
  std::vector<double> half(static_cast<std::size_t>(nodes) * 3);
  for (int mode = 1; mode <= modes; mode += modes / 5 + 1) {
    for (int part = 0; part < 2; ++part) {
      if (FMD_Mode(body, mode, 0, half.data(), part) == 0) return false;
      for (int node = 1; node <= nodes; ++node) {
        const double* expected = sample_vector(mode, node) + 3 * part;
        const double* found = half.data() + static_cast<std::ptrdiff_t>(node - 1) * 3;
        if (found[0] != expected[0] || found[1] != expected[1] || found[2] != expected[2]) return false;
      }
    }
  }
  return true;
}

}  // namespace fmdbench
