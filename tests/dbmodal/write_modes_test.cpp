// Eigenvalues, mode vectors, their node selection and their statistics in the file.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

using dataset_reader::ModeVectors;
using Six = std::array<double, 6>;

const Six kZeros = {0, 0, 0, 0, 0, 0};

class WriteModes : public WriteTest {};

class WriteModesInAllForms : public WriteTest, public ::testing::WithParamInterface<WordCase> {
 protected:
  int level() const { return static_cast<int>(GetParam().word & 0xFF); }
};

INSTANTIATE_TEST_SUITE_P(Of, WriteModesInAllForms, ::testing::ValuesIn(kWordCases),
                         [](const auto& form) { return name_of(form.param); });

bool contains(const std::vector<int>& list, int value) {
  return std::find(list.begin(), list.end(), value) != list.end();
}

// The vectors of a type over a block's nodes, zero where the body has none.
void expect_vectors(const ModeVectors& block, int type, const std::vector<int>& nodes,
                    const std::vector<int>& holders) {
  ASSERT_EQ(block.node_ids, nodes);
  ASSERT_EQ(block.mode_count, static_cast<int>(kSampleModes.size()));
  for (std::size_t mode = 0; mode < kSampleModes.size(); ++mode) {
    for (std::size_t node = 0; node < nodes.size(); ++node) {
      EXPECT_EQ(block.at(mode, node), contains(holders, nodes[node])
                                          ? sample_vector(type, kSampleModes[mode], nodes[node])
                                          : kZeros)
          << mode << ' ' << node;
    }
  }
}

void expect_words(const ModeVectors& block, int level) {
  if (level == 10) {
    EXPECT_TRUE(block.words.empty());
  } else if (level == 20) {
    EXPECT_EQ(block.words.size(), 3U);
  } else {
    EXPECT_EQ(block.words, (std::vector<std::int32_t>{1, 2, 3}));
  }
}

TEST_P(WriteModesInAllForms, VectorsOfShapeStressAndStrain) {
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  const bool padded = level() < 60;
  expect_vectors(*dataset.mode_shapes, 0, kSampleNodes, kSampleNodes);
  expect_vectors(*dataset.stress, 1, padded ? kSampleNodes : kSampleStressNodes, kSampleStressNodes);
  expect_vectors(*dataset.strain, 2, padded ? kSampleNodes : kSampleStrainNodes, kSampleStrainNodes);
  expect_words(*dataset.mode_shapes, level());
  expect_words(*dataset.stress, level());
  expect_words(*dataset.strain, level());
}

TEST_P(WriteModesInAllForms, PrestressAndPrestrainOverTheNodesOfStressAndStrain) {
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  for (std::size_t i = 0; i < dataset.stress->node_ids.size(); ++i) {
    const bool is_set = dataset.stress->node_ids[i] == 20;
    EXPECT_EQ(dataset.prestress->at(i), is_set ? sample_prestate(1, 20) : kZeros) << i;
  }
  for (std::size_t i = 0; i < dataset.strain->node_ids.size(); ++i) {
    const bool is_set = dataset.strain->node_ids[i] == 10;
    EXPECT_EQ(dataset.prestrain->at(i), is_set ? sample_prestate(2, 10) : kZeros) << i;
  }
}

TEST_P(WriteModesInAllForms, EigenvaluesNumberedFromOne) {
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  ASSERT_EQ(dataset.eigenvalues->size(), 3U);
  const auto stored = [&](double value) {
    return GetParam().single ? static_cast<double>(static_cast<float>(value)) : value;
  };
  for (std::size_t i = 0; i < 3; ++i) {
    const dataset_reader::Eigenvalue& mode = dataset.eigenvalues->at(i);
    EXPECT_EQ(mode.mode, static_cast<int>(i) + 1);
    EXPECT_EQ(mode.eigenvalue, stored(stiffness_of(kSampleHertz[i])));
    EXPECT_EQ(mode.hertz, kSampleHertz[i]);
    EXPECT_EQ(mode.radians, stored(6.28318530718 * kSampleHertz[i]));
    EXPECT_EQ(mode.generalized_mass, 1.0);
    EXPECT_EQ(mode.generalized_stiffness, stored(stiffness_of(kSampleHertz[i])));
  }
  EXPECT_FALSE(dataset.generalized_mass.has_value());
  EXPECT_FALSE(dataset.generalized_stiffness.has_value());
}

