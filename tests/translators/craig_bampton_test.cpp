// Component modes against closed solutions and against dense ones by LAPACK.
#include "calculix/craig_bampton.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <functional>

#include "translators/lapack.h"
#include "translators/small_models.h"

using calculix::Coupling;
using calculix::InterfaceKind;
using calculix::ReducedModel;
using namespace fmdtest;

namespace {

constexpr double pi = 3.14159265358979323846;

Coupling single(int dof) {
  Coupling coupling;
  coupling.width = 1;
  coupling.dofs = {dof};
  coupling.factors = {1.0};
  return coupling;
}

// The nodes of the truss by their places, as one interface about its centre.
std::vector<Coupling> of_truss(InterfaceKind kind, const std::vector<std::size_t>& places) {
  std::vector<calculix::InterfaceNode> nodes;
  for (const std::size_t place : places) nodes.push_back(truss_nodes()[place]);
  return calculix::couplings_of(kind, nodes, calculix::centre_of(nodes), calculix::RowIndex(truss_dofs()));
}

ReducedModel reduced(const Structure& structure, const std::vector<Coupling>& couplings, int fixed_modes) {
  return calculix::craig_bampton(sparse(structure.stiffness), sparse(structure.mass), couplings, fixed_modes,
                                 nullptr);
}

double entry(const std::vector<double>& matrix, const ReducedModel& model, int row, int column) {
  return matrix[static_cast<std::size_t>(row * model.modes + column)];
}

double eigenvalue(const ReducedModel& model, int fixed_mode) {
  const int i = model.constraint_modes + fixed_mode;
  return entry(model.stiffness, model, i, i) / entry(model.mass, model, i, i);
}

// V^T X V by plain sums.
void expect_projection(const DenseMatrix& matrix, const ReducedModel& model,
                       const std::vector<double>& projected, double tolerance) {
  for (int a = 0; a < model.modes; ++a) {
    for (int b = 0; b < model.modes; ++b) {
      double sum = 0.0;
      for (int i = 0; i < matrix.size; ++i) {
        for (int j = 0; j < matrix.size; ++j) {
          sum += model.vector(a)[i] * matrix.at(i, j) * model.vector(b)[j];
        }
      }
      EXPECT_NEAR(entry(projected, model, a, b), sum, tolerance) << a << " " << b;
      EXPECT_EQ(entry(projected, model, a, b), entry(projected, model, b, a));
    }
  }
}

void expect_same(const std::vector<double>& found, const std::vector<double>& expected, double tolerance) {
  ASSERT_EQ(found.size(), expected.size());
  const double scale = std::fabs(expected.back());
  for (std::size_t i = 0; i < found.size(); ++i) EXPECT_NEAR(found[i], expected[i], tolerance * scale) << i;
}

std::string error_of(const std::function<void()>& call) {
  try {
    call();
  } catch (const calculix::ReductionError& error) {
    return error.what();
  }
  return "no error";
}

const std::string unheld =
    "the stiffness matrix is singular with all interfaces held: the interfaces do not hold the part, or a "
    "piece of "
    "it is loose";

}  // namespace

TEST(CraigBampton, GivesTheClosedSolutionOfAChainHeldAtBothEnds) {
  const ReducedModel model = reduced(chain(12, 50.0, 2.0), {single(0), single(11)}, 4);
  ASSERT_EQ(model.constraint_modes, 2);
  ASSERT_EQ(model.modes, 6);
  for (int i = 0; i < 12; ++i) {
    EXPECT_NEAR(model.vector(0)[i], 1.0 - i / 11.0, 1e-14);
    EXPECT_NEAR(model.vector(1)[i], i / 11.0, 1e-14);
  }
  for (int m = 0; m < 4; ++m) {
    const double sine = std::sin((m + 1) * pi / 22.0);
    EXPECT_NEAR(eigenvalue(model, m) / (4.0 * 50.0 / 2.0 * sine * sine), 1.0, 1e-12);
    EXPECT_NEAR(entry(model.mass, model, 2 + m, 2 + m), 1.0, 1e-13);
    const double* shape = model.vector(2 + m);
    EXPECT_EQ(shape[0], 0.0);
    EXPECT_EQ(shape[11], 0.0);
    for (int i = 1; i < 11; ++i) {
      EXPECT_NEAR(shape[i] / shape[1], std::sin((m + 1) * pi * i / 11.0) / std::sin((m + 1) * pi / 11.0),
                  1e-11);
    }
  }
  EXPECT_NEAR(entry(model.stiffness, model, 0, 0), 50.0 / 11.0, 1e-13);
  EXPECT_NEAR(entry(model.stiffness, model, 0, 1), -50.0 / 11.0, 1e-13);
}

