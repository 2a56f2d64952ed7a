// Coarsening on made-up meshes: against the plain rules, and by what must hold of any result.
#include <gtest/gtest.h>

#include <cmath>
#include <numeric>
#include <set>

#include "dbmodal/coarsen_fixture.h"
#include "dbmodal/coarsen_meshes.h"

namespace fmdtest {

namespace {

using CoarsenRandom = CoarsenTest;

TEST_F(CoarsenRandom, ResultsAreThoseOfThePlainRules) {
  CoarsenCounts counts;
  for (unsigned seed = 1; seed <= 1500; ++seed) {
    MeshMaker maker(seed);
    const Mesh mesh = maker.make();
    const CoarsenSettings settings = maker.make_settings(mesh);
    FmdBody* body = make_body(mesh);
    trim(body, text_of(settings));
    ASSERT_EQ(faces_of(body), coarsen_by_plain_rules(mesh, settings, counts)) << seed;
    FMD_UnLink(body);
  }
  // Every rule has come into play.
  for (const int count : {counts.closed_fans, counts.open_fans, counts.failed_fans, counts.reversed_seeds,
                          counts.reversed_faces, counts.inner_pinches, counts.outer_pinches,
                          counts.dropped_from_stale_lists, counts.straight_vertices}) {
    EXPECT_GT(count, 20);
  }
}

TEST_F(CoarsenRandom, PlatesOfManyNodesComeOutAsByThePlainRules) {
  for (unsigned seed = 1; seed <= 3; ++seed) {
    MeshMaker maker(seed);
    Mesh mesh = make_plate(50, 40);
    if (seed > 1) maker.disturb_in_plane(mesh, 50, 40);
    CoarsenSettings settings;
    settings.resolution = 0.02 + 0.03 * seed;
    settings.removes_colinear = seed == 2;
    CoarsenCounts counts;
    FmdBody* body = make_body(mesh);
    trim(body, text_of(settings));
    ASSERT_EQ(faces_of(body), coarsen_by_plain_rules(mesh, settings, counts)) << seed;
    EXPECT_GT(counts.closed_fans, 500);
  }
}

// Twice the area of a polygon in the plane; a closing repeat adds nothing.
double area_of(const Mesh& mesh, const std::vector<int>& face) {
  double twice = 0.0;
  for (std::size_t k = 0; k < face.size(); ++k) {
    const auto& a = mesh.points[static_cast<std::size_t>(face[k])];
    const auto& b = mesh.points[static_cast<std::size_t>(face[(k + 1) % face.size()])];
    twice += a[0] * b[1] - a[1] * b[0];
  }
  return std::fabs(twice) / 2;
}

// All reach no further than three edges, so that no merged area grows round a hole and no pinch with area in
// it goes.
TEST_F(CoarsenRandom, AreaOfAFlatPlateIsKept) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    MeshMaker maker(seed);
    const int columns = maker.whole(3, 20);
    const int rows = maker.whole(3, 20);
    Mesh mesh = make_plate(columns, rows);
    maker.disturb_in_plane(mesh, columns, rows);
    CoarsenSettings settings;
    settings.resolution = std::min(0.5, 2.2 / std::hypot(columns, rows));
    FmdBody* body = make_body(mesh);
    trim(body, text_of(settings));
    const Faces faces = faces_of(body);
    EXPECT_LT(faces.size(), mesh.faces.size()) << seed;
    const double area = std::accumulate(faces.begin(), faces.end(), 0.0, [&](double sum, const auto& face) {
      return sum + area_of(mesh, face);
    });
    EXPECT_NEAR(area, columns * rows, 1e-9 * columns * rows) << seed;
    FMD_UnLink(body);
  }
}

TEST_F(CoarsenRandom, CornersAreNodesOfTheOldMeshAndPreservedOnesStay) {
  for (unsigned seed = 2001; seed <= 2200; ++seed) {
    MeshMaker maker(seed);
    const int columns = maker.whole(3, 14);
    const int rows = maker.whole(3, 14);
    Mesh mesh = make_plate(columns, rows);
    maker.disturb_in_plane(mesh, columns, rows);
    CoarsenSettings settings = maker.make_settings(mesh);
    FmdBody* body = make_body(mesh);
    trim(body, text_of(settings));
    std::set<int> corners;
    for (const std::vector<int>& face : faces_of(body)) corners.insert(face.begin(), face.end());
    EXPECT_TRUE(corners.empty() || (*corners.begin() >= 0 && *corners.rbegin() < FMD_NodeCount(body)));
    for (const int node : settings.preserved) EXPECT_EQ(corners.count(node), 1U) << seed;
    EXPECT_EQ(FMD_NodeCount(body), static_cast<int>(mesh.points.size()));
    FMD_UnLink(body);
  }
}

}  // namespace

}  // namespace fmdtest
