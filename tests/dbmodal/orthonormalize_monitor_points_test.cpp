// Operators of monitor points under a change of the modal coordinates.
#include <gtest/gtest.h>

#include <vector>

#include "body/body.h"
#include "dbmodal/dbmonpnt/monitor_points.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/session.h"

namespace {

using Vector = std::vector<double>;

class TransformedMonitorPoints : public fmdtest::SessionTest {
 protected:
  void SetUp() override {
    body = FMD_Create(1, 4);
    FMD_AddMode(body, 1);
    FMD_AddMode(body, 2);
  }

  void add_point(int component, int load_operators) const {
    double location[3] = {};
    char name[] = "P";
    FMD_SetMonitorPointInfo(body, 1, 1, component, load_operators, location, name, name);
  }

  void set(int point, int kind, Vector values) const {
    ASSERT_EQ(FMD_SetMonitorPointOperator(body, point, kind, values.data()), 0);
  }

  Vector operator_of(int point, int kind, std::size_t size) const {
    Vector values(size);
    EXPECT_EQ(FMD_GetMonitorPointOperator(body, point, kind, values.data()), 0);
    return values;
  }

  int transform(Vector t) const { return FMD_TransformMonitorPoints(body, t.data()); }

  FmdBody* body = nullptr;
};

TEST_F(TransformedMonitorPoints, HaveEachRowOfEachKindTimesT) {
  add_point(12, 2);
  add_point(3, 1);
  set(0, 1, {1, 2, 3, 4});
  set(0, 2, {1, 0, 0, 1});
  set(0, 3, {0, 1, 1, 0});
  set(0, 4, {1, 0, 0, 1, 1, 1, 2, -1});
  set(1, 1, {1, -1});
  EXPECT_EQ(transform({1, 2, 10, 20}), 1);
  EXPECT_EQ(operator_of(0, 1, 4), (Vector{21, 42, 43, 86}));
  EXPECT_EQ(operator_of(0, 2, 4), (Vector{1, 2, 10, 20}));
  EXPECT_EQ(operator_of(0, 3, 4), (Vector{10, 20, 1, 2}));
  EXPECT_EQ(operator_of(0, 4, 8), (Vector{1, 2, 10, 20, 11, 22, -8, -16}));
  EXPECT_EQ(operator_of(1, 1, 2), (Vector{-9, -18}));
  EXPECT_EQ(FMD_MonitorPointHasOperator(body, 1, 2), 0);
}

TEST_F(TransformedMonitorPoints, CountModesAddedSinceAsZeros) {
  add_point(1, 0);
  set(0, 1, {3, 4});
  FMD_AddMode(body, 3);
  EXPECT_EQ(transform({1, 0, 5, 0, 1, 6, 0, 0, 7}), 1);
  EXPECT_EQ(operator_of(0, 1, 3), (Vector{3, 4, 39}));
}

TEST_F(TransformedMonitorPoints, LoseTheColumnsOfDroppedModes) {
  FMD_AddMode(body, 3);
  add_point(12, 2);
  set(0, 1, {1, 2, 3, 4, 5, 6});
  set(0, 4, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  fmd::drop_operator_columns(*body, 2);
  body->ModeCount = 2;
  EXPECT_EQ(operator_of(0, 1, 4), (Vector{1, 2, 4, 5}));
  EXPECT_EQ(operator_of(0, 4, 8), (Vector{1, 2, 4, 5, 7, 8, 10, 11}));
  FMD_AddMode(body, 3);
  EXPECT_EQ(operator_of(0, 1, 6), (Vector{1, 2, 4, 5, 0, 0}));
}

TEST_F(TransformedMonitorPoints, MayBeNone) {
  EXPECT_EQ(transform({1, 0, 0, 1}), 1);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(TransformedMonitorPoints, NeedABodyAndAMatrix) {
  add_point(1, 0);
  set(0, 1, {3, 4});
  EXPECT_EQ(FMD_TransformMonitorPoints(body, nullptr), 0);
  EXPECT_EQ(operator_of(0, 1, 2), (Vector{3, 4}));
  double t[4] = {};
  EXPECT_EQ(FMD_TransformMonitorPoints(nullptr, t), 0);
  EXPECT_EQ(log.errors, std::vector<std::string>{"The database has not been initialized."});
}

TEST_F(TransformedMonitorPoints, StayAsTheyAreWithoutMemory) {
  add_point(1, 0);
  set(0, 1, {3, 4});
  set(0, 2, {1, 1});
  FMD_AddMode(body, 3);
  for (long nth = 1; nth <= 3; ++nth) {
    fmd::fail_allocation(nth);
    EXPECT_EQ(transform({2, 0, 0, 0, 2, 0, 0, 0, 2}), 0);
    fmd::fail_allocation(0);
    EXPECT_TRUE(fmdtest::is_allocation_failure(log.errors.back(), "dbmonpnt"));
    EXPECT_EQ(operator_of(0, 1, 3), (Vector{3, 4, 0}));
    EXPECT_EQ(operator_of(0, 2, 3), (Vector{1, 1, 0}));
    log.clear();
  }
  EXPECT_EQ(transform({2, 0, 0, 0, 2, 0, 0, 0, 2}), 1);
  EXPECT_EQ(operator_of(0, 2, 3), (Vector{2, 2, 0}));
}

}  // namespace
