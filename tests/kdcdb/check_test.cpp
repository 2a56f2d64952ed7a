// The check of a master file: silent on a sound one, and no flipped byte that counts escapes it.
#include <gtest/gtest.h>

#include <cstring>

#include "fmdtoolkit/extensions.h"
#include "kdcdb/crc32c.h"
#include "kdcdb/stored_bodies.h"
#include "support/memory_disk.h"

namespace {

using fmdtest::FileBytes;
using fmdtest::MemoryDisk;
using kdcdbtest::Body;
using kdcdbtest::make_body;

constexpr std::size_t kPage = 16384;

class CheckTest : public ::testing::Test {
 protected:
  // Three generations: two bodies, then a third, then the first once more.
  CheckTest() {
    EXPECT_EQ(kdcdbtest::export_bodies(base, {make_body("left", 1, {3, 9000}), make_body("empty", 2, {})}),
              kdcdb::kOk);
    EXPECT_EQ(kdcdbtest::export_bodies(base, {make_body("right", 3, {5000})}), kdcdb::kOk);
    EXPECT_EQ(kdcdbtest::export_bodies(base, {make_body("left", 4, {10, 10})}), kdcdb::kOk);
  }
  FileBytes& file() { return disk.bytes("b.MASTER"); }
  std::vector<std::string> reports() {
    std::vector<std::string> texts;
    status = kdcdbtest::check(master, &texts);
    return texts;
  }
  std::uint64_t number(std::size_t at) {
    std::uint64_t value;
    std::memcpy(&value, file().data() + at, 8);
    return value;
  }

