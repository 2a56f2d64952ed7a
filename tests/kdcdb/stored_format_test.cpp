// What stored datablocks are on disk: the worked example of docs/database-format.md byte for byte, sizes from
// nothing to more than one piece of checksums, and pages in several runs.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "kdcdb/block_directory.h"
#include "kdcdb/crc32c.h"
#include "kdcdb/master_file.h"
#include "kdcdb/stored_block.h"
#include "kdcdb/stored_bodies.h"
#include "support/memory_disk.h"
#include "support/session.h"

namespace {

using fmdtest::FileBytes;
using fmdtest::MemoryDisk;
using kdcdbtest::Body;
using kdcdbtest::export_bodies;
using kdcdbtest::make_body;

constexpr std::size_t kPage = 16384;
const std::string kBase = MemoryDisk::path("b");
const std::string kMaster = kBase + ".MASTER";

FileBytes from_hex(const std::string& text) {
  FileBytes bytes;
  for (std::size_t at = 0; at + 1 < text.size(); at += 3)
    bytes.push_back(static_cast<unsigned char>(std::stoi(text.substr(at, 2), nullptr, 16)));
  return bytes;
}

// The documented bytes, then zeros to the end of the page or of the half page.
void expect_bytes(const FileBytes& file, std::size_t at, const std::string& hex, std::size_t size) {
  FileBytes expected = from_hex(hex);
  expected.resize(size);
  ASSERT_LE(at + size, file.size());
  for (std::size_t i = 0; i < size; ++i) ASSERT_EQ(file[at + i], expected[i]) << "byte " << at + i;
}

TEST(StoredFormat, WorkedExampleComesOutByteForByte) {
  MemoryDisk disk;
  {
    kdcdb::MasterFile file;
    ASSERT_EQ(file.create(kMaster.c_str(), true), kdcdb::kOk);
  }
  // The file id is random: the header and the root get the one of the example.
  FileBytes& file = disk.bytes("b.MASTER");
  const std::uint64_t id = 0x1122334455667788;
  std::memcpy(file.data() + 528, &id, 8);
  const std::uint32_t crc = kdcdb::crc32c(file.data(), 1020);
  std::memcpy(file.data() + 1020, &crc, 4);
  FileBytes whole_root = from_hex("46 4d 44 53 52 4f 4f 54 88 77 66 55 44 33 22 11 01 00 00 00 00 00 00 00");
  whole_root.resize(128);
  whole_root[40] = 3;
  whole_root[48] = 1;
  const FileBytes root_crc = from_hex("2d 0f 67 2e");
  std::copy(root_crc.begin(), root_crc.end(), whole_root.begin() + 124);
  for (const std::size_t copy : {kPage, kPage + kPage / 2})
    std::copy(whole_root.begin(), whole_root.end(), file.begin() + static_cast<std::ptrdiff_t>(copy));

  Body arm;
  arm.label = "Left Arm";
  arm.trailer = {2, 3, 18, 2, 0, 0};
  arm.records = {{7, 8, 9}};
  ASSERT_EQ(export_bodies(kBase, {arm}), kdcdb::kOk);

  ASSERT_EQ(file.size(), 7 * kPage);
  expect_bytes(file, 3 * kPage, "07 00 00 00 08 00 00 00 09 00 00 00 00 00 00 00", kPage);
  expect_bytes(
      file, 4 * kPage,
      "46 4d 44 53 42 44 49 52 01 00 00 00 00 00 00 00 04 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 "
      "01 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 39 b1 27 2f 00 00 00 00 03 00 00 00 00 00 00 00",
      kPage);
  expect_bytes(file, 5 * kPage, "7c 77 d0 ea", kPage);
  expect_bytes(
      file, 6 * kPage,
      "46 4d 44 53 44 49 43 54 01 00 00 00 00 00 00 00 78 00 00 00 08 00 00 00 01 00 00 00 00 00 00 00 "
      "01 00 00 00 01 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 02 00 00 00 03 00 00 00 "
      "12 00 00 00 02 00 00 00 00 00 00 00 00 00 00 00 04 00 00 00 00 00 00 00 04 00 00 00 00 00 00 00 "
      "40 00 00 00 00 00 00 00 b6 44 1a 04 01 00 00 00 03 00 00 00 00 00 00 00 01 00 00 00 00 00 00 00 "
      "4c 65 66 74 20 41 72 6d",
      kPage);
  std::string second =
      "46 4d 44 53 52 4f 4f 54 88 77 66 55 44 33 22 11 02 00 00 00 00 00 00 00 06 00 00 00 00 00 00 00 "
      "88 00 00 00 00 00 00 00 07 00 00 00 00 00 00 00 02 00 00 00 00 00 00 00 bd d2 ef 37 00 00 00 00";
  for (int i = 0; i < 60; ++i) second += " 00";
  second += " fb 38 f3 28";
  expect_bytes(file, 2 * kPage, second, kPage / 2);
  expect_bytes(file, 2 * kPage + kPage / 2, second, kPage / 2);
}

// Bit by bit, from the definition, with the seed in front.
std::uint32_t slow_page_checksum(std::uint64_t serial, std::uint64_t page, const unsigned char* bytes) {
  FileBytes all(16);
  std::memcpy(all.data(), &serial, 8);
  std::memcpy(all.data() + 8, &page, 8);
  all.insert(all.end(), bytes, bytes + kPage);
  std::uint32_t crc = ~0U;
  for (const unsigned char byte : all) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0x82F63B78U : 0U);
  }
  return ~crc;
}

