#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using fmdtest::is_allocation_failure;
using testing::ElementsAre;
using testing::IsEmpty;

class ClosestNodes : public fmdtest::SessionTest {
 protected:
  // Node ids count down from 1000, so that no index is an id.
  static FmdBody* make_body(const std::vector<std::vector<double>>& places) {
    FmdBody* body = FMD_Create(0, 0);
    int id = 1000;
    for (const std::vector<double>& place : places) {
      FMD_SetNodeCoordinates(body, id, place[0], place[1], place[2]);
      --id;
    }
    return body;
  }

  // Coordinates on a coarse lattice, so that equal distances are common.
  static FmdBody* make_lattice_body(int nodes, std::mt19937& random) {
    std::vector<std::vector<double>> places;
    for (int node = 0; node < nodes; ++node)
      places.push_back({coordinate(random), coordinate(random), coordinate(random)});
    FmdBody* body = make_body(places);
    for (int node = 0; node < nodes; node += 3) FMD_SetInterfaceNode(body, 1000 - (node * 7) % nodes);
    return body;
  }

  static double coordinate(std::mt19937& random) { return static_cast<double>(random() % 7) * 0.5 - 1.5; }

  static double distance(FmdBody* body, int node, const double* point) {
    double place[3];
    FMD_NodeCoordinates(body, node, place);
    double sum = 0.0;
    for (int k = 0; k < 3; ++k) sum += (place[k] - point[k]) * (place[k] - point[k]);
    return sum;
  }

  static std::vector<int> candidates(FmdBody* body, bool interface_only) {
    std::vector<int> nodes(static_cast<std::size_t>(body->NodeCount));
    std::iota(nodes.begin(), nodes.end(), 0);
    if (interface_only) nodes.assign(body->InterfaceNodes, body->InterfaceNodes + body->InterfaceNodeCount);
    return nodes;
  }

  static std::vector<int> take(int* array, int count) {
    std::vector<int> values(array, array + count);
    FMD_FreeMemory(array);
    return values;
  }

  static std::vector<int> nearest(FmdBody* body, std::vector<double> point, int wanted,
                                  int interface_only = 0) {
    int found = -1;
    int* array = FMD_ClosestNodes(body, point.data(), wanted, interface_only, &found);
    EXPECT_EQ(array == nullptr, found == 0);
    return take(array, found);
  }

  static std::vector<int> within(FmdBody* body, std::vector<double> point, double radius,
                                 int interface_only = 0) {
    int found = -1;
    int* array = FMD_ClosestNodesInNeighborhood(body, point.data(), radius, interface_only, &found);
    EXPECT_EQ(array == nullptr, found == 0);
    return take(array, found);
  }

  static int closest(FmdBody* body, std::vector<double> point, int interface_only = 0) {
    return FMD_ClosestNode(body, point.data(), interface_only);
  }
};

TEST_F(ClosestNodes, AgreeWithASortOfAllDistances) {
  std::mt19937 random(3);
  for (int round = 0; round < 200; ++round) {
    FmdBody* body = make_lattice_body(1 + static_cast<int>(random() % 60), random);
    const bool only = random() % 2 == 0;
    double point[3] = {coordinate(random), coordinate(random), coordinate(random)};
    std::vector<int> sorted = candidates(body, only);
    const auto nearer = [&](int a, int b) { return distance(body, a, point) < distance(body, b, point); };
    std::stable_sort(sorted.begin(), sorted.end(), nearer);
    EXPECT_EQ(FMD_ClosestNode(body, point, only), sorted[0]);

    const std::size_t wanted = random() % 12;
    const std::vector<int> few(sorted.begin(),
                               sorted.begin() + static_cast<std::ptrdiff_t>(std::min(wanted, sorted.size())));
    EXPECT_EQ(nearest(body, {point[0], point[1], point[2]}, static_cast<int>(wanted), only), few);

    std::vector<int> reversed = candidates(body, only);
    std::reverse(reversed.begin(), reversed.end());
    std::stable_sort(reversed.begin(), reversed.end(), nearer);
    const double radius = 0.5 * static_cast<double>(random() % 6);
    reversed.erase(std::remove_if(reversed.begin(), reversed.end(),
                                  [&](int node) { return distance(body, node, point) > radius * radius; }),
                   reversed.end());
    EXPECT_EQ(within(body, {point[0], point[1], point[2]}, radius, only), reversed);
    FMD_UnLink(body);
  }
}

TEST_F(ClosestNodes, NodeAtThePointWinsWhateverFollows) {
  FmdBody* body = make_body({{5, 0, 0}, {1, 1, 1}, {1, 1, 1}, {0, 0, 0}});
  EXPECT_EQ(closest(body, {1, 1, 1}), 1);
  EXPECT_EQ(closest(body, {0.1, 0, 0}), 3);
}

TEST_F(ClosestNodes, TiesGoToTheEarlierButInANeighborhoodToTheLater) {
  FmdBody* body = make_body({{3, 0, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 1, 0}});
  EXPECT_EQ(closest(body, {0, 0, 0}), 1);
  EXPECT_THAT(nearest(body, {0, 0, 0}, 10), ElementsAre(1, 2, 3, 0));
  EXPECT_THAT(nearest(body, {0, 0, 0}, 2), ElementsAre(1, 2));
  EXPECT_THAT(within(body, {0, 0, 0}, 5), ElementsAre(3, 2, 1, 0));
}

