// From matrices, deck and interfaces to a model and a body.
#include "calculix/reduction.h"

#include <gtest/gtest.h>

#include "calculix/translate.h"
#include "support/session.h"
#include "translators/frd_text.h"
#include "translators/matrix_text.h"

using calculix::Job;
using calculix::Model;
using namespace fmdtest;

class ReductionTest : public SessionTest {
 protected:
  ReductionTest() {
    write_file("job.frd", frd_text(cube()));
    write_file("job.inp", cube_deck());
    write_cube_matrices();
  }

  static Job job(const std::vector<std::string>& interfaces, int fixed_modes = 3) {
    Job result;
    result.results = "job.frd";
    result.deck = "job.inp";
    result.reduction.emplace();
    result.reduction->files = {"job.sti", "job.mas", "job.dof"};
    for (const std::string& text : interfaces) {
      result.reduction->interfaces.push_back(calculix::parse_interface(text));
    }
    result.reduction->fixed_modes = fixed_modes;
    return result;
  }

  static Model model(const std::vector<std::string>& interfaces, int fixed_modes = 3) {
    return calculix::read_model(job(interfaces, fixed_modes), nullptr);
  }

  static std::string error_of(const std::vector<std::string>& interfaces, int fixed_modes = 3) {
    return input_error_of([&] { model(interfaces, fixed_modes); });
  }
};

TEST_F(ReductionTest, MakesANodeAtTheReferencePointOfEachGroup) {
  const Model found = model({"average:TOP", "nodes:1", "rigid:3,4,2@1,2,3"});
  ASSERT_TRUE(found.reduction);
  const auto& attachments = found.reduction->attachments;
  ASSERT_EQ(attachments.size(), 3U);
  EXPECT_EQ(attachments[0].ids, (std::vector<int>{5, 6, 7, 8}));
  EXPECT_EQ(attachments[0].reference_node, 9);
  EXPECT_EQ(attachments[0].reference, (calculix::Point{0.5, 0.5, 1}));
  EXPECT_EQ(attachments[1].reference_node, 0);
  EXPECT_EQ(attachments[1].first_mode, 6);
  EXPECT_EQ(attachments[1].coordinates, 3);
  EXPECT_EQ(attachments[2].reference_node, 10);
  EXPECT_EQ(attachments[2].reference, (calculix::Point{1, 2, 3}));
  EXPECT_EQ(attachments[2].first_mode, 9);
  EXPECT_EQ(found.contents.mesh.node_ids.size(), 10U);
  EXPECT_EQ(found.masses[8], 0.0);
  EXPECT_EQ(found.interface_ids, (std::vector<int>{9, 1, 10}));
  EXPECT_EQ(found.contents.modes.size(), 6U + 3U + 6U + 3U);
  EXPECT_EQ(found.results_hertz, (std::vector<double>{0.0, 12.5}));
  EXPECT_TRUE(found.notes.empty());
}

TEST_F(ReductionTest, SendsTheShapesOnNodesAndReferenceNodes) {
  const Model found = model({"rigid:TOP@0,0,3", "nodes:1"});
  int sent = 0;
  calculix::send_mode_vectors(*found.reduction, found.contents, [&](const calculix::ModeVector& vector) {
    ASSERT_EQ(vector.mode, &found.contents.modes[static_cast<std::size_t>(sent)]);
    ASSERT_EQ(vector.nodes.size(), 9U);
    const double* at_five = vector.values.data() + 6 * 4;
    const double* at_six = vector.values.data() + 6 * 5;
    const double* at_reference = vector.values.data() + 6 * 8;
    for (int k = 0; k < 6; ++k) EXPECT_EQ(at_reference[k], k == sent ? 1.0 : 0.0);
    // A turn about y at the reference point (0, 0, 3) moves node 6 at (1, 0, 1) by (0, 1, 0) x (1, 0, -2).
    if (sent == 4) {
      EXPECT_NEAR(at_six[0], -2.0, 1e-15);
      EXPECT_NEAR(at_six[1], 0.0, 1e-15);
      EXPECT_NEAR(at_six[2], -1.0, 1e-15);
      EXPECT_EQ(at_six[4], 0.0);
    }
    if (sent >= 6) {
      EXPECT_EQ(at_five[0], 0.0);
    }
    EXPECT_EQ(vector.values[0], sent == 6 ? 1.0 : 0.0);
    ++sent;
  });
  EXPECT_EQ(sent, 6 + 3 + 3);
}

