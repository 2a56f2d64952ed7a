// Every block of a hand-made dataset, in every form of the stream.
#include <gtest/gtest.h>

#include "dataset_reader/dataset_reader.h"
#include "dataset_reader/sample_dataset.h"

namespace dataset_reader {

namespace {

class Blocks : public ::testing::TestWithParam<Form> {
 protected:
  Dataset dataset = read_dataset(sample_dataset(GetParam()));
};

INSTANTIATE_TEST_SUITE_P(AllForms, Blocks, ::testing::ValuesIn(kForms),
                         [](const auto& form) { return "Word" + std::to_string(form.param.word); });

std::vector<double> ramp(double first, std::size_t n) {
  std::vector<double> values;
  for (std::size_t i = 0; i < n; ++i) values.push_back(first + static_cast<double>(i));
  return values;
}

TEST_P(Blocks, TellTheFormOfTheFile) {
  EXPECT_EQ(dataset.version_word, GetParam().word);
  EXPECT_EQ(dataset.level, static_cast<int>(GetParam().word % 256));
  EXPECT_EQ(dataset.xdr, GetParam().xdr);
  EXPECT_EQ(dataset.single, GetParam().single);
  EXPECT_EQ(dataset.coarsened, GetParam().word >= 0x400);
  EXPECT_EQ(dataset.blocks.size(), 34U);
}

TEST_P(Blocks, HoldHeaderAndNodes) {
  EXPECT_EQ(dataset.header.title.size(), 128U);
  EXPECT_EQ(trimmed(dataset.header.title), "A title");
  EXPECT_EQ(trimmed(dataset.header.date), "2024-05-06 07:08");
  EXPECT_EQ(trimmed(dataset.header.input_file_name), "part.inp");
  EXPECT_EQ(trimmed(dataset.header.input_file_type), "deck");
  EXPECT_EQ(trimmed(dataset.header.comments[0]), "first");
  EXPECT_EQ(trimmed(dataset.header.comments[2]), "third");
  ASSERT_EQ(dataset.nodes->size(), 3U);
  EXPECT_EQ(dataset.nodes->at(1).id, 10);
  EXPECT_EQ(dataset.nodes->at(0).xyz, (std::array<double, 3>{0.5, 1.5, 2.5}));
  EXPECT_EQ(*dataset.interface_nodes, (std::vector<std::int32_t>{2, 0}));
  EXPECT_EQ(dataset.faces->faces, (std::vector<std::vector<std::int32_t>>{{0, 1, 2}, {2, 0}}));
}

TEST_P(Blocks, HoldMassAndUnits) {
  EXPECT_EQ(dataset.global_properties->mass, 6.0);
  EXPECT_EQ(dataset.global_properties->inertia[8], 9.0);
  EXPECT_EQ(dataset.nodal_masses->node_ids, (std::vector<std::int32_t>{30, 10, 20}));
  EXPECT_EQ(dataset.nodal_masses->values, (std::vector<double>{1, 2, 3}));
  ASSERT_EQ(dataset.nodal_inertias->size(), 2U);
  EXPECT_EQ(dataset.nodal_inertias->at(1).node_id, 20);
  EXPECT_EQ(dataset.nodal_inertias->at(1).row, 4);
  EXPECT_EQ(dataset.nodal_inertias->at(1).column, 6);
  EXPECT_EQ(dataset.nodal_inertias->at(1).value, -0.25);
  EXPECT_EQ(trimmed(dataset.units->mass), "MEGAGRAM");
  EXPECT_EQ(trimmed(dataset.units->length), "MILLIMETER");
  EXPECT_EQ(trimmed(dataset.units->time), "SECOND");
  EXPECT_EQ(trimmed(dataset.units->force), "NEWTON");
}

TEST_P(Blocks, HoldModesInTheirOwnNodeOrder) {
  EXPECT_EQ(dataset.eigenvalues->at(1).mode, 2);
  EXPECT_EQ(dataset.eigenvalues->at(1).eigenvalue, 20.0);
  EXPECT_EQ(dataset.eigenvalues->at(1).generalized_stiffness, 24.0);
  EXPECT_EQ(dataset.mode_shapes->words,
            GetParam().shape_word ? (std::vector<std::int32_t>{1, 2}) : std::vector<std::int32_t>{});
  EXPECT_EQ(dataset.mode_shapes->at(1, 2), (std::array<double, 6>{212, 213, 214, 215, 216, 217}));
  EXPECT_EQ(dataset.stress->words.size(), GetParam().stress_word ? 2U : 0U);
  EXPECT_EQ(dataset.stress->node_ids, (std::vector<std::int32_t>{20, 30}));
  EXPECT_EQ(dataset.stress->at(0, 1), (std::array<double, 6>{1106, 1107, 1108, 1109, 1110, 1111}));
  EXPECT_EQ(dataset.strain->at(1, 0), (std::array<double, 6>{2200, 2201, 2202, 2203, 2204, 2205}));
  EXPECT_EQ(dataset.prestress->at(1), (std::array<double, 6>{7, 8, 9, 10, 11, 12}));
  EXPECT_EQ(dataset.prestrain->at(0), (std::array<double, 6>{21, 22, 23, 24, 25, 26}));
  EXPECT_EQ(dataset.statistics->at(1).nodes[0], 30);
  EXPECT_EQ(dataset.statistics->at(1).values[0], 2.0);
  EXPECT_EQ(dataset.statistics->at(0).values[3], 4.0);
}

TEST_P(Blocks, HoldMatrices) {
  EXPECT_EQ(dataset.generalized_stiffness->order, 2);
  EXPECT_EQ(dataset.generalized_stiffness->entries.at(0).value, 99.0);
  EXPECT_EQ(dataset.generalized_mass->entries.at(0).row, 2);
  EXPECT_EQ(dataset.generalized_mass->entries.at(0).column, 1);
  EXPECT_EQ(dataset.generalized_damping->projected, 1);
  EXPECT_EQ(dataset.generalized_damping->entries.at(0).value, 0.75);
  EXPECT_EQ(dataset.transformation->mode_numbers, (std::vector<std::int32_t>{11, 12}));
  EXPECT_EQ(dataset.transformation->matrix, (std::vector<double>{1, 2, 3, 4}));
}

TEST_P(Blocks, HoldInvariants) {
  EXPECT_EQ(*dataset.invariant1, 6.0);
  EXPECT_EQ(*dataset.invariant2, ramp(1, 3));
  EXPECT_EQ(dataset.invariant3->values, ramp(1, 6));
  EXPECT_EQ(dataset.invariant4->values, ramp(11, 6));
  EXPECT_EQ(dataset.invariant5->values, ramp(21, 12));
  EXPECT_EQ(*dataset.invariant7, ramp(1, 9));
  EXPECT_EQ(dataset.invariant8->values, ramp(11, 18));
  EXPECT_EQ(dataset.invariant9->values, ramp(31, 36));
}

TEST_P(Blocks, HoldLoadsAndOperators) {
  EXPECT_EQ(dataset.preload->processed, 1);
  EXPECT_EQ(dataset.preload->values, (std::vector<double>{7.5, -8.5}));
  EXPECT_EQ(trimmed(dataset.loads->cases.at(0).label), "gravity");
  EXPECT_EQ(dataset.loads->cases.at(0).values, (std::vector<double>{1.5, 2.5}));
  const MonitorPoint& point = dataset.monitor_points->at(0);
  EXPECT_EQ(trimmed(point.name), "TIP");
  EXPECT_EQ(point.component, 135);
  EXPECT_EQ(point.acceleration, ramp(21, 4));
  EXPECT_EQ(point.load, ramp(31, 4));
  const MatrixOperator& matrix = dataset.operators->at(0);
  EXPECT_EQ(trimmed(matrix.row_labels.at(1)), "row two");
  EXPECT_EQ(matrix.parts.at(0).values, ramp(1, 6));
  EXPECT_EQ(trimmed(matrix.parts.at(1).tag), "B");
  ASSERT_EQ(dataset.nodal_loads->size(), 2U);
  EXPECT_EQ(dataset.nodal_loads->at(0).at(0).node_index, 2);
  EXPECT_EQ(dataset.nodal_loads->at(0).at(0).coordinate, 6);
  EXPECT_EQ(dataset.nodal_loads->at(0).at(0).value, -9.0);
  EXPECT_TRUE(dataset.nodal_loads->at(1).empty());
}

TEST(Topology, HoldsFacesByTypeWithNodeIds) {
  Bytes bytes({20, false, false, true, true});
  bytes.opening({0, 1}).ints({0, 3});
  bytes.ints({3, 2, 0, 1, 2, 1, 2, 3});
  bytes.ints({-1, -2, 100, 200, 0, 0, 100, 200, 300, 5, 6, 300, 200, 100});
  const Dataset dataset = read_dataset(bytes.data);
  ASSERT_EQ(dataset.topology->types.size(), 2U);
  EXPECT_EQ(dataset.topology->face_count, 3);
  EXPECT_EQ(dataset.topology->types[0].faces.at(0).node_ids, (std::vector<std::int32_t>{100, 200}));
  EXPECT_EQ(dataset.topology->types[1].faces.at(1).unused[1], 6);
  EXPECT_EQ(dataset.topology->types[1].faces.at(1).node_ids, (std::vector<std::int32_t>{300, 200, 100}));
}

}  // namespace

}  // namespace dataset_reader
