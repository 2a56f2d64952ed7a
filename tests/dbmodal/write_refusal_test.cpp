// What a write does not do yet ends with an error, and nothing is lost in silence.
#include <gtest/gtest.h>

#include "body/body.h"
#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

class Refusal : public WriteTest {
 protected:
  void expect_refused(FmdBody* body, const std::string& options) {
    EXPECT_EQ(write(body, options), 0) << options;
    EXPECT_FALSE(log.errors.empty()) << options;
    EXPECT_FALSE(std::filesystem::exists("out.fmd")) << options;
  }

  bool an_error_names(const std::string& word) const {
    for (const std::string& error : log.errors) {
      if (error.find(word) != std::string::npos) return true;
    }
    return false;
  }
};

class RefusedOption : public Refusal, public ::testing::WithParamInterface<const char*> {};

INSTANTIATE_TEST_SUITE_P(Of, RefusedOption,
                         ::testing::Values("lbrf2cm", "sketch(mesh.txt)", "sketch(\"mesh.txt\")",
                                           "strip_face", "coarsen(0.5)"),
                         [](const auto& form) { return "Case" + std::to_string(form.index); });

TEST_P(RefusedOption, IsNamedAndLeavesNoFile) {
  const std::string option = GetParam();
  FmdBody* body = make_sample_body();
  expect_refused(body, option);
  EXPECT_TRUE(an_error_names(option.substr(0, option.find('(')))) << log.errors[0];
  expect_refused(body, option + " no_xdr single");
  EXPECT_EQ(write(body), 1);
}

TEST_F(Refusal, OfModesThatNeedTheEigenproblem) {
  FmdBody* body = make_sample_body();
  FMD_SetGeneralizedMass(body, 7, 8, 0.25);
  expect_refused(body, "");
  EXPECT_EQ(write(body, "no_ortho"), 1);
}

TEST_F(Refusal, OfModesThatNeedNormalisation) {
  FmdBody* body = make_nodes({1}, 1);
  add_vectors(body, 0, {1}, {1});
  FMD_SetGeneralizedMass(body, 1, 1, 2.0);
  FMD_SetGeneralizedStiffness(body, 1, 1, 8.0);
  expect_refused(body, "");
  EXPECT_EQ(write(body, "no_ortho"), 1);
}

class RefusedBlock : public Refusal, public ::testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(OfSummaryByte, RefusedBlock,
                         ::testing::Values(fmd::kModalPreload, fmd::kModalLoads, fmd::kMonitorPoints,
                                           fmd::kMatrixOperators, fmd::kModalLoadNodal));

TEST_P(RefusedBlock, LeavesNoFile) {
  FmdBody* body = make_sample_body();
  body->BlockExists[GetParam()] = 1;
  for (const WordCase& word : kWordCases) expect_refused(body, word.options);
  body->BlockExists[GetParam()] = 0;
  EXPECT_EQ(write(body), 1);
}

TEST_F(Refusal, DoesNotMeetAnInvariantOptionThatNamesNoSet) {
  EXPECT_EQ(write(make_sample_body(), "invar"), 1);
  EXPECT_EQ(log.errors, Strings{"Illegal invariants option, use full_invar or fast_invar."});
  EXPECT_EQ(dataset_reader::read_dataset_file("out.fmd").version_word, 0x13CU);
}

TEST_F(Refusal, DoesNotMeetOptionsWithNothingInTheirBrackets) {
  EXPECT_EQ(write(make_sample_body(), "coarsen() sketch()"), 1);
}

}  // namespace

}  // namespace fmdtest
