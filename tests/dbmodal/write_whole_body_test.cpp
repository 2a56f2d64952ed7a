// A body that has everything, in every version word, read back field by field; and the invariant stages.
#include <gtest/gtest.h>

#include <cmath>

#include "body/body.h"
#include "dbmodal/whole_body.h"
#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

constexpr std::size_t kModes = kWholeModes;
constexpr std::size_t kLoadCases = kWholeLoadCases;

std::string padded(const std::string& text, std::size_t width) {
  std::string field = text;
  field.resize(width, '\0');
  return field;
}

using Doubles = std::vector<double>;

// Three rows over the exported modes out of one vector of three per mode.
Doubles rows_of(const std::vector<Doubles>& columns) {
  Doubles rows;
  for (std::size_t k = 0; k < 3; ++k) {
    for (const Doubles& column : columns) rows.push_back(column[k]);
  }
  return rows;
}

Doubles negated(Doubles values) {
  for (double& value : values) value = -value;
  return values;
}

Doubles transposed(const Doubles& t) {
  return {t[0], t[3], t[6], t[1], t[4], t[7], t[2], t[5], t[8]};
}

void expect_invariants(const Dataset& data, std::size_t first, std::size_t count) {
  EXPECT_EQ(*data.invariant1, 8.0);
  EXPECT_EQ(*data.invariant2, values_of(2, 3));
  const Doubles six = values_of(7, 6);
  EXPECT_EQ(*data.invariant7,
            (Doubles{six[0], six[3], six[4], six[3], six[1], six[5], six[4], six[5], six[2]}));
  std::vector<Doubles> third;
  std::vector<Doubles> fourth;
  Doubles fifth;
  Doubles eighth;
  Doubles ninth;
  for (std::size_t i = first; i < first + count; ++i) {
    third.push_back(values_of(30 + i, 3));
    fourth.push_back(values_of(40 + i, 3));
    std::vector<Doubles> crosses;
    for (std::size_t j = first; j < first + count; ++j) {
      const std::size_t seed = 10 * std::min(i, j) + std::max(i, j);
      Doubles cross = i == j ? Doubles(3, 0.0) : values_of(50 + seed, 3);
      crosses.push_back(i > j ? negated(cross) : cross);
      Doubles tensor = i == j ? Doubles{1, 2, 3, 2, 5, 6, 3, 6, 9} : values_of(90 + seed, 9);
      if (i > j) tensor = transposed(tensor);
      ninth.insert(ninth.end(), tensor.begin(), tensor.end());
    }
    const Doubles rows = rows_of(crosses);
    fifth.insert(fifth.end(), rows.begin(), rows.end());
    const Doubles tensor = values_of(80 + i, 9);
    eighth.insert(eighth.end(), tensor.begin(), tensor.end());
  }
  EXPECT_EQ(data.invariant3->mode_count, static_cast<int>(count));
  EXPECT_EQ(data.invariant3->values, rows_of(third));
  EXPECT_EQ(data.invariant4->values, rows_of(fourth));
  EXPECT_EQ(data.invariant5->values, fifth);
  EXPECT_EQ(data.invariant8->values, eighth);
  EXPECT_EQ(data.invariant9->values, ninth);
}

void expect_loads(const Dataset& data, std::size_t first, std::size_t count) {
  EXPECT_EQ(data.preload->processed, 1);
  const Doubles preload = values_of(27, kModes);
  const auto begin = static_cast<std::ptrdiff_t>(first);
  const auto end = static_cast<std::ptrdiff_t>(first + count);
  EXPECT_EQ(data.preload->values, Doubles(preload.begin() + begin, preload.begin() + end));
  ASSERT_EQ(data.loads->cases.size(), kLoadCases);
  EXPECT_EQ(data.loads->mode_count, static_cast<int>(count));
  EXPECT_EQ(data.loads->cases[0].label, padded("Load Case 1", 256));
  EXPECT_EQ(data.loads->cases[1].label, padded("gravity", 256));
  for (std::size_t c = 0; c < kLoadCases; ++c) {
    const Doubles load = values_of(280 + c, kModes);
    EXPECT_EQ(data.loads->cases[c].values, Doubles(load.begin() + begin, load.begin() + end));
    EXPECT_EQ(data.loads->cases[c].processed, 1);
  }
  ASSERT_EQ(data.nodal_loads->size(), 2U);
  EXPECT_TRUE(data.nodal_loads->at(0).empty());
  ASSERT_EQ(data.nodal_loads->at(1).size(), 2U);
  // Nodes are indices into the nodes of block 4, which ascend by id after the interior ones have gone.
  const auto& entry = data.nodal_loads->at(1)[1];
  EXPECT_EQ(data.nodes->at(static_cast<std::size_t>(entry.node_index)).id, 40);
  EXPECT_EQ(entry.coordinate, 6);
  EXPECT_EQ(entry.value, -0.25);
}

