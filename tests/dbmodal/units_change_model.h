// A body in any system of units: every number is given with its physical dimension, as exponents of force,
// length, mass and time, and is put into the wanted units before it is set. A body that was converted must
// agree with one that was built in the new units.
//
// The modal coordinates have no unit, so mode shapes are lengths, generalized masses are moments of inertia,
// and modal forces are energies.
#ifndef FMDTOOLKIT_TESTS_UNITS_CHANGE_MODEL_H
#define FMDTOOLKIT_TESTS_UNITS_CHANGE_MODEL_H

#include <map>
#include <string>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"

namespace fmdtest {

struct Dimension {
  int force;
  int length;
  int mass;
  int time;
};

constexpr Dimension operator*(Dimension a, Dimension b) {
  return {a.force + b.force, a.length + b.length, a.mass + b.mass, a.time + b.time};
}
constexpr Dimension operator/(Dimension a, Dimension b) {
  return {a.force - b.force, a.length - b.length, a.mass - b.mass, a.time - b.time};
}

constexpr Dimension kPure = {0, 0, 0, 0};
constexpr Dimension kOneForce = {1, 0, 0, 0};
constexpr Dimension kOneLength = {0, 1, 0, 0};
constexpr Dimension kOneMass = {0, 0, 1, 0};
constexpr Dimension kOneTime = {0, 0, 0, 1};

struct UnitSystem {
  std::string mass;
  std::string length;
  std::string time;
  std::string force;
  double force_size;  // in SI
  double length_size;
  double mass_size;
  double time_size;

  // A number of this dimension, given in SI, in these units.
  double from_si(double value, Dimension dimension) const;
  // Names the four units to the body.
  void set_on(FmdBody* body) const;
};

// Units of which no power is a power of another.
extern const UnitSystem kSi;
extern const UnitSystem kOdd;
// SI with only one unit of the odd ones: "force", "length", "mass" or "time".
UnitSystem si_but_for(const std::string& quantity);

struct ModelOptions {
  int rigid_modes = 6;           // of eight modes; fewer: of four
  bool processed_loads = false;  // on the rigid axes
  bool axis_damping = false;     // on the rigid axes
  bool mode_records = false;     // a table of eigenvalues
  bool invariants = true;        // set, and not left to be worked out from the nodes
  bool off_diagonal = true;      // entries of the matrices besides the diagonal
  bool keep_modes = false;       // in the cache
};

// The generalized mass of each mode, in SI.
constexpr double kModelMass = 2.0;

FmdBody* make_body_in(const UnitSystem& units, const ModelOptions& options);

// Every number that getters and tables of the body tell, by name; asking fills caches.
using Picture = std::map<std::string, std::vector<double>>;
Picture picture_of(FmdBody* body);

// Same names and numbers of values, equal to so many parts of the largest of a name.
void expect_same_picture(const Picture& found, const Picture& expected, double tolerance);

}  // namespace fmdtest

#endif
