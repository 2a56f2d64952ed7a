#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using fmdtest::is_allocation_failure;
using testing::ElementsAre;
using testing::IsEmpty;

const char kInfo[] = "I:Using sketch file sketch.txt to replace 2 faces with ";

class Sketch : public fmdtest::SessionTest {
 protected:
  // Nodes 10 to 90 by tens, so that an index is no id, and two faces.
  static FmdBody* make_body() {
    FmdBody* body = FMD_Create(0, 0);
    for (int id = 10; id <= 90; id += 10) FMD_AddNode(body, id);
    FMD_SetFace(body, 3, 10, 20, 30);
    FMD_SetFace(body, 4, 40, 50, 60, 70);
    return body;
  }

  static void apply(FmdBody* body, const std::string& text) {
    std::ofstream("sketch.txt") << text;
    std::string path = "sketch.txt";
    FMD_SketchGrid(body, path.data());
  }

  static std::vector<int> faces_of(FmdBody* body) {
    int faces = 0;
    int length = 0;
    FMD_FaceListSize(body, &faces, &length);
    std::vector<int> list(static_cast<std::size_t>(length));
    FMD_ElementFaces(body, list.data());
    list.insert(list.begin(), faces);
    return list;
  }

  // Old faces, and no mark of a sketch.
  static void expect_unchanged(FmdBody* body) {
    EXPECT_THAT(faces_of(body), ElementsAre(2, 3, 0, 1, 2, 4, 3, 4, 5, 6));
    EXPECT_EQ(body->Coarsened, 0);
  }

  static std::size_t open_files() {
    const std::filesystem::directory_iterator files("/proc/self/fd");
    return static_cast<std::size_t>(std::distance(begin(files), end(files)));
  }
};

TEST_F(Sketch, ReplacesTheFacesByIndicesOfItsNodes) {
  FmdBody* body = make_body();
  apply(body, "2\n5 10 20 30 40 50\n2 90 10\n");
  EXPECT_THAT(faces_of(body), ElementsAre(2, 5, 0, 1, 2, 3, 4, 2, 8, 0));
  EXPECT_EQ(body->Coarsened, 1);
  EXPECT_EQ(body->BlockExists[fmd::kElementFaces], 1);
  EXPECT_THAT(log.all, ElementsAre(std::string(kInfo) + "2"));
}

TEST_F(Sketch, TakesAnyWhiteSpaceAndSigns) {
  FmdBody* body = make_body();
  apply(body, "\n\t +1 3\r\n10\v20\f  +0030");
  EXPECT_THAT(faces_of(body), ElementsAre(1, 3, 0, 1, 2));
}

TEST_F(Sketch, KeepsCornersAsTheyAreAndAsksForNoLeastNumber) {
  FmdBody* body = make_body();
  apply(body, "4  4 10 10 20 10  1 30  0  2 40 40 ");
  EXPECT_THAT(faces_of(body), ElementsAre(4, 4, 0, 0, 1, 0, 1, 2, 0, 2, 3, 3));
}

TEST_F(Sketch, ReadsNoFurtherThanItsFaces) {
  FmdBody* body = make_body();
  apply(body, "1 2 10 20 and the rest is a remark");
  EXPECT_THAT(faces_of(body), ElementsAre(1, 2, 0, 1));
}

TEST_F(Sketch, MayHaveNoFaces) {
  FmdBody* body = make_body();
  apply(body, "0");
  EXPECT_THAT(faces_of(body), ElementsAre(0));
  EXPECT_EQ(body->Coarsened, 1);
}

TEST_F(Sketch, GivesABodyItsFirstFaces) {
  FmdBody* body = FMD_Create(0, 0);
  FMD_AddNode(body, 4);
  apply(body, "1 1 4");
  EXPECT_THAT(faces_of(body), ElementsAre(1, 1, 0));
  EXPECT_EQ(body->BlockExists[fmd::kElementFaces], 1);
}

TEST_F(Sketch, UnknownNodeLeavesTheOldFaces) {
  FmdBody* body = make_body();
  apply(body, "2 2 10 20 3 10 11 20");
  expect_unchanged(body);
  EXPECT_THAT(log.all, ElementsAre(std::string(kInfo) + "2",
                                   "W:Incorrect definition of face 2.  No node 11. Aborting."));
  EXPECT_EQ(FMD_NodeCount(body), 9) << "no node is made";
}

TEST_F(Sketch, FileCutAtAnyByteLeavesTheOldFaces) {
  const std::string whole = "3\n3 10 20 30\n2 40 50\n4 60 70 80 90\n";
  for (std::size_t bytes = 0; bytes < whole.size(); ++bytes) {
    FmdBody* body = make_body();
    const std::size_t files = open_files();
    log.clear();
    apply(body, whole.substr(0, bytes));
    EXPECT_EQ(open_files(), files) << bytes;
    std::istringstream cut(whole.substr(0, bytes));
    const std::vector<int> numbers{std::istream_iterator<int>(cut), {}};
    if (numbers.size() == 13 && numbers.back() == 90) {
      EXPECT_EQ(faces_of(body)[0], 3);  // but for the newline the file is whole
    } else {
      expect_unchanged(body);
      ASSERT_EQ(log.warnings.size(), 1U) << bytes;
      EXPECT_TRUE(log.errors.empty());
      if (numbers.empty()) {
        EXPECT_EQ(log.warnings[0], "Sketch file sketch.txt does not start with a face count");
      } else {
        EXPECT_THAT(log.warnings[0], testing::StartsWith("Incorrect definition of face "));
      }
    }
    FMD_UnLink(body);
  }
}

