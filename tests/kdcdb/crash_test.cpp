// A write that is killed anywhere, with what was not flushed kept, dropped, reordered or torn: what was
// stored before is whole, the new is there whole or not at all, and the next writer works.
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <random>

#include "kdcdb/stored_bodies.h"
#include "support/memory_disk.h"

namespace {

using fmdtest::DiskEvent;
using fmdtest::FileBytes;
using fmdtest::MemoryDisk;
using kdcdbtest::Body;
using kdcdbtest::export_bodies;
using kdcdbtest::make_body;
using Kind = fmdtest::DiskEvent::Kind;
using Bodies = std::vector<Body>;

constexpr std::size_t kWhole = SIZE_MAX;
constexpr std::size_t kSector = 512;
constexpr std::size_t kRootBytes = 8192 + 128;

const std::string kBase = MemoryDisk::path("b");
const std::string kMaster = kBase + ".MASTER";

// How much of each event outlived the crash: nothing, all, or the first bytes of a write.
using Survival = std::vector<std::size_t>;

class CrashTest : public ::testing::Test {
 protected:
  // What is stored before, what the write stores, and what is stored after it.
  void run(const std::vector<Bodies>& history, const Bodies& written, Bodies before, Bodies after) {
    for (const Bodies& bodies : history) ASSERT_EQ(export_bodies(kBase, bodies), kdcdb::kOk);
    disk.record();
    ASSERT_EQ(export_bodies(kBase, written), kdcdb::kOk);
    events = disk.events();
    before_ = std::move(before);
    after_ = std::move(after);
  }

  // Empty for a good state, else what is wrong with it. An unflushed end may have lost the name of a new
  // file.
  std::string judge(MemoryDisk& crashed, bool is_complete) {
    crashed.install();
    Bodies found;
    const bool has_master = crashed.has("b.MASTER");
    if (!has_master && (is_complete || !before_.empty())) return "the master file is gone";
    const kdcdb::Status status = has_master ? kdcdbtest::read_bodies(kMaster, found) : kdcdb::kOk;
    if (status != kdcdb::kOk) return "status " + std::to_string(status) + " for the reader";
    if (found != after_ && (is_complete || found != before_)) return "other datablocks";
    found.push_back(make_body("next", 99, {5, 5000}));
    const kdcdb::Status written = export_bodies(kBase, {found.back()});
    if (written != kdcdb::kOk) return "status " + std::to_string(written) + " for the next writer";
    Bodies again;
    if (kdcdbtest::read_bodies(kMaster, again) != kdcdb::kOk || again != found) return "next writer's work";
    // A torn copy of a root stays until its slot is written again.
    if (export_bodies(kBase, {found.back()}) != kdcdb::kOk) return "the writer after that";
    return kdcdbtest::check(kMaster) == kdcdb::kOk ? "" : "damage after two writers";
  }

  std::string try_state(std::size_t prefix, const Survival& survival, bool with_noise = false,
                        std::size_t noise_at = 0) {
    const auto crashed = disk.before();
    for (std::size_t i = 0; i < prefix; ++i) {
      if (survival[i] == 0) continue;
      crashed->apply(events[i], survival[i]);
      if (!with_noise || i + 1 != prefix) continue;
      DiskEvent noise = events[i];
      noise.offset += static_cast<std::int64_t>(noise_at);
      noise.bytes.assign(std::min(kSector, noise.bytes.size() - noise_at), 0xA5);
      crashed->apply(noise);
    }
    ++states;
    std::string wrong = judge(*crashed, prefix == events.size());
    disk.install();
    return wrong;
  }

  bool is_flushed(std::size_t event, std::size_t prefix) const {
    for (std::size_t i = event + 1; i < prefix; ++i)
      if (events[i].kind == Kind::kSync && events[i].file == events[event].file) return true;
    return false;
  }

  // Calls with every state that a crash behind so many events may leave; stops at the first bad one.
  std::string try_prefix(std::size_t prefix) {
    const Survival all(prefix, kWhole);
    std::vector<std::size_t> loose;
    Survival flushed = all;
    for (std::size_t i = 0; i < prefix; ++i) {
      if (is_flushed(i, prefix)) continue;
      loose.push_back(i);
      flushed[i] = 0;
    }
    std::vector<Survival> survivals = {all, flushed};
    for (const std::size_t i : loose) {
      survivals.push_back(all);
      survivals.back()[i] = 0;
      survivals.push_back(flushed);
      survivals.back()[i] = kWhole;
    }
    for (int k = 0; k < 10 && loose.size() > 2; ++k) {
      survivals.push_back(flushed);
      for (const std::size_t i : loose)
        if (random() % 2 == 0) survivals.back()[i] = kWhole;
    }
    for (const Survival& survival : survivals) {
      const std::string wrong = try_state(prefix, survival);
      if (!wrong.empty()) return wrong;
    }
    return prefix > 0 && events[prefix - 1].kind == Kind::kWrite ? try_torn(prefix, all, flushed) : "";
  }