TEST(StoredFormat, ChecksumsOfManyPagesAreThoseOfEachPage) {
  std::mt19937 random(5);
  FileBytes bytes(9 * kPage);
  for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
  for (std::size_t pages = 0; pages <= 9; ++pages) {
    std::vector<std::uint32_t> found(pages + 1, 77);
    kdcdb::checksum_pages(3, 1000, bytes.data(), pages, found.data());
    for (std::size_t i = 0; i < pages; ++i)
      EXPECT_EQ(found[i], slow_page_checksum(3, 1000 + i, bytes.data() + i * kPage));
    EXPECT_EQ(found[pages], 77U);
  }
  EXPECT_EQ(kdcdb::checksum_piece(3, 4, bytes.data()),
            slow_page_checksum(3, (std::uint64_t{1} << 63) + 4, bytes.data()));
}

TEST(StoredFormat, ChecksumIsTheSameAtEveryAlignmentAndLength) {
  std::mt19937 random(6);
  FileBytes bytes(300);
  for (unsigned char& byte : bytes) byte = static_cast<unsigned char>(random());
  for (std::size_t start = 0; start < 9; ++start) {
    for (std::size_t count = 0; count < 280; count += count < 20 ? 1 : 13) {
      std::uint32_t crc = ~0U;
      for (std::size_t i = 0; i < count; ++i) {
        crc ^= bytes[start + i];
        for (int bit = 0; bit < 8; ++bit) crc = (crc >> 1) ^ ((crc & 1U) != 0 ? 0x82F63B78U : 0U);
      }
      EXPECT_EQ(kdcdb::crc32c(bytes.data() + start, count), ~crc) << start << ' ' << count;
      EXPECT_EQ(kdcdb::crc32c_by_table(bytes.data() + start, count), ~crc) << start << ' ' << count;
    }
  }
}

TEST(StoredFormat, BlocksOfEverySizeAroundThePageAndTheStagingComeBack) {
  MemoryDisk disk;
  std::vector<Body> bodies;
  int seed = 0;
  for (const std::size_t words :
       {0U, 1U, 4094U, 4095U, 4096U, 4097U, 8191U, 8192U, 65535U, 65536U, 65537U, 200000U})
    bodies.push_back(make_body("w" + std::to_string(words), ++seed, {words}));
  bodies.push_back(make_body("no record", 50, {}));
  bodies.push_back(make_body("empty records", 51, {0, 0, 3, 0}));
  ASSERT_EQ(export_bodies(kBase, bodies), kdcdb::kOk);
  std::vector<Body> found;
  ASSERT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk);
  EXPECT_EQ(found, bodies);
  EXPECT_EQ(kdcdbtest::check(kMaster), kdcdb::kOk);
}

