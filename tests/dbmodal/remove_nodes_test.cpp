#include <gmock/gmock.h>

#include <algorithm>
#include <cerrno>
#include <set>
#include <string>
#include <vector>

#include "body/body.h"
#include "dbmodal/body_picture.h"
#include "dbmodal/dbtools/geometry_nodes.h"
#include "dbmodal/mode_model.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "support/failing_file_system.h"

namespace {

using fmdtest::BodyPicture;
using fmdtest::is_allocation_failure;
using fmdtest::picture_of;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

// Node ids 31, 30, ... 20, of which faces, an interface node and a load refer to seven.
constexpr int kNodes = 12;
constexpr int kModes = 3;
const std::set<int> kKept = {31, 29, 28, 25, 24, 22, 20};

class RemoveNodes : public fmdtest::ModeStoreTest {
 protected:
  static FmdBody* make_nodes() {
    FmdBody* body = FMD_Create(kNodes, kModes);
    for (int id = 31; id > 31 - kNodes; --id) {
      FMD_SetNodeCoordinates(body, id, id + 0.25, -id, 0.5 * id);
      FMD_SetNodalMass(body, id, 2.0 * id);
      if (id % 2 == 0) FMD_SetNodalInertia(body, id, id, id + 1, id + 2, 0.1, 0.2, 0.3);
    }
    return body;
  }

  static void add_references(FmdBody* body) {
    FMD_SetFace(body, 4, 31, 28, 25, 24);
    FMD_SetFace(body, 3, 24, 25, 20);
    FMD_SetInterfaceNode(body, 22);
    FMD_SetInterfaceNode(body, 31);
    FMD_SetModalLoadNodal(body, 0, 29, 3, 1.5);
    FMD_SetModalLoadNodal(body, 2, 20, 1, 2.5);
    FMD_SetModalLoadNodal(body, 2, 29, 6, 3.5);
    FMD_SetModalLoadNodal(body, 2, 20, 1, 4.5);
  }

  // Stress on some nodes, strain on others, pre-stress and pre-strain on fewer, none in node order.
  void add_modes(FmdBody* body) {
    for (int mode = 1; mode <= kModes; ++mode) {
      for (int id = 20; id <= 31; ++id) set(body, mode, id, fmd::kShape);
      for (const int id : {20, 30, 22, 29, 21}) set(body, mode, id, fmd::kStress);
      for (const int id : {27, 31, 26, 25}) set(body, mode, id, fmd::kStrain);
    }
    double values[6] = {1, 2, 3, 4, 5, 6};
    for (const int id : {20, 22, 29, 21}) {
      values[0] = id;
      FMD_SetPreStressVec(body, id, values);
    }
    values[0] = 7.5;
    FMD_SetPreStrainVec(body, 25, values);
  }

  FmdBody* make_full_body() {
    FmdBody* body = make_nodes();
    add_references(body);
    add_modes(body);
    return body;
  }

  static void expect_removed(FmdBody* body, const BodyPicture& before) {
    fmdtest::expect_sound(body);
    EXPECT_TRUE(picture_of(body) == before.restricted_to(kKept));
    EXPECT_EQ(FMD_NodeCount(body), 7);
    EXPECT_EQ(body->GeometryNodes, nullptr);
  }
};

TEST_F(RemoveNodes, LeavesAllDataOfTheNodesThatAreReferredTo) {
  FmdBody* body = make_full_body();
  const BodyPicture before = picture_of(body);
  log.clear();
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(body), 1);
  EXPECT_THAT(log.all, ElementsAre(StartsWith("I: Shortened Shape mode file: key = "),
                                   StartsWith("I: Shortened Stress mode file: key = "),
                                   StartsWith("I: Shortened Strain mode file: key = ")));
  for (const std::string& text : log.all) EXPECT_EQ(text.back(), '\n');
  expect_removed(body, before);
  EXPECT_EQ(FMD_ModeNodeCount(body, fmd::kStress), 3);
  EXPECT_EQ(FMD_ModeNodeCount(body, fmd::kStrain), 2);
}

TEST_F(RemoveNodes, KeepsThemInTheOrderOfTheNodeTable) {
  FmdBody* body = make_full_body();
  fmd::RemoveNonGeometryNodes(body);
  std::vector<int> ids;
  for (int node = 0; node < FMD_NodeCount(body); ++node) ids.push_back(FMD_NodeID(body, node));
  EXPECT_EQ(ids, std::vector<int>(kKept.rbegin(), kKept.rend()));
  std::vector<int> stress;
  for (int node = 0; node < FMD_ModeNodeCount(body, 1); ++node)
    stress.push_back(FMD_ModeNodeID(body, 1, node));
  EXPECT_THAT(stress, ElementsAre(29, 22, 20));
}

