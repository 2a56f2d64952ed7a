#include "kdcdb/master_file.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstring>
#include <fstream>
#include <iterator>

#include "kdcdb/crc32c.h"
#include "kdcdb/kdcdb.h"
#include "kdcdb/master_pages.h"
#include "support/failing_file_system.h"
#include "support/session.h"

namespace {

using kdcdb::MasterFile;

// CRC-32C bit by bit, from its definition.
std::uint32_t slow_crc32c(const unsigned char* bytes, std::size_t count) {
  std::uint32_t crc = 0xFFFFFFFFU;
  for (std::size_t i = 0; i < count; ++i) {
    for (unsigned bit = 0; bit < 8; ++bit) {
      const std::uint32_t in = (bytes[i] >> bit) & 1U;
      const bool divide = ((crc ^ in) & 1U) != 0;
      crc >>= 1;
      if (divide) crc ^= 0x82F63B78U;
    }
  }
  return crc ^ 0xFFFFFFFFU;
}

class MasterFileTest : public ::testing::Test {
 protected:
  std::string path() { return (directory.path() / "body.MASTER").string(); }

  void make() {
    MasterFile file;
    ASSERT_EQ(file.create(path().c_str(), true), kdcdb::kOk);
  }
  std::vector<unsigned char> bytes() {
    std::ifstream in(path(), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
  }
  void put(const std::vector<unsigned char>& content) {
    std::ofstream out(path(), std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
  }
  void overwrite(std::size_t at, const std::vector<unsigned char>& content) {
    std::fstream file(path(), std::ios::binary | std::ios::in | std::ios::out);
    file.seekp(static_cast<std::streamoff>(at));
    file.write(reinterpret_cast<const char*>(content.data()), static_cast<std::streamsize>(content.size()));
  }
  kdcdb::Status open() {
    MasterFile file;
    return file.open(path().c_str());
  }
  std::size_t entries() {
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(directory.path()),
                                                  std::filesystem::directory_iterator()));
  }

