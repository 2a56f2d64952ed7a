// Fails the first, second, third ... allocation of every exported operation until it succeeds.
#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <regex>
#include <set>
#include <string>

#include "faults/dataset_write.h"
#include "faults/failing_allocation.h"
#include "faults/operations.h"
#include "support/session.h"
#include "support/unsynced_file_system.h"

namespace {

using fmdtest::FailingAllocation;
using fmdtest::Failure;
using fmdtest::Operation;
using fmdtest::QuietLog;
using fmdtest::Scene;

constexpr long kMostAllocations = 5000;

enum class Outcome { kSucceeded, kFailed, kThrew };

Outcome try_to_run(const Operation& operation, Scene& scene) {
  try {
    return operation.run(scene) ? Outcome::kSucceeded : Outcome::kFailed;
  } catch (...) {
    return Outcome::kThrew;
  }
}

// What is said where memory is short: the failed allocation itself, or the file or step that it was for.
bool tells_of_memory(const std::string& text) {
  static const std::regex allocation(
      "Failed to allocate memory( for Pre-Str(ess|ain))? at line [0-9]+ in file [a-z_]+\\.\n");
  static const std::regex file(
      "(Cannot open temporary datablock, |Insufficient disk space for temporary ).*\n?");
  return std::regex_match(text, allocation) || std::regex_match(text, file);
}

class AllocationSweep : public fmdtest::SessionTest, public testing::WithParamInterface<Operation> {
 protected:
  // False once the operation no longer reaches so many allocations.
  bool fails_at(const Operation& operation, long nth) {
    SCOPED_TRACE("allocation " + std::to_string(nth));
    const long descriptors = fmdtest::open_descriptors();
    Scene scene;
    operation.prepare(scene);
    said.clear();
    FailingAllocation failing(nth);
    const Outcome outcome = try_to_run(operation, scene);
    const bool has_failed = failing.end();
    EXPECT_NE(outcome, Outcome::kThrew) << "an exception crossed the interface";
    if (!has_failed) {
      EXPECT_EQ(outcome, Outcome::kSucceeded) << "although no allocation failed";
      EXPECT_FALSE(has_told_of_memory());
    } else if (outcome == Outcome::kFailed) {
      check_failure(operation, scene);
    }
    if (scene.body != nullptr) {
      EXPECT_TRUE(fmdtest::is_usable(scene.body));
    }
    fmdtest::leave(scene);
    EXPECT_EQ(fmdtest::open_descriptors(), descriptors);
    return has_failed;
  }

  bool has_told_of_memory() const {
    const std::vector<std::string> errors = said.errors();
    return std::any_of(errors.begin(), errors.end(), tells_of_memory);
  }

  void check_failure(const Operation& operation, Scene& scene) {
    if (operation.failure == Failure::kReported) {
      EXPECT_TRUE(has_told_of_memory()) << testing::PrintToString(said.errors());
    }
    if (!operation.repeats) return;
    said.clear();
    EXPECT_TRUE(operation.run(scene)) << "with memory again";
    EXPECT_THAT(said.errors(), testing::IsEmpty());
  }

  QuietLog said;
  fmdtest::UnsyncedFileSystem files;
};

TEST_P(AllocationSweep, SurvivesTheFailureOfEachOfItsAllocations) {
  long nth = 1;
  while (nth <= kMostAllocations && fails_at(GetParam(), nth) && !HasFailure()) ++nth;
  EXPECT_LE(nth, kMostAllocations);
  RecordProperty("allocations", static_cast<int>(nth - 1));
}

INSTANTIATE_TEST_SUITE_P(Operations, AllocationSweep, testing::ValuesIn(fmdtest::all_operations()),
                         [](const auto& tested) {
                           std::string name = tested.param.name;
                           std::replace(name.begin(), name.end(), '.', '_');
                           return name;
                         });

// A write that memory fails says so and leaves no file, or it is complete all the same.
class AllocationSweepOfWrites : public fmdtest::DatasetWrite {
 protected:
  QuietLog said;
};

TEST_P(AllocationSweepOfWrites, CompleteOrLeaveNoFile) {
  ASSERT_TRUE(writes());
  ASSERT_TRUE(writes());
  const std::string whole = bytes();
  const long descriptors = fmdtest::open_descriptors();
  bool has_failed = true;
  for (long nth = 1; has_failed && !HasFailure(); ++nth) {
    SCOPED_TRACE("allocation " + std::to_string(nth));
    remove();
    said.clear();
    FailingAllocation failing(nth);
    const bool done = writes();
    has_failed = failing.end();
    EXPECT_EQ(is_there(), done);
    EXPECT_TRUE(done || (has_failed && !said.errors().empty()));
    if (done) {
      EXPECT_EQ(bytes(), whole);
    }
    EXPECT_EQ(fmdtest::open_descriptors(), descriptors);
    EXPECT_TRUE(writes()) << "afterwards";
    EXPECT_EQ(bytes(), whole);
    ASSERT_LT(nth, kMostAllocations);
  }
}

INSTANTIATE_TEST_SUITE_P(Options, AllocationSweepOfWrites, fmdtest::write_options());

// A body that memory does not let be stored leaves those that were there, whatever it would have replaced.
class AllocationSweepOfStores : public fmdtest::SessionTest, public testing::WithParamInterface<const char*> {
 protected:
  bool stores(const char* qualifiers) {
    Scene scene;
    fmdtest::full_body(scene);
    std::string text = qualifiers;
    const bool done = FMD_write_DB(scene.body, master, text.data()) == 1;
    fmdtest::leave(scene);
    return done;
  }

