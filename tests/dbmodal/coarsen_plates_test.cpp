// Plates that were coarsened by hand.
//
//   6---7---8      nodes by index at (x, y), faces 0 [0 1 4 3], 1 [1 2 5 4], 2 [3 4 7 6], 3 [4 5 8 7]
//   | 2 | 3 |
//   3---4---5
//   | 0 | 1 |
//   0---1---2
#include <gmock/gmock.h>

#include "dbmodal/coarsen_fixture.h"
#include "dbmodal/coarsen_meshes.h"

namespace fmdtest {

namespace {

class CoarsenPlates : public CoarsenTest {
 protected:
  static Faces coarsened(const Mesh& mesh, const std::string& options) {
    FmdBody* body = make_body(mesh);
    trim(body, options);
    return faces_of(body);
  }

  // A node apart from the mesh makes the diagonal long, so that one twentieth of it, for the resolution and
  // for straight edges alike, is 2.0025 where the mesh is this plate: sqrt(40^2 + 2^2) / 20.
  static Mesh small_plate_in_a_long_box() {
    Mesh mesh = make_plate(2, 2);
    mesh.points.push_back({40, 0, 0});
    return mesh;
  }

  static std::string id(int node) { return std::to_string(id_of(node)); }
};

// The diagonal is sqrt(8), so the reach is sqrt(2): exactly that of a square's far corner.
//   1  faces 0 and 1, turned to [1 4 3 0] and [1 2 5 4]. From face 0 the chain ends at corner 0; from face 1
//   it
//      goes on at 4 along face 0: 2 5 4 3 0. First and last differ, so 1 comes behind: slot 0 = [2 5 4 3 0
//      1].
//   3  has face 0 with corner 2 in it, too far away.
//   4  faces 0, 2, 3, turned to [4 3 0 1 2 5], [4 7 6 3], [4 5 8 7]: 3 0 1 2 5, 8 7, 6 3 is closed, and 4
//   goes.
//      Of nine entries trunc(2.7) = 2 is the limit; the closing 3 is one entry from the end and goes.
//   All others have one face by now.
TEST_F(CoarsenPlates, WholePlateBecomesOnePolygon) {
  EXPECT_EQ(coarsened(make_plate(2, 2), "0.5,10,0"), (Faces{{3, 0, 1, 2, 5, 8, 7, 6}}));
}

// With the middles of the rim preserved 4 is the first node that may go: [4 3 0 1], [4 1 2 5], [4 7 6 3],
// [4 5 8 7] chain to 3 0 1, 2 5, 8 7, 6 3. The closing 3 has no record, so it stays.
TEST_F(CoarsenPlates, InnerNodeOfFourFacesDissolves) {
  const std::string ids = id(1) + "," + id(3) + "," + id(5) + "," + id(7);
  EXPECT_EQ(coarsened(make_plate(2, 2), "0.5,10,0," + ids), (Faces{{3, 0, 1, 2, 5, 8, 7, 6, 3}}));
}

// A plate of three by two squares,
//   8---9--10--11     faces 0 [0 1 5 4], 1 [1 2 6 5], 2 [2 3 7 6],
//   | 3 | 4 | 5 |           3 [4 5 9 8], 4 [5 6 10 9], 5 [6 7 11 10],
//   4---5---6---7
//   | 0 | 1 | 2 |
//   0---1---2---3
// its rim preserved but for the corners, which have one face. Diagonal sqrt(13), reach 0.45 of it, 1.62.
//   5  [5 4 0 1], [5 1 2 6], [5 9 8 4], [5 6 10 9]: 4 0 1, 2 6, 10 9, 8 4 and no pinch: 4 is preserved.
//   6  face 0 = [4 0 1 2 6 10 9 8 4] has 0 in it, which has a record and is 2.2 away: 6 stays.
// With 0 and 8 preserved too, nothing holds 6 back: slot 0 is turned to [6 10 9 8 4 4 0 1 2], and faces 2 and
// 5 to [6 2 3 7] and [6 7 11 10]: from face 0 it is 10 9 8 4 4 0 1 2, then 3 7, then 11 10.
TEST_F(CoarsenPlates, NextInnerNodeMergesWithThePolygon) {
  const Mesh mesh = make_plate(3, 2);
  const std::string rim = id(1) + "," + id(2) + "," + id(4) + "," + id(7) + "," + id(9) + "," + id(10);
  EXPECT_EQ(coarsened(mesh, "0.45,10,0," + rim),
            (Faces{{4, 0, 1, 2, 6, 10, 9, 8, 4}, {2, 3, 7, 6}, {6, 7, 11, 10}}));
  EXPECT_EQ(coarsened(mesh, "0.45,10,0," + rim + "," + id(0) + "," + id(8)),
            (Faces{{10, 9, 8, 4, 4, 0, 1, 2, 3, 7, 11, 10}}));
}

// As the whole plate, then along [3 0 1 2 5 8 7 6]: the middles of the sides are on straight lines between
// short edges, 1 and, where a middle went before, 2. The last corner, 6, has 0 behind it, which by then is
// the first that was kept.
TEST_F(CoarsenPlates, StraightRimLosesItsMiddleNodes) {
  const Mesh mesh = small_plate_in_a_long_box();
  EXPECT_EQ(coarsened(mesh, "0.05,10,0"), (Faces{{3, 0, 1, 2, 5, 8, 7, 6}}));
  EXPECT_EQ(coarsened(mesh, "0.05,10,1"), (Faces{{0, 2, 8, 6}}));
}

// 5 % of a diagonal of sqrt(8) is 0.14, and all edges are longer.
TEST_F(CoarsenPlates, LongStraightEdgesKeepTheirNodes) {
  EXPECT_EQ(coarsened(make_plate(2, 2), "0.5,10,1"), (Faces{{3, 0, 1, 2, 5, 8, 7, 6}}));
}

// Preserved 1 stays, and so does its neighbour 2, a corner anyway, and 0. The polygon is another since 1 is
// no more visited: 3 is first, with faces 0 and 2 as [3 0 1 4] and [3 4 7 6]: 0 1 4 7 6 3. Then 4, on faces
// 0, 1 and 3 as [4 7 6 3 0 1], [4 1 2 5], [4 5 8 7]: 7 6 3 0 1 2 5 8 7, less the closing 7. Then from 7 on:
// 7 between 8 and 6 goes, 6 is a corner, 3 between 6 and 0 goes, 0, 1 and 2 stay beside 1, 5 between 2 and 8
// goes, and 8 is a corner before the first one kept, 6.
TEST_F(CoarsenPlates, PreservedNodesStayOnStraightEdges) {
  EXPECT_EQ(coarsened(small_plate_in_a_long_box(), "0.05,10,1," + id(1)), (Faces{{6, 0, 1, 2, 8}}));
}

// One face, or two that share an edge of which each end has both.
TEST_F(CoarsenPlates, NodesOfOneFaceStay) {
  EXPECT_EQ(coarsened(make_plate(1, 1), "0.5,45,0"), (Faces{{0, 1, 3, 2}}));
}

// A roof: the ridge is at nodes 1 and 4, and the planes meet at 2 atan(0.2) = 22.6 degrees.
TEST_F(CoarsenPlates, NodesWhereFacesMeetAtMoreThanTheAngleStay) {
  Mesh roof = make_plate(2, 1);
  roof.points[1][2] = roof.points[4][2] = 0.2;
  const Faces apart = {{0, 1, 4, 3}, {1, 2, 5, 4}};
  EXPECT_EQ(coarsened(roof, "0.5,22.5,0"), apart);
  // From 1 to 3 it is 1.43, and half of the diagonal is 1.12.
  EXPECT_EQ(coarsened(roof, "0.5,22.7,0"), apart);
  roof.points.push_back({5, 0, 0});
  EXPECT_EQ(coarsened(roof, "0.5,22.5,0"), apart);
  // From face 0 as [1 4 3 0] the chain ends at 0; from [1 2 5 4] it is 2 5, 4, 3 0, and 1 behind. Node 4 has
  // this one face only.
  EXPECT_EQ(coarsened(roof, "0.5,22.7,0"), (Faces{{2, 5, 4, 3, 0, 1}}));
}

// Face 1 is the other way round, [1 4 5 2], so that its normal is opposite. Around node 1: from [1 4 3 0]
// nothing goes on at 0, from [1 4 5 2] nothing at 2, nor from the first once more; from the second reversed,
// [1 2 5 4], face 0 goes on at 4: 2 5 4, 3 0, and 1 behind.
TEST_F(CoarsenPlates, FacesThatLookTheOppositeWayAreCoplanar) {
  Mesh mesh = make_plate(2, 1);
  mesh.points.push_back({5, 0, 0});
  mesh.faces[1] = {1, 4, 5, 2};
  EXPECT_EQ(coarsened(mesh, "0.5,10,0"), (Faces{{2, 5, 4, 3, 0, 1}}));
}

// Exactly the reach passes; the next double below does not.
TEST_F(CoarsenPlates, CornersExactlyAtTheReachAreNear) {
  Mesh mesh;
  // A box of diagonal 5; the middle node is 2.5 from four corners along the axes, 0.5 of the diagonal.
  mesh.points = {{0, 0, 0}, {2.5, 0, 0}, {0, 2.5, 0}, {-1.5, 0, 0}, {0, -0.5, 0}};
  mesh.faces = {{0, 1, 2}, {0, 2, 3}, {0, 3, 4}, {0, 4, 1}};
  // Node 0: 1 2, 3, 4, 1 is closed; of five entries the limit is 1 and nothing is that short.
  EXPECT_EQ(coarsened(mesh, "0.5,10,0"), (Faces{{1, 2, 3, 4, 1}}));
  // A touch closer to the corner keeps node 0, and so all: no other node is as near to its neighbours.
  EXPECT_EQ(coarsened(mesh, "0.4999999999999999,10,0"), mesh.faces);
}

TEST_F(CoarsenPlates, TrianglesKeepVerticesOnStraightEdges) {
  Mesh mesh;
  mesh.points = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {2, 1, 0}, {100, 0, 0}};
  mesh.faces = {{0, 1, 2}};
  EXPECT_EQ(coarsened(mesh, "0.01,10,1"), mesh.faces);
  mesh.faces = {{0, 1, 2, 3}};
  EXPECT_EQ(coarsened(mesh, "0.01,10,1"), (Faces{{0, 2, 3}}));
}

// Fold 0 1 2 with 2 back on the way to 0: the cosine is 1, not -1. 0 then has 3 before it and itself behind.
TEST_F(CoarsenPlates, SharpFoldsCountAsStraight) {
  Mesh mesh;
  mesh.points = {{0, 0, 0}, {2, 0, 0}, {1, 0, 0}, {0, 2, 0}, {100, 0, 0}};
  mesh.faces = {{0, 1, 2, 3}};
  EXPECT_EQ(coarsened(mesh, "0.01,10,1"), (Faces{{0, 2, 3}}));
}

TEST_F(CoarsenPlates, FaceWhoseCornersCoincideVanishes) {
  Mesh mesh = make_plate(1, 1);
  mesh.faces.insert(mesh.faces.begin(), {2, 2, 2, 2});
  EXPECT_EQ(coarsened(mesh, "0.5,10,0"), mesh.faces);
  EXPECT_EQ(coarsened(mesh, "0.5,10,1"), (Faces{{0, 1, 3, 2}}));
}

TEST_F(CoarsenPlates, LinesAndPointsAndFacesOfNoCornersAreTaken) {
  Mesh mesh = make_plate(2, 2);
  mesh.faces.push_back({});
  mesh.faces.push_back({8});
  mesh.faces.push_back({4, 6});
  // 4, 6 and 8 are on a face of fewer than three corners. 1 comes as in the whole plate; 3 and 5 have 2 and 0
  // out of reach in that polygon. 7 is on [7 6 3 4] and [7 4 5 8]: 6 3 4, 5 8, and 7 behind.
  EXPECT_EQ(coarsened(mesh, "0.5,10,0"), (Faces{{2, 5, 4, 3, 0, 1}, {6, 3, 4, 5, 8, 7}, {8}, {4, 6}}));
}

}  // namespace

}  // namespace fmdtest