  fmdtest::TemporaryDirectory directory;
};

TEST_F(MasterFileTest, ChecksumIsThePublishedOne) {
  EXPECT_EQ(kdcdb::crc32c("123456789", 9), 0xE3069283U);
  const unsigned char zeros[32] = {};
  EXPECT_EQ(kdcdb::crc32c(zeros, 32), 0x8A9136AAU);  // RFC 3720, B.4
  EXPECT_EQ(kdcdb::crc32c("456789", 6, kdcdb::crc32c("123", 3)), 0xE3069283U);
}

// The rules by which master files are told from others, read word by word.
TEST_F(MasterFileTest, NewFileHasTheHeaderOfAMasterFile) {
  make();
  const auto content = bytes();
  ASSERT_EQ(content.size(), 3U * 16384U);
  const auto word = [&](int k) {
    std::int32_t value;
    std::memcpy(&value, content.data() + 4 * k, 4);
    return value;
  };
  const auto text = [&](int k, std::size_t n) {
    return std::string(reinterpret_cast<const char*>(content.data()) + 4 * k, n);
  };
  const int stamp = word(6);
  const int name = word(8);
  const int machine = word(10);
  EXPECT_TRUE(word(3) >= 1 && word(3) <= 252);
  std::int32_t limit = 0;
  std::int32_t second = 0;
  kdcdb::GetBuffsizeLimit(&limit, &second);
  EXPECT_EQ(word(4), 4096);
  EXPECT_LE(word(4), limit);
  EXPECT_GE(word(5), 3);
  EXPECT_TRUE(stamp >= word(3) && stamp <= 252 - 10);
  EXPECT_TRUE(name >= 1 && name <= 252 - 4);
  EXPECT_TRUE(machine >= word(3) && machine <= 252 - 15);
  EXPECT_EQ(text(stamp + 3, 12), "*TIME STAMP*");
  EXPECT_EQ(text(name + 3, 8), "MASTER  ");
  EXPECT_EQ(word(machine + 3), 39);
  EXPECT_EQ(text(machine + 8, 4), "1.0 ");
  EXPECT_EQ(word(machine + 15), 2);
  for (int k = stamp + 6; k <= stamp + 9; ++k) EXPECT_TRUE(word(k) >= 0 && word(k) <= 999999);
  EXPECT_EQ(text(128, 8), "FMDSTORE");
  std::uint32_t crc;
  std::memcpy(&crc, content.data() + 1020, 4);
  EXPECT_EQ(crc, slow_crc32c(content.data(), 1020));
}

// The worked example of docs/database-format.md.
TEST_F(MasterFileTest, RootOfAnEmptyDatabaseHasTheDocumentedBytes) {
  kdcdb::Root root;
  root.file_id = 0x1122334455667788;
  root.generation = 1;
  const auto slot = kdcdb::encode_root(root);
  std::array<unsigned char, 128> expected{};
  std::memcpy(expected.data(), "FMDSROOT\x88\x77\x66\x55\x44\x33\x22\x11\x01", 17);
  expected[40] = 3;
  expected[48] = 1;
  std::memcpy(expected.data() + 124, "\x2d\x0f\x67\x2e", 4);
  EXPECT_EQ(slot, expected);

  root.generation = 2;
  root.dictionary_page = 6;
  root.dictionary_bytes = 136;
  root.end_page = 7;
  root.next_serial = 2;
  root.dictionary_crc = 0x37efd2bd;
  const auto later = kdcdb::encode_root(root);
  EXPECT_EQ(std::memcmp(later.data() + 124, "\xfb\x38\xf3\x28", 4), 0);
  EXPECT_EQ(kdcdb::root_page(1), 1);
  EXPECT_EQ(kdcdb::root_page(2), 2);
}

TEST_F(MasterFileTest, OpensAgainAndATakenNameIsRefused) {
  make();
  EXPECT_EQ(open(), kdcdb::kOk);
  MasterFile other;
  EXPECT_EQ(other.create(path().c_str(), false), kdcdb::kExists);
  EXPECT_EQ(entries(), 1U);
  std::filesystem::remove(path());
  EXPECT_EQ(open(), kdcdb::kNoFile);
}

TEST_F(MasterFileTest, EveryFlippedByteOfTheHeaderIsNoticed) {
  make();
  const auto whole = bytes();
  for (std::size_t at = 0; at < 1024; ++at) {
    overwrite(at, {static_cast<unsigned char>(whole[at] ^ 0x40)});
    const bool in_name = at >= 512 && at < 520;  // without the name nobody knows that the file is one of ours
    EXPECT_EQ(open(), in_name ? kdcdb::kNotADatabase : kdcdb::kDamaged) << at;
    overwrite(at, {whole[at]});
  }
  EXPECT_EQ(open(), kdcdb::kOk);
}

TEST_F(MasterFileTest, RootIsSoundAsLongAsOneOfItsCopiesIs) {
  make();
  const auto whole = bytes();
  constexpr std::size_t kFirst = 16384;
  constexpr std::size_t kSecond = 16384 + 8192;
  EXPECT_TRUE(std::equal(whole.begin() + kFirst, whole.begin() + kFirst + 128, whole.begin() + kSecond));
  for (std::size_t at = 0; at < 128; ++at) {
    const auto flipped = static_cast<unsigned char>(whole[kFirst + at] ^ 0x01);
    overwrite(kFirst + at, {flipped});
    EXPECT_EQ(open(), kdcdb::kOk) << at;
    overwrite(kSecond + at, {flipped});
    EXPECT_EQ(open(), kdcdb::kDamaged) << at;
    overwrite(kFirst + at, {whole[kFirst + at]});
    EXPECT_EQ(open(), kdcdb::kOk) << at;
    overwrite(kSecond + at, {whole[kFirst + at]});
  }
}

TEST_F(MasterFileTest, FileThatWasCutIsNoticed) {
  make();
  const auto whole = bytes();
  for (std::size_t size = 0; size < 2 * 16384 + 8192 + 128; size += 511) {
    put({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
    EXPECT_EQ(open(), size < 1024 ? kdcdb::kNotADatabase : kdcdb::kDamaged) << size;
  }
}

TEST_F(MasterFileTest, RightChecksumDoesNotHideAWrongLayoutOrAnotherFilesRoot) {
  make();
  const auto whole = bytes();
  const auto with_word = [&](std::vector<unsigned char>& changed, std::size_t at, std::uint32_t value,
                             std::size_t start, std::size_t covered) {
    std::memcpy(changed.data() + at, &value, 4);
    const std::uint32_t crc = slow_crc32c(changed.data() + start, covered);
    std::memcpy(changed.data() + start + covered, &crc, 4);
  };
  const auto in_header = [&](std::size_t at, std::uint32_t value) {
    auto changed = whole;
    with_word(changed, at, value, 0, 1020);
    put(changed);
  };
  const auto in_root = [&](std::size_t at, std::uint32_t value) {
    auto changed = whole;
    for (const std::size_t copy : {16384, 16384 + 8192}) with_word(changed, copy + at, value, copy, 124);
    put(changed);
  };
  in_header(520, 2);  // layout version
  EXPECT_EQ(open(), kdcdb::kNotADatabase);
  in_header(524, 4096);  // page size
  EXPECT_EQ(open(), kdcdb::kNotADatabase);
  in_root(8, 5);  // file id
  EXPECT_EQ(open(), kdcdb::kDamaged);
  in_root(32, 100);  // a dictionary that is not there
  EXPECT_EQ(open(), kdcdb::kDamaged);
}

TEST_F(MasterFileTest, NewestSoundRootCounts) {
  make();
  auto content = bytes();
  kdcdb::Root root;
  std::memcpy(&root.file_id, content.data() + 528, 8);
  const auto put_root = [&](std::uint64_t generation) {
    root.generation = generation;
    const auto slot = kdcdb::encode_root_page(root);
    std::copy(slot.begin(), slot.end(), content.begin() + 2 * 16384);
    put(content);
  };
  root.dictionary_bytes = 16;
  put_root(2);
  EXPECT_EQ(open(), kdcdb::kDamaged);  // generation 2 is looked at, and its dictionary is not there
  content[2 * 16384 + 16] = 3;
  content[2 * 16384 + 8192 + 16] = 3;
  put(content);
  EXPECT_EQ(open(), kdcdb::kDamaged);  // damaged, it may have been the newest
  put_root(0);
  EXPECT_EQ(open(), kdcdb::kOk);
}

TEST_F(MasterFileTest, SecondWriterIsLockedOutInThisProcessAndInAnother) {
  MasterFile first;
  ASSERT_EQ(first.create(path().c_str(), false), kdcdb::kOk);
  EXPECT_EQ(open(), kdcdb::kLocked);
  const pid_t child = fork();
  if (child == 0) _exit(open() == kdcdb::kLocked ? 0 : 1);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  first.close();
  EXPECT_EQ(open(), kdcdb::kOk);
}

TEST_F(MasterFileTest, LockSurvivesThatTheProcessClosesTheFileElsewhere) {
  MasterFile first;
  ASSERT_EQ(first.create(path().c_str(), false), kdcdb::kOk);
  bytes();  // opens and closes it
  EXPECT_EQ(open(), kdcdb::kLocked);
}

TEST_F(MasterFileTest, FailureAtAnyCallLeavesNoFileBehind) {
  for (const bool lasting : {false, true}) {
    long call = 0;
    for (bool failed = true; failed;) {
      fmdtest::FailingFileSystem failing(++call, ENOSPC);
      MasterFile file;
      const kdcdb::Status status = file.create(path().c_str(), lasting);
      failed = failing.has_failed();
      if (status == kdcdb::kOk) {
        EXPECT_EQ(entries(), 1U);
        std::filesystem::remove(path());
        continue;
      }
      EXPECT_EQ(status, kdcdb::kNoSpace) << call;
      EXPECT_EQ(entries(), 0U) << call;
    }
    EXPECT_GE(call, lasting ? 9 : 6);
  }
}

// Without unnamed files the master file still appears whole.
TEST_F(MasterFileTest, IsMadeUnderAnotherNameWhereFilesNeedOne) {
  class OldFileSystem : public fmdtest::FailingFileSystem {
   public:
    using FailingFileSystem::FailingFileSystem;
    int open(const char* file, int flags, mode_t mode) override {
      if ((flags & O_TMPFILE) != O_TMPFILE) return FailingFileSystem::open(file, flags, mode);
      errno = EISDIR;
      return -1;
    }
  };
  long call = 0;
  for (bool failed = true; failed;) {
    OldFileSystem failing(++call, ENOSPC);
    MasterFile file;
    const kdcdb::Status status = file.create(path().c_str(), false);
    failed = failing.has_failed();
    EXPECT_EQ(entries(), status == kdcdb::kOk ? 1U : 0U);
    EXPECT_TRUE(failed || status == kdcdb::kOk);
  }
  EXPECT_GE(call, 3);
  EXPECT_EQ(open(), kdcdb::kOk);
  OldFileSystem old;
  MasterFile again;
  EXPECT_EQ(again.create(path().c_str(), false), kdcdb::kExists);
  EXPECT_EQ(entries(), 1U);
}

TEST_F(MasterFileTest, IsMadeWhereFilesHaveOneNameOnly) {
  class ForeignFileSystem : public fmdtest::FailingFileSystem {
   public:
    int open(const char* file, int flags, mode_t mode) override {
      if ((flags & O_TMPFILE) != O_TMPFILE) return FailingFileSystem::open(file, flags, mode);
      errno = EOPNOTSUPP;
      return -1;
    }
    int link(const char*, const char*) override {
      errno = EPERM;
      return -1;
    }
  } foreign;
  make();
  EXPECT_EQ(entries(), 1U);
  EXPECT_EQ(open(), kdcdb::kOk);
  MasterFile again;
  EXPECT_EQ(again.create(path().c_str(), false), kdcdb::kExists);
  EXPECT_EQ(entries(), 1U);
}

TEST_F(MasterFileTest, IsMadeWithoutTheProcessFileSystemToo) {
  class BareFileSystem : public fmdtest::FailingFileSystem {
   public:
    int linkat(int, const char*) override {
      errno = ENOENT;
      return -1;
    }
  } bare;
  make();
  EXPECT_EQ(entries(), 1U);
  EXPECT_EQ(open(), kdcdb::kOk);
  std::filesystem::remove(path());
  MasterFile nowhere;
  EXPECT_EQ(nowhere.create((directory.path() / "missing" / "x.MASTER").c_str(), false), kdcdb::kNoFile);
}

}  // namespace
