#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

class MatrixOperators : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(3, 5);
    ASSERT_NE(body, nullptr);
  }

  int add(std::string name, int rows) const {
    return FMD_SetMatrixOperatorInfo(body, name.data(), nullptr, rows);
  }

  int attach(int index, std::string tag, int columns, std::vector<double> data) const {
    return FMD_SetMatrixOperatorData(body, index, tag.data(), columns, data.data());
  }

  FmdBody* body = nullptr;
};

TEST_F(MatrixOperators, NameRowsLabelsAndDataComeBack) {
  char first[] = "row one";
  char second[] = "row two";
  char* labels[] = {first, second};
  char name[] = "OUTPUT";
  EXPECT_EQ(FMD_SetMatrixOperatorInfo(body, name, labels, 2), 0);
  EXPECT_EQ(attach(0, "A", 3, {1, 2, 3, 4, 5, 6}), 0);
  EXPECT_EQ(attach(0, "B", 1, {7, 8}), 1);
  EXPECT_EQ(FMD_GetMatrixOperatorCount(body), 1);
  EXPECT_EQ(FMD_GetMatrixOperatorNumRows(body, 0), 2);
  EXPECT_EQ(FMD_GetMatrixOperatorNumSubOperator(body, 0), 2);
  EXPECT_EQ(FMD_GetMatrixOperatorSubNumCols(body, 0, 0), 3);
  char text[80];
  EXPECT_EQ(FMD_GetMatrixOperatorName(body, 0, text), 0);
  EXPECT_STREQ(text, "OUTPUT");
  char one[80];
  char two[80];
  char* out_labels[] = {one, two};
  EXPECT_EQ(FMD_GetMatrixOperatorLabels(body, 0, out_labels), 0);
  EXPECT_STREQ(one, "row one");
  EXPECT_STREQ(two, "row two");
  char tag[8];
  EXPECT_EQ(FMD_GetMatrixOperatorSubTag(body, 0, 1, tag), 0);
  EXPECT_STREQ(tag, "B");
  double data[6];
  EXPECT_EQ(FMD_GetMatrixOperatorSubData(body, 0, 0, data), 0);
  EXPECT_EQ((std::vector<double>(data, data + 6)), (std::vector<double>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(FMD_Exists(body, 33), 1);
}

TEST_F(MatrixOperators, NullLabelsAreEmpty) {
  EXPECT_EQ(add("X", 1), 0);
  char label[80] = "full";
  char* labels[] = {label};
  EXPECT_EQ(FMD_GetMatrixOperatorLabels(body, 0, labels), 0);
  EXPECT_STREQ(label, "");
}

TEST_F(MatrixOperators, ANameOfSeventyNineFits) {
  const std::string name(79, 'n');
  add(name, 1);
  char text[80];
  EXPECT_EQ(FMD_GetMatrixOperatorName(body, 0, text), 0);
  EXPECT_EQ(std::string(text), name);
}

TEST_F(MatrixOperators, WithoutRowsOrColumnsThereIsNoData) {
  EXPECT_EQ(add("EMPTY", 0), 0);
  EXPECT_EQ(attach(0, "A", 2, {1, 2}), -1);
  EXPECT_EQ(add("ROWS", 2), 1);
  EXPECT_EQ(attach(1, "A", 0, {1, 2}), -1);
  ASSERT_EQ(log.errors.size(), 2U);
  for (const auto& error : log.errors) EXPECT_TRUE(fmdtest::is_allocation_failure(error, "dbmtxop"));
  EXPECT_EQ(FMD_GetMatrixOperatorNumSubOperator(body, 1), 0);
}

TEST_F(MatrixOperators, BadPlacesAreRefused) {
  add("X", 1);
  attach(0, "A", 1, {5});
  char text[80];
  double data[1];
  for (const int index : {-1, 1}) {
    EXPECT_EQ(FMD_GetMatrixOperatorNumRows(body, index), -1);
    EXPECT_EQ(FMD_GetMatrixOperatorName(body, index, text), -1);
    EXPECT_EQ(FMD_GetMatrixOperatorLabels(body, index, nullptr), -1);
    EXPECT_EQ(FMD_GetMatrixOperatorNumSubOperator(body, index), 0);
    EXPECT_EQ(FMD_GetMatrixOperatorSubNumCols(body, index, 0), -1);
    EXPECT_EQ(FMD_GetMatrixOperatorSubTag(body, 0, index, text), -1);
    EXPECT_EQ(FMD_GetMatrixOperatorSubData(body, 0, index, data), -1);
  }
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(attach(1, "A", 1, {1}), -1);
  EXPECT_EQ(log.errors, std::vector<std::string>{"Invalid monitor point index: 1.\n"});
  EXPECT_EQ(FMD_SetMatrixOperatorInfo(nullptr, text, nullptr, 1), -1);
  EXPECT_EQ(FMD_GetMatrixOperatorCount(nullptr), -1);
}

TEST_F(MatrixOperators, TablesGrowByFive) {
  for (int i = 0; i < 6; ++i) EXPECT_EQ(add("X", 1), i);
  EXPECT_EQ(body->MatrixOperatorCapacity, 10);
  for (int i = 0; i < 6; ++i) EXPECT_EQ(attach(2, "A", 1, {1.0 * i}), i);
  double data[1];
  EXPECT_EQ(FMD_GetMatrixOperatorSubData(body, 2, 5, data), 0);
  EXPECT_EQ(data[0], 5.0);
}

TEST_F(MatrixOperators, EachFailedAllocationLeavesTheTableUsable) {
  for (long nth = 1; nth <= 4; ++nth) {
    fmd::fail_allocation(nth);
    EXPECT_EQ(add("X", 2), -1) << nth;
    fmd::fail_allocation(0);
  }
  const int index = add("Y", 2);
  EXPECT_EQ(FMD_GetMatrixOperatorNumRows(body, index), 2);
  for (long nth = 1; nth <= 3; ++nth) {
    fmd::fail_allocation(nth);
    EXPECT_EQ(attach(index, "A", 1, {1, 2}), -1) << nth;
    fmd::fail_allocation(0);
  }
  EXPECT_EQ(attach(index, "A", 1, {1, 2}), 0);
}

}  // namespace
