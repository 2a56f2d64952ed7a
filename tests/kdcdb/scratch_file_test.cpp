#include "kdcdb/scratch_file.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <random>

#include "kdcdb/scratch_block.h"
#include "support/failing_file_system.h"
#include "support/session.h"

namespace {

using kdcdb::kPageBytes;
using kdcdb::PageCache;
using kdcdb::ScratchFile;

// Files as long as asked, without a block on the disk.
class SparseFileSystem : public fmd::FileSystem {
 public:
  SparseFileSystem() { fmd::replace_file_system(this); }
  ~SparseFileSystem() override { fmd::replace_file_system(nullptr); }
  int fallocate(int file, int, off_t offset, off_t bytes) override {
    return FileSystem::ftruncate(file, offset + bytes);
  }
};

// One that answers some calls as an old or foreign file system does.
class PlainFileSystem : public fmd::FileSystem {
 public:
  PlainFileSystem() { fmd::replace_file_system(this); }
  ~PlainFileSystem() override { fmd::replace_file_system(nullptr); }
  int open(const char* path, int flags, mode_t mode) override {
    if ((flags & O_TMPFILE) != O_TMPFILE) return FileSystem::open(path, flags, mode);
    errno = EOPNOTSUPP;
    return -1;
  }
  int fallocate(int, int, off_t, off_t) override {
    errno = EOPNOTSUPP;
    return -1;
  }
};

class ScratchFileTest : public ::testing::Test {
 protected:
  std::string path() { return (directory.path() / "base").string(); }

  // Random reads and writes of all sizes on two files, compared with plain arrays after each.
  void compare_with_model(int frames, unsigned seed) {
    constexpr int kBytes = 20 * kPageBytes + 1234;
    PageCache cache(frames);
    ScratchFile files[2] = {ScratchFile(cache), ScratchFile(cache)};
    std::vector<unsigned char> models[2];
    for (int i = 0; i < 2; ++i) {
      ASSERT_EQ(files[i].create(path()), kdcdb::kOk);
      ASSERT_EQ(files[i].reserve(kBytes), kdcdb::kOk);
      models[i].resize(kBytes);
    }
    std::mt19937 random(seed);
    std::vector<unsigned char> buffer(kBytes);
    for (int step = 0; step < 4000; ++step) {
      const unsigned which = random() % 2;
      const int offset = static_cast<int>(random() % kBytes);
      const int longest = random() % 8 == 0 ? 4 * kPageBytes : 300;
      const int bytes = std::min(static_cast<int>(random()) % longest, kBytes - offset);
      if (bytes < 0) continue;
      const auto count = static_cast<std::size_t>(bytes);
      if (random() % 2 == 0) {
        for (std::size_t i = 0; i < count; ++i) buffer[i] = static_cast<unsigned char>(random());
        ASSERT_EQ(files[which].write(offset, buffer.data(), bytes), kdcdb::kOk);
        std::memcpy(models[which].data() + offset, buffer.data(), count);
      } else {
        ASSERT_EQ(files[which].read(offset, buffer.data(), bytes), kdcdb::kOk);
        ASSERT_EQ(std::memcmp(buffer.data(), models[which].data() + offset, count), 0) << step;
      }
    }
    for (int i = 0; i < 2; ++i) {
      ASSERT_EQ(files[i].read(0, buffer.data(), kBytes), kdcdb::kOk);
      ASSERT_EQ(buffer, models[i]);
    }
  }

