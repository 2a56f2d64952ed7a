// What a write says on its way.
#include <gtest/gtest.h>

#include <cstdio>

#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

class WriteMessages : public WriteTest {};

// The 22 lines of contents: a name to the right of 30 columns and an answer.
const char* const kContents[] = {
    "Nodal Coords",           "Element Faces",       "Eigenvalues",         "Mode Shapes",
    "Global Mass Properties", "Nodal Masses",        "Nodal Inertias",      "Generalized Stiffness",
    "Generalized Mass",       "Generalized Damping", "Mode Transformation", "Stress Modes",
    "Interface Nodes",        "Inertia Invariants",  "Modal Preload",       "Modal Loads",
    "Strain Modes",           "Nodal Pre-Stress",    "Nodal Pre-Strain",    "Monitor Points",
    "Matrix Operators",       "Modal Load Nodal"};

// Lines of contents, Yes for the names given.
Strings contents(const Strings& present) {
  Strings lines = {"\nCreating a Flexible Modal Dataset with the following information:\n"};
  for (const std::string name : kContents) {
    const bool yes = std::find(present.begin(), present.end(), name) != present.end();
    lines.push_back(std::string(30 - name.size(), ' ') + name + (yes ? " Yes" : " No"));
  }
  return lines;
}

Strings joined(std::initializer_list<Strings> parts) {
  Strings all;
  for (const Strings& part : parts) all.insert(all.end(), part.begin(), part.end());
  return all;
}

const Strings kWholeRange = {"Exporting frequency range [-1.000000e+00,1.000000e+08]\n"};

std::string three(const char* name, double a, double b, double c) {
  char line[200];
  std::snprintf(line, sizeof line, "%s %f %f %f", name, a, b, c);
  return line;
}

// The lines of block 6, with the numbers that the file holds.
Strings mass_lines(const dataset_reader::GlobalProperties& p) {
  char mass[100];
  std::snprintf(mass, sizeof mass, "Mass          : %f\n", p.mass);
  return {"\nGlobal body properties:",
          mass,
          three("Center of Mass:", p.center[0], p.center[1], p.center[2]),
          three("Inertia Tensor:", p.inertia[0], p.inertia[1], p.inertia[2]),
          three("               ", p.inertia[3], p.inertia[4], p.inertia[5]),
          three("               ", p.inertia[6], p.inertia[7], p.inertia[8])};
}

const Strings kSampleContents = {
    "Nodal Coords", "Element Faces",   "Eigenvalues",           "Mode Shapes",      "Global Mass Properties",
    "Nodal Masses", "Nodal Inertias",  "Generalized Stiffness", "Generalized Mass", "Mode Transformation",
    "Stress Modes", "Interface Nodes", "Strain Modes",          "Nodal Pre-Stress", "Nodal Pre-Strain"};

TEST_F(WriteMessages, OfADefaultWriteComeInThisOrder) {
  const Dataset dataset = written(make_sample_body());
  EXPECT_EQ(log.warnings, Strings{});
  EXPECT_EQ(
      log.infos,
      joined({kWholeRange,
              contents(kSampleContents),
              {"\nNode info:\n   Count: 4"},
              mass_lines(*dataset.global_properties),
              {"\nEigenvalue info:\n   Modes: 3", "\nTrans Mode info:\n   Modes: 3\n   Nodes: 4",
               "\nWriting Mode Shapes", "\nNodal inertia info:\n   Sparse matrix entries: 9",
               "\nUnits:\n   Mass:   MEGAGRAM\n   Length: MILLIMETER\n   Time:   SECOND\n   Force:  NEWTON",
               "\nNumber of Element Faces: 4", "\nStress Mode info:\n   Modes: 3\n   Nodes: 2",
               "\nStrain Mode info:\n   Modes: 3\n   Nodes: 1", "\nPre-Stress info:\n   Nodes: 2",
               "\nPre-Strain info:\n   Nodes: 1"}}));
}

TEST_F(WriteMessages, OfMassAreWordedToTheBlank) {
  FmdBody* body = make_nodes({1}, 1);
  double center[3] = {1.0, -2.0, 0.5};
  double inertia[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  FMD_SetGlobalMass(body, 4.5, center, inertia);
  ASSERT_EQ(write(body), 1);
  EXPECT_EQ(
      log.infos,
      joined({kWholeRange,
              contents({"Nodal Coords", "Global Mass Properties"}),
              {"\nNode info:\n   Count: 1", "\nGlobal body properties:", "Mass          : 4.500000\n",
               "Center of Mass: 1.000000 -2.000000 0.500000", "Inertia Tensor: 1.000000 2.000000 3.000000",
               "                4.000000 5.000000 6.000000", "                7.000000 8.000000 9.000000",
               "\nUnits:\n   Mass:   KILOGRAM\n   Length: METER\n   Time:   SECOND\n   Force:  NEWTON"}}));
}

TEST_F(WriteMessages, OfAnOldLevelDenyElementFaces) {
  for (const char* options : {"82_comp", "81_comp"}) {
    ASSERT_EQ(write(make_sample_body(), options), 1);
    Strings present = kSampleContents;
    present.erase(std::find(present.begin(), present.end(), "Element Faces"));
    const Strings expected = contents(present);
    ASSERT_GT(log.infos.size(), expected.size());
    EXPECT_EQ(Strings(log.infos.begin() + 1, log.infos.begin() + 1 + static_cast<long>(expected.size())),
              expected);
    // Padding to all nodes shows in the counts.
    EXPECT_NE(std::find(log.infos.begin(), log.infos.end(), "\nStress Mode info:\n   Modes: 3\n   Nodes: 4"),
              log.infos.end());
    EXPECT_NE(std::find(log.infos.begin(), log.infos.end(), "\nPre-Stress info:\n   Nodes: 4"),
              log.infos.end());
  }
}

TEST_F(WriteMessages, OfNoOrthoBeginWithTheContents) {
  ASSERT_EQ(write(make_sample_body(), "no_ortho"), 1);
  Strings present = kSampleContents;
  present.erase(std::find(present.begin(), present.end(), "Eigenvalues"));
  present.erase(std::find(present.begin(), present.end(), "Mode Transformation"));
  const Strings expected = contents(present);
  ASSERT_GT(log.infos.size(), expected.size());
  EXPECT_EQ(Strings(log.infos.begin(), log.infos.begin() + static_cast<long>(expected.size())), expected);
}

TEST_F(WriteMessages, TellOfTheMatricesThatTheBodyHeld) {
  // The file has eigenvalues in their place; the line is about the body.
  FmdBody* body = make_nodes({1}, 1);
  add_vectors(body, 0, {1}, {1});
  const Dataset dataset = written(body);
  EXPECT_EQ(dataset.block(12), nullptr);
  const std::string line = "         Generalized Stiffness No";
  EXPECT_NE(std::find(log.infos.begin(), log.infos.end(), line), log.infos.end());
  FmdBody* other = make_sample_body();
  EXPECT_EQ(written(other).block(12), nullptr);
  EXPECT_NE(std::find(log.infos.begin(), log.infos.end(), "         Generalized Stiffness Yes"),
            log.infos.end());
}

}  // namespace

}  // namespace fmdtest
