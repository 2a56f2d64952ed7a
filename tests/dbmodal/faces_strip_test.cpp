#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <random>
#include <vector>

#include "body/body.h"
#include "dbmodal/dbtools/face_strip.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using fmdtest::is_allocation_failure;
using testing::ElementsAre;
using testing::IsEmpty;

using Face = std::vector<int>;
using Faces = std::vector<Face>;

Faces unpack(const std::vector<int>& list, int faces) {
  Faces result;
  std::size_t place = 0;
  for (int face = 0; face < faces; ++face) {
    const auto first = list.begin() + static_cast<std::ptrdiff_t>(place) + 1;
    result.emplace_back(first, first + list[place]);
    place += static_cast<std::size_t>(list[place]) + 1;
  }
  EXPECT_EQ(place, list.size());
  return result;
}

std::vector<int> pack(const Faces& faces) {
  std::vector<int> list;
  for (const Face& face : faces) {
    list.push_back(static_cast<int>(face.size()));
    list.insert(list.end(), face.begin(), face.end());
  }
  return list;
}

Faces strip(const Faces& faces) {
  std::vector<int> list = pack(faces);
  std::vector<int> copy(list.size());
  std::vector<fmd::CanonicalFace> records(faces.size());
  const fmd::FaceListSize size =
      fmd::strip_common_faces(list.data(), static_cast<int>(faces.size()), static_cast<int>(list.size()),
                              records.data(), copy.data());
  list.resize(static_cast<std::size_t>(size.length));
  return unpack(list, size.faces);
}

// The face in all rotations.
Faces rotations(Face face) {
  Faces all;
  for (std::size_t i = 0; i < face.size(); ++i) {
    all.push_back(face);
    std::rotate(face.begin(), face.begin() + 1, face.end());
  }
  return all;
}

Face largest_rotation(const Face& face) {
  const Faces all = rotations(face);
  return *std::max_element(all.begin(), all.end());
}

// For faces whose corners differ: of all ways to write the cycle the largest, with the count in front.
std::vector<int> cycle_of(const Face& face) {
  Face cycle = std::max(largest_rotation(face), largest_rotation(Face(face.rbegin(), face.rend())));
  cycle.insert(cycle.begin(), static_cast<int>(face.size()));
  return cycle;
}

bool runs_forward(const Face& face) {
  const Face as_listed = largest_rotation(face);
  return face.size() > 2 && as_listed > largest_rotation(Face(face.rbegin(), face.rend()));
}

// The rules, cycle by cycle: pairs of opposite neighbours go, of two alike the former goes, one that is left
// over stays. The very last face of all is judged against the one before it alone.
Faces strip_naively(const Faces& faces) {
  std::map<std::vector<int>, Faces> by_cycle;
  for (const Face& face : faces) by_cycle[cycle_of(face)].push_back(face);
  Faces kept;
  for (auto group = by_cycle.begin(); group != by_cycle.end(); ++group) {
    const Faces& same = group->second;
    const bool is_last_group = std::next(group) == by_cycle.end();
    std::size_t i = 0;
    while (i + 1 < same.size()) i += runs_forward(same[i]) == runs_forward(same[i + 1]) ? 1 : 2;
    bool survives = i + 1 == same.size();
    if (is_last_group && same.size() > 1)
      survives = runs_forward(same[same.size() - 2]) == runs_forward(same.back());
    if (survives) {
      Face face = same.back();
      std::rotate(face.begin(), std::max_element(face.begin(), face.end()), face.end());
      kept.push_back(face);
    }
  }
  return kept;
}

Face random_face(std::mt19937& random) {
  Face corners = {0, 1, 2, 3, 4, 5, 6};
  std::shuffle(corners.begin(), corners.end(), random);
  corners.resize(2 + random() % 5);
  return corners;
}

TEST(FaceStripping, AgreesWithTheRulesAppliedCycleByCycle) {
  std::mt19937 random(11);
  for (int round = 0; round < 3000; ++round) {
    Faces faces;
    const std::size_t count = 1 + random() % 30;
    while (faces.size() < count) {
      Face face = random_face(random);
      const std::size_t copies = 1 + random() % 4;
      for (std::size_t copy = 0; copy < copies && faces.size() < count; ++copy) {
        std::rotate(face.begin(), face.begin() + static_cast<std::ptrdiff_t>(random() % face.size()),
                    face.end());
        if (random() % 2 == 0) std::reverse(face.begin(), face.end());
        faces.push_back(face);
      }
    }
    std::shuffle(faces.begin(), faces.end(), random);
    ASSERT_EQ(strip(faces), strip_naively(faces)) << "round " << round;
  }
}

