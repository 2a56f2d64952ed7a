#include "dbmodal/rigid_motion_model.h"

#include <cmath>

namespace fmdtest {

namespace {

// Sums of a dozen products of values up to a few hundred.
constexpr double kScale = 1e3;

Three unit(const Three& v) {
  const double length = std::sqrt(v[0] * v[0] + v[1] * v[1] + v[2] * v[2]);
  return {v[0] / length, v[1] / length, v[2] / length};
}

Nine identity() {
  return {1.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 1.0};
}

// The motion with this turn that leaves a point where it is.
RigidMotion about(const Nine& turn, const Three& point, double handedness) {
  Three shift = point;
  add(shift, -1.0, product(turn, point));
  return {turn, shift, handedness};
}

}  // namespace

Three RigidMotion::place(const Three& r) const {
  Three moved = product(turn, r);
  add(moved, 1.0, shift);
  return moved;
}

Three RigidMotion::vector(const Three& v) const {
  return product(turn, v);
}

Three RigidMotion::axial(const Three& v) const {
  Three moved{};
  add(moved, handedness, product(turn, v));
  return moved;
}

Nine RigidMotion::tensor(const Nine& t) const {
  return product(product(turn, t), transposed(turn));
}

RigidMotion translation(const Three& shift) {
  return {identity(), shift, 1.0};
}

// R = 1 + sin ~k + (1 - cos) ~k ~k
RigidMotion rotation(const Three& axis, const Three& point, double degrees) {
  const double angle = degrees * std::acos(-1.0) / 180.0;
  const Nine k = skew(unit(axis));
  Nine turn = identity();
  add(turn, std::sin(angle), k);
  add(turn, 1.0 - std::cos(angle), product(k, k));
  return about(turn, point, 1.0);
}

// R = 1 - 2 n nt
RigidMotion reflection(const Three& normal, const Three& point) {
  const Three n = unit(normal);
  Nine turn = identity();
  for (std::size_t i = 0; i < 3; ++i)
    for (std::size_t j = 0; j < 3; ++j) turn[3 * i + j] -= 2.0 * n[i] * n[j];
  return about(turn, point, -1.0);
}

Nine unfolded(const double* six) {
  return {six[0], six[3], six[4], six[3], six[1], six[5], six[4], six[5], six[2]};
}

void move(InvariantsModel& model, const RigidMotion& motion) {
  for (ModelNode& node : model.nodes) {
    node.place = motion.place(node.place);
    node.inertia = motion.tensor(node.inertia);
  }
  for (ModelMode& mode : model.modes) {
    for (Three& v : mode.translations) v = motion.vector(v);
    for (Three& v : mode.rotations) v = motion.axial(v);
  }
}

void RigidMotionTest::learn_invariants(FmdBody* body) {
  FMD_Invar1(body);
  for (double* copy : {FMD_Invar2(body), FMD_Invar3(body), FMD_Invar4(body), FMD_Invar5(body, 0),
                       FMD_Invar7(body), FMD_Invar8(body, 0), FMD_Invar9(body, 0, 0)}) {
    EXPECT_NE(copy, nullptr);
    FMD_FreeMemory(copy);
  }
}

std::vector<double> RigidMotionTest::half_of(FmdBody* body, int number, int type, int part) {
  std::vector<double> half(static_cast<std::size_t>(3 * FMD_ModeNodeCount(body, type)));
  if (FMD_Mode(body, number, type, half.data(), part) == 0) half.clear();
  return half;
}

void RigidMotionTest::expect_model(FmdBody* body, const InvariantsModel& model) {
  expect_nodes(body, model);
  expect_shapes(body, model);
  expect_invariants(body, model);
  expect_mass_properties(body, model);
}

void RigidMotionTest::expect_nodes(FmdBody* body, const InvariantsModel& model) {
  for (std::size_t p = 0; p < model.nodes.size(); ++p) {
    const std::string what = "node " + std::to_string(model.nodes[p].id);
    const int node = FMD_NodeIndex(body, model.nodes[p].id);
    double place[3] = {};
    EXPECT_EQ(FMD_NodeCoordinates(body, node, place), 1);
    expect_near(place, model.nodes[p].place.data(), 3, kScale, what);
    double inertia[9] = {};
    EXPECT_EQ(FMD_NodalInertia(body, node, inertia), model.nodes[p].has_inertia ? 1 : 0) << what;
    if (model.nodes[p].has_inertia)
      expect_near(inertia, model.nodes[p].inertia.data(), 9, kScale, what + ", inertia");
  }
}

void RigidMotionTest::expect_shapes(FmdBody* body, const InvariantsModel& model) {
  for (const ModelMode& mode : model.modes) {
    for (const int part : {0, 1}) {
      const std::string what = "mode " + std::to_string(mode.number) + ", part " + std::to_string(part);
      const std::vector<double> half = half_of(body, mode.number, fmd::kShape, part);
      const std::vector<Three>& expected = part == 0 ? mode.translations : mode.rotations;
      ASSERT_EQ(half.size(), 3 * expected.size()) << what;
      expect_near(half.data(), expected.data()->data(), half.size(), kScale, what);
    }
  }
}

void RigidMotionTest::expect_mass_properties(FmdBody* body, const InvariantsModel& model) {
  double total = 0.0;
  Three moment{};
  Nine sum{};
  for (const ModelNode& node : model.nodes) {
    total += node.mass;
    add(moment, node.mass, node.place);
    add(sum, -node.mass, product(skew(node.place), skew(node.place)));
    if (node.has_inertia) add(sum, 1.0, node.inertia);
  }
  expect_near(taken(FMD_Invar2(body), 3).data(), moment.data(), 3, kScale, "I2");
  expect_near(taken_tensor(FMD_Invar7(body)).data(), sum.data(), 9, kScale, "I7");
  double mass = 0.0;
  double inertia[9] = {};
  double center[3] = {};
  EXPECT_EQ(FMD_TotalMassInertia(body, &mass, inertia, center), 1);
  EXPECT_NEAR(mass, total, 1e-12);
  for (double& value : moment) value /= total;
  expect_near(center, moment.data(), 3, kScale, "centre of mass");
  for (const std::size_t k : {1, 2, 3, 5, 6, 7}) sum[k] = -sum[k];
  expect_near(inertia, sum.data(), 9, kScale, "inertia");
}

void RigidMotionTest::expect_invariants(FmdBody* body, const InvariantsModel& model) {
  const std::size_t modes = model.modes.size();
  const std::vector<double> third = taken(FMD_Invar3(body), 3 * modes);
  const std::vector<double> fourth = taken(FMD_Invar4(body), 3 * modes);
  ASSERT_EQ(third.size(), 3 * modes);
  ASSERT_EQ(fourth.size(), 3 * modes);
  for (std::size_t i = 0; i < modes; ++i) {
    const std::string of = std::to_string(i);
    const int index = static_cast<int>(i);
    expect_near(column(third, i).data(), model.invariant3(i).data(), 3, kScale, "I3 " + of);
    expect_near(column(fourth, i).data(), model.invariant4(i).data(), 3, kScale, "I4 " + of);
    expect_near(taken_tensor(FMD_Invar8(body, index)).data(), model.invariant8(i).data(), 9, kScale,
                "I8 " + of);
    const std::vector<double> fifth = taken(FMD_Invar5(body, index), 3 * modes);
    ASSERT_EQ(fifth.size(), 3 * modes);
    for (std::size_t j = 0; j < modes; ++j) {
      const std::string pair = of + ", " + std::to_string(j);
      expect_near(column(fifth, j).data(), model.invariant5(i, j).data(), 3, kScale, "I5 " + pair);
      expect_near(taken_tensor(FMD_Invar9(body, index, static_cast<int>(j))).data(),
                  model.invariant9(i, j).data(), 9, kScale, "I9 " + pair);
    }
  }
}

}  // namespace fmdtest