TEST_F(RemoveNodes, FindsNothingMoreToRemove) {
  FmdBody* body = make_full_body();
  fmd::RemoveNonGeometryNodes(body);
  const BodyPicture before = picture_of(body);
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(body), 1);
  EXPECT_TRUE(picture_of(body) == before);
  fmdtest::expect_sound(body);
}

TEST_F(RemoveNodes, KeepsStoredNumbersToTheLastBitUnderAnyUnits) {
  FmdBody* body = make_full_body();
  const BodyPicture stored = picture_of(body);
  body->UnitTotalFactor[fmd::kLength] = 0.1;
  body->UnitTotalFactor[fmd::kForce] = 3.7;
  std::fill_n(body->LoadedModeIndex, TOTAL_MODE_INFO_TYPES, -1);
  const BodyPicture before = picture_of(body);
  EXPECT_FALSE(before.vectors == stored.vectors);
  fmd::RemoveNonGeometryNodes(body);
  EXPECT_TRUE(picture_of(body) == before.restricted_to(kKept));
  body->UnitTotalFactor[fmd::kLength] = body->UnitTotalFactor[fmd::kForce] = 1.0;
  std::fill_n(body->LoadedModeIndex, TOTAL_MODE_INFO_TYPES, -1);
  EXPECT_TRUE(picture_of(body) == stored.restricted_to(kKept));
}

TEST_F(RemoveNodes, TakesAModeOfNumberZeroForAnOrdinaryOne) {
  FmdBody* body = make_full_body();
  body->ModeNumbers[1] = 0;
  std::vector<double> before;
  for (int row = 0; row < 5; ++row) before.push_back(row);
  fmd::RemoveNonGeometryNodes(body);
  body->ModeNumbers[1] = 2;
  const BodyPicture after = picture_of(body);
  for (const int id : {20, 22, 29}) {
    const fmdtest::SixValues& six = values_.at({1, 2, id});
    EXPECT_EQ((after.vectors.at({1, 2, id})), BodyPicture::Row(six.begin(), six.end()));
  }
}

TEST_F(RemoveNodes, EmptiesTheModeCacheAndKeepsItsSwitch) {
  for (const int keep : {0, 1}) {
    FmdBody* body = make_full_body();
    const BodyPicture before = picture_of(body);
    read_half(body, 1, 0, 0);
    read_half(body, 2, 1, 1);
    FMD_SetKeepModesInMemory(body, keep);
    fmd::RemoveNonGeometryNodes(body);
    int flag = -1;
    FMD_GetKeepModesInMemory(body, &flag);
    EXPECT_EQ(flag, keep);
    EXPECT_EQ(body->ModeMemoryUsed, 0);
    for (int mode = 1; mode <= kModes; ++mode) {
      const std::vector<double> half = read_half(body, mode, 0, 0);
      EXPECT_EQ(half[3], before.vectors.at({0, mode, 29})[0]);
    }
    FMD_UnLink(body);
  }
}

TEST_F(RemoveNodes, SinglePrecisionStaysSingle) {
  FmdBody* body = FMD_Create(2 * kNodes, kModes);
  body->DataFile.DoublePrecision = 0;
  for (int id = 31; id > 31 - kNodes; --id) FMD_AddNode(body, id);
  for (int mode = 1; mode <= kModes; ++mode)
    for (int id = 31; id > 31 - kNodes; --id) FMD_SetMode(body, mode, id, 0, id + 0.1, mode, 3, 4, 5, 6);
  add_references(body);
  const BodyPicture before = picture_of(body);
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(body), 1);
  expect_removed(body, before);
  EXPECT_EQ(FMD_Double_Prec(body), 0);
  EXPECT_NE(body->ModeFile[0].FloatBuffer, nullptr);
  std::vector<float> values(6 * 7);
  EXPECT_EQ(FMD_Read_Mode_Single(body, 2, 0, values.data()), 1);
}

