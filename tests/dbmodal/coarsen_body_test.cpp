// What a coarsening does to the body around the faces, and what it does where it cannot do its work.
#include <gmock/gmock.h>

#include <limits>

#include "dbmodal/coarsen_fixture.h"
#include "dbmodal/coarsen_meshes.h"

namespace fmdtest {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class CoarsenBody : public CoarsenTest {
 protected:
  const std::string start = "I:Coarsening to resolution 50% with face-angle 10.00 deg";
  const std::string problem = "E:Problem encountered while trimming geometry\n";

  void expect_refused(FmdBody* body) {
    log.clear();
    trim(body, "0.5,10,0");
    EXPECT_THAT(log.all, ElementsAre(start, problem));
    EXPECT_EQ(body->Coarsened, 0);
  }
};

TEST_F(CoarsenBody, NoBodyIsReportedAndNoOptionsAreSilent) {
  trim(nullptr, "0.5,10,0");
  FMD_TrimGeometry(nullptr, nullptr);
  EXPECT_THAT(log.all, ElementsAre("E:The database has not been initialized.",
                                   "E:The database has not been initialized."));
  FmdBody* body = make_body(make_plate(2, 2));
  FmdBody* without_faces = FMD_Create(0, 0);
  log.clear();
  FMD_TrimGeometry(body, nullptr);
  FMD_TrimGeometry(without_faces, nullptr);
  EXPECT_THAT(log.all, IsEmpty());
  EXPECT_EQ(faces_of(body), make_plate(2, 2).faces);
  EXPECT_EQ(body->Coarsened, 0);
}

TEST_F(CoarsenBody, ABodyWithoutFacesIsAProblem) {
  FmdBody* body = FMD_Create(0, 0);
  FMD_AddNode(body, 1);
  trim(body, "0.5,10,0");
  ASSERT_EQ(log.all.size(), 3U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbcoarse"));
  EXPECT_THAT(log.all, ElementsAre(testing::_, start, problem));
  EXPECT_EQ(body->Coarsened, 0);
  EXPECT_EQ(FMD_IsCoarsened(body), 0);
}

TEST_F(CoarsenBody, ABodyWithoutNodesIsAProblem) {
  FmdBody* body = FMD_Create(0, 0);
  set_faces(body, {{}, {}});
  trim(body, "0.5,10,0");
  EXPECT_THAT(log.all, ElementsAre(testing::_, start, problem));
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbcoarse"));
}

TEST_F(CoarsenBody, MarksTheMeshWhateverBecameOfIt) {
  FmdBody* body = make_body(make_plate(1, 1));
  EXPECT_EQ(FMD_IsCoarsened(body), 0);
  trim(body, "0.5,10,0");
  EXPECT_EQ(faces_of(body), (Faces{{0, 1, 3, 2}}));
  EXPECT_EQ(body->Coarsened, 1);
  EXPECT_EQ(FMD_IsCoarsened(body), 1);
}

TEST_F(CoarsenBody, PolygonsMakeAMeshCoarsened) {
  for (const int corners : {2, 4, 5, 12}) {
    FmdBody* body = make_body(make_plate(4, 4));
    std::vector<int> face;
    for (int corner = 0; corner < corners; ++corner) face.push_back(corner);
    set_faces(body, {{0, 1, 2}, face, {3, 4}});
    EXPECT_EQ(FMD_IsCoarsened(body), corners > 4 ? 1 : 0);
    EXPECT_EQ(body->Coarsened, corners > 4 ? 1 : 0);
  }
}

TEST_F(CoarsenBody, LeavesNodesModesAndMassesAlone) {
  FmdBody* body = make_body(make_plate(2, 2));
  FMD_SetNodalMass(body, id_of(4), 2.5);
  double six[] = {1, 2, 3, 4, 5, 6};
  FMD_SetModeVec(body, 1, id_of(4), 0, six);
  trim(body, "0.5,10,0");
  EXPECT_EQ(FMD_NodeCount(body), 9);
  EXPECT_EQ(FMD_NodalMass(body, 4), 2.5);
  std::vector<double> half(27);
  EXPECT_EQ(FMD_Mode(body, 1, 0, half.data(), 0), 1);
  EXPECT_THAT(std::vector<double>(half.begin() + 12, half.begin() + 15), ElementsAre(1, 2, 3));
}

TEST_F(CoarsenBody, FacesCanBeAddedAndCoarsenedAgain) {
  for (const int columns : {2, 30}) {
    const Mesh mesh = make_plate(columns, 2);
    FmdBody* body = FMD_Create(0, 0);
    for (std::size_t node = 0; node < mesh.points.size(); ++node)
      FMD_SetNodeCoordinates(body, static_cast<int>(node), mesh.points[node][0], mesh.points[node][1], 0);
    for (std::vector<int> face : mesh.faces) FMD_SetFaceList(body, 4, face.data());
    const std::int32_t capacity = body->FaceListCapacity;
    trim(body, "0.5,10,0");
    EXPECT_EQ(body->FaceListCapacity, capacity);
    const Faces before = faces_of(body);
    for (int face = 0; face < 200; ++face) ASSERT_EQ(FMD_SetFace(body, 3, 0, 1, 2), 1);
    EXPECT_EQ(faces_of(body).size(), before.size() + 200);
    trim(body, "0.5,10,0");
    EXPECT_LE(faces_of(body).size(), before.size() + 200);
    FMD_UnLink(body);
  }
}

TEST_F(CoarsenBody, ListOfFacesThatAllVanishIsGone) {
  Mesh mesh = make_plate(1, 1);
  mesh.faces = {{0, 0, 0, 0}, {3, 3, 3, 3, 3}};
  FmdBody* body = make_body(mesh);
  trim(body, "0.5,10,1");
  EXPECT_EQ(body->FaceList, nullptr);
  EXPECT_EQ(body->FaceCount, 0);
  EXPECT_EQ(body->FaceListLength, 0);
  EXPECT_EQ(log.infos.back(), "\nFace reduction from 2 to 0");
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbcoarse"));
  EXPECT_EQ(FMD_SetFace(body, 3, id_of(0), id_of(1), id_of(2)), 1);
}

TEST_F(CoarsenBody, DamagedListsAreLeftAlone) {
  const std::vector<std::pair<std::size_t, std::int32_t>> damages = {
      {0, 5}, {0, -1}, {0, 3}, {0, 0x7fffffff}, {1, -1}, {1, 9}, {7, 0x7fffffff}, {15, 9}, {19, -7}};
  for (const auto& [place, value] : damages) {
    FmdBody* body = make_body(make_plate(2, 2));
    body->FaceList[place] = value;
    expect_refused(body);
    FMD_UnLink(body);
  }
  for (const int count : {-1, 0, 3, 5, 0x7fffffff}) {
    FmdBody* body = make_body(make_plate(2, 2));
    body->FaceCount = count;
    expect_refused(body);
    FMD_UnLink(body);
  }
  for (const int length : {-1, 1, 19}) {
    FmdBody* body = make_body(make_plate(2, 2));
    body->FaceListLength = length;
    expect_refused(body);
    FMD_UnLink(body);
  }
}

TEST_F(CoarsenBody, PositionsThatAreNoNumbersDoNoHarm) {
  for (const double value :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300}) {
    for (int node = 0; node < 9; ++node) {
      Mesh mesh = make_plate(2, 2);
      mesh.points[static_cast<std::size_t>(node)][1] = value;
      FmdBody* body = make_body(mesh);
      trim(body, "0.5,10,1");
      EXPECT_EQ(body->Coarsened, 1);
      FMD_UnLink(body);
    }
  }
}

TEST_F(CoarsenBody, InterfaceNodesThatAreNoneArePassedOver) {
  FmdBody* body = make_body(make_plate(2, 2));
  FMD_SetInterfaceNode(body, id_of(0));
  body->InterfaceNodes[0] = 9;
  trim(body, "0.5,10,0");
  EXPECT_EQ(faces_of(body).size(), 1U);
}

// One face of many corners, a hub of many faces, and a node that is many times on one face.
TEST_F(CoarsenBody, CrowdedNodesAreTakenInTime) {
  constexpr int kMany = 3000;
  Mesh mesh;
  mesh.points.push_back({0, 0, 0});
  std::vector<int> rim;
  for (int node = 1; node <= kMany; ++node) {
    const double angle = 6.283185307179586 * node / kMany;
    mesh.points.push_back({std::cos(angle), std::sin(angle), 0});
    mesh.faces.push_back({0, node, node % kMany + 1});
    rim.push_back(node);
  }
  FmdBody* fan = make_body(mesh);
  trim(fan, "0.4,10,0");
  // From one rim node to the next all wedges are merged into one.
  EXPECT_EQ(faces_of(fan).size(), 1U);
  mesh.faces = {rim, std::vector<int>(kMany, 7), {1, 2, 3}};
  FmdBody* polygons = make_body(mesh);
  trim(polygons, "0.4,10,1");
  EXPECT_EQ(polygons->Coarsened, 1);
}

// A run goes on with what it has: each failure is told, and the faces are a sound mesh in the end, or gone
// where the list itself could not be had.
TEST_F(CoarsenBody, SurvivesTheFailureOfEachAllocation) {
  Mesh mesh = make_plate(6, 5);
  MeshMaker(3).disturb_in_plane(mesh, 6, 5);
  int gone = 0;
  int whole = 0;
  int coarser = 0;
  for (int nth = 1;; ++nth) {
    FmdBody* body = make_body(mesh);
    log.clear();
    fmd::fail_allocation(nth);
    trim(body, "0.3,10,1");
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    for (const std::vector<int>& face : faces_of(body))
      for (const int corner : face) ASSERT_TRUE(corner >= 0 && corner < FMD_NodeCount(body));
    if (!failed) {
      EXPECT_THAT(log.errors, IsEmpty());
      break;
    }
    ASSERT_FALSE(log.errors.empty());
    EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbcoarse")) << log.errors[0];
    const std::size_t faces = faces_of(body).size();
    ++(faces == 0 ? gone : faces == mesh.faces.size() ? whole : coarser);
    EXPECT_EQ(FMD_SetFace(body, 3, id_of(0), id_of(1), id_of(2)), 1);
    FMD_UnLink(body);
  }
  EXPECT_EQ(gone, 1);
  EXPECT_EQ(whole, 4 + 8);  // the two work arrays, two allocations each; the links
  EXPECT_GT(coarser, 10);
}

}  // namespace

}  // namespace fmdtest
