#include <gtest/gtest.h>

#include <numeric>

#include "calculix/translate.h"
#include "support/session.h"
#include "translators/frd_text.h"
#include "translators/one_element.h"

using calculix::Job;
using calculix::Model;
using namespace fmdtest;

namespace {

Job job_of(const std::string& frd, const std::string& deck) {
  write_file("job.frd", frd);
  write_file("job.inp", deck);
  Job job;
  job.results = "job.frd";
  job.deck = "job.inp";
  return job;
}

std::string error_of(const Job& job) {
  return input_error_of([&] { calculix::read_model(job, nullptr); });
}

double sum(const std::vector<double>& values) {
  return std::accumulate(values.begin(), values.end(), 0.0);
}

std::vector<int> in_result_order(int code, std::size_t count) {
  if (code == 4) return {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 17, 18, 19, 20, 13, 14, 15, 16};
  if (code == 5) return {1, 2, 3, 4, 5, 6, 7, 8, 9, 13, 14, 15, 10, 11, 12};
  std::vector<int> nodes(count);
  std::iota(nodes.begin(), nodes.end(), 1);
  return nodes;
}

}  // namespace

class ReadModelTest : public ::testing::Test {
 protected:
  TemporaryDirectory directory;
  const Job cube_job = job_of(frd_text(cube()), cube_deck());
};

TEST_F(ReadModelTest, TakesDensityFromTheMaterialOrFromTheOption) {
  Model model = calculix::read_model(cube_job, nullptr);
  for (const double mass : model.masses) EXPECT_NEAR(mass, 7.85 / 8, 1e-15);
  EXPECT_EQ(model.title, "unit cube");
  Job heavier = cube_job;
  heavier.density = 16.0;
  EXPECT_NEAR(sum(calculix::read_model(heavier, nullptr).masses), 16.0, 1e-14);
}

TEST_F(ReadModelTest, TakesCoordinatesOfTheDeckInFullPrecision) {
  const Job job =
      job_of(frd_text(cube()), exchange(cube_deck(), "7, 1, 1, 1\n", "7, 1.000001234567, 1, 1\n"));
  EXPECT_EQ(calculix::read_model(job, nullptr).contents.mesh.points[6][0], 1.000001234567);
}

TEST_F(ReadModelTest, LeavesDeckNodesWithoutElementsOut) {
  const Job job = job_of(frd_text(cube()), exchange(cube_deck(), "*ELEMENT", "*NODE\n99, 5, 5, 5\n*ELEMENT"));
  EXPECT_EQ(calculix::read_model(job, nullptr).masses.size(), 8U);
}

// Every element code, its nodes in the order of the result file.
TEST_F(ReadModelTest, WeighsEveryElementCode) {
  const char* labels[] = {"", "C3D8", "C3D6", "C3D4", "C3D20", "C3D15", "C3D10", "S3", "S6", "S4", "S8R"};
  for (const auto& outline : outlines()) {
    for (const bool quadratic : {false, true}) {
      const int code = quadratic ? outline.quadratic_code : outline.linear_code;
      FrdModel frd;
      std::string element = "1";
      for (const auto& place : places_of(outline, quadratic)) {
        frd.nodes.push_back({static_cast<int>(frd.nodes.size()) + 1, place});
        element += ", " + std::to_string(frd.nodes.size());
      }
      frd.elements = {{1, code, in_result_order(code, frd.nodes.size())}};
      const bool shell = code >= 7;
      const std::string deck = deck_nodes(frd) + "*ELEMENT, ELSET=E, TYPE=" + labels[code] + "\n" + element +
                               "\n*MATERIAL, NAME=M\n*DENSITY\n2\n*" + (shell ? "SHELL" : "SOLID") +
                               " SECTION, ELSET=E, MATERIAL=M\n" + (shell ? "0.25\n" : "");
      const Model model = calculix::read_model(job_of(frd_text(frd), deck), nullptr);
      EXPECT_NEAR(sum(model.masses), 2.0 * outline.measure * (shell ? 0.25 : 1.0), 1e-14) << code;
      for (const double mass : model.masses) EXPECT_GT(mass, 0.0) << code;
    }
  }
}

