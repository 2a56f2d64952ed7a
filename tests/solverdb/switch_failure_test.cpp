// Exports that fail: what is said, what the target holds then, and that the next session works.
#include <gtest/gtest.h>
#include <sys/file.h>

#include <cstring>
#include <fstream>
#include <map>
#include <memory>
#include <regex>
#include <set>

#include "kdcdb/locks.h"
#include "solverdb/stored_bodies.h"
#include "support/failing_file_system.h"

namespace {

namespace fs = std::filesystem;
using fmdtest::numbers_of;
using fmdtest::Strings;
using fmdtest::vectors_of;

std::string bytes_of(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

std::string refusal(const std::string& path) {
  return "Unable to open " + path + " for write. Please check the name and qualifier.";
}

class FailedExport : public fmdtest::StoredBodiesTest {
 protected:
  // Databases A and B of one body each; the bodies of the test are one of A and one made for writing.
  void SetUp() override {
    make_database("A.MASTER", {1});
    make_database("B.MASTER", {2});
    FMD_Terminate();
    begin();
    stored_a = vectors_of(a);
    b_before = bytes_of("B.MASTER");
  }

  void begin() {
    a = open("A.MASTER");
    made = fmdtest::make_large_body(3, 40, 3, false);
    ASSERT_NE(a, nullptr);
  }

  void expect_refused(const std::string& path, Strings before = {}) {
    EXPECT_EQ(store(made, path), 0);
    before.push_back(refusal(path));
    EXPECT_EQ(log.errors, before);
  }

  // The session has stopped where it stood, with all blocks closed.
  void expect_closed() {
    std::vector<double> values(6 * 700);
    EXPECT_EQ(FMD_Read_Mode_Double(a, 1, 0, values.data()), 0);
    EXPECT_EQ(FMD_Read_Mode_Double(made, 1, 0, values.data()), 0);
  }

  // After its end another one reads and writes, and these files alone are there meanwhile and afterwards.
  void expect_new_session(const Strings& expected_files) {
    FMD_Terminate();
    EXPECT_EQ(files(), expected_files);
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), {}),
              static_cast<std::ptrdiff_t>(expected_files.size()));
    log.clear();
    begin();
    EXPECT_TRUE(vectors_of(a) == stored_a);
    EXPECT_EQ(store(made, "NEXT.MASTER"), 1);
    EXPECT_EQ(store(a, "NEXT.MASTER", "SELABEL='a'"), 1);
    EXPECT_EQ(log.errors, Strings{});
    EXPECT_EQ(count("NEXT.MASTER"), 2);
  }

  FmdBody* a = nullptr;
  FmdBody* made = nullptr;
  std::string stored_a;
  std::string b_before;
};

TEST_F(FailedExport, MissingFolder) {
  expect_refused("none/C.MASTER");
  expect_closed();
  expect_new_session({"A.MASTER", "B.MASTER"});
}

TEST_F(FailedExport, FileThatIsNoDatabase) {
  const std::string text(5000, 'x');
  std::ofstream("C.MASTER") << text;
  expect_refused("C.MASTER", {"The specified KD DB file exists.\nHowever, the timestamp header could not be "
                              "validated.\nReason: Timestamp signature offset is invalid."});
  EXPECT_EQ(bytes_of("C.MASTER"), text);
  expect_closed();
  expect_new_session({"A.MASTER", "B.MASTER", "C.MASTER"});
}

TEST_F(FailedExport, ShortFile) {
  std::ofstream("C.MASTER") << "x";
  expect_refused("C.MASTER", {"KD DB file C.MASTER is too short."});
  expect_new_session({"A.MASTER", "B.MASTER", "C.MASTER"});
  EXPECT_EQ(bytes_of("C.MASTER"), "x");
}

TEST_F(FailedExport, Directory) {
  fs::create_directory("C.MASTER");
  expect_refused("C.MASTER", {"Specified KD DB file C.MASTER not a normal/regular file."});
  expect_new_session({"A.MASTER", "B.MASTER", "C.MASTER"});
}

TEST_F(FailedExport, DamagedDatabase) {
  std::string damaged = b_before;
  for (std::size_t at = 16384; at < 3 * 16384; ++at) damaged[at] = '\x55';
  std::ofstream("B.MASTER", std::ios::binary) << damaged;
  expect_refused("B.MASTER", {"The database B.MASTER is damaged. Run fmdtool check on it."});
  EXPECT_TRUE(bytes_of("B.MASTER") == damaged);
  expect_closed();
  expect_new_session({"A.MASTER", "B.MASTER"});
}

