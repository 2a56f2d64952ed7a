#include "calculix/lumping.h"

#include <gtest/gtest.h>

#include <cmath>

#include "translators/one_element.h"

using calculix::lump_masses;
using calculix::Mesh;
using fmdtest::mesh_of;
using fmdtest::Place;

namespace {

std::vector<double> masses_of(const Mesh& mesh, double density) {
  std::vector<double> masses(mesh.node_ids.size(), 0.0);
  EXPECT_EQ(lump_masses(mesh, std::vector<double>(mesh.elements.size(), density), masses), -1);
  return masses;
}

// An affine map with positive determinant: elements stay straight, and their shares with it.
Place moved(const Place& p) {
  return {2.0 * p[0] + 0.5 * p[1] + 0.1 * p[2] + 3.0, 1.5 * p[1] + 0.3 * p[2] - 1.0,
          0.2 * p[0] + 1.2 * p[2] + 7.0};
}

constexpr double volume_factor = 2.0 * 1.5 * 1.2 + 0.2 * (0.5 * 0.3 - 0.1 * 1.5);

}  // namespace

TEST(Lumping, SharesALinearElementEquallyAmongItsNodes) {
  for (const auto& outline : fmdtest::outlines()) {
    const auto masses = masses_of(mesh_of(outline.linear_code, outline.corners), 3.0);
    for (const double mass : masses) {
      EXPECT_NEAR(mass, 3.0 * outline.measure / static_cast<double>(masses.size()), 1e-15)
          << outline.linear_code;
    }
  }
}

// Worked out by hand from the integrals of the squared shape functions: corners, edges in the layers and,
// for the wedge, edges between the layers.
TEST(Lumping, SharesAQuadraticElementByItsConsistentDiagonal) {
  struct Shares {
    int code;
    double corner;
    double edge;
    double upright;
  };
  const Shares expected[] = {{4, 7.0 / 248, 2.0 / 31, 2.0 / 31},
                             {5, 1.0 / 34, 4.0 / 51, 2.0 / 17},
                             {6, 1.0 / 36, 4.0 / 27, 4.0 / 27},
                             {8, 1.0 / 19, 16.0 / 57, 0.0},
                             {10, 3.0 / 76, 16.0 / 76, 0.0}};
  for (const auto& outline : fmdtest::outlines()) {
    for (const Shares& shares : expected) {
      if (shares.code != outline.quadratic_code) continue;
      const auto masses = masses_of(mesh_of(outline.quadratic_code, places_of(outline, true)), 2.0);
      for (std::size_t i = 0; i < masses.size(); ++i) {
        double share = i < outline.corners.size() ? shares.corner : shares.edge;
        if (shares.code == 5 && i >= 12) share = shares.upright;
        EXPECT_NEAR(masses[i], 2.0 * outline.measure * share, 1e-14) << shares.code << " node " << i;
      }
    }
  }
}

TEST(Lumping, SharesBeamsByTheirLengthInTheOrderOfTheDeck) {
  const auto straight = masses_of(mesh_of(11, {{1, 0, 0}, {1, 3, 4}}), 2.0);
  EXPECT_NEAR(straight[0], 5.0, 1e-14);
  EXPECT_NEAR(straight[1], 5.0, 1e-14);
  const auto curved = masses_of(mesh_of(12, {{0, 0, 0}, {3, 0, 0}, {6, 0, 0}}), 2.0);
  EXPECT_NEAR(curved[0], 2.0, 1e-14);
  EXPECT_NEAR(curved[1], 8.0, 1e-14);
  EXPECT_NEAR(curved[2], 2.0, 1e-14);
}

TEST(Lumping, KeepsTheSharesOfSheardedSolids) {
  for (const auto& outline : fmdtest::outlines()) {
    if (outline.linear_code > 3) continue;
    auto places = places_of(outline, true);
    const auto before = masses_of(mesh_of(outline.quadratic_code, places), 1.0);
    for (Place& place : places) place = moved(place);
    const auto after = masses_of(mesh_of(outline.quadratic_code, places), 1.0);
    for (std::size_t i = 0; i < before.size(); ++i) {
      EXPECT_NEAR(after[i], before[i] * volume_factor, 1e-14) << outline.quadratic_code;
    }
  }
}

TEST(Lumping, MeasuresTiltedShells) {
  const auto masses = masses_of(mesh_of(9, {{0, 0, 0}, {3, 0, 4}, {3, 2, 4}, {0, 2, 0}}), 1.0);
  double sum = 0.0;
  for (const double mass : masses) sum += mass;
  EXPECT_NEAR(sum, 10.0, 1e-14);
}

// A brick whose upper face is moved sideways by a quadratic amount keeps its volume.
TEST(Lumping, MeasuresCurvedElements) {
  for (const auto& outline : fmdtest::outlines()) {
    if (outline.linear_code > 3) continue;
    auto places = places_of(outline, true);
    for (Place& place : places) place[0] += 0.3 * place[2] * place[2] - 0.2 * place[1] * place[2];
    double sum = 0.0;
    for (const double mass : masses_of(mesh_of(outline.quadratic_code, places), 1.0)) sum += mass;
    EXPECT_NEAR(sum, outline.measure, 1e-14) << outline.quadratic_code;
  }
}

TEST(Lumping, NamesTheElementWithoutPositiveMeasure) {
  Mesh mesh = mesh_of(3, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  mesh.elements.push_back({2, calculix::element_type(3), 4, 2});
  for (const int node : {0, 2, 1, 3}) mesh.element_nodes.push_back(node);  // inside out
  std::vector<double> masses(4, 0.0);
  EXPECT_EQ(lump_masses(mesh, {1.0, 1.0}, masses), 1);
  const Mesh flat = mesh_of(9, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}});
  EXPECT_EQ(lump_masses(flat, {1.0}, masses), 0);
}