TEST(StoredFormat, ReadsOfAnyLengthAtAnyPlaceGiveTheWordsThere) {
  MemoryDisk disk;
  const Body body = make_body("b", 1, {100000});
  ASSERT_EQ(export_bodies(kBase, {body}), kdcdb::kOk);
  std::shared_ptr<const kdcdb::StoredFile> stored;
  ASSERT_EQ(kdcdb::StoredFile::open(kMaster.c_str(), nullptr, stored), kdcdb::kOk);
  kdcdb::StoredBlock block(stored, 0);
  ASSERT_EQ(block.prepare(), kdcdb::kOk);
  std::mt19937 random(7);
  std::vector<std::int32_t> words(100000);
  for (int run = 0; run < 400; ++run) {
    const auto at =
        static_cast<std::int64_t>(run % 3 == 0 ? random() % 25 * 4096 % 100000 : random() % 100000);
    const auto count = static_cast<std::int64_t>(random() % (run % 2 == 0 ? 50 : 40000)) % (100001 - at);
    ASSERT_EQ(block.read(at, words.data(), count), kdcdb::kOk);
    ASSERT_EQ(std::memcmp(words.data(), body.records[0].data() + at, static_cast<std::size_t>(count) * 4), 0);
  }
}

// A body goes into what two that were replaced have left, in several runs of pages.
TEST(StoredFormat, BlockInSeveralRunsOfPagesComesBack) {
  MemoryDisk disk;
  for (int i = 0; i < 6; ++i)
    ASSERT_EQ(export_bodies(kBase, {make_body("b" + std::to_string(i), i, {20000})}), kdcdb::kOk);
  for (const int i : {0, 2, 4})
    ASSERT_EQ(export_bodies(kBase, {make_body("b" + std::to_string(i), 10 + i, {1})}), kdcdb::kOk);
  ASSERT_EQ(export_bodies(kBase, {make_body("b1", 20, {2})}), kdcdb::kOk);
  const std::size_t size = disk.bytes("b.MASTER").size();
  const Body large = make_body("large", 30, {60000, 5});
  ASSERT_EQ(export_bodies(kBase, {large}), kdcdb::kOk);
  EXPECT_LT(disk.bytes("b.MASTER").size(), size + 60000 * 4);
  std::shared_ptr<const kdcdb::StoredFile> stored;
  ASSERT_EQ(kdcdb::StoredFile::open(kMaster.c_str(), nullptr, stored), kdcdb::kOk);
  EXPECT_GE(stored->entries().back().extents.size(), 3U);
  std::vector<Body> found;
  ASSERT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk);
  EXPECT_EQ(found.back(), large);
  EXPECT_EQ(found.size(), 7U);
  EXPECT_EQ(kdcdbtest::check(kMaster), kdcdb::kOk);
}

TEST(StoredFormat, SpaceOfReplacedBodiesIsUsedAgain) {
  MemoryDisk disk;
  std::size_t largest = 0;
  for (int i = 0; i < 20; ++i) {
    ASSERT_EQ(export_bodies(kBase, {make_body("b", i, {50000})}), kdcdb::kOk);
    largest = std::max(largest, disk.bytes("b.MASTER").size());
  }
  // 13 pages of words, 2 of directory, one of dictionary: for two roots and the write.
  EXPECT_EQ(largest, (3 + 3 * 16) * kPage);
}

