// A mode vector that cannot be read must not become part of a dataset.
#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <vector>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "support/session.h"
#include "system/file_system.h"

namespace {

// A disk that has gone: every read fails.
class DeadDisk : public fmd::FileSystem {
 public:
  DeadDisk() { fmd::replace_file_system(this); }
  ~DeadDisk() override { fmd::replace_file_system(nullptr); }
  ssize_t pread(int, void*, std::size_t, off_t) override {
    errno = EIO;
    return -1;
  }
};

class Unreadable : public fmdtest::SessionTest {
 protected:
  // More mode data than the store keeps in memory, so that a vector must come from the disk.
  void SetUp() override {
    body = FMD_Create(kNodes, kModes);
    ASSERT_NE(body, nullptr);
    for (int node = 1; node <= kNodes; ++node) FMD_SetNodeCoordinates(body, node, node, 1.0, 2.0);
    double values[6] = {1, 2, 3, 4, 5, 6};
    for (int mode = 1; mode <= kModes; ++mode) {
      FMD_SetGeneralizedMass(body, mode, mode, 1.0);
      FMD_SetGeneralizedStiffness(body, mode, mode, mode);
      for (int node = 1; node <= kNodes; ++node) {
        ASSERT_EQ(FMD_SetModeVec(body, mode, node, 0, values), 1);
      }
    }
    log.clear();
  }

  static constexpr int kNodes = 100000;
  static constexpr int kModes = 9;
  FmdBody* body = nullptr;
};

TEST_F(Unreadable, TheWriteFailsAndLeavesNoFile) {
  for (const int keep : {0, 1}) {
    FMD_SetKeepModesInMemory(body, keep);
    log.clear();
    {
      const DeadDisk disk;
      char path[] = "out.fmd";
      EXPECT_EQ(FMD_write_FMD(body, path), 0);
    }
    EXPECT_FALSE(std::filesystem::exists("out.fmd"));
    ASSERT_EQ(log.errors.size(), 2U);
    EXPECT_EQ(log.errors[0].substr(0, 26), "Problem reading mode shape");
    EXPECT_EQ(log.errors[1], "Problem writing Mode Shapes.");
    body->LoadedModeIndex[0] = -1;
  }
  FMD_SetKeepModesInMemory(body, 0);
  char path[] = "out.fmd";
  EXPECT_EQ(FMD_write_FMD(body, path), 1);
}

}  // namespace
