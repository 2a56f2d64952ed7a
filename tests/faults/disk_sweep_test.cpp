// Fails the first, second, third ... file call of the store and of the dataset writer, and limits the size of
// files, until the work succeeds.
#include <gmock/gmock.h>
#include <sys/resource.h>

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <regex>
#include <string>

#include "faults/dataset_write.h"
#include "support/failing_file_system.h"
#include "support/session.h"

namespace {

using fmdtest::FailingFileSystem;
using fmdtest::open_descriptors;

constexpr long kMostCalls = 20000;

// Limits the size of files for a scope; the signal that comes with the limit is ignored.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : signal_(std::signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limited = before_;
    limited.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limited);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    std::signal(SIGXFSZ, signal_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*signal_)(int);
  rlimit before_ = {};
};

// Modes of more bytes than pages of the store, so that they reach the disk.
constexpr int kNodes = 1500;
constexpr int kModes = 3;

double value_of(int mode, int node, int component) {
  return 10000.0 * mode + node + 0.125 * component;
}

// True if all values could be stored.
bool store_modes(FmdBody* body) {
  for (int mode = 1; mode <= kModes; ++mode) {
    for (int node = 1; node <= kNodes; ++node) {
      double six[6];
      for (int i = 0; i < 6; ++i) six[i] = value_of(mode, node, i);
      if (FMD_SetModeVec(body, mode, node, 0, six) == 0) return false;
    }
  }
  return true;
}

// True if all modes could be read; what was read is then right.
bool read_modes(FmdBody* body, const std::vector<std::string>& errors) {
  std::vector<double> half(3 * kNodes);
  FMD_CleanModesInMemory(body);
  for (int mode = 1; mode <= kModes; ++mode) {
    for (int part = 0; part < 2; ++part) {
      if (FMD_Mode(body, mode, 0, half.data(), part) == 0 || !errors.empty()) return false;
      for (int node = 1; node <= kNodes; ++node)
        for (int i = 0; i < 3; ++i)
          EXPECT_EQ(half[static_cast<std::size_t>(3 * node - 3 + i)], value_of(mode, node, 3 * part + i));
    }
  }
  return true;
}

bool is_message_of_the_store(const std::string& text) {
  static const std::regex known(
      "Cannot open temporary datablock, -?[0-9]+\\."
      "|Unable to open temporary mode shape file \\(key = 0\\)\\.\n"
      "|Insufficient disk space for temporary mode shape file \\(key = [0-9]+\\)\\.\n"
      "|Couldn't seek to mode [0-9]+ node [0-9]+ position in temporary file"
      "|Problem reading mode shape [0-9]+");
  return std::regex_match(text, known);
}

class DiskSweep : public fmdtest::SessionTest {
 protected:
  // Runs the whole life of a body. True if nothing failed.
  bool lives_and_dies() {
    log.clear();
    FmdBody* body = FMD_Create(kNodes, kModes);
    was_made = body != nullptr;
    const bool done = body != nullptr && store_modes(body) && read_modes(body, log.errors);
    if (body != nullptr) {
      EXPECT_TRUE(fmdtest::is_usable(body));
    }
    FMD_Terminate();
    return done;
  }

  bool was_made = false;

  void expect_nothing_left() {
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()))
        << std::filesystem::directory_iterator(directory.path())->path();
  }
};

TEST_F(DiskSweep, EveryFileCallOfTheModeStoreMayFail) {
  ASSERT_TRUE(lives_and_dies());
  const long descriptors = open_descriptors();
  for (const int error : {EIO, ENOSPC, EMFILE}) {
    bool has_failed = true;
    for (long nth = 1; has_failed; ++nth) {
      SCOPED_TRACE("call " + std::to_string(nth) + ", error " + std::to_string(error));
      bool done = false;
      {
        FailingFileSystem failing(nth, error);
        done = lives_and_dies();
        has_failed = failing.has_failed();
      }
      ASSERT_TRUE(done || has_failed);
      for (const std::string& text : log.errors) EXPECT_TRUE(is_message_of_the_store(text)) << text;
      EXPECT_EQ(open_descriptors(), descriptors);
      expect_nothing_left();
      EXPECT_TRUE(lives_and_dies()) << "afterwards";
      ASSERT_LT(nth, kMostCalls);
      if (HasFailure()) return;
    }
  }
}

TEST_F(DiskSweep, ALimitOfFileSizesIsADiskThatIsTooSmall) {
  ASSERT_TRUE(lives_and_dies());
  const long descriptors = open_descriptors();
  const rlim_t whole = sizeof(double) * 6 * kNodes * kModes;
  int refused = 0;
  for (rlim_t bytes = 4096; bytes < 2 * whole; bytes += 16384) {
    SCOPED_TRACE("limit " + std::to_string(bytes));
    bool done = false;
    {
      const FileSizeLimit limit(bytes);
      done = lives_and_dies();
    }
    if (!done) ++refused;
    EXPECT_EQ(done, bytes >= whole);
    for (const std::string& text : log.errors) EXPECT_TRUE(is_message_of_the_store(text)) << text;
    if (was_made && !done) {
      EXPECT_THAT(log.errors, testing::ElementsAre(testing::StartsWith("Insufficient disk space")));
    }
    EXPECT_EQ(open_descriptors(), descriptors);
    expect_nothing_left();
    if (HasFailure()) return;
  }
  EXPECT_GT(refused, 5);
  EXPECT_TRUE(lives_and_dies());
}