TEST(CraigBampton, ProjectsBothMatrices) {
  const Structure structure = truss();
  auto couplings = of_truss(InterfaceKind::average, {0, 1, 2, 3});
  const auto nodes = of_truss(InterfaceKind::nodes, {6, 4});
  couplings.insert(couplings.end(), nodes.begin(), nodes.end());
  const ReducedModel model = reduced(structure, couplings, 5);
  ASSERT_EQ(model.modes, 6 + 6 + 5);
  expect_projection(structure.mass, model, model.mass, 1e-12);
  expect_projection(structure.stiffness, model, model.stiffness, 1e-11);
}

// With all modes the reduced model is the part itself.
TEST(CraigBampton, LosesNothingWithAllModes) {
  const Structure structure = truss();
  const auto expected = finite_eigenvalues(structure.stiffness.values, structure.mass.values);
  const auto average = of_truss(InterfaceKind::average, {0, 1, 2, 3, 4});
  const ReducedModel whole = reduced(structure, average, 24 - 6);
  expect_same(finite_eigenvalues(whole.stiffness, whole.mass), expected, 1e-11);
  const ReducedModel nodes = reduced(structure, of_truss(InterfaceKind::nodes, {0, 1, 7}), 24 - 9);
  expect_same(finite_eigenvalues(nodes.stiffness, nodes.mass), expected, 1e-11);
}

TEST(CraigBampton, GivesTheEigenvaluesOfARigidGroupThatIsTiedTogether) {
  // Rows of the group exchanged for six coordinates: T^T K T and T^T M T.
  const Structure structure = truss();
  const Coupling rigid = of_truss(InterfaceKind::rigid, {0, 1, 2, 3})[0];
  const int free = 12;
  DenseMatrix tie(24);  // columns: six coordinates, then the degrees of freedom from 12 on
  for (std::size_t i = 0; i < 12; ++i) {
    for (int k = 0; k < 6; ++k)
      tie.at(static_cast<int>(i), k) = rigid.factors[6 * i + static_cast<std::size_t>(k)];
  }
  for (int i = 0; i < free; ++i) tie.at(12 + i, 6 + i) = 1.0;
  const auto tied = [&](const DenseMatrix& matrix) {
    std::vector<double> result(18 * 18, 0.0);
    for (int a = 0; a < 18; ++a) {
      for (int b = 0; b < 18; ++b) {
        for (int i = 0; i < 24; ++i) {
          for (int j = 0; j < 24; ++j) {
            result[static_cast<std::size_t>(18 * b + a)] += tie.at(i, a) * matrix.at(i, j) * tie.at(j, b);
          }
        }
      }
    }
    return result;
  };
  const ReducedModel model = reduced(structure, {rigid}, 12);
  expect_same(finite_eigenvalues(model.stiffness, model.mass),
              finite_eigenvalues(tied(structure.stiffness), tied(structure.mass)), 1e-11);
}

// K u = A^T m, A u = unit vector: the forces are spread over the group as the sums are.
TEST(CraigBampton, SpreadsTheForcesOfAnAverageOverItsGroup) {
  const Structure structure = truss();
  const Coupling average = of_truss(InterfaceKind::average, {0, 2, 5, 7})[0];
  const ReducedModel model = reduced(structure, {average}, 0);
  const auto constraints = constraints_of(average, 24);
  std::vector<double> right(30 * 6, 0.0);
  for (std::size_t c = 0; c < 6; ++c) right[30 * c + 24 + c] = 1.0;
  const auto expected = solution(bordered(structure.stiffness, constraints).values, right);
  for (std::size_t c = 0; c < 6; ++c) {
    for (std::size_t i = 0; i < 24; ++i) {
      EXPECT_NEAR(model.vector(static_cast<int>(c))[i], expected[30 * c + i], 1e-11) << c << " " << i;
    }
  }
}

