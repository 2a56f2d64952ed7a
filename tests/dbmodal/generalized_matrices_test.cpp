#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

constexpr double kTwoPi = 6.28318530718;

class GeneralizedMatrices : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(1, 8);
    ASSERT_NE(body, nullptr);
    for (const int mode : {10, 20, 30}) FMD_AddMode(body, mode);
  }

  void set_table(std::vector<FmdModeRecord> records) const {
    body->ModeRecords = static_cast<FmdModeRecord*>(
        fmd::allocate_quietly(static_cast<long>(records.size()), sizeof(FmdModeRecord)));
    body->ModeRecordCount = static_cast<int>(records.size());
    std::copy(records.begin(), records.end(), body->ModeRecords);
  }

  using Getter = int (*)(FmdBody*, double*, int);
  std::vector<double> full(Getter get, int n) const {
    std::vector<double> matrix(static_cast<std::size_t>(n * n), -1.0);
    EXPECT_EQ(get(body, matrix.data(), n), 1);
    return matrix;
  }

  FmdBody* body = nullptr;
};

TEST_F(GeneralizedMatrices, EntriesKeepTheirOrderOfArrival) {
  EXPECT_EQ(FMD_SetGeneralizedStiffness(body, 20, 20, 4.0), 1);
  EXPECT_EQ(FMD_SetGeneralizedStiffness(body, 10, 30, 5.0), 1);
  EXPECT_EQ(FMD_SetGeneralizedStiffness(body, 20, 20, 6.0), 1);
  EXPECT_EQ(FMD_NumberOfGenStiff(body), 3);
  double values[3];
  int rows[3];
  int columns[3];
  EXPECT_EQ(FMD_GenStiffSparse(body, values, rows, columns), 1);
  EXPECT_EQ((std::vector<int>(rows, rows + 3)), (std::vector<int>{1, 0, 1}));
  EXPECT_EQ((std::vector<int>(columns, columns + 3)), (std::vector<int>{1, 2, 1}));
  EXPECT_EQ((std::vector<double>(values, values + 3)), (std::vector<double>{4, 5, 6}));
  EXPECT_EQ(full(FMD_GenStiffFull, 3), (std::vector<double>{0, 0, 5, 0, 6, 0, 5, 0, 0}));
  EXPECT_EQ(FMD_Exists(body, 11), 1);
}

TEST_F(GeneralizedMatrices, SettersCreateModes) {
  EXPECT_EQ(FMD_SetGeneralizedMass(body, 40, 50, 1.0), 1);
  EXPECT_EQ(FMD_ModeCount(body), 5);
  EXPECT_EQ(FMD_Exists(body, 12), 1);
}

TEST_F(GeneralizedMatrices, WithoutListOrTableTheDiagonalIsZeroAndTheDefaultMass) {
  EXPECT_EQ(FMD_NumberOfGenStiff(body), 3);
  EXPECT_EQ(FMD_NumberOfGenMass(body), 3);
  EXPECT_EQ(FMD_NumberOfGenDamp(body), 0);
  EXPECT_EQ(full(FMD_GenStiffFull, 3), std::vector<double>(9, 0.0));
  EXPECT_EQ(full(FMD_GenMassFull, 3), (std::vector<double>{1e-16, 0, 0, 0, 1e-16, 0, 0, 0, 1e-16}));
  FMD_SetGeneralizedStiffness(body, 20, 20, 300.0);
  EXPECT_EQ(full(FMD_GenMassFull, 3)[4], 300.0 * 1e-16);
  int rows[3];
  int columns[3];
  EXPECT_EQ(FMD_GenMassSparse(body, nullptr, rows, columns), 1);
  EXPECT_EQ(rows[2], 2);
}

