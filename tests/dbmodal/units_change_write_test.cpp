// A body written in kilogram, metre, second and newton against the same body built in them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "dbmodal/units_change_model.h"
#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

// The numbers of a dataset by block; what must be equal exactly stands apart.
struct Contents {
  Picture numbers;
  std::vector<int> blocks;
  std::vector<std::size_t> sizes;

  explicit Contents(const Dataset& data) {
    for (const auto& extent : data.blocks) {
      blocks.push_back(extent.number);
      sizes.push_back(extent.bytes);
    }
    take_nodes(data);
    take_matrices(data);
    take_modes(data);
    take_loads(data);
    take_invariants(data);
  }

 private:
  template <typename Values>
  void take(const std::string& name, const Values& values) {
    numbers[name].insert(numbers[name].end(), values.begin(), values.end());
  }

  void take_nodes(const Dataset& data) {
    for (const auto& node : *data.nodes) take("positions", node.xyz);
    take("masses", data.nodal_masses->values);
    for (const auto& entry : *data.nodal_inertias) numbers["inertias"].push_back(entry.value);
    if (!data.global_properties) return;
    numbers["mass"].push_back(data.global_properties->mass);
    take("center", data.global_properties->center);
    take("inertia", data.global_properties->inertia);
  }

  void take_entries(const std::string& name, const std::vector<dataset_reader::MatrixEntry>& entries) {
    for (const auto& entry : entries) numbers[name].push_back(entry.value);
  }

  void take_matrices(const Dataset& data) {
    if (data.generalized_mass) take_entries("generalized mass", data.generalized_mass->entries);
    if (data.generalized_stiffness)
      take_entries("generalized stiffness", data.generalized_stiffness->entries);
    if (data.generalized_damping) take_entries("damping", data.generalized_damping->entries);
  }

  void take_modes(const Dataset& data) {
    if (data.mode_shapes) take_halves("shapes", data.mode_shapes->values);
    if (data.stress) take_halves("stress", data.stress->values);
    if (data.strain) take_halves("strain", data.strain->values);
    if (data.prestress) {
      for (const auto& six : *data.prestress) take("pre-stress", six);
    }
    if (data.prestrain) {
      for (const auto& six : *data.prestrain) take("pre-strain", six);
    }
    if (!data.statistics) return;
    for (const auto& record : *data.statistics) {
      for (std::size_t i = 0; i < 4; ++i) {
        numbers["statistic " + std::to_string(i)].push_back(record.values[i]);
        numbers["statistic " + std::to_string(i) + " node"].push_back(record.nodes[i]);
      }
    }
  }

  // Translations and rotations differ in dimension.
  void take_halves(const std::string& name, const std::vector<double>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
      numbers[name + (i % 6 < 3 ? " first" : " second")].push_back(values[i]);
    }
  }

  void take_loads(const Dataset& data) {
    if (data.preload) take_by_entry("preload", data.preload->values);
    if (data.loads) {
      for (const auto& load : data.loads->cases) take_by_entry("load " + load.label, load.values);
    }
    if (data.nodal_loads) {
      for (const auto& load : *data.nodal_loads) {
        for (const auto& entry : load)
          numbers["nodal load " + std::to_string(entry.coordinate)].push_back(entry.value);
      }
    }
    if (!data.monitor_points) return;
    for (const auto& point : *data.monitor_points) {
      const std::string name = "result " + std::to_string(point.result_type) + " operator ";
      for (const auto& [kind, values] : {std::pair{"1", point.displacement},
                                         {"2", point.velocity},
                                         {"3", point.acceleration},
                                         {"4", point.load}}) {
        take_by_entry(name + kind, values);
      }
    }
  }

  void take_by_entry(const std::string& name, const std::vector<double>& values) {
    for (std::size_t i = 0; i < values.size(); ++i) numbers[name + " " + std::to_string(i)] = {values[i]};
  }

  void take_invariants(const Dataset& data) {
    if (data.invariant1) numbers["invariant 1"] = {*data.invariant1};
    if (data.invariant2) take("invariant 2", *data.invariant2);
    if (data.invariant3) take("invariant 3", data.invariant3->values);
    if (data.invariant4) take("invariant 4", data.invariant4->values);
    if (data.invariant5) take("invariant 5", data.invariant5->values);
    if (data.invariant7) take("invariant 7", *data.invariant7);
    if (data.invariant8) take("invariant 8", data.invariant8->values);
    if (data.invariant9) take("invariant 9", data.invariant9->values);
  }
};