  // The last write torn at its bytes, or with one sector of noise.
  std::string try_torn(std::size_t prefix, Survival all, Survival flushed) {
    const std::size_t size = events[prefix - 1].bytes.size();
    for (std::size_t at = 1; at < size; at += step(at, size)) {
      all[prefix - 1] = flushed[prefix - 1] = at;
      std::string wrong = try_state(prefix, all);
      if (wrong.empty()) wrong = try_state(prefix, flushed);
      if (!wrong.empty()) return "torn at " + std::to_string(at) + ": " + wrong;
    }
    all[prefix - 1] = kWhole;
    for (std::size_t at = 0; at < size; at += kSector) {
      const std::string wrong = try_state(prefix, all, true, at);
      if (!wrong.empty()) return "noise at " + std::to_string(at) + ": " + wrong;
    }
    return "";
  }

  // Every byte of what holds a root, fewer of the zeros between and of data.
  static std::size_t step(std::size_t at, std::size_t size) {
    if (size > kRootBytes) return std::max<std::size_t>(1021, size / 37);
    return at < 136 || at + 136 > size ? 1 : 509;
  }

  void expect_that_no_crash_harms() {
    for (std::size_t prefix = 0; prefix <= events.size(); ++prefix)
      EXPECT_EQ(try_prefix(prefix), "") << "behind event " << prefix << " of " << events.size();
  }

  MemoryDisk disk;
  std::vector<DiskEvent> events;
  std::size_t states = 0;
  std::mt19937 random{4711};

 private:
  Bodies before_;
  Bodies after_;
};

const Body kLeft = make_body("left", 1, {3, 9000, 1});
const Body kRight = make_body("right", 2, {12000});
const Body kThird = make_body("third", 3, {1, 70000, 2});
const Body kNewLeft = make_body("left", 4, {20000, 70000});

TEST_F(CrashTest, MakingOfANewDatabaseLeavesItWholeOrNotAtAll) {
  run({}, {kLeft, kRight}, {}, {kLeft, kRight});
  expect_that_no_crash_harms();
  EXPECT_GT(states, 500U);
}

TEST_F(CrashTest, ExportLeavesWhatIsStored) {
  run({{kLeft}, {kRight}}, {kThird}, {kLeft, kRight}, {kLeft, kRight, kThird});
  expect_that_no_crash_harms();
  EXPECT_GT(states, 500U);
}

// After some replacements there are free pages between, which the write uses.
TEST_F(CrashTest, ReplacementInFreePagesLeavesTheOldOrTheNew) {
  const Body old_third = make_body("third", 8, {30000});
  run({{kLeft}, {kRight, old_third}, {kRight}, {old_third}, {kLeft}}, {kNewLeft, kThird},
      {kLeft, kRight, old_third}, {kNewLeft, kRight, kThird});
  std::int64_t lowest = INT64_MAX;
  const std::int64_t end = static_cast<std::int64_t>(disk.before()->bytes("b.MASTER").size());
  disk.install();
  for (const DiskEvent& event : events)
    if (event.kind == Kind::kWrite && event.offset >= 3 * 16384) lowest = std::min(lowest, event.offset);
  EXPECT_LT(lowest, end);  // it does use them
  expect_that_no_crash_harms();
}

// The states do find a store that errs: one that trusts the system to write in order.
TEST_F(CrashTest, MissingFlushIsFoundOut) {
  run({{kLeft}, {kRight}}, {kThird}, {kLeft, kRight}, {kLeft, kRight, kThird});
  const auto first_flush = std::find_if(events.begin(), events.end(),
                                        [](const DiskEvent& event) { return event.kind == Kind::kSync; });
  ASSERT_NE(first_flush, events.end());
  events.erase(first_flush);
  int bad = 0;
  for (std::size_t prefix = 0; prefix <= events.size(); ++prefix) bad += try_prefix(prefix).empty() ? 0 : 1;
  EXPECT_GT(bad, 0);
  kdcdb::DbaseCls();
}

class FailingDiskTest : public ::testing::Test {
 protected:
  // A disk with two bodies.
  static std::unique_ptr<MemoryDisk> filled() {
    auto disk = std::make_unique<MemoryDisk>();
    EXPECT_EQ(export_bodies(kBase, {kLeft}), kdcdb::kOk);
    EXPECT_EQ(export_bodies(kBase, {kRight}), kdcdb::kOk);
    return disk;
  }

  static void expect_whole(const Bodies& before, const Bodies& after, kdcdb::Status status, long call,
                           bool strict) {
    Bodies found;
    ASSERT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk) << call;
    if (status == kdcdb::kOk) {
      EXPECT_EQ(found, after) << call;
    } else {
      EXPECT_TRUE(found == before || (!strict && found == after)) << call << " status " << status;
    }
    EXPECT_EQ(kdcdbtest::check(kMaster), kdcdb::kOk) << call;
    EXPECT_EQ(export_bodies(kBase, {kThird}), kdcdb::kOk) << call;
    EXPECT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk) << call;
    EXPECT_EQ(found.size(), 3U) << call;
  }
};

