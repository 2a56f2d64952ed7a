// What a body holds after a translation.
#include <gtest/gtest.h>

#include "calculix/translate.h"
#include "support/session.h"
#include "translators/frd_text.h"

using calculix::Job;
using namespace fmdtest;

class MakeBodyTest : public SessionTest {
 protected:
  Job job(const std::string& frd) {
    write_file("job.frd", frd);
    write_file("job.inp", cube_deck());
    Job result;
    result.results = "job.frd";
    result.deck = "job.inp";
    result.interface_nodes = {"TOP"};
    result.comment = "a comment";
    return result;
  }
};

TEST_F(MakeBodyTest, FillsHeaderNodesFacesAndInterfaceNodes) {
  FmdBody* body = calculix::make_body(calculix::read_model(job(frd_text(cube())), nullptr), nullptr);
  ASSERT_NE(body, nullptr);
  char title[128], name[128], type[16], comments[3][80];
  FMD_Header(body, title, nullptr, name, type, comments[0], comments[1], comments[2]);
  EXPECT_STREQ(title, "unit cube");
  EXPECT_STREQ(name, "job.frd");
  EXPECT_STREQ(type, "CalculiX");
  EXPECT_STREQ(comments[0], "Results of CalculiX Version 2.20");
  EXPECT_STREQ(comments[1], "Deck job.inp");
  EXPECT_STREQ(comments[2], "a comment");
  EXPECT_EQ(FMD_NodeCount(body), 8);
  double at[3];
  FMD_NodeCoordinates(body, FMD_NodeIndex(body, 7), at);
  EXPECT_EQ(at[0] + at[1] + at[2], 3.0);
  EXPECT_NEAR(FMD_NodalMass(body, 3), 7.85 / 8, 1e-15);
  int faces = 0, length = 0;
  FMD_FaceListSize(body, &faces, &length);
  EXPECT_EQ(faces, 6);
  EXPECT_EQ(length, 30);
  int count = 0;
  int* ids = FMD_InterfaceNodeIDs(body, &count);
  ASSERT_EQ(count, 4);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(ids[i], 5 + i);
  FMD_FreeMemory(ids);
  char units[4][16];
  FMD_Units(body, units[0], units[1], units[2], units[3]);
  EXPECT_STREQ(units[0], "MEGAGRAM");
  EXPECT_STREQ(units[1], "MILLIMETER");
  EXPECT_STREQ(units[2], "SECOND");
  EXPECT_STREQ(units[3], "NEWTON");
}

TEST_F(MakeBodyTest, FillsModesStressesAndFrequencies) {
  FmdBody* body = calculix::make_body(calculix::read_model(job(frd_text(cube())), nullptr), nullptr);
  ASSERT_NE(body, nullptr);
  ASSERT_EQ(FMD_ModeCount(body), 2);
  double hertz = -1.0, mass = 0.0;
  ASSERT_EQ(FMD_Eigenvalue(body, 2, nullptr, &hertz, nullptr, &mass, nullptr), 1);
  EXPECT_NEAR(hertz, 12.5, 1e-12);
  EXPECT_EQ(mass, 1.0);
  ASSERT_EQ(FMD_Eigenvalue(body, 1, nullptr, &hertz, nullptr, nullptr, nullptr), 1);
  EXPECT_EQ(hertz, 0.0);
  double values[24];
  ASSERT_EQ(FMD_Mode(body, 2, 0, values, 0), 1);
  for (int i = 0; i < 8; ++i) {
    for (int k = 0; k < 3; ++k) EXPECT_EQ(values[3 * i + k], displacement_of(2, i + 1, k));
  }
  ASSERT_EQ(FMD_Mode(body, 2, 1, values, 1), 1);
  for (int i = 0; i < 8; ++i) {
    const int place_in_file[] = {3, 5, 4};  // xy xz yz
    for (int k = 0; k < 3; ++k) EXPECT_EQ(values[3 * i + k], stress_of(2, i + 1, place_in_file[k]));
  }
}

TEST_F(MakeBodyTest, GivesFrequenciesBackInUnitsThatAreNotConsistent) {
  Job kilograms = job(frd_text(cube()));
  kilograms.units = {"KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"};
  FmdBody* body = calculix::make_body(calculix::read_model(kilograms, nullptr), nullptr);
  ASSERT_NE(body, nullptr);
  EXPECT_NE(FMD_UCF(body), 1.0);
  double hertz = 0.0;
  FMD_Eigenvalue(body, 2, nullptr, &hertz, nullptr, nullptr, nullptr);
  EXPECT_NEAR(hertz, 12.5, 1e-12);
}

TEST_F(MakeBodyTest, LeavesNoBodyBehindWhenAValueIsBad) {
  const std::string bad =
      exchange(frd_text(cube()), " -1         4 1.04250E+02", " -1         4         NaN");
  const calculix::Model model = calculix::read_model(job(bad), nullptr);
  EXPECT_NE(input_error_of([&] { calculix::make_body(model, nullptr); }).find("found \"         NaN\""),
            std::string::npos);
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
}

TEST_F(MakeBodyTest, TellsWhenTheToolkitRefuses) {
  Job unknown = job(frd_text(cube()));
  unknown.units.mass = "STONE";
  const calculix::Model model = calculix::read_model(unknown, nullptr);
  EXPECT_THROW(calculix::make_body(model, nullptr), calculix::ToolkitError);
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
}