void expect_operators(const Dataset& data) {
  ASSERT_EQ(data.monitor_points->size(), 2U);
  const auto& point = data.monitor_points->at(0);
  EXPECT_EQ(point.type, 2);
  EXPECT_EQ(point.result_type, 4);
  EXPECT_EQ(point.component, 12);
  EXPECT_EQ(point.name, padded("TIP", 8));
  EXPECT_EQ(point.label, padded("tip of the arm", 56));
  EXPECT_EQ(point.rows, 2);
  EXPECT_EQ(point.flags, 15);
  EXPECT_EQ(point.displacement, values_of(331, 6));
  EXPECT_EQ(point.velocity, values_of(332, 6));
  EXPECT_EQ(point.acceleration, values_of(333, 6));
  EXPECT_EQ(point.load, values_of(334, 12));
  Doubles one_layer = values_of(335, kModes);
  one_layer.resize(2 * kModes, 0.0);
  EXPECT_EQ(data.monitor_points->at(1).load, one_layer);
  EXPECT_EQ(data.monitor_points->at(1).flags, 8);
  ASSERT_EQ(data.operators->size(), 1U);
  const auto& matrix = data.operators->at(0);
  EXPECT_EQ(matrix.name, "OUTPUT-O");
  EXPECT_EQ(matrix.row_labels, (Strings{padded("first row", 80), padded("", 80)}));
  ASSERT_EQ(matrix.parts.size(), 1U);
  EXPECT_EQ(matrix.parts[0].columns, 3);
  EXPECT_EQ(matrix.parts[0].tag, padded("DISP", 8));
  EXPECT_EQ(matrix.parts[0].values, values_of(340, 6));
}

using WholeBody = WriteTest;

TEST_F(WholeBody, EveryBlockInEveryWord) {
  FmdBody* const body = make_whole_body();
  for (const WordCase& word : kWordCases) {
    SCOPED_TRACE(word.options);
    const Dataset data = written(body, word.options);
    EXPECT_EQ(data.version_word, word.word);
    for (int number = 1; number <= 35; ++number) {
      const bool old_style = data.level == 10 || data.level == 20;
      const bool absent = number == 12 || number == 13 || number == (old_style ? 14 : 5);
      EXPECT_EQ(data.block(number) == nullptr, absent) << number;
    }
    expect_invariants(data, 0, kModes);
    expect_loads(data, 0, kModes);
    expect_operators(data);
    EXPECT_EQ(data.generalized_damping->projected, 1);
    ASSERT_EQ(data.generalized_damping->entries.size(), 2U);
    EXPECT_EQ(data.generalized_damping->entries[1].row, 1);
    EXPECT_EQ(data.generalized_damping->entries[1].column, 3);
    EXPECT_EQ(data.generalized_damping->entries[1].value, -0.25);
    EXPECT_EQ(data.global_properties->mass, 8.0);
  }
}

TEST_F(WholeBody, MatricesTakeThePlaceOfEigenvaluesInEveryWord) {
  FmdBody* const body = make_whole_body();
  for (const WordCase& word : kWordCases) {
    SCOPED_TRACE(word.options);
    const Dataset data = written(body, std::string("no_ortho ") + word.options);
    EXPECT_EQ(data.block(7), nullptr);
    EXPECT_EQ(data.block(16), nullptr);
    ASSERT_NE(data.block(12), nullptr);
    ASSERT_EQ(data.generalized_stiffness->entries.size(), kModes);
    EXPECT_EQ(data.generalized_stiffness->entries[2].row, 9);
    EXPECT_EQ(data.generalized_mass->entries[0].value, 1.0);
    expect_invariants(data, 0, kModes);
    expect_loads(data, 0, kModes);
  }
}

TEST_F(WholeBody, ABandCutsWhatStandsByModeAndNotTheOperators) {
  const Dataset data = written(make_whole_body(), "highpass(7) lowpass(12)");
  EXPECT_EQ(data.mode_shapes->mode_count, 1);
  expect_invariants(data, 1, 1);
  expect_loads(data, 1, 1);
  expect_operators(data);
}

TEST_F(WholeBody, InformationOfTheOperators) {
  write(make_whole_body());
  for (const char* line : {"\nMonitor Point info:\n   Count: 2", "\nMatrix Operator Info:\n   Count: 1",
                           "\nModal Load Nodal Info:\n   Count: 2"}) {
    EXPECT_NE(std::find(log.infos.begin(), log.infos.end(), line), log.infos.end()) << line;
  }
}