TEST_F(ClosestNodes, NeighborhoodHasTheNodesOnTheSphere) {
  FmdBody* body = make_body({{2, 0, 0}, {2.0000001, 0, 0}, {0, 0, 0}});
  EXPECT_THAT(within(body, {0, 0, 0}, 2), ElementsAre(2, 0));
  EXPECT_THAT(within(body, {0, 0, 0}, 0), ElementsAre(2));
  EXPECT_THAT(within(body, {1, 1, 1}, 0), IsEmpty());
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(ClosestNodes, NeighborhoodHoldsMoreThanOneStepOfNodes) {
  std::vector<std::vector<double>> places;
  for (int node = 0; node < 35; ++node) places.push_back({35.0 - node, 0, 0});
  FmdBody* body = make_body(places);
  std::vector<int> expected(35);
  std::iota(expected.rbegin(), expected.rend(), 0);
  EXPECT_EQ(within(body, {0, 0, 0}, 100), expected);
}

TEST_F(ClosestNodes, InterfaceNodesAreSearchedInTheirOwnOrder) {
  FmdBody* body = make_body({{0, 0, 0}, {1, 0, 0}, {-1, 0, 0}, {4, 0, 0}});
  for (const int id : {997, 998, 999}) FMD_SetInterfaceNode(body, id);
  EXPECT_EQ(closest(body, {0, 0, 0}, 1), 2) << "the first of two at the same distance";
  EXPECT_EQ(closest(body, {0, 0, 0}, 0), 0);
  EXPECT_THAT(nearest(body, {0, 0, 0}, 3, 1), ElementsAre(2, 1, 3));
  EXPECT_THAT(within(body, {0, 0, 0}, 2, 1), ElementsAre(1, 2));
}

TEST_F(ClosestNodes, OnlyTheSingleQuerySearchesAllNodesForWantOfInterfaceNodes) {
  FmdBody* body = make_body({{7, 0, 0}, {1, 0, 0}});
  EXPECT_EQ(closest(body, {0, 0, 0}, 1), 1);
  EXPECT_THAT(nearest(body, {0, 0, 0}, 2, 1), IsEmpty());
  EXPECT_THAT(within(body, {0, 0, 0}, 2, 1), IsEmpty());
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(ClosestNodes, AskedForNoneThereAreNone) {
  FmdBody* body = make_body({{7, 0, 0}});
  EXPECT_THAT(nearest(body, {0, 0, 0}, 0), IsEmpty());
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(ClosestNodes, HugeNumberWantedGivesAllAndANegativeOneTheAllocationMessage) {
  FmdBody* body = make_body({{7, 0, 0}, {6, 0, 0}});
  EXPECT_THAT(nearest(body, {0, 0, 0}, 2147483647), ElementsAre(1, 0));
  EXPECT_THAT(log.all, IsEmpty());
  for (const int wanted : {-1, -2147483647 - 1}) {
    log.clear();
    EXPECT_THAT(nearest(body, {0, 0, 0}, wanted), IsEmpty());
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
  }
}

TEST_F(ClosestNodes, BodyWithoutNodesHasNone) {
  FmdBody* body = FMD_Create(0, 0);
  EXPECT_EQ(closest(body, {0, 0, 0}), -1);
  EXPECT_THAT(nearest(body, {0, 0, 0}, 3), IsEmpty());
  EXPECT_THAT(within(body, {0, 0, 0}, 3), IsEmpty());
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(ClosestNodes, NullBodyIsReportedButByTheSingleQuery) {
  EXPECT_EQ(closest(nullptr, {0, 0, 0}), -1);
  EXPECT_THAT(log.all, IsEmpty());
  EXPECT_THAT(nearest(nullptr, {0, 0, 0}, 3), IsEmpty());
  EXPECT_THAT(log.all, ElementsAre("E:The database has not been initialized."));
  log.clear();
  EXPECT_THAT(within(nullptr, {0, 0, 0}, 3), IsEmpty());
  EXPECT_THAT(log.all, ElementsAre("E:The database has not been initialized."));
}

TEST_F(ClosestNodes, InterfaceNodesThatAreNoNodesAreNotSearched) {
  FmdBody* body = make_body({{7, 0, 0}, {6, 0, 0}});
  FMD_SetInterfaceNode(body, 1000);
  for (const int bad : {-1, 2, 1000000000}) {
    body->InterfaceNodes[0] = bad;
    EXPECT_EQ(closest(body, {0, 0, 0}, 1), -1);
    EXPECT_THAT(nearest(body, {0, 0, 0}, 3, 1), IsEmpty());
    EXPECT_THAT(within(body, {0, 0, 0}, 30, 1), IsEmpty());
  }
}

TEST_F(ClosestNodes, SurviveTheFailureOfEachAllocation) {
  FmdBody* body = make_body({{3, 0, 0}, {1, 0, 0}, {2, 0, 0}});
  for (int nth = 1; nth <= 2; ++nth) {
    log.clear();
    fmd::fail_allocation(nth);
    EXPECT_THAT(nearest(body, {0, 0, 0}, 3), IsEmpty());
    EXPECT_TRUE(fmd::allocation_has_failed());
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
  }
  fmd::fail_allocation(3);
  EXPECT_THAT(nearest(body, {0, 0, 0}, 3), ElementsAre(1, 2, 0))
      << "an array that cannot shrink stays as it is";
}

TEST_F(ClosestNodes, NeighborhoodSkipsANodeThatItsListHasNoRoomFor) {
  std::vector<std::vector<double>> places;
  for (int node = 0; node < 12; ++node) places.push_back({node + 1.0, 0, 0});
  FmdBody* body = make_body(places);
  fmd::fail_allocation(1);
  EXPECT_THAT(within(body, {0, 0, 0}, 4), ElementsAre(1, 2, 3));
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
  fmd::fail_allocation(2);
  EXPECT_THAT(within(body, {0, 0, 0}, 100), ElementsAre(0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 11));
}

}  // namespace
