// Header, nodes, mesh, mass and units in the file.
#include <gtest/gtest.h>

#include <cmath>

#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

using dataset_reader::trimmed;

class WriteBlocks : public WriteTest {};

class WriteBlocksInAllForms : public WriteTest, public ::testing::WithParamInterface<WordCase> {};

INSTANTIATE_TEST_SUITE_P(Of, WriteBlocksInAllForms, ::testing::ValuesIn(kWordCases),
                         [](const auto& form) { return name_of(form.param); });

bool is_old(const WordCase& word) {
  return word.word == 10 || word.word == 20;
}

TEST_P(WriteBlocksInAllForms, HeaderAndUnits) {
  FmdBody* body = make_sample_body();
  char date[32];
  FMD_Header(body, nullptr, date, nullptr, nullptr, nullptr, nullptr, nullptr);
  const Dataset dataset = written(body, GetParam().options);
  EXPECT_EQ(trimmed(dataset.header.title), "Sample body");
  EXPECT_EQ(trimmed(dataset.header.date), trimmed(date));
  EXPECT_EQ(trimmed(dataset.header.input_file_name), "sample.inp");
  EXPECT_EQ(trimmed(dataset.header.input_file_type), "deck");
  EXPECT_EQ(trimmed(dataset.header.comments[0]), "made by hand");
  EXPECT_EQ(trimmed(dataset.header.comments[1]), "");
  EXPECT_EQ(trimmed(dataset.header.comments[2]), "for tests");
  EXPECT_EQ(trimmed(dataset.units->mass), "MEGAGRAM");
  EXPECT_EQ(trimmed(dataset.units->length), "MILLIMETER");
  EXPECT_EQ(trimmed(dataset.units->time), "SECOND");
  EXPECT_EQ(trimmed(dataset.units->force), "NEWTON");
}

TEST_P(WriteBlocksInAllForms, NodesMassesAndInterfaceNodes) {
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  ASSERT_EQ(dataset.nodes->size(), kSampleNodes.size());
  for (std::size_t i = 0; i < kSampleNodes.size(); ++i) {
    EXPECT_EQ(dataset.nodes->at(i).id, kSampleNodes[i]);
    EXPECT_EQ(dataset.nodes->at(i).xyz, sample_position(kSampleNodes[i]));
    EXPECT_EQ(dataset.nodal_masses->values.at(i), sample_mass(kSampleNodes[i]));
  }
  EXPECT_EQ(dataset.nodal_masses->values_per_node, 1);
  EXPECT_EQ(dataset.nodal_masses->node_ids, kSampleNodes);
  // Nodes 20 and 30 stand third and first.
  EXPECT_EQ(*dataset.interface_nodes, (std::vector<std::int32_t>{2, 0}));
}

TEST_P(WriteBlocksInAllForms, InertiasAsTheUpperTriangleWithoutZeros) {
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  struct Entry {
    int id, row, column;
    double value;
  };
  const std::vector<Entry> expected = {{10, 4, 4, 1.0}, {10, 4, 5, 0.25},  {10, 4, 6, 0.5},
                                       {10, 5, 5, 2.0}, {10, 5, 6, 0.125}, {10, 6, 6, 3.0},
                                       {40, 4, 4, 1.5}, {40, 4, 6, -0.5},  {40, 6, 6, 2.5}};
  ASSERT_EQ(dataset.nodal_inertias->size(), expected.size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    EXPECT_EQ(dataset.nodal_inertias->at(i).node_id, expected[i].id) << i;
    EXPECT_EQ(dataset.nodal_inertias->at(i).row, expected[i].row) << i;
    EXPECT_EQ(dataset.nodal_inertias->at(i).column, expected[i].column) << i;
    EXPECT_EQ(dataset.nodal_inertias->at(i).value, expected[i].value) << i;
  }
}

TEST_P(WriteBlocksInAllForms, FacesOfIndicesOrTopologyOfIds) {
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  EXPECT_EQ(dataset.faces.has_value(), !is_old(GetParam()));
  EXPECT_EQ(dataset.topology.has_value(), is_old(GetParam()));
  if (!is_old(GetParam())) {
    EXPECT_EQ(dataset.faces->reserved, 0);
    EXPECT_EQ(dataset.faces->faces,
              (std::vector<std::vector<std::int32_t>>{{0, 1, 2}, {2, 3}, {0, 1, 2, 3}, {1, 2, 3}}));
    return;
  }
  EXPECT_EQ(dataset.topology->face_count, 4);
  ASSERT_EQ(dataset.topology->types.size(), 12U);
  const std::vector<std::vector<std::vector<std::int32_t>>> expected = {
      {{20, 40}}, {{30, 10, 20}, {10, 20, 40}}, {{30, 10, 20, 40}}};
  for (std::size_t type = 0; type < 12; ++type) {
    EXPECT_EQ(dataset.topology->types[type].size, static_cast<int>(type) + 2);
    const auto& faces = dataset.topology->types[type].faces;
    ASSERT_EQ(faces.size(), type < expected.size() ? expected[type].size() : 0U) << type;
    for (std::size_t i = 0; i < faces.size(); ++i) EXPECT_EQ(faces[i].node_ids, expected[type][i]);
  }
}

