// A body with nodes, masses, inertia tensors and mode shapes that the test knows, and the invariants worked
// out from them by whole matrix products.
#ifndef FMDTOOLKIT_TESTS_INVARIANTS_MODEL_H
#define FMDTOOLKIT_TESTS_INVARIANTS_MODEL_H

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"

namespace fmdtest {

using Three = std::array<double, 3>;
using Nine = std::array<double, 9>;

Nine skew(const Three& x);
Nine product(const Nine& a, const Nine& b);
Three product(const Nine& a, const Three& x);
Nine transposed(const Nine& a);
// a += s b
void add(Nine& a, double s, const Nine& b);
void add(Three& a, double s, const Three& b);

struct ModelNode {
  int id;
  double mass;
  Three place;
  bool has_inertia;
  Nine inertia;
};

struct ModelMode {
  int number;
  std::vector<Three> translations;
  std::vector<Three> rotations;
};

struct InvariantsModel {
  std::vector<ModelNode> nodes;
  std::vector<ModelMode> modes;

  // Nodes and modes with keys in no order and values in no pattern; every third node has an inertia tensor,
  // every fifth no mass.
  static InvariantsModel random(int nodes, int modes);

  Three invariant3(std::size_t mode) const;
  Three invariant4(std::size_t mode) const;
  Three invariant5(std::size_t i, std::size_t j) const;
  Nine invariant8(std::size_t mode) const;
  Nine invariant9(std::size_t i, std::size_t j) const;
};

class InvariantsTest : public SessionTest {
 protected:
  // The body of a model. Without masses it has neither nodal masses nor inertia tensors.
  FmdBody* make_body(const InvariantsModel& model, bool masses = true);
  static void set_mode(FmdBody* body, const InvariantsModel& model, std::size_t mode);

  // The values of an array that a getter returned, which is freed; empty for null.
  static std::vector<double> taken(double* values, std::size_t count);
  static Nine taken_tensor(double* values);
  // Column of three rows.
  static Three column(const std::vector<double>& rows, std::size_t column);
};

// Comparison within rounding of sums whose terms are about as large as the scale.
void expect_near(const double* found, const double* expected, std::size_t count, double scale,
                 const std::string& what);
bool same_bits(const double* a, const double* b, std::size_t count);

}  // namespace fmdtest

#endif
