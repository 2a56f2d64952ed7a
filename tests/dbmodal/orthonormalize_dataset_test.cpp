// Orthonormalised bodies as they stand on disk, worked out again from the vectors in the file alone.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "dbmodal/spring_model.h"
#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

struct Case {
  std::size_t nodes;
  std::size_t modes;
  double ground;
};

class OrthonormalDataset : public WriteTest, public ::testing::WithParamInterface<Case> {
 protected:
  void SetUp() override {
    model = make_springs(GetParam().nodes, GetParam().modes, GetParam().ground, 41);
    body = make_body(model);
    data = written(body);
    ASSERT_TRUE(data.mode_shapes);
    shapes = translations_in(*data.mode_shapes);
    ASSERT_EQ(shapes.columns, model.shapes.columns);
  }

  // What stands on disk, within the rounding of a few hundred products of this size.
  void expect_row(const Vector& found, const Dense& left, double size) const {
    const Dense expected = left * shapes;
    ASSERT_EQ(found.size(), expected.values.size());
    for (std::size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i], expected.values[i], 1e-11 * size);
  }

  Dense row_of(const Vector& values) const {
    Dense row(1, values.size());
    row.values = values;
    return row;
  }

  SpringModel model;
  FmdBody* body = nullptr;
  Dataset data;
  Dense shapes;
};

INSTANTIATE_TEST_SUITE_P(Of, OrthonormalDataset,
                         ::testing::Values(Case{2, 2, 50.0}, Case{2, 5, 50.0}, Case{4, 9, 50.0},
                                           Case{5, 9, 0.0}, Case{10, 20, 0.0}, Case{20, 60, 30.0}),
                         [](const auto& tested) {
                           return "Nodes" + std::to_string(tested.param.nodes) + "Modes" +
                                  std::to_string(tested.param.modes) +
                                  (tested.param.ground > 0.0 ? "Held" : "Free");
                         });

TEST_P(OrthonormalDataset, HasTheIdentityAsGeneralizedMass) {
  const Dense mass = transposed(shapes) * (model.mass_matrix() * shapes);
  Dense identity(mass.rows, mass.rows);
  for (std::size_t i = 0; i < mass.rows; ++i) identity(i, i) = 1.0;
  EXPECT_LE(largest_difference(mass, identity), 1e-10);
}

TEST_P(OrthonormalDataset, HasADiagonalStiffnessOfItsEigenvalues) {
  const Dense stiffness = transposed(shapes) * (model.stiffness * shapes);
  Dense diagonal(stiffness.rows, stiffness.rows);
  double largest = 0.0;
  for (std::size_t i = 0; i < stiffness.rows; ++i) {
    diagonal(i, i) = data.eigenvalues->at(i).eigenvalue;
    largest = std::max(largest, diagonal(i, i));
  }
  EXPECT_LE(largest_difference(stiffness, diagonal), 1e-10 * largest);
}

TEST_P(OrthonormalDataset, HasTheEigenvaluesThatLapackFinds) {
  const Vector expected = lapack_eigenvalues(model.generalized_stiffness(), model.generalized_mass());
  ASSERT_EQ(expected.size(), data.eigenvalues->size());
  for (std::size_t i = 0; i < expected.size(); ++i) {
    const dataset_reader::Eigenvalue& found = data.eigenvalues->at(i);
    EXPECT_NEAR(found.eigenvalue, expected[i], 1e-11 * expected.back()) << i;
    EXPECT_EQ(found.mode, static_cast<int>(i) + 1);
    EXPECT_EQ(found.generalized_mass, 1.0);
    EXPECT_EQ(found.generalized_stiffness, found.eigenvalue);
    EXPECT_EQ(found.radians, std::copysign(std::sqrt(std::fabs(found.eigenvalue)), found.eigenvalue));
    EXPECT_EQ(found.hertz, found.radians / 6.28318530718);
  }
}

TEST_P(OrthonormalDataset, HasTheTransformationThatMadeItsShapes) {
  const auto& transformation = *data.transformation;
  ASSERT_EQ(transformation.mode_numbers.size(), shapes.columns);
  Dense t(shapes.columns, shapes.columns);
  ASSERT_EQ(transformation.matrix.size(), t.values.size());
  t.values = transformation.matrix;
  EXPECT_LE(largest_difference(model.shapes * t, shapes), 1e-11);
  for (std::size_t i = 0; i < shapes.columns; ++i) {
    EXPECT_EQ(transformation.mode_numbers[i], static_cast<int>(i) + 11);
    EXPECT_EQ(FMD_ModeNumber(body, static_cast<int>(i)), static_cast<int>(i) + 1);
  }
}

