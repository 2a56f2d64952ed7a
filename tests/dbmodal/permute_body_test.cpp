// A body in another reference and basis, and one made ready for another basis.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdio>

#include "body/body.h"
#include "support/sample_body.h"
#include "support/session.h"

namespace fmdtest {

namespace {

using Three = std::array<double, 3>;

double identity[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
double no_origin[3] = {};

// A quarter turn about z, the matrix that stands to the left of a column: x goes to y.
double quarter[9] = {0, -1, 0, 1, 0, 0, 0, 0, 1};

Three turned(const Three& v) {
  return {-v[1], v[0], v[2]};
}

Three position_of(FmdBody* body, int node) {
  Three xyz = {};
  FMD_NodeCoordinates(body, FMD_NodeIndex(body, node), xyz.data());
  return xyz;
}

Three half_of(FmdBody* body, int mode, int type, int node, int part) {
  Three half = {9, 9, 9};
  EXPECT_EQ(FMD_ModeByNode(body, mode, type, node, half.data(), part), 1);
  return half;
}

Three sample_half(int type, int mode, int node, int part) {
  const auto six = sample_vector(type, mode, node);
  return {six[static_cast<std::size_t>(3 * part)], six[static_cast<std::size_t>(3 * part + 1)],
          six[static_cast<std::size_t>(3 * part + 2)]};
}

double eigenvalue_of(FmdBody* body, int mode) {
  double value = -1.0;
  double unused[4];
  FMD_Eigenvalue(body, mode, &value, unused, unused + 1, unused + 2, unused + 3);
  return value;
}

void expect_near(const Three& actual, const Three& expected) {
  for (std::size_t k = 0; k < 3; ++k) EXPECT_NEAR(actual[k], expected[k], 1e-12) << k;
}

class Permute : public SessionTest {
 protected:
  void SetUp() override {
    body = make_sample_body();
    log.clear();
  }
  FmdBody* body = nullptr;
};

TEST_F(Permute, NoBodyIsRefused) {
  FMD_PermuteFMD(nullptr, no_origin, 1, 1.0, identity, identity);
  EXPECT_EQ(log.errors, std::vector<std::string>{"The database has not been initialized."});
}

TEST_F(Permute, ScalesMassesAndInertiasOnly) {
  FMD_SetGlobalMass(body, 5.0, no_origin, identity);
  const double mass = body->GlobalMass;
  FMD_PermuteFMD(body, no_origin, 3, 0.5, identity, identity);
  for (const int node : kSampleNodes)
    EXPECT_EQ(FMD_NodalMass(body, FMD_NodeIndex(body, node)), sample_mass(node) * 0.5);
  const FmdNode& node = body->Nodes[FMD_NodeIndex(body, 10)];
  const double expected[6] = {0.5, 1.0, 1.5, 0.125, 0.25, 0.0625};
  for (int k = 0; k < 6; ++k) EXPECT_EQ(node.Inertia[k], expected[k]) << k;
  EXPECT_EQ(body->Nodes[FMD_NodeIndex(body, 20)].Inertia, nullptr);
  EXPECT_EQ(body->GlobalMass, mass);
  EXPECT_EQ(position_of(body, 20), sample_position(20));
}

TEST_F(Permute, AScaleOfOneLeavesMassesExactlyAsTheyAre) {
  FMD_SetNodalMass(body, 20, 0.1);
  FMD_PermuteFMD(body, no_origin, 3, 1.0, identity, identity);
  EXPECT_EQ(FMD_NodalMass(body, FMD_NodeIndex(body, 20)), 0.1);
}

TEST_F(Permute, MovesPointsThenTurnsThem) {
  double center[3] = {1, 2, 3};
  FMD_SetGlobalMass(body, 5.0, center, identity);
  double origin[3] = {0.5, -1.0, 2.0};
  FMD_PermuteFMD(body, origin, 3, 1.0, identity, quarter);
  expect_near({body->GlobalCenterOfMass[0], body->GlobalCenterOfMass[1], body->GlobalCenterOfMass[2]},
              turned({0.5, 3.0, 1.0}));
  for (const int node : kSampleNodes) {
    const auto xyz = sample_position(node);
    expect_near(position_of(body, node), turned({xyz[0] - 0.5, xyz[1] + 1.0, xyz[2] - 2.0}));
  }
  // The inertia of a node is not turned.
  EXPECT_EQ(body->Nodes[FMD_NodeIndex(body, 10)].Inertia[0], 1.0);
}

TEST_F(Permute, TurnsVectorsOfAllTypes) {
  FMD_PermuteFMD(body, no_origin, 3, 1.0, identity, quarter);
  for (int part = 0; part < 2; ++part)
    expect_near(half_of(body, 8, 0, 20, part), turned(sample_half(0, 8, 20, part)));
  // A stress turns as a tensor: x and y change places, xy its sign, and (yz, xz) turn.
  const auto six = sample_vector(1, 8, 20);
  expect_near(half_of(body, 8, 1, 20, 0), {six[1], six[0], six[2]});
  EXPECT_NEAR(half_of(body, 8, 1, 20, 1)[0], -six[3], 1e-12);
}

TEST_F(Permute, DiagonalOnesMeanNoRotation) {
  double sheared[9] = {1, 5, 7, 3, 1, 2, 4, 6, 1};
  double origin[3] = {1, 1, 1};
  FMD_PermuteFMD(body, origin, 3, 1.0, identity, sheared);
  for (int type = 0; type < 3; ++type) {
    const int node = type == 2 ? 10 : 20;
    for (int part = 0; part < 2; ++part)
      EXPECT_EQ(half_of(body, 9, type, node, part), sample_half(type, 9, node, part));
  }
  const auto xyz = sample_position(20);
  EXPECT_EQ(position_of(body, 20), (Three{xyz[0] - 1, xyz[1] - 1, xyz[2] - 1}));
}

TEST_F(Permute, CombinesModesOfEveryType) {
  double swap[9] = {0, 0, 1, 0, 1, 0, 1, 0, 0};
  FMD_PermuteFMD(body, no_origin, 3, 1.0, swap, identity);
  for (int type = 0; type < 3; ++type) {
    const int node = type == 2 ? 10 : 20;
    EXPECT_EQ(half_of(body, 7, type, node, 0), sample_half(type, 9, node, 0));
    EXPECT_EQ(half_of(body, 8, type, node, 1), sample_half(type, 8, node, 1));
    EXPECT_EQ(half_of(body, 9, type, node, 1), sample_half(type, 7, node, 1));
  }
}

TEST_F(Permute, StressThatTheBodyDoesNotNameStays) {
  body->BlockExists[fmd::kModalStress] = 0;
  double swap[9] = {0, 0, 1, 0, 1, 0, 1, 0, 0};
  FMD_PermuteFMD(body, no_origin, 3, 1.0, swap, quarter);
  body->BlockExists[fmd::kModalStress] = 1;
  EXPECT_EQ(half_of(body, 7, 1, 20, 0), sample_half(1, 7, 20, 0));
}

TEST_F(Permute, SetsTheNumberOfModes) {
  FMD_PermuteFMD(body, no_origin, 2, 1.0, identity, identity);
  EXPECT_EQ(FMD_ModeCount(body), 2);
  EXPECT_EQ(FMD_ModeIndex(body, 9), -1);
  EXPECT_EQ(half_of(body, 8, 0, 20, 0), sample_half(0, 8, 20, 0));
  // There is no room for modes that there are not.
  for (const int count : {3, -1, 1000000}) {
    FMD_PermuteFMD(body, no_origin, count, 1.0, identity, identity);
    EXPECT_EQ(FMD_ModeCount(body), 2) << count;
  }
  FMD_PermuteFMD(body, no_origin, 0, 1.0, identity, identity);
  EXPECT_EQ(FMD_ModeCount(body), 0);
}

using Preprocess = Permute;

TEST_F(Preprocess, DropsWhatTheBasisTells) {
  FMD_SetGeneralizedDamping(body, 7, 8, 0.5);
  FMD_SetGeneralizedMass(body, 7, 8, 0.25);
  double transformation[9] = {1, 0, 0, 0, 1, 0, 0, 0, 1};
  FMD_SetTransformation(body, transformation);
  EXPECT_EQ(eigenvalue_of(body, 8), stiffness_of(10.0));
  const int records = body->ModeRecordCount;
  EXPECT_EQ(FMD_PreprocessBAPFMD(body), 1);
  EXPECT_EQ(body->ModeRecords, nullptr);
  EXPECT_EQ(body->ModeRecordCount, records);
  EXPECT_EQ(body->GenStiff, nullptr);
  EXPECT_EQ(body->GenMass, nullptr);
  EXPECT_EQ(body->GenDamp, nullptr);
  EXPECT_EQ(body->Transformation, nullptr);
  for (const std::int32_t count : {body->GenStiffCount, body->GenStiffCapacity, body->GenMassCount,
                                   body->GenMassCapacity, body->GenDampCount, body->GenDampCapacity})
    EXPECT_EQ(count, 0);
  EXPECT_EQ(body->HasOffDiagonalGenMatrix, 0);
  EXPECT_EQ(FMD_Exists(body, 8), 0);
  EXPECT_EQ(FMD_ModeCount(body), 3);
  EXPECT_EQ(half_of(body, 8, 0, 20, 0), sample_half(0, 8, 20, 0));
}

TEST_F(Preprocess, TheBodyTakesItsMatricesAgain) {
  eigenvalue_of(body, 8);
  FMD_PreprocessBAPFMD(body);
  std::FILE* const out = std::tmpfile();
  for (int block = 1; block <= 35; ++block) FMD_Contents(body, block, out);
  std::fclose(out);
  for (std::size_t i = 0; i < kSampleModes.size(); ++i)
    add_frequency(body, kSampleModes[i], 2 * kSampleHertz[i]);
  EXPECT_EQ(FMD_NumberOfGenMass(body), 3);
  EXPECT_EQ(eigenvalue_of(body, 8), stiffness_of(20.0));
  char path[] = "out.fmd";
  EXPECT_EQ(FMD_write_FMD(body, path), 1);
}

TEST_F(Preprocess, NoBodyIsNoFailure) {
  EXPECT_EQ(FMD_PreprocessBAPFMD(nullptr), 1);
  EXPECT_TRUE(log.all.empty());
}

}  // namespace

}  // namespace fmdtest