TEST_F(GeneralizedMatrices, TheTableServesWhereThereIsNoList) {
  set_table({{1, 0, 0, 0, 2.0, 3.0}, {2, 0, 0, 0, 4.0, 5.0}, {3, 0, 0, 0, 6.0, 7.0}});
  EXPECT_EQ(full(FMD_GenStiffFull, 3), (std::vector<double>{3, 0, 0, 0, 5, 0, 0, 0, 7}));
  EXPECT_EQ(full(FMD_GenMassFull, 3), (std::vector<double>{2, 0, 0, 0, 4, 0, 0, 0, 6}));
}

TEST_F(GeneralizedMatrices, AnIndexEqualToTheRecordCountFindsAnEmptyRecord) {
  set_table({{1, 9, 9, 9, 2.0, 3.0}, {2, 9, 9, 9, 4.0, 5.0}});
  double k = -1.0;
  EXPECT_EQ(FMD_Eigenvalue(body, 30, nullptr, nullptr, nullptr, nullptr, &k), 1);
  EXPECT_EQ(k, 0.0);
  FMD_AddMode(body, 40);
  FMD_SetGeneralizedStiffness(body, 40, 40, 8.0);
  EXPECT_EQ(FMD_Eigenvalue(body, 40, nullptr, nullptr, nullptr, nullptr, &k), 1);
  EXPECT_EQ(k, 8.0);
}

TEST_F(GeneralizedMatrices, FlagsTellOfOffDiagonalsAndOtherMasses) {
  FMD_SetGeneralizedMass(body, 10, 10, 1.00000001);
  EXPECT_EQ(body->ShouldMassNormalizeModes, 0);
  FMD_SetGeneralizedMass(body, 10, 10, 1.000000005);
  EXPECT_EQ(body->ShouldMassNormalizeModes, 0);
  FMD_SetGeneralizedMass(body, 10, 10, 0.99999997);
  EXPECT_EQ(body->ShouldMassNormalizeModes, 1);
  body->ShouldMassNormalizeModes = 0;
  FMD_SetGeneralizedMass(body, 20, 20, 1.1);
  EXPECT_EQ(body->ShouldMassNormalizeModes, 1);
  FMD_SetShouldMassNormalizeModes(body, 0);
  EXPECT_EQ(body->ShouldMassNormalizeModes, 0);
  EXPECT_EQ(body->HasOffDiagonalGenMatrix, 0);
  FMD_SetGeneralizedDamping(body, 10, 20, 1.0);
  EXPECT_EQ(body->HasOffDiagonalGenMatrix, 0);
  FMD_SetGeneralizedStiffness(body, 10, 20, 1.0);
  EXPECT_EQ(body->HasOffDiagonalGenMatrix, 1);
}

TEST_F(GeneralizedMatrices, DampingHasNoDiagonalToFallBackOn) {
  double matrix[9] = {7};
  int places[3];
  EXPECT_EQ(FMD_GenDampExist(body), 0);
  EXPECT_EQ(FMD_GenDampFull(body, matrix, 3), 0);
  EXPECT_EQ(FMD_GenDampSparse(body, matrix, places, places), 0);
  body->DampingOnPrincipalAxes = 1;
  EXPECT_EQ(FMD_SetGeneralizedDamping(body, 10, 20, 2.0), 1);
  EXPECT_EQ(body->DampingOnPrincipalAxes, 0);
  EXPECT_EQ(FMD_GenDampExist(body), 1);
  EXPECT_EQ(full(FMD_GenDampFull, 3), (std::vector<double>{0, 2, 0, 2, 0, 0, 0, 0, 0}));
  EXPECT_EQ(FMD_Exists(body, 14), 1);
}