using InvariantStage = WriteTest;

// The sums of the invariants over the sample nodes and one that only carries mass.
struct Naive {
  static constexpr int kHidden = 50;
  std::vector<int> nodes = kSampleNodes;
  Naive() { nodes.push_back(kHidden); }

  static std::array<double, 3> translation(std::size_t mode, int node) {
    if (node == kHidden) return {};
    const auto v = sample_vector(0, kSampleModes[mode], node);
    return {v[0], v[1], v[2]};
  }
  static double mass(int node) { return node == kHidden ? 3.0 : sample_mass(node); }
  static std::array<double, 3> position(int node) { return sample_position(node); }

  double first() const {
    double sum = 0.0;
    for (const int node : nodes) sum += mass(node);
    return sum;
  }
  Doubles second() const {
    Doubles sum(3, 0.0);
    for (const int node : nodes) {
      for (std::size_t k = 0; k < 3; ++k) sum[k] += mass(node) * position(node)[k];
    }
    return sum;
  }
  Doubles third() const {
    std::vector<Doubles> columns;
    for (std::size_t mode = 0; mode < kModes; ++mode) {
      Doubles column(3, 0.0);
      for (const int node : nodes) {
        for (std::size_t k = 0; k < 3; ++k) column[k] += mass(node) * translation(mode, node)[k];
      }
      columns.push_back(column);
    }
    return rows_of(columns);
  }
};

FmdBody* body_with_hidden_mass() {
  FmdBody* const body = make_nodes(Naive().nodes, static_cast<int>(kModes));
  for (const int node : Naive().nodes) FMD_SetNodalMass(body, node, Naive::mass(node));
  FMD_SetNodalInertia(body, 10, 1, 2, 3, 0, 0, 0);
  add_vectors(body, 0, kSampleModes, kSampleNodes);
  for (std::size_t mode = 0; mode < kModes; ++mode)
    add_frequency(body, kSampleModes[mode], kSampleHertz[mode]);
  for (std::vector<int> face : kSampleFaces)
    FMD_SetFaceList(body, static_cast<int>(face.size()), face.data());
  FMD_SetInterfaceNode(body, 20);
  return body;
}

void expect_near(const Doubles& actual, const Doubles& expected) {
  ASSERT_EQ(actual.size(), expected.size());
  for (std::size_t i = 0; i < actual.size(); ++i) {
    EXPECT_NEAR(actual[i], expected[i], 1e-12 * (1.0 + std::fabs(expected[i]))) << i;
  }
}

TEST_F(InvariantStage, FullKeepsTheMassOfNodesThatGo) {
  FmdBody* const body = body_with_hidden_mass();
  ASSERT_EQ(FMD_NodeCount(body), 5);
  const Dataset data = written(body, "full_invar");
  const Naive naive;
  EXPECT_NEAR(*data.invariant1, naive.first(), 1e-12);
  expect_near(*data.invariant2, naive.second());
  expect_near(data.invariant3->values, naive.third());
  for (const int number : {22, 23, 24, 25, 26}) EXPECT_NE(data.block(number), nullptr) << number;
  EXPECT_EQ(data.nodes->size(), 4U);
  EXPECT_NEAR(data.global_properties->mass, naive.first(), 1e-12);
  EXPECT_EQ(FMD_NodeCount(body), 4);
}

TEST_F(InvariantStage, FastLeavesOutThePairs) {
  const Dataset data = written(body_with_hidden_mass(), "fast_invar");
  for (const int number : {19, 20, 21, 22, 24, 25}) EXPECT_NE(data.block(number), nullptr) << number;
  EXPECT_EQ(data.block(23), nullptr);
  EXPECT_EQ(data.block(26), nullptr);
}

TEST_F(InvariantStage, EmptyIsARigidBody) {
  const Dataset data = written(body_with_hidden_mass(), "empty");
  std::vector<int> present;
  for (std::size_t byte = 0; byte < data.summary.size(); ++byte) {
    if (data.summary[byte] != 0) present.push_back(static_cast<int>(byte));
  }
  EXPECT_EQ(present, (std::vector<int>{0, 2, 5, 6, 8, 12, 15, 17, 18, 22}));
  EXPECT_NEAR(*data.invariant1, Naive().first(), 1e-12);
  EXPECT_NEAR(data.global_properties->mass, Naive().first(), 1e-12);
}

TEST_F(InvariantStage, EmptyAtTheOldLevelsHasTheOldTopology) {
  const Dataset data = written(make_sample_body(), "empty 82_comp");
  EXPECT_NE(data.block(5), nullptr);
  EXPECT_EQ(data.block(14), nullptr);
}

}  // namespace

}  // namespace fmdtest
