#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

class NodalData : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(1, 1);
    ASSERT_NE(body, nullptr);
  }

  int face(std::vector<int> ids) const {
    return FMD_SetFaceList(body, static_cast<int>(ids.size()), ids.data());
  }

  std::vector<int> face_list() const {
    int faces = 0;
    int length = 0;
    FMD_FaceListSize(body, &faces, &length);
    std::vector<int> list(static_cast<std::size_t>(length));
    EXPECT_EQ(FMD_ElementFaces(body, list.data()), 1);
    return list;
  }

  FmdBody* body = nullptr;
};

using Tensor = std::vector<double>;

TEST_F(NodalData, CoordinatesComeBackByIndex) {
  EXPECT_EQ(FMD_SetNodeCoordinates(body, 8, 1.0, 2.0, 3.0), 1);
  EXPECT_EQ(FMD_SetNodeCoordinates(body, 4, 4.0, 5.0, 6.0), 1);
  EXPECT_EQ(FMD_SetNodeCoordinates(body, 8, 7.0, 2.0, 3.0), 1);
  double xyz[6] = {};
  EXPECT_EQ(FMD_NodeCoordinates(body, 0, xyz), 1);
  EXPECT_EQ(xyz[0], 7.0);
  int count = 0;
  EXPECT_EQ(FMD_NodeCoordinateList(body, xyz, &count), 1);
  EXPECT_EQ(count, 2);
  EXPECT_EQ((std::vector<double>(xyz, xyz + 6)), (std::vector<double>{7, 2, 3, 4, 5, 6}));
  EXPECT_EQ(FMD_Exists(body, 3), 1);
}

TEST_F(NodalData, BadIndicesZeroTheOutput) {
  double xyz[3] = {9, 9, 9};
  int count = 5;
  EXPECT_EQ(FMD_NodeCoordinates(body, 0, xyz), 0);
  EXPECT_EQ(xyz[0], 9.0);
  EXPECT_EQ(FMD_NodeCoordinateList(body, xyz, &count), 0);
  EXPECT_EQ(count, 5);
  FMD_AddNode(body, 1);
  for (const int index : {-1, 1}) {
    xyz[1] = 9.0;
    EXPECT_EQ(FMD_NodeCoordinates(body, index, xyz), 0);
    EXPECT_EQ(xyz[1], 0.0);
  }
}

TEST_F(NodalData, MassesAreSetAndAdded) {
  EXPECT_EQ(FMD_SetNodalMass(body, 3, 1.5), 1);
  EXPECT_EQ(FMD_AddNodalMass(body, 3, 0.25), 1);
  EXPECT_EQ(FMD_AddNodalMass(body, 4, 2.0), 1);
  EXPECT_EQ(FMD_AddNodalMass(body, 4, 3.0), 1);
  EXPECT_EQ(FMD_NodalMass(body, 0), 1.75);
  EXPECT_EQ(FMD_NodalMass(body, 1), 5.0);
  EXPECT_EQ(FMD_NodalMass(body, 2), 0.0);
  EXPECT_EQ(FMD_Exists(body, 8), 1);
  double mass = 0.0;
  double xyz[3];
  EXPECT_EQ(FMD_NodalMassAndGeometry(body, 0, &mass, xyz), 1);
  EXPECT_EQ(mass, 1.75);
  EXPECT_EQ(FMD_NodalMassAndGeometry(body, 7, &mass, xyz), 0);
  EXPECT_EQ(mass, 0.0);
}

TEST_F(NodalData, InertiaIsSymmetric) {
  EXPECT_EQ(FMD_SetNodalInertia(body, 1, 11, 22, 33, 12, 13, 23), 1);
  double full[9];
  EXPECT_EQ(FMD_NodalInertia(body, 0, full), 1);
  EXPECT_EQ(Tensor(full, full + 9), (Tensor{11, 12, 13, 12, 22, 23, 13, 23, 33}));
  EXPECT_EQ(FMD_Exists(body, 9), 1);
}