// Only what the write itself does counts as failed; what is cleaned up behind the commit may fail alone.
TEST_F(FailingDiskTest, FullDiskAtAnyWriteOrFlushIsAStatusAndLosesNothing) {
  int failures = 0;
  for (long failing = 1;; ++failing) {
    const auto disk = filled();
    long calls = 0;
    disk->fault = [&](const char* call) {
      const bool counts = std::strcmp(call, "pwrite") == 0 || std::strcmp(call, "fallocate") == 0 ||
                          std::strcmp(call, "fdatasync") == 0 || std::strcmp(call, "fsync") == 0;
      return counts && ++calls == failing ? ENOSPC : 0;
    };
    const kdcdb::Status status = export_bodies(kBase, {kNewLeft});
    disk->fault = nullptr;
    if (calls < failing) break;
    EXPECT_EQ(status, kdcdb::kNoSpace) << failing;
    ++failures;
    expect_whole({kLeft, kRight}, {kNewLeft, kRight}, status, failing, true);
  }
  EXPECT_GE(failures, 7);
}

TEST_F(FailingDiskTest, DiskThatFillsUpAtAnyPageIsAStatusAndLosesNothing) {
  int failures = 0;
  kdcdb::Status status = kdcdb::kNoSpace;
  for (std::size_t room = 0; status != kdcdb::kOk; room += 4096 + 512) {
    const auto disk = filled();
    const std::size_t size = disk->bytes("b.MASTER").size();
    disk->capacity = disk->used() + room;
    status = export_bodies(kBase, {kNewLeft});
    EXPECT_TRUE(status == kdcdb::kOk || status == kdcdb::kNoSpace) << room << " status " << status;
    if (status != kdcdb::kOk) {
      ++failures;
      EXPECT_EQ(disk->bytes("b.MASTER").size(), size) << "the file is cut back";
    }
    disk->capacity = SIZE_MAX;
    expect_whole({kLeft, kRight}, {kNewLeft, kRight}, status, static_cast<long>(room), true);
  }
  EXPECT_GE(failures, 10);
}

TEST_F(FailingDiskTest, FailureOfAnyCallLeavesTheOldOrTheNew) {
  for (const int error : {EIO, EINTR, ENOSPC}) {
    for (long failing = 1;; ++failing) {
      const auto disk = filled();
      long calls = 0;
      disk->fault = [&](const char*) { return ++calls == failing ? error : 0; };
      const kdcdb::Status status = export_bodies(kBase, {kNewLeft});
      disk->fault = nullptr;
      if (calls < failing) break;
      kdcdb::DbaseCls();
      expect_whole({kLeft, kRight}, {kNewLeft, kRight}, status, failing, false);
    }
  }
}

// All calls fail from some moment on, those that would mend it included.
TEST_F(FailingDiskTest, DiskThatDiesLeavesTheOldOrTheNew) {
  for (long failing = 1;; ++failing) {
    const auto disk = filled();
    long calls = 0;
    disk->fault = [&](const char* call) {
      const bool changes = std::strcmp(call, "pread") != 0 && std::strcmp(call, "close") != 0;
      return changes && ++calls >= failing ? EIO : 0;
    };
    const kdcdb::Status status = export_bodies(kBase, {kNewLeft});
    disk->fault = nullptr;
    if (calls < failing) break;
    kdcdb::DbaseCls();
    EXPECT_NE(status, kdcdb::kOk);
    expect_whole({kLeft, kRight}, {kNewLeft, kRight}, status, failing, false);
  }
}

TEST_F(FailingDiskTest, FailedFlushIsAFailedCommitThatNoLaterReaderSees) {
  for (const long failing : {1L, 2L}) {
    const auto disk = filled();
    long flushes = 0;
    disk->fault = [&](const char* call) {
      return std::strcmp(call, "fdatasync") == 0 && ++flushes == failing ? EIO : 0;
    };
    EXPECT_EQ(export_bodies(kBase, {kNewLeft}), kdcdb::kInputOutput);
    disk->fault = nullptr;
    Bodies found;
    EXPECT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk);
    EXPECT_EQ(found, (Bodies{kLeft, kRight}));
  }
}

TEST_F(FailingDiskTest, NewDatabaseIsMadeOrNotAtAnyFailure) {
  for (long failing = 1;; ++failing) {
    MemoryDisk disk;
    long calls = 0;
    disk.fault = [&](const char*) { return ++calls == failing ? ENOSPC : 0; };
    const kdcdb::Status status = export_bodies(kBase, {kLeft});
    disk.fault = nullptr;
    if (calls < failing) break;
    kdcdb::DbaseCls();
    Bodies found;
    if (disk.has("b.MASTER")) {
      EXPECT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk) << failing;
      EXPECT_TRUE(found.empty() || found == Bodies{kLeft}) << failing;
    }
    EXPECT_TRUE(status != kdcdb::kOk || found == Bodies{kLeft}) << failing;
    EXPECT_EQ(export_bodies(kBase, {kLeft}), kdcdb::kOk) << failing;
    EXPECT_EQ(kdcdbtest::read_bodies(kMaster, found), kdcdb::kOk);
    EXPECT_EQ(found, Bodies{kLeft});
  }
}

}  // namespace