TEST_F(Sketch, NumbersFacesFromOneInItsWarnings) {
  for (const auto& [text, face] :
       {std::pair("2 x", 1), std::pair("2 2 10", 1), std::pair("2 2 10 20 2 10.5", 2),
        std::pair("2 2 10 20 2 10 x", 2), std::pair("9 1 10 1 20 - 1", 3)}) {
    FmdBody* body = make_body();
    log.clear();
    apply(body, text);
    expect_unchanged(body);
    EXPECT_THAT(log.warnings,
                ElementsAre("Incorrect definition of face " + std::to_string(face) + ".  Aborting."))
        << text;
  }
}

TEST_F(Sketch, CountsThatNoFileHoldsAreRefusedWithoutTheStorageForThem) {
  for (const char* text : {"1 2147483647 10 20", "2 2000000000", "1 -1", "1 -2147483648 10",
                           "1 2147483648 10", "1 99999999999999999999999999 10"}) {
    FmdBody* body = make_body();
    log.clear();
    apply(body, text);
    expect_unchanged(body);
    EXPECT_THAT(log.all,
                ElementsAre(testing::StartsWith(kInfo), "W:Incorrect definition of face 1.  Aborting."))
        << text;
  }
  FmdBody* body = make_body();
  log.clear();
  apply(body, "2147483647 0 1 10");
  expect_unchanged(body);
  EXPECT_THAT(log.all,
              ElementsAre(std::string(kInfo) + "2147483647", "W:Incorrect definition of face 3.  Aborting."));
}

TEST_F(Sketch, FaceCountMustBeOne) {
  for (const char* text : {"", "faces", "-1", "2147483648", "-", ".5"}) {
    FmdBody* body = make_body();
    log.clear();
    apply(body, text);
    expect_unchanged(body);
    EXPECT_THAT(log.all, ElementsAre("W:Sketch file sketch.txt does not start with a face count")) << text;
  }
}

TEST_F(Sketch, MissingFileAndMissingNameAreWarnings) {
  FmdBody* body = make_body();
  std::string path = "nowhere.txt";
  FMD_SketchGrid(body, path.data());
  FMD_SketchGrid(body, nullptr);
  expect_unchanged(body);
  EXPECT_THAT(log.all, ElementsAre("W:Failed to open sketch file nowhere.txt",
                                   "W:Failed to apply sketch file.  Usage: sketch(filename)"));
  std::string folder = ".";
  log.clear();
  FMD_SketchGrid(body, folder.data());
  EXPECT_THAT(log.all, ElementsAre("W:Sketch file . does not start with a face count"));
}

TEST_F(Sketch, ReportsANullBody) {
  std::string path = "nowhere.txt";
  FMD_SketchGrid(nullptr, path.data());
  EXPECT_THAT(log.all, ElementsAre("E:The database has not been initialized."));
}

TEST_F(Sketch, HoldsManyFacesAndAFaceOfManyCorners) {
  FmdBody* body = make_body();
  std::ostringstream text;
  text << 1500 << '\n';
  std::vector<int> expected = {1500};
  for (int face = 0; face < 1500; ++face) {
    const int corners = face == 700 ? 5000 : 3;
    text << corners;
    expected.push_back(corners);
    for (int corner = 0; corner < corners; ++corner) {
      text << ' ' << 10 + 10 * ((face + corner) % 9);
      expected.push_back((face + corner) % 9);
    }
    text << '\n';
  }
  apply(body, text.str());
  EXPECT_EQ(faces_of(body), expected);
}

// The new list may be shorter or longer than what the old one had room for.
TEST_F(Sketch, FacesCanBeAddedAfterIt) {
  for (const int before : {2, 900}) {
    for (const int sketched : {1, 900}) {
      FmdBody* body = make_body();
      for (int face = 2; face < before; ++face) FMD_SetFace(body, 3, 10, 20, 30);
      std::ostringstream text;
      text << sketched;
      for (int face = 0; face < sketched; ++face) text << " 2 10 20";
      apply(body, text.str());
      for (int face = 0; face < 1200; ++face) ASSERT_EQ(FMD_SetFace(body, 3, 70, 80, 90), 1);
      const std::vector<int> faces = faces_of(body);
      EXPECT_EQ(faces[0], sketched + 1200);
      EXPECT_EQ(faces.size(), 1U + 3U * static_cast<std::size_t>(sketched) + 4U * 1200U);
      EXPECT_EQ(faces.back(), 8);
      FMD_UnLink(body);
    }
  }
}

TEST_F(Sketch, SurvivesTheFailureOfEachAllocation) {
  std::ostringstream text;
  text << 700;
  for (int face = 0; face < 700; ++face) text << " 2 10 20";
  for (int nth = 1;; ++nth) {
    FmdBody* body = make_body();
    const std::size_t files = open_files();
    log.clear();
    fmd::fail_allocation(nth);
    apply(body, text.str());
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    EXPECT_EQ(open_files(), files);
    if (!failed) {
      EXPECT_EQ(faces_of(body)[0], 700);
      EXPECT_GT(nth, 3);
      break;
    }
    expect_unchanged(body);
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
    FMD_UnLink(body);
  }
}

}  // namespace
