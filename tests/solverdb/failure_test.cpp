// What a session does when memory, disk or file size run out, when its process is killed, and beside others.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "solverdb/scratch.h"
#include "support/failing_file_system.h"
#include "support/session.h"

namespace {

namespace fs = std::filesystem;

std::size_t entries_of(const fs::path& path) {
  return static_cast<std::size_t>(std::distance(fs::directory_iterator(path), fs::directory_iterator()));
}

class SessionFailureTest : public fmdtest::SessionTest {
 protected:
  std::size_t files() { return entries_of(directory.path()); }
  std::size_t descriptors() { return entries_of("/proc/self/fd"); }

  // A scratch block of several records and a reserved part, written, reopened, rewritten and read. 1 when
  // every step came out right, 0 when one reported a failure, -1 when one was wrong without saying so.
  int use_a_scratch_block() {
    FmdStream stream{};
    stream.DoublePrecision = 1;
    stream.Block = DB_OpenScratch(&stream.Key);
    if (stream.Block == 0) return 0;
    const int result = use(stream);
    DB_CloseDatablk(stream.Block);
    return result;
  }

  std::vector<double> large = std::vector<double>(30000, 0.5);
  std::string text = std::string(3000, 'c');
  std::vector<double> room = std::vector<double>(30000);

 private:
  int use(FmdStream stream) {
    FmdPosition start{};
    FmdPosition zeros{};
    DB_FSAVE(&start, stream);
    const double small[6] = {1, 2, 3, 4, 5, 6};
    if (DB_WriteDOUBLEs(stream, small, 6) == 0 || DB_WriteEOR(stream) == 0) return 0;
    if (DB_WriteDOUBLEs(stream, large.data(), 30000) == 0 || DB_WriteEOR(stream) == 0) return 0;
    DB_FSAVE(&zeros, stream);
    if (!fmd::fill_scratch_with_zeros(stream.Block, 200000)) return 0;
    if (DB_WriteCHARs(stream, text.c_str(), 3000) == 0) return 0;
    DB_ReOpenScratch(stream.Block);
    DB_FRESTORE(&zeros, stream);
    if (DB_SeekFWD(stream, 150000) == 0 || DB_WriteDOUBLEs(stream, small, 6) == 0) return 0;
    DB_FRESTORE(&start, stream);
    double read[6];
    if (DB_ReadDOUBLEs(stream, read, 6) == 0 || DB_SkipRecord(stream) == 0) return 0;
    if (!std::equal(read, read + 6, small)) return -1;
    if (DB_ReadDOUBLEs(stream, room.data(), 30000) == 0) return 0;
    if (room != large) return -1;
    DB_FRESTORE(&zeros, stream);
    if (DB_SeekFWD(stream, 150000) == 0 || DB_ReadDOUBLEs(stream, read, 6) == 0) return 0;
    return std::equal(read, read + 6, small) ? 1 : -1;
  }
};

TEST_F(SessionFailureTest, EveryFailedFileCallOfTheStartLeavesNoFileAndALaterStartWorks) {
  long call = 0;
  const std::size_t before = descriptors();
  for (bool failed = true; failed;) {
    {
      fmdtest::FailingFileSystem failing(++call, ENOSPC);
      const int started = DB_StartBase();
      failed = failing.has_failed();
      EXPECT_EQ(files(), started == 0 ? 0U : 3U) << call;
      EXPECT_TRUE(started == 1 || failed);
    }
    ASSERT_EQ(DB_StartBase(), 1);
    EXPECT_EQ(files(), 3U);
    DB_TermBase();
    EXPECT_EQ(files(), 0U);
    EXPECT_EQ(descriptors(), before);
  }
  EXPECT_GT(call, 5);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(SessionFailureTest, EveryFailedFileCallOfAScratchBlockIsToldAndHarmsNothingElse) {
  ASSERT_EQ(DB_StartBase(), 1);
  ASSERT_EQ(use_a_scratch_block(), 1);
  const std::size_t before = descriptors();
  for (const int error : {ENOSPC, EIO}) {
    int told = 0;
    long call = 0;
    for (bool failed = true; failed;) {
      log.clear();
      int result = 0;
      {
        fmdtest::FailingFileSystem failing(++call, error);
        result = use_a_scratch_block();
        failed = failing.has_failed();
      }
      EXPECT_NE(result, -1) << call;
      EXPECT_TRUE(failed || result == 1);
      if (result == 0) ++told;
      for (const std::string& message : log.all)
        EXPECT_EQ(message, error == ENOSPC ? "E:Cannot open temporary datablock, 15."
                                           : "E:Cannot open temporary datablock, 16.");
      EXPECT_EQ(descriptors(), before);
      ASSERT_EQ(use_a_scratch_block(), 1) << call;
    }
    EXPECT_GE(told, 2);
  }
  DB_TermBase();
  EXPECT_EQ(files(), 0U);
}

TEST_F(SessionFailureTest, EveryFailedAllocationIsToldAndHarmsNothingElse) {
  const std::size_t before = descriptors();
  std::int64_t nth = 0;
  for (bool failed = true; failed;) {
    fmd::fail_allocation(++nth);
    const int started = DB_StartBase();
    const int used = started == 1 ? use_a_scratch_block() : 0;
    failed = fmd::allocation_has_failed();
    fmd::fail_allocation(0);
    EXPECT_NE(used, -1) << nth;
    EXPECT_TRUE(failed || used == 1);
    EXPECT_EQ(files(), started == 0 ? 0U : 3U) << nth;
    ASSERT_EQ(DB_StartBase(), 1) << nth;
    ASSERT_EQ(use_a_scratch_block(), 1) << nth;
    DB_TermBase();
    EXPECT_EQ(files(), 0U) << nth;
    EXPECT_EQ(descriptors(), before) << nth;
  }
  EXPECT_GT(nth, 10);
}

// A limit on file sizes, as long as the object lives. The host ignores the signal that comes with it; the
// library touches no signal.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes) : disposition_(signal(SIGXFSZ, SIG_IGN)) {
    getrlimit(RLIMIT_FSIZE, &old_);
    const rlimit limit{bytes, old_.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &old_);
    signal(SIGXFSZ, disposition_);
  }
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  rlimit old_{};
  void (*disposition_)(int);
};

