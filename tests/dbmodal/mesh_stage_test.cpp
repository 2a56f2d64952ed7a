// The options of a write that work on the reference frame and on the display mesh.
#include "dbmodal/dbwrite/mesh_stage.h"

#include <gmock/gmock.h>

#include <array>
#include <fstream>

#include "body/body.h"
#include "dbmodal/coarsen_meshes.h"
#include "dbmodal/write_fixture.h"
#include "messages/memory.h"

namespace fmdtest {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

using Vector = std::array<double, 3>;

class MeshStage : public WriteTest {
 protected:
  // The stage alone, on the options of a text.
  void run(FmdBody* body, const char* options) {
    fmd::WriteJob job;
    job.body = body;
    job.options = fmd::parse_write_options(options);
    log.clear();
    fmd::run_mesh_stage(job);
    EXPECT_TRUE(job.ok);
  }

  // Total mass 4, centre of mass at ((0 + 4 + 0) / 4, (0 + 0 + 16) / 4, (0 + 0 + 4) / 4) = (1, 4, 1), and as
  // many modes as told, rigid ones first.
  static FmdBody* make_masses(int rigid, int modes) {
    FmdBody* body = FMD_Create(3, modes);
    FMD_SetNodeCoordinates(body, 30, 0, 0, 0);
    FMD_SetNodeCoordinates(body, 20, 4, 0, 0);
    FMD_SetNodeCoordinates(body, 10, 0, 8, 2);
    FMD_SetNodalMass(body, 30, 1);
    FMD_SetNodalMass(body, 20, 1);
    FMD_SetNodalMass(body, 10, 2);
    for (int mode = 1; mode <= modes; ++mode) {
      add_vectors(body, 0, {mode}, {30, 20, 10});
      add_frequency(body, mode, mode <= rigid ? 0.0 : 50.0 + mode);
    }
    return body;
  }

  static Vector position(FmdBody* body, int node) {
    Vector xyz = {};
    FMD_NodeCoordinates(body, node, xyz.data());
    return xyz;
  }

  static void make_sketch() { std::ofstream("sketch.txt") << "2 3 30 10 20 2 20 40"; }
  const std::vector<std::vector<int>> sketched = {{0, 1, 2}, {2, 3}};

  static std::vector<std::vector<int>> faces_of(const Dataset& dataset) { return dataset.faces->faces; }

  static std::vector<std::vector<int>> faces_of(const FmdBody* body) {
    std::vector<std::vector<int>> faces;
    const std::int32_t* place = body->FaceList;
    for (int face = 0; face < body->FaceCount; place += *place + 1, ++face)
      faces.emplace_back(place + 1, place + 1 + *place);
    return faces;
  }
};

const char kShifted[] = "I:Shifting LBRF to CM at (1.000e+00,4.000e+00,1.000e+00)\n";

TEST_F(MeshStage, FrameMovesToTheCenterOfMass) {
  FmdBody* body = make_masses(0, 1);
  run(body, "lbrf2cm");
  EXPECT_THAT(log.all, ElementsAre(kShifted));
  EXPECT_EQ(position(body, 0), (Vector{-1, -4, -1}));
  EXPECT_EQ(position(body, 1), (Vector{3, -4, -1}));
  EXPECT_EQ(position(body, 2), (Vector{-1, 4, 1}));
}

TEST_F(MeshStage, OnlyXOfTheStoredCenterOfMassIsCleared) {
  FmdBody* body = make_masses(0, 1);
  double center[] = {5, 6, 7};
  double inertia[9] = {};
  FMD_SetGlobalMass(body, 4, center, inertia);
  run(body, "lbrf2cm");
  EXPECT_THAT(body->GlobalCenterOfMass, ElementsAre(0, 6, 7));
}

TEST_F(MeshStage, ABodyWithoutMassStaysWhereItIs) {
  FmdBody* body = make_masses(0, 1);
  FMD_SetNodalMass(body, 30, -3);
  body->GlobalCenterOfMass[0] = 5;
  run(body, "lbrf2cm");
  EXPECT_THAT(log.all, IsEmpty());
  EXPECT_EQ(position(body, 1), (Vector{4, 0, 0}));
  EXPECT_EQ(body->GlobalCenterOfMass[0], 5);
  FmdBody* empty = FMD_Create(0, 0);
  run(empty, "lbrf2cm");
  EXPECT_THAT(log.all, IsEmpty());
}

class ShiftedLoads : public MeshStage {
 protected:
  static FmdBody* make_loads(int rigid, int modes) {
    FmdBody* body = make_masses(rigid, modes);
    for (int mode = 1; mode <= modes; ++mode) {
      FMD_SetModalPreload(body, mode, mode);
      for (int load_case = 0; load_case < 3; ++load_case)
        FMD_SetModalLoad(body, load_case, mode, mode * (load_case + 1));
    }
    return body;
  }