TEST_F(RemoveNodes, BodyStaysOpenForMoreModesAndNodes) {
  FmdBody* body = FMD_Create(kNodes, kModes + 2);
  for (int id = 31; id > 31 - kNodes; --id) FMD_AddNode(body, id);
  add_references(body);
  add_modes(body);
  const BodyPicture before = picture_of(body);
  fmd::RemoveNonGeometryNodes(body);
  double values[6] = {9, 8, 7, 6, 5, 4};
  for (const int mode : {8, 9})
    for (const int type : {0, 1, 2})
      EXPECT_EQ(FMD_SetModeVec(body, mode, type == 2 ? 25 : 20, type, values), 1);
  BodyPicture after = picture_of(body);
  for (const int mode : {8, 9}) {
    EXPECT_EQ((after.vectors.at({0, mode, 20})), BodyPicture::Row(values, values + 6));
    EXPECT_EQ((after.vectors.at({1, mode, 20})), BodyPicture::Row(values, values + 6));
    EXPECT_EQ((after.vectors.at({1, mode, 29})), BodyPicture::Row(6, 0.0));
  }
  for (auto entry = after.vectors.begin(); entry != after.vectors.end();)
    entry = std::get<1>(entry->first) > kModes ? after.vectors.erase(entry) : std::next(entry);
  EXPECT_TRUE(after == before.restricted_to(kKept));

  for (int id = 1000; id < 3500; ++id) ASSERT_EQ(FMD_AddNode(body, id), id - 1000 + 7);
  FMD_SetPreStressVec(body, 1500, values);
  fmdtest::expect_sound(body);
}

TEST_F(RemoveNodes, CanBeRewrittenInPlaceAfterwards) {
  FmdBody* body = make_full_body();
  fmd::RemoveNonGeometryNodes(body);
  BodyPicture expected = picture_of(body);
  double values[6] = {9, 8, 7, 6, 5, 4};
  FMD_SetModeVec(body, 2, 28, 0, values);
  expected.vectors[{0, 2, 28}] = BodyPicture::Row(values, values + 6);
  std::fill_n(body->LoadedModeIndex, TOTAL_MODE_INFO_TYPES, -1);
  EXPECT_TRUE(picture_of(body) == expected);
}

TEST_F(RemoveNodes, StressAndStrainVanishWithTheirLastNode) {
  FmdBody* body = make_nodes();
  add_references(body);
  double values[6] = {1, 2, 3, 4, 5, 6};
  for (int mode = 1; mode <= kModes; ++mode)
    for (const int type : {0, 1, 2}) set(body, mode, 30, type);
  FMD_SetPreStressVec(body, 30, values);
  FMD_SetPreStrainVec(body, 21, values);
  const BodyPicture before = picture_of(body);
  log.clear();
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(body), 1);
  EXPECT_THAT(
      log.warnings,
      ElementsAre(
          "All the nodes referenced in Stress Mode have been removed. Stress Mode data is eliminated.",
          "All the nodes referenced in Pre-Stress have been removed. Pre-Stress data is eliminated.",
          "All the nodes referenced in Strain Mode have been removed. Strain Mode data is eliminated.",
          "All the nodes referenced in Pre-Strain have been removed. Pre-Strain data is eliminated."));
  for (const int id : {17, 28, 30, 31}) EXPECT_EQ(FMD_Exists(body, id), 0) << id;
  expect_removed(body, before);
  // What begins anew is not in the way of what went.
  EXPECT_EQ(FMD_SetModeVec(body, 1, 20, 1, values), 1);
  EXPECT_THAT(read_half(body, 1, 1, 1), ElementsAre(4, 5, 6));
  EXPECT_EQ(FMD_SetPreStressVec(body, 22, values), 1);
}

TEST_F(RemoveNodes, StressWithoutPreStressVanishesWithOneWarning) {
  FmdBody* body = make_nodes();
  add_references(body);
  set(body, 1, 30, 1);
  log.clear();
  fmd::RemoveNonGeometryNodes(body);
  EXPECT_THAT(log.warnings,
              ElementsAre("All the nodes referenced in Stress Mode have been removed. Stress Mode "
                          "data is eliminated."));
}

TEST_F(RemoveNodes, PreStressWithoutStressModesIsShortenedToo) {
  FmdBody* body = make_nodes();
  add_references(body);
  double values[6] = {1, 2, 3, 4, 5, 6};
  for (const int id : {30, 22, 21, 31}) {
    values[0] = id;
    FMD_SetPreStressVec(body, id, values);
  }
  FMD_SetPreStrainVec(body, 30, values);
  const BodyPicture before = picture_of(body);
  fmd::RemoveNonGeometryNodes(body);
  expect_removed(body, before);
  EXPECT_EQ(FMD_Exists(body, 30), 1);
  EXPECT_EQ(FMD_Exists(body, 31), 0);
  EXPECT_THAT(
      log.warnings,
      ElementsAre(
          "No Mode Shape Data found in this Database file. \n",
          "All the nodes referenced in Pre-Strain have been removed. Pre-Strain data is eliminated."));
}

