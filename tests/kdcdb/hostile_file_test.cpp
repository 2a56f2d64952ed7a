// Master files that were cut, flipped and forged, checksums repaired: a status, never a crash, a hang or an
// allocation beyond the file's size.
#include <gtest/gtest.h>

#include <cstring>
#include <random>

#include "kdcdb/crc32c.h"
#include "kdcdb/stored_bodies.h"
#include "support/largest_new.h"
#include "support/memory_disk.h"

namespace {

using fmdtest::FileBytes;
using fmdtest::MemoryDisk;
using kdcdbtest::Body;
using kdcdbtest::export_bodies;
using kdcdbtest::make_body;

constexpr std::size_t kPage = 16384;
constexpr std::size_t kHalf = kPage / 2;
constexpr std::size_t kConstantNeeds = 512 * 1024;  // buffers that do not depend on the file

class HostileFileTest : public ::testing::Test {
 protected:
  HostileFileTest() {
    EXPECT_EQ(export_bodies(base, {make_body("left", 1, {3, 5000}), make_body("", 2, {})}), kdcdb::kOk);
    EXPECT_EQ(export_bodies(base, {make_body("right", 3, {100})}), kdcdb::kOk);
    pristine = file();
    root = number(2 * kPage + 16) > number(kPage + 16) ? 2 * kPage : kPage;
    dictionary = number(root + 24) * kPage;
    dictionary_bytes = number(root + 32);
    EXPECT_EQ(kdcdbtest::read_bodies(master, bodies), kdcdb::kOk);
  }
  FileBytes& file() { return disk.bytes("b.MASTER"); }
  std::uint64_t number(std::size_t at) {
    std::uint64_t value;
    std::memcpy(&value, file().data() + at, 8);
    return value;
  }
  void put_checksum(std::size_t at, std::size_t from, std::size_t bytes) {
    const std::uint32_t crc = kdcdb::crc32c(file().data() + from, bytes);
    std::memcpy(file().data() + at, &crc, 4);
  }
  void repair_root() {
    std::copy_n(file().begin() + static_cast<std::ptrdiff_t>(root), 124,
                file().begin() + static_cast<std::ptrdiff_t>(root + kHalf));
    put_checksum(root + 124, root, 124);
    put_checksum(root + kHalf + 124, root + kHalf, 124);
  }
  void repair_dictionary() {
    put_checksum(root + 56, dictionary, dictionary_bytes);
    repair_root();
  }

  // Reads, checks and writes what is there now; true where a reader gets something.
  bool use() {
    const std::size_t most = file().size() + kConstantNeeds;
    fmdtest::largest_allocation = 0;
    std::vector<Body> found;
    const kdcdb::Status read = kdcdbtest::read_bodies(master, found);
    const kdcdb::Status checked = kdcdbtest::check(master);
    EXPECT_LE(fmdtest::largest_allocation, most);
    if (!is_forged && read == kdcdb::kOk) {
      EXPECT_TRUE(found == bodies || found == std::vector<Body>(bodies.begin(), bodies.begin() + 2));
    }
    EXPECT_TRUE(read == kdcdb::kOk || read == kdcdb::kDamaged || read == kdcdb::kNotADatabase) << read;
    EXPECT_TRUE(checked == kdcdb::kOk || read != kdcdb::kOk || checked == kdcdb::kDamaged) << checked;
    const Body next = make_body("next", 9, {5000});
    const kdcdb::Status written = export_bodies(base, {next});
    EXPECT_LE(file().size(), pristine.size() + 20 * kPage);
    if (written == kdcdb::kOk && read == kdcdb::kOk) {
      std::vector<Body> again;
      EXPECT_EQ(kdcdbtest::read_bodies(master, again), kdcdb::kOk);
      found.push_back(next);
      EXPECT_EQ(again, found);
    }
    return read == kdcdb::kOk;
  }
  // Each value at each place in turn, then the repair, then use.
  template <typename Repair>
  void forge(std::size_t from, std::size_t bytes, Repair repair) {
    for (std::size_t at = from; at < from + bytes; ++at) {
      for (const int flip : {0x01, 0x80, 0xFF}) {
        file() = pristine;
        file()[at] = static_cast<unsigned char>(file()[at] ^ flip);
        repair();
        use();
      }
    }
    const std::uint64_t values[] = {0,
                                    1,
                                    3,
                                    0x7FFFFFFF,
                                    0xFFFFFFFF,
                                    std::uint64_t{1} << 49,
                                    std::uint64_t{1} << 56,
                                    std::uint64_t{1} << 63,
                                    UINT64_MAX};
    for (std::size_t at = from; at + 8 <= from + bytes; at += 4) {
      for (const std::uint64_t value : values) {
        file() = pristine;
        std::memcpy(file().data() + at, &value, 8);
        repair();
        use();
      }
    }
  }

