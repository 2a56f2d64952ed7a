#include <gmock/gmock.h>

#include <cmath>
#include <limits>

#include "dbmodal/dbdata/mode_peaks.h"
#include "dbmodal/mode_model.h"
#include "messages/memory.h"

namespace {

using fmdtest::is_allocation_failure;
using testing::ElementsAre;
using testing::IsEmpty;

using Getter = int (*)(FmdBody*, int, int*, double*);
constexpr Getter kGetters[] = {FMD_GetMaxModeDisplacement, FMD_GetMaxModeRotation, FMD_GetMaxVonMisesStress,
                               FMD_GetMaxVonMisesStrain};

struct Maximum {
  int result;
  int node;
  double value;
  bool operator==(const Maximum& other) const {
    return result == other.result && node == other.node && value == other.value;
  }
};

std::ostream& operator<<(std::ostream& out, const Maximum& maximum) {
  return out << "{" << maximum.result << ", " << maximum.node << ", " << maximum.value << "}";
}

class ModeStatistics : public fmdtest::ModeStoreTest {
 protected:
  static Maximum ask(Getter getter, FmdBody* body, int mode) {
    Maximum maximum = {0, -1, -1.0};
    maximum.result = getter(body, mode, &maximum.node, &maximum.value);
    return maximum;
  }
};

TEST_F(ModeStatistics, FindTheLongestTranslationAndRotation) {
  FmdBody* body = FMD_Create(4, 2);
  FMD_SetMode(body, 1, 40, 0, 1, 2, 2, 0, 0, 0);
  FMD_SetMode(body, 1, 30, 0, 0, -3, 4, 0, 0, 1);
  FMD_SetMode(body, 1, 20, 0, 5, 0, 0, -2, -3, 6);
  FMD_SetMode(body, 1, 10, 0, 0, 0, 0, 0, 0, 6.5);
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1), (Maximum{1, 30, 5.0})) << "the first of two wins";
  EXPECT_EQ(ask(FMD_GetMaxModeRotation, body, 1), (Maximum{1, 20, 7.0}));
}

TEST_F(ModeStatistics, FindTheLargestVonMisesValues) {
  FmdBody* body = FMD_Create(3, 1);
  FMD_AddNode(body, 99);
  for (const int type : {1, 2}) {
    FMD_SetMode(body, 1, 7, type, 2, 0, 0, 0, 0, 0);
    FMD_SetMode(body, 1, 5, type, 3, -1, 4, 0.5, -2, 1);
    FMD_SetMode(body, 1, 6, type, 1, 1, 1, 0, 0, 0);
  }
  // By principal differences: ((3+1)^2 + (-1-4)^2 + (4-3)^2) / 2 = 21, and the shear squares add to 5.25.
  EXPECT_EQ(ask(FMD_GetMaxVonMisesStress, body, 1), (Maximum{1, 5, std::sqrt(21 + 3 * 5.25)}));
  const Maximum strain = ask(FMD_GetMaxVonMisesStrain, body, 1);
  EXPECT_EQ(strain.result, 1);
  EXPECT_EQ(strain.node, 5);
  EXPECT_NEAR(strain.value, 2.0 / 3.0 * std::sqrt(21 + 0.75 * 5.25), 1e-14);
}

TEST_F(ModeStatistics, HydrostaticStateHasNoVonMisesValue) {
  FmdBody* body = FMD_Create(1, 1);
  for (const int type : {1, 2}) FMD_SetMode(body, 1, 7, type, 4, 4, 4, 0, 0, 0);
  EXPECT_EQ(ask(FMD_GetMaxVonMisesStress, body, 1), (Maximum{1, 0, 0.0}));
  EXPECT_EQ(ask(FMD_GetMaxVonMisesStrain, body, 1), (Maximum{1, 0, 0.0}));
}

TEST_F(ModeStatistics, PureShearCountsByTheRootOfThree) {
  for (int component = 0; component < 3; ++component) {
    FmdBody* body = FMD_Create(1, 1);
    FMD_SetModeEntry(body, 1, 7, 1, 3 + component, -2.5);
    FMD_SetModeEntry(body, 1, 7, 2, 3 + component, -2.5);
    EXPECT_EQ(ask(FMD_GetMaxVonMisesStress, body, 1).node, 7);
    EXPECT_NEAR(ask(FMD_GetMaxVonMisesStress, body, 1).value, std::sqrt(3.0) * 2.5, 1e-14);
    EXPECT_NEAR(ask(FMD_GetMaxVonMisesStrain, body, 1).value, 2.5 / std::sqrt(3.0), 1e-14);
  }
}