TEST(StoredFormat, ReplacedBodyKeepsItsPlaceAndTheSixQualifiersTellBodiesApart) {
  MemoryDisk disk;
  std::vector<Body> bodies;
  for (int i = 0; i < 5; ++i) {
    bodies.push_back(make_body("same", i, {10}));
    bodies.back().numbers[static_cast<std::size_t>(i)] = 9;
  }
  bodies.push_back(make_body("same", 6, {10}));
  bodies.push_back(make_body("Same", 7, {10}));
  ASSERT_EQ(export_bodies(kBase, bodies), kdcdb::kOk);
  for (const std::size_t i : {2U, 0U, 6U}) {
    const auto numbers = bodies[i].numbers;
    bodies[i] = make_body(bodies[i].label, 100 + static_cast<int>(i), {77, 1});
    bodies[i].numbers = numbers;
    ASSERT_EQ(export_bodies(kBase, {bodies[i]}), kdcdb::kOk);
  }
  std::vector<Body> found;
  ASSERT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk);
  EXPECT_EQ(found, bodies);
}

TEST(StoredFormat, LaterOfTwoBodiesWithOneIdentityCountsInOneWrite) {
  MemoryDisk disk;
  ASSERT_EQ(export_bodies(kBase, {make_body("b", 1, {5}), make_body("c", 2, {5}), make_body("b", 3, {9})}),
            kdcdb::kOk);
  std::vector<Body> found;
  ASSERT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk);
  EXPECT_EQ(found, (std::vector<Body>{make_body("b", 3, {9}), make_body("c", 2, {5})}));
}

