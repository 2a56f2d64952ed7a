// A program of its own: the counter of scratch ids lives as long as the process.
#include <gtest/gtest.h>

#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"

namespace {

class ScratchCounterTest : public fmdtest::SessionTest {};

TEST_F(ScratchCounterTest, ScratchIdsCountFrom1001AlsoPastAFailure) {
  int scratch = 0;
  EXPECT_EQ(DB_OpenScratch(&scratch), 0);  // no session yet
  EXPECT_EQ(scratch, 1001);
  ASSERT_EQ(log.errors, (std::vector<std::string>{"Cannot open temporary datablock, 1."}));
  ASSERT_EQ(DB_StartBase(), 1);
  EXPECT_NE(DB_OpenScratch(&scratch), 0);
  EXPECT_EQ(scratch, 1002);
  EXPECT_NE(DB_OpenScratch(&scratch), 0);
  EXPECT_EQ(scratch, 1003);
  EXPECT_EQ(log.errors.size(), 1U);
}

}  // namespace