TEST_P(WriteBlocksInAllForms, GlobalPropertiesOfTheNodalMasses) {
  double mass = 0.0;
  double moment[3] = {};
  double tensor[3][3] = {};
  for (const int node : kSampleNodes) {
    const double m = sample_mass(node);
    const auto x = sample_position(node);
    mass += m;
    for (std::size_t i = 0; i < 3; ++i) {
      moment[i] += m * x[i];
      for (std::size_t j = 0; j < 3; ++j) {
        tensor[i][j] +=
            i == j ? m * (x[0] * x[0] + x[1] * x[1] + x[2] * x[2] - x[i] * x[i]) : m * x[i] * x[j];
      }
    }
  }
  // The inertias of nodes 10 and 40; products of inertia count with the other sign in the tensor.
  const double nodal[3][3] = {{2.5, -0.25, 0.0}, {-0.25, 2.0, -0.125}, {0.0, -0.125, 5.5}};
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  const double tolerance = GetParam().single ? 1e-6 : 1e-14;
  EXPECT_NEAR(dataset.global_properties->mass, mass, tolerance * mass);
  for (std::size_t i = 0; i < 3; ++i) {
    const double center = moment[i] / mass;
    EXPECT_NEAR(dataset.global_properties->center[i], center, tolerance * (1 + std::abs(center)));
    for (std::size_t j = 0; j < 3; ++j) {
      const double entry = tensor[i][j] + nodal[i][j];
      EXPECT_NEAR(dataset.global_properties->inertia[3 * i + j], entry, tolerance * (1 + std::abs(entry)))
          << i << j;
    }
  }
}

TEST_F(WriteBlocks, GlobalPropertiesAsStoredWhereThereAreNoNodalMasses) {
  FmdBody* body = make_nodes({1, 2}, 1);
  double center[3] = {1.0, 2.0, 3.0};
  double inertia[9] = {11, 12, 13, 12, 22, 23, 13, 23, 33};
  FMD_SetGlobalMass(body, 4.5, center, inertia);
  const Dataset dataset = written(body);
  EXPECT_EQ(dataset.global_properties->mass, 4.5);
  EXPECT_EQ(dataset.global_properties->center, (std::array<double, 3>{1.0, 2.0, 3.0}));
  EXPECT_EQ(dataset.global_properties->inertia, (std::array<double, 9>{11, 12, 13, 12, 22, 23, 13, 23, 33}));
}

TEST_F(WriteBlocks, GlobalPropertiesOfNodalMassesWinOverStoredOnes) {
  FmdBody* body = make_nodes({1, 2}, 1);
  FMD_SetNodalMass(body, 1, 2.0);
  FMD_SetNodalMass(body, 2, 2.0);
  double center[3] = {1.0, 2.0, 3.0};
  double inertia[9] = {};
  FMD_SetGlobalMass(body, 9.0, center, inertia);
  EXPECT_EQ(written(body).global_properties->mass, 4.0);
}

TEST_F(WriteBlocks, ZeroMassHasItsCentreAtTheOrigin) {
  FmdBody* body = make_nodes({1, 2}, 1);
  FMD_SetNodalMass(body, 1, 0.0);
  FMD_SetNodalMass(body, 2, 0.0);
  const Dataset dataset = written(body);
  EXPECT_EQ(dataset.global_properties->mass, 0.0);
  EXPECT_EQ(dataset.global_properties->center, (std::array<double, 3>{0.0, 0.0, 0.0}));
  EXPECT_EQ(log.warnings, Strings{"Found 2 massless node(s)"});
}

TEST_F(WriteBlocks, MasslessNodesAreCounted) {
  FmdBody* body = make_nodes({1, 2, 3}, 1);
  FMD_SetNodalMass(body, 2, 1.0);
  const Dataset dataset = written(body);
  EXPECT_EQ(log.warnings, Strings{"Found 2 massless node(s)"});
  EXPECT_EQ(dataset.nodal_masses->values, (std::vector<double>{0.0, 1.0, 0.0}));
}