TEST_F(RemoveNodes, BodyWithoutModesSucceedsWithAWarning) {
  FmdBody* body = make_nodes();
  add_references(body);
  const BodyPicture before = picture_of(body);
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(body), 1);
  expect_removed(body, before);
  EXPECT_THAT(log.all, ElementsAre(StartsWith("I: Shortened Shape mode file: key = "),
                                   "W:No Mode Shape Data found in this Database file. \n"));
}

TEST_F(RemoveNodes, ModesWithoutVectorsAreNoHindrance) {
  FmdBody* body = make_nodes();
  add_references(body);
  FMD_AddMode(body, 4);
  const BodyPicture before = picture_of(body);
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(body), 1);
  expect_removed(body, before);
  EXPECT_THAT(log.warnings, IsEmpty());
  double values[6] = {1, 2, 3, 4, 5, 6};
  EXPECT_EQ(FMD_SetModeVec(body, 4, 20, 0, values), 1);
}

TEST_F(RemoveNodes, BodyWithoutGeometryStaysAsItIs) {
  FmdBody* body = make_nodes();
  add_modes(body);
  const BodyPicture before = picture_of(body);
  log.clear();
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(body), 1);
  EXPECT_TRUE(picture_of(body) == before);
  ASSERT_EQ(log.all.size(), 1U);
  EXPECT_TRUE(is_allocation_failure(log.errors.at(0), "dbtools"));
}

TEST_F(RemoveNodes, AListMadeBeforeKeepsItsNodesAndIsMadeAnewWhenItLacksSome) {
  FmdBody* body = make_nodes();
  add_references(body);
  int count = 0;
  FMD_FreeMemory(FMD_GeometryNodes(body, &count));
  body->FaceCount = 1;  // the second face goes, and node 24 and 25 stay with the first
  body->FaceListLength = 5;
  fmd::RemoveNonGeometryNodes(body);
  EXPECT_EQ(FMD_NodeCount(body), 7);

  FmdBody* other = make_nodes();
  add_references(other);
  FMD_FreeMemory(FMD_GeometryNodes(other, &count));
  FMD_SetFace(other, 3, 500, 31, 30);
  const BodyPicture before = picture_of(other);
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(other), 1);
  EXPECT_EQ(FMD_NodeCount(other), 9);
  EXPECT_TRUE(picture_of(other).faces == before.faces);
  fmdtest::expect_sound(other);
}

TEST_F(RemoveNodes, EmptyLoadCaseHasNoArrays) {
  FmdBody* body = make_full_body();
  fmd::RemoveNonGeometryNodes(body);
  ASSERT_EQ(body->NodalLoadCaseCount, 3);
  EXPECT_EQ(body->NodalLoadCases[0].Count, 1);
  EXPECT_EQ(body->NodalLoadCases[1].Count, 0);
  EXPECT_EQ(body->NodalLoadCases[1].Nodes, nullptr);
  EXPECT_EQ(body->NodalLoadCases[2].Count, 3);
  EXPECT_EQ(body->NodalLoadCases[2].Capacity, 3);
}

TEST_F(RemoveNodes, FailureOfAnyAllocationLeavesTheBodyWhole) {
  FmdBody* body = make_full_body();
  const BodyPicture before = picture_of(body);
  int nth = 1;
  for (;; ++nth) {
    log.clear();
    fmd::fail_allocation(nth);
    const int result = fmd::RemoveNonGeometryNodes(body);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (!failed) {
      EXPECT_EQ(result, 1);
      break;
    }
    // Without memory for the list of nodes there is nothing to keep, which is no failure.
    EXPECT_EQ(result, nth <= 2 ? 1 : 0) << nth;
    ASSERT_FALSE(log.errors.empty()) << nth;
    EXPECT_TRUE(is_allocation_failure(log.errors.back(), "dbtools")) << nth << log.errors.back();
    ASSERT_TRUE(picture_of(body) == before) << nth;
    fmdtest::expect_sound(body);
  }
  EXPECT_GT(nth, 25);
  expect_removed(body, before);
}

