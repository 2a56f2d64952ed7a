#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

class MonitorPoints : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(3, 5);
    ASSERT_NE(body, nullptr);
    FMD_AddMode(body, 1);
    FMD_AddMode(body, 2);
  }

  void add(int component, int load_operators = 0) const {
    double location[3] = {1.0, 2.0, 3.0};
    char name[] = "TIP";
    char label[] = "tip of the arm";
    FMD_SetMonitorPointInfo(body, 1, 4, component, load_operators, location, name, label);
  }

  FmdBody* body = nullptr;
};

TEST_F(MonitorPoints, ArgumentsComeBack) {
  EXPECT_EQ(FMD_GetMonitorPointCount(body), 0);
  add(123, 2);
  EXPECT_EQ(FMD_GetMonitorPointCount(body), 1);
  EXPECT_EQ(FMD_GetMonitorPointType(body, 0), 1);
  EXPECT_EQ(FMD_GetMonitorPointResultType(body, 0), 4);
  EXPECT_EQ(FMD_GetMonitorPointComponent(body, 0), 123);
  EXPECT_EQ(FMD_GetMonitorPointNumLoadOperator(body, 0), 2);
  char name[9];
  char label[57];
  EXPECT_EQ(FMD_GetMonitorPointNameLabel(body, 0, name, label), 0);
  EXPECT_STREQ(name, "TIP");
  EXPECT_STREQ(label, "tip of the arm");
  double location[3];
  EXPECT_EQ(FMD_GetMonitorPointLocation(body, 0, location), 0);
  EXPECT_EQ(location[2], 3.0);
  EXPECT_EQ(FMD_Exists(body, 32), 1);
}

TEST_F(MonitorPoints, LongTextsAreCut) {
  double location[3] = {};
  std::string name(20, 'n');
  std::string label(99, 'l');
  FMD_SetMonitorPointInfo(body, 1, 1, 1, 0, location, name.data(), label.data());
  char short_name[9];
  char short_label[57];
  EXPECT_EQ(FMD_GetMonitorPointNameLabel(body, 0, short_name, short_label), 0);
  EXPECT_EQ(std::string(short_name), std::string(8, 'n'));
  EXPECT_EQ(std::string(short_label), std::string(56, 'l'));
}

TEST_F(MonitorPoints, EachDigitOfTheComponentIsARow) {
  add(1);
  add(123456);
  int rows = 0;
  int columns = 0;
  EXPECT_EQ(FMD_GetMonitorPointOperatorSize(body, 0, &rows, &columns), 0);
  EXPECT_EQ(rows, 1);
  EXPECT_EQ(columns, 2);
  EXPECT_EQ(FMD_GetMonitorPointOperatorSize(body, 1, &rows, &columns), 0);
  EXPECT_EQ(rows, 6);
}

TEST_F(MonitorPoints, OperatorsOfAllKindsComeBackAndAreReplaced) {
  add(12, 2);
  double data[8] = {1, 2, 3, 4, 5, 6, 7, 8};
  const int bits[] = {1, 2, 4, 8};
  for (int kind = 1; kind <= 4; ++kind) {
    EXPECT_EQ(FMD_MonitorPointHasOperator(body, 0, kind), 0);
    EXPECT_EQ(FMD_SetMonitorPointOperator(body, 0, kind, data), 0);
    EXPECT_EQ(FMD_MonitorPointHasOperator(body, 0, kind), bits[kind - 1]);
  }
  double out[8] = {};
  EXPECT_EQ(FMD_GetMonitorPointOperator(body, 0, 4, out), 0);
  EXPECT_EQ((std::vector<double>(out, out + 8)), (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8}));
  double other[4] = {9, 9, 9, 9};
  EXPECT_EQ(FMD_SetMonitorPointOperator(body, 0, 2, other), 0);
  EXPECT_EQ(FMD_GetMonitorPointOperator(body, 0, 2, out), 0);
  EXPECT_EQ(out[3], 9.0);
}

TEST_F(MonitorPoints, ModesAddedLaterReadAsZeros) {
  add(1);
  double data[2] = {3, 4};
  FMD_SetMonitorPointOperator(body, 0, 1, data);
  FMD_AddMode(body, 3);
  double out[3] = {7, 7, 7};
  EXPECT_EQ(FMD_GetMonitorPointOperator(body, 0, 1, out), 0);
  EXPECT_EQ((std::vector<double>(out, out + 3)), (std::vector<double>{3, 4, 0}));
}

