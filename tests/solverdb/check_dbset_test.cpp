// What is said of a file that is to be a database, for headers composed by hand in each layout.
#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <fstream>
#include <utility>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"
#include "kdcdb/kdcdb.h"
#include "solverdb/dbset_header.h"
#include "support/failing_file_system.h"
#include "support/session.h"

namespace {

using Strings = std::vector<std::string>;

constexpr int kWords = 256;

std::uint32_t reversed(std::uint32_t word) {
  return word >> 24 | (word >> 8 & 0xFF00U) | (word << 8 & 0xFF0000U) | word << 24;
}

enum class Layout { kOwn, kReversed, kWideReversed, kWide };

// A header in one of the layouts; words beyond the block are dropped.
class Header {
 public:
  explicit Header(Layout layout = Layout::kOwn) : layout_(layout) {}

  Header& value(int k, std::int32_t number) {
    const auto word = static_cast<std::uint32_t>(number);
    switch (layout_) {
      case Layout::kOwn:
        return put(k, word);
      case Layout::kReversed:
        return put(k, reversed(word));
      case Layout::kWideReversed:
        return put(2 * k + 1, reversed(word));
      case Layout::kWide:
        return put(2 * k, word);
    }
    return *this;
  }
  Header& text(int k, const char* four) {
    std::uint32_t word;
    std::memcpy(&word, four, sizeof word);
    return put(layout_ == Layout::kOwn || layout_ == Layout::kReversed ? k : 2 * k, word);
  }
  Header& signature(int offset) {
    return value(6, offset).text(offset + 3, "*TIM").text(offset + 4, "E ST").text(offset + 5, "AMP*");
  }
  Header& machine_record(int offset, int machine, const char* version, int format) {
    return value(10, offset).value(offset + 3, machine).text(offset + 8, version).value(offset + 15, format);
  }
  Header& name_record(int offset, const char* first, const char* second) {
    return value(8, offset).text(offset + 3, first).text(offset + 4, second);
  }
  const std::array<std::uint32_t, kWords>& words() const { return words_; }

 private:
  Header& put(int at, std::uint32_t word) {
    if (at >= 0 && at < kWords) words_[static_cast<std::size_t>(at)] = word;
    return *this;
  }

  Layout layout_;
  std::array<std::uint32_t, kWords> words_{};
};

Header sound_header(Layout layout = Layout::kOwn, int format = 2) {
  Header header(layout);
  header.value(3, 11).value(4, 4096).value(5, 3).signature(16).name_record(32, "MAST", "ER  ");
  return header.machine_record(48, 39, "20.1", format);
}

class CheckDBset : public fmdtest::SessionTest {
 protected:
  void write(const Header& header, std::size_t bytes = sizeof(header.words())) {
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(header.words().data()), static_cast<std::streamsize>(bytes));
  }
  int check(const Header& header) {
    write(header);
    return check();
  }
  int check() {
    log.clear();
    return DB_CheckDBset(path.data());
  }
  fmd::DBsetHeaderInfo read(const Header& header) {
    write(header);
    fmd::DBsetHeaderInfo info;
    fmd::ReadDBsetHeader(path.c_str(), info);
    return info;
  }

  std::string path = "HAND.MASTER";
};

std::string bad_header(const char* reason) {
  return "E:The specified KD DB file exists.\nHowever, the timestamp header could not be validated.\n" +
         std::string(reason);
}

const Strings kBadOffset = {bad_header("Reason: Timestamp signature offset is invalid.")};
const Strings kBadSignature = {bad_header("Reason: Timestamp signature is invalid.")};
const Strings kBadFormat = {
    bad_header("Reason: Floating point, endian word length invalid for this platform.")};
const Strings kBadBuffsize = {bad_header("Reason: DBset record length (BUFFSIZE) is out of range. ")};

Strings foreign(const char* file) {
  return {
      "E:The specified KD DB file is valid but its numeric format \nis not compatible with this platform.\n"
      "Current Platform: 32-bit/little-endian/IEEE \nKD DB file      : " +
      std::string(file) + ".  "};
}

TEST_F(CheckDBset, SoundHeaderIsSilent) {
  EXPECT_EQ(check(sound_header()), 0);
  EXPECT_EQ(log.all, Strings{});
}

TEST_F(CheckDBset, ForeignLayoutsAreToldWithBothFormats) {
  EXPECT_EQ(check(sound_header(Layout::kReversed, 0)), 1);
  EXPECT_EQ(log.all, foreign("32-bit/big-endian/IEEE"));
  EXPECT_EQ(check(sound_header(Layout::kWideReversed, 1 + 4)), 1);
  EXPECT_EQ(log.all, foreign("64-bit/big-endian/CRAY"));
  EXPECT_EQ(check(sound_header(Layout::kWide, 1 + 2 + 8)), 1);
  EXPECT_EQ(log.all, foreign("64-bit/little-endian/IBM"));
  EXPECT_EQ(check(sound_header(Layout::kReversed, 12)), 1);
  EXPECT_EQ(log.all, foreign("32-bit/big-endian/VAX"));
}

