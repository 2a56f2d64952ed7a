// Modes without mass or with complex eigenvalues: what is told of them, and the body that remains.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "body/body.h"
#include "dbmodal/spring_model.h"
#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

std::string infinite(int mode) {
  return "Mode " + std::to_string(mode) +
         " is not physically meaningful\nIt contains an infinite eigenvalue.  Ignoring this mode.\n";
}

bool tells_of_infinity(const std::string& warning) {
  return warning.find("It contains an infinite eigenvalue") != std::string::npos;
}

class SingularMass : public WriteTest {
 protected:
  FmdBody* make(const std::vector<Vector>& shapes) {
    FmdBody* body = FMD_Create(1, static_cast<int>(shapes.size()));
    int mode = 0;
    for (const Vector& v : shapes) FMD_SetMode(body, ++mode, 1, 0, v[0], v[1], v[2], 0, 0, 0);
    return body;
  }

  static void set(FmdBody* body, const Dense& mass, const Dense& stiffness) {
    for (std::size_t i = 0; i < mass.rows; ++i) {
      for (std::size_t j = 0; j <= i; ++j) {
        const int row = static_cast<int>(i) + 1;
        const int column = static_cast<int>(j) + 1;
        FMD_SetGeneralizedMass(body, row, column, mass(i, j));
        FMD_SetGeneralizedStiffness(body, row, column, stiffness(i, j));
      }
    }
  }

  static Dense matrix(std::size_t n, const Vector& values) {
    Dense result(n, n);
    result.values = values;
    return result;
  }

  // A held body whose last nodes have no mass, with as many modes as degrees of freedom.
  static SpringModel partly_massless(std::size_t nodes, std::size_t massless) {
    SpringModel model = make_springs(nodes, 3 * nodes, 40.0, 17);
    for (std::size_t p = nodes - massless; p < nodes; ++p) model.masses[p] = 0.0;
    return model;
  }

  // The same with shapes of their own for the massless nodes, so that the mass matrix has rows of zeros.
  static SpringModel plainly_massless(std::size_t nodes, std::size_t massless) {
    SpringModel model = partly_massless(nodes, massless);
    const std::size_t kept = 3 * (nodes - massless);
    for (std::size_t i = 0; i < model.freedoms(); ++i) {
      for (std::size_t j = 0; j < model.freedoms(); ++j) {
        if (i >= kept || j >= kept) model.shapes(i, j) = i == j ? 1.0 : 0.0;
      }
    }
    return model;
  }

  // Eigenvalues with the massless degrees of freedom eliminated: they follow the others without inertia.
  static Vector condensed(const SpringModel& model, std::size_t massless) {
    const std::size_t kept = model.freedoms() - 3 * massless;
    Dense k = model.stiffness;
    for (std::size_t pivot = model.freedoms(); pivot-- > kept;) {
      for (std::size_t i = 0; i < pivot; ++i) {
        const double factor = k(i, pivot) / k(pivot, pivot);
        for (std::size_t j = 0; j < pivot; ++j) k(i, j) -= factor * k(pivot, j);
      }
    }
    Dense stiffness(kept, kept);
    Dense mass(kept, kept);
    for (std::size_t i = 0; i < kept; ++i) {
      mass(i, i) = model.masses[i / 3];
      for (std::size_t j = 0; j < kept; ++j) stiffness(i, j) = k(i, j);
    }
    return lapack_eigenvalues(stiffness, mass);
  }
};

