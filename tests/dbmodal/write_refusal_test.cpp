// What a write cannot do ends with an error, and nothing is lost in silence.
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
};

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