TEST(FaceStripping, DropsTwoOppositeFacesAndKeepsOneOfTwoAlike) {
  const Face other = {9, 10, 11};
  EXPECT_THAT(strip({{1, 2, 3, 4}, {4, 3, 2, 1}}), IsEmpty());
  EXPECT_THAT(strip({{1, 2, 3, 4}, {1, 2, 3, 4}}), ElementsAre(Face{4, 1, 2, 3}));
  EXPECT_THAT(strip({other, {1, 2, 3}, {3, 2, 1}}), ElementsAre(Face{11, 9, 10}));
}

TEST(FaceStripping, TakesAFaceFromAnotherStartingCornerForTheSameCycle) {
  EXPECT_THAT(strip({{1, 2, 3, 4}, {3, 4, 1, 2}}), ElementsAre(Face{4, 1, 2, 3}));
  EXPECT_THAT(strip({{1, 2, 3, 4}, {2, 1, 4, 3}}), IsEmpty());
  EXPECT_EQ(strip({{1, 2, 3, 4}, {1, 3, 2, 4}}).size(), 2U) << "the same corners in another cycle";
}

TEST(FaceStripping, ReducesThreeFacesOfOneCycleByTheSortedWalk) {
  const Face one = {1, 2, 3};
  const Face back = {3, 2, 1};
  const Face later = {9, 10, 11};
  EXPECT_THAT(strip({one, back, one, later}), ElementsAre(Face{3, 1, 2}, Face{11, 9, 10}));
  EXPECT_THAT(strip({one, one, back, later}), ElementsAre(Face{11, 9, 10}));
  EXPECT_THAT(strip({back, one, one, later}), ElementsAre(Face{3, 1, 2}, Face{11, 9, 10}));
  EXPECT_THAT(strip({one, back, one}), IsEmpty()) << "the last is judged against its neighbour alone";
  EXPECT_THAT(strip({one, one, back}), IsEmpty());
  EXPECT_THAT(strip({back, one, one}), ElementsAre(Face{3, 1, 2}));
}

TEST(FaceStripping, CountsLineElementsWithTheSameCornersAsOne) {
  EXPECT_THAT(strip({{1, 2}, {2, 1}, {1, 3}}), ElementsAre(Face{2, 1}, Face{3, 1}));
}

TEST(FaceStripping, SortsByCornerCountThenLargestCornerThenTheRest) {
  EXPECT_THAT(strip({{5, 1, 2, 3}, {1, 2, 9}, {1, 3, 9}, {0, 8, 2}, {20, 21}}),
              ElementsAre(Face{21, 20}, Face{8, 2, 0}, Face{9, 1, 2}, Face{9, 1, 3}, Face{5, 1, 2, 3}));
}

TEST(FaceStripping, KeepsASingleFace) {
  EXPECT_THAT(strip({{4, 7, 5}}), ElementsAre(Face{7, 5, 4}));
}

TEST(FaceStripping, StandsFacesWithoutCornersAndWithRepeatedOnes) {
  EXPECT_EQ(strip({{}, {}, {1}, {1}, {5, 3, 5, 2}, {5, 3, 5, 2}}), (Faces{{}, {1}, {5, 3, 5, 2}}));
}

TEST(FaceListSoundness, NeedsExactlyTheWordsOfItsFacesAndKnownNodes) {
  const std::vector<int> list = {3, 0, 1, 2, 2, 4, 3};
  const auto sound = [](const std::vector<int>& words, int faces, int nodes) {
    return fmd::is_sound_face_list(words.data(), faces, static_cast<int>(words.size()), nodes);
  };
  EXPECT_TRUE(sound(list, 2, 5));
  EXPECT_FALSE(sound(list, 1, 5));
  EXPECT_FALSE(sound(list, 3, 5));
  EXPECT_FALSE(sound(list, -1, 5));
  EXPECT_FALSE(sound(list, 2, 4)) << "a corner that is no node";
  EXPECT_FALSE(sound({2, 0, -1}, 1, 5));
  EXPECT_FALSE(sound({-1, 0, 1}, 1, 5));
  EXPECT_FALSE(sound({2147483647, 0, 1}, 1, 5));
  EXPECT_FALSE(fmd::is_sound_face_list(nullptr, 0, 3, 5));
  EXPECT_TRUE(fmd::is_sound_face_list(nullptr, 0, 0, 5));
  for (std::size_t words = 0; words < list.size(); ++words) {
    const std::vector<int> cut(list.begin(), list.begin() + static_cast<std::ptrdiff_t>(words));
    EXPECT_FALSE(sound(cut, 2, 5)) << words;
  }
}