TEST_F(GeneralizedMatrices, SelectionDropsTheOthers) {
  FMD_SetGeneralizedStiffness(body, 10, 10, 1.0);
  FMD_SetGeneralizedStiffness(body, 10, 30, 2.0);
  FMD_SetGeneralizedStiffness(body, 20, 30, 3.0);
  FMD_SetGeneralizedStiffness(body, 30, 30, 4.0);
  double first[2];
  double second[2];
  double* rows[] = {first, second};
  int selected[] = {10, 30};
  EXPECT_EQ(FMD_GenStiffSelected(body, rows, 2, selected), 1);
  EXPECT_EQ((std::vector<double>(first, first + 2)), (std::vector<double>{1, 2}));
  EXPECT_EQ((std::vector<double>(second, second + 2)), (std::vector<double>{2, 4}));
  int descending[] = {30, 10};
  EXPECT_EQ(FMD_GenStiffSelected(body, rows, 2, descending), 1);
  EXPECT_LT(std::fabs(first[0]) + std::fabs(second[1]), 5.0);
  EXPECT_EQ(FMD_GenMassSelected(body, rows, 2, selected), 1);
  EXPECT_EQ(first[0], 1e-16);
}

TEST_F(GeneralizedMatrices, EigenvaluesByHand) {
  FMD_SetGeneralizedStiffness(body, 10, 10, 50.0);
  FMD_SetGeneralizedMass(body, 10, 10, 2.0);
  FMD_SetGeneralizedStiffness(body, 20, 20, -18.0);
  FMD_SetGeneralizedMass(body, 20, 20, 2.0);
  double v[5];
  EXPECT_EQ(FMD_Eigenvalue(body, 10, &v[0], &v[1], &v[2], &v[3], &v[4]), 1);
  EXPECT_EQ(v[0], 25.0);
  EXPECT_DOUBLE_EQ(v[1], 5.0 / kTwoPi);
  EXPECT_EQ(v[2], 5.0);
  EXPECT_EQ(v[3], 2.0);
  EXPECT_EQ(v[4], 50.0);
  EXPECT_EQ(FMD_Eigenvalue(body, 20, &v[0], &v[1], &v[2], nullptr, nullptr), 1);
  EXPECT_EQ(v[0], -9.0);
  EXPECT_EQ(v[2], -3.0);
  EXPECT_DOUBLE_EQ(v[1], -3.0 / kTwoPi);
  EXPECT_EQ(FMD_Eigenvalue(body, 10, nullptr, nullptr, nullptr, nullptr, nullptr), 1);
  EXPECT_EQ(FMD_Eigenvalue(body, 11, &v[0], nullptr, nullptr, nullptr, nullptr), 0);
}

TEST_F(GeneralizedMatrices, EigenvaluesOfWhatWasNotGiven) {
  double v[5] = {9, 9, 9, 9, 9};
  FMD_SetGeneralizedStiffness(body, 10, 10, 400.0);
  EXPECT_EQ(FMD_Eigenvalue(body, 10, &v[0], nullptr, nullptr, &v[3], nullptr), 1);
  EXPECT_EQ(v[3], 400.0 * 1e-16);
  EXPECT_DOUBLE_EQ(v[0], 1e16);
  EXPECT_EQ(FMD_Eigenvalue(body, 20, &v[0], nullptr, nullptr, &v[3], &v[4]), 1);
  EXPECT_EQ(v[4], 0.0);
  EXPECT_EQ(v[3], 1e-16);
  EXPECT_EQ(v[0], 0.0);
  FMD_SetGeneralizedMass(body, 10, 10, 0.0);
  v[0] = 123.0;
  EXPECT_EQ(FMD_Eigenvalue(body, 10, &v[0], nullptr, nullptr, &v[3], nullptr), 1);
  EXPECT_EQ(v[0], 123.0);
  EXPECT_EQ(v[3], 0.0);
}