TEST_F(CheckDBset, MissingFileIsNotFound) {
  EXPECT_EQ(check(), 2);
  EXPECT_EQ(log.all, Strings{"E:The KD DB file HAND.MASTER could not be found."});
}

class DenyingFileSystem : public fmd::FileSystem {
 public:
  DenyingFileSystem() { fmd::replace_file_system(this); }
  ~DenyingFileSystem() override { fmd::replace_file_system(nullptr); }
  int stat(const char*, struct stat*) override {
    errno = EACCES;
    return -1;
  }
};

TEST_F(CheckDBset, DeniedFileIsAWarning) {
  write(sound_header());
  const DenyingFileSystem denying;
  EXPECT_EQ(check(), 3);
  EXPECT_EQ(log.all, Strings{"W:KD DB file HAND.MASTER could be read-only."});
  fmd::DBsetHeaderInfo info;
  EXPECT_EQ(fmd::ReadDBsetHeader(path.c_str(), info), fmd::kDBsetNoPermission);
  EXPECT_EQ(info.system_error, EACCES);
}

TEST_F(CheckDBset, OtherFailuresOfTheStatusAreUnknown) {
  write(sound_header());
  path = "HAND.MASTER/below";
  EXPECT_EQ(check(), -1);
  EXPECT_EQ(log.all,
            Strings{"E:An unknown error was encountered while opening KD DB file HAND.MASTER/below."});
}

TEST_F(CheckDBset, DirectoryIsNoRegularFile) {
  std::filesystem::create_directory(path);
  EXPECT_EQ(check(), 4);
  EXPECT_EQ(log.all, Strings{"E:Specified KD DB file HAND.MASTER not a normal/regular file."});
}

TEST_F(CheckDBset, FileThatDoesNotOpenIsTold) {
  write(sound_header());
  const fmdtest::FailingFileSystem failing(1, EACCES);
  EXPECT_EQ(check(), 5);
  EXPECT_EQ(log.all, Strings{"E:Unable to open the KD DB file HAND.MASTER."});
}

TEST_F(CheckDBset, FileBelow1024BytesIsTooShort) {
  for (const std::size_t bytes : {std::size_t{0}, std::size_t{1}, std::size_t{1023}}) {
    write(sound_header(), bytes);
    EXPECT_EQ(check(), 6) << bytes;
    EXPECT_EQ(log.all, Strings{"E:KD DB file HAND.MASTER is too short."}) << bytes;
  }
  write(sound_header(), 1024);
  EXPECT_EQ(check(), 0);
}

TEST_F(CheckDBset, FailedReadIsTold) {
  write(sound_header());
  const fmdtest::FailingFileSystem failing(2, EIO);
  EXPECT_EQ(check(), 7);
  EXPECT_EQ(log.all, Strings{"E:Read failed for the KD DB file HAND.MASTER."});
}

TEST_F(CheckDBset, HeaderOfNoLayoutIsToldByItsOffset) {
  EXPECT_EQ(check(Header()), 10);
  EXPECT_EQ(log.all, kBadOffset);
}

TEST_F(CheckDBset, EachOffsetHasItsBounds) {
  const std::vector<std::pair<int, int>> bad = {{3, 0},    {3, 253}, {3, -1},  {5, 2},  {6, 10},
                                                {6, 253},  {8, 0},   {8, 253}, {8, -5}, {10, 10},
                                                {10, 253}, {3, 17},  {3, 49},  {5, -3}};
  for (const auto& [word, number] : bad) {
    EXPECT_EQ(check(sound_header().value(word, number)), 10) << word << ' ' << number;
    EXPECT_EQ(log.all, kBadOffset) << word << ' ' << number;
  }
  EXPECT_EQ(check(sound_header().value(3, 1)), 0);
  EXPECT_EQ(check(sound_header().value(3, 16)), 0);  // where the first record is
  EXPECT_EQ(check(sound_header().value(5, 1 << 30)), 0);
  EXPECT_EQ(check(sound_header().value(8, 1)), 0);
  EXPECT_EQ(check(sound_header().value(8, 252)), 0);
}