class StripFaces : public fmdtest::SessionTest {
 protected:
  static FmdBody* make_body(Faces faces) {
    FmdBody* body = FMD_Create(0, 0);
    for (int id = 1; id <= 12; ++id) FMD_AddNode(body, id);
    for (Face& face : faces) FMD_SetFaceList(body, static_cast<int>(face.size()), face.data());
    return body;
  }

  // With node ids.
  static Faces faces_of(FmdBody* body) {
    int count = 0;
    int length = 0;
    FMD_FaceListSize(body, &count, &length);
    std::vector<int> list(static_cast<std::size_t>(length));
    FMD_ElementFaces(body, list.data());
    Faces faces = unpack(list, count);
    for (Face& face : faces)
      for (int& corner : face) corner = FMD_NodeID(body, corner);
    return faces;
  }
};

TEST_F(StripFaces, LeavesTheFacesOfOneElementOnly) {
  FmdBody* body = make_body({{5, 6, 7, 8}, {1, 2, 3, 4}, {8, 7, 6, 5}, {10, 11, 12}});
  FMD_StripCommonFaces(body);
  EXPECT_EQ(faces_of(body), (Faces{{12, 10, 11}, {4, 1, 2, 3}}));
  EXPECT_EQ(body->InternalGeometryRemoved, 1);
  EXPECT_THAT(log.all, ElementsAre("I: Stripping interior faces\n"));
}

TEST_F(StripFaces, RunsOncePerBody) {
  FmdBody* body = make_body({{1, 2, 3}});
  FMD_StripCommonFaces(body);
  FMD_SetFace(body, 3, 3, 2, 1);
  log.clear();
  FMD_StripCommonFaces(body);
  EXPECT_EQ(faces_of(body).size(), 2U);
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(StripFaces, MayLeaveNoneAndTakesNewOnesAfterwards) {
  FmdBody* body = make_body({{1, 2, 3}, {2, 1, 3}});
  FMD_StripCommonFaces(body);
  EXPECT_THAT(faces_of(body), IsEmpty());
  EXPECT_EQ(FMD_SetFace(body, 2, 4, 5), 1);
  EXPECT_THAT(faces_of(body), ElementsAre(Face{4, 5}));
}

TEST_F(StripFaces, ReportsABodyWithoutFacesAsAFailedAllocation) {
  FmdBody* body = make_body({});
  FMD_StripCommonFaces(body);
  ASSERT_EQ(log.all.size(), 1U);
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
  EXPECT_EQ(body->InternalGeometryRemoved, 0);
}

TEST_F(StripFaces, ReportsANullBody) {
  FMD_StripCommonFaces(nullptr);
  EXPECT_THAT(log.all, ElementsAre("E:The database has not been initialized."));
}

TEST_F(StripFaces, DoesNothingWithFacesThatNameNoNode) {
  FmdBody* body = make_body({{1, 2, 3}, {3, 2, 1}});
  body->FaceList[2] = 12;
  FMD_StripCommonFaces(body);
  EXPECT_EQ(body->FaceCount, 2);
  EXPECT_EQ(body->InternalGeometryRemoved, 0);
  body->FaceList[2] = 1;
  body->FaceList[4] = 100000000;
  FMD_StripCommonFaces(body);
  EXPECT_EQ(body->FaceCount, 2);
}

TEST_F(StripFaces, SurvivesTheFailureOfEachAllocation) {
  FmdBody* body = make_body({{1, 2, 3}, {3, 2, 1}, {4, 5, 6}});
  const Faces before = faces_of(body);
  for (int nth = 1;; ++nth) {
    log.clear();
    fmd::fail_allocation(nth);
    FMD_StripCommonFaces(body);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) break;
    EXPECT_EQ(faces_of(body), before);
    EXPECT_EQ(body->InternalGeometryRemoved, 0);
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
  }
  EXPECT_EQ(faces_of(body), (Faces{{6, 4, 5}}));
}

TEST_F(StripFaces, MeshCountsAsCoarsenedByItsFlagOrItsPolygons) {
  FmdBody* body = make_body({{1, 2, 3, 4}, {1, 2}});
  EXPECT_EQ(FMD_IsCoarsened(body), 0);
  FMD_SetFace(body, 5, 1, 2, 3, 4, 5);
  EXPECT_EQ(FMD_IsCoarsened(body), 1);
  EXPECT_EQ(body->Coarsened, 1);
  FmdBody* bare = make_body({});
  EXPECT_EQ(FMD_IsCoarsened(bare), 0);
  bare->Coarsened = 1;
  EXPECT_EQ(FMD_IsCoarsened(bare), 1);
  EXPECT_THAT(log.all, IsEmpty());
  EXPECT_EQ(FMD_IsCoarsened(nullptr), 0);
  EXPECT_THAT(log.all, ElementsAre("E:The database has not been initialized."));
}

}  // namespace
