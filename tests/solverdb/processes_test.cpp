// Databases that several processes use at once, and writers that die at work.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <random>
#include <set>
#include <thread>

#include "solverdb/stored_bodies.h"

namespace {

namespace fs = std::filesystem;
using fmdtest::numbers_of;
using fmdtest::Strings;
using fmdtest::vectors_of;

// A process that is told when to go on, and tells when it has come somewhere. It starts before its parent has
// a session, so that it shares none.
class Child {
 public:
  explicit Child(const std::function<int(Child&)>& work) {
    if (pipe(to_child_) != 0 || pipe(to_parent_) != 0) return;
    process_ = fork();
    if (process_ != 0) {
      ::close(to_child_[0]);
      ::close(to_parent_[1]);
      return;
    }
    ::close(to_child_[1]);
    ::close(to_parent_[0]);
    _exit(work(*this));
  }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;
  ~Child() {
    kill();
    ::close(to_child_[1]);
    ::close(to_parent_[0]);
  }

  // In the child: goes on when the parent says so.
  void wait() const { receive(to_child_[0]); }
  void tell() const { send(to_parent_[1]); }
  // In the parent; false where the child has gone.
  bool await() const { return receive(to_parent_[0]); }
  void go() const { send(to_child_[1]); }

  // The exit status; -1 for a process that was killed.
  int join() {
    int status = 0;
    if (process_ <= 0 || waitpid(process_, &status, 0) != process_) return -2;
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  void kill() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    join();
  }

 private:
  static bool receive(int end) {
    char byte;
    return read(end, &byte, 1) == 1;
  }
  static void send(int end) {
    const char byte = 'x';
    if (write(end, &byte, 1) != 1) _exit(9);
  }

  int to_child_[2] = {-1, -1};
  int to_parent_[2] = {-1, -1};
  pid_t process_ = 0;
};

class Processes : public fmdtest::StoredBodiesTest {
 protected:
  void SetUp() override {
    make_database("A.MASTER", {1});
    make_database("B.MASTER", {2});
    stored_a = vectors_of(open("A.MASTER"));
    stored_b = vectors_of(open("B.MASTER"));
    FMD_Terminate();
  }

  std::set<std::string> labels(const std::string& path) {
    std::set<std::string> found;
    DB_ResetBrowser();
    for (int index = 1; index <= count(path); ++index) {
      const std::string text = row(path, index);
      found.insert(text.substr(9, text.find("',") - 9));
    }
    return found;
  }

