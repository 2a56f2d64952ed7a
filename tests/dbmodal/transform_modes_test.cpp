#include <fmdtoolkit/extensions.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <set>
#include <string>
#include <vector>

#include "body/body.h"
#include "dbmodal/mode_model.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/failing_file_system.h"
#include "system/file_system.h"

namespace {

using fmdtest::is_allocation_failure;
using fmdtest::SixValues;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kNodes = 7;
constexpr int kModes = 5;

using Matrix = std::vector<double>;

// Values without a pattern, with a zero here and there.
Matrix sample_matrix(int modes = kModes) {
  Matrix matrix;
  for (int i = 0; i < modes * modes; ++i) matrix.push_back(i % 4 == 3 ? 0.0 : std::sin(1.0 + i));
  return matrix;
}

// What the progress handler was told: totals, and how far the last count went.
struct Progress {
  std::vector<int> totals;
  int stamps = 0;
};
Progress progress;

void note_progress(int done, int total) {
  if (done == 0) {
    progress = {};
    progress.totals.push_back(total);
  } else {
    EXPECT_EQ(total, progress.totals.back());
    EXPECT_EQ(done, ++progress.stamps);
  }
}

class TransformModes : public fmdtest::ModeStoreTest {
 protected:
  TransformModes() {
    progress = {};
    FMDX_SetProgressHandler(note_progress);
  }
  ~TransformModes() override { FMDX_SetProgressHandler(nullptr); }

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

  static int apply(FmdBody* body, Matrix matrix, int type = fmd::kShape, int count = kModes) {
    return FMD_TransformModes(body, type, count, matrix.data());
  }

  static SixValues read(FmdBody* body, int mode, int type, int node) {
    SixValues six{};
    EXPECT_EQ(FMD_ModeByNode(body, mode, type, node, six.data(), 0), 1);
    EXPECT_EQ(FMD_ModeByNode(body, mode, type, node, six.data() + 3, 1), 1);
    return six;
  }

  // One value after the other, from the values that were stored.
  SixValues plain_sum(const Matrix& matrix, int column, int type, int node) const {
    SixValues sum{};
    for (int mode = 0; mode < kModes; ++mode) {
      const double t = matrix[static_cast<std::size_t>(mode * kModes + column)];
      if (t == 0.0) continue;
      for (std::size_t k = 0; k < 6; ++k) sum[k] += t * values_.at({type, mode + 1, node})[k];
    }
    return sum;
  }

  void expect_untouched(FmdBody* body) {
    for (const auto& [place, six] : values_) {
      const auto [type, mode, node] = place;
      EXPECT_EQ(read(body, mode, type, node), six);
    }
  }

