// A session with a scratch datablock open for writing, and a stream on it.
#ifndef FMDTOOLKIT_TESTS_SOLVERDB_SCRATCH_STREAM_H
#define FMDTOOLKIT_TESTS_SOLVERDB_SCRATCH_STREAM_H

#include <gtest/gtest.h>

#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"

namespace fmdtest {

class ScratchStreamTest : public SessionTest {
 protected:
  void SetUp() override {
    ASSERT_EQ(DB_StartBase(), 1);
    stream.Block = DB_OpenScratch(&stream.Key);
    ASSERT_NE(stream.Block, 0);
    stream.DoublePrecision = 1;
    DB_FSAVE(&stream.StartPosition, stream);
  }

  void reopen() {
    EXPECT_EQ(DB_ReOpenScratch(stream.Block), 1);
    DB_REWIND(stream);
  }

  FmdStream stream{};
};

}  // namespace fmdtest

#endif
