// The model of a body carried along by a rigid motion, all worked out with matrices that stand to the left of
// column vectors, and a fixture that holds a body against it.
#ifndef FMDTOOLKIT_TESTS_RIGID_MOTION_MODEL_H
#define FMDTOOLKIT_TESTS_RIGID_MOTION_MODEL_H

#include "dbmodal/invariants_model.h"

namespace fmdtest {

// r' = turn r + shift; handedness is -1 where the motion reflects.
struct RigidMotion {
  Nine turn;
  Three shift;
  double handedness;

  Three place(const Three& r) const;
  Three vector(const Three& v) const;  // translations
  Three axial(const Three& v) const;   // rotations
  Nine tensor(const Nine& t) const;
};

RigidMotion translation(const Three& shift);
// By the right-hand rule, by Rodrigues' formula.
RigidMotion rotation(const Three& axis, const Three& point, double degrees);
// By Householder's reflection.
RigidMotion reflection(const Three& normal, const Three& point);

// The entries of a symmetric tensor held as xx yy zz xy xz yz, out and back.
Nine unfolded(const double* six);

void move(InvariantsModel& model, const RigidMotion& motion);

class RigidMotionTest : public InvariantsTest {
 protected:
  // Has every getter fill its cache.
  static void learn_invariants(FmdBody* body);

  // Nodes, mode shapes, mass properties and all invariants of the body are those of the model.
  static void expect_model(FmdBody* body, const InvariantsModel& model);
  static void expect_nodes(FmdBody* body, const InvariantsModel& model);
  static void expect_shapes(FmdBody* body, const InvariantsModel& model);
  static void expect_mass_properties(FmdBody* body, const InvariantsModel& model);
  static void expect_invariants(FmdBody* body, const InvariantsModel& model);

  // What FMD_Mode delivers of a mode, three values a node.
  static std::vector<double> half_of(FmdBody* body, int number, int type, int part);
};

}  // namespace fmdtest

#endif
