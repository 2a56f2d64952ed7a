// Craig-Bampton modes by the program: from the matrices to a dataset of orthonormal modes.
#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <nlohmann/json.hpp>

#include "calculix/translate.h"
#include "dataset_reader/dataset_reader.h"
#include "tools/fmdtool_test_support.h"
#include "translators/frd_text.h"
#include "translators/lapack.h"
#include "translators/matrix_text.h"

using namespace fmdtest;
using dataset_reader::Dataset;
using dataset_reader::read_dataset_file;

namespace {

const std::string bracket = std::string(FMD_EXAMPLES) + "/bracket/";
const std::vector<std::string> bracket_matrices = {"--matrices", bracket + "bracket_matrix.sti.gz",
                                                   bracket + "bracket_matrix.mas.gz",
                                                   bracket + "bracket_matrix.dof.gz"};
const std::vector<std::string> cube_matrices = {"--matrices", "job.sti", "job.mas", "job.dof"};

std::vector<std::string> joined(std::vector<std::string> first, const std::vector<std::string>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

// Eigenvalues of the reduced pair by LAPACK.
std::vector<double> expected_eigenvalues(const std::vector<std::string>& interfaces) {
  calculix::Job job;
  job.deck = bracket + "bracket_matrix.inp";
  job.reduction.emplace();
  job.reduction->files = {bracket_matrices[1], bracket_matrices[2], bracket_matrices[3]};
  for (const std::string& text : interfaces) {
    job.reduction->interfaces.push_back(calculix::parse_interface(text));
  }
  job.reduction->fixed_modes = 20;
  const calculix::Model model = calculix::read_model(job, nullptr);
  return finite_eigenvalues(model.reduction->model.stiffness, model.reduction->model.mass);
}

bool contains(const std::string& text, const std::string& piece) {
  return text.find(piece) != std::string::npos;
}

}  // namespace

class FmdtoolReductionTest : public FmdtoolTest {
 protected:
  Outcome reduce_bracket(const std::string& kind, const std::vector<std::string>& more) const {
    std::vector<std::string> arguments = {bracket + "bracket_free.frd.gz", "--deck",
                                          bracket + "bracket_matrix.inp"};
    arguments = joined(arguments, bracket_matrices);
    arguments = joined(arguments, {"--interface", kind + ":HOLE_B1", "--interface", kind + ":HOLE_B2",
                                   "--fixed-modes", "20", "-o", "bracket.fmd"});
    return translate(joined(arguments, more));
  }

  // The modes of the dataset are those of the reduced pair.
  static void expect_eigenvalues(const std::string& kind) {
    const Dataset dataset = read_dataset_file("bracket.fmd");
    const auto expected = expected_eigenvalues({kind + ":HOLE_B1", kind + ":HOLE_B2"});
    ASSERT_EQ(expected.size(), 32U);
    ASSERT_EQ(dataset.eigenvalues->size(), 32U);
    for (std::size_t i = 0; i < 32; ++i) {
      const auto& mode = (*dataset.eigenvalues)[i];
      EXPECT_EQ(mode.generalized_mass, 1.0);
      if (i < 6) {
        EXPECT_LE(std::fabs(mode.eigenvalue), 1e-3 * (*dataset.eigenvalues)[6].eigenvalue) << i;
        EXPECT_LE(std::fabs(mode.hertz), 1e-3 * (*dataset.eigenvalues)[6].hertz) << i;
      } else {
        EXPECT_LE(std::fabs(mode.eigenvalue / expected[i] - 1.0), 1e-8) << i;
      }
    }
  }

  void write_cube_job() {
    write_cube();
    write_cube_matrices();
  }

  // Fails with this line, and what was there stays as it was.
  void expect_failure(const std::vector<std::string>& more, const std::string& line) {
    const auto before = files();
    expect_one_line(translate(joined(joined({"job.frd"}, cube_matrices), more)), line);
    EXPECT_EQ(files(), before);
  }
};

TEST_F(FmdtoolReductionTest, MeetsTheFreeFrequenciesOfTheSampleWithAveragingInterfaces) {
  const Outcome outcome = reduce_bracket("average", {"--json"});
  ASSERT_EQ(outcome.exit_code, 0) << outcome.errors;
  const auto json = nlohmann::json::parse(outcome.output);
  EXPECT_EQ(json["reduction"]["constraint_modes"], 12);
  EXPECT_EQ(json["reduction"]["fixed_interface_modes"], 20);
  EXPECT_EQ(json["reduction"]["interfaces"][1]["reference_node"], 3835);
  EXPECT_EQ(json["interface_nodes"], 2);
  const auto& comparison = json["comparison"];
  EXPECT_EQ(comparison["rigid_modes"], 6);
  EXPECT_EQ(comparison["rigid_modes_of_results"], 6);
  ASSERT_EQ(comparison["modes"].size(), 14U);
  for (std::size_t i = 0; i < 8; ++i) {
    EXPECT_EQ(comparison["modes"][i]["number"], 7 + i);
    EXPECT_LE(std::fabs(comparison["modes"][i]["difference"].get<double>()), i < 3 ? 0.0005 : 0.005) << i;
  }
  expect_eigenvalues("average");
}

TEST_F(FmdtoolReductionTest, MeetsTheReducedPairOfTheSampleWithRigidInterfaces) {
  const Outcome outcome = reduce_bracket("rigid", {});
  ASSERT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "\n  beside the results\n  rigid body modes: 6, up to "));
  EXPECT_TRUE(contains(outcome.output, "  component modes   12 of constraints, 20 with held interfaces\n"));
  EXPECT_TRUE(contains(outcome.output, "  interface         rigid HOLE_B1, 80 nodes, moves node 3834 at "));
  expect_eigenvalues("rigid");
}