TEST(CraigBampton, HoldsTheAverageInTheFixedModes) {
  const Structure structure = truss();
  const Coupling average = of_truss(InterfaceKind::average, {0, 2, 5, 7})[0];
  const ReducedModel model = reduced(structure, {average}, 7);
  const auto constraints = constraints_of(average, 24);
  const auto expected =
      finite_eigenvalues(bordered(structure.stiffness, constraints).values,
                         bordered(structure.mass, std::vector<std::vector<double>>(6)).values);
  ASSERT_EQ(expected.size(), 18U);
  for (int m = 0; m < 7; ++m) {
    EXPECT_NEAR(eigenvalue(model, m) / expected[static_cast<std::size_t>(m)], 1.0, 1e-11);
    for (const auto& sum : constraints) {
      double value = 0.0;
      for (std::size_t i = 0; i < 24; ++i) value += sum[i] * model.vector(6 + m)[i];
      EXPECT_NEAR(value, 0.0, 1e-13);
    }
  }
}

TEST(CraigBampton, CarriesRigidMotionsWithoutStrain) {
  const Structure structure = truss();
  std::vector<Coupling> couplings = of_truss(InterfaceKind::average, {0, 1, 2, 3});
  couplings.push_back(of_truss(InterfaceKind::rigid, {4, 5, 6})[0]);
  const ReducedModel model = reduced(structure, couplings, 6);
  const auto values = finite_eigenvalues(model.stiffness, model.mass);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_LE(std::fabs(values[i]), 1e-12 * values[6]);
}

TEST(CraigBampton, TakesASingularMass) {
  Structure structure = truss();
  for (const int dof : {1, 5, 9, 13, 17, 20, 23}) structure.mass.at(dof, dof) = 0.0;
  const Coupling average = of_truss(InterfaceKind::average, {0, 1, 2, 3})[0];
  const auto expected =
      finite_eigenvalues(bordered(structure.stiffness, constraints_of(average, 24)).values,
                         bordered(structure.mass, std::vector<std::vector<double>>(6)).values);
  const int count = static_cast<int>(expected.size());
  ASSERT_LT(count, 18);
  const ReducedModel model = reduced(structure, {average}, count);
  for (int m = 0; m < count; ++m) {
    EXPECT_NEAR(eigenvalue(model, m) / expected[static_cast<std::size_t>(m)], 1.0, 1e-9);
    EXPECT_NEAR(entry(model.mass, model, 6 + m, 6 + m), 1.0, 1e-12);
  }
  EXPECT_EQ(error_of([&] { reduced(structure, {average}, count + 1); }),
            "the part with held interfaces has " + std::to_string(count) + " modes of finite frequency, " +
                std::to_string(count + 1) + " were asked for");
}

// Large enough for the iteration. Every second mass is zero, so that two springs act as one of half
// stiffness.
TEST(CraigBampton, GivesTheClosedSolutionOfALongChainWithMassAtEverySecondNode) {
  const int springs = 2 * 601;
  Structure structure = chain(springs + 1, 80.0, 3.0);
  for (int i = 1; i <= springs; i += 2) structure.mass.at(i, i) = 0.0;
  const ReducedModel model = reduced(structure, {single(0), single(springs)}, 15);
  for (int m = 0; m < 15; ++m) {
    const double sine = std::sin((m + 1) * pi / springs);
    EXPECT_NEAR(eigenvalue(model, m) / (4.0 * 40.0 / 3.0 * sine * sine), 1.0, 1e-9) << m;
    for (int i = 1; i < springs; i += 2) {
      EXPECT_NEAR(model.vector(2 + m)[i], 0.5 * (model.vector(2 + m)[i - 1] + model.vector(2 + m)[i + 1]),
                  1e-12);
    }
  }
}