TEST_F(SingularMass, DropsTheModeThatHasNone) {
  FmdBody* body = make({{1, 0, 0}, {0, 1, 0}});
  set(body, matrix(2, {1, 0, 0, 0}), matrix(2, {2, 1, 1, 4}));
  FMD_SetModalPreload(body, 1, 8.0);
  FMD_SetModalPreload(body, 2, 4.0);
  const Dataset data = written(body);
  // The second mode follows the first without inertia: x2 = -x1 / 4 and 2 - 1/4 is left of the stiffness.
  EXPECT_EQ(FMD_ModeCount(body), 1);
  ASSERT_EQ(data.eigenvalues->size(), 1U);
  EXPECT_NEAR(data.eigenvalues->at(0).eigenvalue, 1.75, 1e-14);
  const auto six = data.mode_shapes->at(0, 0);
  EXPECT_NEAR(std::fabs(six[0]), 1.0, 1e-14);
  EXPECT_NEAR(six[1] / six[0], -0.25, 1e-14);
  EXPECT_EQ(data.transformation->mode_numbers, std::vector<std::int32_t>{1});
  EXPECT_EQ(data.transformation->matrix, Vector{six[0]});
  ASSERT_EQ(data.preload->values.size(), 1U);
  EXPECT_NEAR(data.preload->values[0], 7.0 * six[0], 1e-14);
  ASSERT_EQ(log.warnings.size(), 1U);
  EXPECT_TRUE(log.warnings[0] == infinite(1) || log.warnings[0] == infinite(2)) << log.warnings[0];
  const std::string line = "   2 : Infinity.  Possible mass singularity.  Ignored.";
  EXPECT_EQ(std::count(log.infos.begin(), log.infos.end(), line), 1);
  EXPECT_EQ(body->ModeRecords[1].Eigenvalue, 1.2345e+20);
}

TEST_F(SingularMass, LeavesTheEigenvaluesOfTheMassesThatThereAre) {
  for (const std::size_t massless : {1U, 2U}) {
    const SpringModel model = plainly_massless(5, massless);
    FmdBody* body = make_body(model);
    const Dataset data = written(body);
    const Vector expected = condensed(model, massless);
    ASSERT_EQ(data.eigenvalues->size(), expected.size());
    EXPECT_EQ(std::count_if(log.warnings.begin(), log.warnings.end(), tells_of_infinity),
              static_cast<std::ptrdiff_t>(3 * massless));
    for (std::size_t i = 0; i < expected.size(); ++i) {
      EXPECT_NEAR(data.eigenvalues->at(i).eigenvalue, expected[i], 1e-11 * expected.back()) << i;
    }
    const Dense shapes = translations_in(*data.mode_shapes);
    const Dense mass = transposed(shapes) * (model.mass_matrix() * shapes);
    for (std::size_t i = 0; i < mass.rows; ++i) {
      for (std::size_t j = 0; j < mass.rows; ++j) EXPECT_NEAR(mass(i, j), i == j ? 1.0 : 0.0, 1e-10);
    }
  }
}

TEST_F(SingularMass, InMixedShapesIsFoundWithinRounding) {
  // Rounding leaves the mass matrix a little mass: a mode that should be infinite may come out far above.
  const SpringModel model = partly_massless(5, 1);
  FmdBody* body = make_body(model);
  const Dataset data = written(body);
  const Vector expected = condensed(model, 1);
  ASSERT_GE(data.eigenvalues->size(), expected.size());
  EXPECT_LT(data.eigenvalues->size(), 15U);
  for (std::size_t i = 0; i < data.eigenvalues->size(); ++i) {
    const double found = data.eigenvalues->at(i).eigenvalue;
    if (i < expected.size()) {
      EXPECT_NEAR(found, expected[i], 1e-9 * expected.back()) << i;
    } else {
      EXPECT_GT(found, 1e9 * expected.back()) << i;
    }
  }
}