TEST_F(FmdtoolReductionTest, ExplainsItsOptions) {
  const Outcome help = translate({"--help"});
  for (const char* piece : {"--matrices JOB.sti JOB.mas JOB.dof", "--interface KIND:NODES[@X,Y,Z]",
                            "--fixed-modes N", "MATRIXSTORAGE"}) {
    EXPECT_TRUE(contains(help.output, piece)) << piece;
  }
}

TEST_F(FmdtoolReductionTest, NeedsNoResults) {
  write_cube_job();
  std::filesystem::remove("job.frd");
  const Outcome outcome = translate(
      joined(cube_matrices, {"--interface", "average:TOP", "--fixed-modes", "3", "--option", "no_ortho"}));
  ASSERT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_EQ(outcome.output.substr(0, outcome.output.find("  units")),
            "unit cube\n"
            "  matrices          job.sti\n"
            "  component modes   6 of constraints, 3 with held interfaces\n"
            "  interface         average TOP, 4 nodes, moves node 9 at 0.5  0.5  1\n"
            "  deck              job.inp\n"
            "  dataset           job.fmd\n");
  EXPECT_FALSE(contains(outcome.output, "beside the results"));
}

// Without orthonormalisation the dataset has both full matrices, and modes without frequencies.
TEST_F(FmdtoolReductionTest, WritesFullMatricesWhenModesStayAsTheyAre) {
  write_cube_job();
  const Outcome outcome =
      translate(joined(joined({"job.frd"}, cube_matrices),
                       {"--interface", "average:TOP", "--fixed-modes", "3", "--option", "no_ortho"}));
  ASSERT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_TRUE(contains(outcome.output, "[Hz]\n     1    -\n     2    -\n")) << outcome.output;
  EXPECT_FALSE(contains(outcome.output, "beside the results"));
  const Dataset dataset = read_dataset_file("job.fmd");
  ASSERT_TRUE(dataset.generalized_mass);
  EXPECT_EQ(dataset.generalized_mass->entries.size(), 45U);
  EXPECT_EQ(dataset.generalized_stiffness->entries.size(), 45U);
}

TEST_F(FmdtoolReductionTest, RefusesABadCommandLine) {
  write_cube_job();
  const std::vector<std::vector<std::string>> lines = {
      {},
      {"--matrices", "job.sti", "job.mas"},
      {"job.frd", "--interface", "average:TOP"},
      {"job.frd", "--fixed-modes", "3"},
      joined(cube_matrices, {"--interface", "TOP"}),
      joined(cube_matrices, {"--interface", "nodes:1@0,0,0"}),
      joined(cube_matrices, {"--interface", "average:TOP@0,0"}),
      joined(cube_matrices, {"--interface", "average:TOP", "--fixed-modes", "-1"}),
      joined(cube_matrices, {"--interface", "average:TOP", "--fixed-modes", "many"})};
  const auto before = files();
  for (const auto& line : lines) {
    const Outcome outcome = translate(line);
    EXPECT_NE(outcome.exit_code, 0);
    EXPECT_LT(outcome.exit_code, 128);
    EXPECT_NE(outcome.errors, "");
  }
  EXPECT_EQ(files(), before);
  EXPECT_TRUE(contains(translate(lines[4]).errors, "expected nodes:SET, rigid:SET or average:SET"));
}

TEST_F(FmdtoolReductionTest, NamesWhatIsWrongAndLeavesNoFile) {
  write_cube_job();
  const std::string stiffness = bytes_of("job.sti");
  const std::vector<std::string> top = {"--interface", "average:TOP", "--fixed-modes", "3"};
  write_file("job.sti", stiffness.substr(0, stiffness.size() - 5));
  expect_failure(top, "job.sti:300: expected a whole line, the file is cut off");
  write_file("job.sti", exchange(stiffness, "1 2 ", "2 1 "));
  expect_failure(top, "job.sti:2: expected an entry of the upper triangle, found row 2 in column 1");
  write_file("job.sti", stiffness);
  const std::string dofs = bytes_of("job.dof");
  write_file("job.dof", exchange(dofs, "8.3\n", ""));
  expect_failure({"--interface", "rigid:1,2,3"},
                 "job.sti:277: expected a column from 1 to 23, the number of degrees of freedom, found 24");
  write_file("job.dof", exchange(dofs, "1.1\n", "1.4\n"));
  expect_failure(top, "job.dof:1: expected node.direction with a direction from 1 to 3, found \"1.4\"");
  write_file("job.dof", dofs);
  expect_failure(
      {"--interface", "nodes:1"},
      "job.sti: the stiffness matrix is singular with all interfaces held: the interfaces do not hold "
      "the part, or a piece of it is loose");
  expect_failure(
      {"--interface", "rigid:NONE"},
      "job.inp: expected a node set of the deck or a file for the interface, found neither of the name "
      "\"NONE\" (sets: CORNER, NALL, TOP)");
  expect_failure(joined(top, {"-o", "job.mas"}),
                 "job.mas: expected an output file that is not an input file");
  EXPECT_EQ(bytes_of("job.sti"), stiffness);
  std::filesystem::remove("job.mas");
  expect_failure(top, "job.mas: cannot be opened: No such file or directory");
}