  fmdtest::TemporaryDirectory directory;
};

TEST_F(ScratchFileTest, AgreesWithAnArrayWhateverTheNumberOfFrames) {
  for (const int frames : {1, 2, 3, 7, 16, 100})
    for (unsigned seed = 1; seed <= 3; ++seed) compare_with_model(frames, seed);
}

TEST_F(ScratchFileTest, AgreesWithAnArrayWithoutUnnamedFilesAndReservation) {
  PlainFileSystem plain;
  compare_with_model(4, 5);
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
}

TEST_F(ScratchFileTest, ReservedBytesAreZeroAlsoBehindAWrite) {
  PageCache cache(2);
  ScratchFile file(cache);
  ASSERT_EQ(file.create(path()), kdcdb::kOk);
  ASSERT_EQ(file.reserve(5 * kPageBytes), kdcdb::kOk);
  const unsigned char one = 1;
  ASSERT_EQ(file.write(2 * kPageBytes + 77, &one, 1), kdcdb::kOk);
  std::vector<unsigned char> read(5 * kPageBytes, 0xAA);
  ASSERT_EQ(file.read(0, read.data(), 5 * kPageBytes), kdcdb::kOk);
  for (int i = 0; i < 5 * kPageBytes; ++i)
    ASSERT_EQ(read[static_cast<std::size_t>(i)], i == 2 * kPageBytes + 77 ? 1 : 0);
}

TEST_F(ScratchFileTest, WritesAcrossFourGibibytesAndBeyond) {
  SparseFileSystem sparse;
  PageCache cache(4);
  ScratchFile file(cache);
  ASSERT_EQ(file.create(path()), kdcdb::kOk);
  constexpr std::int64_t kGibibyte = std::int64_t{1} << 30;
  ASSERT_EQ(file.reserve(9 * kGibibyte), kdcdb::kOk);
  for (const std::int64_t at : {4 * kGibibyte - 3, 8 * kGibibyte, std::int64_t{5}}) {
    const std::int64_t value = at * 31;
    ASSERT_EQ(file.write(at, &value, 8), kdcdb::kOk);
  }
  for (const std::int64_t at : {4 * kGibibyte - 3, 8 * kGibibyte, std::int64_t{5}}) {
    std::int64_t value = 0;
    ASSERT_EQ(file.read(at, &value, 8), kdcdb::kOk);
    EXPECT_EQ(value, at * 31);
  }
}

TEST_F(ScratchFileTest, BlockPositionsReachBeyondThirtyTwoBits) {
  SparseFileSystem sparse;
  PageCache cache(4);
  kdcdb::ScratchBlock block(cache);
  ASSERT_EQ(block.file.create(path()), kdcdb::kOk);
  const std::int64_t many = std::int64_t{5} << 30;  // words: 20 GiB
  ASSERT_EQ(block.append_zeros(many), kdcdb::kOk);
  ASSERT_EQ(block.append_mark(), kdcdb::kOk);
  const std::int32_t word = 42;
  ASSERT_EQ(block.append(&word, 1), kdcdb::kOk);
  EXPECT_EQ(block.record_at(many).end, many);
  EXPECT_EQ(block.record_at(many + 1).start, many + 1);
  std::int32_t read = 0;
  ASSERT_EQ(block.file.read((many + 1) * 4, &read, 4), kdcdb::kOk);
  EXPECT_EQ(read, 42);
  EXPECT_EQ(block.append_zeros(std::int64_t{1} << 60), kdcdb::kNoSpace);
}

TEST_F(ScratchFileTest, FullDiskShowsWhenSpaceIsReservedAndTheFileIsCutBack) {
  PageCache cache(4);
  ScratchFile file(cache);
  ASSERT_EQ(file.create(path()), kdcdb::kOk);
  ASSERT_EQ(file.reserve(kPageBytes), kdcdb::kOk);
  {
    fmdtest::FailingFileSystem full(1, ENOSPC);
    EXPECT_EQ(file.reserve(10 * kPageBytes), kdcdb::kNoSpace);
    EXPECT_EQ(full.calls(), 2);  // the failed reservation and the cut
  }
  const unsigned char value = 9;
  EXPECT_EQ(file.write(0, &value, 1), kdcdb::kOk);
}

TEST_F(ScratchFileTest, FallBackToZerosReportsAFullDiskToo) {
  class FullPlainFileSystem : public PlainFileSystem {
   public:
    ssize_t pwrite(int file, const void* buffer, std::size_t bytes, off_t offset) override {
      errno = offset >= 3 << 20 ? ENOSPC : 0;
      return offset >= 3 << 20 ? -1 : FileSystem::pwrite(file, buffer, bytes, offset);
    }
  } full;
  PageCache cache(4);
  ScratchFile file(cache);
  ASSERT_EQ(file.create(path()), kdcdb::kOk);
  EXPECT_EQ(file.reserve(5 << 20), kdcdb::kNoSpace);
  EXPECT_EQ(file.reserve(2 << 20), kdcdb::kOk);
}

TEST_F(ScratchFileTest, PagesThatCannotBeWrittenOutStayAndLoseNothing) {
  constexpr int kPages = 6;
  PageCache cache(2);
  ScratchFile file(cache);
  ASSERT_EQ(file.create(path()), kdcdb::kOk);
  ASSERT_EQ(file.reserve(kPages * kPageBytes), kdcdb::kOk);
  const auto write = [&](int page, int value) {
    return file.write(page * kPageBytes + 8, &value, sizeof value);
  };
  for (int page = 0; page < 2; ++page) ASSERT_EQ(write(page, page + 1), kdcdb::kOk);
  {
    class ReadOnlyFileSystem : public fmd::FileSystem {
     public:
      ssize_t pwrite(int, const void*, std::size_t, off_t) override {
        errno = EIO;
        return -1;
      }
    } broken;
    fmd::replace_file_system(&broken);
    EXPECT_EQ(write(2, 77), kdcdb::kInputOutput);
    int read = -1;
    EXPECT_EQ(file.read(4 * kPageBytes, &read, sizeof read), kdcdb::kOk);  // needs no frame
    EXPECT_EQ(read, 0);
    fmd::replace_file_system(nullptr);
  }
  for (int page = 2; page < kPages; ++page) ASSERT_EQ(write(page, page + 1), kdcdb::kOk);
  for (int page = 0; page < kPages; ++page) {
    int read = 0;
    ASSERT_EQ(file.read(page * kPageBytes + 8, &read, sizeof read), kdcdb::kOk);
    EXPECT_EQ(read, page + 1);
  }
}

TEST_F(ScratchFileTest, FailedReadIsAStatusAndLeavesTheFileUsable) {
  PageCache cache(1);
  ScratchFile file(cache);
  ASSERT_EQ(file.create(path()), kdcdb::kOk);
  ASSERT_EQ(file.reserve(3 * kPageBytes), kdcdb::kOk);
  std::vector<unsigned char> ones(2 * kPageBytes, 1);
  ASSERT_EQ(file.write(0, ones.data(), 2 * kPageBytes), kdcdb::kOk);  // past the frames
  unsigned char byte = 0;
  {
    fmdtest::FailingFileSystem failing(1, EIO);
    EXPECT_EQ(file.read(5, &byte, 1), kdcdb::kInputOutput);
  }
  {
    fmdtest::FailingFileSystem failing(1, EIO);
    EXPECT_EQ(file.read(0, ones.data(), 2 * kPageBytes), kdcdb::kInputOutput);
  }
  ASSERT_EQ(file.write(5, "\x07", 1), kdcdb::kOk);
  {
    fmdtest::FailingFileSystem failing(1, EIO);
    EXPECT_EQ(file.read(100, &byte, 1), kdcdb::kInputOutput);  // outside what the frame knows
    EXPECT_EQ(file.write(200, &byte, 1), kdcdb::kOk);
  }
  EXPECT_EQ(file.read(100, &byte, 1), kdcdb::kOk);
  EXPECT_EQ(byte, 1);
  EXPECT_EQ(file.read(5, &byte, 1), kdcdb::kOk);
  EXPECT_EQ(byte, 7);
}

TEST_F(ScratchFileTest, LeavesNoNameInTheDirectory) {
  PageCache cache(1);
  ScratchFile file(cache);
  ASSERT_EQ(file.create(path()), kdcdb::kOk);
  EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
  ScratchFile nowhere(cache);
  EXPECT_EQ(nowhere.create((directory.path() / "missing" / "base").string()), kdcdb::kNoFile);
}

TEST_F(ScratchFileTest, IsNotMadeWhereItsNameCannotBeTakenAway) {
  class ClingingFileSystem : public PlainFileSystem {
   public:
    int unlink(const char*) override {
      errno = EIO;
      return -1;
    }
  } clinging;
  PageCache cache(1);
  ScratchFile file(cache);
  EXPECT_EQ(file.create(path()), kdcdb::kInputOutput);
}

TEST_F(ScratchFileTest, ClearedFileReadsAsZeroAgain) {
  PageCache cache(2);
  ScratchFile file(cache);
  ASSERT_EQ(file.create(path()), kdcdb::kOk);
  ASSERT_EQ(file.reserve(4 * kPageBytes), kdcdb::kOk);
  const std::vector<unsigned char> ones(3 * kPageBytes, 1);
  ASSERT_EQ(file.write(10, ones.data(), 3 * kPageBytes), kdcdb::kOk);
  ASSERT_EQ(file.clear(), kdcdb::kOk);
  ASSERT_EQ(file.reserve(4 * kPageBytes), kdcdb::kOk);
  std::vector<unsigned char> read(4 * kPageBytes, 2);
  ASSERT_EQ(file.read(0, read.data(), 4 * kPageBytes), kdcdb::kOk);
  EXPECT_EQ(read, std::vector<unsigned char>(4 * kPageBytes, 0));
}

}  // namespace
