#include "fmdtoolkit/free_edges.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>
#include <set>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

using Chain = std::list<int>;
using Chains = std::vector<Chain>;
using Edge = std::pair<int, int>;

std::vector<int> pack(const std::vector<std::vector<int>>& faces) {
  std::vector<int> list;
  for (const std::vector<int>& face : faces) {
    list.push_back(static_cast<int>(face.size()));
    list.insert(list.end(), face.begin(), face.end());
  }
  return list;
}

Chains chains_of(const std::vector<std::vector<int>>& faces) {
  std::vector<int> list = pack(faces);
  cFMDFreeEdges run;
  run.FindFreeEdges(static_cast<int>(faces.size()), list.data());
  return run.GetFreeEdges();
}

Edge edge_of(int a, int b) {
  return {std::min(a, b), std::max(a, b)};
}

// Edges that one face alone has, by counting.
std::set<Edge> free_edges_of(const std::vector<std::vector<int>>& faces) {
  std::map<Edge, int> uses;
  for (const std::vector<int>& face : faces) {
    for (std::size_t i = 0; face.size() > 2 && i < face.size(); ++i)
      ++uses[edge_of(face[i], face[(i + 1) % face.size()])];
  }
  std::set<Edge> single;
  for (const auto& [edge, count] : uses)
    if (count == 1) single.insert(edge);
  return single;
}

// The walk over plain sets of neighbours: from each node in ascending order, once, to the smallest neighbour,
// on through nodes with one way left, then the same from the start the other way.
class NaiveWalk {
 public:
  explicit NaiveWalk(const std::set<Edge>& edges) {
    for (const auto& [a, b] : edges) {
      neighbours_[a].insert(b);
      neighbours_[b].insert(a);
    }
  }

  Chains chains() {
    Chains all;
    for (auto& [start, around] : neighbours_) {
      if (around.empty()) continue;
      const std::vector<int> one = walk(start);
      std::vector<int> other;
      if (one.back() != start) other = walk(start);
      Chain chain(other.rbegin(), other.rend());
      chain.push_back(start);
      chain.insert(chain.end(), one.begin(), one.end());
      all.push_back(chain);
    }
    return all;
  }

 private:
  std::vector<int> walk(int start) {
    std::vector<int> visited;
    int at = start;
    while (!neighbours_[at].empty()) {
      const int next = *neighbours_[at].begin();
      neighbours_[at].erase(next);
      neighbours_[next].erase(at);
      visited.push_back(next);
      if (next == start || neighbours_[next].size() != 1) break;
      at = next;
    }
    return visited;
  }

  std::map<int, std::set<int>> neighbours_;
};

TEST(FreeEdges, AgreeWithCountingEdgesAndWalkingNeighbours) {
  std::mt19937 random(17);
  for (int round = 0; round < 1000; ++round) {
    std::vector<std::vector<int>> faces(random() % 25);
    for (std::vector<int>& face : faces) {
      std::vector<int> corners = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
      std::shuffle(corners.begin(), corners.end(), random);
      face.assign(corners.begin(), corners.begin() + 2 + static_cast<std::ptrdiff_t>(random() % 4));
    }
    const std::set<Edge> edges = free_edges_of(faces);
    const Chains chains = chains_of(faces);
    ASSERT_EQ(chains, NaiveWalk(edges).chains()) << round;

    std::multiset<Edge> walked;
    for (const Chain& chain : chains)
      for (auto node = chain.begin(); std::next(node) != chain.end(); ++node)
        walked.insert(edge_of(*node, *std::next(node)));
    std::set<Edge> distinct(walked.begin(), walked.end());
    EXPECT_EQ(distinct.size(), walked.size()) << "no edge is walked twice";
    EXPECT_TRUE(std::includes(edges.begin(), edges.end(), distinct.begin(), distinct.end()));
  }
}

TEST(FreeEdges, OfAQuadrilateralAreOneClosedChainFromItsSmallestNode) {
  EXPECT_THAT(chains_of({{7, 3, 9, 5}}), ElementsAre(Chain{3, 7, 5, 9, 3}));
  EXPECT_THAT(chains_of({{3, 5, 9, 7}}), ElementsAre(Chain{3, 5, 9, 7, 3}));
}

TEST(FreeEdges, OfTwoTrianglesPassOverTheSharedEdge) {
  EXPECT_THAT(chains_of({{1, 2, 3}, {3, 2, 4}}), ElementsAre(Chain{1, 2, 4, 3, 1}));
  EXPECT_THAT(chains_of({{1, 2, 3}, {2, 3, 4}}), ElementsAre(Chain{1, 2, 4, 3, 1}))
      << "whichever way they turn";
}

