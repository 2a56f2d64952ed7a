// All that a body holds by node, told with node ids instead of indices, so that it can be compared across a
// change of the node table.
#ifndef FMDTOOLKIT_TESTS_BODY_PICTURE_H
#define FMDTOOLKIT_TESTS_BODY_PICTURE_H

#include <map>
#include <set>
#include <tuple>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtest {

struct BodyPicture {
  using Row = std::vector<double>;

  std::map<int, Row> nodes;                             // coordinates, mass, inertia
  std::map<std::tuple<int, int, int>, Row> vectors;     // by type, mode and node: six values
  std::map<std::pair<int, int>, Row> pre_loads;         // by type and node
  std::vector<std::vector<int>> faces;                  // corners
  std::vector<int> interface_nodes;                     // in order
  std::vector<std::vector<std::vector<double>>> loads;  // per case: node, coordinate, value

  bool operator==(const BodyPicture& other) const;

  // What is left of it when only these nodes stay.
  BodyPicture restricted_to(const std::set<int>& ids) const;
};

// Reads it through the interface, past no cache.
BodyPicture picture_of(FmdBody* body);

// The tables of the body agree with each other, and every index in it leads somewhere.
void expect_sound(FmdBody* body);

}  // namespace fmdtest

#endif