TEST_F(SessionFailureTest, FileSizeLimitIsToldAtTheWriteThatMeetsIt) {
  ASSERT_EQ(DB_StartBase(), 1);
  const FileSizeLimit limit(100000);
  FmdStream stream{};
  stream.DoublePrecision = 1;
  stream.Block = DB_OpenScratch(&stream.Key);
  ASSERT_NE(stream.Block, 0);
  FmdPosition start{};
  DB_FSAVE(&start, stream);
  EXPECT_EQ(DB_WriteDOUBLEs(stream, large.data(), 10000), 1);
  EXPECT_EQ(DB_WriteDOUBLEs(stream, large.data(), 10000), 0);
  EXPECT_FALSE(fmd::fill_scratch_with_zeros(stream.Block, 10000));
  EXPECT_TRUE(fmd::fill_scratch_with_zeros(stream.Block, 1000));
  DB_FRESTORE(&start, stream);
  EXPECT_EQ(DB_ReadDOUBLEs(stream, room.data(), 10000), 1);
  EXPECT_EQ(room[9999], 0.5);
}

TEST_F(SessionFailureTest, FileSizeLimitThatNoMasterFileFitsStartsNothing) {
  {
    const FileSizeLimit limit(1000);
    EXPECT_EQ(DB_StartBase(), 0);
    EXPECT_EQ(files(), 0U);
  }
  EXPECT_EQ(DB_StartBase(), 1);
}

TEST_F(SessionFailureTest, KilledProcessLeavesItsThreeFilesAndInNobodysWay) {
  const pid_t child = fork();
  if (child == 0) {
    if (DB_StartBase() == 1 && use_a_scratch_block() == 1) {
      int scratch = 0;
      DB_OpenScratch(&scratch);
      kill(getpid(), SIGKILL);
    }
    _exit(1);
  }
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  ASSERT_TRUE(WIFSIGNALED(status));
  EXPECT_EQ(files(), 3U);
  ASSERT_EQ(DB_StartBase(), 1);
  EXPECT_EQ(files(), 6U);
  EXPECT_EQ(use_a_scratch_block(), 1);
  DB_TermBase();
  EXPECT_EQ(files(), 3U);
}

TEST_F(SessionFailureTest, ProcessesInOneDirectoryDoNotMeet) {
  std::vector<pid_t> children;
  for (int i = 0; i < 4; ++i) {
    const pid_t child = fork();
    if (child == 0) {
      int good = 0;
      for (int round = 0; round < 5; ++round) {
        if (DB_StartBase() == 1 && use_a_scratch_block() == 1) ++good;
        DB_TermBase();
      }
      _exit(good == 5 ? 0 : 1);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(files(), 0U);
}

}  // namespace