// Large enough for the scratch datablocks to ask the disk for more than once.
FmdBody* make_large_body() {
  constexpr int kMany = 600;
  constexpr int kManyModes = 12;
  FmdBody* body = FMD_Create(kMany, kManyModes);
  for (int id = 1; id <= kMany; ++id) FMD_AddNode(body, id);
  for (int id = 2; id < kMany; id += 2) FMD_SetFace(body, 2, id, id + 2);
  for (int mode = 1; mode <= kManyModes; ++mode) {
    for (int id = 1; id <= kMany; ++id) {
      for (const int type : {0, 2}) FMD_SetMode(body, mode, id, type, id, mode, type, 0.5, id * mode, 7);
    }
  }
  return body;
}

// A disk that gives so many more pieces of space and then no more.
class FillingDisk : public fmd::FileSystem {
 public:
  explicit FillingDisk(int pieces) : pieces_(pieces) { fmd::replace_file_system(this); }
  ~FillingDisk() override { fmd::replace_file_system(nullptr); }

  int fallocate(int file, int mode, off_t offset, off_t bytes) override {
    if (pieces_-- > 0) return FileSystem::fallocate(file, mode, offset, bytes);
    errno = ENOSPC;
    return -1;
  }

  bool is_full() const { return pieces_ < 0; }

 private:
  int pieces_;
};

TEST_F(RemoveNodes, FullDiskLeavesTheBodyWhole) {
  FmdBody* body = make_large_body();
  const BodyPicture before = picture_of(body);
  const std::string full = "Insufficient disk space for temporary file.";
  std::set<std::string> infos;
  int times = 0;
  for (int pieces = 0;; ++pieces) {
    log.clear();
    int result = 0;
    {
      const FillingDisk disk(pieces);
      result = fmd::RemoveNonGeometryNodes(body);
      EXPECT_EQ(result == 0, disk.is_full());
    }
    if (result == 1) break;
    times += static_cast<int>(std::count(log.errors.begin(), log.errors.end(), full));
    for (const std::string& text : log.infos) infos.insert(text.substr(0, text.find(':')));
    ASSERT_TRUE(picture_of(body) == before) << pieces;
    fmdtest::expect_sound(body);
  }
  EXPECT_GT(times, 12) << "once for each mode that did not fit";
  EXPECT_THAT(infos, ElementsAre(" Shortened Shape mode file", " Shortened Strain mode file"));
  EXPECT_EQ(FMD_NodeCount(body), 300);
}

TEST_F(RemoveNodes, FailureOfAnyFileOperationLeavesTheBodyWhole) {
  FmdBody* model = make_large_body();
  const BodyPicture before = picture_of(model);
  FMD_UnLink(model);
  std::set<int> even;
  for (const auto& node : before.nodes)
    if (node.first % 2 == 0) even.insert(node.first);
  const BodyPicture after = before.restricted_to(even);

  std::set<std::string> errors;
  bool failed = true;
  for (long nth = 1; failed; ++nth) {
    FmdBody* body = make_large_body();
    log.clear();
    int result = 0;
    {
      const fmdtest::FailingFileSystem failing(nth);
      result = fmd::RemoveNonGeometryNodes(body);
      failed = failing.has_failed();
    }
    errors.insert(log.errors.begin(), log.errors.end());
    ASSERT_TRUE(picture_of(body) == (result == 1 ? after : before)) << nth;
    EXPECT_EQ(body->GeometryNodes, nullptr);
    fmdtest::expect_sound(body);
    FMD_UnLink(body);
  }
  EXPECT_THAT(errors, testing::Contains("Unable to open temporary block for write."));
}

TEST_F(RemoveNodes, UnreadableVectorLeavesTheBodyWhole) {
  FmdBody* body = make_full_body();
  const BodyPicture before = picture_of(body);
  const FmdPosition good = body->ModePositions[1][1];
  body->ModePositions[1][1] = {{-1, -1}};
  log.clear();
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(body), 0);
  EXPECT_THAT(log.errors, ElementsAre("Problem reading modal stress vector 2"));
  body->ModePositions[1][1] = good;
  EXPECT_TRUE(picture_of(body) == before);
}

TEST_F(RemoveNodes, NullBodyIsReported) {
  EXPECT_EQ(fmd::RemoveNonGeometryNodes(nullptr), 0);
  EXPECT_EQ(FMD_RemoveInternalGeometry(nullptr), 0);
  EXPECT_THAT(log.all, ElementsAre("E:The database has not been initialized.",
                                   "E:The database has not been initialized."));
}

// Two by two by two hexahedra on 27 nodes; the one in the middle is behind faces on all sides.
class RemoveInternalGeometry : public fmdtest::SessionTest {
 protected:
  static int id(int x, int y, int z) { return 1 + x + 3 * y + 9 * z; }