TEST_F(ModeStatistics, AModeOfZerosHasNoNodeAndIsLookedAtEachTime) {
  FmdBody* body = FMD_Create(1, 2);
  FMD_SetKeepModesInMemory(body, 0);
  for (int type = 0; type < 3; ++type) FMD_SetMode(body, 1, 7, type, 0, 0, 0, 0, 0, 0);
  for (const Getter getter : kGetters) EXPECT_EQ(ask(getter, body, 1), (Maximum{1, 0, 0.0}));
  FMD_SetMode(body, 1, 7, 0, 0, 3, 0, 0, 0, 0);
  FMD_SetMode(body, 2, 7, 0, 1, 0, 0, 0, 0, 0);
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 2), (Maximum{1, 7, 1.0}));
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1), (Maximum{1, 7, 3.0}));
}

TEST_F(ModeStatistics, AreKeptOnceKnown) {
  FmdBody* body = make_body(3, 2);
  FMD_SetKeepModesInMemory(body, 0);
  const Maximum first = ask(FMD_GetMaxModeDisplacement, body, 1);
  EXPECT_EQ(first.node, 3);
  for (int node = 1; node <= 3; ++node) FMD_SetMode(body, 1, node, 0, 0, 0, 0, 0, 0, 0);
  EXPECT_EQ(ask(FMD_GetMaxModeRotation, body, 2).node, 3);  // another vector is loaded
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1), first);
}

TEST_F(ModeStatistics, AreWorkedOutAndKeptWithoutOutputs) {
  FmdBody* body = FMD_Create(1, 1);
  for (int type = 0; type < 3; ++type) FMD_SetMode(body, 1, 7, type, 1, 0, 0, 2, 0, 0);
  EXPECT_EQ(FMD_ModalStatisticsExist(body), 0);
  for (const Getter getter : kGetters) EXPECT_EQ(getter(body, 1, nullptr, nullptr), 1);
  EXPECT_EQ(FMD_ModalStatisticsExist(body), 1);
  const FmdModeStatistics& record = body->ModalStatistics[0];
  EXPECT_EQ(record.MaxDisplacementNode, 7);
  EXPECT_EQ(record.MaxRotationNode, 7);
  EXPECT_EQ(record.MaxStressNode, 7);
  EXPECT_EQ(record.MaxStrainNode, 7);
  EXPECT_EQ(record.MaxDisplacement, 1.0);
  EXPECT_EQ(record.MaxRotation, 2.0);
  EXPECT_EQ(record.MaxStress, std::sqrt(13.0));
  EXPECT_GT(record.MaxStrain, 0.0);
}

TEST_F(ModeStatistics, ABodyWithoutModesHasNone) {
  FmdBody* body = FMD_Create(1, 1);
  for (const Getter getter : kGetters) EXPECT_EQ(ask(getter, body, 1), (Maximum{0, -1, -1.0}));
  EXPECT_EQ(FMD_ModalStatisticsExist(body), 0);
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(ModeStatistics, AnUnknownModeAnswersZero) {
  FmdBody* body = make_body(1, 1);
  for (const Getter getter : kGetters) EXPECT_EQ(ask(getter, body, 9), (Maximum{0, -1, -1.0}));
  EXPECT_EQ(FMD_ModalStatisticsExist(body), 1);
}

TEST_F(ModeStatistics, MissingVectorsLeaveTheStatisticUnknown) {
  FmdBody* body = make_body(1, 1);
  log.clear();
  for (const Getter getter : {FMD_GetMaxVonMisesStress, FMD_GetMaxVonMisesStrain})
    EXPECT_EQ(ask(getter, body, 1), (Maximum{0, 0, 0.0}));
  ASSERT_EQ(log.all.size(), 2U) << "no nodes count as a failed allocation";
  for (const std::string& text : log.errors) EXPECT_TRUE(is_allocation_failure(text, "dbdata"));

  double six[6] = {1, 0, 0, 0, 0, 0};
  FMD_SetPreStressVec(body, 1, six);
  log.clear();
  EXPECT_EQ(ask(FMD_GetMaxVonMisesStress, body, 1), (Maximum{0, 0, 0.0})) << "nodes, but no modal stress";
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(ModeStatistics, FollowModesThatAreAddedLater) {
  FmdBody* body = FMD_Create(1, 3);
  for (int mode = 1; mode <= 3; ++mode) {
    FMD_SetMode(body, mode, 7, 0, mode, 0, 0, 0, 0, 0);
    EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, mode), (Maximum{1, 7, 1.0 * mode}));
  }
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1), (Maximum{1, 7, 1.0}));
}