  std::string stored_a;
  std::string stored_b;
};

TEST_F(Processes, SecondWriterIsRefusedUntilTheFirstHasLeft) {
  Child writer([&](Child& self) {
    FmdBody* const body = open("A.MASTER");
    std::string path = "B.MASTER";
    if (body == nullptr || DB_StartWrite(body, path.data()) == 0) return 1;
    self.tell();
    self.wait();
    return DB_TermWrite(body, path.data()) == 1 ? 0 : 2;
  });
  ASSERT_TRUE(writer.await());
  EXPECT_EQ(store(fmdtest::make_sample_body(), "B.MASTER", "SELABEL='second'"), 0);
  EXPECT_EQ(log.errors, Strings{"Unable to open B.MASTER for write. Please check the name and qualifier."});
  FMD_Terminate();
  EXPECT_TRUE(vectors_of(open("B.MASTER")) == stored_b);  // reading needs no lock of a writer
  writer.go();
  EXPECT_EQ(writer.join(), 0);
  EXPECT_EQ(store(fmdtest::make_sample_body(), "B.MASTER", "SELABEL='second'"), 1);
  EXPECT_EQ(labels("B.MASTER"), (std::set<std::string>{"s2", "second"}));
}

TEST_F(Processes, WriterThatDiesHoldingTheLockLetsTheNextOneIn) {
  Child writer([&](Child& self) {
    FmdBody* const body = open("A.MASTER");
    std::string path = "B.MASTER";
    std::string label = "SELABEL='s2'";
    if (body == nullptr || DB_StartWrite(body, path.data()) == 0) return 1;
    if (DB_CreateFMDblk(label.data()) == 0) return 2;
    self.tell();
    self.wait();
    return 0;
  });
  ASSERT_TRUE(writer.await());
  writer.kill();
  EXPECT_TRUE(vectors_of(open("B.MASTER")) == stored_b);
  EXPECT_EQ(store(fmdtest::make_sample_body(), "B.MASTER", "SELABEL='next'"), 1);
  EXPECT_EQ(labels("B.MASTER"), (std::set<std::string>{"s2", "next"}));
  EXPECT_FALSE(fs::exists("B.DBFMD"));  // that the dead one left, too
}

TEST_F(Processes, SessionThatStartsDuringAnExportIsUntouched) {
  Child writer([&](Child& self) {
    FmdBody* const body = open("A.MASTER");
    FmdBody* const made = fmdtest::make_large_body(4);
    const std::string before = numbers_of(made);
    std::string path = "B.MASTER";
    if (DB_StartWrite(body, path.data()) == 0) return 1;
    self.tell();
    self.wait();
    if (DB_TermWrite(body, path.data()) == 0) return 2;
    if (numbers_of(made) != before || vectors_of(body) != stored_a) return 3;
    self.tell();
    self.wait();
    const int stored = store(made, "B.MASTER", "SELABEL='theirs'");
    FMD_Terminate();
    return stored == 1 ? 0 : 4;
  });
  ASSERT_TRUE(writer.await());
  FmdBody* const read = open("B.MASTER");
  FmdBody* const made = fmdtest::make_large_body(5);
  const std::string before = numbers_of(made);
  EXPECT_EQ(store(made, "C.MASTER", "SELABEL='ours'"), 1);
  EXPECT_EQ(log.errors, Strings{});
  writer.go();
  ASSERT_TRUE(writer.await());
  EXPECT_TRUE(vectors_of(read) == stored_b);
  EXPECT_TRUE(numbers_of(made) == before);
  writer.go();
  EXPECT_EQ(writer.join(), 0);
  EXPECT_EQ(store(made, "B.MASTER", "SELABEL='ours'"), 1);
  EXPECT_EQ(labels("B.MASTER"), (std::set<std::string>{"s2", "theirs", "ours"}));
  EXPECT_EQ(files(), (Strings{"A.MASTER", "B.MASTER", "C.MASTER"}));
  FMD_Terminate();
  EXPECT_EQ(std::distance(fs::directory_iterator(directory.path()), {}), 3);
}

TEST_F(Processes, ReaderKeepsItsStateWhileBodiesAreReplaced) {
  Child writer([&](Child& self) {
    self.wait();
    for (int round = 0; round < 8; ++round) {
      FmdBody* const body = fmdtest::make_large_body(10 + round, 700, 4);
      if (store(body, "B.MASTER", "SELABEL='s2'") == 0) return 1;
      if (store(body, "B.MASTER", "SELABEL='n" + std::to_string(round) + "'") == 0) return 2;
      FMD_UnLink(body);
      self.tell();
      self.wait();
    }
    FMD_Terminate();
    return 0;
  });
  FmdBody* const first = open("B.MASTER");
  ASSERT_NE(first, nullptr);
  std::vector<FmdBody*> bodies;
  writer.go();
  for (int round = 0; round < 8; ++round) {
    ASSERT_TRUE(writer.await());
    EXPECT_EQ(labels("B.MASTER").size(), static_cast<std::size_t>(round) + 2);
    bodies.push_back(open("./B.MASTER", 1));
    ASSERT_NE(bodies.back(), nullptr);
    // Shared with the first of its name, which keeps the state that it was opened on.
    EXPECT_EQ(bodies.back(), bodies.front());
    FmdBody* const newest = open("B.MASTER", round + 2);
    ASSERT_NE(newest, nullptr);
    EXPECT_TRUE(vectors_of(newest) == vectors_of(fmdtest::make_large_body(10 + round, 700, 4))) << round;
    EXPECT_EQ(log.errors, Strings{});
    writer.go();
  }
  EXPECT_EQ(writer.join(), 0);
  EXPECT_TRUE(vectors_of(first) == stored_b);
  EXPECT_TRUE(vectors_of(bodies.front()) == vectors_of(fmdtest::make_large_body(10, 700, 4)));
}

TEST_F(Processes, WritersThatTakeTurnsLoseNoBody) {
  constexpr int kWriters = 4;
  constexpr int kRounds = 5;
  const auto work = [&](int writer) {
    for (int round = 0; round < kRounds; ++round) {
      const std::string label = "w" + std::to_string(writer) + "r" + std::to_string(round);
      bool stored = false;
      for (int attempt = 0; attempt < 2000 && !stored; ++attempt) {
        stored = store(fmdtest::make_sample_body(), "B.MASTER", "SELABEL='" + label + "'") == 1;
        FMD_Terminate();
        if (!stored) std::this_thread::sleep_for(std::chrono::milliseconds(1 + (writer + attempt) % 5));
      }
      if (!stored) return 1;
    }
    return 0;
  };
  {
    std::vector<std::unique_ptr<Child>> writers;
    for (int writer = 0; writer < kWriters; ++writer)
      writers.push_back(std::make_unique<Child>([&, writer](Child&) { return work(writer); }));
    for (const auto& writer : writers) EXPECT_EQ(writer->join(), 0);
  }
  EXPECT_EQ(labels("B.MASTER").size(), 1U + kWriters * kRounds);
  EXPECT_TRUE(vectors_of(open("B.MASTER", 1)) == stored_b);
  for (int index = 2; index <= 1 + kWriters * kRounds; ++index) {
    EXPECT_NE(open("B.MASTER", index), nullptr) << index;
    EXPECT_EQ(log.errors, Strings{}) << index;
  }
  FMD_Terminate();
  EXPECT_EQ(files(), (Strings{"A.MASTER", "B.MASTER"}));
}

TEST_F(Processes, WriterKilledAtAnyMomentLeavesTheDatabaseSound) {
  const std::string first = vectors_of(fmdtest::make_large_body(6, 300, 3));
  const std::string second = vectors_of(fmdtest::make_large_body(7, 300, 3));
  FMD_Terminate();
  // One body after the other under the same qualifiers, and a new one each time.
  const auto work = [&](Child& self) {
    self.tell();
    FmdBody* const bodies[] = {fmdtest::make_large_body(6, 300, 3), fmdtest::make_large_body(7, 300, 3)};
    for (int round = 0;; ++round) {
      if (store(bodies[round % 2], "B.MASTER", "SELABEL='again'") == 0) return 1;
      if (store(bodies[round % 2], "B.MASTER", "SELABEL='new" + std::to_string(round % 7) + "'") == 0)
        return 2;
    }
  };
  std::mt19937 random(1);
  for (int kill = 0; kill < 25; ++kill) {
    SCOPED_TRACE(kill);
    {
      Child writer(work);
      ASSERT_TRUE(writer.await());
      std::this_thread::sleep_for(std::chrono::microseconds(random() % 60000));
      writer.kill();
    }
    log.clear();
    for (const std::string& label : labels("B.MASTER")) {
      const bool known = label == "s2" || label == "again" || label == "next" || label.rfind("new", 0) == 0;
      EXPECT_TRUE(known) << label;
    }
    const int bodies = count("B.MASTER");
    ASSERT_GE(bodies, 1);
    for (int index = 1; index <= bodies; ++index) {
      FmdBody* const body = open("B.MASTER", index);
      ASSERT_NE(body, nullptr) << index;
      EXPECT_EQ(log.errors, Strings{});
      const std::string told = vectors_of(body);
      const bool is_next = row("B.MASTER", index).rfind("SELABEL='next'", 0) == 0;
      EXPECT_TRUE(index == 1 ? told == stored_b : is_next || told == first || told == second) << index;
    }
    EXPECT_EQ(store(fmdtest::make_sample_body(), "B.MASTER", "SELABEL='next'"), 1);
    EXPECT_EQ(log.errors, Strings{});
    FMD_Terminate();
    // What the dead left are the files of its session, and no more of the target.
    EXPECT_EQ(files(), (Strings{"A.MASTER", "B.MASTER"}));
  }
}

TEST_F(Processes, MakerOfADatabaseKilledAtAnyMomentLeavesItWholeOrNotThere) {
  const auto work = [&](Child& self) {
    FmdBody* const body = fmdtest::make_large_body(6, 300, 3);
    self.tell();
    return store(body, "C.MASTER", "SELABEL='c'") == 1 ? 0 : 1;
  };
  const std::string written = vectors_of(fmdtest::make_large_body(6, 300, 3));
  FMD_Terminate();
  std::mt19937 random(2);
  for (int kill = 0; kill < 25; ++kill) {
    SCOPED_TRACE(kill);
    {
      Child writer(work);
      ASSERT_TRUE(writer.await());
      std::this_thread::sleep_for(std::chrono::microseconds(random() % 12000));
      writer.kill();
    }
    log.clear();
    if (fs::exists("C.MASTER")) {
      std::string path = "C.MASTER";
      EXPECT_EQ(DB_CheckDBset(path.data()), 0);
      const int bodies = count("C.MASTER");
      EXPECT_LE(bodies, 1);
      if (bodies == 1) {
        EXPECT_TRUE(vectors_of(open("C.MASTER")) == written);
      }
      EXPECT_EQ(log.errors, Strings{});
    }
    EXPECT_EQ(store(fmdtest::make_sample_body(), "C.MASTER", "SELABEL='next'"), 1);
    FMD_Terminate();
    EXPECT_EQ(files(), (Strings{"A.MASTER", "B.MASTER", "C.MASTER"}));
    fs::remove("C.MASTER");
  }
}

}  // namespace
