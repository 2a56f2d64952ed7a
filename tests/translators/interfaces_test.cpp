// Interfaces as they are written, and what their couplings do to displacements.
#include "calculix/interfaces.h"

#include <gtest/gtest.h>

#include "translators/small_models.h"

using calculix::Coupling;
using calculix::InterfaceKind;
using calculix::InterfaceNode;
using calculix::parse_interface;
using calculix::Point;
using namespace fmdtest;

namespace {

std::string error_of(const std::string& text) {
  try {
    parse_interface(text);
  } catch (const std::invalid_argument& error) {
    return error.what();
  }
  return "no error";
}

// t + r x (at - reference).
Point moved(const Point& t, const Point& r, const Point& at, const Point& reference) {
  const double d[3] = {at[0] - reference[0], at[1] - reference[1], at[2] - reference[2]};
  return {t[0] + r[1] * d[2] - r[2] * d[1], t[1] + r[2] * d[0] - r[0] * d[2],
          t[2] + r[0] * d[1] - r[1] * d[0]};
}

const Point translation = {0.5, -2, 3};
const Point rotation = {0.25, 1.5, -0.75};
const Point reference = {4, -1, 2};

Coupling group(InterfaceKind kind, const std::vector<InterfaceNode>& nodes) {
  const auto couplings = calculix::couplings_of(kind, nodes, reference, calculix::RowIndex(truss_dofs()));
  EXPECT_EQ(couplings.size(), 1U);
  EXPECT_EQ(couplings[0].width, 6);
  return couplings[0];
}

// The six coordinates that displacements have: F^T u.
std::vector<double> sums(const Coupling& coupling, const std::vector<double>& u) {
  std::vector<double> q(6, 0.0);
  for (std::size_t i = 0; i < coupling.dofs.size(); ++i) {
    for (std::size_t k = 0; k < 6; ++k) {
      q[k] += coupling.factors[6 * i + k] * u[static_cast<std::size_t>(coupling.dofs[i])];
    }
  }
  return q;
}

std::string group_error(InterfaceKind kind, const std::vector<InterfaceNode>& nodes) {
  try {
    group(kind, nodes);
  } catch (const calculix::ReductionError& error) {
    return error.what();
  }
  return "no error";
}

}  // namespace

TEST(ParseInterface, TakesKindNodesAndReferencePoint) {
  const auto group = parse_interface("rigid:HOLE_W1@4,18.5,-6e1");
  EXPECT_EQ(group.kind, InterfaceKind::rigid);
  EXPECT_EQ(group.nodes, "HOLE_W1");
  ASSERT_TRUE(group.reference);
  EXPECT_EQ(*group.reference, (Point{4, 18.5, -60}));
  EXPECT_EQ(parse_interface("average:SET").kind, InterfaceKind::average);
  EXPECT_FALSE(parse_interface("average:SET").reference);
  const auto nodes = parse_interface("nodes:3,17,5");
  EXPECT_EQ(nodes.kind, InterfaceKind::nodes);
  EXPECT_EQ(calculix::ids_of_list(nodes.nodes), (std::vector<int>{3, 17, 5}));
  EXPECT_TRUE(calculix::ids_of_list("HOLE_W1").empty());
  EXPECT_TRUE(calculix::ids_of_list("3,HOLE").empty());
  EXPECT_EQ(parse_interface("nodes:C:/ids").nodes, "C:/ids");
}

TEST(ParseInterface, TellsWhatItExpects) {
  const std::string form =
      "expected nodes:SET, rigid:SET or average:SET, of groups also with a reference point as "
      "rigid:SET@X,Y,Z, "
      "found ";
  EXPECT_EQ(error_of("HOLE"), form + "\"HOLE\"");
  EXPECT_EQ(error_of("soft:HOLE"), form + "\"soft:HOLE\"");
  EXPECT_EQ(error_of(""), form + "\"\"");
  EXPECT_EQ(error_of("nodes"), form + "\"nodes\"");
  EXPECT_EQ(error_of("rigid:"), "expected nodes of the interface \"rigid:\"");
  EXPECT_EQ(error_of("rigid:@1,2,3"), "expected nodes of the interface \"rigid:@1,2,3\"");
  for (const char* point : {"1,2", "1,2,3,4", "1,2,x", "", "1,2,nan"}) {
    EXPECT_EQ(error_of("rigid:HOLE@" + std::string(point)),
              "expected a reference point X,Y,Z, found \"" + std::string(point) + "\"");
  }
  EXPECT_EQ(error_of("nodes:HOLE@1,2,3"),
            "expected no reference point of single nodes, found \"nodes:HOLE@1,2,3\"");
}