TEST_F(ModeStatistics, TheMeasuresPassOverWhatIsNoNumber) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double vectors[] = {nan, 0, 0, 0, 3, 4};
  EXPECT_EQ(fmd::largest_length(vectors, 2).place, 1);
  EXPECT_EQ(fmd::largest_length(vectors, 2).value, 5.0);
  EXPECT_EQ(fmd::largest_length(vectors, 1).place, -1);
}

// A dataset of no more than the statistics block: the number of modes, then nodes and values per mode.
class StoredStatistics : public ModeStatistics {
 protected:
  void begin_dataset(int count) {
    int scratch = 0;
    body = make_body(2, 2);
    body->DataFile.Block = DB_OpenScratch(&scratch);
    ASSERT_NE(body->DataFile.Block, 0);
    const int number = 30;
    DB_WriteINTs(body->DataFile, &number, 1);
    DB_FSAVE(&body->BlockPosition[29], body->DataFile);
    DB_WriteINTs(body->DataFile, &count, 1);
  }

  void add_record(int mode) {
    int nodes[13] = {};
    double values[13] = {};
    for (int i = 0; i < 13; ++i) {
      nodes[i] = 100 * mode + i;
      values[i] = 1000 * mode + 0.5 * i;
    }
    DB_WriteINTs(body->DataFile, nodes, 13);
    DB_WriteDOUBLEs(body->DataFile, values, 13);
  }

  void end_dataset() {
    DB_ReOpenScratch(body->DataFile.Block);
    body->BlockExists[28] = 1;
    log.clear();
  }

  FmdBody* body = nullptr;
};

TEST_F(StoredStatistics, AreTakenFromTheDatasetWithUnitsApplied) {
  begin_dataset(2);
  add_record(1);
  add_record(2);
  end_dataset();
  body->UnitTotalFactor[fmd::kLength] = 0.5;
  body->UnitTotalFactor[fmd::kForce] = 3.0;
  for (int mode = 1; mode <= 2; ++mode) {
    EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, mode), (Maximum{1, 100 * mode, 500.0 * mode}));
    EXPECT_EQ(ask(FMD_GetMaxModeRotation, body, mode), (Maximum{1, 100 * mode + 1, 1000 * mode + 0.5}));
    EXPECT_EQ(ask(FMD_GetMaxVonMisesStress, body, mode), (Maximum{1, 100 * mode + 2, 12000.0 * mode + 12}));
    EXPECT_EQ(ask(FMD_GetMaxVonMisesStrain, body, mode), (Maximum{1, 100 * mode + 3, 1000 * mode + 1.5}));
    const FmdModeStatistics& record = body->ModalStatistics[mode - 1];
    for (int i = 0; i < 9; ++i) {
      EXPECT_EQ(record.OtherNodes[i], 100 * mode + 4 + i);
      EXPECT_EQ(record.OtherValues[i], 1000 * mode + 0.5 * (4 + i));
    }
  }
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(StoredStatistics, OfAnotherNumberOfModesAreRefusedOnce) {
  begin_dataset(3);
  for (int mode = 1; mode <= 3; ++mode) add_record(mode);
  end_dataset();
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1), (Maximum{0, -1, -1.0}));
  ASSERT_EQ(log.all.size(), 1U);
  EXPECT_THAT(log.errors[0],
              testing::MatchesRegex("Inconsistent number of modes detected at line [0-9]+ in file dbdata"));
  EXPECT_EQ(FMD_ModalStatisticsExist(body), 1);
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1).node, 2) << "the next call works it out";
  EXPECT_EQ(log.all.size(), 1U);
}

TEST_F(StoredStatistics, ThatEndTooSoonAreKeptAsFarAsTheyGo) {
  begin_dataset(2);
  add_record(1);
  end_dataset();
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1), (Maximum{0, -1, -1.0}));
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1), (Maximum{1, 100, 1000.0}));
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 2).node, 2) << "worked out";
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(StoredStatistics, WithoutMemoryAreReadLater) {
  begin_dataset(2);
  add_record(1);
  add_record(2);
  end_dataset();
  fmd::fail_allocation(1);
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1), (Maximum{0, -1, -1.0}));
  fmd::fail_allocation(0);
  ASSERT_EQ(log.all.size(), 1U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbdata"));
  EXPECT_EQ(FMD_ModalStatisticsExist(body), 0);
  EXPECT_EQ(ask(FMD_GetMaxModeDisplacement, body, 1), (Maximum{1, 100, 1000.0}));
}

}  // namespace
