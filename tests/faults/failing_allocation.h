// Lets the n-th allocation of an operation fail and keeps what the operation says meanwhile.
#ifndef FMDTOOLKIT_TESTS_FAILING_ALLOCATION_H
#define FMDTOOLKIT_TESTS_FAILING_ALLOCATION_H

#include <string>
#include <vector>

namespace fmdtest {

// While one lives, the n-th allocation fails, or has failed. The tests' operator new counts too.
class FailingAllocation {
 public:
  explicit FailingAllocation(long nth);
  ~FailingAllocation();
  // Ends the counting and tells whether an allocation has failed.
  bool end();
  FailingAllocation(const FailingAllocation&) = delete;
  FailingAllocation& operator=(const FailingAllocation&) = delete;
};

// Message handlers that allocate nothing themselves; one log is active at a time.
class QuietLog {
 public:
  QuietLog();
  ~QuietLog();
  QuietLog(const QuietLog&) = delete;
  QuietLog& operator=(const QuietLog&) = delete;
  static void install();

  void clear() { count_ = 0; }
  void keep(const char* text);
  std::vector<std::string> errors() const;

 private:
  static constexpr int kMostTexts = 50;
  char texts_[kMostTexts][1000];
  int count_ = 0;
};

}  // namespace fmdtest

#endif
