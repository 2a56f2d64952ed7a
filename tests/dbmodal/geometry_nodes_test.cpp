#include "dbmodal/dbtools/geometry_nodes.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <set>
#include <vector>

#include "dbmodal/body_picture.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using fmdtest::is_allocation_failure;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(DistinctNodes, AreTheSetOfTheValuesWithoutTheMarks) {
  std::mt19937 random(5);
  for (int round = 0; round < 500; ++round) {
    std::vector<std::int32_t> values(random() % 40);
    for (std::int32_t& value : values) value = static_cast<std::int32_t>(random() % 20) - 1;
    std::set<std::int32_t> expected(values.begin(), values.end());
    expected.erase(-1);
    const std::int32_t count =
        fmd::keep_distinct_nodes(values.data(), static_cast<std::int64_t>(values.size()));
    values.resize(static_cast<std::size_t>(count));
    EXPECT_EQ(values, std::vector<std::int32_t>(expected.begin(), expected.end()));
  }
}

class GeometryNodes : public fmdtest::SessionTest {
 protected:
  static FmdBody* make_body() {
    FmdBody* body = FMD_Create(0, 0);
    for (int id = 100; id > 80; --id) FMD_AddNode(body, id);
    return body;
  }

  static std::vector<int> nodes_of(FmdBody* body) {
    int count = -1;
    int* array = FMD_GeometryNodes(body, &count);
    EXPECT_EQ(array == nullptr, count == 0);
    std::vector<int> nodes(array, array + count);
    FMD_FreeMemory(array);
    return nodes;
  }

  void expect_allocation_failure() {
    ASSERT_EQ(log.all.size(), 1U);
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
    log.clear();
  }
};

TEST_F(GeometryNodes, AreTheUnionOfFacesInterfaceNodesAndLoads) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 3, 95, 91, 97);
  FMD_SetFace(body, 4, 91, 95, 90, 99);
  FMD_SetInterfaceNode(body, 82);
  FMD_SetInterfaceNode(body, 97);
  FMD_SetModalLoadNodal(body, 0, 100, 1, 1.0);
  FMD_SetModalLoadNodal(body, 2, 99, 1, 1.0);
  EXPECT_THAT(nodes_of(body), ElementsAre(0, 1, 3, 5, 9, 10, 18));
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(GeometryNodes, AreKeptFromTheFirstTimeOn) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 2, 100, 99);
  const std::vector<int> first = nodes_of(body);
  FMD_SetFace(body, 2, 98, 97);
  EXPECT_EQ(nodes_of(body), first);
}

TEST_F(GeometryNodes, EveryCallerGetsACopyOfItsOwn) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 2, 100, 99);
  int count = 0;
  int* array = FMD_GeometryNodes(body, &count);
  array[0] = 77;
  EXPECT_THAT(nodes_of(body), ElementsAre(0, 1));
  FMD_FreeMemory(array);
}

TEST_F(GeometryNodes, NeedAFaceListEvenIfItIsEmpty) {
  FmdBody* body = make_body();
  FMD_SetInterfaceNode(body, 90);
  EXPECT_THAT(nodes_of(body), IsEmpty());
  EXPECT_THAT(log.all, ElementsAre("E:Missing element face information"));
  FMD_SetFace(body, 2, 80, 80);  // no face, but a list
  EXPECT_THAT(nodes_of(body), ElementsAre(10));
}

TEST_F(GeometryNodes, BodyThatRefersToNoNodeGetsTheAllocationMessage) {
  FmdBody* body = make_body();
  EXPECT_THAT(nodes_of(body), IsEmpty());
  expect_allocation_failure();
  body->FaceList = fmd::allocate<std::int32_t>(1, "test").release();
  body->FaceCount = body->FaceListLength = 1;  // a face without corners
  for (int time = 0; time < 2; ++time) {
    EXPECT_THAT(nodes_of(body), IsEmpty());
    expect_allocation_failure();
  }
}

TEST_F(GeometryNodes, NullBodyIsReported) {
  EXPECT_THAT(nodes_of(nullptr), IsEmpty());
  EXPECT_THAT(log.all, ElementsAre("E:The database has not been initialized."));
}

TEST_F(GeometryNodes, ReferencesToNoNodeMakeNoList) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 3, 95, 91, 97);
  FMD_SetInterfaceNode(body, 82);
  FMD_SetModalLoadNodal(body, 0, 100, 1, 1.0);
  std::int32_t* const references[] = {&body->FaceList[0], &body->FaceList[2], body->InterfaceNodes,
                                      body->NodalLoadCases[0].Nodes};
  for (std::int32_t* reference : references) {
    for (const std::int32_t bad : {-5, -1, 20, 1000000000}) {
      const std::int32_t good = *reference;
      *reference = bad;
      EXPECT_THAT(nodes_of(body), IsEmpty());
      EXPECT_THAT(log.all, ElementsAre("E:Missing element face information"));
      log.clear();
      *reference = good;
    }
  }
  EXPECT_EQ(nodes_of(body).size(), 5U);
}

TEST_F(GeometryNodes, SurviveTheFailureOfEachAllocation) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 2, 100, 99);
  fmd::fail_allocation(1);
  EXPECT_THAT(nodes_of(body), IsEmpty());
  expect_allocation_failure();
  fmd::fail_allocation(2);
  EXPECT_THAT(nodes_of(body), IsEmpty());
  expect_allocation_failure();
  EXPECT_THAT(nodes_of(body), ElementsAre(0, 1));
}

}  // namespace