  MemoryDisk disk;
  const std::string base = MemoryDisk::path("b");
  const std::string master = base + ".MASTER";
  FileBytes pristine;
  std::vector<Body> bodies;
  bool is_forged = true;  // the checksums are right: what is read may be anything
  std::size_t root = 0;
  std::size_t dictionary = 0;
  std::size_t dictionary_bytes = 0;
};

TEST_F(HostileFileTest, PristineFileIsUsable) {
  EXPECT_TRUE(use());
}

TEST_F(HostileFileTest, CutAtAnyLengthLosesNoMoreThanWasCut) {
  for (std::size_t size = 0; size <= pristine.size(); size += size < 1100 || size % kPage < 140 ? 1 : 67) {
    file() = FileBytes(pristine.begin(), pristine.begin() + static_cast<std::ptrdiff_t>(size));
    std::vector<Body> found;
    const kdcdb::Status read = kdcdbtest::read_bodies(master, found);
    EXPECT_EQ(export_bodies(base, {}) == kdcdb::kOk, size == pristine.size()) << size;
    if (size == pristine.size()) {
      EXPECT_EQ(found, bodies);
    } else if (read == kdcdb::kOk) {
      EXPECT_EQ(found.size(), 2U) << size;  // the state before the last write
    } else {
      EXPECT_EQ(read, size < 1024 ? kdcdb::kNotADatabase : kdcdb::kDamaged) << size;
    }
  }
}

TEST_F(HostileFileTest, FlippedBytesOfTheHeaderAreNoticedOrHarmless) {
  is_forged = false;
  forge(0, 1024, [] {});
}

TEST_F(HostileFileTest, ForgedHeaderIsUsedSafely) {
  forge(512, 40, [this] { put_checksum(1020, 0, 1020); });
}

TEST_F(HostileFileTest, FlippedBytesOfARootAreNoticed) {
  is_forged = false;
  forge(root, 128, [] {});
}

TEST_F(HostileFileTest, ForgedRootIsUsedSafely) {
  forge(root, 124, [this] { repair_root(); });
}

TEST_F(HostileFileTest, ForgedOlderRootIsUsedSafely) {
  root = 3 * kPage - root;
  forge(root, 124, [this] { repair_root(); });
}

TEST_F(HostileFileTest, FlippedBytesOfTheDictionaryAreNoticed) {
  is_forged = false;
  forge(dictionary, dictionary_bytes, [] {});
}

TEST_F(HostileFileTest, ForgedDictionaryIsUsedSafely) {
  forge(dictionary, dictionary_bytes, [this] { repair_dictionary(); });
}

TEST_F(HostileFileTest, ForgedDirectoryIsUsedSafely) {
  const std::size_t entry = dictionary + 16;
  const std::size_t directory = number(entry + 72) * kPage;
  const std::size_t bytes = number(entry + 80);
  forge(directory, bytes, [&] {
    put_checksum(entry + 88, directory, bytes);
    repair_dictionary();
  });
}

TEST_F(HostileFileTest, ManyForgedBytesAtOnceAreUsedSafely) {
  std::mt19937 random(2024);
  for (int run = 0; run < 3000; ++run) {
    file() = pristine;
    for (unsigned count = random() % 8 + 1; count > 0; --count) {
      const std::size_t at =
          random() % 2 == 0 ? dictionary + random() % dictionary_bytes : root + 16 + random() % 44;
      file()[at] = static_cast<unsigned char>(random());
    }
    // Where the root leads to the dictionary still, its checksum is made to fit.
    if (number(root + 24) * kPage == dictionary && number(root + 32) == dictionary_bytes) repair_dictionary();
    repair_root();
    use();
  }
}

}  // namespace
