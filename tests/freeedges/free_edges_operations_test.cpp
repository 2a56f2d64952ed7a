// The free edges of a body.
#include <gmock/gmock.h>

#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using fmdtest::is_allocation_failure;
using testing::ElementsAre;
using testing::IsEmpty;

class BodyFreeEdges : public fmdtest::SessionTest {
 protected:
  // Nodes 30, 29, ... 20, so that no index is an id and the order of indices is that of falling ids.
  static FmdBody* make_body() {
    FmdBody* body = FMD_Create(11, 1);
    for (int id = 30; id >= 20; --id) FMD_AddNode(body, id);
    return body;
  }

  static std::vector<int> chain(FmdBody* body, int place) {
    std::vector<int> ids(static_cast<std::size_t>(FMD_GetFreeEdgeSize(body, place)));
    EXPECT_EQ(FMD_GetFreeEdge(body, place, ids.data()), static_cast<int>(ids.size()));
    return ids;
  }
};

TEST_F(BodyFreeEdges, AreChainsOfNodeIdsFromTheSmallestIndex) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 4, 22, 29, 25, 27);
  EXPECT_EQ(FMD_GetFreeEdgeCount(body), 1);
  EXPECT_THAT(chain(body, 0), ElementsAre(29, 25, 27, 22, 29));
  EXPECT_EQ(FMD_NodeCount(body), 4) << "nodes behind the surface go first";
}

TEST_F(BodyFreeEdges, AreCountedAfterTheInteriorFacesHaveGone) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 3, 30, 29, 28);
  FMD_SetFace(body, 3, 28, 29, 27);
  FMD_SetFace(body, 3, 27, 29, 28);
  EXPECT_EQ(FMD_GetFreeEdgeSize(body, 0), 4) << "the size generates them, too";
  EXPECT_THAT(chain(body, 0), ElementsAre(30, 29, 28, 30));
  EXPECT_EQ(FMD_GetFreeEdgeCount(body), 1);
}

TEST_F(BodyFreeEdges, AreGeneratedOnce) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 2, 30, 29);
  EXPECT_EQ(FMD_GetFreeEdgeCount(body), 0);
  FMD_SetFace(body, 3, 28, 27, 26);
  log.clear();
  EXPECT_EQ(FMD_GetFreeEdgeCount(body), 0);
  EXPECT_EQ(FMD_GetFreeEdgeSize(body, 0), 0);
  EXPECT_THAT(log.all, IsEmpty());
  EXPECT_EQ(FMD_GenerateFreeEdges(body), 1);
  EXPECT_EQ(FMD_GetFreeEdgeCount(body), 1);
  EXPECT_EQ(FMD_GenerateFreeEdges(body), 1);
  EXPECT_THAT(chain(body, 0), ElementsAre(28, 27, 26, 28));
}

TEST_F(BodyFreeEdges, DoNotFollowFromTheChainAlone) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 3, 28, 27, 26);
  int ids[4] = {};
  EXPECT_EQ(FMD_GetFreeEdge(body, 0, ids), 0);
  EXPECT_EQ(body->FreeEdgeCount, -1);
}

TEST_F(BodyFreeEdges, OfAPlaceThatIsNotThereAreNone) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 3, 28, 27, 26);
  EXPECT_EQ(FMD_GetFreeEdgeCount(body), 1);
  int ids[4] = {-7, -7, -7, -7};
  for (const int place : {-1, 1, 2147483647}) {
    EXPECT_EQ(FMD_GetFreeEdgeSize(body, place), 0);
    EXPECT_EQ(FMD_GetFreeEdge(body, place, ids), 0);
  }
  EXPECT_EQ(ids[0], -7);
}

TEST_F(BodyFreeEdges, OfABodyWithoutFacesAreNone) {
  FmdBody* body = make_body();
  EXPECT_EQ(FMD_GetFreeEdgeCount(body), 0);
  EXPECT_EQ(body->FreeEdgeCount, 0);
}

TEST_F(BodyFreeEdges, OfFacesThatNameNoNodeAreNone) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 3, 28, 27, 26);
  for (const int bad : {-1, 11, 2000000000}) {
    body->FaceList[1] = bad;
    EXPECT_EQ(FMD_GenerateFreeEdges(body), 1);
    EXPECT_EQ(FMD_GetFreeEdgeCount(body), 0);
  }
}

TEST_F(BodyFreeEdges, NullBodyIsReportedOnce) {
  int ids[1];
  EXPECT_EQ(FMD_GenerateFreeEdges(nullptr), 0);
  EXPECT_EQ(FMD_GetFreeEdgeCount(nullptr), 0);
  EXPECT_EQ(FMD_GetFreeEdgeSize(nullptr, 0), 0);
  EXPECT_EQ(FMD_GetFreeEdge(nullptr, 0, ids), 0);
  EXPECT_THAT(log.all,
              testing::AllOf(testing::SizeIs(4), testing::Each("E:The database has not been initialized.")));
}

TEST_F(BodyFreeEdges, SurviveTheFailureOfEachAllocation) {
  FmdBody* body = make_body();
  FMD_SetFace(body, 3, 30, 29, 28);
  FMD_SetFace(body, 4, 27, 26, 25, 24);
  FMD_RemoveInternalGeometry(body);
  int nth = 1;
  for (;; ++nth) {
    log.clear();
    fmd::fail_allocation(nth);
    const int result = FMD_GenerateFreeEdges(body);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) break;
    EXPECT_EQ(result, 0);
    EXPECT_EQ(body->FreeEdgeCount, -1);
    EXPECT_EQ(body->FreeEdges, nullptr);
    EXPECT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(is_allocation_failure(log.errors.at(0), "dbtools"));
    log.clear();
  }
  EXPECT_GT(nth, 40);
  EXPECT_EQ(FMD_GetFreeEdgeCount(body), 2);
  EXPECT_THAT(chain(body, 1), ElementsAre(27, 26, 25, 24, 27));
}

}  // namespace
