// Invariants, monitor points and load cases, as the program tells them and as they stand in the dataset.
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "dataset_reader/dataset_reader.h"
#include "tools/fmdtool_test_support.h"
#include "translators/frd_text.h"

using namespace fmdtest;
using dataset_reader::Dataset;
using dataset_reader::read_dataset_file;

namespace {

const std::string bracket = std::string(FMD_EXAMPLES) + "/bracket/";

const std::vector<std::string> loaded_bracket = {bracket + "bracket_free.frd.gz", "--deck",
                                                 bracket + "bracket_loaded.inp", "-o", "loaded.fmd"};

std::vector<std::string> operator+(std::vector<std::string> list, const std::vector<std::string>& more) {
  list.insert(list.end(), more.begin(), more.end());
  return list;
}

const char* const steps =
    "*STEP, NAME=PULL\n*STATIC\n*CLOAD\n7, 1, 2\n2, 3, -1.5\n*END STEP\n"
    "*STEP\n*STATIC\n*CLOAD, OP=NEW\n6, 5, 4\n*END STEP\n";

}  // namespace

TEST_F(FmdtoolTest, TellsInvariantsMonitorPointsAndLoadCasesInATable) {
  write_cube();
  write_file("job.inp", cube_deck() + steps);
  const Outcome outcome =
      translate({"job.frd", "--interface-nodes", "TOP", "--invariants", "fast", "--monitor", "TOP"});
  EXPECT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors.substr(0, outcome.errors.find('\n')),
            "fmdtool: warning: job.inp:36: moments have no part in the modal loads: the results have no "
            "rotations");
  const std::size_t begin = outcome.output.find("  invariants");
  const std::size_t end = outcome.output.find("  file size");
  ASSERT_NE(begin, std::string::npos) << outcome.output;
  // Eight corners of 7.85 / 8 each. 7: (1, 1, 1) and 2: (1, 0, 0).
  EXPECT_EQ(outcome.output.substr(begin, end - begin),
            "  invariants        fast\n"
            "    mass            7.85\n"
            "    first moment    3.925  3.925  3.925\n"
            "    inertia         7.85  -1.9625  -1.9625\n"
            "                    -1.9625  7.85  -1.9625\n"
            "                    -1.9625  -1.9625  7.85\n"
            "  monitor points    4\n"
            "  load case         Step 2: PULL\n"
            "    nodal loads     2\n"
            "    force           2  0  -1.5\n"
            "    moment          0  3.5  -2\n"
            "  load case         Step 3\n"
            "    nodal loads     1\n"
            "    force           0  0  0\n"
            "    moment          0  4  0\n");
  const Dataset dataset = read_dataset_file("job.fmd");
  EXPECT_TRUE(dataset.invariant3 && dataset.invariant4 && dataset.invariant8);
  EXPECT_FALSE(dataset.invariant5 || dataset.invariant9);
}

TEST_F(FmdtoolTest, AddsInvariantsToTheOptionsGivenAndToThoseOfTheEnvironment) {
  write_cube();
  EXPECT_EQ(translate({"job.frd", "--option", "single", "--invariants", "full"}).exit_code, 0);
  const Dataset single = read_dataset_file("job.fmd");
  EXPECT_TRUE(single.single);
  EXPECT_TRUE(single.invariant9.has_value());
  settings.environment["KXI_FMDWRITE_OPTIONS"] = "no_xdr";
  EXPECT_EQ(translate({"job.frd", "--invariants", "full"}).exit_code, 0);
  const Dataset native = read_dataset_file("job.fmd");
  EXPECT_FALSE(native.xdr);
  EXPECT_TRUE(native.invariant9.has_value());
}