TEST_F(SingularMass, LeavesABodyOfOneSize) {
  const SpringModel model = plainly_massless(3, 1);
  FmdBody* body = make_body(model);
  FMD_SetKeepModesInMemory(body, 1);
  const Dataset data = written(body);
  const Dense shapes = translations_in(*data.mode_shapes);
  ASSERT_EQ(shapes.columns, 6U);
  EXPECT_EQ(FMD_ModeCount(body), 6);
  Dense t(6, 6);
  EXPECT_EQ(FMD_Transformation(body, t.values.data()), 1);
  EXPECT_EQ(data.transformation->matrix, t.values);
  EXPECT_EQ(data.transformation->mode_numbers, (std::vector<std::int32_t>{11, 12, 13, 14, 15, 16}));
  EXPECT_EQ(data.loads->mode_count, 6);
  EXPECT_EQ(data.monitor_points->at(0).displacement.size(), 18U);
  for (std::size_t i = 0; i < 18; ++i) {
    EXPECT_NEAR(data.monitor_points->at(0).displacement[i], shapes.values[i], 1e-11);
    EXPECT_NEAR(data.monitor_points->at(0).load[18 + i], shapes.values[18 + i], 1e-11);
  }
  // A transformation that is set now is multiplied to the square that is left.
  Dense twice(6, 6);
  for (std::size_t i = 0; i < 6; ++i) twice(i, i) = 2.0;
  EXPECT_EQ(FMD_SetTransformation(body, twice.values.data()), 1);
  Dense composed(6, 6);
  EXPECT_EQ(FMD_Transformation(body, composed.values.data()), 1);
  EXPECT_EQ(largest_difference(composed, t * twice), 0.0);
}

TEST_F(SingularMass, IsGoneWhenTheBodyIsWrittenAgain) {
  FmdBody* body = make_body(plainly_massless(3, 1));
  const Dataset data = written(body);
  const Dataset again = written(body);
  EXPECT_EQ(std::count_if(log.warnings.begin(), log.warnings.end(), tells_of_infinity), 0);
  ASSERT_EQ(again.eigenvalues->size(), 6U);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_NEAR(again.eigenvalues->at(i).hertz, data.eigenvalues->at(i).hertz, 1e-10);
  }
  EXPECT_LE(largest_difference(translations_in(*again.mode_shapes), translations_in(*data.mode_shapes)),
            1e-10);
  EXPECT_EQ(again.loads->cases.at(0).values.size(), 6U);
}

TEST_F(SingularMass, MayTakeAllModes) {
  FmdBody* body = make({{1, 0, 0}, {0, 1, 0}});
  set(body, matrix(2, {0, 0, 0, 0}), matrix(2, {2, 1, 1, 4}));
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(log.warnings, (Strings{infinite(1), infinite(2)}));
  EXPECT_EQ(FMD_ModeCount(body), 0);
}

TEST_F(SingularMass, OfADiagonalSetEndsItWhereTheFirstOneStands) {
  FmdBody* body = make({{4, 0, 0}, {0, 1, 0}, {0, 0, 1}});
  const double masses[] = {4.0, 0.0, 9.0};
  for (const int mode : {1, 2, 3}) {
    FMD_SetGeneralizedMass(body, mode, mode, masses[mode - 1]);
    FMD_SetGeneralizedStiffness(body, mode, mode, 36.0);
  }
  const Dataset data = written(body);
  EXPECT_EQ(log.warnings, Strings{"Mode 2 is not physically meaningful.\nIt is associated with a zero "
                                  "generalized mass\n"});
  ASSERT_EQ(data.eigenvalues->size(), 1U);
  EXPECT_EQ(data.eigenvalues->at(0).eigenvalue, 9.0);
  EXPECT_EQ(data.mode_shapes->at(0, 0)[0], 2.0);
  EXPECT_EQ(data.transformation->matrix, Vector{0.5});
  // No mass, no root: the record keeps what it has. The third has been normalised all the same.
  EXPECT_EQ(body->ModeRecords[1].GeneralizedMass, 0.0);
  EXPECT_EQ(body->ModeRecords[1].GeneralizedStiffness, 36.0);
  EXPECT_EQ(body->ModeRecords[2].GeneralizedMass, 1.0);
}