TEST_F(CheckDBset, MissingSignatureOfTheOwnLayoutEndsTheSearch) {
  EXPECT_EQ(check(sound_header().text(21, "AMP ")), 11);
  EXPECT_EQ(log.all, kBadSignature);
  EXPECT_EQ(check(sound_header().text(19, "*tim")), 11);
  EXPECT_EQ(check(sound_header().text(20, "E-ST")), 11);

  // Words that make a sound header of pairs of words, and legal offsets of single ones.
  Header pairs(Layout::kWide);
  pairs.value(3, 20).value(4, 30).value(5, 40).signature(50).value(8, 60).value(10, 70);
  EXPECT_EQ(check(pairs), 1);
  std::array<std::uint32_t, kWords> words = pairs.words();
  words[3] = 1;
  words[5] = 3;
  std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(words.data()), sizeof words);
  EXPECT_EQ(check(), 11);
  EXPECT_EQ(log.all, kBadSignature);
}

TEST_F(CheckDBset, SignatureBeyondTheWordsReadIsMissing) {
  EXPECT_EQ(check(sound_header().signature(250)), 0);
  for (const int offset : {251, 252}) {
    EXPECT_EQ(check(sound_header().signature(offset)), 11) << offset;
    EXPECT_EQ(log.all, kBadSignature);
  }
}

TEST_F(CheckDBset, SignatureOfPairsOfWordsMustLieWithinTheWordsRead) {
  for (const Layout layout : {Layout::kWide, Layout::kWideReversed}) {
    EXPECT_EQ(check(sound_header(layout).signature(122)), 1);
    EXPECT_EQ(check(sound_header(layout).signature(123)), 10);
    EXPECT_EQ(check(sound_header(layout).signature(252)), 10);
    EXPECT_EQ(log.all, kBadOffset);
  }
  EXPECT_EQ(check(sound_header(Layout::kReversed).signature(250)), 1);
  EXPECT_EQ(check(sound_header(Layout::kReversed).signature(252)), 10);
}

TEST_F(CheckDBset, OwnLayoutNeedsTheOwnNumericFormat) {
  for (const int format : {0, 1, 3, 4, 6, 14, 18, -1}) {
    EXPECT_EQ(check(sound_header(Layout::kOwn, format)), 12) << format;
    EXPECT_EQ(log.all, kBadFormat) << format;
  }
}

TEST_F(CheckDBset, FormatBeyondTheWordsReadIsNone) {
  EXPECT_EQ(check(sound_header().machine_record(240, 39, "20.1", 2)), 0);
  for (const int offset : {241, 252}) {
    EXPECT_EQ(check(sound_header().machine_record(offset, 39, "20.1", 2)), 12) << offset;
    EXPECT_EQ(log.all, kBadFormat);
  }
  // The other layouts do not test it: a word that is not there is told as zero.
  EXPECT_EQ(check(sound_header(Layout::kWide).machine_record(200, 39, "20.1", 3)), 1);
  EXPECT_EQ(log.all, foreign("32-bit/big-endian/IEEE"));
}

TEST_F(CheckDBset, BuffsizeLiesBetweenOneAndTheLimit) {
  std::int32_t limit = 0;
  std::int32_t second = 0;
  kdcdb::GetBuffsizeLimit(&limit, &second);
  ASSERT_GT(limit, 1);
  for (const std::int32_t words : {1, 2, limit}) EXPECT_EQ(check(sound_header().value(4, words)), 0) << words;
  for (const std::int32_t words : {0, -1, limit + 1, INT32_MAX, INT32_MIN}) {
    EXPECT_EQ(check(sound_header().value(4, words)), 13) << words;
    EXPECT_EQ(log.all, kBadBuffsize) << words;
    for (const Layout layout : {Layout::kReversed, Layout::kWide, Layout::kWideReversed})
      EXPECT_EQ(check(sound_header(layout).value(4, words)), 10) << words;
  }
}

TEST_F(CheckDBset, FirstFaultOfTheOwnLayoutIsTheOneTold) {
  const Header header = sound_header(Layout::kOwn, 1).value(4, 0).text(19, "none");
  EXPECT_EQ(check(header), 11);
  EXPECT_EQ(check(sound_header(Layout::kOwn, 1).value(4, 0)), 12);
}

TEST_F(CheckDBset, RecordTellsWhatTheHeaderSays) {
  Header header = sound_header().value(4, 512);
  header.value(22, 240131).value(23, 235959).value(24, 991201).value(25, 10203).value(26, 77);
  const fmd::DBsetHeaderInfo info = read(header);
  EXPECT_EQ(info.system_error, 0);
  EXPECT_EQ(info.buffsize, 512);
  EXPECT_EQ(info.records, 0);  // 1024 bytes are half of one
  EXPECT_EQ(info.platform.code, 2);
  EXPECT_EQ(info.file.code, 2);
  EXPECT_EQ(info.file.word_size, 0);
  EXPECT_EQ(info.file.byte_order, 1);
  EXPECT_EQ(info.file.float_format, 0);
  EXPECT_FALSE(info.unreadable);
  EXPECT_EQ(info.machine, 39);
  EXPECT_STREQ(info.machine_name, "Linux");
  EXPECT_EQ(info.version_year, 2020);
  EXPECT_EQ(info.version_minor, 1);
  const std::array<std::array<int, 3>, 4> stamps = {{{24, 1, 31}, {23, 59, 59}, {99, 12, 1}, {1, 2, 3}}};
  EXPECT_EQ(info.stamps, stamps);
  EXPECT_EQ(info.further_stamp, 77);
  EXPECT_STREQ(info.name, "MASTER  ");
  EXPECT_TRUE(info.is_master);
}