TEST_F(GeneralizedMatrices, AnOffDiagonalEndsTheWalk) {
  FMD_SetGeneralizedStiffness(body, 10, 10, 1.0);
  FMD_SetGeneralizedStiffness(body, 10, 20, 1.0);
  FMD_SetGeneralizedStiffness(body, 20, 20, 1.0);
  double v[5] = {9, 9, 9, 9, 9};
  EXPECT_EQ(FMD_Eigenvalue(body, 10, &v[0], &v[1], &v[2], &v[3], &v[4]), 1);
  EXPECT_EQ(FMD_Eigenvalue(body, 20, &v[0], &v[1], &v[2], &v[3], &v[4]), 0);
  EXPECT_EQ((std::vector<double>(v, v + 5)), std::vector<double>(5, 0.0));
}

TEST_F(GeneralizedMatrices, TransformationsComposeFromTheRight) {
  double first[9] = {1, 2, 0, 0, 1, 0, 0, 0, 1};
  double second[9] = {1, 0, 0, 3, 1, 0, 0, 0, 2};
  double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  double out[9];
  EXPECT_EQ(FMD_Transformation(body, out), 0);
  EXPECT_EQ(FMD_SetTransformation(body, first), 1);
  EXPECT_EQ(FMD_SetTransformation(body, second), 1);
  EXPECT_EQ(FMD_Transformation(body, out), 1);
  const std::vector<double> product = {7, 2, 0, 3, 1, 0, 0, 0, 2};
  EXPECT_EQ((std::vector<double>(out, out + 9)), product);
  EXPECT_EQ(FMD_SetTransformation(body, identity), 1);
  FMD_Transformation(body, out);
  EXPECT_EQ((std::vector<double>(out, out + 9)), product);
  EXPECT_EQ(FMD_Exists(body, 15), 0);
  FmdBody* const empty = FMD_Create(1, 1);
  EXPECT_EQ(FMD_SetTransformation(empty, identity), 0);
}