// As for anybody but the superuser.
class ReadOnlyFiles : public fmd::FileSystem {
 public:
  explicit ReadOnlyFiles(std::string name) : name_(std::move(name)) { fmd::replace_file_system(this); }
  ~ReadOnlyFiles() override { fmd::replace_file_system(nullptr); }
  int open(const char* path, int flags, mode_t mode) override {
    if ((flags & O_ACCMODE) != O_RDONLY && fs::path(path).filename() == name_) {
      errno = EACCES;
      return -1;
    }
    return FileSystem::open(path, flags, mode);
  }

 private:
  std::string name_;
};

TEST_F(FailedExport, ReadOnlyDatabase) {
  auto read_only = std::make_unique<ReadOnlyFiles>("B.MASTER");
  expect_refused("B.MASTER");
  expect_closed();
  read_only.reset();
  EXPECT_TRUE(bytes_of("B.MASTER") == b_before);
  expect_new_session({"A.MASTER", "B.MASTER"});
}

TEST_F(FailedExport, DatabaseThatAnotherWriterHas) {
  const int file = ::open("B.MASTER", O_RDWR | O_CLOEXEC);
  struct flock range {};
  range.l_type = F_WRLCK;
  range.l_whence = SEEK_SET;
  range.l_start = kdcdb::kWriterLockByte;
  range.l_len = 1;
  ASSERT_EQ(fcntl(file, F_OFD_SETLK, &range), 0);
  expect_refused("B.MASTER");
  expect_closed();
  FMD_Terminate();
  begin();
  EXPECT_TRUE(vectors_of(open("B.MASTER")) == vectors_of(fmdtest::make_large_body(2)));  // it can be read
  expect_refused("B.MASTER");
  EXPECT_TRUE(bytes_of("B.MASTER") == b_before);
  ::close(file);
  expect_new_session({"A.MASTER", "B.MASTER"});
  EXPECT_EQ(store(made, "B.MASTER", "SELABEL='made'"), 1);
}

TEST_F(FailedExport, BadQualifiers) {
  EXPECT_EQ(store(made, "B.MASTER", "COLOUR=2"), 0);
  EXPECT_EQ(log.errors, (Strings{"Cannot create fmd datablock, 3.", refusal("B.MASTER")}));
  // The session stands on the target, where the body is open.
  std::vector<double> values(6 * 40);
  EXPECT_EQ(FMD_Read_Mode_Double(made, 1, 0, values.data()), 1);
  expect_new_session({"A.MASTER", "B.MASTER"});
  EXPECT_TRUE(bytes_of("B.MASTER") == b_before);
}

TEST_F(FailedExport, WriteThatBreaksOff) {
  for (const char* target : {"B.MASTER", "C.MASTER"}) {
    EXPECT_EQ(store(made, target, "SELABEL='broken'", "82_comp,single"), 0);
    EXPECT_EQ(log.errors,
              (Strings{"8.2 compatible FMD cannot be single precision", "Problem writing version number."}));
    FMD_Terminate();
    begin();
  }
  EXPECT_EQ(count("C.MASTER"), 0);
  EXPECT_TRUE(bytes_of("B.MASTER") == b_before);
  expect_new_session({"A.MASTER", "B.MASTER", "C.MASTER"});
  EXPECT_EQ(store(made, "C.MASTER"), 1);
}

TEST_F(FailedExport, LaterWritesInTheSameSessionDoNoHarm) {
  EXPECT_EQ(store(made, "none/C.MASTER"), 0);
  EXPECT_EQ(store(made, "B.MASTER", "COLOUR=2"), 0);
  store(a, "B.MASTER", "SELABEL='a'");
  store(made, "D.MASTER", "SELABEL='m'");
  FMD_Terminate();
  EXPECT_TRUE(vectors_of(open("B.MASTER")) == vectors_of(fmdtest::make_large_body(2)));
}

TEST_F(FailedExport, BodiesOfAFailedWriteCanBeReleased) {
  EXPECT_EQ(store(a, "B.MASTER", "COLOUR=2"), 0);
  FMD_DeReference(a);
  FMD_DeReference(made);
  expect_new_session({"A.MASTER", "B.MASTER"});
  EXPECT_EQ(store(a, "none/C.MASTER"), 0);
  FMD_DeReference(a);
  FMD_DeReference(made);
}

TEST_F(FailedExport, UnsetDirectoryVariableStartsNoSession) {
  FMD_Terminate();
  const fmdtest::EnvironmentVariable unset("KXI_KADCDB_DIR", nullptr);
  log.clear();
  EXPECT_EQ(FMD_Create(1, 1), nullptr);
  std::string path = "A.MASTER";
  EXPECT_EQ(FMD_CreateFromFMD(path.data(), 1), nullptr);
  EXPECT_EQ(log.errors, Strings(2, "Cannot get KXI_KADCDB_DIR."));
  EXPECT_EQ(files(), (Strings{"A.MASTER", "B.MASTER"}));
}