TEST_F(NodalData, SingleEntriesFillTheSameMatrix) {
  for (int row = 1; row <= 3; ++row) {
    for (int column = row; column <= 3; ++column) {
      EXPECT_EQ(FMD_SetNodalInertiaEntry(body, 1, column, row, 10.0 * row + column), 1);
    }
  }
  double full[9];
  FMD_NodalInertia(body, 0, full);
  EXPECT_EQ(Tensor(full, full + 9), (Tensor{11, 12, 13, 12, 22, 23, 13, 23, 33}));
  EXPECT_EQ(FMD_SetNodalInertiaEntry(body, 1, 1, 2, 5.0), 1);
  FMD_NodalInertia(body, 0, full);
  EXPECT_EQ(full[3], 5.0);
  EXPECT_EQ(FMD_SetNodalInertiaEntry(body, 1, 4, 1, 1.0), 0);
  EXPECT_EQ(FMD_SetNodalInertiaEntry(body, 1, 1, -1, 1.0), 0);
}

TEST_F(NodalData, NodesWithoutInertiaHaveNone) {
  FMD_AddNode(body, 1);
  double full[9];
  EXPECT_EQ(FMD_NodalInertia(body, 0, full), 0);
  EXPECT_EQ(FMD_NodalInertia(body, 5, full), 0);
}

TEST_F(NodalData, FailedAllocationsAreReported) {
  for (long nth = 1;; ++nth) {
    fmd::fail_allocation(nth);
    const int result = FMD_SetNodalInertia(body, 1, 1, 1, 1, 0, 0, 0);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) {
      EXPECT_EQ(result, 1);
      EXPECT_EQ(nth, 9);  // seven tables of nodes, then the inertia
      break;
    }
    EXPECT_EQ(result, 0);
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.back(), "dbset"));
  }
}

TEST_F(NodalData, FacesDropRepeatedCorners) {
  for (const int id : {1, 2, 3, 4}) FMD_AddNode(body, id);
  EXPECT_EQ(face({1, 2, 2, 3, 1}), 1);
  EXPECT_EQ(face({4, 3, 2, 1}), 1);
  EXPECT_EQ(face({2, 4}), 1);
  int faces = 0;
  int length = 0;
  EXPECT_EQ(FMD_FaceListSize(body, &faces, &length), 12);
  EXPECT_EQ(faces, 3);
  EXPECT_EQ(length, 12);
  EXPECT_EQ(face_list(), (std::vector<int>{3, 0, 1, 2, 4, 3, 2, 1, 0, 2, 1, 3}));
  EXPECT_EQ(FMD_Exists(body, 13), 1);
}

TEST_F(NodalData, FacesThatAreNoneLeaveTheirNodes) {
  EXPECT_EQ(face({5, 5}), 0);
  EXPECT_EQ(FMD_NodeIndex(body, 5), 0);
  EXPECT_EQ(face({6}), 0);
  EXPECT_EQ(face({}), 0);
  EXPECT_EQ(FMD_SetFaceList(body, -3, nullptr), 0);
  EXPECT_EQ(body->FaceCount, 0);
  EXPECT_EQ(body->FaceListLength, 0);
  EXPECT_EQ(FMD_Exists(body, 13), 0);
  int unused = 0;
  EXPECT_EQ(FMD_ElementFaces(body, &unused), 1);
}

TEST_F(NodalData, VariableFacesTakeUpTo256Corners) {
  EXPECT_EQ(FMD_SetFace(body, 3, 11, 12, 13), 1);
  EXPECT_EQ(FMD_SetFace(body, 257, 1, 2), 0);
  EXPECT_EQ(FMD_SetFace(body, 0), 0);
  EXPECT_EQ(face_list(), (std::vector<int>{3, 0, 1, 2}));
}

TEST_F(NodalData, TheFaceListGrowsByHundredsAsNeeded) {
  for (int id = 1; id <= 500; ++id) FMD_AddNode(body, id);
  EXPECT_EQ(face({1, 2, 3}), 1);
  EXPECT_EQ(body->FaceListCapacity, 100);
  std::vector<int> polygon;
  for (int id = 1; id <= 450; ++id) polygon.push_back(id);
  EXPECT_EQ(face(polygon), 1);
  EXPECT_EQ(body->FaceListCapacity, 500);
  EXPECT_EQ(static_cast<int>(face_list().size()), 4 + 451);
}

TEST_F(NodalData, FailedAllocationsOfFacesKeepTheOnesBefore) {
  face({1, 2, 3});
  std::vector<int> polygon;
  for (int id = 1; id <= 200; ++id) polygon.push_back(id);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_SetFaceList(body, 200, polygon.data()), 0);
  fmd::fail_allocation(0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(0), "dbset"));
  EXPECT_EQ(face_list(), (std::vector<int>{3, 0, 1, 2}));
}