  // The number of bodies, of which each is read to its last vector; 0 where one is not.
  int whole_bodies() {
    const int count = DB_BodyCount(master);
    for (int index = 1; index <= count; ++index) {
      FmdBody* const body = FMD_CreateFromFMD(master, index);
      double half[3] = {};
      const bool is_whole = body != nullptr && FMD_NodeCount(body) == fmdtest::kSceneNodes &&
                            FMD_ModeByNode(body, 2, 0, fmdtest::kFirstNode, half, 0) == 1;
      if (!is_whole) return 0;
    }
    FMD_Terminate();
    return count;
  }

  int most_bodies() const { return std::string(GetParam()) == "PEID=1" ? 1 : 2; }

  char master[16] = "stored.MASTER";
  QuietLog said;
  fmdtest::UnsyncedFileSystem files;
};

TEST_P(AllocationSweepOfStores, KeepWhatWasStored) {
  ASSERT_TRUE(stores("PEID=1"));
  bool has_failed = true;
  for (long nth = 1; has_failed && !HasFailure(); nth += 7) {
    SCOPED_TRACE("allocation " + std::to_string(nth));
    Scene scene;
    fmdtest::full_body(scene);
    std::string qualifiers = GetParam();
    FailingAllocation failing(nth);
    const bool done = FMD_write_DB(scene.body, master, qualifiers.data()) == 1;
    has_failed = failing.end();
    EXPECT_TRUE(done || has_failed);
    fmdtest::leave(scene);
    const int count = whole_bodies();
    EXPECT_GE(count, done ? most_bodies() : 1);
    EXPECT_LE(count, most_bodies());
    ASSERT_LT(nth, kMostAllocations);
  }
  EXPECT_TRUE(stores("PEID=3"));
  EXPECT_EQ(whole_bodies(), most_bodies() + 1);
}

INSTANTIATE_TEST_SUITE_P(Qualifiers, AllocationSweepOfStores, testing::Values("PEID=1", "PEID=2"));

// A name on a line of its own in the list of exports.
std::set<std::string> exported_names() {
  std::set<std::string> names;
  std::ifstream map(FMDTOOLKIT_MAP_FILE);
  const std::regex entry("\\s*([A-Za-z_][A-Za-z_0-9]*);");
  std::smatch match;
  for (std::string line; std::getline(map, line);)
    if (std::regex_match(line, match, entry)) names.insert(match[1]);
  return names;
}

// Whether a name only passes on to the operation of the other face, which is swept itself.
bool is_forwarder(const std::string& name, const std::set<std::string>& exported) {
  return name.substr(0, 3) == "DB_" && exported.count("FMD_" + name.substr(3)) != 0;
}

std::set<std::string> operations_with_work_of_their_own() {
  const std::set<std::string> exported = exported_names();
  std::set<std::string> names;
  for (const std::string& name : exported)
    if (!is_forwarder(name, exported)) names.insert(name);
  return names;
}

TEST(AllocationSweepTable, HasEveryExportedOperationAndNoOther) {
  std::set<std::string> swept;
  for (const Operation& operation : fmdtest::all_operations()) {
    const std::string name = operation.name;
    swept.insert(name.substr(0, name.find('.')));
  }
  EXPECT_GT(exported_names().size(), 100U);
  EXPECT_EQ(swept, operations_with_work_of_their_own());
}

TEST(AllocationSweepTable, CountsTheAllocationsOfContainersToo) {
  bool has_thrown = false;
  FailingAllocation failing(2);
  try {
    const std::vector<int> first(10);
    const std::vector<int> second(10);
  } catch (const std::bad_alloc&) {
    has_thrown = true;
  }
  EXPECT_TRUE(failing.end());
  EXPECT_TRUE(has_thrown);
}

}  // namespace
