// Rotation and reflection of whole bodies: whatever the operations leave is held against a model that is
// moved on its own and summed anew.
#include <gmock/gmock.h>

#include <cmath>

#include "dbmodal/rigid_motion_model.h"

namespace {

using fmdtest::InvariantsModel;
using fmdtest::Nine;
using fmdtest::RigidMotion;
using fmdtest::Three;
using testing::IsEmpty;

struct Case {
  const char* name;
  int (*run)(FmdBody* body);
  RigidMotion motion;
};

int rotate(FmdBody* body, Three axis, Three point, double angle) {
  return FMD_Rotate(body, axis.data(), point.data(), angle);
}

int rotate_about_origin(FmdBody* body, Three axis, double angle) {
  Nine matrix;
  return FMD_Rotate_Origin(body, axis.data(), angle, matrix.data());
}

int mirror(FmdBody* body, Three normal, Three point) {
  return FMD_Mirror(body, normal.data(), point.data());
}

int mirror_at_origin(FmdBody* body, Three normal) {
  return FMD_Mirror_Origin(body, normal.data());
}

const Case kCases[] = {
    {"RotateAboutAnyAxis",
     [](FmdBody* b) {
       return rotate(b, {1.0, 2.0, -2.0}, {3.0, -1.0, 0.5}, 40.0);
     },
     fmdtest::rotation({1.0, 2.0, -2.0}, {3.0, -1.0, 0.5}, 40.0)},
    {"RotateAboutZ",
     [](FmdBody* b) {
       return rotate(b, {0.0, 0.0, 3.0}, {1.0, 2.0, 3.0}, 90.0);
     },
     fmdtest::rotation({0.0, 0.0, 3.0}, {1.0, 2.0, 3.0}, 90.0)},
    {"RotateAgainstZ",
     [](FmdBody* b) {
       return rotate(b, {0.0, 0.0, -1.0}, {1.0, 2.0, 3.0}, 25.0);
     },
     fmdtest::rotation({0.0, 0.0, -1.0}, {1.0, 2.0, 3.0}, 25.0)},
    {"RotateAboutTheOriginTurnsTheOtherWay",
     [](FmdBody* b) {
       return rotate_about_origin(b, {-1.0, 0.5, 0.25}, 70.0);
     },
     fmdtest::rotation({-1.0, 0.5, 0.25}, {}, -70.0)},
    {"RotateFullTurn",
     [](FmdBody* b) {
       return rotate(b, {1.0, 1.0, 0.0}, {0.0, 0.0, 2.0}, 360.0);
     },
     fmdtest::translation({})},
    {"Mirror",
     [](FmdBody* b) {
       return mirror(b, {1.0, -2.0, 0.5}, {0.5, 1.0, 2.0});
     },
     fmdtest::reflection({1.0, -2.0, 0.5}, {0.5, 1.0, 2.0})},
    {"MirrorAcrossZ",
     [](FmdBody* b) {
       return mirror(b, {0.0, 0.0, -4.0}, {0.5, 1.0, 2.0});
     },
     fmdtest::reflection({0.0, 0.0, 1.0}, {0.0, 0.0, 2.0})},
    {"MirrorAtTheOrigin",
     [](FmdBody* b) {
       return mirror_at_origin(b, {3.0, 1.0, 2.0});
     },
     fmdtest::reflection({3.0, 1.0, 2.0}, {})},
};

class RigidTransformation : public fmdtest::RigidMotionTest, public testing::WithParamInterface<Case> {
 protected:
  void transform(FmdBody* body, InvariantsModel& model) {
    EXPECT_EQ(GetParam().run(body), 1);
    fmdtest::move(model, GetParam().motion);
    EXPECT_THAT(log.errors, IsEmpty());
    EXPECT_THAT(log.warnings, IsEmpty());
  }

  // Stress and strain of a mode at its nodes, and the state before loading.
  static std::vector<Nine> tensors_of(FmdBody* body, int mode) {
    std::vector<Nine> tensors;
    for (const int type : {fmd::kStress, fmd::kStrain}) {
      const std::vector<double> normal = half_of(body, mode, type, 0);
      const std::vector<double> shear = half_of(body, mode, type, 1);
      for (std::size_t k = 0; k < normal.size(); k += 3) {
        const double six[] = {normal[k], normal[k + 1], normal[k + 2], shear[k], shear[k + 1], shear[k + 2]};
        tensors.push_back(fmdtest::unfolded(six));
      }
      const double* const state = type == fmd::kStress ? body->PreStress : body->PreStrain;
      for (int node = 0; node < FMD_ModeNodeCount(body, type); ++node)
        tensors.push_back(fmdtest::unfolded(state + 6 * node));
    }
    EXPECT_EQ(tensors.size(), 8U);
    return tensors;
  }

  // By the traces of the first three powers.
  static void expect_same_eigenvalues(const Nine& a, const Nine& b) {
    const Nine a2 = fmdtest::product(a, a);
    const Nine b2 = fmdtest::product(b, b);
    const Nine a3 = fmdtest::product(a2, a);
    const Nine b3 = fmdtest::product(b2, b);
    EXPECT_NEAR(trace(a), trace(b), 1e-9);
    EXPECT_NEAR(trace(a2), trace(b2), 1e-7);
    EXPECT_NEAR(trace(a3), trace(b3), 1e-4);
  }

