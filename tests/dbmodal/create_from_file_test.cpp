// Stored bodies by file and index: shared where they live already, whole and as a surface mesh.
#include <gtest/gtest.h>

#include "dbmodal/store_fixture.h"
#include "support/sample_body.h"

namespace fmdtest {

namespace {

using Strings = std::vector<std::string>;

char path[] = "bodies.MASTER";

// Nodes and modes of the sample body, and a node that no face has.
FmdBody* make_body() {
  std::vector<int> nodes = kSampleNodes;
  nodes.push_back(77);
  FmdBody* const body = make_nodes(nodes, static_cast<int>(kSampleModes.size()));
  add_vectors(body, 0, kSampleModes, nodes);
  for (std::size_t i = 0; i < kSampleModes.size(); ++i) add_frequency(body, kSampleModes[i], kSampleHertz[i]);
  for (std::vector<int> face : kSampleFaces)
    FMD_SetFaceList(body, static_cast<int>(face.size()), face.data());
  return body;
}

class CreateFromFile : public StoreTest {
 protected:
  void SetUp() override {
    for (const char* qualifiers : {"PEID=1", "PEID=2"}) {
      FmdBody* const body = make_body();
      ASSERT_EQ(store(body, "no_ortho", qualifiers), 1);
      FMD_UnLink(body);
    }
    log.clear();
  }