// True if each mode is what was stored with its x and y multiplied by the sign.
bool modes_are_turned(FmdBody* body, double sign) {
  std::vector<double> half(3 * kNodes);
  double worst = 0.0;
  for (int mode = 1; mode <= kModes; ++mode) {
    for (int part = 0; part < 2; ++part) {
      if (FMD_Mode(body, mode, 0, half.data(), part) == 0) return false;
      for (int node = 1; node <= kNodes; ++node) {
        for (int i = 0; i < 3; ++i) {
          const double expected = (i == 2 ? 1.0 : sign) * value_of(mode, node, 3 * part + i);
          worst = std::max(worst, std::fabs(half[static_cast<std::size_t>(3 * node - 3 + i)] - expected));
        }
      }
    }
  }
  return worst < 1e-9;
}

// Half a turn about z, again and again. The nodes always turn; the modes turn, or stay with a message.
TEST_F(DiskSweep, ARotationThatTheDiskFailsLeavesTheModesWhole) {
  FmdBody* body = FMD_Create(kNodes, kModes);
  ASSERT_TRUE(store_modes(body));
  ASSERT_EQ(FMD_SetNodeCoordinates(body, 1, 1.0, 2.0, 3.0), 1);
  const long descriptors = open_descriptors();
  double axis[] = {0.0, 0.0, 1.0};
  double matrix[9];
  double sign_of_nodes = 1.0;
  double sign_of_modes = 1.0;
  int refused = 0;
  for (const int error : {EIO, ENOSPC, EMFILE}) {
    bool has_failed = true;
    for (long nth = 1; has_failed && !HasFailure(); ++nth) {
      SCOPED_TRACE("call " + std::to_string(nth) + ", error " + std::to_string(error));
      log.clear();
      {
        FailingFileSystem failing(nth, error);
        EXPECT_EQ(FMD_Rotate_Origin(body, axis, 180.0, matrix), 1);
        has_failed = failing.has_failed();
      }
      sign_of_nodes = -sign_of_nodes;
      if (log.errors.empty()) sign_of_modes = -sign_of_modes;
      refused += log.errors.empty() ? 0 : 1;
      EXPECT_TRUE(has_failed || log.errors.empty());
      double place[3] = {};
      FMD_NodeCoordinates(body, 0, place);
      EXPECT_NEAR(place[0], sign_of_nodes, 1e-9);
      EXPECT_TRUE(modes_are_turned(body, sign_of_modes));
      EXPECT_EQ(open_descriptors(), descriptors);
      ASSERT_LT(nth, kMostCalls);
    }
  }
  EXPECT_GE(refused, 3);
  EXPECT_TRUE(fmdtest::is_usable(body));
  FMD_Terminate();
  expect_nothing_left();
}

class WriteSweep : public fmdtest::DatasetWrite {
 protected:
  // The second write finds the body as the first one left it, and so does every one after.
  WriteSweep() {
    EXPECT_TRUE(writes()) << testing::PrintToString(log.all);
    EXPECT_TRUE(writes());
    whole = bytes();
    EXPECT_FALSE(whole.empty());
    descriptors = open_descriptors();
    log.clear();
    remove();
  }

  // A write either completes or says why and leaves no file.
  void check(bool done) {
    EXPECT_EQ(is_there(), done);
    if (done) {
      EXPECT_EQ(bytes(), whole);
    } else {
      EXPECT_FALSE(log.errors.empty());
    }
    EXPECT_EQ(open_descriptors(), descriptors);
    log.clear();
    EXPECT_TRUE(writes()) << "afterwards";
    EXPECT_EQ(bytes(), whole);
    log.clear();
    remove();
  }

  std::string whole;
  long descriptors = 0;
};

TEST_P(WriteSweep, EveryFileCallMayFail) {
  for (const int error : {EIO, ENOSPC, EACCES}) {
    bool has_failed = true;
    for (long nth = 1; has_failed && !HasFailure(); ++nth) {
      SCOPED_TRACE("call " + std::to_string(nth) + ", error " + std::to_string(error));
      bool done = false;
      {
        FailingFileSystem failing(nth, error);
        done = writes();
        has_failed = failing.has_failed();
      }
      ASSERT_EQ(done, !has_failed);
      check(done);
      ASSERT_LT(nth, kMostCalls);
    }
  }
  EXPECT_TRUE(fmdtest::is_usable(scene.body));
}

TEST_P(WriteSweep, ALimitOfFileSizesLeavesNoPartOfADataset) {
  const std::size_t step = std::max<std::size_t>(whole.size() / 40, 1);
  for (std::size_t limit = 0; limit < whole.size() + 2 * step && !HasFailure(); limit += step) {
    SCOPED_TRACE("limit " + std::to_string(limit));
    bool done = false;
    {
      const FileSizeLimit limited(limit);
      done = writes();
    }
    EXPECT_EQ(done, limit >= whole.size());
    check(done);
  }
  EXPECT_TRUE(fmdtest::is_usable(scene.body));
}

TEST_P(WriteSweep, ATargetThatCannotBeWrittenHarmsNothingElse) {
  std::filesystem::create_directory(target);
  std::ofstream("body.fmd/other.txt") << "kept";
  EXPECT_FALSE(writes());
  EXPECT_THAT(log.errors,
              testing::ElementsAre("Unable to open body.fmd for write. Please check write permissions."));
  EXPECT_TRUE(std::filesystem::exists("body.fmd/other.txt"));
  EXPECT_TRUE(fmdtest::is_usable(scene.body));
}

INSTANTIATE_TEST_SUITE_P(Options, WriteSweep, fmdtest::write_options());

}  // namespace