// ------------------------------------------------------------ failing calls --

// The disk is full from the n-th call on that needs room. What a file has already can be written again.
class FullDisk : public fmd::FileSystem {
 public:
  explicit FullDisk(long first) : first_(first) { fmd::replace_file_system(this); }
  ~FullDisk() override { fmd::replace_file_system(nullptr); }
  bool has_failed() const { return calls_ >= first_; }

  int open(const char* path, int flags, mode_t mode) override {
    return (flags & O_CREAT) != 0 && fails() ? -1 : FileSystem::open(path, flags, mode);
  }
  ssize_t pwrite(int file, const void* buffer, std::size_t bytes, off_t offset) override {
    struct stat status {};
    FileSystem::fstat(file, &status);
    const bool grows = offset + static_cast<off_t>(bytes) > status.st_size;
    return grows && fails() ? -1 : FileSystem::pwrite(file, buffer, bytes, offset);
  }
  int fallocate(int file, int mode, off_t offset, off_t bytes) override {
    return fails() ? -1 : FileSystem::fallocate(file, mode, offset, bytes);
  }
  int linkat(int file, const char* to) override { return fails() ? -1 : FileSystem::linkat(file, to); }

 private:
  bool fails() {
    if (++calls_ < first_) return false;
    errno = ENOSPC;
    return true;
  }

  long first_;
  long calls_ = 0;
};

enum class Target { kNew, kAdded, kReplaced };

// Exports of a body read from A, and of one made for writing, while one call fails after the other.
class FailingCalls : public fmdtest::StoredBodiesTest, public ::testing::WithParamInterface<Target> {
 protected:
  void make_databases(int nodes) {
    nodes_ = nodes;
    for (const auto& [path, seed] : std::map<std::string, int>{{"A.MASTER", 1}, {"B.MASTER", 2}}) {
      FmdBody* const body = fmdtest::make_large_body(seed, nodes, 3, false);
      ASSERT_EQ(store(body, path, "SELABEL='first'", "no_ortho"), 1);
    }
    FMD_Terminate();
    fs::copy_file("B.MASTER", "pristine");
    stored_b = vectors_of(open("B.MASTER"));
    FMD_Terminate();
  }

  std::string target() const { return GetParam() == Target::kNew ? "C.MASTER" : "B.MASTER"; }
  std::string label() const { return GetParam() == Target::kReplaced ? "SELABEL='first'" : "SELABEL='new'"; }

  // Two live bodies, of which one is exported; what it says is said before.
  FmdBody* prepare(bool from_database) {
    fs::remove("B.MASTER");
    fs::remove("C.MASTER");
    fs::copy_file("pristine", "B.MASTER");
    FmdBody* const read = open("A.MASTER");
    FmdBody* const made = fmdtest::make_large_body(3, nodes_, 3, false);
    EXPECT_NE(read, nullptr);
    // So that the modes are transformed.
    if (read != nullptr) FMD_SetGeneralizedMass(read, 2, 1, 0.125);
    return from_database ? read : made;
  }

  std::set<std::string> labels() {
    std::set<std::string> found;
    std::string path = target();
    if (!fs::exists(path)) return found;
    for (int index = 1; index <= DB_BodyCount(path.data()); ++index) {
      const std::string text = row(path, index);
      found.insert(text.substr(0, text.find(',')));
    }
    return found;
  }