TEST_P(OrthonormalDataset, HasRotationsThatFollowedTheTranslations) {
  const Dense six = all_values_in(*data.mode_shapes);
  for (std::size_t p = 0; p < model.nodes; ++p) {
    for (std::size_t mode = 0; mode < six.columns; ++mode) {
      for (std::size_t k = 0; k < 3; ++k) {
        EXPECT_NEAR(six(6 * p + 3 + k, mode), 2.0 * six(6 * p + k, mode), 1e-12);
      }
    }
  }
}

TEST_P(OrthonormalDataset, HasStressesAndStrainsOfItsShapes) {
  const Dense expected = model.stresses * shapes;
  ASSERT_TRUE(data.stress && data.strain);
  for (const auto* vectors : {&data.stress, &data.strain}) {
    const Dense found = all_values_in(**vectors);
    for (std::size_t n = 0; n < (*vectors)->node_ids.size(); ++n) {
      const auto p = static_cast<std::size_t>((*vectors)->node_ids[n] - 1);
      for (std::size_t k = 0; k < 6; ++k) {
        for (std::size_t mode = 0; mode < found.columns; ++mode) {
          EXPECT_NEAR(found(6 * n + k, mode), expected(6 * p + k, mode), 1e-10);
        }
      }
    }
  }
}

TEST_P(OrthonormalDataset, HasTheLoadsOnItsShapes) {
  const double size = 10.0 * std::sqrt(static_cast<double>(model.freedoms()));
  expect_row(data.preload->values, row_of(model.forces), size);
  expect_row(data.loads->cases.at(0).values, row_of(model.forces), size);
  expect_row(data.loads->cases.at(1).values, row_of(model.other_forces), size);
}

TEST_P(OrthonormalDataset, HasMonitorPointsThatReadItsShapes) {
  const auto& point = data.monitor_points->at(0);
  Vector first_node(shapes.values.begin(),
                    shapes.values.begin() + static_cast<std::ptrdiff_t>(3 * shapes.columns));
  ASSERT_EQ(point.displacement.size(), first_node.size());
  for (std::size_t i = 0; i < first_node.size(); ++i) {
    EXPECT_NEAR(point.displacement[i], first_node[i], 1e-11);
    // The load operator was set to the displacements of the first two nodes.
    if (model.nodes > 1) {
      EXPECT_NEAR(point.load.at(i + first_node.size()), shapes.values.at(i + first_node.size()), 1e-11);
    }
  }
}

TEST_P(OrthonormalDataset, IsTheSameWhenWrittenAgain) {
  const Dataset again = written(body);
  const Dense same = translations_in(*again.mode_shapes);
  ASSERT_EQ(same.columns, shapes.columns);
  // Motions of no frequency may come in another order.
  const std::size_t first = model.shapes.columns >= 6 && GetParam().ground == 0.0 ? 6 : 0;
  for (std::size_t mode = first; mode < shapes.columns; ++mode) {
    EXPECT_NEAR(again.eigenvalues->at(mode).eigenvalue, data.eigenvalues->at(mode).eigenvalue,
                1e-11 * data.eigenvalues->back().eigenvalue);
    for (std::size_t i = 0; i < shapes.rows; ++i) EXPECT_NEAR(same(i, mode), shapes(i, mode), 1e-11);
  }
}

TEST_P(OrthonormalDataset, BeginsWithTheRigidMotionsOfAFreeBody) {
  if (GetParam().ground == 0.0) {
    const double seventh = data.eigenvalues->at(6).eigenvalue;
    for (std::size_t i = 0; i < 6; ++i) {
      EXPECT_LE(std::fabs(data.eigenvalues->at(i).eigenvalue), 1e-9 * seventh);
    }
    EXPECT_EQ(FMD_RigidBodyModeCount(body), 6);
  } else {
    EXPECT_EQ(FMD_RigidBodyModeCount(body), 0);
  }
}

}  // namespace

}  // namespace fmdtest