TEST_F(GeneralizedMatrices, ModesAddedAfterATransformationHaveZeros) {
  double t[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  FMD_SetTransformation(body, t);
  FMD_AddMode(body, 40);
  double out[16];
  EXPECT_EQ(FMD_Transformation(body, out), 1);
  EXPECT_EQ((std::vector<double>(out, out + 16)),
            (std::vector<double>{1, 2, 3, 0, 4, 5, 6, 0, 7, 8, 9, 0, 0, 0, 0, 0}));
}

TEST_F(GeneralizedMatrices, ATransformationSetAfterNewModesComposesWithWhatWasRead) {
  double t[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  double identity[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
  FMD_SetTransformation(body, t);
  FMD_AddMode(body, 40);
  double before[16];
  double after[16];
  FMD_Transformation(body, before);
  EXPECT_EQ(FMD_SetTransformation(body, identity), 1);
  EXPECT_EQ(FMD_Transformation(body, after), 1);
  EXPECT_EQ((std::vector<double>(after, after + 16)), (std::vector<double>(before, before + 16)));
}

TEST_F(GeneralizedMatrices, AFailedTransformationKeepsTheOneBefore) {
  double first[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  double second[9] = {2, 0, 0, 0, 2, 0, 0, 0, 2};
  double out[9] = {};
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_SetTransformation(body, first), 0);
  EXPECT_EQ(FMD_Transformation(body, out), 0);
  FMD_SetTransformation(body, first);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_SetTransformation(body, second), 0);
  fmd::fail_allocation(0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(1), "dbset"));
  EXPECT_EQ(FMD_Transformation(body, out), 1);
  EXPECT_EQ((std::vector<double>(out, out + 9)), (std::vector<double>(first, first + 9)));
}

TEST_F(GeneralizedMatrices, ModesBeyondThePlanAreStoredAsNone) {
  for (const int mode : {40, 50, 60, 70, 80}) FMD_AddMode(body, mode);
  EXPECT_EQ(FMD_SetGeneralizedStiffness(body, 99, 99, 3.0), 1);
  EXPECT_EQ(log.errors.size(), 2U);  // row and column are looked up apart
  EXPECT_EQ(body->HasOffDiagonalGenMatrix, 0);
  EXPECT_EQ(FMD_SetGeneralizedStiffness(body, 10, 10, 4.0), 1);
  double k = 0.0;
  EXPECT_EQ(FMD_Eigenvalue(body, 10, nullptr, nullptr, nullptr, nullptr, &k), 1);
  EXPECT_EQ(k, 4.0);
  EXPECT_EQ(FMD_SetGeneralizedStiffness(body, 20, 99, 5.0), 1);
  EXPECT_EQ(body->HasOffDiagonalGenMatrix, 1);
  double values[3];
  int rows[3];
  int columns[3];
  EXPECT_EQ(FMD_GenStiffSparse(body, values, rows, columns), 1);
  EXPECT_EQ((std::vector<int>(rows, rows + 3)), (std::vector<int>{-1, 0, 1}));
  EXPECT_EQ((std::vector<int>(columns, columns + 3)), (std::vector<int>{-1, 0, -1}));
  std::vector<double> expected(64, 0.0);
  expected[0] = 4.0;
  EXPECT_EQ(full(FMD_GenStiffFull, 8), expected);
  double selection[1];
  double* row = selection;
  int selected[] = {10};
  EXPECT_EQ(FMD_GenStiffSelected(body, &row, 1, selected), 1);
  EXPECT_EQ(selection[0], 4.0);
}

TEST_F(GeneralizedMatrices, FrequenciesTakeTheUnitsIntoAccount) {
  char mass[] = "KILOGRAM";
  char length[] = "MILLIMETER";
  char time[] = "SECOND";
  char force[] = "NEWTON";
  FMD_SetUnits(body, mass, length, time, force);
  FMD_SetGeneralizedMass(body, 10, 10, 10.0);
  FMD_SetGeneralizedStiffness(body, 10, 10, 36.0);
  double eigenvalue = 0.0;
  double hertz = 0.0;
  double radians = 0.0;
  EXPECT_EQ(FMD_Eigenvalue(body, 10, &eigenvalue, &hertz, &radians, nullptr, nullptr), 1);
  EXPECT_EQ(eigenvalue, 3.6);
  EXPECT_DOUBLE_EQ(radians, 60.0);  // 36 N/mm are 36000 N/m
  EXPECT_DOUBLE_EQ(hertz, 60.0 / kTwoPi);
}

TEST_F(GeneralizedMatrices, ListsGrowByAHundred) {
  for (int entry = 0; entry < 250; ++entry) FMD_SetGeneralizedMass(body, 10, 10, entry);
  EXPECT_EQ(FMD_NumberOfGenMass(body), 250);
  EXPECT_EQ(body->GenMassCapacity, 300);
  std::vector<double> values(250);
  std::vector<int> rows(250);
  std::vector<int> columns(250);
  FMD_GenMassSparse(body, values.data(), rows.data(), columns.data());
  EXPECT_EQ(values[249], 249.0);
}

TEST_F(GeneralizedMatrices, AFailedEntryIsCountedButNamesNoMode) {
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_SetGeneralizedMass(body, 10, 10, 5.0), 0);
  fmd::fail_allocation(0);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(0), "dbset"));
  EXPECT_EQ(FMD_SetGeneralizedMass(body, 10, 10, 6.0), 1);
  EXPECT_EQ(FMD_NumberOfGenMass(body), 2);
  EXPECT_EQ(full(FMD_GenMassFull, 3), (std::vector<double>{6, 0, 0, 0, 0, 0, 0, 0, 0}));
  double mass = 0.0;
  EXPECT_EQ(FMD_Eigenvalue(body, 10, nullptr, nullptr, nullptr, &mass, nullptr), 1);
  EXPECT_EQ(mass, 6.0);
}