  static std::vector<double> values(const double* first) { return std::vector<double>(first, first + 7); }
};

// With c = (1, 4, 1) and p = 1 2 3 4 5 6 7: 4 - (4*3 - 1*2) = -6, 5 - (1*1 - 1*3) = 7, 6 - (1*2 - 4*1) = 8.
TEST_F(ShiftedLoads, MomentsMoveWhereTheFirstEntriesAreRigidForces) {
  FmdBody* body = make_loads(6, 7);
  FMD_SetModalPreloadProcessed(body, 1);
  FMD_SetModalLoadProcessed(body, 0, 1);
  FMD_SetModalLoadProcessed(body, 2, 1);
  run(body, "lbrf2cm");
  EXPECT_THAT(values(body->ModalPreload), ElementsAre(1, 2, 3, -6, 7, 8, 7));
  EXPECT_THAT(values(body->LoadCases[0].Loads), ElementsAre(1, 2, 3, -6, 7, 8, 7));
  EXPECT_THAT(values(body->LoadCases[1].Loads), ElementsAre(2, 4, 6, 8, 10, 12, 14)) << "not processed";
  EXPECT_THAT(values(body->LoadCases[2].Loads), ElementsAre(3, 6, 9, -18, 21, 24, 21));
}

TEST_F(ShiftedLoads, UnprocessedPreloadStays) {
  FmdBody* body = make_loads(6, 7);
  run(body, "lbrf2cm");
  EXPECT_THAT(values(body->ModalPreload), ElementsAre(1, 2, 3, 4, 5, 6, 7));
}

TEST_F(ShiftedLoads, OtherNumbersOfRigidModesMoveNothing) {
  for (const int rigid : {0, 5}) {
    FmdBody* body = make_loads(rigid, 7);
    FMD_SetModalPreloadProcessed(body, 1);
    FMD_SetModalLoadProcessed(body, 0, 1);
    run(body, "lbrf2cm");
    EXPECT_EQ(FMD_RigidBodyModeCount(body), rigid);
    EXPECT_THAT(values(body->ModalPreload), ElementsAre(1, 2, 3, 4, 5, 6, 7));
    EXPECT_THAT(values(body->LoadCases[0].Loads), ElementsAre(1, 2, 3, 4, 5, 6, 7));
  }
}

TEST_F(ShiftedLoads, PreloadMovesWithoutLoadCases) {
  FmdBody* body = make_masses(6, 7);
  for (int mode = 1; mode <= 7; ++mode) FMD_SetModalPreload(body, mode, mode);
  FMD_SetModalPreloadProcessed(body, 1);
  body->LoadCaseCount = 2;  // a count without its table
  run(body, "lbrf2cm");
  body->LoadCaseCount = 0;
  EXPECT_THAT(values(body->ModalPreload), ElementsAre(1, 2, 3, -6, 7, 8, 7));
}

TEST_F(ShiftedLoads, LoadsShorterThanSixEntriesAreLeftAlone) {
  FmdBody* body = make_loads(6, 7);
  for (int load_case = 0; load_case < 2; ++load_case) FMD_SetModalLoadProcessed(body, load_case, 1);
  FMD_SetModalPreloadProcessed(body, 1);
  body->LoadCases[0].LoadCount = 5;
  body->PreloadCount = 5;
  run(body, "lbrf2cm");
  EXPECT_THAT(values(body->ModalPreload), ElementsAre(1, 2, 3, 4, 5, 6, 7));
  EXPECT_THAT(values(body->LoadCases[0].Loads), ElementsAre(1, 2, 3, 4, 5, 6, 7));
  EXPECT_THAT(values(body->LoadCases[1].Loads), ElementsAre(2, 4, 6, -12, 14, 16, 14));
}

TEST_F(MeshStage, ComputedInvariantsAreComputedAnewAndThoseSetStay) {
  FmdBody* body = make_masses(0, 2);
  FMD_FreeMemory(FMD_Invar2(body));
  FMD_FreeMemory(FMD_Invar4(body));
  FMD_FreeMemory(FMD_Invar5(body, 0));
  FMD_FreeMemory(FMD_Invar8(body, 0));
  FMD_FreeMemory(FMD_Invar9(body, 0, 0));
  FMD_Invar1(body);
  double seven[9] = {1, 2, 3, 4, 5, 6, 7, 8, 9};
  FMD_SetInvar7(body, seven);
  double three[3] = {10, 11, 12};
  FMD_SetInvar3(body, 1, three);
  ASSERT_NE(body->Invar2, nullptr);
  ASSERT_NE(body->Invar9, nullptr);
  run(body, "lbrf2cm");
  EXPECT_EQ(body->Invar1, nullptr);
  EXPECT_EQ(body->Invar2, nullptr);
  EXPECT_EQ(body->Invar4, nullptr);
  EXPECT_EQ(body->Invar5, nullptr);
  EXPECT_EQ(body->Invar8, nullptr);
  EXPECT_EQ(body->Invar9, nullptr);
  double* const moment = FMD_Invar2(body);
  EXPECT_EQ((Vector{moment[0], moment[1], moment[2]}), (Vector{0, 0, 0}));
  FMD_FreeMemory(moment);
  ASSERT_NE(body->Invar7, nullptr);
  ASSERT_NE(body->Invar3, nullptr);
  EXPECT_EQ(body->Invar7[5], 6);
}

TEST_F(MeshStage, ShiftedFrameIsWritten) {
  const Dataset dataset = written(make_masses(0, 1), "lbrf2cm");
  EXPECT_EQ(dataset.nodes->at(0).xyz, (Vector{-1, -4, -1}));
  EXPECT_EQ(dataset.nodes->at(2).xyz, (Vector{-1, 4, 1}));
  EXPECT_THAT(log.all, Contains(kShifted));
}

TEST_F(MeshStage, SketchReplacesTheMesh) {
  make_sketch();
  for (const char* option : {"sketch(sketch.txt)", "sketch('sketch.txt')", "sketch(\"sketch.txt\")"}) {
    const Dataset dataset = written(make_sample_body(), option);
    EXPECT_EQ(faces_of(dataset), sketched) << option;
    EXPECT_EQ(dataset.version_word, 0x53CU) << option;
  }
}

TEST_F(MeshStage, AMissingSketchIsAWarningAndTheFileIsWritten) {
  const Dataset dataset = written(make_sample_body(), "sketch(nowhere.txt)");
  EXPECT_THAT(log.warnings, Contains("Failed to open sketch file nowhere.txt"));
  EXPECT_EQ(faces_of(dataset).size(), kSampleFaces.size());
  EXPECT_EQ(dataset.version_word, 0x13CU);
}

TEST_F(MeshStage, StrippingTakesCommonFacesOff) {
  FmdBody* body = make_sample_body();
  FMD_SetFace(body, 3, 40, 20, 10);
  const Dataset dataset = written(body, "strip_face");
  EXPECT_THAT(log.infos, Contains(" Stripping interior faces\n"));
  EXPECT_EQ(faces_of(dataset).size(), kSampleFaces.size() - 1) << "the last face and its opposite are gone";
  EXPECT_EQ(dataset.version_word, 0x13CU);
}

// What is wrong with the mesh is told and ends no write: this one only ends with the faces it has not.
TEST_F(MeshStage, ABodyWithoutFacesIsWrittenAllTheSame) {
  FmdBody* body = make_masses(0, 1);
  EXPECT_EQ(write(body, "strip_face coarsen(0.5,10,0)"), 1);
  ASSERT_EQ(log.errors.size(), 3U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
  EXPECT_TRUE(is_allocation_failure(log.errors[1], "dbcoarse"));
  EXPECT_EQ(log.errors[2], "Problem encountered while trimming geometry\n");
  EXPECT_FALSE(dataset_reader::read_dataset_file("out.fmd").faces.has_value());
}

class CoarsenedWrite : public MeshStage {
 protected:
  static constexpr int kColumns = 60;
  static constexpr int kRows = 40;

  CoarsenedWrite() : mesh(make_plate(kColumns, kRows)) {}

  FmdBody* make_body() {
    FmdBody* body = FMD_Create(static_cast<int>(mesh.points.size()), 1);
    for (std::size_t node = 0; node < mesh.points.size(); ++node)
      FMD_SetNodeCoordinates(body, static_cast<int>(node) + 1, mesh.points[node][0], mesh.points[node][1], 0);
    for (const std::vector<int>& face : mesh.faces)
      FMD_SetFace(body, 4, face[0] + 1, face[1] + 1, face[2] + 1, face[3] + 1);
    add_vectors(body, 0, {1}, {1, 2, 3});
    add_frequency(body, 1, 50.0);
    return body;
  }

  std::vector<std::vector<int>> expected(const std::set<int>& preserved) {
    CoarsenCounts counts;
    return coarsen_by_plain_rules(mesh, {0.02, 10.0, true, preserved}, counts);
  }

  const Mesh mesh;
};

// 2 % of the diagonal of 72 is 1.44: an edge and the diagonal of a square.
TEST_F(CoarsenedWrite, PolygonsComeBackFromTheFile) {
  const Dataset dataset = written(make_body(), "coarsen(0.02,10,1)");
  EXPECT_EQ(faces_of(dataset), expected({}));
  EXPECT_LT(faces_of(dataset).size(), mesh.faces.size() / 2);
  EXPECT_EQ(dataset.version_word, 0x53CU);
  EXPECT_EQ(dataset.nodes->size(), mesh.points.size());
  EXPECT_THAT(log.infos,
              Contains("Coarsening to resolution 2% with face-angle 10.00 deg and co-linear vertex removal"));
}

TEST_F(CoarsenedWrite, PreservedNodesAreCornersOfTheFile) {
  FmdBody* body = make_body();
  for (const int id : {700, 701}) FMD_SetMode(body, 1, id, 1, 1, 2, 3, 4, 5, 6);
  const Dataset dataset = written(body, "coarsen(0.02,10,1,500,1100,preserve_str)");
  EXPECT_EQ(faces_of(dataset), expected({499, 1099, 699, 700}));
  EXPECT_NE(faces_of(dataset), expected({}));
}

TEST_F(MeshStage, StagesRunInTheirOrder) {
  std::ofstream("sketch.txt") << "3 3 10 20 30 3 30 20 10 3 10 30 20";
  FmdBody* body = make_masses(0, 1);
  run(body, "coarsen(0.5,10,0) strip_face sketch(sketch.txt) lbrf2cm");
  // Of two faces and one the other way, the two of one cycle are judged last first.
  ASSERT_GE(log.all.size(), 5U);
  EXPECT_EQ(log.all[0], kShifted);
  EXPECT_THAT(log.all[1], StartsWith("I:Using sketch file sketch.txt to replace 0 faces with 3"));
  EXPECT_EQ(log.all[2], "I: Stripping interior faces\n");
  EXPECT_EQ(log.all[3], "I:Coarsening to resolution 50% with face-angle 10.00 deg");
  EXPECT_THAT(log.all.back(), StartsWith("I:\nFace reduction from "));
}

TEST_F(MeshStage, NothingHappensWithoutAnOption) {
  FmdBody* body = make_sample_body();
  const auto faces = faces_of(body);
  run(body, "coarsen() sketch() lbrf strip");
  EXPECT_THAT(log.all, IsEmpty());
  EXPECT_EQ(faces_of(body), faces);
  EXPECT_EQ(body->Coarsened, 0);
}

int errors_of_host = 0;

// A host may read or write the environment while it is told something.
TEST_F(MeshStage, OptionsThatChangeMeanwhileStillHold) {
  make_sketch();
  FmdBody* body = make_sample_body();
  setenv("KXI_FMDWRITE_OPTIONS", "lbrf2cm sketch(sketch.txt) coarsen(0.5,10,0)", 1);
  const FmdMessageHandlers handlers = {[](const char*) { ++errors_of_host; },
                                       [](const char*) { ++errors_of_host; },
                                       [](const char*) {
                                         setenv("KXI_FMDWRITE_OPTIONS", std::string(3000, 'x').c_str(), 1);
                                         unsetenv("KXI_FMDWRITE_OPTIONS");
                                       }};
  SetMessageHandlers(&handlers);
  char path[] = "out.fmd";
  EXPECT_EQ(FMD_write_FMD(body, path), 1);
  EXPECT_EQ(errors_of_host, 0);
  const MessageLog other;
  EXPECT_EQ(faces_of(dataset_reader::read_dataset_file("out.fmd")), sketched);
}

TEST_F(MeshStage, SurvivesTheFailureOfEachAllocation) {
  make_sketch();
  for (int nth = 1;; ++nth) {
    FmdBody* body = make_sample_body();
    setenv("KXI_FMDWRITE_OPTIONS", "lbrf2cm sketch(sketch.txt) strip_face coarsen(0.5,10,1)", 1);
    log.clear();
    fmd::fail_allocation(nth);
    char path[] = "out.fmd";
    const int result = FMD_write_FMD(body, path);
    const bool failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    EXPECT_EQ(std::filesystem::exists("out.fmd"), result == 1);
    EXPECT_EQ(log.errors.empty(), !failed) << nth;
    EXPECT_EQ(FMD_SetFace(body, 3, 10, 20, 30), 1);
    EXPECT_EQ(write(body, "no_ortho"), 1);
    std::filesystem::remove("out.fmd");
    FMD_UnLink(body);
    if (!failed) break;
    ASSERT_LT(nth, 1000);
  }
}

}  // namespace

}  // namespace fmdtest