TEST_F(ReadModelTest, WeighsBeams) {
  for (const int code : {11, 12}) {
    FrdModel frd;
    frd.nodes = {{1, {0, 0, 0}}, {2, {1.5, 2, 0}}, {3, {3, 4, 0}}};
    if (code == 11) {
      frd.nodes.pop_back();
      frd.nodes[1].at = {3, 4, 0};
    }
    frd.elements = {{1, code, code == 11 ? std::vector<int>{1, 2} : std::vector<int>{1, 3, 2}}};
    const std::string deck =
        deck_nodes(frd) + "*ELEMENT, ELSET=E, TYPE=" + (code == 11 ? "B31\n1,1,2\n" : "B32\n1,1,2,3\n") +
        "*MATERIAL, NAME=M\n*DENSITY\n2\n*BEAM SECTION, ELSET=E, MATERIAL=M, SECTION=RECT\n0.5,0.2\n";
    EXPECT_NEAR(sum(calculix::read_model(job_of(frd_text(frd), deck), nullptr).masses), 5.0 * 0.1 * 2.0,
                1e-14);
  }
}

// The nodes of an expanded shell have ids above the deck's, and the deck's own nodes do not appear.
TEST_F(ReadModelTest, TakesNodesOfExpandedShellsFromTheResults) {
  FrdModel frd;
  for (const auto& place : places_of(outlines()[0], true)) {
    frd.nodes.push_back({static_cast<int>(frd.nodes.size()) + 101, {place[0], place[1], 0.1 * place[2]}});
  }
  frd.elements = {{1, 4, {}}};
  for (const int node : in_result_order(4, 20)) frd.elements[0].nodes.push_back(100 + node);
  const std::string deck =
      "*NODE, "
      "NSET=N\n1,0,0,0.05\n2,1,0,0.05\n3,1,1,0.05\n4,0,1,0.05\n5,.5,0,0.05\n6,1,.5,0.05\n7,.5,1,0.05\n8,0,.5,"
      "0.05\n"
      "*ELEMENT, TYPE=S8R, ELSET=E\n1,1,2,3,4,5,6,7,8\n*MATERIAL, NAME=M\n*DENSITY\n7800\n"
      "*SHELL SECTION, ELSET=E, MATERIAL=M\n0.1\n";
  Job job = job_of(frd_text(frd), deck);
  const Model model = calculix::read_model(job, nullptr);
  EXPECT_NEAR(sum(model.masses), 780.0, 1e-3);
  EXPECT_EQ(model.contents.mesh.node_ids.front(), 101);
  job.interface_nodes = {"N"};
  EXPECT_EQ(error_of(job),
            "job.frd: expected node 1 of the set N among the results; for shells and beams ask for OUTPUT=2D "
            "in the deck");
}

TEST_F(ReadModelTest, AddsMassElements) {
  const std::string deck = exchange(
      cube_deck(), "*MATERIAL", "*ELEMENT, TYPE=MASS, ELSET=M\n6, 3\n7, 4\n*MASS, ELSET=M\n2.5\n*MATERIAL");
  const Model model = calculix::read_model(job_of(frd_text(cube()), deck), nullptr);
  EXPECT_NEAR(model.masses[2], 7.85 / 8 + 2.5, 1e-14);
  EXPECT_NEAR(sum(model.masses), 7.85 + 5.0, 1e-14);
  EXPECT_EQ(error_of(job_of(frd_text(cube()), exchange(deck, "6, 3", "6, 33"))),
            "job.inp: expected the mass element 6 at a node of the results, found it at node 33");
}

TEST_F(ReadModelTest, TakesInterfaceNodesFromSetsAndFiles) {
  Job job = cube_job;
  write_file("ids.txt", "# two nodes\n2, 3 # more\n\n4\n");
  job.interface_nodes = {"top", "ids.txt", "CORNER"};
  EXPECT_EQ(calculix::read_model(job, nullptr).interface_ids, (std::vector<int>{5, 6, 7, 8, 2, 3, 4, 1}));
  job.interface_nodes = {"NOWHERE"};
  EXPECT_EQ(error_of(job),
            "job.inp: expected a node set of the deck or a file for the interface nodes, found neither "
            "of the name \"NOWHERE\" (sets: CORNER, NALL, TOP)");
  write_file("bad.txt", "1\nx\n");
  job.interface_nodes = {"bad.txt"};
  EXPECT_EQ(error_of(job), "bad.txt:2: expected a node id, found \"x\"");
  write_file("bad.txt", "1\n44\n");
  EXPECT_EQ(error_of(job), "bad.txt:2: expected a node of the results, found unknown node 44");
  write_file("bad.txt", "# none\n");
  EXPECT_EQ(error_of(job), "bad.txt: expected node ids, found none");
  job = job_of(frd_text(cube()), exchange(cube_deck(), "*MATERIAL", "*NSET, NSET=EMPTY\n*MATERIAL"));
  job.interface_nodes = {"EMPTY"};
  EXPECT_EQ(error_of(job), "job.inp: expected nodes in the set EMPTY, found none");
}