TEST_F(FmdtoolTest, WritesMonitorPointsAndLoadsOfTheSample) {
  const Outcome outcome =
      translate(loaded_bracket + std::vector<std::string>{"--json", "--monitor", "P_HOLE_W1"});
  ASSERT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  const auto json = nlohmann::json::parse(outcome.output);
  EXPECT_EQ(json.count("invariants"), 0U);
  EXPECT_EQ(json["monitor_points"],
            nlohmann::json::parse(
                R"([{"name": "N295", "label": "node 295 of P_HOLE_W1", "location": [4.0, 18.0, 69.5]}])"));
  ASSERT_EQ(json["load_cases"].size(), 2U);
  EXPECT_EQ(json["load_cases"][0], nlohmann::json::parse(R"({"label": "Step 2: BOLTS", "nodal_loads": 4,
            "force": [250.0, 40.0, -200.0], "moment": [-6000.0, 32875.0, -1400.0]})"));

  const Dataset dataset = read_dataset_file("loaded.fmd");
  EXPECT_EQ(dataset.nodes->size(), 3833U);
  ASSERT_EQ(dataset.monitor_points->size(), 1U);
  const auto& point = (*dataset.monitor_points)[0];
  EXPECT_EQ(dataset_reader::trimmed(point.name), "N295");
  ASSERT_EQ(point.displacement.size(), 60U);
  ASSERT_EQ(dataset.loads->cases.size(), 2U);
  ASSERT_EQ(dataset.nodal_loads->size(), 2U);
  EXPECT_EQ((*dataset.nodal_loads)[1].size(), 160U);
  std::size_t place = 0;
  while ((*dataset.nodes)[place].id != 295) ++place;
  for (std::size_t m = 0; m < 20; ++m) {
    for (std::size_t k = 0; k < 3; ++k) {
      EXPECT_EQ(point.displacement[20 * k + m], dataset.mode_shapes->at(m, place)[k]);
    }
  }
  for (std::size_t c = 0; c < 2; ++c) {
    EXPECT_EQ(dataset.loads->cases[c].processed, 0);
    for (std::size_t m = 0; m < 20; ++m) {
      double sum = 0.0;
      for (const auto& load : (*dataset.nodal_loads)[c]) {
        sum +=
            dataset.mode_shapes->at(
                m, static_cast<std::size_t>(load.node_index))[static_cast<std::size_t>(load.coordinate - 1)] *
            load.value;
      }
      EXPECT_NEAR(dataset.loads->cases[c].values[m], sum, 1e-9);
    }
  }
}

// The toolkit brings loads of rigid modes to force and moment by the nodal masses. They are lumped, while the
// modes are orthonormal in those of the analysis: the two differ by half a percent in the inertia.
TEST_F(FmdtoolTest, WritesInvariantsOfTheSampleAndItsResultantLoads) {
  const Outcome outcome = translate(
      loaded_bracket + std::vector<std::string>{"--json", "--invariants", "full", "--interface-nodes",
                                                "P_HOLE_B1,P_HOLE_B2,P_HOLE_W1"});
  ASSERT_EQ(outcome.exit_code, 0) << outcome.errors;
  EXPECT_EQ(outcome.errors, "");
  const auto json = nlohmann::json::parse(outcome.output);
  const auto reference = nlohmann::json::parse(std::ifstream(bracket + "reference.json"));
  const auto& lumped = reference["hrz_lumped"];
  const double mass = lumped["mass"].get<double>();
  const Dataset dataset = read_dataset_file("loaded.fmd");
  EXPECT_EQ(json["invariants"]["set"], "full");
  EXPECT_NEAR(json["invariants"]["mass"].get<double>() / mass, 1.0, 1e-9);
  EXPECT_EQ(json["invariants"]["mass"], *dataset.invariant1);
  for (std::size_t k = 0; k < 3; ++k) {
    const double moment = mass * lumped["com"][k].get<double>();
    EXPECT_NEAR(json["invariants"]["first_moment"][k].get<double>() / moment, 1.0, 1e-6);
    EXPECT_EQ(json["invariants"]["first_moment"][k], (*dataset.invariant2)[k]);
    for (std::size_t j = 0; j < 3; ++j) {
      const double inertia = lumped["inertia_about_origin"][k][j].get<double>();
      EXPECT_NEAR(json["invariants"]["inertia"][k][j].get<double>(), inertia, 1e-6);
      EXPECT_EQ(json["invariants"]["inertia"][k][j], (*dataset.invariant7)[3 * k + j]);
    }
  }
  EXPECT_TRUE(dataset.invariant3 && dataset.invariant4 && dataset.invariant5);
  EXPECT_TRUE(dataset.invariant8 && dataset.invariant9);

  // Nodes inside the part are gone; those under load stay.
  EXPECT_EQ(json["nodes"], dataset.nodes->size());
  EXPECT_LT(dataset.nodes->size(), 1000U);
  EXPECT_EQ(json["load_cases"][1]["nodal_loads"], 160);
  EXPECT_NEAR(json["load_cases"][1]["force"][1].get<double>(), 120.0, 1e-12);
  const double expected[] = {250, 40, -200, -6000, 32875, -1400};
  ASSERT_EQ(dataset.loads->cases.size(), 2U);
  EXPECT_EQ(dataset.loads->cases[0].processed, 1);
  for (std::size_t k = 0; k < 6; ++k) {
    EXPECT_NEAR(dataset.loads->cases[0].values[k], expected[k], k < 3 ? 1.5 : 200.0) << k;
  }
}