TEST_F(ReductionTest, FillsABodyWithFullMatrices) {
  const Model found = model({"average:TOP", "nodes:1"}, 4);
  FmdBody* body = calculix::make_body(found, nullptr);
  ASSERT_NE(body, nullptr);
  const auto& reduced = found.reduction->model;
  ASSERT_EQ(FMD_ModeCount(body), 13);
  std::vector<double> mass(13 * 13), stiffness(13 * 13);
  ASSERT_EQ(FMD_GenMassFull(body, mass.data(), 13), 1);
  ASSERT_EQ(FMD_GenStiffFull(body, stiffness.data(), 13), 1);
  EXPECT_EQ(mass, reduced.mass);
  EXPECT_EQ(stiffness, reduced.stiffness);
  EXPECT_EQ(FMD_NodeCount(body), 9);
  EXPECT_EQ(FMD_NodalMass(body, 9), 0.0);
  std::vector<double> shape(27), turn(27);
  for (int mode = 1; mode <= 13; ++mode) {
    ASSERT_EQ(FMD_Mode(body, mode, 0, shape.data(), 0), 1);
    ASSERT_EQ(FMD_Mode(body, mode, 0, turn.data(), 1), 1);
    for (std::size_t i = 0; i < 24; ++i) EXPECT_EQ(shape[i], reduced.vector(mode - 1)[i]);
    for (std::size_t i = 0; i < 24; ++i) EXPECT_EQ(turn[i], 0.0);
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_EQ(shape[24 + k], mode == static_cast<int>(k) + 1 ? 1.0 : 0.0);
      EXPECT_EQ(turn[24 + k], mode == static_cast<int>(k) + 4 ? 1.0 : 0.0);
    }
  }
  int count = 0;
  int* ids = FMD_InterfaceNodeIDs(body, &count);
  ASSERT_EQ(count, 2);
  EXPECT_EQ(ids[0], 9);
  EXPECT_EQ(ids[1], 1);
  FMD_FreeMemory(ids);
  char title[128], name[128], type[16], comments[3][80];
  FMD_Header(body, title, nullptr, name, type, comments[0], comments[1], comments[2]);
  EXPECT_STREQ(name, "job.sti");
  EXPECT_STREQ(comments[0], "Craig-Bampton modes from matrices of CalculiX");
}

TEST_F(ReductionTest, DividesTheStiffnessByTheFactorOfUnitsThatAreNotConsistent) {
  Job kilograms = job({"average:TOP"});
  kilograms.units = {"KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"};
  const Model found = calculix::read_model(kilograms, nullptr);
  FmdBody* body = calculix::make_body(found, nullptr);
  ASSERT_NE(body, nullptr);
  std::vector<double> stiffness(9 * 9);
  ASSERT_EQ(FMD_GenStiffFull(body, stiffness.data(), 9), 1);
  EXPECT_NE(FMD_UCF(body), 1.0);
  EXPECT_NEAR(stiffness[0] * FMD_UCF(body) / found.reduction->model.stiffness[0], 1.0, 1e-15);
}

TEST_F(ReductionTest, GivesMonitorPointsAndLoadsOfTheComponentModes) {
  write_file("job.inp", cube_deck() + "*STEP\n*STATIC\n*CLOAD\n7, 2, 3.\n*END STEP\n");
  Job with_monitor = job({"rigid:1,2,3,4"});
  with_monitor.monitor_nodes = {"CORNER"};
  const Model found = calculix::read_model(with_monitor, nullptr);
  FmdBody* body = calculix::make_body(found, nullptr);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_GetMonitorPointCount(body), 1);
  int length = 0;
  double* load = FMD_GetModalLoad(body, 0, &length);
  ASSERT_NE(load, nullptr);
  EXPECT_EQ(length, 9);
  for (int m = 0; m < 9; ++m) {
    EXPECT_EQ(load[m], 3.0 * found.reduction->model.vector(m)[3 * 6 + 1]) << m;
  }
  FMD_FreeMemory(load);
}