  static double trace(const Nine& t) { return t[0] + t[4] + t[8]; }

  // Hands a body without nodal mass all that a translator could.
  static void set_invariants(FmdBody* body, const InvariantsModel& model) {
    double mass = 0.0;
    Three moment{};
    Nine inertia{};
    for (const auto& node : model.nodes) {
      mass += node.mass;
      fmdtest::add(moment, node.mass, node.place);
      const Nine skew = fmdtest::skew(node.place);
      fmdtest::add(inertia, -node.mass, fmdtest::product(skew, skew));
      if (node.has_inertia) fmdtest::add(inertia, 1.0, node.inertia);
    }
    double six[] = {inertia[0], inertia[4], inertia[8], inertia[1], inertia[2], inertia[5]};
    EXPECT_EQ(FMD_SetInvar1(body, mass), 1);
    EXPECT_EQ(FMD_SetInvar2(body, moment.data()), 1);
    EXPECT_EQ(FMD_SetInvar7(body, six), 1);
    for (std::size_t i = 0; i < model.modes.size(); ++i) set_mode_invariants(body, model, i);
  }

  static void set_mode_invariants(FmdBody* body, const InvariantsModel& model, std::size_t i) {
    const int number = model.modes[i].number;
    FMD_SetInvar3(body, number, model.invariant3(i).data());
    FMD_SetInvar4(body, number, model.invariant4(i).data());
    FMD_SetInvar8(body, number, model.invariant8(i).data());
    for (std::size_t j = i; j < model.modes.size(); ++j) {
      FMD_SetInvar5(body, number, model.modes[j].number, model.invariant5(i, j).data());
      FMD_SetInvar9(body, number, model.modes[j].number, model.invariant9(i, j).data());
    }
  }
};

TEST_P(RigidTransformation, TakesAllThatTheBodyKnowsAlong) {
  InvariantsModel model = InvariantsModel::random(12, 4);
  FmdBody* body = make_body(model);
  learn_invariants(body);
  transform(body, model);
  expect_model(body, model);
}

TEST_P(RigidTransformation, LeavesNothingStaleOnABodyThatKnewNothing) {
  InvariantsModel model = InvariantsModel::random(11, 3);
  FmdBody* body = make_body(model);
  transform(body, model);
  expect_model(body, model);
}

TEST_P(RigidTransformation, MovesInvariantsThatWereSetOnABodyWithoutNodalMass) {
  InvariantsModel model = InvariantsModel::random(10, 3);
  FmdBody* body = make_body(model, false);
  set_invariants(body, model);
  transform(body, model);
  expect_shapes(body, model);
  expect_invariants(body, model);
  expect_mass_properties(body, model);
}

TEST_P(RigidTransformation, WorksInTheUnitsOfTheBody) {
  InvariantsModel model = InvariantsModel::random(8, 3);
  FmdBody* body = make_body(model);
  // Vectors stay in the store as they are and are fetched ten times as large.
  body->UnitTotalFactor[fmd::kLength] = 10.0;
  for (auto& mode : model.modes)
    for (Three& v : mode.translations) v = {10.0 * v[0], 10.0 * v[1], 10.0 * v[2]};
  learn_invariants(body);
  transform(body, model);
  expect_model(body, model);
}

TEST_P(RigidTransformation, StressAndStrainAreTensorsThatKeepTheirInvariants) {
  const InvariantsModel model = InvariantsModel::random(4, 2);
  FmdBody* body = make_body(model);
  double six[] = {10.0, 20.0, -30.0, 4.0, 5.0, -6.0};
  const int nodes[] = {model.nodes[2].id, model.nodes[0].id};
  for (const int type : {fmd::kStress, fmd::kStrain}) {
    for (const int node : nodes) {
      six[0] += 1.5;
      six[4] *= -1.25;
      ASSERT_EQ(FMD_SetModeVec(body, model.modes[1].number, node, type, six), 1);
    }
  }
  FMD_SetPreStressVec(body, nodes[1], six);
  six[5] = 8.0;
  FMD_SetPreStrainVec(body, nodes[0], six);
  body->UnitTotalFactor[fmd::kForce] = 2.0;
  body->UnitTotalFactor[fmd::kLength] = 0.5;
  const std::vector<Nine> before = tensors_of(body, model.modes[1].number);
  ASSERT_EQ(GetParam().run(body), 1);
  const std::vector<Nine> after = tensors_of(body, model.modes[1].number);
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t k = 0; k < before.size(); ++k) {
    const Nine expected = GetParam().motion.tensor(before[k]);
    fmdtest::expect_near(after[k].data(), expected.data(), 9, 1e4, "tensor " + std::to_string(k));
    expect_same_eigenvalues(after[k], before[k]);
  }
  EXPECT_THAT(log.errors, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Of, RigidTransformation, testing::ValuesIn(kCases),
                         [](const auto& tested) { return std::string(tested.param.name); });

}  // namespace
