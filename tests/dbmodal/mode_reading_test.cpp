#include <gmock/gmock.h>

#include <algorithm>
#include <numeric>

#include "dbmodal/mode_model.h"
#include "system/file_system.h"

namespace {

using fmdtest::SixValues;
using testing::ElementsAre;
using testing::IsEmpty;

class CountingReads : public fmd::FileSystem {
 public:
  CountingReads() { fmd::replace_file_system(this); }
  ~CountingReads() override { fmd::replace_file_system(nullptr); }
  ssize_t pread(int file, void* buffer, std::size_t bytes, off_t offset) override {
    ++reads;
    return FileSystem::pread(file, buffer, bytes, offset);
  }
  int reads = 0;
};

class ModeReading : public fmdtest::ModeStoreTest {
 protected:
  std::vector<double> by_reference(FmdBody* body, int mode, int type, int part) {
    double* values = nullptr;
    if (FMD_ModeByRef(body, mode, type, &values, part) == 0) return {};
    return std::vector<double>(values, values + 3 * FMD_ModeNodeCount(body, type));
  }

  std::vector<double> whole(FmdBody* body, int mode, int type) {
    std::vector<double> values(static_cast<std::size_t>(6 * FMD_ModeNodeCount(body, type)));
    if (FMD_Read_Mode_Double(body, mode, type, values.data()) == 0) values.clear();
    return values;
  }

  // A body whose vectors are more than the store keeps in memory of what was written.
  FmdBody* make_large_body() {
    FmdBody* body = FMD_Create(kManyNodes, 20);
    for (int mode = 1; mode <= 20; ++mode)
      for (int node = 1; node <= kManyNodes; ++node)
        FMD_SetMode(body, mode, node, 0, mode, node, mode + node, mode - node, 1, 2);
    return body;
  }

