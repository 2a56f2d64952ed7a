#include <gmock/gmock.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <string>
#include <vector>

#include "body/body.h"
#include "dbmodal/mode_model.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/failing_file_system.h"

namespace {

using fmdtest::is_allocation_failure;
using fmdtest::SixValues;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

using Matrix = std::array<double, 9>;

const Matrix kRotation = {0.36, 0.48, -0.8, -0.8, 0.6, 0, 0.48, 0.64, 0.6};
const Matrix kReflection = {-0.36, -0.48, 0.8, -0.8, 0.6, 0, 0.48, 0.64, 0.6};
const Matrix kIdentity = {1, 0, 0, 0, 1, 0, 0, 0, 1};

constexpr int kNodes = 5;
constexpr int kModes = 3;

// v A
std::array<double, 3> turned(const double* v, const Matrix& a) {
  std::array<double, 3> result{};
  for (std::size_t j = 0; j < 3; ++j)
    for (std::size_t k = 0; k < 3; ++k) result[j] += v[k] * a[3 * k + j];
  return result;
}

SixValues turned_shape(const SixValues& six, const Matrix& a, double rotation_sign) {
  const auto translation = turned(six.data(), a);
  const auto rotation = turned(six.data() + 3, a);
  SixValues result;
  for (std::size_t k = 0; k < 3; ++k) {
    result[k] = translation[k];
    result[3 + k] = rotation_sign * rotation[k];
  }
  return result;
}

// Places of the six values in the tensor: xx, yy, zz, xy, xz, yz.
constexpr std::size_t kRow[6] = {0, 1, 2, 0, 0, 1};
constexpr std::size_t kColumn[6] = {0, 1, 2, 1, 2, 2};

SixValues turned_tensor(const SixValues& six, const Matrix& a) {
  double tensor[3][3];
  for (std::size_t k = 0; k < 6; ++k) tensor[kRow[k]][kColumn[k]] = tensor[kColumn[k]][kRow[k]] = six[k];
  SixValues result{};
  for (std::size_t k = 0; k < 6; ++k)
    for (std::size_t p = 0; p < 3; ++p)
      for (std::size_t q = 0; q < 3; ++q)
        result[k] += a[3 * p + kRow[k]] * tensor[p][q] * a[3 * q + kColumn[k]];
  return result;
}

void expect_close(const SixValues& actual, const SixValues& expected, double tolerance = 1e-14) {
  double largest = 1.0;
  for (const double value : expected) largest = std::max(largest, std::fabs(value));
  for (std::size_t k = 0; k < 6; ++k)
    EXPECT_LE(std::fabs(actual[k] - expected[k]), 40 * tolerance * largest) << k;
}

class TransformMode : public fmdtest::ModeStoreTest {
 protected:
  // Shapes at all nodes, stress and strain at some, in an order of their own.
  FmdBody* make_full_body(int planned_nodes = kNodes, int planned_modes = kModes, bool is_double = true) {
    FmdBody* body = FMD_Create(planned_nodes, planned_modes);
    body->DataFile.DoublePrecision = is_double ? 1 : 0;
    for (int mode = 1; mode <= kModes; ++mode) {
      for (int node = 1; node <= kNodes; ++node) set(body, mode, node, fmd::kShape);
      for (const int node : {4, 2, 5}) set(body, mode, node, fmd::kStress);
      for (const int node : {3, 1}) set(body, mode, node, fmd::kStrain);
    }
    log.clear();
    return body;
  }

  static SixValues read(FmdBody* body, int mode, int type, int node) {
    SixValues six{};
    EXPECT_EQ(FMD_ModeByNode(body, mode, type, node, six.data(), 0), 1);
    EXPECT_EQ(FMD_ModeByNode(body, mode, type, node, six.data() + 3, 1), 1);
    return six;
  }

  static void apply(FmdBody* body, Matrix matrix, int type) { transform_mode(body, matrix.data(), type); }

