// An orthonormalisation that fails leaves a body that a later call can make orthonormal.
#include <gtest/gtest.h>

#include <string>

#include "body/body.h"
#include "dbmodal/spring_model.h"
#include "messages/memory.h"
#include "support/failing_file_system.h"
#include "support/session.h"

namespace fmdtest {

namespace {

class OrthoNormalizeFailure : public SessionTest {
 protected:
  static Vector shapes_of(FmdBody* body, int type) {
    Vector shapes;
    Vector half(static_cast<std::size_t>(3 * FMD_ModeNodeCount(body, type)));
    for (int mode = 0; mode < FMD_ModeCount(body); ++mode) {
      for (const int part : {0, 1}) {
        EXPECT_EQ(FMD_Mode(body, FMD_ModeNumber(body, mode), type, half.data(), part), 1);
        shapes.insert(shapes.end(), half.begin(), half.end());
      }
    }
    return shapes;
  }

  // All that is expressed in modal coordinates.
  static std::vector<Vector> picture_of(FmdBody* body) {
    std::vector<Vector> picture;
    for (int type = 0; type < 3; ++type) picture.push_back(shapes_of(body, type));
    const auto modes = static_cast<std::size_t>(FMD_ModeCount(body));
    int count = 0;
    for (double* load : {FMD_GetModalPreload(body, &count), FMD_GetModalLoad(body, 0, &count),
                         FMD_GetModalLoad(body, 1, &count)}) {
      picture.emplace_back(load, load + modes);
      FMD_FreeMemory(load);
    }
    for (const int kind : {1, 4}) {
      Vector rows(static_cast<std::size_t>(kind == 4 ? 6 : 3) * modes);
      EXPECT_EQ(FMD_GetMonitorPointOperator(body, 0, kind, rows.data()), 0);
      picture.push_back(rows);
    }
    Vector numbers;
    for (std::size_t i = 0; i < modes; ++i) numbers.push_back(FMD_ModeNumber(body, static_cast<int>(i)));
    picture.push_back(numbers);
    for (const auto get : {FMD_GenMassFull, FMD_GenStiffFull}) {
      Vector matrix(modes * modes);
      EXPECT_EQ(get(body, matrix.data(), static_cast<int>(modes)), 1);
      picture.push_back(matrix);
    }
    return picture;
  }

  const SpringModel model = make_springs(3, 7, 30.0, 23);
};

TEST_F(OrthoNormalizeFailure, ForWantOfMemoryIsMadeGoodByTheNextCall) {
  FmdBody* whole = make_body(model);
  const auto before = picture_of(whole);
  ASSERT_EQ(FMD_OrthoNormalize(whole), 1);
  const auto after = picture_of(whole);
  ASSERT_NE(before, after);
  bool has_failed = true;
  long untouched = 0;
  for (long nth = 1; has_failed; ++nth) {
    SCOPED_TRACE("allocation " + std::to_string(nth));
    FmdBody* body = make_body(model);
    log.clear();
    fmd::fail_allocation(nth);
    const int result = FMD_OrthoNormalize(body);
    has_failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    if (result == 0) {
      EXPECT_FALSE(log.errors.empty());
      if (body->ModeRecords == nullptr) {
        ++untouched;
        EXPECT_EQ(picture_of(body), before);
        EXPECT_EQ(body->Transformation, nullptr);
        EXPECT_EQ(FMD_NumberOfGenMass(body), 28);
      }
      EXPECT_EQ(FMD_OrthoNormalize(body), 1);
    }
    EXPECT_EQ(picture_of(body), after);
    FMD_UnLink(body);
    ASSERT_LT(nth, 2000);
  }
  EXPECT_GE(untouched, 13);
}

TEST_F(OrthoNormalizeFailure, ForWantOfDiskIsMadeGoodByTheNextCall) {
  FmdBody* whole = make_body(model);
  ASSERT_EQ(FMD_OrthoNormalize(whole), 1);
  const auto after = picture_of(whole);
  bool has_failed = true;
  long failures = 0;
  for (long nth = 1; has_failed; ++nth) {
    SCOPED_TRACE("call " + std::to_string(nth));
    FmdBody* body = make_body(model);
    log.clear();
    int result = 0;
    {
      FailingFileSystem failing(nth);
      result = FMD_OrthoNormalize(body);
      has_failed = failing.has_failed();
    }
    if (result == 0) {
      ++failures;
      EXPECT_FALSE(log.errors.empty());
      EXPECT_EQ(FMD_OrthoNormalize(body), 1);
    }
    EXPECT_EQ(picture_of(body), after);
    FMD_UnLink(body);
    ASSERT_LT(nth, 2000);
  }
  EXPECT_GE(failures, 3) << "one for each kind of vector at least";
}

TEST_F(OrthoNormalizeFailure, ToNormaliseIsNamed) {
  FmdBody* body = make_body(model);
  fmd::fail_allocation(2);
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  fmd::fail_allocation(0);
  ASSERT_EQ(log.errors.size(), 2U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbtools"));
  EXPECT_EQ(log.errors[1], "Failed to mass normalize the eigen vectors\n");
}

TEST_F(OrthoNormalizeFailure, AmongTheKindsTransformsNoneTwice) {
  FmdBody* whole = make_body(model);
  ASSERT_EQ(FMD_OrthoNormalize(whole), 1);
  const auto after = picture_of(whole);
  FmdBody* body = make_body(model);
  // No strain can be fetched: shapes and stresses are done when it fails.
  FmdPosition* const positions = body->ModePositions[2];
  const std::int32_t nodes = body->ModeNodeCount[2];
  body->ModeNodeCount[2] = 0;
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  EXPECT_FALSE(log.errors.empty());
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  body->ModeNodeCount[2] = nodes;
  EXPECT_EQ(body->ModePositions[2], positions);
  log.clear();
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  EXPECT_TRUE(log.errors.empty());
  EXPECT_EQ(picture_of(body), after);
}

TEST_F(OrthoNormalizeFailure, IsForgottenWhenAModeHasBeenAddedSince) {
  FmdBody* body = FMD_Create(1, 3);
  FMD_SetMode(body, 1, 1, 0, 4, 0, 0, 0, 0, 0);
  FMD_SetGeneralizedMass(body, 1, 1, 4.0);
  FMD_SetGeneralizedStiffness(body, 1, 1, 4.0);
  body->BlockExists[fmd::kModalStrain] = 1;
  EXPECT_EQ(FMD_OrthoNormalize(body), 0);
  body->BlockExists[fmd::kModalStrain] = 0;
  FMD_SetMode(body, 2, 1, 0, 6, 0, 0, 0, 0, 0);
  EXPECT_EQ(FMD_OrthoNormalize(body), 1);
  double t[4];
  EXPECT_EQ(FMD_Transformation(body, t), 1);
  EXPECT_EQ(Vector(t, t + 4), (Vector{1, 0, 0, 1}));
}

}  // namespace

}  // namespace fmdtest
