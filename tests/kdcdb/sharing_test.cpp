// Who may work on a database at the same time, within this process and beside others.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <functional>

#include "kdcdb/master_file.h"
#include "kdcdb/stored_block.h"
#include "kdcdb/stored_bodies.h"
#include "support/memory_disk.h"
#include "support/session.h"

namespace {

using fmdtest::MemoryDisk;
using kdcdbtest::Body;
using kdcdbtest::export_bodies;
using kdcdbtest::make_body;

kdcdb::Status try_to_write(const std::string& master) {
  kdcdb::MasterFile file;
  return file.open(master.c_str());
}

std::vector<std::int32_t> words_of(kdcdb::StoredBlock& block) {
  std::vector<std::int32_t> words(static_cast<std::size_t>(block.words));
  EXPECT_EQ(block.prepare(), kdcdb::kOk);
  EXPECT_EQ(block.read(0, words.data(), block.words), kdcdb::kOk);
  return words;
}

class SharingTest : public ::testing::Test {
 protected:
  MemoryDisk disk;
  const std::string base = MemoryDisk::path("b");
  const std::string master = base + ".MASTER";
};

TEST_F(SharingTest, SecondWriterIsTurnedAwayAndNothingHappensToTheFile) {
  ASSERT_EQ(export_bodies(base, {make_body("a", 1, {100})}), kdcdb::kOk);
  kdcdb::MasterFile first;
  ASSERT_EQ(first.open(master.c_str()), kdcdb::kOk);
  const auto before = disk.bytes("b.MASTER");
  EXPECT_EQ(export_bodies(base, {make_body("a", 2, {100})}), kdcdb::kLocked);
  EXPECT_EQ(disk.bytes("b.MASTER"), before);
  first.close();
  EXPECT_EQ(export_bodies(base, {make_body("a", 2, {100})}), kdcdb::kOk);
}

TEST_F(SharingTest, LockIsHeldFromLeavingTheDatabaseToItsCleanUp) {
  ASSERT_EQ(kdcdb::DbaseBst("m", "./"), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseNew(base.c_str(), "init dbfmd;dbsetdel dball"), kdcdb::kOk);
  ASSERT_EQ(kdcdbtest::write_body(make_body("a", 1, {10})), kdcdb::kOk);
  EXPECT_EQ(try_to_write(master), kdcdb::kLocked);
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  EXPECT_EQ(try_to_write(master), kdcdb::kLocked);
  kdcdb::DbaseBst("m", "./");
  ASSERT_EQ(kdcdb::DbaseOld(base.c_str(), "dbsetdel dbfmd"), kdcdb::kOk);
  EXPECT_EQ(try_to_write(master), kdcdb::kLocked);
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  EXPECT_EQ(try_to_write(master), kdcdb::kOk);
}

// The session's own file was replaced meanwhile: the lock on the old one is worth nothing.
TEST_F(SharingTest, HeldLockOnAFileThatWasReplacedIsGivenUp) {
  ASSERT_EQ(kdcdb::DbaseBst("m", "./"), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseNew(base.c_str(), "init dbfmd;dbsetdel dball"), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  const auto bytes = disk.bytes("b.MASTER");
  disk.unlink(master.c_str());
  disk.put("b.MASTER", bytes);
  kdcdb::DbaseBst("m", "./");
  ASSERT_EQ(kdcdb::DbaseOld(base.c_str(), "dbsetdel dbfmd"), kdcdb::kOk);
  EXPECT_EQ(try_to_write(master), kdcdb::kLocked);
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
}

TEST_F(SharingTest, PagesOfAReaderAreNeitherUsedAgainNorCutOff) {
  const Body first = make_body("a", 1, {50000});
  const Body other = make_body("b", 2, {30000});
  ASSERT_EQ(export_bodies(base, {first, other}), kdcdb::kOk);
  std::shared_ptr<const kdcdb::StoredFile> stored;
  ASSERT_EQ(kdcdb::StoredFile::open(master.c_str(), nullptr, stored), kdcdb::kOk);
  kdcdb::StoredBlock block(stored, 0);
  const auto words = words_of(block);
  ASSERT_EQ(words.size(), 50001U);
  std::size_t size = disk.bytes("b.MASTER").size();
  for (int i = 0; i < 5; ++i) {
    ASSERT_EQ(export_bodies(base, {make_body("a", 10 + i, {50000}), make_body("c", 20 + i, {10})}),
              kdcdb::kOk);
    EXPECT_GT(disk.bytes("b.MASTER").size(), size);  // only the end of the file is free
    size = disk.bytes("b.MASTER").size();
    kdcdb::StoredBlock fresh(stored, 0);  // reads the directory anew as well
    EXPECT_EQ(words_of(fresh), words);
    kdcdb::StoredBlock second(stored, 1);
    EXPECT_EQ(words_of(second).size(), 30001U);
  }
  // The same state is one open file, a newer one another.
  std::shared_ptr<const kdcdb::StoredFile> now;
  ASSERT_EQ(kdcdb::StoredFile::open(master.c_str(), stored, now), kdcdb::kOk);
  EXPECT_NE(now, stored);
  EXPECT_EQ(now->entries().size(), 3U);
  std::shared_ptr<const kdcdb::StoredFile> again;
  ASSERT_EQ(kdcdb::StoredFile::open(master.c_str(), now, again), kdcdb::kOk);
  EXPECT_EQ(again, now);
}

TEST_F(SharingTest, SpaceComesBackWhenTheLastReaderHasGone) {
  std::shared_ptr<const kdcdb::StoredFile> stored;
  ASSERT_EQ(export_bodies(base, {make_body("a", 1, {50000})}), kdcdb::kOk);
  ASSERT_EQ(kdcdb::StoredFile::open(master.c_str(), nullptr, stored), kdcdb::kOk);
  for (int i = 0; i < 5; ++i) ASSERT_EQ(export_bodies(base, {make_body("a", i, {50000})}), kdcdb::kOk);
  const std::size_t size = disk.bytes("b.MASTER").size();
  stored.reset();
  for (int i = 0; i < 3; ++i) ASSERT_EQ(export_bodies(base, {make_body("a", i, {50000})}), kdcdb::kOk);
  EXPECT_LT(disk.bytes("b.MASTER").size(), size);
  EXPECT_EQ(kdcdbtest::check(master), kdcdb::kOk);
}

// A reader that comes while the writer is at work has the state before the commit, to its end.
TEST_F(SharingTest, ReaderThatComesDuringAWriteReadsTheStateBefore) {
  const Body first = make_body("a", 1, {50000});
  ASSERT_EQ(export_bodies(base, {first}), kdcdb::kOk);
  ASSERT_EQ(export_bodies(base, {make_body("b", 2, {10})}), kdcdb::kOk);
  kdcdb::DbaseBst("m", "./");
  ASSERT_EQ(kdcdb::DbaseOld(base.c_str(), "init dbfmd"), kdcdb::kOk);
  ASSERT_EQ(kdcdbtest::write_body(make_body("a", 3, {70000})), kdcdb::kOk);
  std::shared_ptr<const kdcdb::StoredFile> stored;
  ASSERT_EQ(kdcdb::StoredFile::open(master.c_str(), nullptr, stored), kdcdb::kOk);
  ASSERT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  for (int i = 0; i < 3; ++i) {
    kdcdb::StoredBlock block(stored, 0);
    const auto words = words_of(block);
    EXPECT_TRUE(std::equal(first.records[0].begin(), first.records[0].end(), words.begin()));
    ASSERT_EQ(export_bodies(base, {make_body("a", 30 + i, {60000})}), kdcdb::kOk);
  }
}

class OtherProcessTest : public ::testing::Test {
 protected:
  // Runs work in a child until it says by the pipe that it has come so far, then goes on here.
  pid_t start(const std::function<bool()>& work) {
    int ready[2];
    EXPECT_EQ(pipe(ready), 0);
    const pid_t child = fork();
    if (child == 0) {
      const char answer = work() ? 'y' : 'n';
      if (write(ready[1], &answer, 1) != 1) _exit(1);
      for (;;) pause();
    }
    char answer = 0;
    EXPECT_EQ(::read(ready[0], &answer, 1), 1);
    EXPECT_EQ(answer, 'y');
    close(ready[0]);
    close(ready[1]);
    return child;
  }
  static void end(pid_t child) {
    kill(child, SIGKILL);
    waitpid(child, nullptr, 0);
  }

  fmdtest::TemporaryDirectory directory;
  const std::string base = (directory.path() / "b").string();
  const std::string master = base + ".MASTER";
  const Body body = make_body("a", 1, {50000});
};

TEST_F(OtherProcessTest, ThatDiesWhileItWritesLosesItsLockAndItsWork) {
  ASSERT_EQ(export_bodies(base, {body}), kdcdb::kOk);
  const pid_t child = start([&] {
    return kdcdb::DbaseBst("m", "./") == kdcdb::kOk &&
           kdcdb::DbaseOld(base.c_str(), "init dbfmd") == kdcdb::kOk &&
           kdcdbtest::write_body(make_body("a", 2, {90000})) == kdcdb::kOk;
  });
  EXPECT_EQ(export_bodies(base, {make_body("c", 3, {10})}), kdcdb::kLocked);
  std::vector<Body> found;
  EXPECT_EQ(kdcdbtest::read_bodies(master, found), kdcdb::kOk);  // a writer keeps no reader away
  EXPECT_EQ(found, std::vector<Body>{body});
  end(child);
  ASSERT_EQ(export_bodies(base, {make_body("c", 3, {10})}), kdcdb::kOk);
  EXPECT_EQ(kdcdbtest::read_bodies(master, found), kdcdb::kOk);
  EXPECT_EQ(found, (std::vector<Body>{body, make_body("c", 3, {10})}));
  EXPECT_EQ(kdcdbtest::check(master), kdcdb::kOk);
}

TEST_F(OtherProcessTest, ThatReadsKeepsItsPages) {
  ASSERT_EQ(export_bodies(base, {body}), kdcdb::kOk);
  std::shared_ptr<const kdcdb::StoredFile> stored;
  int signal[2];
  int answer[2];
  ASSERT_EQ(pipe(signal), 0);
  ASSERT_EQ(pipe(answer), 0);
  const pid_t child = fork();
  if (child == 0) {
    const bool opened = kdcdb::StoredFile::open(master.c_str(), nullptr, stored) == kdcdb::kOk;
    char byte = opened ? 'y' : 'n';
    if (write(answer[1], &byte, 1) != 1 || ::read(signal[0], &byte, 1) != 1 || !opened) _exit(1);
    kdcdb::StoredBlock block(stored, 0);
    std::vector<std::int32_t> words(50001);
    const bool same = block.prepare() == kdcdb::kOk && block.read(0, words.data(), 50001) == kdcdb::kOk &&
                      std::equal(body.records[0].begin(), body.records[0].end(), words.begin());
    _exit(same ? 0 : 2);
  }
  char byte = 0;
  ASSERT_EQ(::read(answer[0], &byte, 1), 1);
  for (int i = 0; i < 4; ++i) ASSERT_EQ(export_bodies(base, {make_body("a", 10 + i, {50000})}), kdcdb::kOk);
  ASSERT_EQ(write(signal[1], &byte, 1), 1);
  int status = 0;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  for (const int file : {signal[0], signal[1], answer[0], answer[1]}) close(file);
}

TEST_F(OtherProcessTest, SessionThatStartsInTheFolderMeanwhileIsOnItsOwn) {
  const std::string session = (directory.path() / "other").string();
  const pid_t child = start([&] {
    return kdcdb::DbaseBst("m", "./") == kdcdb::kOk &&
           kdcdb::DbaseNew(base.c_str(), "init dbfmd;dbsetdel dball") == kdcdb::kOk &&
           kdcdbtest::write_body(body) == kdcdb::kOk;
  });
  kdcdb::DbaseBst("m", "./");
  ASSERT_EQ(kdcdb::DbaseNew(session.c_str(), "init dbfmd"), kdcdb::kOk);
  int key = 0;
  EXPECT_EQ(kdcdb::CreateDatablk("dbcreate datablk=(fmdtmp) quals(highqual=1)", &key), kdcdb::kOk);
  EXPECT_EQ(kdcdb::DbaseCls(), kdcdb::kOk);
  EXPECT_EQ(kdcdb::DeleteDatabase(session.c_str()), kdcdb::kOk);
  EXPECT_EQ(try_to_write(master), kdcdb::kLocked);  // the export goes on
  end(child);
  std::vector<Body> found;
  EXPECT_EQ(kdcdbtest::read_bodies(master, found), kdcdb::kOk);  // killed before its commit: empty, and sound
  EXPECT_TRUE(found.empty());
}

}  // namespace