TEST_F(MonitorPoints, OperatorsOfNoElementsFail) {
  add(1, 0);
  double data[2] = {};
  EXPECT_EQ(FMD_SetMonitorPointOperator(body, 0, 4, data), -1);
  FmdBody* const without_modes = FMD_Create(1, 1);
  double location[3] = {};
  char text[] = "x";
  FMD_SetMonitorPointInfo(without_modes, 1, 1, 1, 0, location, text, text);
  EXPECT_EQ(FMD_SetMonitorPointOperator(without_modes, 0, 1, data), -1);
  ASSERT_EQ(log.errors.size(), 2U);
  EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors[0], "dbmonpnt"));
}

TEST_F(MonitorPoints, AFailedReplacementLeavesTheBitButNoArray) {
  add(1);
  double data[2] = {1, 2};
  FMD_SetMonitorPointOperator(body, 0, 1, data);
  fmd::fail_allocation(1);
  EXPECT_EQ(FMD_SetMonitorPointOperator(body, 0, 1, data), -1);
  fmd::fail_allocation(0);
  EXPECT_EQ(FMD_MonitorPointHasOperator(body, 0, 1), 1);
  EXPECT_EQ(FMD_GetMonitorPointOperator(body, 0, 1, data), -1);
}

TEST_F(MonitorPoints, BadIndicesAndKindsAreRefused) {
  add(1);
  double data[3] = {};
  int rows = 0;
  char text[64];
  for (const int index : {-1, 1}) {
    EXPECT_EQ(FMD_GetMonitorPointType(body, index), -1);
    EXPECT_EQ(FMD_GetMonitorPointResultType(body, index), -1);
    EXPECT_EQ(FMD_GetMonitorPointComponent(body, index), -1);
    EXPECT_EQ(FMD_GetMonitorPointNameLabel(body, index, text, text), -1);
    EXPECT_EQ(FMD_GetMonitorPointLocation(body, index, data), -1);
    EXPECT_EQ(FMD_GetMonitorPointOperatorSize(body, index, &rows, &rows), -1);
    EXPECT_EQ(FMD_GetMonitorPointNumLoadOperator(body, index), 0);
    EXPECT_EQ(FMD_MonitorPointHasOperator(body, index, 1), 0);
    EXPECT_EQ(FMD_GetMonitorPointOperator(body, index, 1, data), -1);
  }
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(FMD_SetMonitorPointOperator(body, 1, 1, data), -1);
  EXPECT_EQ(FMD_SetMonitorPointOperator(body, 0, 5, data), -1);
  EXPECT_EQ(FMD_MonitorPointHasOperator(body, 0, 0), 0);
  EXPECT_EQ(log.errors,
            (std::vector<std::string>{
                "Invalid monitor point index: 1.\n",
                "Invalid operator type. Valid choices are: 1 for disp operator, 2 for load operator.\n"}));
  EXPECT_EQ(FMD_GetMonitorPointCount(nullptr), -1);
  EXPECT_EQ(FMD_GetMonitorPointType(nullptr, 0), -1);
}

TEST_F(MonitorPoints, TheTableGrowsByTwenty) {
  for (int i = 0; i < 21; ++i) add(1);
  EXPECT_EQ(body->MonitorPointCapacity, 40);
  EXPECT_EQ(FMD_GetMonitorPointType(body, 20), 1);
}

TEST_F(MonitorPoints, EachFailedAllocationIsReported) {
  for (long nth = 1; nth <= 2; ++nth) {
    fmd::fail_allocation(nth);
    add(1);
    fmd::fail_allocation(0);
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.at(static_cast<std::size_t>(nth) - 1), "dbmonpnt"));
  }
  // The count stays raised for a record that could not be had; its place answers as a bad index.
  EXPECT_EQ(FMD_GetMonitorPointCount(body), 1);
  EXPECT_EQ(FMD_GetMonitorPointType(body, 0), -1);
  add(12);
  EXPECT_EQ(FMD_GetMonitorPointComponent(body, 1), 12);
}

}  // namespace
