// Lets every allocation of an operation fail in turn, those of standard containers too: this program's own
// operator new asks the library's hook while an operation is under test.
#ifndef FMDTOOLKIT_TESTS_COUNTED_ALLOCATIONS_H
#define FMDTOOLKIT_TESTS_COUNTED_ALLOCATIONS_H

#include <string>
#include <vector>

namespace fmdtest {

// While one lives, the n-th allocation fails; what the message handlers allocate does not count.
class FailingAllocation {
 public:
  explicit FailingAllocation(long nth);
  ~FailingAllocation();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
};

// Message handlers that may run under a FailingAllocation.
class QuietLog {
 public:
  QuietLog();
  ~QuietLog();
  QuietLog(const QuietLog&) = delete;
  QuietLog& operator=(const QuietLog&) = delete;
  static void install();

  std::vector<std::string> errors;
  std::vector<std::string> warnings;
};

}  // namespace fmdtest

#endif