TEST_F(ReductionTest, TakesTheMeshOfTheDeckWithoutResults) {
  Job without = job({"average:TOP"});
  without.results.clear();
  const Model found = calculix::read_model(without, nullptr);
  const Model with = model({"average:TOP"});
  EXPECT_EQ(found.contents.mesh.node_ids, with.contents.mesh.node_ids);
  EXPECT_EQ(found.contents.mesh.points, with.contents.mesh.points);
  EXPECT_EQ(found.masses, with.masses);
  EXPECT_EQ(found.reduction->model.stiffness, with.reduction->model.stiffness);
  EXPECT_TRUE(found.results_hertz.empty());
  EXPECT_EQ(found.title, "unit cube");
}

TEST_F(ReductionTest, KeepsAtRestWhatTheJobHolds) {
  Structure structure = cube_structure();
  auto dofs = cube_dofs();
  DenseMatrix stiffness(18), mass(18);
  for (int i = 0; i < 18; ++i) {
    mass.at(i, i) = structure.mass.at(i + 6, i + 6);
    for (int j = 0; j < 18; ++j) stiffness.at(i, j) = structure.stiffness.at(i + 6, j + 6);
  }
  dofs.erase(dofs.begin(), dofs.begin() + 6);
  write_file("job.sti", matrix_text(stiffness));
  write_file("job.mas", matrix_text(mass));
  write_file("job.dof", dof_text(dofs));
  const Model found = model({"average:TOP"});
  ASSERT_EQ(found.notes.size(), 1U);
  EXPECT_STREQ(found.notes[0].what(),
               "job.dof: lacks 6 degree(s) of freedom of the mesh, which the job holds: they stay at rest");
  calculix::send_mode_vectors(*found.reduction, found.contents, [&](const calculix::ModeVector& vector) {
    for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(vector.values[i], 0.0);
    EXPECT_NE(vector.values[6 * 6], 0.0);
  });
  EXPECT_EQ(error_of({"nodes:1"}),
            "job.dof: interface 1: expected three degrees of freedom of node 1, the matrices lack 1.1");
}

TEST_F(ReductionTest, TellsOfAMassThatIsNotThatOfTheElements) {
  Job heavy = job({"average:TOP"});
  heavy.density = 15.7;
  const Model found = calculix::read_model(heavy, nullptr);
  ASSERT_EQ(found.notes.size(), 1U);
  EXPECT_STREQ(
      found.notes[0].what(),
      "job.mas: has a mass of 7.850000, the elements have 15.700000: are mesh, density and matrices of one "
      "job?");
}

TEST_F(ReductionTest, TellsWhatIsWrongWithAnInterface) {
  EXPECT_EQ(error_of({"average:TOP", "nodes:1,6"}),
            "job.dof: interface 1,6: expected each node in one interface, found node 6 again");
  EXPECT_EQ(error_of({"average:TOP", "rigid:TOP"}),
            "job.dof: interface TOP: expected each node in one interface, found node 5 again");
  EXPECT_EQ(error_of({"nodes:77"}), "job.frd: expected node 77 of an interface");
  EXPECT_EQ(error_of({"rigid:1,2"}),
            "job.dof: interface 1,2: expected three nodes or more that do not lie on a line");
  EXPECT_EQ(error_of({"rigid:NO"}),
            "job.inp: expected a node set of the deck or a file for the interface, found neither of the name "
            "\"NO\" "
            "(sets: CORNER, NALL, TOP)");
  EXPECT_EQ(
      error_of({"nodes:1"}),
      "job.sti: the stiffness matrix is singular with all interfaces held: the interfaces do not hold the "
      "part, or a piece of it is loose");
  EXPECT_EQ(error_of({"rigid:TOP"}, 13),
            "job.sti: the part with held interfaces has 12 modes of finite frequency, 13 were asked for");
}

TEST_F(ReductionTest, TellsOfMatricesOfAnotherMesh) {
  write_file("job.dof", exchange(dof_text(cube_dofs()), "8.3\n", "9.3\n"));
  EXPECT_EQ(error_of({"average:TOP"}),
            "job.dof:24: expected a node of job.frd, found unknown node 9: the matrices do not belong to "
            "this mesh");
}

TEST_F(ReductionTest, LeavesNoBodyWhenAMatrixIsBad) {
  write_file("job.mas", "1 1 0.\n");
  EXPECT_EQ(error_of({"average:TOP"}),
            "job.mas:1: expected entries up to the diagonal of column 24, the number of degrees of freedom, "
            "the file "
            "ends before that of column 2");
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
}