// A light frame with a few heavy spots: five masses in a long chain without mass are a chain of five.
TEST(CraigBampton, FindsAllModesOfFewMassesOnALargePart) {
  Structure structure = chain(1201, 1000.0, 0.0);
  for (int i = 200; i < 1200; i += 200) structure.mass.at(i, i) = 2.0;
  const ReducedModel model = reduced(structure, {single(0), single(1200)}, 5);
  for (int m = 0; m < 5; ++m) {
    const double sine = std::sin((m + 1) * pi / 12.0);
    EXPECT_NEAR(eigenvalue(model, m) / (4.0 * 5.0 / 2.0 * sine * sine), 1.0, 1e-10) << m;
  }
  EXPECT_EQ(error_of([&] {
              reduced(structure, {single(0), single(1200)}, 6);
            }),
            "the part with held interfaces has 5 modes of finite frequency, 6 were asked for");
}

// Two equal chains that do not touch have every frequency twice.
TEST(CraigBampton, FindsBothModesOfAnEigenvalueThatComesTwice) {
  const int half = 300;
  const Structure one = chain(half, 80.0, 3.0);
  Structure two{DenseMatrix(2 * half), DenseMatrix(2 * half)};
  for (int copy : {0, half}) {
    for (int i = 0; i < half; ++i) {
      two.mass.at(copy + i, copy + i) = 3.0;
      for (int j = std::max(0, i - 1); j <= std::min(half - 1, i + 1); ++j) {
        two.stiffness.at(copy + i, copy + j) = one.stiffness.at(i, j);
      }
    }
  }
  const std::vector<Coupling> ends = {single(0), single(half - 1), single(half), single(2 * half - 1)};
  const ReducedModel model = reduced(two, ends, 12);
  for (int m = 0; m < 12; ++m) {
    const double sine = std::sin((m / 2 + 1) * pi / (2.0 * (half - 1)));
    EXPECT_NEAR(eigenvalue(model, m) / (4.0 * 80.0 / 3.0 * sine * sine), 1.0, 1e-9) << m;
  }
}

TEST(CraigBampton, TakesAPartOfInterfacesAlone) {
  const Structure structure = chain(3, 5.0, 1.0);
  const ReducedModel model = reduced(structure, {single(2), single(0), single(1)}, 0);
  ASSERT_EQ(model.modes, 3);
  EXPECT_EQ(entry(model.stiffness, model, 2, 2), 10.0);
  EXPECT_EQ(entry(model.stiffness, model, 0, 1), 0.0);
  EXPECT_EQ(error_of([&] {
              reduced(structure, {single(2), single(0), single(1)}, 1);
            }),
            "the part with held interfaces has 0 modes of finite frequency, 1 were asked for");
}

TEST(CraigBampton, RefusesAPartThatCanStillMove) {
  EXPECT_EQ(error_of([] { reduced(chain(6, 50.0, 2.0), {}, 2); }), unheld);
  EXPECT_EQ(error_of([] { reduced(truss(), of_truss(InterfaceKind::nodes, {0, 1}), 2); }), unheld);
  Structure loose = truss();
  for (int dof : {21, 22, 23}) {
    for (int i = 0; i < 24; ++i) loose.stiffness.at(i, dof) = loose.stiffness.at(dof, i) = 0.0;
  }
  EXPECT_EQ(error_of([&] { reduced(loose, of_truss(InterfaceKind::average, {0, 1, 2, 3}), 2); }), unheld);
}

TEST(CraigBampton, TellsWhatItDoes) {
  std::vector<std::string> steps;
  const Structure structure = chain(5, 5.0, 1.0);
  calculix::craig_bampton(sparse(structure.stiffness), sparse(structure.mass), {single(0)}, 1,
                          [&](const char* step) { steps.emplace_back(step); });
  EXPECT_EQ(steps, (std::vector<std::string>{"Factorising", "Solving constraint modes",
                                             "Solving fixed-interface modes", "Projecting matrices"}));
}
