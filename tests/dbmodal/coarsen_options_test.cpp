#include <gmock/gmock.h>

#include <string>

#include "dbmodal/coarsen_fixture.h"
#include "dbmodal/coarsen_meshes.h"
#include "dbmodal/dbcoarse/trim_options.h"
#include "fmdtoolkit/extensions.h"

namespace fmdtest {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using Strings = std::vector<std::string>;

class CoarsenOptions : public CoarsenTest {
 protected:
  // The messages of a coarsening of a plate of two by two squares.
  Strings said(const std::string& options) {
    FmdBody* body = make_body(make_plate(2, 2));
    log.clear();
    trim(body, options);
    FMD_UnLink(body);
    return log.all;
  }

  static Strings ids_of(std::string_view text) {
    Strings ids;
    for (int id = fmd::take_preserved_id(text); id != 0; id = fmd::take_preserved_id(text))
      ids.push_back(std::to_string(id));
    ids.emplace_back(text);
    return ids;
  }
};

const char kWarnedResolution[] =
    "W:Coarsening resolution outside the 0-50 percent range not supported.  You selected ";
const char kWarnedAngle[] = "W:Face angles outside the 0-45 degree range not supported.  You selected ";
const char kStart[] = "I:Coarsening to resolution ";

TEST_F(CoarsenOptions, AreToldAndThenTheResult) {
  EXPECT_THAT(said("0.5,10,0"),
              ElementsAre("I:Coarsening to resolution 50% with face-angle 10.00 deg",
                          "I:Preserving nodes: ", "I: NONE", "I:\nFace reduction from 4 to 1"));
  EXPECT_THAT(
      said("0.125,5.256,1"),
      ElementsAre("I:Coarsening to resolution 12% with face-angle  5.26 deg and co-linear vertex removal",
                  "I:Preserving nodes: ", "I: NONE", "I:\nFace reduction from 4 to 4"));
}

TEST_F(CoarsenOptions, LimitsAreInRange) {
  for (const char* text : {"0.5,45,0", "1e-9,45.0,0", ".5,1e-9,0", "+0.5,+45,-1"}) {
    said(text);
    EXPECT_THAT(log.warnings, IsEmpty()) << text;
  }
}

// What was selected is told as a percentage without its fraction.
TEST_F(CoarsenOptions, ResolutionOutOfRangeIsReplaced) {
  for (const auto& [text, told] :
       {std::pair("0.51", "51.000000"), std::pair("0", "0.000000"), std::pair("-0.001", "0.000000"),
        std::pair("-0.5", "-50.000000"), std::pair("0.50999", "50.000000"), std::pair("20", "2000.000000"),
        std::pair("1e999", "inf"), std::pair("-1e999", "-inf"), std::pair("1e-999", "0.000000")}) {
    EXPECT_THAT(said(std::string(text) + ",20,0"),
                ElementsAre(std::string(kWarnedResolution) + told + "\n",
                            testing::StartsWith(std::string(kStart) + "2% with face-angle "), testing::_,
                            testing::_, testing::_))
        << text;
  }
}

TEST_F(CoarsenOptions, WordsAreNoNumbers) {
  for (const char* text :
       {"nan,20", "inf,20", "-inf,20", "x,20", "0x1p-2,20", "-,20", "e5,20", "+-1,20", ".,20"})
    EXPECT_EQ(fmd::parse_trim_options(text).resolution, 0.0) << text;
}

TEST_F(CoarsenOptions, AngleOutOfRangeIsReplaced) {
  for (const auto& [text, told] :
       {std::pair("45.5", "45.500000"), std::pair("0", "0.000000"), std::pair("-10", "-10.000000"),
        std::pair("", "0.000000"), std::pair("45.00000000000001", "45.000000")}) {
    EXPECT_THAT(said(std::string("0.25,") + text),
                ElementsAre(std::string(kWarnedAngle) + told + "\n",
                            std::string(kStart) + "25% with face-angle 10.00 deg", testing::_, testing::_,
                            testing::_))
        << text;
  }
}

TEST_F(CoarsenOptions, DefaultsAreTwoPercentAndTenDegrees) {
  MeshMaker maker(4);
  Mesh mesh = make_plate(60, 60);
  maker.disturb_in_plane(mesh, 60, 60);
  FmdBody* body = make_body(mesh);
  FmdBody* other = make_body(mesh);
  trim(body, "0.6,46,0");
  trim(other, "0.02,10,0");
  EXPECT_EQ(faces_of(body), faces_of(other));
  EXPECT_NE(faces_of(body), mesh.faces);
}

TEST_F(CoarsenOptions, AnyOneCharacterPartsTwoNumbers) {
  for (const char* text : {"0.25,20,1,7,8,preserve_str", "0.25 20 1 7 8 preserve_str",
                           "0.25;20x1:7/8\tpreserve_str", "  0.25, 20,\n1, 7,  8,preserve_str"}) {
    const fmd::TrimOptions options = fmd::parse_trim_options(text);
    EXPECT_EQ(options.resolution, 0.25) << text;
    EXPECT_EQ(options.angle, 20.0) << text;
    EXPECT_TRUE(options.removes_colinear) << text;
    EXPECT_THAT(ids_of(options.preserved), ElementsAre("7", "8", "preserve_str")) << text;
  }
}

TEST_F(CoarsenOptions, AnIdOfZeroEndsTheIds) {
  EXPECT_THAT(ids_of("7,0,8"), ElementsAre("7", ",8"));
  EXPECT_THAT(ids_of("7,8"), ElementsAre("7", "8", ""));
  EXPECT_THAT(ids_of("-7,,8"), ElementsAre("-7", ",8"));
  EXPECT_THAT(ids_of("+7,99999999999,8.5"), ElementsAre("7", "-1", "8", "5", ""));
  EXPECT_THAT(ids_of("+-7"), ElementsAre("+-7"));
  EXPECT_TRUE(fmd::preserves_stress_nodes(",8 or preserve_stress"));
  EXPECT_FALSE(fmd::preserves_stress_nodes("preserve_st"));
}

// Each prefix in a piece of storage of its own size, so that a step beyond it is seen.
TEST_F(CoarsenOptions, ATextThatEndsEarlyIsReadNoFurther) {
  const std::string whole = " 0.25,2e1,+1,17, -8,preserve_str";
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const std::vector<char> part(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    fmd::TrimOptions options = fmd::parse_trim_options({part.data(), part.size()});
    EXPECT_EQ(options.resolution == 0.25, size >= 5) << size;
    EXPECT_EQ(options.angle == 20.0, size >= 9) << size;
    EXPECT_EQ(options.removes_colinear, size >= 12) << size;
    std::string_view rest = options.preserved;
    while (fmd::take_preserved_id(rest) != 0) {
    }
    EXPECT_EQ(fmd::preserves_stress_nodes(rest), size == whole.size()) << size;
    FmdBody* body = make_body(make_plate(2, 2));
    trim(body, whole.substr(0, size));
    EXPECT_EQ(body->Coarsened, 1);
    FMD_UnLink(body);
  }
}

TEST_F(CoarsenOptions, PreservedNodesAreNamedByTheirIds) {
  const std::string id4 = std::to_string(id_of(4));
  const std::string id1 = std::to_string(id_of(1));
  // Unknown ids and the second mention say nothing.
  EXPECT_THAT(
      said("0.5,10,0," + id4 + ",5,-3," + id1 + "," + id4 + ",0," + std::to_string(id_of(0))),
      ElementsAre(testing::_, "I:Preserving nodes: ", "I:" + id4 + " ", "I:" + id1 + " ", testing::_));
}

TEST_F(CoarsenOptions, InterfaceNodesAreAlwaysPreserved) {
  Mesh mesh = make_plate(2, 2);
  mesh.points.push_back({1, 1, 0});  // on no face: named all the same
  FmdBody* body = make_body(mesh);
  FMD_SetInterfaceNode(body, id_of(4));
  FMD_SetInterfaceNode(body, id_of(9));
  log.clear();
  trim(body, "0.5,10,0," + std::to_string(id_of(9)) + "," + std::to_string(id_of(4)));
  EXPECT_THAT(log.all, ElementsAre(testing::_, "I:Preserving nodes: ", "I:" + std::to_string(id_of(4)) + " ",
                                   "I:" + std::to_string(id_of(9)) + " ", "I:\nFace reduction from 4 to 2"));
  // 1 as ever, [2 5 4 3 0 1]; then 7 likewise, on [7 6 3 4] and [7 4 5 8]: 6 3 4, 5 8, and 7 behind. 3 and 5
  // have a record out of reach, 2 or 0 or 6 or 8, and 4 is preserved.
  EXPECT_EQ(faces_of(body), (Faces{{2, 5, 4, 3, 0, 1}, {6, 3, 4, 5, 8, 7}}));
}

TEST_F(CoarsenOptions, NodesOfStressAndStrainArePreservedWhereAsked) {
  for (const bool asked : {false, true}) {
    FmdBody* body = make_body(make_plate(2, 2));
    FMD_SetMode(body, 1, id_of(7), 1, 1, 1, 1, 1, 1, 1);
    FMD_SetMode(body, 1, id_of(3), 1, 1, 1, 1, 1, 1, 1);
    FMD_SetMode(body, 1, id_of(3), 2, 1, 1, 1, 1, 1, 1);
    FMD_SetMode(body, 1, id_of(1), 2, 1, 1, 1, 1, 1, 1);
    log.clear();
    trim(body, asked ? "0.5,10,0,preserve_str" : "0.5,10,0,7,preserve_st");
    Strings told(log.all.begin() + 2, log.all.end() - 1);
    if (asked) {
      EXPECT_THAT(told,
                  ElementsAre("I:" + std::to_string(id_of(7)) + " ", "I:" + std::to_string(id_of(3)) + " ",
                              "I:" + std::to_string(id_of(1)) + " "));
    } else {
      EXPECT_THAT(told, ElementsAre("I: NONE"));
    }
    FMD_UnLink(body);
  }
}

int steps_done = 0;
int steps_total = 0;
int calls = 0;

TEST_F(CoarsenOptions, ProgressIsToldAboutAHundredTimes) {
  FMDX_SetProgressHandler([](int done, int total) {
    steps_done = done;
    steps_total = total;
    ++calls;
  });
  // 100 nodes; 101, each of which is a multiple of 1; 250, every second; 1000, every tenth.
  for (const auto& [columns, rows, stamps] :
       {std::array{9, 9, 0}, std::array{100, 0, 101}, std::array{24, 9, 125}, std::array{39, 24, 100}}) {
    Mesh mesh = make_plate(columns, rows);
    mesh.faces.push_back({0, 1});
    FmdBody* body = make_body(mesh);
    calls = 0;
    trim(body, "0.1,10,0");
    EXPECT_EQ(steps_total, 100);
    EXPECT_EQ(steps_done, stamps);
    EXPECT_EQ(calls, stamps + 1);
  }
  FMDX_SetProgressHandler(nullptr);
}

}  // namespace

}  // namespace fmdtest