TEST(FreeEdges, OfAClosedBoxAndOfLineElementsAreNone) {
  EXPECT_THAT(chains_of({{1, 2, 3, 4}, {5, 6, 7, 8}, {1, 2, 6, 5}, {2, 3, 7, 6}, {3, 4, 8, 7}, {4, 1, 5, 8}}),
              IsEmpty());
  EXPECT_THAT(chains_of({{1, 2}, {2, 3}, {3, 1}}), IsEmpty());
  EXPECT_THAT(chains_of({}), IsEmpty());
  EXPECT_THAT(chains_of({{}, {4}, {1, 2, 3}}), ElementsAre(Chain{1, 2, 3, 1}));
}

TEST(FreeEdges, BreakAtAJunction) {
  // Two triangles that touch in node 5: the walks stop there with two edges left.
  EXPECT_THAT(chains_of({{1, 2, 5}, {5, 3, 4}}), ElementsAre(Chain{5, 1, 2, 5}, Chain{3, 4, 5, 3}));
}

TEST(FreeEdges, OfAFaceWithARepeatedCornerIncludeItsLoop) {
  EXPECT_THAT(chains_of({{1, 1, 2}}), Not(IsEmpty()));
  EXPECT_THAT(chains_of({{6, 6, 6}}), IsEmpty()) << "one edge, three times";
}

TEST(FreeEdges, OfASecondRunForgetTheFirst) {
  std::vector<int> triangle = {3, 1, 2, 3};
  cFMDFreeEdges run;
  run.FindFreeEdges(1, triangle.data());
  run.FindFreeEdges(1, triangle.data());
  EXPECT_THAT(run.GetFreeEdges(), ElementsAre(Chain{1, 2, 3, 1}));
}

TEST(FreeEdgeNode, CountsTheEdgesThatTouchIt) {
  cFMDNode one(1);
  cFMDNode two(2);
  EXPECT_EQ(one.ID(), 1);
  EXPECT_EQ(one.EdgeCount(), 0);
  {
    cFMDEdge edge(&one, &two);
    EXPECT_EQ(one.EdgeCount(), 1);
    EXPECT_EQ(two.EdgeCount(), 1);
    one.AddLinkedEdge(&edge);
    EXPECT_EQ(one.EdgeCount(), 2);
    one.RemoveLinkedEdge(&edge);
    EXPECT_EQ(one.EdgeCount(), 0) << "every entry goes";
    one.AddLinkedEdge(&edge);
  }
  EXPECT_EQ(one.EdgeCount(), 0) << "an edge leaves with its end";
  EXPECT_EQ(two.EdgeCount(), 0);
}

TEST(FreeEdgeNode, StepsToItsSmallestNeighbourAndUsesUpThatEdge) {
  cFMDNode center(5);
  cFMDNode large(9);
  cFMDNode small(2);
  const cFMDEdge to_large(&center, &large);
  const cFMDEdge to_small(&center, &small);
  EXPECT_EQ(center.GetConnectedNode(), &small);
  EXPECT_EQ(small.EdgeCount(), 0);
  EXPECT_EQ(center.EdgeCount(), 1);
  EXPECT_EQ(center.GetConnectedNode(), &large);
  EXPECT_EQ(center.GetConnectedNode(), nullptr);
}

TEST(FreeEdgeNode, ListsAnOpenChainFromItsFarEndThroughItself) {
  cFMDNode nodes[] = {cFMDNode(4), cFMDNode(8), cFMDNode(1), cFMDNode(6)};
  const cFMDEdge a(&nodes[0], &nodes[1]);
  const cFMDEdge b(&nodes[1], &nodes[2]);
  const cFMDEdge c(&nodes[2], &nodes[3]);
  EXPECT_EQ(nodes[2].FindFreeEdge(), (Chain{4, 8, 1, 6}));
}

TEST(FreeEdgeEdge, IsTheSameInBothDirections) {
  cFMDNode twelve(12);
  cFMDNode many(345);
  const cFMDEdge edge(&twelve, &many);
  const cFMDEdge turned(&many, &twelve);
  EXPECT_EQ(edge.Key(), "12_345");
  EXPECT_EQ(turned.Key(), "12_345");
  EXPECT_EQ(edge.GetAnotherNode(&twelve), &many);
  EXPECT_EQ(edge.GetAnotherNode(&many), &twelve);
}

TEST(FreeEdgeEdge, CountsItsFacesFromOne) {
  cFMDNode one(-1);
  cFMDNode other(-1);
  cFMDEdge edge(&one, &other);
  EXPECT_EQ(edge.Key(), "-1_-1");
  EXPECT_EQ(edge.RefCount(), 1);
  edge.AddRef();
  EXPECT_EQ(edge.RefCount(), 2);
}

}  // namespace