TEST_P(WriteModesInAllForms, TransformationIsTheIdentityUnderTheOldNumbers) {
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  EXPECT_EQ(dataset.transformation->mode_numbers, kSampleModes);
  EXPECT_EQ(dataset.transformation->matrix, (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

double length(double x, double y, double z) {
  return x * x + y * y + z * z;
}

// Von Mises measure of three normal and three shear components, by its differences.
double von_mises(const Six& s) {
  return 0.5 * length(s[0] - s[1], s[1] - s[2], s[2] - s[0]) + 3.0 * length(s[3], s[4], s[5]);
}

// Node and value of the first largest measure.
template <typename Measure>
std::pair<int, double> largest(int type, int mode, const std::vector<int>& nodes, Measure measure) {
  std::pair<int, double> best = {0, 0.0};
  for (const int node : nodes) {
    const double value = measure(sample_vector(type, mode, node));
    if (value > best.second) best = {node, value};
  }
  return {best.first, std::sqrt(best.second)};
}

TEST_P(WriteModesInAllForms, StatisticsOfEveryMode) {
  FmdBody* body = make_sample_body();
  const Dataset dataset = written(body, GetParam().options);
  ASSERT_EQ(dataset.statistics->size(), 3U);
  const double tolerance = GetParam().single ? 1e-6 : 1e-14;
  for (std::size_t i = 0; i < 3; ++i) {
    const int mode = kSampleModes[i];
    const auto shift = [](const Six& v) { return length(v[0], v[1], v[2]); };
    const auto turn = [](const Six& v) { return length(v[3], v[4], v[5]); };
    const std::pair<int, double> expected[] = {
        largest(0, mode, kSampleNodes, shift), largest(0, mode, kSampleNodes, turn),
        largest(1, mode, kSampleStressNodes, von_mises), largest(2, mode, kSampleStrainNodes, von_mises)};
    for (std::size_t k = 0; k < 4; ++k) {
      EXPECT_EQ(dataset.statistics->at(i).nodes[k], expected[k].first) << i << ' ' << k;
      EXPECT_NEAR(dataset.statistics->at(i).values[k], expected[k].second, tolerance * expected[k].second)
          << i << ' ' << k;
    }
    int node = 0;
    double value = 0.0;
    EXPECT_EQ(FMD_GetMaxModeDisplacement(body, static_cast<int>(i) + 1, &node, &value), 1);
    EXPECT_EQ(node, expected[0].first);
    EXPECT_NEAR(value, expected[0].second, 1e-14 * expected[0].second);
  }
}

TEST_F(WriteModes, OfEqualMaximaTheFirstNodeCounts) {
  FmdBody* body = make_nodes({4, 3, 5}, 1);
  for (const int node : {4, 3, 5}) {
    FMD_SetMode(body, 1, node, 0, 1, -2, 2, 0.5, 0, 0);
    FMD_SetMode(body, 1, node, 1, 0, 0, 0, 2, 0, 0);
    FMD_SetMode(body, 1, node, 2, 3, 0, 0, 0, 0, 0);
  }
  add_frequency(body, 1, 5.0);
  const Dataset dataset = written(body);
  const auto& statistics = dataset.statistics->at(0);
  EXPECT_EQ(std::vector<std::int32_t>(statistics.nodes.begin(), statistics.nodes.begin() + 4),
            (std::vector<std::int32_t>{4, 4, 4, 4}));
  EXPECT_EQ(statistics.values[0], 3.0);
  EXPECT_EQ(statistics.values[1], 0.5);
  EXPECT_DOUBLE_EQ(statistics.values[2], 2.0 * std::sqrt(3.0));
  EXPECT_EQ(statistics.values[3], 3.0);
}

TEST_F(WriteModes, PaddedNodesTakeNoPartInTheMaxima) {
  FmdBody* body = make_nodes({1, 2}, 1);
  FMD_SetMode(body, 1, 1, 0, 1, 0, 0, 0, 0, 0);
  // A hydrostatic state: its von Mises value is zero, and so is that of a node without data.
  FMD_SetMode(body, 1, 2, 1, 5, 5, 5, 0, 0, 0);
  add_frequency(body, 1, 5.0);
  const Dataset dataset = written(body, "full_str");
  EXPECT_EQ(dataset.stress->node_ids, (std::vector<std::int32_t>{1, 2}));
  EXPECT_EQ(dataset.statistics->at(0).nodes[2], 0);
  EXPECT_EQ(dataset.statistics->at(0).values[2], 0.0);
  EXPECT_EQ(log.warnings, Strings{});
}

TEST_F(WriteModes, ModesOfZerosAreReported) {
  FmdBody* body = make_nodes({1, 2}, 2);
  for (const int mode : {1, 2}) {
    FMD_SetMode(body, mode, 1, 0, 0, 0, 0, 0, 0, mode == 1 ? 0.0 : 1.0);
    FMD_SetMode(body, mode, 2, 1, 0, 0, 0, 0, 0, mode == 2 ? 0.0 : 1.0);
    FMD_SetMode(body, mode, 2, 2, mode == 2 ? 0.0 : 1.0, 0, 0, 0, 0, 0);
    add_frequency(body, mode, 5.0 * mode);
  }
  const Dataset dataset = written(body);
  EXPECT_EQ(log.warnings, (Strings{"The mode shape for mode 1 has only zero entries\n",
                                   "The modal stresses for mode 2 have only zero entries\n",
                                   "The modal strains for mode 2 have only zero entries\n"}));
  EXPECT_EQ(dataset.statistics->at(0).nodes[0], 0);
  EXPECT_EQ(dataset.statistics->at(1).nodes[1], 1);
}

// A body whose stress is zero at node 2 but for the pre-stress, and at node 3 altogether.
FmdBody* make_sparse_body() {
  FmdBody* body = make_nodes({1, 2, 3, 4, 5}, 2);
  for (const int mode : {1, 2}) {
    add_vectors(body, 0, {mode}, {1, 2, 3, 4, 5});
    for (const int node : {4, 3, 2, 1}) {
      const double value = node == 1 || (node == 4 && mode == 2) ? 1.5 : 0.0;
      FMD_SetMode(body, mode, node, 1, 0, 0, 0, 0, 0, value);
      FMD_SetMode(body, mode, node, 2, value, 0, 0, 0, 0, 0);
    }
    add_frequency(body, mode, 5.0 * mode);
  }
  FMD_SetPreStressVec(body, 2, sample_prestate(1, 2).data());
  return body;
}

TEST_F(WriteModes, SparseSelectionKeepsNodesWithAnyValue) {
  const Dataset dataset = written(make_sparse_body(), "sparse_str");
  EXPECT_EQ(dataset.stress->node_ids, (std::vector<std::int32_t>{4, 2, 1}));
  EXPECT_EQ(dataset.stress->at(0, 0), kZeros);
  EXPECT_EQ(dataset.stress->at(1, 0), (Six{0, 0, 0, 0, 0, 1.5}));
  EXPECT_EQ(dataset.stress->at(1, 1), kZeros);
  EXPECT_EQ(dataset.prestress->size(), 3U);
  EXPECT_EQ(dataset.prestress->at(0), kZeros);
  EXPECT_EQ(dataset.prestress->at(1), sample_prestate(1, 2));
  EXPECT_EQ(dataset.strain->node_ids, (std::vector<std::int32_t>{4, 1}));
  EXPECT_EQ(dataset.statistics->at(0).nodes[2], 1);
  EXPECT_EQ(dataset.statistics->at(1).nodes[2], 4);
}

TEST_F(WriteModes, SparseSelectionLooksAtExportedModesOnly) {
  const Dataset dataset = written(make_sparse_body(), "sparse_str lowpass(7)");
  EXPECT_EQ(dataset.stress->node_ids, (std::vector<std::int32_t>{2, 1}));
  EXPECT_EQ(dataset.strain->node_ids, (std::vector<std::int32_t>{1}));
}

TEST_F(WriteModes, SparseSelectionMayBeEmpty) {
  FmdBody* body = make_nodes({1}, 1);
  FMD_SetMode(body, 1, 1, 0, 1, 0, 0, 0, 0, 0);
  FMD_SetMode(body, 1, 1, 1, 0, 0, 0, 0, 0, 0);
  add_frequency(body, 1, 5.0);
  const Dataset dataset = written(body, "sparse_str");
  EXPECT_TRUE(dataset.stress->node_ids.empty());
  EXPECT_EQ(dataset.stress->words, (std::vector<std::int32_t>{1}));
  EXPECT_EQ(log.warnings, Strings{"The modal stresses for mode 1 have only zero entries\n"});
}

TEST_F(WriteModes, DefaultSelectionIsTheNodesThatCarryData) {
  const Dataset dataset = written(make_sparse_body());
  EXPECT_EQ(dataset.stress->node_ids, (std::vector<std::int32_t>{4, 3, 2, 1}));
  EXPECT_EQ(dataset.prestress->size(), 4U);
}

TEST_F(WriteModes, FullSelectionPadsAllNodes) {
  for (const char* options : {"full_str", "full_str no_xdr", "full_str single", "82_comp", "81_comp"}) {
    const Dataset dataset = written(make_sparse_body(), options);
    EXPECT_EQ(dataset.stress->node_ids, (std::vector<std::int32_t>{1, 2, 3, 4, 5})) << options;
    EXPECT_EQ(dataset.stress->at(1, 3), (Six{0, 0, 0, 0, 0, 1.5})) << options;
    EXPECT_EQ(dataset.stress->at(1, 4), kZeros) << options;
    EXPECT_EQ(dataset.prestress->at(1), sample_prestate(1, 2)) << options;
    EXPECT_EQ(dataset.prestress->at(4), kZeros) << options;
  }
}

TEST_F(WriteModes, StressOnAllNodesInAnotherOrderIsNotPadded) {
  FmdBody* body = make_nodes({1, 2}, 1);
  FMD_SetMode(body, 1, 1, 0, 1, 0, 0, 0, 0, 0);
  FMD_SetMode(body, 1, 2, 1, 2, 0, 0, 0, 0, 0);
  FMD_SetMode(body, 1, 1, 1, 1, 0, 0, 0, 0, 0);
  add_frequency(body, 1, 5.0);
  const Dataset dataset = written(body, "full_str");
  EXPECT_EQ(dataset.stress->node_ids, (std::vector<std::int32_t>{2, 1}));
  EXPECT_EQ(dataset.stress->at(0, 0), (Six{2, 0, 0, 0, 0, 0}));
}

TEST_F(WriteModes, NoOrthoKeepsNumbersOfModes) {
  FmdBody* body = make_nodes({1, 2}, 2);
  add_vectors(body, 0, {11, 5}, {1, 2});
  const Dataset dataset = written(body, "no_ortho");
  EXPECT_EQ(dataset.mode_shapes->words, (std::vector<std::int32_t>{11, 5}));
  EXPECT_EQ(dataset.statistics->size(), 2U);
}

TEST_F(WriteModes, PrestressWithoutModalStressStandsAlone) {
  FmdBody* body = make_nodes({1, 2, 3}, 1);
  FMD_SetPreStressVec(body, 3, sample_prestate(1, 3).data());
  const Dataset dataset = written(body);
  EXPECT_EQ(dataset.block(18), nullptr);
  ASSERT_EQ(dataset.prestress->size(), 1U);
  EXPECT_EQ(dataset.prestress->at(0), sample_prestate(1, 3));
}

TEST_F(WriteModes, StressWithoutNodesCannotBeWritten) {
  FmdBody* body = make_nodes({1}, 1);
  body->BlockExists[fmd::kModalStress] = 1;
  EXPECT_EQ(write(body), 0);
  ASSERT_EQ(log.errors.size(), 2U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbwrite")) << log.errors[0];
  EXPECT_EQ(log.errors[1], "Problem writing Modal Stress.\n");
  EXPECT_FALSE(std::filesystem::exists("out.fmd"));
}

}  // namespace

}  // namespace fmdtest