TEST_F(SingularMass, TakesItsDampingAlong) {
  FmdBody* body = make({{1, 0, 0}, {0, 1, 0}});
  set(body, matrix(2, {1, 0, 0, 0}), matrix(2, {2, 1, 1, 4}));
  FMD_SetGeneralizedDamping(body, 2, 2, 5.0);
  FMD_SetGeneralizedDamping(body, 1, 1, 3.0);
  FMD_SetGeneralizedDamping(body, 2, 1, 4.0);
  const Dataset data = written(body);
  ASSERT_EQ(data.generalized_damping->entries.size(), 1U);
  EXPECT_EQ(data.generalized_damping->entries[0].row, 1);
  EXPECT_EQ(data.generalized_damping->entries[0].column, 1);
  EXPECT_EQ(data.generalized_damping->entries[0].value, 3.0);
}

TEST_F(SingularMass, LeavesNoDampingWhereItHadAllOfIt) {
  FmdBody* body = make({{1, 0, 0}, {0, 1, 0}});
  set(body, matrix(2, {1, 0, 0, 0}), matrix(2, {2, 1, 1, 4}));
  FMD_SetGeneralizedDamping(body, 2, 1, 4.0);
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(FMD_GenDampExist(body), 0);
  EXPECT_FALSE(written(body).generalized_damping);
}

TEST_F(SingularMass, OfHardlyAnyMassIsInfiniteToo) {
  FmdBody* body = make({{1, 0, 0}, {0, 1, 0}});
  FMD_SetGeneralizedMass(body, 1, 1, 4.0);
  FMD_SetGeneralizedMass(body, 2, 2, 1e-16);
  FMD_SetGeneralizedStiffness(body, 2, 2, 1.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(FMD_ModeCount(body), 1);
  EXPECT_EQ(body->ModeRecords[1].GeneralizedMass, 1.0);
  EXPECT_EQ(body->ModeRecords[1].GeneralizedStiffness, 1.2345e+20);
}

TEST_F(SingularMass, IsNotNegativeMassWhichHasNoRoot) {
  FmdBody* body = make({{1, 0, 0}});
  FMD_SetGeneralizedMass(body, 1, 1, -4.0);
  FMD_SetGeneralizedStiffness(body, 1, 1, 8.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  double t = 0.0;
  EXPECT_EQ(FMD_Transformation(body, &t), 1);
  EXPECT_TRUE(std::isnan(t));
  EXPECT_EQ(body->ModeRecords[0].Eigenvalue, -2.0);
  EXPECT_EQ(body->ModeRecords[0].GeneralizedMass, 1.0);
  EXPECT_EQ(body->ModeRecords[0].GeneralizedStiffness, -2.0);
}

TEST_F(SingularMass, OfIndefiniteSetsMayGiveComplexEigenvalues) {
  // det(K - x G) = -x^2 - 1
  FmdBody* body = make({{1, 0, 0}, {0, 1, 0}});
  set(body, matrix(2, {1, 0, 0, -1}), matrix(2, {0, 1, 1, 0}));
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  const std::string head =
      "Flexible component is not physically meaningful\nIt contains an eigenvalue with a nonzero imaginary "
      "part, ";
  const std::string tail = "\nThis imaginary part is being ignored.  Please verify that this is acceptable.";
  EXPECT_EQ(log.warnings, (Strings{head + "1.000000" + tail, head + "-1.000000" + tail}));
  EXPECT_EQ(FMD_ModeCount(body), 2);
}

TEST_F(SingularMass, OrWorseEndsWithoutACrash) {
  for (const double bad : {std::nan(""), HUGE_VAL, 1e308, 5e-324}) {
    SpringModel model = make_springs(3, 9, 20.0, 5);
    FmdBody* body = make_body(model);
    FMD_SetGeneralizedMass(body, 12, 11, bad);
    FMD_SetGeneralizedStiffness(body, 13, 13, bad);
    const int done = FMD_OrthoNormalize(body);
    EXPECT_TRUE(done == 0 || done == 1);
    EXPECT_GT(log.infos.size(), 9U);
    log.clear();
  }
}

}  // namespace

}  // namespace fmdtest