  void expect_untouched(FmdBody* body) {
    for (const auto& [place, six] : values_) {
      const auto [type, mode, node] = place;
      EXPECT_EQ(read(body, mode, type, node), six);
    }
  }
};

TEST_F(TransformMode, TurnsTranslationsAndRotations) {
  FmdBody* body = make_full_body();
  const int old_block = body->ModeFile[0].Block;
  apply(body, kRotation, fmd::kShape);
  EXPECT_THAT(
      log.all,
      ElementsAre("I: Shortened Shape mode file: key = " + std::to_string(body->ModeFile[0].Key) + "\n"));
  EXPECT_NE(body->ModeFile[0].Block, old_block);
  EXPECT_EQ(body->ModeFile[0].IsScratch, 1);
  for (auto& [place, six] : values_) {
    const auto [type, mode, node] = place;
    if (type == fmd::kShape) {
      expect_close(read(body, mode, type, node), turned_shape(six, kRotation, 1.0));
    } else {
      EXPECT_EQ(read(body, mode, type, node), six);
    }
  }
}

TEST_F(TransformMode, ReflectionsReverseRotationsBesides) {
  FmdBody* body = make_full_body();
  apply(body, kReflection, fmd::kShape);
  for (int mode = 1; mode <= kModes; ++mode)
    for (int node = 1; node <= kNodes; ++node)
      expect_close(read(body, mode, 0, node), turned_shape(values_.at({0, mode, node}), kReflection, -1.0));
}

TEST_F(TransformMode, StressAndStrainTurnAsTensors) {
  for (const Matrix& matrix : {kRotation, kReflection}) {
    FmdBody* body = make_full_body();
    apply(body, matrix, fmd::kStress);
    apply(body, matrix, fmd::kStrain);
    EXPECT_THAT(log.all, ElementsAre(StartsWith("I: Shortened Stress mode file: key = "),
                                     StartsWith("I: Shortened Strain mode file: key = ")));
    for (auto& [place, six] : values_) {
      const auto [type, mode, node] = place;
      expect_close(read(body, mode, type, node), type == fmd::kShape ? six : turned_tensor(six, matrix));
    }
    FMD_UnLink(body);
  }
}

TEST_F(TransformMode, PreStressAndPreStrainTurnWithTheirKind) {
  FmdBody* body = make_full_body();
  SixValues stress = {1, 2, 3, 4, 5, 6};
  SixValues strain = {6, 5, 4, 3, 2, 1};
  FMD_SetPreStressVec(body, 2, stress.data());
  FMD_SetPreStrainVec(body, 1, strain.data());
  read_half(body, 0, fmd::kStress, 0);
  apply(body, kRotation, fmd::kShape);
  EXPECT_EQ(read(body, 0, fmd::kStress, 2), stress);
  apply(body, kRotation, fmd::kStress);
  expect_close(read(body, 0, fmd::kStress, 2), turned_tensor(stress, kRotation));
  EXPECT_EQ(read(body, 0, fmd::kStress, 5), SixValues{});
  EXPECT_EQ(read(body, 0, fmd::kStrain, 1), strain);
  apply(body, kRotation, fmd::kStrain);
  expect_close(read(body, 0, fmd::kStrain, 1), turned_tensor(strain, kRotation));
}

TEST_F(TransformMode, PreStressNeedsNoStressModes) {
  FmdBody* body = FMD_Create(kNodes, kModes);
  set(body, 1, 1, fmd::kShape);
  SixValues stress = {1, 2, 3, 4, 5, 6};
  FMD_SetPreStressVec(body, 1, stress.data());
  apply(body, kRotation, fmd::kStress);
  expect_close(read(body, 0, fmd::kStress, 1), turned_tensor(stress, kRotation));
  EXPECT_EQ(body->ModeFile[1].Block, 0);
  EXPECT_THAT(log.errors, IsEmpty());
  set(body, 1, 1, fmd::kStress);
  EXPECT_EQ(read(body, 1, fmd::kStress, 1), values_.at({1, 1, 1}));
}

// The setters space the nodes of a narrow store as those of a wide one, so what is read tells what is there.
TEST_F(TransformMode, SinglePrecisionStaysSingle) {
  FmdBody* body = make_full_body(kNodes * 2, kModes, false);
  std::vector<std::vector<float>> before(kModes + 1, std::vector<float>(6 * kNodes));
  for (int mode = 1; mode <= kModes; ++mode)
    FMD_Read_Mode_Single(body, mode, 0, before[static_cast<std::size_t>(mode)].data());
  EXPECT_EQ(body->FloatBuffer, nullptr);
  apply(body, kRotation, fmd::kShape);
  EXPECT_NE(body->FloatBuffer, nullptr);
  EXPECT_EQ(FMD_Double_Prec(body), 0);
  std::vector<float> after(6 * kNodes);
  for (int mode = 1; mode <= kModes; ++mode) {
    ASSERT_EQ(FMD_Read_Mode_Single(body, mode, 0, after.data()), 1);
    for (int node = 0; node < kNodes; ++node) {
      SixValues old;
      SixValues six;
      std::copy_n(before[static_cast<std::size_t>(mode)].data() + 6 * node, 6, old.begin());
      std::copy_n(after.data() + 6 * node, 6, six.begin());
      expect_close(six, turned_shape(old, kRotation, 1.0), 1e-8);
    }
  }
}

TEST_F(TransformMode, StoresWhatTheUnitsOfTheBodyHadScaledInStoredUnits) {
  FmdBody* body = make_full_body();
  body->UnitTotalFactor[fmd::kLength] = 1000.0;
  body->UnitTotalFactor[fmd::kForce] = 0.25;
  for (int type = 0; type < 3; ++type) apply(body, kRotation, type);
  const double stress_factor = 0.25 / 1e6;
  for (const bool converted : {true, false}) {
    if (!converted) std::fill_n(body->UnitTotalFactor, 4, 1.0);
    FMD_CleanModesInMemory(body);
    std::fill_n(body->LoadedModeIndex, 3, -1);
    for (auto& [place, six] : values_) {
      const auto [type, mode, node] = place;
      SixValues expected =
          type == fmd::kShape ? turned_shape(six, kRotation, 1.0) : turned_tensor(six, kRotation);
      if (converted && type == fmd::kShape)
        for (std::size_t k = 0; k < 3; ++k) expected[k] *= 1000.0;
      if (converted && type == fmd::kStress)
        for (double& value : expected) value *= stress_factor;
      expect_close(read(body, mode, type, node), expected);
    }
  }
}

TEST_F(TransformMode, WorksInPiecesOfLongVectors) {
  constexpr int kMany = 9001;
  FmdBody* body = FMD_Create(kMany, 2);
  const auto value = [](int mode, int node, int k) { return mode * 1e6 + node * 10.0 + k; };
  for (int mode = 1; mode <= 2; ++mode)
    for (int node = 1; node <= kMany; ++node) {
      SixValues six;
      for (int k = 0; k < 6; ++k) six[static_cast<std::size_t>(k)] = value(mode, node, k);
      FMD_SetModeVec(body, mode, node, 0, six.data());
    }
  apply(body, {0, 1, 0, -1, 0, 0, 0, 0, 1}, fmd::kShape);
  for (int mode = 1; mode <= 2; ++mode)
    for (int part = 0; part < 2; ++part) {
      const std::vector<double> half = read_half(body, mode, 0, part);
      for (int node = 1; node <= kMany; ++node) {
        const double* v = half.data() + std::ptrdiff_t{3} * (node - 1);
        const int k = 3 * part;
        ASSERT_EQ(v[0], -value(mode, node, k + 1));
        ASSERT_EQ(v[1], value(mode, node, k));
        ASSERT_EQ(v[2], value(mode, node, k + 2));
      }
    }
}

TEST_F(TransformMode, LeavesTheCacheEmptyAndItsSwitchAsItWas) {
  for (const int keep : {1, 0}) {
    FmdBody* body = make_full_body();
    read_half(body, 2, 0, 0);
    FMD_SetKeepModesInMemory(body, keep);
    apply(body, kRotation, fmd::kShape);
    int flag = -1;
    EXPECT_EQ(FMD_GetKeepModesInMemory(body, &flag), keep);
    EXPECT_EQ(body->ModeMemoryUsed, 0);
    EXPECT_EQ(body->LoadedModeIndex[0], -1);
    expect_close(read(body, 2, 0, 3), turned_shape(values_.at({0, 2, 3}), kRotation, 1.0));
    FMD_UnLink(body);
  }
}

// As every fetch does, for as long as nobody has loaded another vector.
TEST_F(TransformMode, TakesAFirstVectorThatIsLoadedAsItIs) {
  FmdBody* body = make_full_body();
  read_half(body, 1, 0, 0);
  SixValues changed = {1, 1, 1, 1, 1, 1};
  FMD_SetModeVec(body, 1, 2, 0, changed.data());
  FMD_SetModeVec(body, 2, 2, 0, changed.data());
  apply(body, kIdentity, fmd::kShape);
  EXPECT_EQ(read(body, 1, 0, 2), values_.at({0, 1, 2}));
  EXPECT_EQ(read(body, 2, 0, 2), changed);
}

TEST_F(TransformMode, AModeOfNumberZeroIsAnOrdinaryOne) {
  FmdBody* body = make_full_body();
  SixValues stress = {1, 2, 3, 4, 5, 6};
  FMD_SetPreStressVec(body, 2, stress.data());
  body->ModeNumbers[1] = 0;
  apply(body, kRotation, fmd::kStress);
  body->ModeNumbers[1] = 2;
  std::fill_n(body->LoadedModeIndex, 3, -1);
  expect_close(read(body, 2, fmd::kStress, 4), turned_tensor(values_.at({1, 2, 4}), kRotation));
}

TEST_F(TransformMode, LeavesRoomForModesAndNodesToCome) {
  FmdBody* body = make_full_body(kNodes + 2, kModes + 2);
  apply(body, kIdentity, fmd::kShape);
  apply(body, kIdentity, fmd::kStress);
  for (const int type : {fmd::kShape, fmd::kStress}) {
    set(body, 1, kNodes + 1, type);
    set(body, kModes + 1, 2, type);
    set(body, kModes + 2, kNodes + 2, type);
  }
  std::fill_n(body->LoadedModeIndex, 3, -1);
  expect_untouched(body);
  EXPECT_EQ(read(body, kModes + 1, 0, 1), SixValues{});
}

TEST_F(TransformMode, FourQuarterTurnsGiveTheVectorsBack) {
  FmdBody* body = make_full_body();
  for (int turn = 0; turn < 4; ++turn)
    for (int type = 0; type < 3; ++type) apply(body, {0, 1, 0, -1, 0, 0, 0, 0, 1}, type);
  expect_untouched(body);
}

TEST_F(TransformMode, WithoutModesItWarnsAndDoesNothingElse) {
  FmdBody* body = FMD_Create(kNodes, kModes);
  SixValues stress = {1, 2, 3, 4, 5, 6};
  FMD_SetPreStressVec(body, 1, stress.data());
  log.clear();
  apply(body, kRotation, fmd::kStress);
  EXPECT_THAT(log.all, ElementsAre(StartsWith("I: Shortened Stress mode file: key = "),
                                   "W:No Mode Shape Data found in this FMD file. \n"));
  EXPECT_EQ(body->PreStress[0], 1.0);
  EXPECT_EQ(body->ModeFile[1].Block, 0);
}

TEST_F(TransformMode, ModesWithoutVectorsAreLeftAlone) {
  FmdBody* body = FMD_Create(kNodes, kModes);
  FMD_AddNode(body, 1);
  FMD_AddMode(body, 1);
  apply(body, kRotation, fmd::kShape);
  EXPECT_THAT(log.errors, IsEmpty());
  EXPECT_EQ(body->ModePositions[0], nullptr);
}

TEST_F(TransformMode, BuffersForNoNodesAreAFailedAllocation) {
  FmdBody* body = FMD_Create(kNodes, kModes);
  FMD_AddMode(body, 1);
  apply(body, kRotation, fmd::kShape);
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbmod"));
}

TEST_F(TransformMode, RefusesWhatItCannotReach) {
  FmdBody* body = make_full_body();
  Matrix matrix = kRotation;
  transform_mode(body, matrix.data(), -1);
  transform_mode(body, matrix.data(), 3);
  transform_mode(body, nullptr, 0);
  EXPECT_THAT(log.all, IsEmpty());
  transform_mode(nullptr, matrix.data(), 0);
  EXPECT_EQ(log.errors.size(), 1U);
  expect_untouched(body);
}

TEST_F(TransformMode, AVectorThatCannotBeReadLeavesTheKindAsItWas) {
  FmdBody* body = make_full_body();
  const FmdPosition good = body->ModePositions[1][2];
  body->ModePositions[1][2] = {{-1, -1}};
  SixValues stress = {1, 2, 3, 4, 5, 6};
  FMD_SetPreStressVec(body, 2, stress.data());
  apply(body, kRotation, fmd::kStress);
  EXPECT_THAT(log.errors, ElementsAre("Problem reading modal stress vector 3"));
  EXPECT_EQ(body->PreStress[0], 0.0);
  EXPECT_EQ(read(body, 0, fmd::kStress, 2), stress);
  body->ModePositions[1][2] = good;
  expect_untouched(body);
}

TEST_F(TransformMode, AFullDiskLeavesTheKindAsItWas) {
  constexpr int kMany = 3000;  // more bytes than the store asks the disk for ahead
  FmdBody* body = make_full_body(kMany);
  set(body, 2, kNodes + 1, fmd::kShape);
  while (FMD_NodeCount(body) < kMany) FMD_AddNode(body, 1000 + FMD_NodeCount(body));
  std::vector<std::string> seen;
  for (const int error : {ENOSPC, EIO}) {
    bool has_failed = true;
    for (long nth = 1; has_failed; ++nth) {
      ASSERT_LT(nth, 100);
      log.clear();
      const std::int32_t block = body->ModeFile[0].Block;
      {
        const fmdtest::FailingFileSystem failing(nth, error);
        apply(body, kIdentity, fmd::kShape);
        has_failed = failing.has_failed();
      }
      EXPECT_EQ(log.errors.empty(), body->ModeFile[0].Block != block);
      seen.insert(seen.end(), log.errors.begin(), log.errors.end());
      expect_untouched(body);
    }
  }
  EXPECT_THAT(seen, testing::Contains("Unable to open temporary block for write."));
  EXPECT_THAT(seen, testing::Contains("Insufficient disk space for temporary file."));
}

TEST_F(TransformMode, EveryAllocationMayFail) {
  FmdBody* body = make_full_body(2 * kNodes, kModes, false);
  apply(body, kIdentity, fmd::kShape);
  for (int nth = 1;; ++nth) {
    log.clear();
    const std::int32_t block = body->ModeFile[0].Block;
    fmd::fail_allocation(nth);
    apply(body, kIdentity, fmd::kShape);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    EXPECT_EQ(body->ModeFile[0].Block != block, !failed);
    if (!failed) break;
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbmod")) << log.errors[0];
  }
}

}  // namespace