TEST_F(NodalData, NoListIsNoFaces) {
  int faces = 1;
  int length = 1;
  int list = 0;
  EXPECT_EQ(FMD_ElementFaces(body, &list), 0);
  EXPECT_EQ(FMD_FaceListSize(nullptr, &faces, &length), 0);
  EXPECT_EQ(faces, 0);
  EXPECT_EQ(length, 0);
}

TEST_F(NodalData, SizeIsTheDiagonalOfTheBoxAroundTheFaces) {
  EXPECT_EQ(FMD_BodySize(body), 0.0);
  FMD_SetNodeCoordinates(body, 1, 1.0, 1.0, 1.0);
  FMD_SetNodeCoordinates(body, 2, 3.0, 1.0, 1.0);
  FMD_SetNodeCoordinates(body, 3, 3.0, 4.0, 7.0);
  FMD_SetNodeCoordinates(body, 9, 100.0, 100.0, 100.0);
  EXPECT_EQ(FMD_BodySize(body), 0.0);
  face({1, 2, 3});
  EXPECT_DOUBLE_EQ(FMD_BodySize(body), 7.0);
  face({1, 2, 9});
  EXPECT_DOUBLE_EQ(FMD_BodySize(body), 7.0);
}

TEST_F(NodalData, CornersThatNameNoNodeCountAsTheOrigin) {
  FMD_SetNodeCoordinates(body, 1, 3.0, 4.0, 12.0);
  FMD_SetNodeCoordinates(body, 2, 3.0, 4.0, 11.0);
  face({1, 2});
  body->FaceList[2] = 77;
  EXPECT_DOUBLE_EQ(FMD_BodySize(body), 13.0);
}

TEST_F(NodalData, TheFirstNodeIsInTheBoxWithoutAFace) {
  FMD_SetNodeCoordinates(body, 1, 0.0, 0.0, 0.0);
  FMD_SetNodeCoordinates(body, 2, 3.0, 4.0, 0.0);
  FMD_SetNodeCoordinates(body, 3, 3.0, 0.0, 0.0);
  face({2, 3});
  EXPECT_DOUBLE_EQ(FMD_BodySize(body), 5.0);
}

TEST_F(NodalData, EachFailedAllocationOfAFaceWithNewNodesIsReported) {
  for (long nth = 1;; ++nth) {
    fmd::fail_allocation(nth);
    const int result = face({1, 2, 3});
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) {
      EXPECT_EQ(result, 1);
      break;
    }
    EXPECT_EQ(result, 0);
    EXPECT_EQ(log.errors.size(), static_cast<std::size_t>(nth));
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.back(), "dbset"));
    EXPECT_EQ(body->FaceCount, 0);
    EXPECT_EQ(body->FaceListLength, 0);
  }
  EXPECT_GE(log.errors.size(), 2U);
  EXPECT_EQ(face_list(), (std::vector<int>{3, 0, 1, 2}));
}

TEST_F(NodalData, NullBodiesAreReported) {
  double values[9] = {};
  int count = 0;
  EXPECT_EQ(FMD_SetNodeCoordinates(nullptr, 1, 0, 0, 0), 0);
  EXPECT_EQ(FMD_NodeCoordinates(nullptr, 0, values), 0);
  EXPECT_EQ(FMD_NodeCoordinateList(nullptr, values, &count), 0);
  EXPECT_EQ(FMD_SetNodalMass(nullptr, 1, 1.0), 0);
  EXPECT_EQ(FMD_AddNodalMass(nullptr, 1, 1.0), 0);
  EXPECT_EQ(FMD_NodalMass(nullptr, 0), 0.0);
  EXPECT_EQ(FMD_SetNodalInertia(nullptr, 1, 1, 1, 1, 0, 0, 0), 0);
  EXPECT_EQ(FMD_SetNodalInertiaEntry(nullptr, 1, 1, 1, 1.0), 0);
  EXPECT_EQ(FMD_NodalInertia(nullptr, 0, values), 0);
  EXPECT_EQ(FMD_NodalMassAndGeometry(nullptr, 0, values, values), 0);
  EXPECT_EQ(FMD_BodySize(nullptr), 0.0);
  EXPECT_EQ(FMD_SetFaceList(nullptr, 1, &count), 0);
  EXPECT_EQ(FMD_SetFace(nullptr, 1, 2), 0);
  EXPECT_EQ(FMD_ElementFaces(nullptr, &count), 0);
  EXPECT_EQ(log.errors, (std::vector<std::string>(14, "The database has not been initialized.")));
}

}  // namespace