TEST_F(ReadModelTest, NamesWhatTheDeckLacks) {
  const std::string frd = frd_text(cube());
  const std::string element_line = "job.frd:17: ";
  EXPECT_EQ(error_of(job_of(frd, exchange(cube_deck(), "*DENSITY\n7.85\n", ""))),
            "job.inp:20: expected *DENSITY of the material STEEL, or the option --density");
  EXPECT_EQ(error_of(job_of(frd, exchange(cube_deck(), "MATERIAL=STEEL", "MATERIAL=IRON"))),
            "job.inp:22: expected a material of the deck, found unknown material IRON");
  EXPECT_EQ(error_of(job_of(frd, exchange(cube_deck(), "ELSET=EALL, MATERIAL", "ELSET=NONE, MATERIAL"))),
            "job.inp:22: expected an element set of the deck, found unknown set NONE");
  EXPECT_EQ(error_of(job_of(frd, exchange(cube_deck(), "*SOLID SECTION, ELSET=EALL, MATERIAL=STEEL\n", ""))),
            element_line +
                "expected a section with a material for element 5 in the deck, or the option --density, "
                "found none");
  EXPECT_EQ(error_of(job_of(frd, exchange(cube_deck(), "\n5, 1, 2", "\n6, 1, 2"))),
            element_line + "expected an element of the deck job.inp, found unknown element 5");
  EXPECT_EQ(error_of(job_of(frd, exchange(cube_deck(), "TYPE=C3D8", "TYPE=CAX8"))),
            element_line + "expected solids, shells or beams, found the axisymmetric element 5");
  EXPECT_EQ(error_of(job_of(frd, exchange(cube_deck(), "7, 1, 1, 1\n", "7, 1, 1, 1.001\n"))),
            "job.frd:13: expected node 7 at its place in the deck job.inp, found it elsewhere: the deck does "
            "not belong "
            "to these results");
}

TEST_F(ReadModelTest, NamesTheMissingSizeOfShellsAndBeams) {
  FrdModel shell = cube();
  shell.nodes.resize(4);
  shell.elements = {{5, 9, {1, 2, 3, 4}}};
  const std::string before =
      deck_nodes(shell) + "*ELEMENT, TYPE=S4, ELSET=E\n5,1,2,3,4\n*MATERIAL,NAME=M\n*DENSITY\n1\n";
  EXPECT_EQ(error_of(job_of(frd_text(shell), before + "*SHELL SECTION, ELSET=E, MATERIAL=M\n")),
            "job.inp:11: expected the thickness of the shell element 5, found none");
  EXPECT_EQ(
      error_of(job_of(frd_text(shell), before + "*SHELL SECTION, ELSET=E, MATERIAL=M, NODAL THICKNESS\n1\n")),
      "job.inp:11: expected the thickness of the shell element 5, but its section has its thickness at the "
      "nodes, "
      "which is not read");
  Job bare = job_of(frd_text(shell), before);
  bare.density = 1.0;
  EXPECT_EQ(
      error_of(bare),
      "job.frd:13: expected the thickness of the shell element 5 from a section of the deck, found none");
  FrdModel beam = cube();
  beam.nodes.resize(2);
  beam.elements = {{5, 11, {1, 2}}};
  EXPECT_EQ(error_of(job_of(frd_text(beam),
                            deck_nodes(beam) +
                                "*ELEMENT, TYPE=B31, ELSET=E\n5,1,2\n*MATERIAL,NAME=M\n*DENSITY\n1\n"
                                "*BEAM SECTION, ELSET=E, MATERIAL=M, SECTION=BOX\n1,1,.1,.1,.1,.1\n")),
            "job.inp:9: expected the cross section of the beam element 5, but its section has the shape BOX, "
            "of which RECT, "
            "CIRC and PIPE are read");
}

TEST_F(ReadModelTest, NamesElementsInsideOut) {
  FrdModel frd = cube();
  frd.elements[0].nodes = {4, 3, 2, 1, 8, 7, 6, 5};
  EXPECT_EQ(error_of(job_of(frd_text(frd), cube_deck())),
            "job.frd:17: expected a positive volume of element 5");
}

TEST_F(ReadModelTest, NotesSkippedDatasets) {
  std::string dataset =
      frd_head("DISP", {3, 1.0}, 1, 0) + " -1         1 0.00000E+00 0.00000E+00 0.00000E+00\n -3\n";
  const Model model = calculix::read_model(
      job_of(exchange(frd_text(cube()), " 9999", dataset + " 9999"), cube_deck()), nullptr);
  ASSERT_EQ(model.notes.size(), 1U);
  EXPECT_EQ(model.notes[0].text(), "skipped 1 dataset(s) that belong to no frequency analysis");
}