  int live_bodies() const {
    int count = 0;
    for (FmdBody* body = FMD_GetFirstFMD(); body != nullptr; body = body->Next) ++count;
    return count;
  }
};

TEST_F(CreateFromFile, SharesABodyThatLives) {
  FmdBody* const body = FMD_CreateFromFMD(path, 1);
  ASSERT_NE(body, nullptr);
  EXPECT_EQ(FMD_CreateFromFMD(path, 1), body);
  EXPECT_EQ(body->ReferenceCount, 2);
  EXPECT_EQ(live_bodies(), 1);
  FMD_DeReference(body);
  EXPECT_EQ(FMD_IsValid(body), 1);
  FMD_DeReference(body);
  EXPECT_EQ(FMD_IsValid(body), 0);
  EXPECT_EQ(log.errors, Strings{});
}

TEST_F(CreateFromFile, AnotherIndexOrSpellingIsAnotherBody) {
  FmdBody* const body = FMD_CreateFromFMD(path, 1);
  FmdBody* const second = FMD_CreateFromFMD(path, 2);
  char spelled[] = "./bodies.MASTER";
  FmdBody* const other = FMD_CreateFromFMD(spelled, 1);
  EXPECT_NE(second, nullptr);
  EXPECT_NE(other, nullptr);
  EXPECT_NE(second, body);
  EXPECT_NE(other, body);
  EXPECT_EQ(live_bodies(), 3);
  EXPECT_STREQ(other->DataFile.Name, spelled);
}

TEST_F(CreateFromFile, BothFormsLiveAtOnce) {
  FmdBody* const whole = FMD_CreateFromFMD(path, 1);
  FmdBody* const mesh = FMD_CreateFromFMD_SurfaceMesh(path, 1);
  ASSERT_NE(mesh, nullptr);
  EXPECT_NE(mesh, whole);
  EXPECT_EQ(whole->SurfaceMesh, 0);
  EXPECT_EQ(mesh->SurfaceMesh, 1);
  EXPECT_LT(FMD_NodeCount(mesh), FMD_NodeCount(whole));
  EXPECT_EQ(FMD_CreateFromFMD(path, 1), whole);
  EXPECT_EQ(FMD_CreateFromFMD_SurfaceMesh(path, 1), mesh);
  EXPECT_EQ(whole->ReferenceCount, 2);
  EXPECT_EQ(mesh->ReferenceCount, 2);
  double half[3] = {};
  EXPECT_EQ(FMD_ModeByNode(mesh, 8, 0, 20, half, 0), 1);
  EXPECT_EQ(half[0], sample_vector(0, 8, 20)[0]);
  EXPECT_EQ(FMD_ModeByNode(whole, 8, 0, 20, half, 0), 1);
  EXPECT_EQ(half[0], sample_vector(0, 8, 20)[0]);
}

TEST_F(CreateFromFile, OneFormMayOutliveTheOther) {
  FmdBody* const whole = FMD_CreateFromFMD(path, 1);
  FmdBody* const second = FMD_CreateFromFMD(path, 2);
  FMD_DeReference(whole);
  double half[3] = {};
  EXPECT_EQ(FMD_ModeByNode(second, 9, 0, 40, half, 1), 1);
  EXPECT_EQ(half[2], sample_vector(0, 9, 40)[5]);
}

TEST_F(CreateFromFile, ABodyMadeForWritingIsNeverShared) {
  FmdBody* const made = FMD_Create(1, 1);
  EXPECT_NE(FMD_CreateFromFMD(path, 1), made);
  EXPECT_EQ(made->ReferenceCount, 1);
}

TEST_F(CreateFromFile, WhatCannotBeReadLeavesNothing) {
  char absent[] = "absent.MASTER";
  EXPECT_EQ(FMD_CreateFromFMD(absent, 1), nullptr);
  EXPECT_EQ(log.errors, Strings{"The KD DB file absent.MASTER could not be found."});
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
  log.clear();
  EXPECT_EQ(FMD_CreateFromFMD(path, 3), nullptr);
  EXPECT_EQ(FMD_CreateFromFMD(path, 0), nullptr);
  EXPECT_EQ(log.errors, (Strings{"The index is too big, 3.", "The index is too big, 0."}));
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
}

// The reduction is told a null body.
TEST_F(CreateFromFile, TheSurfaceMeshOfWhatCannotBeReadIsNone) {
  char absent[] = "absent.MASTER";
  EXPECT_EQ(FMD_CreateFromFMD_SurfaceMesh(absent, 1), nullptr);
  EXPECT_EQ(log.errors, (Strings{"The KD DB file absent.MASTER could not be found.",
                                 "The database has not been initialized."}));
  EXPECT_EQ(FMD_GetFirstFMD(), nullptr);
}

TEST_F(CreateFromFile, WithoutASessionNothingIsRead) {
  FMD_Terminate();
  const EnvironmentVariable unset("KXI_KADCDB_DIR", nullptr);
  EXPECT_EQ(FMD_CreateFromFMD(path, 1), nullptr);
  EXPECT_EQ(log.errors, Strings{"Cannot get KXI_KADCDB_DIR."});
}

TEST_F(CreateFromFile, ForwardersShareTheSameBodies) {
  FmdBody* const whole = DB_CreateFromFileByIndex(path, 2);
  EXPECT_EQ(FMD_CreateFromFMD(path, 2), whole);
  EXPECT_EQ(whole->ReferenceCount, 2);
  FmdBody* const mesh = DB_CreateFromFileByIndex_SurfaceMesh(path, 2);
  EXPECT_EQ(FMD_CreateFromFMD_SurfaceMesh(path, 2), mesh);
  EXPECT_NE(mesh, whole);
}

TEST_F(CreateFromFile, AReadBodyKeepsItsDataInTheFile) {
  FmdBody* const body = FMD_CreateFromFMD(path, 1);
  ASSERT_NE(body, nullptr);
  EXPECT_STREQ(body->DataFile.Name, path);
  EXPECT_EQ(body->DataFile.BodyIndex, 1);
  for (const FmdStream& stream : body->ModeFile) {
    EXPECT_EQ(stream.Block, body->DataFile.Block);
    EXPECT_EQ(stream.Name, body->DataFile.Name);
    EXPECT_EQ(stream.IsScratch, 0);
    EXPECT_EQ(stream.UsesXdr, 0);
    EXPECT_EQ(stream.DoublePrecision, 1);
  }
  EXPECT_LT(FMD_AddMode(body, 99), 0);
  EXPECT_EQ(FMD_ModeCount(body), 3);
}

}  // namespace

}  // namespace fmdtest
