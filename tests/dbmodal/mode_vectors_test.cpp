#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <random>

#include "dbmodal/mode_model.h"
#include "support/failing_file_system.h"

namespace {

using fmdtest::FailingFileSystem;
using fmdtest::is_allocation_failure;
using fmdtest::SixValues;
using testing::Each;
using testing::ElementsAre;
using testing::Eq;
using testing::IsEmpty;

class ModeVectors : public fmdtest::ModeStoreTest {
 protected:
  SixValues six = {1.5, 2.5, 3.5, 4.5, 5.5, 6.5};
};

std::string with_key(const std::string& text, int key) {
  return text + std::to_string(key);
}

TEST_F(ModeVectors, AreReadAsStoredWhateverTheOrderOfNodesModesAndTypes) {
  const int nodes = 37, modes = 9;
  std::vector<std::tuple<int, int, int>> places;
  for (int type = 0; type < 3; ++type)
    for (int mode = 0; mode < modes; ++mode)
      for (int node = 0; node < nodes; ++node)
        if (type == 0 || (node + type) % 3 == 0) places.emplace_back(type, 11 * mode + 2, 7 * node - 20);
  std::mt19937 generator(20);
  std::shuffle(places.begin(), places.end(), generator);
  FmdBody* body = FMD_Create(nodes, modes);
  for (const auto& [type, mode, node] : places) set(body, mode, node, type);

  for (const int keep : {0, 1}) {
    FMD_SetKeepModesInMemory(body, keep);
    for (int type = 0; type < 3; ++type)
      for (int mode = 0; mode < modes; ++mode)
        for (int part = 0; part < 2; ++part)
          EXPECT_EQ(read_half(body, 11 * mode + 2, type, part), expected_half(11 * mode + 2, type, part))
              << "type " << type << " mode " << mode << " part " << part << " cache " << keep;
  }
}

TEST_F(ModeVectors, SetModePacksItsSixValues) {
  FmdBody* body = FMD_Create(2, 2);
  EXPECT_EQ(FMD_SetMode(body, 7, 3, 0, 1, 2, 3, 4, 5, 6), 1);
  EXPECT_THAT(read_half(body, 7, 0, 0), ElementsAre(1, 2, 3));
  EXPECT_THAT(read_half(body, 7, 0, 1), ElementsAre(4, 5, 6));
}

TEST_F(ModeVectors, SingleEntriesLeaveTheOthersAlone) {
  for (int type = 0; type < 3; ++type) {
    FmdBody* body = FMD_Create(3, 2);
    EXPECT_EQ(FMD_SetModeVec(body, 4, 10, type, six.data()), 1);
    EXPECT_EQ(FMD_SetModeEntry(body, 4, 20, type, 5, -1.0), 1);
    EXPECT_EQ(FMD_SetModeEntry(body, 4, 10, type, 2, -2.0), 1);
    EXPECT_EQ(FMD_SetModeEntry(body, 5, 20, type, 0, -3.0), 1);
    EXPECT_THAT(read_half(body, 4, type, 0), ElementsAre(1.5, 2.5, -2.0, 0, 0, 0));
    EXPECT_THAT(read_half(body, 4, type, 1), ElementsAre(4.5, 5.5, 6.5, 0, 0, -1.0));
    EXPECT_THAT(read_half(body, 5, type, 0), ElementsAre(0, 0, 0, -3.0, 0, 0));
  }
}

TEST_F(ModeVectors, SingleEntryOfModeZeroIsAnOrdinaryModeInEveryType) {
  FmdBody* body = FMD_Create(3, 2);
  EXPECT_EQ(FMD_SetModeEntry(body, 0, 10, 1, 0, 8.0), 1);
  EXPECT_EQ(FMD_ModeIndex(body, 0), 0);
  EXPECT_EQ(body->PreStress, nullptr);
}

TEST_F(ModeVectors, TheFirstWriteOfATypeOpensItsFileAndTellsTheKey) {
  FmdBody* body = FMD_Create(2, 2);
  for (int round = 0; round < 2; ++round)
    for (int type = 0; type < 3; ++type) FMD_SetModeVec(body, 1, 1 + round, type, six.data());
  for (const FmdStream& stream : body->ModeFile) {
    EXPECT_NE(stream.Block, 0);
    EXPECT_GT(stream.Key, 1000);
    EXPECT_EQ(stream.IsScratch, 1);
    EXPECT_EQ(stream.UsesXdr, 0);
    EXPECT_EQ(stream.DoublePrecision, 1);
  }
  EXPECT_THAT(log.all, ElementsAre(with_key("I:Temp modeshape file: key = ", body->ModeFile[0].Block),
                                   with_key("I:Temp modal stress file: key = ", body->ModeFile[1].Block),
                                   with_key("I:Temp modal strain file: key = ", body->ModeFile[2].Block)));
}

TEST_F(ModeVectors, EachTypeMarksItsBlock) {
  const int bytes[] = {4, 16, 27};
  for (int type = 0; type < 3; ++type) {
    FmdBody* by_vector = FMD_Create(2, 2);
    FmdBody* by_entry = FMD_Create(2, 2);
    EXPECT_EQ(FMD_ModeExist(by_vector, type), 0);
    FMD_SetModeVec(by_vector, 1, 1, type, six.data());
    FMD_SetModeEntry(by_entry, 1, 1, type, 0, 1.0);
    for (const FmdBody* body : {by_vector, by_entry})
      for (int byte = 0; byte < 100; ++byte) EXPECT_EQ(body->BlockExists[byte] != 0, byte == bytes[type]);
    EXPECT_EQ(FMD_ModeExist(by_vector, type), 1);
  }
}

TEST_F(ModeVectors, OnlyThreeTypesExist) {
  FmdBody* body = make_body(2, 2);
  EXPECT_EQ(FMD_ModeExist(body, 3), 0);
  EXPECT_EQ(FMD_ModeExist(body, -1), 0);
  EXPECT_EQ(FMD_SetModeVec(body, 9, 9, 3, six.data()), 0);
  EXPECT_EQ(FMD_SetModeEntry(body, 9, 9, -1, 0, 1.0), 0);
  EXPECT_EQ(FMD_ModeCount(body), 2);
  EXPECT_EQ(FMD_NodeCount(body), 2);
}

TEST_F(ModeVectors, ANodeBeyondThePlannedCountLandsInTheSlotOfTheNextMode) {
  FmdBody* body = FMD_Create(2, 3);
  FMD_SetKeepModesInMemory(body, 0);
  for (int mode = 1; mode <= 3; ++mode)
    for (int node = 1; node <= 2; ++node) ASSERT_EQ(FMD_SetModeVec(body, mode, node, 0, six.data()), 1);
  SixValues other = {-1, -2, -3, -4, -5, -6};
  EXPECT_EQ(FMD_SetModeVec(body, 1, 3, 0, other.data()), 1);
  EXPECT_THAT(read_half(body, 2, 0, 0), ElementsAre(-1, -2, -3, 1.5, 2.5, 3.5, 1.5, 2.5, 3.5));
  EXPECT_THAT(log.errors, IsEmpty());
}

TEST_F(ModeVectors, ANodeBeyondTheLastSlotIsRefused) {
  FmdBody* body = FMD_Create(2, 3);
  for (int mode = 1; mode <= 3; ++mode) ASSERT_EQ(FMD_SetModeVec(body, 10 * mode, 1, 0, six.data()), 1);
  FMD_AddNode(body, 2);
  FMD_AddNode(body, 3);
  FMD_AddNode(body, 4);
  EXPECT_EQ(FMD_SetModeVec(body, 30, 3, 0, six.data()), 0);
  EXPECT_EQ(FMD_SetModeVec(body, 30, 4, 0, six.data()), 0);
  EXPECT_EQ(FMD_SetModeEntry(body, 30, 3, 0, 0, 1.0), 0);
  EXPECT_EQ(FMD_SetModeEntry(body, 30, 4, 0, 5, 1.0), 0);
  EXPECT_EQ(FMD_SetModeEntry(body, 10, 1, 0, -1, 1.0), 0);
  EXPECT_THAT(log.errors, ElementsAre("Couldn't seek to mode 30 node 3 position in temporary file",
                                      "Couldn't seek to mode 30 node 4 position in temporary file",
                                      "Couldn't seek to mode 30 node 3 dof 1 position in temporary file",
                                      "Couldn't seek to mode 30 node 4 dof 6 position in temporary file",
                                      "Couldn't seek to mode 10 node 1 dof 0 position in temporary file"));
  EXPECT_EQ(FMD_SetModeVec(body, 20, 4, 0, six.data()), 1) << "the last place of the file can be reached";
  EXPECT_EQ(FMD_SetModeVec(body, 30, 2, 0, six.data()), 1);
}

TEST_F(ModeVectors, NoPlannedNodesIsAFailedAllocation) {
  FmdBody* body = FMD_Create(0, 10);
  EXPECT_EQ(FMD_SetModeVec(body, 1, 1, 0, six.data()), 0);
  ASSERT_EQ(log.errors.size(), 1U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbset")) << log.errors[0];
}

TEST_F(ModeVectors, NoPlannedModesLeaveNoRoomForAMode) {
  FmdBody* body = FMD_Create(10, 0);
  EXPECT_EQ(FMD_SetModeVec(body, 7, 1, 0, six.data()), 0);
  EXPECT_THAT(log.all, ElementsAre("E:Insufficient room for mode 7 in temporary mode shape file.  \n"
                                   "Specify larger number of modes in FMD_Create.\n"));
}

TEST_F(ModeVectors, ModeZeroOfStressAndStrainGoesToThePreStressAndOpensNoFile) {
  FmdBody* body = FMD_Create(2, 2);
  EXPECT_EQ(FMD_SetModeVec(body, 0, 5, 1, six.data()), 1);
  EXPECT_EQ(FMD_SetModeVec(body, 0, 6, 2, six.data()), 1);
  EXPECT_EQ(std::vector<double>(body->PreStress, body->PreStress + 6),
            std::vector<double>(six.begin(), six.end()));
  EXPECT_EQ(std::vector<double>(body->PreStrain, body->PreStrain + 6),
            std::vector<double>(six.begin(), six.end()));
  EXPECT_EQ(body->BlockExists[29], 1);
  EXPECT_EQ(body->BlockExists[30], 1);
  EXPECT_EQ(FMD_ModeCount(body), 0);
  for (const FmdStream& stream : body->ModeFile) EXPECT_EQ(stream.Block, 0);
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(ModeVectors, ModeZeroOfTheShapesIsAnOrdinaryMode) {
  FmdBody* body = FMD_Create(2, 2);
  set(body, 3, 1, 0);
  set(body, 0, 1, 0);
  EXPECT_EQ(FMD_ModeIndex(body, 0), 1);
  EXPECT_EQ(read_half(body, 0, 0, 0), expected_half(0, 0, 0));
}

TEST_F(ModeVectors, AFileThatCannotBeOpenedIsReportedAndTriedAgain) {
  const char* const texts[] = {"Unable to open temporary mode shape file (key = 0).\n",
                               "Unable to open temporary modal stress file (key = 0).\n",
                               "Unable to open temporary modal strain file (key = 0).\n"};
  for (int type = 0; type < 3; ++type) {
    FmdBody* body = FMD_Create(2, 2);
    log.clear();
    {
      FailingFileSystem full(1, EMFILE);
      EXPECT_EQ(FMD_SetModeVec(body, 1, 1, type, six.data()), 0);
    }
    ASSERT_EQ(log.all.size(), 2U);
    EXPECT_THAT(log.errors[0], testing::MatchesRegex("Cannot open temporary datablock, -?[0-9]+\\."));
    EXPECT_EQ(log.errors[1], texts[type]);
    EXPECT_EQ(FMD_SetModeVec(body, 1, 1, type, six.data()), 1);
  }
}

// Fails every call that takes or writes space.
class FullDisk : public fmd::FileSystem {
 public:
  FullDisk() { fmd::replace_file_system(this); }
  ~FullDisk() override { fmd::replace_file_system(nullptr); }
  ssize_t pwrite(int, const void*, std::size_t, off_t) override { return fail(); }
  ssize_t write(int, const void*, std::size_t) override { return fail(); }
  int fallocate(int, int, off_t, off_t) override { return fail(); }

 private:
  static int fail() {
    errno = ENOSPC;
    return -1;
  }
};

TEST_F(ModeVectors, ADiskThatIsTooSmallShowsAtTheFirstWriteOfAType) {
  const char* const texts[] = {"Insufficient disk space for temporary mode shape file (key = %d).\n",
                               "Insufficient disk space for temporary modal stress file (key = %d).\n",
                               "Insufficient disk space for temporary modal strain file (key = %d).\n"};
  FmdBody* body = FMD_Create(20000, 3);
  for (int type = 0; type < 3; ++type) {
    log.clear();
    {
      FullDisk full;
      EXPECT_EQ(FMD_SetModeVec(body, 1, 1, type, six.data()), 0);
    }
    const int key = body->ModeFile[type].Block;
    EXPECT_NE(key, 0) << "the file stays open";
    char text[200];
    std::snprintf(text, sizeof text, texts[type], key);
    EXPECT_THAT(log.errors, ElementsAre(text));
    EXPECT_EQ(FMD_ModeExist(body, type), 0);

    log.clear();
    EXPECT_EQ(FMD_SetModeVec(body, 2, 1, type, six.data()), 0);
    EXPECT_THAT(log.all, ElementsAre("E:Couldn't seek to mode 2 node 1 position in temporary file"))
        << "a repeat call does not open the file anew";
  }
}

// Has room for a number of slots only.
class SmallDisk : public fmd::FileSystem {
 public:
  explicit SmallDisk(int slots) : slots_(slots) { fmd::replace_file_system(this); }
  ~SmallDisk() override { fmd::replace_file_system(nullptr); }
  int fallocate(int file, int mode, off_t offset, off_t bytes) override {
    if (slots_-- > 0) return FileSystem::fallocate(file, mode, offset, bytes);
    errno = ENOSPC;
    return -1;
  }

 private:
  int slots_;
};

TEST_F(ModeVectors, TheSlotsThatWereMadeBeforeTheDiskWasFullCanBeUsed) {
  FmdBody* body = FMD_Create(20000, 3);
  {
    SmallDisk disk(1);
    EXPECT_EQ(FMD_SetModeVec(body, 1, 1, 0, six.data()), 0);
  }
  EXPECT_THAT(log.errors, ElementsAre(testing::StartsWith("Insufficient disk space")));
  log.clear();
  EXPECT_EQ(FMD_SetModeVec(body, 1, 1, 0, six.data()), 1);
  EXPECT_EQ(FMD_SetModeVec(body, 2, 1, 0, six.data()), 0);
  EXPECT_THAT(read_half(body, 1, 0, 0), ElementsAre(1.5, 2.5, 3.5)) << "the second mode went nowhere else";
  EXPECT_THAT(log.all, ElementsAre("E:Couldn't seek to mode 2 node 1 position in temporary file"));
}

TEST_F(ModeVectors, AnUnreadableVectorIsReportedOnceAndClaimedAsLoaded) {
  FmdBody* body = make_body(3, 1, 1);
  set(body, 1, 1, 2);
  set(body, 1, 1, 0);
  FMD_SetKeepModesInMemory(body, 0);
  // A position of no block makes the reading fail whatever the store keeps in memory.
  const char* const texts[] = {"Problem reading mode shape 1", "Problem reading modal stress vector 1",
                               "Problem reading modal strain vector 1"};
  std::vector<double> values(9);
  for (int type = 0; type < 3; ++type) {
    body->ModePositions[type][0] = FmdPosition{{-1, -1}};
    log.clear();
    EXPECT_EQ(FMD_Mode(body, 1, type, values.data(), 0), 1);
    EXPECT_EQ(FMD_Mode(body, 1, type, values.data(), 1), 1);
    EXPECT_THAT(log.errors, ElementsAre(texts[type]));
  }
}

TEST_F(ModeVectors, NoBodyIsReportedOnceByEachOperation) {
  double values[6] = {};
  float floats[6] = {};
  double* pointer = nullptr;
  int number = 0;
  EXPECT_EQ(FMD_SetModeVec(nullptr, 1, 1, 0, values), 0);
  EXPECT_EQ(FMD_SetModeVec(nullptr, 0, 1, 1, values), 0);
  EXPECT_EQ(FMD_SetMode(nullptr, 1, 1, 0, 0, 0, 0, 0, 0, 0), 0);
  EXPECT_EQ(FMD_SetModeEntry(nullptr, 1, 1, 0, 0, 0.0), 0);
  EXPECT_EQ(FMD_Mode(nullptr, 1, 0, values, 0), 0);
  EXPECT_EQ(FMD_ModeByRef(nullptr, 1, 0, &pointer, 0), 0);
  EXPECT_EQ(FMD_ModeByNode(nullptr, 1, 0, 1, values, 0), 0);
  EXPECT_EQ(FMD_Read_Mode_Single(nullptr, 1, 0, floats), 0);
  EXPECT_EQ(FMD_Read_Mode_Double(nullptr, 1, 0, values), 0);
  EXPECT_EQ(FMD_Double_Prec(nullptr), 0);
  EXPECT_EQ(FMD_ModeExist(nullptr, 0), 0);
  FMD_InitializeModeMemory(nullptr);
  EXPECT_EQ(FMD_ModetoMemory(nullptr, 1, 0, values, 0), 0);
  EXPECT_EQ(FMD_ModeFromMemory(nullptr, 1, 0, values, 0), 0);
  EXPECT_EQ(FMD_ModeFromMemoryByRef(nullptr, 1, 0, &pointer, 0), 0);
  EXPECT_EQ(FMD_ModeFromMemoryByNode(nullptr, 1, 0, 1, values, 0), 0);
  FMD_CleanModesInMemory(nullptr);
  FMD_SetKeepModesInMemory(nullptr, 1);
  EXPECT_EQ(FMD_GetKeepModesInMemory(nullptr, &number), 0);
  EXPECT_EQ(FMD_SetPreStressVec(nullptr, 1, values), 0);
  EXPECT_EQ(FMD_SetPreStrainVec(nullptr, 1, values), 0);
  EXPECT_EQ(FMD_GetMaxModeDisplacement(nullptr, 1, &number, values), 0);
  EXPECT_EQ(FMD_GetMaxModeRotation(nullptr, 1, &number, values), 0);
  EXPECT_EQ(FMD_GetMaxVonMisesStress(nullptr, 1, &number, values), 0);
  EXPECT_EQ(FMD_GetMaxVonMisesStrain(nullptr, 1, &number, values), 0);
  EXPECT_EQ(FMD_ModalStatisticsExist(nullptr), 0);
  EXPECT_EQ(log.all.size(), 26U);
  EXPECT_THAT(log.all, Each(Eq("E:The database has not been initialized.")));
}

TEST_F(ModeVectors, ASinglePrecisionStoreKeepsFloats) {
  FmdBody* body = FMD_Create(1, 2);
  body->DataFile.DoublePrecision = 0;
  SixValues fine = {0.1, 0.2, 0.3, 0.4, 0.5, 0.6};
  ASSERT_EQ(FMD_SetModeVec(body, 1, 1, 0, six.data()), 1);
  ASSERT_EQ(FMD_SetModeVec(body, 2, 1, 0, fine.data()), 1);
  EXPECT_EQ(FMD_Double_Prec(body), 0);
  EXPECT_THAT(read_half(body, 1, 0, 0), ElementsAre(1.5, 2.5, 3.5));
  EXPECT_THAT(read_half(body, 2, 0, 1), ElementsAre(double(0.4F), double(0.5F), double(0.6F)));
}

TEST_F(ModeVectors, ARowIsTwelveWordsWhateverThePrecisionOfTheStore) {
  FmdBody* body = FMD_Create(4, 1);
  body->DataFile.DoublePrecision = 0;
  ASSERT_EQ(FMD_SetModeVec(body, 1, 1, 0, six.data()), 1);
  ASSERT_EQ(FMD_SetModeVec(body, 1, 2, 0, six.data()), 1);
  FMD_AddNode(body, 3);
  // The second row of floats begins where the third vector of six floats is read.
  EXPECT_THAT(read_half(body, 1, 0, 0), ElementsAre(1.5, 2.5, 3.5, 0, 0, 0, 1.5, 2.5, 3.5));
}

}  // namespace