TEST(Couplings, MoveARigidGroupAsOnePiece) {
  const Coupling coupling = group(InterfaceKind::rigid, truss_nodes());
  EXPECT_TRUE(coupling.imposes);
  for (std::size_t i = 0; i < truss_nodes().size(); ++i) {
    const Point expected = moved(translation, rotation, truss_nodes()[i].at, reference);
    for (std::size_t axis = 0; axis < 3; ++axis) {
      double u = 0.0;
      for (std::size_t k = 0; k < 3; ++k) {
        u += coupling.factors[6 * (3 * i + axis) + k] * translation[k];
        u += coupling.factors[6 * (3 * i + axis) + 3 + k] * rotation[k];
      }
      EXPECT_EQ(coupling.dofs[3 * i + axis], static_cast<int>(3 * i + axis));
      EXPECT_NEAR(u, expected[axis], 1e-14);
    }
  }
}

TEST(Couplings, FindTheRigidMotionOfAGroupThatMovesAsOnePiece) {
  const Coupling coupling = group(InterfaceKind::average, truss_nodes());
  EXPECT_FALSE(coupling.imposes);
  std::vector<double> u;
  for (const InterfaceNode& node : truss_nodes()) {
    const Point at = moved(translation, rotation, node.at, reference);
    u.insert(u.end(), at.begin(), at.end());
  }
  const std::vector<double> q = sums(coupling, u);
  for (std::size_t k = 0; k < 3; ++k) {
    EXPECT_NEAR(q[k], translation[k], 1e-13);
    EXPECT_NEAR(q[3 + k], rotation[k], 1e-13);
  }
}

// A square breathes, and two of its corners move against the other two: no rigid motion in the mean.
TEST(Couplings, FindNoMotionOfAGroupThatOnlyDeforms) {
  const std::vector<InterfaceNode> square = {
      {11, {1, 1, 0}}, {12, {-1, 1, 0}}, {13, {-1, -1, 0}}, {14, {1, -1, 0}}};
  const Coupling coupling = group(InterfaceKind::average, square);
  const std::vector<double> breathing = {1, 1, 0, -1, 1, 0, -1, -1, 0, 1, -1, 0};
  const std::vector<double> warping = {0, 0, 1, 0, 0, -1, 0, 0, 1, 0, 0, -1};
  for (const auto& u : {breathing, warping}) {
    for (const double q : sums(coupling, u)) EXPECT_NEAR(q, 0.0, 1e-15);
  }
  // One corner that rises by 4 lifts the centre by 1 and turns it by 1 about x and -1 about y.
  const std::vector<double> q = sums(coupling, {0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_NEAR(q[3], 1.0, 1e-15);
  EXPECT_NEAR(q[4], -1.0, 1e-15);
  EXPECT_NEAR(q[5], 0.0, 1e-15);
  // At the reference point (4, -1, 2): 1 + r x d with d = (4, -1, 2).
  EXPECT_NEAR(q[0], -1.0 * 2.0, 1e-15);
  EXPECT_NEAR(q[1], -1.0 * 2.0, 1e-15);
  EXPECT_NEAR(q[2], 1.0 + 1.0 * -1.0 + 1.0 * 4.0, 1e-15);
}

TEST(Couplings, AnchorThreeNodesFarFromEachOther) {
  const Coupling coupling = group(InterfaceKind::average, truss_nodes());
  ASSERT_EQ(coupling.anchors.size(), 9U);
  std::vector<int> nodes;
  for (std::size_t i = 0; i < 9; i += 3) {
    EXPECT_EQ(coupling.anchors[i] % 3, 0);
    EXPECT_EQ(coupling.anchors[i + 2], coupling.anchors[i] + 2);
    nodes.push_back(coupling.anchors[i] / 3);
  }
  EXPECT_NE(nodes[0], nodes[1]);
  EXPECT_NE(nodes[1], nodes[2]);
  EXPECT_NE(nodes[0], nodes[2]);
}

TEST(Couplings, GiveEachSingleNodeItsOwnThree) {
  const std::vector<InterfaceNode> nodes = {truss_nodes()[4], truss_nodes()[1]};
  const auto couplings =
      calculix::couplings_of(InterfaceKind::nodes, nodes, reference, calculix::RowIndex(truss_dofs()));
  ASSERT_EQ(couplings.size(), 2U);
  EXPECT_EQ(couplings[0].dofs, (std::vector<int>{12, 13, 14}));
  EXPECT_EQ(couplings[1].dofs, (std::vector<int>{3, 4, 5}));
  EXPECT_EQ(couplings[0].factors, (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

TEST(Couplings, RefuseGroupsOnALineAndMissingDegreesOfFreedom) {
  const std::string line = "expected three nodes or more that do not lie on a line";
  const std::vector<InterfaceNode> on_line = {
      {11, {0, 0, 0}}, {12, {1, 2, 3}}, {13, {2, 4, 6}}, {14, {-1, -2, -3}}};
  for (const InterfaceKind kind : {InterfaceKind::rigid, InterfaceKind::average}) {
    EXPECT_EQ(group_error(kind, on_line), line);
    EXPECT_EQ(group_error(kind, {{11, {5, 5, 5}}}), line);
    EXPECT_EQ(group_error(kind, {{11, {0, 0, 0}}, {12, {1, 0, 0}}, {99, {0, 1, 0}}}),
              "expected three degrees of freedom of node 99, the matrices lack 99.1");
  }
}