TEST_F(CheckDBset, LengthIsCountedInRecordsOfTheFilesOwnWords) {
  EXPECT_EQ(read(sound_header().value(4, 16)).records, 1024 / 64);
  EXPECT_EQ(read(sound_header(Layout::kWide, 3).value(4, 16)).records, 1024 / 128);
  EXPECT_EQ(read(sound_header().value(4, 100)).records, 2);
  EXPECT_EQ(read(sound_header().value(4, INT32_MAX)).records, 0);
  EXPECT_EQ(read(sound_header().value(4, 0)).records, 0);
}

TEST_F(CheckDBset, VersionIsAYearAndANumberBehindThePoint) {
  const auto version = [&](const char* text) {
    const fmd::DBsetHeaderInfo info = read(sound_header().machine_record(48, 39, text, 2));
    return std::make_pair(info.version_year, info.version_minor);
  };
  EXPECT_EQ(version("29.3"), std::make_pair(2029, 3));
  EXPECT_EQ(version("30.4"), std::make_pair(30, 4));
  EXPECT_EQ(version("1.12"), std::make_pair(2001, 12));
  EXPECT_EQ(version("2019"), std::make_pair(2019, 0));
  EXPECT_EQ(version("none"), std::make_pair(0, 0));
}

TEST_F(CheckDBset, MachinesHaveNames) {
  const std::vector<std::pair<int, const char*>> machines = {{1, "Compaq OpenVMS"},
                                                             {2, "IBM MVS"},
                                                             {5, "Cray"},
                                                             {9, "HP-UX"},
                                                             {17, "Convex"},
                                                             {19, "Sun-3"},
                                                             {20, "Intel 386 (SCO)"},
                                                             {21, "Hitachi"},
                                                             {22, "NEC"},
                                                             {24, "Sun Solaris"},
                                                             {27, "Silicon Graphics"},
                                                             {30, "AIX"},
                                                             {32, "Fujitsu"},
                                                             {34, "Compaq Alpha"},
                                                             {35, "Sun Solaris"},
                                                             {36, "Windows"},
                                                             {37, "Fujitsu"},
                                                             {38, "Windows"},
                                                             {39, "Linux"},
                                                             {0, "Unknown"},
                                                             {3, "Unknown"},
                                                             {40, "Unknown"},
                                                             {-1, "Unknown"}};
  for (const auto& [code, name] : machines)
    EXPECT_STREQ(read(sound_header().machine_record(48, code, "20.1", 2)).machine_name, name) << code;
}

TEST_F(CheckDBset, OtherSetsAreNoMasterAndPassAllTheSame) {
  const Header header = sound_header().name_record(32, "DBAL", "L   ");
  const fmd::DBsetHeaderInfo info = read(header);
  EXPECT_STREQ(info.name, "DBALL   ");
  EXPECT_FALSE(info.is_master);
  EXPECT_EQ(check(), 0);
  const fmd::DBsetHeaderInfo beyond = read(sound_header().name_record(252, "MAST", "ER  "));
  EXPECT_FALSE(beyond.is_master);
}

class UnreadableFiles : public fmd::FileSystem {
 public:
  UnreadableFiles() { fmd::replace_file_system(this); }
  ~UnreadableFiles() override { fmd::replace_file_system(nullptr); }
  int access(const char*, int) override {
    errno = EACCES;
    return -1;
  }
};

TEST_F(CheckDBset, UnreadableFileIsNoted) {
  write(sound_header());
  const UnreadableFiles unreadable;
  fmd::DBsetHeaderInfo info;
  EXPECT_EQ(fmd::ReadDBsetHeader(path.c_str(), info), fmd::kDBsetUsable);
  EXPECT_TRUE(info.unreadable);
}

TEST_F(CheckDBset, OwnDatabasesPass) {
  ASSERT_EQ(DB_StartBase(), 1);
  int checked = 0;
  for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
    if (entry.path().extension() != ".MASTER") continue;
    path = entry.path();
    EXPECT_EQ(check(), 0);
    fmd::DBsetHeaderInfo info;
    fmd::ReadDBsetHeader(path.c_str(), info);
    EXPECT_TRUE(info.is_master);
    EXPECT_STREQ(info.machine_name, "Linux");
    EXPECT_EQ(info.file.code, 2);
    ++checked;
  }
  EXPECT_EQ(checked, 1);
}

}  // namespace
