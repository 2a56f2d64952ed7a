#include "calculix/faces.h"

#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "translators/one_element.h"

using calculix::Face;
using calculix::Mesh;
using calculix::outer_faces;
using fmdtest::mesh_of;
using fmdtest::Place;

namespace {

// Volume by the divergence theorem: the triangles of each face with the origin.
double enclosed_volume(const Mesh& mesh, const std::vector<Face>& faces) {
  double volume = 0.0;
  for (const Face& face : faces) {
    const auto at = [&](int i) {
      return mesh.points[static_cast<std::size_t>(face.nodes[static_cast<std::size_t>(i)])];
    };
    for (int i = 1; i + 1 < face.corners; ++i) {
      const Place a = at(0), b = at(i), c = at(i + 1);
      volume += (a[0] * (b[1] * c[2] - b[2] * c[1]) - a[1] * (b[0] * c[2] - b[2] * c[0]) +
                 a[2] * (b[0] * c[1] - b[1] * c[0])) /
                6.0;
    }
  }
  return volume;
}

std::multiset<int> corner_counts(const std::vector<Face>& faces) {
  std::multiset<int> counts;
  for (const Face& face : faces) counts.insert(face.corners);
  return counts;
}

// Bricks in a row along x, from z = 0 to z = 1.
Mesh brick_row(int count) {
  Mesh mesh;
  for (int i = 0; i <= count; ++i) {
    for (const Place& p : {Place{0, 0, 0}, Place{0, 1, 0}, Place{0, 1, 1}, Place{0, 0, 1}}) {
      mesh.node_ids.push_back(static_cast<int>(mesh.points.size()) + 1);
      mesh.points.push_back({static_cast<double>(i), p[1], p[2]});
    }
  }
  for (int i = 0; i < count; ++i) {
    mesh.elements.push_back({i + 1, calculix::element_type(1), mesh.element_nodes.size(), 1});
    for (const int node : {0, 4, 5, 1, 3, 7, 6, 2}) mesh.element_nodes.push_back(4 * i + node);
  }
  return mesh;
}

}  // namespace

TEST(Faces, OfOneSolidAreOrientedOutwardAndLeaveMidsideNodesOut) {
  const std::multiset<int> expected[] = {{4, 4, 4, 4, 4, 4}, {3, 3, 4, 4, 4}, {3, 3, 3, 3}};
  for (const auto& outline : fmdtest::outlines()) {
    if (outline.linear_code > 3) continue;
    for (const bool quadratic : {false, true}) {
      const Mesh mesh =
          mesh_of(quadratic ? outline.quadratic_code : outline.linear_code, places_of(outline, quadratic));
      const auto faces = outer_faces(mesh);
      EXPECT_EQ(corner_counts(faces), expected[outline.linear_code - 1]);
      EXPECT_NEAR(enclosed_volume(mesh, faces), outline.measure, 1e-15) << outline.linear_code;
      for (const Face& face : faces) {
        for (int i = 0; i < face.corners; ++i) {
          EXPECT_LT(face.nodes[static_cast<std::size_t>(i)], static_cast<int>(outline.corners.size()));
        }
      }
    }
  }
}

TEST(Faces, BetweenTwoSolidsAreLeftOut) {
  const Mesh mesh = brick_row(3);
  const auto faces = outer_faces(mesh);
  EXPECT_EQ(faces.size(), 14U);
  EXPECT_NEAR(enclosed_volume(mesh, faces), 3.0, 1e-15);
}

TEST(Faces, OfShellsAndBeamsAreTheirOwn) {
  for (const int code : {7, 8, 9, 10}) {
    for (const auto& outline : fmdtest::outlines()) {
      if (outline.linear_code != code && outline.quadratic_code != code) continue;
      const auto faces = outer_faces(mesh_of(code, places_of(outline, outline.quadratic_code == code)));
      ASSERT_EQ(faces.size(), 1U);
      ASSERT_EQ(faces[0].corners, static_cast<int>(outline.corners.size()));
      for (int i = 0; i < faces[0].corners; ++i) EXPECT_EQ(faces[0].nodes[static_cast<std::size_t>(i)], i);
    }
  }
  const auto straight = outer_faces(mesh_of(11, {{0, 0, 0}, {1, 0, 0}}));
  ASSERT_EQ(straight.size(), 1U);
  EXPECT_EQ(straight[0].corners, 2);
  EXPECT_EQ(straight[0].nodes[1], 1);
  const auto curved = outer_faces(mesh_of(12, {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}}));
  ASSERT_EQ(curved.size(), 1U);
  EXPECT_EQ(curved[0].nodes[0], 0);
  EXPECT_EQ(curved[0].nodes[1], 2);
}

TEST(Faces, OfAShellOnASolidStay) {
  Mesh mesh = brick_row(1);
  mesh.elements.push_back({2, calculix::element_type(9), mesh.element_nodes.size(), 1});
  for (const int node : {0, 1, 2, 3}) mesh.element_nodes.push_back(node);
  EXPECT_EQ(outer_faces(mesh).size(), 7U);
}

TEST(Faces, OfACollapsedBrickHaveNoRepeatedCorners) {
  // The upper face is drawn together to an edge: a wedge that lies on its side.
  Mesh mesh =
      mesh_of(1, {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}, {0, 0, 1}, {1, 0, 1}, {1, 1, 1}, {0, 1, 1}});
  mesh.element_nodes = {0, 1, 2, 3, 4, 5, 5, 4};
  const auto faces = outer_faces(mesh);
  EXPECT_EQ(corner_counts(faces), (std::multiset<int>{3, 3, 4, 4, 4}));
  EXPECT_NEAR(enclosed_volume(mesh, faces), 0.5, 1e-15);
}