TEST_F(GeneralizedMatrices, AFailedGrowthLeavesAHoleThatNamesNoMode) {
  for (int entry = 0; entry < 99; ++entry) FMD_SetGeneralizedDamping(body, 10, 10, entry);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_SetGeneralizedDamping(body, 10, 10, 5.0), 0);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_SetGeneralizedDamping(body, 10, 10, 5.0), 0);
  fmd::fail_allocation(0);
  EXPECT_EQ(FMD_NumberOfGenDamp(body), 101);
  std::vector<double> values(101);
  std::vector<int> rows(101);
  std::vector<int> columns(101);
  EXPECT_EQ(FMD_GenDampSparse(body, values.data(), rows.data(), columns.data()), 1);
  EXPECT_EQ(values[98], 98.0);
  EXPECT_EQ(rows[99], -1);
  EXPECT_EQ(rows[100], -1);
  EXPECT_EQ(FMD_SetGeneralizedDamping(body, 20, 20, 7.0), 1);
  EXPECT_EQ(full(FMD_GenDampFull, 3), (std::vector<double>{98, 0, 0, 0, 7, 0, 0, 0, 0}));
}

TEST_F(GeneralizedMatrices, FailedAllocationsInReadingAreSilent) {
  FMD_SetGeneralizedStiffness(body, 10, 10, 1.0);
  double matrix[9];
  double* rows[] = {matrix, matrix + 3, matrix + 6};
  int selected[] = {10, 20, 30};
  for (long nth = 1; nth <= 3; ++nth) {
    fmd::fail_allocation(nth);
    EXPECT_EQ(FMD_GenStiffFull(body, matrix, 3), 0);
    fmd::fail_allocation(nth);
    EXPECT_EQ(FMD_GenMassSelected(body, rows, 3, selected), 0);
    fmd::fail_allocation(0);
  }
  EXPECT_TRUE(log.all.empty());
}

TEST_F(GeneralizedMatrices, NullBodiesAreReported) {
  double matrix[4] = {3, 3, 3, 3};
  double* rows[] = {matrix, matrix + 2};
  int places[4] = {1, 2, 3, 4};
  EXPECT_EQ(FMD_SetGeneralizedMass(nullptr, 1, 1, 1), 0);
  EXPECT_EQ(FMD_SetGeneralizedStiffness(nullptr, 1, 1, 1), 0);
  EXPECT_EQ(FMD_SetGeneralizedDamping(nullptr, 1, 1, 1), 0);
  FMD_SetShouldMassNormalizeModes(nullptr, 1);
  EXPECT_EQ(FMD_NumberOfGenStiff(nullptr), 0);
  EXPECT_EQ(FMD_NumberOfGenMass(nullptr), 0);
  EXPECT_EQ(FMD_NumberOfGenDamp(nullptr), 0);
  EXPECT_EQ(FMD_GenDampExist(nullptr), 0);
  EXPECT_EQ(FMD_GenStiffSparse(nullptr, matrix, places, places), 0);
  EXPECT_EQ(FMD_GenMassSparse(nullptr, matrix, places, places), 0);
  EXPECT_EQ(FMD_GenDampSparse(nullptr, matrix, places, places), 0);
  EXPECT_EQ(FMD_GenMassFull(nullptr, matrix, 2), 0);
  EXPECT_EQ(matrix[0], 3.0);
  EXPECT_EQ(FMD_GenStiffFull(nullptr, matrix, 2), 0);
  EXPECT_EQ(matrix[0], 0.0);
  EXPECT_EQ(FMD_GenDampFull(nullptr, matrix, 2), 0);
  EXPECT_EQ(FMD_GenStiffSelected(nullptr, rows, 2, places), 0);
  EXPECT_EQ(FMD_GenMassSelected(nullptr, rows, 2, places), 0);
  EXPECT_EQ(FMD_Eigenvalue(nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr), 0);
  EXPECT_EQ(FMD_Transformation(nullptr, matrix), 0);
  EXPECT_EQ(FMD_SetTransformation(nullptr, matrix), 0);
  EXPECT_EQ(log.errors, (std::vector<std::string>(19, "The database has not been initialized.")));
}

}  // namespace