  static constexpr int kManyNodes = 40000;
  SixValues six = {1, 2, 3, 4, 5, 6};
};

TEST_F(ModeReading, AllRoutesDeliverWhatWasStored) {
  FmdBody* body = FMD_Create(12, 4);
  for (int type = 0; type < 3; ++type)
    for (int mode = 4; mode >= 1; --mode)
      for (int node = 12; node >= 1; --node)
        if (type == 0 || node % 2 == 0) set(body, mode, node, type);
  for (const int keep : {0, 1}) {
    FMD_SetKeepModesInMemory(body, keep);
    for (int round = 0; round < 2; ++round)
      for (int type = 0; type < 3; ++type)
        for (int mode = 1; mode <= 4; ++mode) {
          EXPECT_EQ(whole(body, mode, type), expected(mode, type));
          for (int part = 0; part < 2; ++part) {
            EXPECT_EQ(by_reference(body, mode, type, part), expected_half(mode, type, part));
            for (const int node : nodes_[type]) {
              const SixValues stored = values_.at({type, mode, node});
              double values[3];
              ASSERT_EQ(FMD_ModeByNode(body, mode, type, node, values, part), 1);
              EXPECT_THAT(values, ElementsAre(stored[static_cast<std::size_t>(3 * part)],
                                              stored[static_cast<std::size_t>(3 * part + 1)],
                                              stored[static_cast<std::size_t>(3 * part + 2)]));
            }
          }
        }
  }
}

TEST_F(ModeReading, TwoHalvesOfOneModeCostOneReadOfTheDisk) {
  FmdBody* body = make_large_body();
  FMD_SetKeepModesInMemory(body, 0);
  std::vector<double> half(3 * kManyNodes);
  CountingReads disk;
  ASSERT_EQ(FMD_Mode(body, 1, 0, half.data(), 0), 1);
  EXPECT_GT(disk.reads, 0);
  for (std::size_t node = 1; node <= kManyNodes; ++node) ASSERT_EQ(half[3 * node - 2], double(node));
  disk.reads = 0;
  ASSERT_EQ(FMD_Mode(body, 1, 0, half.data(), 1), 1);
  ASSERT_EQ(FMD_Mode(body, 1, 0, half.data(), 0), 1);
  EXPECT_EQ(disk.reads, 0);
  ASSERT_EQ(FMD_Mode(body, 2, 0, half.data(), 0), 1);
  EXPECT_GT(disk.reads, 0);
}

TEST_F(ModeReading, AScanOverNodesCostsOneReadAndOneCacheFill) {
  FmdBody* body = make_large_body();
  CountingReads disk;
  double values[3];
  ASSERT_EQ(FMD_ModeByNode(body, 1, 0, 1, values, 0), 1);
  EXPECT_GT(disk.reads, 0);
  disk.reads = 0;
  for (int node = 2; node <= kManyNodes; ++node) ASSERT_EQ(FMD_ModeByNode(body, 1, 0, node, values, 0), 1);
  EXPECT_EQ(disk.reads, 0);
  EXPECT_EQ(body->ModeMemoryUsed, 1);
}

TEST_F(ModeReading, ALoadedVectorKeepsItsOldValuesUntilAnotherIsLoaded) {
  FmdBody* body = make_body(1, 2);
  FMD_SetKeepModesInMemory(body, 0);
  const std::vector<double> old = read_half(body, 1, 0, 0);
  ASSERT_EQ(FMD_SetModeVec(body, 1, 1, 0, six.data()), 1);
  EXPECT_EQ(read_half(body, 1, 0, 0), old);
  EXPECT_EQ(body->LoadedModeIndex[0], 0);
  read_half(body, 2, 0, 0);
  EXPECT_THAT(read_half(body, 1, 0, 0), ElementsAre(1, 2, 3));
}

TEST_F(ModeReading, BulkReadsPassBufferAndCache) {
  FmdBody* body = make_body(1, 2);
  read_half(body, 1, 0, 0);
  ASSERT_EQ(FMD_SetModeVec(body, 1, 1, 0, six.data()), 1);
  EXPECT_THAT(whole(body, 1, 0), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_EQ(whole(body, 2, 0), expected(2, 0));
  EXPECT_EQ(body->LoadedModeIndex[0], 0);
  EXPECT_EQ(body->ModeMemoryUsed, 1);
}

TEST_F(ModeReading, BulkReadsNeedTheWidthOfTheStore) {
  std::vector<float> floats(6);
  std::vector<double> doubles(6);
  FmdBody* wide = make_body(1, 1);
  EXPECT_EQ(FMD_Double_Prec(wide), 1);
  EXPECT_EQ(FMD_Read_Mode_Single(wide, 1, 0, floats.data()), 0);
  EXPECT_EQ(FMD_Read_Mode_Double(wide, 1, 0, doubles.data()), 1);

  FmdBody* narrow = FMD_Create(1, 1);
  narrow->DataFile.DoublePrecision = 0;
  ASSERT_EQ(FMD_SetModeVec(narrow, 1, 1, 0, six.data()), 1);
  EXPECT_EQ(FMD_Double_Prec(narrow), 0);
  EXPECT_EQ(FMD_Read_Mode_Double(narrow, 1, 0, doubles.data()), 0);
  ASSERT_EQ(FMD_Read_Mode_Single(narrow, 1, 0, floats.data()), 1);
  EXPECT_THAT(floats, ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(ModeReading, BulkReadsAnswerZeroWhereThereIsNothing) {
  std::vector<float> floats(6);
  std::vector<double> doubles(6);
  FmdBody* body = FMD_Create(1, 2);
  EXPECT_EQ(FMD_Read_Mode_Double(body, 1, 0, doubles.data()), 0) << "no nodes";
  FMD_AddNode(body, 1);
  FMD_AddMode(body, 1);
  EXPECT_EQ(FMD_Read_Mode_Double(body, 1, 0, doubles.data()), 0) << "no vectors";
  set(body, 1, 1, 0);
  EXPECT_EQ(FMD_Read_Mode_Double(body, 2, 0, doubles.data()), 0) << "no such mode";
  EXPECT_EQ(FMD_Read_Mode_Double(body, 1, 1, doubles.data()), 0) << "no nodes of the type";
  EXPECT_EQ(FMD_Read_Mode_Double(body, 1, 3, doubles.data()), 0) << "no such type";
  set(body, 1, 1, 1);
  EXPECT_EQ(FMD_Read_Mode_Double(body, 0, 1, doubles.data()), 0) << "no pre-stress";
  EXPECT_EQ(FMD_Read_Mode_Single(body, 0, 1, floats.data()), 0);
  body->ModePositions[0][0] = FmdPosition{{-1, -1}};
  EXPECT_EQ(FMD_Read_Mode_Double(body, 1, 0, doubles.data()), 0) << "unreadable";
  EXPECT_THAT(log.errors, IsEmpty());
}

TEST_F(ModeReading, HalvesAnswerZeroWhereThereIsNothing) {
  FmdBody* body = FMD_Create(2, 2);
  EXPECT_THAT(read_half(body, 1, 0, 0), IsEmpty()) << "no nodes";
  FMD_AddNode(body, 1);
  FMD_AddMode(body, 1);
  double values[3] = {9, 9, 9};
  EXPECT_EQ(FMD_Mode(body, 1, 0, values, 0), 0) << "no vectors";
  set(body, 1, 1, 0);
  EXPECT_EQ(FMD_Mode(body, 2, 0, values, 0), 0) << "no such mode";
  EXPECT_EQ(FMD_Mode(body, 1, 1, values, 0), 0) << "no nodes of the type";
  EXPECT_EQ(FMD_Mode(body, 1, 3, values, 0), 0) << "no such type";
  EXPECT_EQ(FMD_Mode(body, 1, -1, values, 0), 0) << "no such type";
  EXPECT_EQ(FMD_Mode(body, 0, 2, values, 0), 0) << "no pre-strain";
  EXPECT_THAT(values, ElementsAre(9, 9, 9));
  EXPECT_THAT(log.errors, IsEmpty());
}

TEST_F(ModeReading, ThereAreTwoPartsEvenOfACachedMode) {
  FmdBody* body = make_body(1, 1);
  read_half(body, 1, 0, 0);
  read_half(body, 1, 0, 1);
  double values[3] = {9, 9, 9};
  double* pointer = values;
  for (const int part : {-1, 2}) {
    EXPECT_EQ(FMD_Mode(body, 1, 0, values, part), 0);
    EXPECT_EQ(FMD_ModeByRef(body, 1, 0, &pointer, part), 0);
    EXPECT_THAT(values, ElementsAre(9, 9, 9));
  }
  for (const int part : {-1, 2}) {
    EXPECT_EQ(FMD_ModeByNode(body, 1, 0, 1, values, part), 0);
    EXPECT_THAT(values, ElementsAre(0, 0, 0));
    EXPECT_EQ(FMD_ModetoMemory(body, 1, 0, values, part), 0);
    EXPECT_EQ(FMD_ModeFromMemory(body, 1, 0, values, part), 0);
    EXPECT_EQ(FMD_ModeFromMemoryByRef(body, 1, 0, &pointer, part), 0);
    EXPECT_EQ(FMD_ModeFromMemoryByNode(body, 1, 0, 1, values, part), 0);
  }
}

TEST_F(ModeReading, OneNodeThatIsNotThereGivesZeros) {
  FmdBody* body = make_body(2, 1);
  for (const int keep : {0, 1, 1}) {
    FMD_SetKeepModesInMemory(body, keep);
    double values[3] = {9, 9, 9};
    EXPECT_EQ(FMD_ModeByNode(body, 1, 0, 77, values, 0), 0);
    EXPECT_THAT(values, ElementsAre(0, 0, 0));
    EXPECT_EQ(FMD_ModeByNode(body, 1, 0, 2, values, 0), 1);
  }
  double values[3] = {9, 9, 9};
  EXPECT_EQ(FMD_ModeByNode(body, 5, 0, 1, values, 0), 0);
  EXPECT_THAT(values, ElementsAre(0, 0, 0));
}

TEST_F(ModeReading, TheReferenceIsSharedAndFitsTheLargestType) {
  FmdBody* body = make_body(50, 2);
  set(body, 1, 3, 1);
  FMD_SetKeepModesInMemory(body, 0);
  double* stress = nullptr;
  double* shape = nullptr;
  ASSERT_EQ(FMD_ModeByRef(body, 1, 1, &stress, 0), 1);
  ASSERT_EQ(FMD_ModeByRef(body, 1, 0, &shape, 0), 1);
  EXPECT_EQ(shape, stress);
  EXPECT_EQ(std::vector<double>(shape, shape + 150), expected_half(1, 0, 0));
}

TEST_F(ModeReading, AVectorLoadedBeforeNodesWereAddedIsReadAnew) {
  FmdBody* body = FMD_Create(4, 2);
  for (const int keep : {0, 1}) {
    FMD_SetKeepModesInMemory(body, keep);
    set(body, 1, 1 + keep * 2, 0);
    EXPECT_EQ(read_half(body, 1, 0, 0), expected_half(1, 0, 0));
    EXPECT_EQ(by_reference(body, 1, 0, 1), expected_half(1, 0, 1));
    set(body, 1, 2 + keep * 2, 0);
    EXPECT_EQ(read_half(body, 1, 0, 0), expected_half(1, 0, 0));
    EXPECT_EQ(by_reference(body, 1, 0, 1), expected_half(1, 0, 1));
  }
}

TEST_F(ModeReading, ThePseudoModeIsThePreStressOrPreStrain) {
  FmdBody* body = make_body(3, 2);
  set(body, 1, 2, 1);
  set(body, 1, 3, 1);
  ASSERT_EQ(FMD_SetPreStressVec(body, 3, six.data()), 1);
  ASSERT_EQ(FMD_SetPreStrainVec(body, 1, six.data()), 1);
  EXPECT_THAT(read_half(body, 0, 1, 0), ElementsAre(0, 0, 0, 1, 2, 3));
  EXPECT_THAT(read_half(body, 0, 1, 1), ElementsAre(0, 0, 0, 4, 5, 6));
  EXPECT_THAT(by_reference(body, 0, 2, 1), ElementsAre(4, 5, 6));
  EXPECT_THAT(whole(body, 0, 1), ElementsAre(0, 0, 0, 0, 0, 0, 1, 2, 3, 4, 5, 6));
  double values[3];
  ASSERT_EQ(FMD_ModeByNode(body, 0, 1, 3, values, 0), 1);
  EXPECT_THAT(values, ElementsAre(1, 2, 3));
  float floats[6];
  ASSERT_EQ(FMD_Read_Mode_Single(body, 0, 2, floats), 1);
  EXPECT_THAT(floats, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_EQ(body->LoadedModeIndex[1], 2);
  EXPECT_EQ(body->ModeMemoryUsed, 0) << "it is never cached";
}

TEST_F(ModeReading, ThePseudoModeIsNotMistakenForARealModeZero) {
  FmdBody* body = FMD_Create(3, 2);
  set(body, 0, 1, 0);
  ASSERT_EQ(FMD_SetModeEntry(body, 0, 1, 1, 0, 42.0), 1);
  ASSERT_EQ(FMD_SetPreStressVec(body, 1, six.data()), 1);
  for (int round = 0; round < 2; ++round) {
    EXPECT_THAT(read_half(body, 0, 1, 0), ElementsAre(1, 2, 3));
    double values[3];
    EXPECT_EQ(FMD_ModeFromMemory(body, 0, 1, values, 0), 0);
    EXPECT_EQ(FMD_ModetoMemory(body, 0, 1, values, 0), 0);
  }
}

TEST_F(ModeReading, NodesWithoutPreStressAreZeroHoweverManyThereAre) {
  FmdBody* body = FMD_Create(1500, 1);
  ASSERT_EQ(FMD_SetPreStressVec(body, 1, six.data()), 1);
  for (int node = 1; node <= 1500; ++node) set(body, 1, node, 1);
  std::vector<double> expectation(9000, 0.0);
  std::copy(six.begin(), six.end(), expectation.begin());
  EXPECT_EQ(whole(body, 0, 1), expectation);
  std::vector<float> floats(9000, 9.0F);
  ASSERT_EQ(FMD_Read_Mode_Single(body, 0, 1, floats.data()), 1);
  EXPECT_EQ(std::vector<double>(floats.begin(), floats.end()), expectation);
  const std::vector<double> normal = read_half(body, 0, 1, 0);
  EXPECT_EQ(std::accumulate(normal.begin(), normal.end(), 0.0), 6.0);
}

TEST_F(ModeReading, AddingAModeDropsALoadedPreStress) {
  FmdBody* body = FMD_Create(1, 3);
  set(body, 1, 1, 1);
  set(body, 1, 1, 2);
  FMD_SetKeepModesInMemory(body, 0);
  ASSERT_EQ(FMD_SetPreStressVec(body, 1, six.data()), 1);
  ASSERT_EQ(FMD_SetPreStrainVec(body, 1, six.data()), 1);
  EXPECT_THAT(read_half(body, 0, 1, 0), ElementsAre(1, 2, 3));
  EXPECT_THAT(read_half(body, 0, 2, 0), ElementsAre(1, 2, 3));
  set(body, 2, 1, 1);
  set(body, 2, 1, 2);
  EXPECT_EQ(read_half(body, 2, 1, 0), expected_half(2, 1, 0));
  EXPECT_EQ(read_half(body, 2, 2, 0), expected_half(2, 2, 0));
}

class ModeUnits : public ModeReading {
 protected:
  ModeUnits() {
    body = FMD_Create(2, 2);
    for (int type = 0; type < 3; ++type)
      for (int node = 1; node <= 2; ++node) set(body, 1, node, type);
    FMD_SetPreStressVec(body, 1, six.data());
    FMD_SetPreStrainVec(body, 1, six.data());
    body->UnitTotalFactor[fmd::kForce] = 3.0;
    body->UnitTotalFactor[fmd::kLength] = 0.25;
  }
  FmdBody* body;
};

TEST_F(ModeUnits, ScaleTranslationsByLengthStressByForcePerAreaAndStrainNot) {
  for (const int keep : {0, 1}) {
    FMD_SetKeepModesInMemory(body, keep);
    for (int round = 0; round < 2; ++round)
      for (int type = 0; type < 3; ++type)
        for (int part = 0; part < 2; ++part) {
          const double factor = type == 1 ? 48.0 : (type == 0 && part == 0 ? 0.25 : 1.0);
          std::vector<double> scaled = expected_half(1, type, part);
          for (double& value : scaled) value *= factor;
          EXPECT_EQ(read_half(body, 1, type, part), scaled);
        }
  }
}

TEST_F(ModeUnits, ScaleThePreStressInEveryReading) {
  EXPECT_THAT(read_half(body, 0, 1, 0), ElementsAre(48, 96, 144, 0, 0, 0));
  EXPECT_THAT(read_half(body, 0, 2, 0), ElementsAre(1, 2, 3, 0, 0, 0));
  EXPECT_THAT(whole(body, 0, 1), ElementsAre(48, 96, 144, 192, 240, 288, 0, 0, 0, 0, 0, 0));
  float floats[12];
  ASSERT_EQ(FMD_Read_Mode_Single(body, 0, 1, floats), 1);
  EXPECT_THAT(floats, ElementsAre(48, 96, 144, 192, 240, 288, 0, 0, 0, 0, 0, 0));
}

TEST_F(ModeUnits, ScaleTheBulkReads) {
  for (int type = 0; type < 3; ++type) {
    std::vector<double> scaled = expected(1, type);
    for (std::size_t i = 0; i < scaled.size(); ++i)
      scaled[i] *= type == 1 ? 48.0 : (type == 0 && i % 6 < 3 ? 0.25 : 1.0);
    EXPECT_EQ(whole(body, 1, type), scaled);
  }
}

TEST_F(ModeUnits, SinglePrecisionTakesTheFactorsAsFloats) {
  FmdBody* narrow = FMD_Create(1, 1);
  narrow->DataFile.DoublePrecision = 0;
  FMD_SetModeVec(narrow, 1, 1, 0, six.data());
  FMD_SetModeVec(narrow, 1, 1, 1, six.data());
  narrow->UnitTotalFactor[fmd::kLength] = 0.1;
  float values[6];
  ASSERT_EQ(FMD_Read_Mode_Single(narrow, 1, 0, values), 1);
  EXPECT_THAT(values, ElementsAre(0.1F, 2 * 0.1F, 3 * 0.1F, 4, 5, 6));
  // A stress factor that a float cannot tell from 1 changes nothing.
  narrow->UnitTotalFactor[fmd::kLength] = 1.0;
  narrow->UnitTotalFactor[fmd::kForce] = 1.0 + 1e-12;
  ASSERT_EQ(FMD_Read_Mode_Single(narrow, 1, 1, values), 1);
  EXPECT_THAT(values, ElementsAre(1, 2, 3, 4, 5, 6));
  narrow->UnitTotalFactor[fmd::kForce] = 0.1;
  ASSERT_EQ(FMD_Read_Mode_Single(narrow, 1, 1, values), 1);
  EXPECT_THAT(values, ElementsAre(0.1F, 2 * 0.1F, 3 * 0.1F, 4 * 0.1F, 5 * 0.1F, 6 * 0.1F));
}

}  // namespace
