// Coarsening by its plain rules, without an index or a thought for speed: what the library is held against.
#ifndef FMDTOOLKIT_TESTS_COARSEN_MODEL_H
#define FMDTOOLKIT_TESTS_COARSEN_MODEL_H

#include <array>
#include <set>
#include <vector>

namespace fmdtest {

using Faces = std::vector<std::vector<int>>;

// Corners are places in the list of points.
struct Mesh {
  std::vector<std::array<double, 3>> points;
  Faces faces;
};

struct CoarsenSettings {
  double resolution = 0.02;
  double angle = 10.0;
  bool removes_colinear = false;
  std::set<int> preserved;
};

// How often a rule came into play.
struct CoarsenCounts {
  int closed_fans = 0;
  int open_fans = 0;
  int failed_fans = 0;
  int reversed_seeds = 0;
  int reversed_faces = 0;
  int inner_pinches = 0;
  int outer_pinches = 0;
  int dropped_from_stale_lists = 0;
  int straight_vertices = 0;
};

Faces coarsen_by_plain_rules(const Mesh& mesh, const CoarsenSettings& settings, CoarsenCounts& counts);

}  // namespace fmdtest

#endif