// More checksums than one piece of the table holds; the file is sparse where the block is zero.
TEST(StoredFormat, BlockOfMoreThanOnePieceOfChecksumsComesBack) {
  const fmdtest::TemporaryDirectory directory;
  const std::string base = (directory.path() / "large").string();
  constexpr std::int64_t kZeros = 4100LL * 4096;
  ASSERT_EQ(kdcdb::DbaseBst("m", "./"), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseNew(base.c_str(), "init dbfmd;dbsetdel dball"), kdcdb::kOk);
  int key = 0;
  ASSERT_EQ(kdcdb::CreateDatablk("dbcreate datablk=(fmddb) quals()", &key), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
  const std::int32_t words[2] = {41, 42};
  ASSERT_EQ(kdcdb::Write(key, words, 1, true), kdcdb::kOk);
  ASSERT_EQ(kdcdb::WriteZeros(key, kZeros), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Write(key, words + 1, 1, true), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Close(key, 1), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  const std::string master = base + ".MASTER";
  {
    std::shared_ptr<const kdcdb::StoredFile> stored;
    ASSERT_EQ(kdcdb::StoredFile::open(master.c_str(), nullptr, stored), kdcdb::kOk);
    kdcdb::StoredBlock block(stored, 0);
    ASSERT_EQ(block.prepare(), kdcdb::kOk);
    EXPECT_EQ(block.words, kZeros + 4);
    EXPECT_EQ(block.record_ends, (std::vector<std::int64_t>{1, kZeros + 3}));
    std::int32_t read = 0;
    for (const auto& [at, value] :
         {std::pair<std::int64_t, int>{0, 41}, {kZeros + 2, 42}, {5, 0}, {4096LL * 4096, 0}}) {
      ASSERT_EQ(block.read(at, &read, 1), kdcdb::kOk);
      EXPECT_EQ(read, value) << at;
    }
  }
  EXPECT_EQ(kdcdbtest::check(master), kdcdb::kOk);
  kdcdb::DbaseBst("m", "./");
  ASSERT_EQ(kdcdb::DbaseOld(base.c_str(), "dbsetdel dbfmd"), kdcdb::kOk);
  kdcdb::DbaseCls();
}

// Until its key closes, a new block may be rewritten anywhere, on disk already or not.
TEST(StoredFormat, WordsRewrittenBeforeClosingAreStoredAsRewritten) {
  MemoryDisk disk;
  Body body = make_body("b", 1, {100000, 30});
  ASSERT_EQ(kdcdb::DbaseBst("m", "./"), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseNew(kBase.c_str(), "init dbfmd;dbsetdel dball"), kdcdb::kOk);
  int key = 0;
  ASSERT_EQ(kdcdb::CreateDatablk("dbcreate datablk=(fmddb) quals(selabel='b')", &key), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
  for (const auto& record : body.records)
    ASSERT_EQ(kdcdb::Write(key, record.data(), static_cast<std::int64_t>(record.size()), true), kdcdb::kOk);
  std::mt19937 random(9);
  std::vector<std::int32_t>& first = body.records[0];
  for (int run = 0; run < 60; ++run) {
    const std::size_t at = run == 0 ? 65530 : random() % 100000;
    const std::size_t count = std::min<std::size_t>(random() % 9000, 100000 - at);
    for (std::size_t i = 0; i < count; ++i) first[at + i] = static_cast<std::int32_t>(random());
    ASSERT_EQ(kdcdb::Filps3(key, static_cast<std::int64_t>(at)), kdcdb::kOk);
    ASSERT_EQ(kdcdb::Write(key, first.data() + at, static_cast<std::int64_t>(count), false), kdcdb::kOk);
  }
  EXPECT_EQ(kdcdbtest::read_records(key), body.records);  // and is read back while it is written
  std::int32_t trailer[7] = {key};
  std::copy(body.trailer.begin(), body.trailer.end(), trailer + 1);
  ASSERT_EQ(kdcdb::Close(key, 1), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Wrttrl(trailer), kdcdb::kOk);  // to a closed one
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  std::vector<Body> found;
  ASSERT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk);
  EXPECT_EQ(found, std::vector<Body>{body});
}

TEST(StoredFormat, WhatWasNotClosedOrWasAbandonedIsNotStored) {
  MemoryDisk disk;
  ASSERT_EQ(export_bodies(kBase, {make_body("old", 1, {5})}), kdcdb::kOk);
  const FileBytes before = disk.bytes("b.MASTER");
  ASSERT_EQ(kdcdb::DbaseBst("m", "./"), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseOld(kBase.c_str(), "init dbfmd"), kdcdb::kOk);
  int key = 0;
  ASSERT_EQ(kdcdbtest::write_body(make_body("left", 2, {90000}), &key), kdcdb::kOk);
  ASSERT_EQ(kdcdb::AbandonDatablk(key), kdcdb::kOk);
  ASSERT_EQ(kdcdb::CreateDatablk("dbcreate datablk=(fmddb) quals(selabel='open')", &key), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
  const std::vector<std::int32_t> words(200000, 3);
  ASSERT_EQ(kdcdb::Write(key, words.data(), 200000, true), kdcdb::kOk);
  ASSERT_EQ(kdcdb::CreateDatablk("dbcreate datablk=(fmddb) quals(selabel='never opened')", &key), kdcdb::kOk);
  EXPECT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  EXPECT_EQ(disk.bytes("b.MASTER"), before);  // cut back, and no root written
}

TEST(StoredFormat, BlockOpenedAsNewAgainIsWrittenFromTheStart) {
  MemoryDisk disk;
  ASSERT_EQ(kdcdb::DbaseBst("m", "./"), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseNew(kBase.c_str(), "init dbfmd;dbsetdel dball"), kdcdb::kOk);
  int key = 0;
  ASSERT_EQ(kdcdbtest::write_body(make_body("b", 1, {150000, 7}), &key), kdcdb::kOk);
  const Body body = make_body("b", 2, {3, 80000});
  ASSERT_EQ(kdcdb::Gopen(key, kdcdb::kOpenNew), kdcdb::kOk);
  for (const auto& record : body.records)
    ASSERT_EQ(kdcdb::Write(key, record.data(), static_cast<std::int64_t>(record.size()), true), kdcdb::kOk);
  std::int32_t trailer[7] = {key};
  std::copy(body.trailer.begin(), body.trailer.end(), trailer + 1);
  ASSERT_EQ(kdcdb::Wrttrl(trailer), kdcdb::kOk);
  ASSERT_EQ(kdcdb::Close(key, 1), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  std::vector<Body> found;
  ASSERT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk);
  EXPECT_EQ(found, std::vector<Body>{body});
  EXPECT_EQ(kdcdbtest::check(kMaster), kdcdb::kOk);
}

}  // namespace