  static FmdBody* make_body() {
    FmdBody* body = FMD_Create(27, 1);
    for (int node = 1; node <= 27; ++node) FMD_AddNode(body, node);
    for (int z = 0; z < 2; ++z)
      for (int y = 0; y < 2; ++y)
        for (int x = 0; x < 2; ++x) add_hexahedron(body, x, y, z);
    return body;
  }

  static void add_hexahedron(FmdBody* body, int x, int y, int z) {
    const int c[8] = {id(x, y, z),     id(x + 1, y, z),     id(x + 1, y + 1, z),     id(x, y + 1, z),
                      id(x, y, z + 1), id(x + 1, y, z + 1), id(x + 1, y + 1, z + 1), id(x, y + 1, z + 1)};
    FMD_SetFace(body, 4, c[0], c[3], c[2], c[1]);
    FMD_SetFace(body, 4, c[4], c[5], c[6], c[7]);
    FMD_SetFace(body, 4, c[0], c[1], c[5], c[4]);
    FMD_SetFace(body, 4, c[1], c[2], c[6], c[5]);
    FMD_SetFace(body, 4, c[2], c[3], c[7], c[6]);
    FMD_SetFace(body, 4, c[3], c[0], c[4], c[7]);
  }
};

TEST_F(RemoveInternalGeometry, LeavesTheSurface) {
  FmdBody* body = make_body();
  EXPECT_EQ(FMD_RemoveInternalGeometry(body), 1);
  EXPECT_EQ(body->FaceCount, 24);
  EXPECT_EQ(FMD_NodeCount(body), 26);
  EXPECT_EQ(FMD_NodeIndex(body, id(1, 1, 1)), -1);
  fmdtest::expect_sound(body);
  EXPECT_THAT(log.all, ElementsAre("I:\n Remove internal geometry of FMD\n", "I: Stripping interior faces\n",
                                   StartsWith("I: Shortened Shape mode file: key = "),
                                   HasSubstr("No Mode Shape Data")));
}

TEST_F(RemoveInternalGeometry, KeepsAnInteriorInterfaceNode) {
  FmdBody* body = make_body();
  FMD_SetInterfaceNode(body, id(1, 1, 1));
  FMD_RemoveInternalGeometry(body);
  EXPECT_EQ(FMD_NodeCount(body), 27);
}

TEST_F(RemoveInternalGeometry, RunsOncePerBody) {
  FmdBody* body = make_body();
  FMD_RemoveInternalGeometry(body);
  FMD_SetFace(body, 2, 500, 501);
  log.clear();
  EXPECT_EQ(FMD_RemoveInternalGeometry(body), 1);
  EXPECT_EQ(body->FaceCount, 25);
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(RemoveInternalGeometry, BodyWithoutFacesKeepsItsNodes) {
  FmdBody* body = FMD_Create(2, 1);
  FMD_AddNode(body, 1);
  EXPECT_EQ(FMD_RemoveInternalGeometry(body), 1);
  EXPECT_EQ(FMD_NodeCount(body), 1);
  ASSERT_EQ(log.errors.size(), 2U);
  for (const std::string& text : log.errors) EXPECT_TRUE(is_allocation_failure(text, "dbtools"));
}

TEST_F(RemoveInternalGeometry, DoesNotTryAgainWhenTheNodesCouldNotBeRemoved) {
  FmdBody* body = make_body();
  {
    const fmdtest::FailingFileSystem failing(1);
    EXPECT_EQ(FMD_RemoveInternalGeometry(body), 1);
  }
  EXPECT_THAT(log.errors, testing::Contains("Unable to open temporary block for write."));
  EXPECT_EQ(body->FaceCount, 24);
  EXPECT_EQ(FMD_NodeCount(body), 27);
  log.clear();
  EXPECT_EQ(FMD_RemoveInternalGeometry(body), 1);
  EXPECT_EQ(FMD_NodeCount(body), 27);
  EXPECT_THAT(log.all, IsEmpty());
}

TEST_F(RemoveInternalGeometry, FacesThatNameNoNodeChangeNothing) {
  FmdBody* body = make_body();
  body->FaceList[7] = 27;
  EXPECT_EQ(FMD_RemoveInternalGeometry(body), 1);
  EXPECT_EQ(body->FaceCount, 48);
  EXPECT_EQ(FMD_NodeCount(body), 27);
  EXPECT_THAT(log.errors, ElementsAre("Missing element face information"));
}

}  // namespace