class WriteInSi : public WriteTest {
 protected:
  void expect_same_dataset(const ModelOptions& model, const std::string& options, double tolerance = 1e-12) {
    SCOPED_TRACE(options);
    FmdBody* const converted = make_body_in(kOdd, model);
    const Dataset found = written(converted, options + ",MKS");
    const Dataset expected = written(make_body_in(kSi, model), options);
    const Contents contents(found);
    const Contents wanted(expected);
    EXPECT_EQ(contents.blocks, wanted.blocks);
    EXPECT_EQ(contents.sizes, wanted.sizes);
    EXPECT_EQ(found.summary, expected.summary);
    EXPECT_EQ(found.units->mass, expected.units->mass);
    EXPECT_EQ(found.units->length, expected.units->length);
    EXPECT_EQ(found.units->time, expected.units->time);
    EXPECT_EQ(found.units->force, expected.units->force);
    EXPECT_EQ(dataset_reader::trimmed(found.units->force), "NEWTON");
    expect_same_picture(contents.numbers, wanted.numbers, tolerance);
    EXPECT_STREQ(converted->LengthUnit, "METER");
  }
};

TEST_F(WriteInSi, IsWhatABodyBuiltInSiGives) {
  for (const char* options : {"no_ortho", "no_ortho,no_xdr", "no_ortho,full_str", "no_ortho,sparse_str",
                              "no_ortho,82_comp", "no_ortho,81_comp"}) {
    expect_same_dataset({}, options);
  }
  expect_same_dataset({}, "no_ortho,single", 1e-6);
}

TEST_F(WriteInSi, HoldsForModesHeldInMemory) {
  ModelOptions model;
  model.keep_modes = true;
  expect_same_dataset(model, "no_ortho");
}

TEST_F(WriteInSi, HoldsForDampingAndLoadsOnTheRigidAxes) {
  ModelOptions model;
  model.axis_damping = true;
  model.processed_loads = true;
  expect_same_dataset(model, "no_ortho");
}

// Invariants come from the nodes, and damping and loads are put on the rigid axes, before the units change.
TEST_F(WriteInSi, ComesAfterTheFullInvariants) {
  ModelOptions model;
  model.invariants = false;
  expect_same_dataset(model, "no_ortho,full_invar", 1e-9);
  expect_same_dataset(model, "no_ortho,fast_invar", 1e-9);
}

TEST_F(WriteInSi, ComesAfterTheStageThatLeavesARigidBody) {
  ModelOptions model;
  model.invariants = false;
  expect_same_dataset(model, "no_ortho,empty");
}

TEST_F(WriteInSi, OfABodyWithoutUnitsDeclaresThem) {
  FmdBody* const body = make_nodes({1}, 1);
  const Dataset data = written(body, "MKS");
  EXPECT_EQ(data.nodes->at(0).xyz, sample_position(1));
  EXPECT_STREQ(body->ForceUnit, "NEWTON");
}

TEST_F(WriteInSi, ComesAfterTheBandWasChosen) {
  // In megagram, millimetre, second and newton the modes have unit generalized mass.
  const Dataset data = written(make_sample_body(), "MKS,lowpass(12)");
  ASSERT_EQ(data.eigenvalues->size(), 2U);
  const auto& second = data.eigenvalues->at(1);
  EXPECT_NEAR(second.hertz, 10.0, 1e-12);
  EXPECT_NEAR(second.generalized_mass, 1e-3, 1e-17);                            // Mg mm^2
  EXPECT_NEAR(second.generalized_stiffness, 1e-3 * stiffness_of(10.0), 1e-11);  // N mm
  EXPECT_NEAR(second.eigenvalue, stiffness_of(10.0), 1e-10);
  const auto shape = sample_vector(0, kSampleModes[1], kSampleNodes[0]);
  const auto found = data.mode_shapes->at(1, 0);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_NEAR(found[i], (i < 3 ? 1e-3 : 1.0) * shape[i], 1e-15);
}

TEST_F(WriteInSi, IsLeftOutAfterAnIllegalInvariantsOption) {
  FmdBody* const body = make_body_in(kOdd, {});
  EXPECT_EQ(write(body, "no_ortho,invar,MKS"), 1);
  EXPECT_EQ(log.errors, Strings{"Illegal invariants option, use full_invar or fast_invar."});
  const Dataset data = dataset_reader::read_dataset_file("out.fmd");
  EXPECT_EQ(dataset_reader::trimmed(data.units->length), "FOOT");
}

TEST_F(WriteInSi, StaysOnTheBodyAndASecondWriteIsTheSame) {
  FmdBody* const body = make_body_in(kOdd, {});
  EXPECT_EQ(write(body, "no_ortho,MKS"), 1);
  const auto first = dataset_reader::read_bytes("out.fmd");
  EXPECT_EQ(write(body, "no_ortho"), 1);
  EXPECT_EQ(dataset_reader::read_bytes("out.fmd"), first);
}

TEST_F(WriteInSi, OfABodyWithALabelThatNoTableKnowsKeepsItsUnits) {
  FmdBody* const body = make_body_in(kOdd, {});
  std::snprintf(body->LengthUnit, sizeof body->LengthUnit, "OXGANG");
  const Dataset data = written(body, "no_ortho,MKS");
  EXPECT_EQ(dataset_reader::trimmed(data.units->length), "OXGANG");
  EXPECT_EQ(data.nodes->at(0).xyz[0], body->Nodes[0].Coordinates[0]);
}

}  // namespace

}  // namespace fmdtest
