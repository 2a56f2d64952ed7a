// A plain picture of what was stored in a body's mode vectors, and a fixture that fills both alike.
#ifndef FMDTOOLKIT_TESTS_MODE_MODEL_H
#define FMDTOOLKIT_TESTS_MODE_MODEL_H

#include <array>
#include <map>
#include <tuple>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"

namespace fmdtest {

using SixValues = std::array<double, 6>;

class ModeStoreTest : public SessionTest {
 protected:
  // Stores six values that no other place of the body has, and remembers them.
  void set(FmdBody* body, int mode, int node, int type);

  // What was stored, in the order in which the nodes of the type were first named; zeros where nothing was.
  std::vector<double> expected(int mode, int type) const;
  std::vector<double> expected_half(int mode, int type, int part) const;

  // What FMD_Mode delivers; empty where it answers 0.
  static std::vector<double> read_half(FmdBody* body, int mode, int type, int part);

  // As many nodes, ids from 1, and modes, numbers from 1, each with all its values.
  FmdBody* make_body(int nodes, int modes, int type = fmd::kShape);

  std::vector<int> nodes_[TOTAL_MODE_INFO_TYPES];
  std::map<std::tuple<int, int, int>, SixValues> values_;
};

}  // namespace fmdtest

#endif