  // What the target holds after the session has ended: the old body as it was, unless a new one has taken its
  // place, and the new one whole where it is there at all. 1 where the new one is there.
  bool check_target(const std::string& written, bool may_be_there) {
    FMD_Terminate();
    Strings expected = {"A.MASTER", "B.MASTER", "pristine"};
    if (fs::exists("C.MASTER")) expected.insert(expected.begin() + 2, "C.MASTER");
    EXPECT_EQ(files(), expected);
    EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), {}),
              static_cast<std::ptrdiff_t>(expected.size()));
    log.clear();
    const std::set<std::string> now = labels();
    EXPECT_EQ(log.errors, Strings{});
    bool is_there = now.count("SELABEL='new'") > 0;
    if (GetParam() != Target::kNew) {
      FmdBody* const first = open(target(), 1);
      EXPECT_NE(first, nullptr);
      const std::string told = first == nullptr ? "" : vectors_of(first);
      if (GetParam() == Target::kReplaced) is_there = told != stored_b;
      if (is_there && GetParam() == Target::kReplaced) {
        EXPECT_TRUE(told == written);
      } else {
        EXPECT_TRUE(told == stored_b);
      }
    }
    if (is_there && GetParam() != Target::kReplaced) {
      EXPECT_TRUE(vectors_of(open(target(), GetParam() == Target::kNew ? 1 : 2)) == written);
    }
    EXPECT_TRUE(may_be_there || !is_there);
    return is_there;
  }

  void expect_next_session() {
    FmdBody* const next = fmdtest::make_large_body(5, 20, 2);
    EXPECT_EQ(store(next, target(), "SELABEL='next'"), 1);
    EXPECT_EQ(log.errors, Strings{});
    FMD_Terminate();
    EXPECT_EQ(labels().count("SELABEL='next'"), 1U);
    FMD_Terminate();
  }

  // What the body says once it has been exported.
  std::string told_when_written(bool from_database) {
    FmdBody* const body = prepare(from_database);
    EXPECT_EQ(store(body, target(), label()), 1);
    std::string written = vectors_of(body);
    FMD_Terminate();
    return written;
  }

  // What an export says of a disk that fails it.
  static void expect_told(const std::string& error) {
    const std::regex known(
        "Insufficient disk space for temporary file\\.|Problem writing .*|Problem closing [BC]\\.MASTER\\.|"
        "Unable to open [BC]\\.MASTER for write\\. Please check the name and qualifier\\.|"
        "Problem reading .*|Cannot open .*datablock, [0-9]+\\.|[0-9]+ .*datablocks are assigned\\.|"
        "Unable to open temporary block for write\\.|.*KD DB file [BC]\\.MASTER\\.");
    EXPECT_TRUE(std::regex_match(error, known)) << error;
  }

  template <typename Disk>
  void sweep(bool from_database, bool strict, Disk make_disk);

  int nodes_ = 0;
  std::set<std::string> told_;  // the first two words of each message
  std::string stored_b;
};

template <typename Disk>
void FailingCalls::sweep(bool from_database, bool strict, Disk make_disk) {
  const std::string written = told_when_written(from_database);
  const std::size_t files_before = fmdtest::open_files();
  int failures = 0;
  bool has_failed = true;
  for (long call = 1; has_failed; ++call) {
    SCOPED_TRACE(call);
    FmdBody* const body = prepare(from_database);
    int result = 0;
    {
      const auto disk = make_disk(call);
      result = store(body, target(), label());
      has_failed = disk->has_failed();
      EXPECT_EQ(result == 0, !log.errors.empty());
      for (const std::string& error : log.errors) {
        expect_told(error);
        told_.insert(error.substr(0, error.find(' ', error.find(' ') + 1)));
      }
      if (result == 0) FMD_Terminate();  // with the disk as it is
    }
    if (result == 0) ++failures;
    const bool is_there = check_target(written, result == 1 || !strict);
    EXPECT_TRUE(result == 0 || is_there);
    FMD_Terminate();
    EXPECT_EQ(fmdtest::open_files(), files_before);
    expect_next_session();
    if (HasFailure()) return;
  }
  EXPECT_GT(failures, 5);
}

// It shows when the target is opened, when scratch data or the body is written, and at the end.
const std::set<std::string> kToldOfAFullDisk = {"Unable to", "Insufficient disk", "Problem writing",
                                                "Problem closing"};

TEST_P(FailingCalls, FullDiskLosesNothingOfABodyFromADatabase) {
  make_databases(1500);  // more than is staged at once
  sweep(true, true, [](long call) { return std::make_unique<FullDisk>(call); });
  EXPECT_EQ(told_, kToldOfAFullDisk);
}

TEST_P(FailingCalls, FullDiskLosesNothingOfABodyMadeForWriting) {
  make_databases(1500);
  sweep(false, true, [](long call) { return std::make_unique<FullDisk>(call); });
  EXPECT_EQ(told_, kToldOfAFullDisk);
}

TEST_P(FailingCalls, AnyFailingCallLosesNothing) {
  make_databases(30);
  sweep(true, false, [](long call) { return std::make_unique<fmdtest::FailingFileSystem>(call, EIO); });
}

std::string name_of(const ::testing::TestParamInfo<Target>& tested) {
  const std::string names[] = {"New", "Added", "Replaced"};
  return names[static_cast<int>(tested.param)];
}

INSTANTIATE_TEST_SUITE_P(Targets, FailingCalls,
                         ::testing::Values(Target::kNew, Target::kAdded, Target::kReplaced), name_of);

}  // namespace