TEST_F(WriteBlocks, NodesWithMassAllOverGiveNoWarning) {
  EXPECT_EQ(write(make_sample_body()), 1);
  EXPECT_EQ(log.warnings, Strings{});
}

TEST_F(WriteBlocks, OneNodeAtTheOriginIsNormal) {
  FmdBody* body = make_nodes({1, 2}, 1);
  FMD_SetNodeCoordinates(body, 2, 0.0, 0.0, 0.0);
  EXPECT_EQ(write(body), 1);
  EXPECT_EQ(log.warnings, Strings{});
}

TEST_F(WriteBlocks, NodesAtTheOriginAreListed) {
  FmdBody* body = make_nodes({7, 2, 5}, 1);
  FMD_SetNodeCoordinates(body, 5, 0.0, 0.0, 0.0);
  FMD_SetNodeCoordinates(body, 7, 0.0, -0.0, 0.0);
  EXPECT_EQ(write(body), 1);
  EXPECT_EQ(log.warnings, (Strings{"Found 2 node(s) with coordinates (0,0,0).  They are:", "   7", "   5"}));
}

TEST_F(WriteBlocks, ManyNodesAtTheOriginAreAllListed) {
  FmdBody* body = FMD_Create(250, 1);
  for (int id = 1; id <= 250; ++id) FMD_SetNodeCoordinates(body, id, 0.0, 0.0, 0.0);
  EXPECT_EQ(write(body), 1);
  ASSERT_EQ(log.warnings.size(), 251U);
  EXPECT_EQ(log.warnings[0], "Found 250 node(s) with coordinates (0,0,0).  They are:");
  EXPECT_EQ(log.warnings[250], "   250");
}

TEST_F(WriteBlocks, SinglePrecisionRoundsToTheNearestFloat) {
  FmdBody* body = FMD_Create(1, 1);
  FMD_SetNodeCoordinates(body, 1, 0.1, -1.0 / 3.0, 16777217.0);
  for (const char* options : {"single", "single no_xdr", "full_str single", "full_str single no_xdr"}) {
    const Dataset dataset = written(body, options);
    EXPECT_EQ(dataset.nodes->at(0).xyz[0], static_cast<double>(0.1F)) << options;
    EXPECT_EQ(dataset.nodes->at(0).xyz[1], static_cast<double>(static_cast<float>(-1.0 / 3.0))) << options;
    EXPECT_EQ(dataset.nodes->at(0).xyz[2], 16777216.0) << options;
  }
  EXPECT_EQ(written(body).nodes->at(0).xyz[0], 0.1);
}

TEST_F(WriteBlocks, TextAboveTheSeventhBitSurvives) {
  FmdBody* body = make_nodes({1}, 1);
  std::string title = "Tr\xC3\xA4ger";
  std::string none;
  FMD_SetHeader(body, title.data(), none.data(), none.data(), none.data(), none.data(), none.data());
  for (const WordCase& word : kWordCases) {
    EXPECT_EQ(trimmed(written(body, word.options).header.title), "Tr\xC3\xA4ger");
  }
}

TEST_F(WriteBlocks, FacesOfThirteenCornersFitTheOldTopology) {
  std::vector<int> nodes;
  for (int id = 101; id <= 113; ++id) nodes.push_back(id);
  FmdBody* body = make_nodes(nodes, 1);
  FMD_SetFaceList(body, 13, nodes.data());
  const Dataset dataset = written(body, "82_comp");
  ASSERT_EQ(dataset.topology->types.size(), 12U);
  EXPECT_EQ(dataset.topology->types[11].faces.at(0).node_ids, nodes);
}

TEST_F(WriteBlocks, FacesOfMoreCornersAreLeftOutOfTheOldTopologyWithAWarning) {
  std::vector<int> nodes;
  for (int id = 101; id <= 114; ++id) nodes.push_back(id);
  FmdBody* body = make_nodes(nodes, 1);
  FMD_SetFaceList(body, 14, nodes.data());
  FMD_SetFaceList(body, 2, nodes.data());
  const Dataset dataset = written(body, "81_comp");
  EXPECT_EQ(log.warnings,
            Strings{"1 element face(s) with more than 13 nodes do not fit the old style topology."});
  EXPECT_EQ(dataset.topology->face_count, 1);
  EXPECT_EQ(written(body).faces->faces.at(0).size(), 14U);
}

}  // namespace

}  // namespace fmdtest