  void expect_transformed(FmdBody* body, const Matrix& matrix, int type, int columns = kModes) {
    for (int mode = 1; mode <= columns; ++mode)
      for (const int node : nodes_[type])
        EXPECT_EQ(read(body, mode, type, node), plain_sum(matrix, mode - 1, type, node));
  }
};

TEST_F(TransformModes, MakesThePlainSums) {
  FmdBody* body = make_full_body();
  const int old_block = body->ModeFile[0].Block;
  ASSERT_EQ(apply(body, sample_matrix()), 1);
  EXPECT_THAT(log.all, ElementsAre("I:Orthogonal mode file: key = " + std::to_string(body->ModeFile[0].Key)));
  EXPECT_NE(body->ModeFile[0].Block, old_block);
  EXPECT_EQ(body->ModeFile[0].IsScratch, 1);
  EXPECT_EQ(body->LoadedModeIndex[0], -1);
  expect_transformed(body, sample_matrix(), fmd::kShape);
  for (const int type : {fmd::kStress, fmd::kStrain})
    for (const int node : nodes_[type]) EXPECT_EQ(read(body, 2, type, node), values_.at({type, 2, node}));
}

TEST_F(TransformModes, EachKindHasNodesOfItsOwn) {
  FmdBody* body = make_full_body();
  SixValues stress = {1, 2, 3, 4, 5, 6};
  FMD_SetPreStressVec(body, 2, stress.data());
  for (const int type : {fmd::kStress, fmd::kStrain}) {
    ASSERT_EQ(apply(body, sample_matrix(), type), 1);
    expect_transformed(body, sample_matrix(), type);
  }
  EXPECT_EQ(read(body, 0, fmd::kStress, 2), stress);
  EXPECT_EQ(read(body, 3, fmd::kShape, 6), values_.at({0, 3, 6}));
}

TEST_F(TransformModes, TheRowOfTheMatrixIsTheOldMode) {
  FmdBody* body = make_full_body();
  Matrix matrix(kModes * kModes, 0.0);
  matrix[3 * kModes + 1] = 2.0;  // new mode 2 is twice old mode 4
  ASSERT_EQ(apply(body, matrix), 1);
  SixValues twice = values_.at({0, 4, 6});
  for (double& value : twice) value *= 2.0;
  EXPECT_EQ(read(body, 2, 0, 6), twice);
  EXPECT_EQ(read(body, 4, 0, 6), SixValues{});
}

TEST_F(TransformModes, TellsTheStepsOfItsBatches) {
  FmdBody* body = make_full_body();
  apply(body, sample_matrix());
  EXPECT_THAT(progress.totals, ElementsAre(kModes));
  EXPECT_EQ(progress.stamps, kModes);
  const fmdtest::EnvironmentVariable no_stamps("KXI_NO_TIME_MONITOR_STAMP", "");
  apply(body, sample_matrix());
  EXPECT_THAT(progress.totals, ElementsAre(kModes));
  EXPECT_EQ(progress.stamps, 0);
}

// Counts what is read from files.
class ReadBytes : public fmd::FileSystem {
 public:
  ReadBytes() { fmd::replace_file_system(this); }
  ~ReadBytes() override { fmd::replace_file_system(nullptr); }
  ssize_t pread(int file, void* buffer, std::size_t bytes, off_t offset) override {
    count += static_cast<double>(bytes);
    return FileSystem::pread(file, buffer, bytes, offset);
  }
  double count = 0.0;
};

// A column of 1,100,000 nodes has 52.8 of the 100 megabytes of a batch.
TEST_F(TransformModes, LongVectorsHaveABatchForEachColumn) {
  constexpr int kMany = 1100000;
  constexpr int kStep = 111;  // leaves no page of the store empty
  FmdBody* body = FMD_Create(kMany, 2);
  for (int node = 1; node <= kMany; ++node) FMD_AddNode(body, node);
  for (int node = 1; node <= kMany; node += kStep)
    for (int mode = 1; mode <= 2; ++mode) FMD_SetMode(body, mode, node, 0, mode, node, 3, 4, 5, 0.1 * node);
  ReadBytes reads;
  ASSERT_EQ(apply(body, {1.0, 0.5, 0.0, 0.25}, fmd::kShape, 2), 1);
  // Two batches, and the old modes are read once all the same.
  EXPECT_LT(reads.count, 1.1 * 2 * 48.0 * kMany);
  EXPECT_GT(reads.count, 0.5 * 2 * 48.0 * kMany);
  EXPECT_THAT(progress.totals, ElementsAre(4));
  EXPECT_EQ(progress.stamps, 4);
  EXPECT_EQ(read(body, 1, 0, 1000), (SixValues{1, 1000, 3, 4, 5, 0.1 * 1000}));
  EXPECT_EQ(read(body, 2, 0, 1000), (SixValues{1, 750, 2.25, 3, 3.75, 75}));
  EXPECT_EQ(read(body, 2, 0, 1001), SixValues{});
  const int last = kMany - (kMany - 1) % kStep;
  EXPECT_EQ(read(body, 1, 0, last)[1], last);
  EXPECT_EQ(read(body, 2, 0, last)[1], 0.75 * last);
}

// More rows than a panel of all modes has.
TEST_F(TransformModes, WorksInPanelsOfManyNodes) {
  constexpr int kMany = 9001;
  constexpr int kSome = 60;
  const auto value = [](int mode, int node, int k) { return mode + 0.001 * node + 0.1 * k; };
  FmdBody* body = FMD_Create(kMany, kSome);
  for (int mode = 1; mode <= kSome; ++mode)
    for (int node = 1; node <= kMany; ++node) {
      SixValues six;
      for (int k = 0; k < 6; ++k) six[static_cast<std::size_t>(k)] = value(mode, node, k);
      FMD_SetModeVec(body, mode, node, 0, six.data());
    }
  const Matrix matrix = sample_matrix(kSome);
  ASSERT_EQ(apply(body, matrix, 0, kSome), 1);
  EXPECT_EQ(progress.stamps, kSome);
  std::vector<double> vector(6 * kMany);
  for (const int column : {0, 31, kSome - 1}) {
    ASSERT_EQ(FMD_Read_Mode_Double(body, column + 1, 0, vector.data()), 1);
    for (int node = 1; node <= kMany; ++node)
      for (int k = 0; k < 6; ++k) {
        double sum = 0.0;
        for (int mode = 0; mode < kSome; ++mode)
          sum += matrix[static_cast<std::size_t>(mode * kSome + column)] * value(mode + 1, node, k);
        ASSERT_EQ(vector[static_cast<std::size_t>(6 * (node - 1) + k)], sum);
      }
  }
}

TEST_F(TransformModes, FewerModesMayBeWanted) {
  FmdBody* body = make_full_body();
  ASSERT_EQ(apply(body, sample_matrix(), fmd::kShape, 2), 1);
  EXPECT_THAT(progress.totals, ElementsAre(kModes));
  // A batch is worked through to its end.
  expect_transformed(body, sample_matrix(), fmd::kShape);
  EXPECT_EQ(FMD_ModeCount(body), kModes);
}

TEST_F(TransformModes, NoModesWantedLeaveEmptyVectors) {
  FmdBody* body = make_full_body();
  ASSERT_EQ(apply(body, sample_matrix(), fmd::kShape, 0), 1);
  EXPECT_THAT(progress.totals, ElementsAre(kModes));
  EXPECT_EQ(progress.stamps, 0);
  for (int mode = 1; mode <= kModes; ++mode) EXPECT_EQ(read(body, mode, 0, 3), SixValues{});
}

TEST_F(TransformModes, StoresWhatTheUnitsOfTheBodyHadScaledInStoredUnits) {
  FmdBody* body = make_full_body();
  body->UnitTotalFactor[fmd::kLength] = 1000.0;
  body->UnitTotalFactor[fmd::kForce] = 0.3;
  for (int type = 0; type < 3; ++type) ASSERT_EQ(apply(body, sample_matrix(), type), 1);
  const double stress_factor = 0.3 / 1e6;
  for (const bool converted : {true, false}) {
    if (!converted) std::fill_n(body->UnitTotalFactor, 4, 1.0);
    FMD_CleanModesInMemory(body);
    std::fill_n(body->LoadedModeIndex, 3, -1);
    for (const auto& [place, six] : values_) {
      const auto [type, mode, node] = place;
      const SixValues sum = plain_sum(sample_matrix(), mode - 1, type, node);
      const SixValues actual = read(body, mode, type, node);
      for (std::size_t k = 0; k < 6; ++k) {
        double expected = sum[k];
        if (converted && type == fmd::kShape && k < 3) expected *= 1000.0;
        if (converted && type == fmd::kStress) expected *= stress_factor;
        EXPECT_LE(std::fabs(actual[k] - expected), 1e-13 * std::fabs(six[k]) * (expected / sum[k]))
            << type << " " << k;
      }
    }
  }
}

// The setters space the nodes of a narrow store as those of a wide one, so what is read tells what is there.
TEST_F(TransformModes, SinglePrecisionStaysSingle) {
  FmdBody* body = make_full_body(2 * kNodes, kModes, false);
  std::vector<std::vector<float>> before(kModes, std::vector<float>(6 * kNodes));
  for (std::size_t mode = 0; mode < kModes; ++mode)
    FMD_Read_Mode_Single(body, static_cast<int>(mode) + 1, 0, before[mode].data());
  EXPECT_EQ(body->FloatBuffer, nullptr);
  const Matrix matrix = sample_matrix();
  ASSERT_EQ(apply(body, matrix), 1);
  EXPECT_NE(body->FloatBuffer, nullptr);
  EXPECT_EQ(FMD_Double_Prec(body), 0);
  std::vector<float> after(6 * kNodes);
  for (std::size_t column = 0; column < kModes; ++column) {
    ASSERT_EQ(FMD_Read_Mode_Single(body, static_cast<int>(column) + 1, 0, after.data()), 1);
    for (std::size_t i = 0; i < after.size(); ++i) {
      double sum = 0.0;
      for (std::size_t mode = 0; mode < kModes; ++mode)
        sum += matrix[mode * kModes + column] * static_cast<double>(before[mode][i]);
      EXPECT_EQ(after[i], static_cast<float>(sum));
    }
  }
}

TEST_F(TransformModes, LeavesTheCacheEmptyAndItsSwitchAsItWas) {
  for (const int keep : {1, 0}) {
    FmdBody* body = make_full_body();
    read_half(body, 2, 0, 0);
    FMD_SetKeepModesInMemory(body, keep);
    apply(body, sample_matrix());
    int flag = -1;
    EXPECT_EQ(FMD_GetKeepModesInMemory(body, &flag), keep);
    EXPECT_EQ(body->ModeMemoryUsed, 0);
    expect_transformed(body, sample_matrix(), fmd::kShape);
    EXPECT_EQ(apply(body, sample_matrix(), 0, -1), 0);
    EXPECT_EQ(FMD_GetKeepModesInMemory(body, &flag), keep);
    FMD_UnLink(body);
  }
}

// Renumbering before the transformation must not mix the modes up, nor take pre-stress for one.
TEST_F(TransformModes, GoesByIndexWhateverTheNumbers) {
  FmdBody* body = make_full_body();
  SixValues stress = {1, 2, 3, 4, 5, 6};
  FMD_SetPreStressVec(body, 2, stress.data());
  const int numbers[kModes] = {2, 2, 0, 1, 2};
  std::copy_n(numbers, kModes, body->ModeNumbers);
  ASSERT_EQ(apply(body, sample_matrix(), fmd::kShape), 1);
  ASSERT_EQ(apply(body, sample_matrix(), fmd::kStress), 1);
  for (int mode = 0; mode < kModes; ++mode) body->ModeNumbers[mode] = mode + 1;
  FMD_SetKeepModesInMemory(body, 0);
  std::fill_n(body->LoadedModeIndex, 3, -1);
  expect_transformed(body, sample_matrix(), fmd::kShape);
  expect_transformed(body, sample_matrix(), fmd::kStress);
}

TEST_F(TransformModes, LeavesRoomForModesAndNodesToCome) {
  FmdBody* body = make_full_body(kNodes + 2, kModes + 2);
  Matrix identity(kModes * kModes, 0.0);
  for (std::size_t i = 0; i < kModes; ++i) identity[i * kModes + i] = 1.0;
  for (const int type : {fmd::kShape, fmd::kStress}) ASSERT_EQ(apply(body, identity, type), 1);
  for (const int type : {fmd::kShape, fmd::kStress}) {
    set(body, 1, kNodes + 1, type);
    set(body, kModes + 1, 2, type);
    set(body, kModes + 2, kNodes + 2, type);
  }
  FMD_CleanModesInMemory(body);
  std::fill_n(body->LoadedModeIndex, 3, -1);
  expect_untouched(body);
}

TEST_F(TransformModes, RefusesWhatIsNotThere) {
  FmdBody* body = make_full_body();
  EXPECT_EQ(FMD_TransformModes(body, 0, kModes, nullptr), 0);
  EXPECT_EQ(apply(body, sample_matrix(), -1), 0);
  EXPECT_EQ(apply(body, sample_matrix(), 3), 0);
  EXPECT_EQ(apply(body, sample_matrix(), 0, -1), 0);
  EXPECT_THAT(log.all, IsEmpty());
  EXPECT_EQ(apply(nullptr, sample_matrix()), 0);
  EXPECT_EQ(log.errors.size(), 1U);
  EXPECT_THAT(progress.totals, IsEmpty());
  expect_untouched(body);
}

TEST_F(TransformModes, AVectorThatCannotBeReadEndsTheWork) {
  FmdBody* body = make_full_body();
  const FmdPosition good = body->ModePositions[0][2];
  body->ModePositions[0][2] = {{-1, -1}};
  const int block = body->ModeFile[0].Block;
  EXPECT_EQ(apply(body, sample_matrix()), 0);
  EXPECT_THAT(log.errors,
              ElementsAre("Problem reading mode shape 3", "Failed to extract mode information for FMD.\n"));
  EXPECT_EQ(body->ModeFile[0].Block, block);
  body->ModePositions[0][2] = good;
  expect_untouched(body);
}

TEST_F(TransformModes, ModesWithoutVectorsCannotBeTransformed) {
  FmdBody* body = FMD_Create(kNodes, kModes);
  FMD_AddNode(body, 1);
  FMD_AddMode(body, 1);
  EXPECT_EQ(apply(body, {1.0}, 0, 1), 0);
  EXPECT_THAT(log.errors, ElementsAre("Failed to extract mode information for FMD.\n"));
}

TEST_F(TransformModes, ColumnsOfNoNodesOrNoModesAreAFailedAllocation) {
  FmdBody* body = FMD_Create(kNodes, kModes);
  for (int round = 0; round < 2; ++round) {
    log.clear();
    EXPECT_EQ(apply(body, {1.0}, 0, 1), 0);
    ASSERT_EQ(log.errors.size(), 1U);
    EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
    FMD_AddMode(body, 1);
  }
  EXPECT_THAT(progress.totals, IsEmpty());
}

TEST_F(TransformModes, AFullDiskKeepsTheOldModes) {
  constexpr int kMany = 3000;  // more bytes than the store asks the disk for ahead
  FmdBody* body = make_full_body(kMany);
  Matrix identity(kModes * kModes, 0.0);
  for (std::size_t i = 0; i < kModes; ++i) identity[i * kModes + i] = 1.0;
  while (FMD_NodeCount(body) < kMany) FMD_AddNode(body, 1000 + FMD_NodeCount(body));
  std::vector<std::string> seen;
  for (const int error : {ENOSPC, EIO}) {
    bool has_failed = true;
    for (long nth = 1; has_failed; ++nth) {
      ASSERT_LT(nth, 200);
      log.clear();
      const std::int32_t block = body->ModeFile[0].Block;
      int done = 0;
      {
        const fmdtest::FailingFileSystem failing(nth, error);
        done = apply(body, identity);
        has_failed = failing.has_failed();
      }
      EXPECT_EQ(done, log.errors.empty() ? 1 : 0);
      EXPECT_EQ(done != 0, body->ModeFile[0].Block != block);
      seen.insert(seen.end(), log.errors.begin(), log.errors.end());
      expect_untouched(body);
    }
  }
  EXPECT_THAT(seen, testing::Contains("Unable to open temporary block for write."));
  EXPECT_THAT(seen, testing::Contains("Insufficient disk space for temporary file."));
}

// Of so many nodes; two are too few for a panel of all modes in a small batch.
class TransformModesShortOfMemory : public TransformModes, public testing::WithParamInterface<int> {};

TEST_P(TransformModesShortOfMemory, MakesDoWithFewerColumns) {
  std::set<int> totals;
  bool has_failed = true;
  for (int nth = 1; has_failed; ++nth) {
    ASSERT_LT(nth, 100);
    FmdBody* body = make_body(GetParam(), kModes);
    log.clear();
    progress = {};
    fmd::fail_allocation(nth);
    const int done = apply(body, sample_matrix(), 0, 4);
    has_failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (done != 0) {
      ASSERT_EQ(progress.totals.size(), 1U);
      const int total = progress.totals[0];
      totals.insert(total);
      EXPECT_EQ(progress.stamps, total);
      EXPECT_THAT(log.errors, IsEmpty());
      expect_transformed(body, sample_matrix(), fmd::kShape, 4);
      // Batches of 1 and 4 end with the fourth column.
      if (total == 4 * kModes) {
        EXPECT_EQ(read(body, kModes, 0, 1), SixValues{});
      }
    } else {
      EXPECT_TRUE(has_failed);
      ASSERT_EQ(log.errors.size(), 1U);
      EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools")) << log.errors[0];
      expect_untouched(body);
    }
    FMD_UnLink(body);
  }
  // Four columns in batches of 1, of 2 or 3, of 4 or 5.
  EXPECT_THAT(totals, ElementsAre(kModes, 2 * kModes, 4 * kModes));
}

INSTANTIATE_TEST_SUITE_P(Nodes, TransformModesShortOfMemory, testing::Values(2, 30));

}  // namespace
