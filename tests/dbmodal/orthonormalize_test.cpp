#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

class OrthoNormalize : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(3, 4);
    ASSERT_NE(body, nullptr);
  }

  void add_mode(int number, double mass, double stiffness) const {
    FMD_SetGeneralizedMass(body, number, number, mass);
    FMD_SetGeneralizedStiffness(body, number, number, stiffness);
  }

  FmdBody* body = nullptr;
};

TEST_F(OrthoNormalize, UnitMassesGiveTheIdentityAndTheRecords) {
  add_mode(11, 1.0, 100.0);
  add_mode(4, 1.0, 400.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  double t[4];
  EXPECT_EQ(FMD_Transformation(body, t), 1);
  EXPECT_EQ((std::vector<double>(t, t + 4)), (std::vector<double>{1, 0, 0, 1}));
  EXPECT_EQ(FMD_ModeNumber(body, 0), 1);
  EXPECT_EQ(FMD_ModeNumber(body, 1), 2);
  EXPECT_EQ(body->TransformationModes[0], 11);
  EXPECT_EQ(body->TransformationModes[1], 4);
  double values[5];
  EXPECT_EQ(FMD_Eigenvalue(body, 2, &values[0], &values[1], &values[2], &values[3], &values[4]), 1);
  EXPECT_EQ(values[0], 400.0);
  EXPECT_DOUBLE_EQ(values[1], 20.0 / 6.28318530718);
  EXPECT_DOUBLE_EQ(values[2], 20.0);
  EXPECT_EQ(values[3], 1.0);
  EXPECT_EQ(values[4], 400.0);
  EXPECT_EQ(body->GenStiff, nullptr);
  EXPECT_EQ(body->GenMass, nullptr);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(OrthoNormalize, ASecondCallFindsTheBodyDone) {
  add_mode(5, 1.0, 9.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(body->TransformationModes[0], 5);
}

TEST_F(OrthoNormalize, FrequenciesFollowTheUnitsAndTheSign) {
  char labels[4][16] = {"KILOGRAM", "MILLIMETER", "SECOND", "NEWTON"};
  FMD_SetUnits(body, labels[0], labels[1], labels[2], labels[3]);
  add_mode(1, 1.0, 4.0);
  add_mode(2, 1.0, -4.0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  double radians = 0.0;
  FMD_Eigenvalue(body, 1, nullptr, nullptr, &radians, nullptr, nullptr);
  EXPECT_DOUBLE_EQ(radians, std::sqrt(4000.0));
  FMD_Eigenvalue(body, 2, nullptr, nullptr, &radians, nullptr, nullptr);
  EXPECT_DOUBLE_EQ(radians, -std::sqrt(4000.0));
}

TEST_F(OrthoNormalize, AZeroMassModeEndsTheActiveModes) {
  add_mode(1, 1.0, 1.0);
  add_mode(2, 0.0, 2.0);
  add_mode(3, 1.0, 3.0);
  body->ShouldMassNormalizeModes = 0;
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(log.warnings,
            std::vector<std::string>{"Mode 2 is not physically meaningful.\nIt is associated with a zero "
                                     "generalized mass\n"});
  EXPECT_EQ(FMD_ModeCount(body), 1);
  double t[1] = {0.0};
  EXPECT_EQ(FMD_Transformation(body, t), 1);
  EXPECT_EQ(t[0], 1.0);
  EXPECT_EQ(body->ModeRecords[1].Eigenvalue, 1.2345e+20);
}

TEST_F(OrthoNormalize, ABodyWithoutModesAnswersZeroSilently) {
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(body->Transformation, nullptr);
}

// Mass [2 1; 1 2] and stiffness [2 -1; -1 2]: x = (1, 1) has 2 / 6, x = (1, -1) has 6 / 2.
void add_coupled_modes(FmdBody* body) {
  FMD_SetMode(body, 21, 5, 0, 1, 0, 0, 0, 0, 2);
  FMD_SetMode(body, 22, 5, 0, 0, 3, 0, 0, 0, 0);
  for (const int mode : {21, 22}) {
    FMD_SetGeneralizedMass(body, mode, mode, 2.0);
    FMD_SetGeneralizedStiffness(body, mode, mode, 2.0);
  }
  FMD_SetGeneralizedMass(body, 22, 21, 1.0);
  FMD_SetGeneralizedStiffness(body, 22, 21, -1.0);
}

TEST_F(OrthoNormalize, CoupledModesBecomeThoseOfTheEigenproblem) {
  add_coupled_modes(body);
  FMD_SetMode(body, 21, 5, 1, 1, 2, 3, 4, 5, 6);
  FMD_SetMode(body, 22, 5, 1, 1, 1, 1, 1, 1, 1);
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  double t[4];
  ASSERT_EQ(FMD_Transformation(body, t), 1);
  const double first = std::copysign(1.0 / std::sqrt(6.0), t[0]);
  const double second = std::copysign(1.0 / std::sqrt(2.0), t[1]);
  const double expected[] = {first, second, first, -second};
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(t[i], expected[i], 1e-15);
  double half[3];
  EXPECT_EQ(FMD_Mode(body, 2, 0, half, 0), 1);
  EXPECT_DOUBLE_EQ(half[0], t[1]);
  EXPECT_DOUBLE_EQ(half[1], 3.0 * t[3]);
  EXPECT_EQ(FMD_Mode(body, 2, 0, half, 1), 1);
  EXPECT_DOUBLE_EQ(half[2], 2.0 * t[1]);
  EXPECT_EQ(FMD_Mode(body, 1, 1, half, 0), 1);
  EXPECT_DOUBLE_EQ(half[2], 3.0 * t[0] + t[2]);
  double values[5];
  EXPECT_EQ(FMD_Eigenvalue(body, 1, &values[0], &values[1], &values[2], &values[3], &values[4]), 1);
  EXPECT_NEAR(values[0], 1.0 / 3.0, 1e-15);
  EXPECT_EQ(values[2], std::sqrt(values[0]));
  EXPECT_EQ(values[1], values[2] / 6.28318530718);
  EXPECT_EQ(values[3], 1.0);
  EXPECT_EQ(values[4], values[0]);
  EXPECT_EQ(FMD_Eigenvalue(body, 2, &values[0], nullptr, nullptr, nullptr, nullptr), 1);
  EXPECT_NEAR(values[0], 3.0, 1e-14);
  EXPECT_EQ(body->TransformationModes[0], 21);
  EXPECT_EQ(body->TransformationModes[1], 22);
  EXPECT_EQ(FMD_ModeNumber(body, 1), 2);
  EXPECT_EQ(body->GenMass, nullptr);
  EXPECT_EQ(body->GenStiff, nullptr);
  EXPECT_EQ(body->HasOffDiagonalGenMatrix, 1);
}

TEST_F(OrthoNormalize, TheEigenproblemIsToldOfInItsStages) {
  add_coupled_modes(body);
  log.clear();
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  ASSERT_GE(log.infos.size(), 11U);
  const std::vector<std::string> stages(log.infos.begin(), log.infos.begin() + 8);
  EXPECT_EQ(stages, (std::vector<std::string>{
                        "\nSolving Generalized Eigenvalue Problem to orthogonalize mode shapes.",
                        "  (Finding upper Hessenberg and upper triangular forms)",
                        "  (Converting upper Hessenberg form to quasi-upper triangular)",
                        "  (Calculating Eigenvalues)", "  (Calculating Eigenvectors)", std::string(49, ' '),
                        "  Real Eigenvalues and Natural Frequencies [Hz] :",
                        "  ==============================================="}));
  EXPECT_EQ(log.infos[8].substr(0, 7), "   1 : ");
  EXPECT_NE(log.infos[8].find(" (probable rigid body mode)"), std::string::npos);
  EXPECT_EQ(log.infos[9].substr(0, 7), "   2 : ");
  EXPECT_EQ(log.infos[10], "\n  Applying Gram-Schmidt to eigenvectors \n ");
  EXPECT_TRUE(log.warnings.empty());
  EXPECT_TRUE(log.errors.empty());
}

TEST_F(OrthoNormalize, EqualEigenvaluesAreMadeOrthogonal) {
  // Three modes of one eigenvalue: any vectors solve, and only Gram-Schmidt makes them orthonormal.
  const double mass[3][3] = {{2, 1, 0.5}, {1, 3, 0.25}, {0.5, 0.25, 1}};
  for (int i = 0; i < 3; ++i) {
    FMD_SetMode(body, i + 1, 1, 0, i == 0, i == 1, i == 2, 0, 0, 0);
    for (int j = 0; j <= i; ++j) {
      FMD_SetGeneralizedMass(body, i + 1, j + 1, mass[i][j]);
      FMD_SetGeneralizedStiffness(body, i + 1, j + 1, 5.0 * mass[i][j]);
    }
  }
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  double t[9];
  ASSERT_EQ(FMD_Transformation(body, t), 1);
  for (int i = 0; i < 3; ++i) {
    for (int j = 0; j < 3; ++j) {
      double product = 0.0;
      for (int a = 0; a < 3; ++a)
        for (int b = 0; b < 3; ++b) product += t[3 * a + i] * mass[a][b] * t[3 * b + j];
      EXPECT_NEAR(product, i == j ? 1.0 : 0.0, 1e-14);
    }
    EXPECT_NEAR(body->ModeRecords[i].Eigenvalue, 5.0, 1e-13);
  }
}

TEST_F(OrthoNormalize, AnEarlierTransformationIsReplaced) {
  add_coupled_modes(body);
  double earlier[] = {9, 9, 9, 9};
  FMD_SetTransformation(body, earlier);
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  double t[4];
  FMD_Transformation(body, t);
  for (const double entry : t) EXPECT_LT(std::fabs(entry), 1.0);
}

TEST_F(OrthoNormalize, AnEarlierTransformationMarksOrthonormalModesAsDone) {
  add_mode(11, 1.0, 100.0);
  double earlier[] = {9};
  FMD_SetTransformation(body, earlier);
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(FMD_ModeNumber(body, 0), 11);
  EXPECT_EQ(body->ModeRecords, nullptr);
}

TEST_F(OrthoNormalize, NormalisationCanBeAskedFor) {
  FMD_SetMode(body, 1, 1, 0, 6, 0, 0, 0, 0, 0);
  add_mode(1, 1.0, 4.0);
  FMD_SetShouldMassNormalizeModes(body, 1);
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  double t = 0.0;
  FMD_Transformation(body, &t);
  EXPECT_EQ(t, 1.0);
  double half[3];
  EXPECT_EQ(FMD_Mode(body, 1, 0, half, 0), 1);
  EXPECT_EQ(half[0], 6.0);
}

TEST_F(OrthoNormalize, MassesAreTakenAsOneWhereNormalisationIsForbidden) {
  FMD_SetMode(body, 1, 1, 0, 6, 0, 0, 0, 0, 0);
  add_mode(1, 4.0, 4.0);
  FMD_SetShouldMassNormalizeModes(body, 0);
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(body->ModeRecords[0].GeneralizedMass, 1.0);
  EXPECT_EQ(body->ModeRecords[0].Eigenvalue, 1.0);
  EXPECT_EQ(body->ModeRecords[0].GeneralizedStiffness, 4.0);
  double half[3];
  EXPECT_EQ(FMD_Mode(body, 1, 0, half, 0), 1);
  EXPECT_EQ(half[0], 6.0);
}

TEST_F(OrthoNormalize, MatricesThatAreNotDiagonalAfterAllAreReportedForEachMode) {
  add_mode(1, 1.0, 1.0);
  add_mode(2, 1.0, 1.0);
  FMD_SetGeneralizedStiffness(body, 3, 1, 0.5);
  add_mode(4, 1.0, 1.0);
  body->HasOffDiagonalGenMatrix = 0;
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  EXPECT_EQ(log.errors,
            (std::vector<std::string>{"Attempting to look at eigenvalues of non-orthogonal data",
                                      "Attempting to look at eigenvalues of non-orthogonal data"}));
  EXPECT_EQ(body->ModeRecords, nullptr);
  EXPECT_EQ(body->Transformation, nullptr);
  EXPECT_EQ(FMD_NumberOfGenStiff(body), 4);
}

TEST_F(OrthoNormalize, PeaksOfTheModesBeforeAreForgotten) {
  FMD_SetMode(body, 1, 1, 0, 6, 0, 0, 0, 0, 0);
  add_mode(1, 4.0, 4.0);
  int node = 0;
  double peak = 0.0;
  EXPECT_EQ(FMD_GetMaxModeDisplacement(body, 1, &node, &peak), 1);
  EXPECT_EQ(peak, 6.0);
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(FMD_GetMaxModeDisplacement(body, 1, &node, &peak), 1);
  EXPECT_EQ(peak, 3.0);
}

TEST_F(OrthoNormalize, AModeThatIsAddedAfterOneWasDroppedIsItsOwn) {
  for (const int mode : {1, 2}) FMD_SetMode(body, mode, 1, 0, mode, 0, 0, 0, 0, 0);
  add_mode(1, 1.0, 1.0);
  add_mode(2, 0.0, 1.0);
  FMD_SetShouldMassNormalizeModes(body, 0);
  FMD_SetKeepModesInMemory(body, 1);
  double half[3];
  EXPECT_EQ(FMD_Mode(body, 2, 0, half, 0), 1);
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_EQ(FMD_ModeCount(body), 1);
  FMD_SetMode(body, 7, 1, 0, 8, 0, 0, 0, 0, 0);
  EXPECT_EQ(FMD_Mode(body, 7, 0, half, 0), 1);
  EXPECT_EQ(half[0], 8.0);
}

TEST_F(OrthoNormalize, EachFailedAllocationLeavesOrthonormalModesAsTheyWere) {
  add_mode(3, 1.0, 1.0);
  bool has_failed = true;
  for (long nth = 1; has_failed; ++nth) {
    fmd::fail_allocation(nth);
    const int result = FMD_OrthoNormalize(body);
    has_failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    EXPECT_EQ(result, has_failed ? 0 : 1);
    if (!has_failed) break;
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(0), "dbtools"));
    EXPECT_EQ(body->Transformation, nullptr);
    EXPECT_EQ(body->ModeRecords, nullptr);
    EXPECT_EQ(FMD_ModeNumber(body, 0), 3);
    log.clear();
  }
}

TEST_F(OrthoNormalize, ANullBodyIsReported) {
  EXPECT_EQ(FMD_OrthoNormalize(nullptr), 0);
  EXPECT_EQ(log.errors, std::vector<std::string>{"The database has not been initialized."});
}

}  // namespace