  MemoryDisk disk;
  const std::string base = MemoryDisk::path("b");
  const std::string master = base + ".MASTER";
  kdcdb::Status status = kdcdb::kOk;
};

TEST_F(CheckTest, SoundFileGivesNoReport) {
  EXPECT_EQ(reports(), std::vector<std::string>{});
  EXPECT_EQ(status, kdcdb::kOk);
  EXPECT_EQ(disk.open_files(), 0U);
  file().resize(file().size() + 100000, 0xAB);  // what a writer that died has left
  EXPECT_EQ(reports(), std::vector<std::string>{});
}

// Found by fuzz_database: the check was content with the checksum, no session with the words.
TEST_F(CheckTest, HeaderThatNoSessionTakesIsReported) {
  constexpr std::size_t kChecksum = 1020;
  for (const std::size_t at : {16U, 84U, 252U, 254U, 1016U}) {
    FileBytes sound = file();
    file()[at] = static_cast<unsigned char>(file()[at] ^ 1);
    const std::uint32_t checksum = kdcdb::crc32c(file().data(), kChecksum);
    std::memcpy(file().data() + kChecksum, &checksum, sizeof checksum);
    EXPECT_EQ(reports(), std::vector<std::string>{"Page 0: the header is not that of a database."}) << at;
    EXPECT_EQ(status, kdcdb::kDamaged);
    file() = sound;
  }
  const std::size_t time_of_creation = 92;
  file()[time_of_creation] = static_cast<unsigned char>(file()[time_of_creation] ^ 1);
  const std::uint32_t checksum = kdcdb::crc32c(file().data(), kChecksum);
  std::memcpy(file().data() + kChecksum, &checksum, sizeof checksum);
  EXPECT_EQ(reports(), std::vector<std::string>{});
}

TEST_F(CheckTest, NamesThePageOfEveryFlippedByteThatCounts) {
  // Pages that no root leads to may hold anything: those are found by what a reader and the check say alike.
  const std::size_t pages = file().size() / kPage;
  std::size_t silent_pages = 0;
  for (std::size_t page = 0; page < pages; ++page) {
    std::size_t silent = 0;
    std::size_t tried = 0;
    for (std::size_t at = 0; at < kPage; at += at < 160 ? 1 : 211, ++tried) {
      unsigned char& byte = file()[page * kPage + at];
      byte = static_cast<unsigned char>(byte ^ 0x10);
      const auto texts = reports();
      byte = static_cast<unsigned char>(byte ^ 0x10);
      EXPECT_EQ(status == kdcdb::kOk, texts.empty());
      if (page == 0 && at >= 512 && at < 520) {
        EXPECT_EQ(status, kdcdb::kNotADatabase);
      } else if (texts.empty()) {
        ++silent;
      } else {
        EXPECT_EQ(status, kdcdb::kDamaged);
        const std::string place = "Page " + std::to_string(page) + ":";
        EXPECT_EQ(texts[0].substr(0, place.size()), place) << at;
      }
    }
    EXPECT_TRUE(silent == 0 || silent == tried - (page == 0 ? 8 : 0)) << page << ' ' << silent;
    if (silent != 0) ++silent_pages;
  }
  // What the first generation took and neither root leads to: its first "left" is still the older root's, so
  // only its dictionary is free.
  EXPECT_EQ(silent_pages, 1U);
}

TEST_F(CheckTest, NamesTheDatablockThatDamagedPagesBelongTo) {
  ASSERT_EQ(kdcdbtest::export_bodies(MemoryDisk::path("c"), {make_body("one", 1, {20000})}), kdcdb::kOk);
  FileBytes& other = disk.bytes("c.MASTER");
  other[4 * kPage] ^= 1;
  other[5 * kPage + 77] ^= 1;
  std::vector<std::string> texts;
  EXPECT_EQ(kdcdbtest::check(MemoryDisk::path("c.MASTER"), &texts), kdcdb::kDamaged);
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_EQ(texts[0], "Pages 4 to 5: damaged; they belong to datablock 1 'one'.");
  other[3 * kPage] ^= 1;
  other[5 * kPage + 77] ^= 1;
  other[8 * kPage] ^= 1;
  EXPECT_EQ(kdcdbtest::check(MemoryDisk::path("c.MASTER"), &texts), kdcdb::kDamaged);
  ASSERT_EQ(texts.size(), 1U);  // without its directory nothing says which pages are right
  EXPECT_EQ(texts[0], "Page 8: the directory of datablock 1 'one' is damaged.");
}

TEST_F(CheckTest, CutFileIsDamagedAtEveryLength) {
  const FileBytes whole = file();
  const std::uint64_t end = std::max(number(kPage + 40), number(2 * kPage + 40));
  ASSERT_EQ(whole.size(), end * kPage);
  for (std::size_t size = 0; size < whole.size(); size += 509) {
    file() = FileBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    reports();
    EXPECT_EQ(status, size < 1024 ? kdcdb::kNotADatabase : kdcdb::kDamaged) << size;
  }
}

TEST_F(CheckTest, ExportedCheckAnswersInThreeResults) {
  std::string last;
  const auto keep = [](const char* text, void* context) { *static_cast<std::string*>(context) = text; };
  EXPECT_EQ(FMDX_CheckDatabase(master.c_str(), keep, &last), 0);
  EXPECT_EQ(last, "");
  file()[kPage] ^= 1;
  EXPECT_EQ(FMDX_CheckDatabase(master.c_str(), keep, &last), 1);
  EXPECT_EQ(last, "Page 1: copy 1 of the root is damaged.");
  EXPECT_EQ(FMDX_CheckDatabase(master.c_str(), nullptr, nullptr), 1);
  EXPECT_EQ(FMDX_CheckDatabase("/disk/missing", keep, &last), 2);
  EXPECT_EQ(last, "There is no such file.");
  file()[512] ^= 1;
  EXPECT_EQ(FMDX_CheckDatabase(master.c_str(), keep, &last), 2);
  EXPECT_EQ(last, "The file is no database of this toolkit.");
  disk.fault = [](const char*) { return EIO; };
  EXPECT_EQ(FMDX_CheckDatabase(master.c_str(), keep, &last), 2);
  EXPECT_EQ(last, "The file cannot be read.");
}

TEST_F(CheckTest, ReadErrorsAreDamageWhereTheyAre) {
  int reads = 0;
  for (int failing = 6; failing < 40; ++failing) {  // past header and roots
    reads = 0;
    disk.fault = [&](const char* call) {
      return std::strcmp(call, "pread") == 0 && ++reads == failing ? EIO : 0;
    };
    const auto texts = reports();
    if (reads < failing) break;
    EXPECT_EQ(status == kdcdb::kOk, texts.empty());
    EXPECT_TRUE(status == kdcdb::kDamaged || status == kdcdb::kOk) << failing;
  }
  EXPECT_GT(reads, 20);
}

// A checksum that fits does not make a root sound that stands in the wrong page or has nowhere to go on.
TEST_F(CheckTest, RootsThatContradictThemselvesAreFound) {
  const auto set = [&](std::size_t page, std::size_t at, std::uint64_t value) {
    for (const std::size_t copy : {page * kPage, page * kPage + kPage / 2}) {
      std::memcpy(file().data() + copy + at, &value, 8);
      const std::uint32_t crc = kdcdb::crc32c(file().data() + copy, 124);
      std::memcpy(file().data() + copy + 124, &crc, 4);
    }
  };
  const FileBytes whole = file();
  set(1, 16, 10);  // generation
  EXPECT_EQ(reports().at(0),
            "Page 1: copy 1 of the root has generation 10, which belongs to the other page.");
  EXPECT_EQ(kdcdbtest::export_bodies(base, {}), kdcdb::kDamaged);
  file() = whole;
  set(1, 16, UINT64_MAX);
  EXPECT_EQ(reports().at(0), "Page 1: copy 1 of the root is damaged.");
  for (const std::uint64_t end : {std::uint64_t{0}, std::uint64_t{1} << 60, UINT64_MAX}) {
    for (const std::size_t page : {1U, 2U}) {
      file() = whole;
      set(page, 40, end);
      EXPECT_EQ(reports().size(), 1U);
      EXPECT_EQ(status, kdcdb::kDamaged);
    }
  }
  file() = whole;
  EXPECT_EQ(reports().size(), 0U);
}

}  // namespace
