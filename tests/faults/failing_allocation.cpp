#include "faults/failing_allocation.h"

#include <cstdio>

#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmdtest {

namespace {

QuietLog* active = nullptr;

void on_error(const char* text) {
  if (active != nullptr) active->keep(text);
}

void on_other(const char*) {}

}  // namespace

FailingAllocation::FailingAllocation(long nth) {
  fmd::fail_allocation(nth);
}

FailingAllocation::~FailingAllocation() {
  fmd::fail_allocation(0);
}

bool FailingAllocation::end() {
  const bool has_failed = fmd::allocation_has_failed();
  fmd::fail_allocation(0);
  return has_failed;
}

QuietLog::QuietLog() {
  active = this;
  install();
}

QuietLog::~QuietLog() {
  active = nullptr;
}

void QuietLog::install() {
  const FmdMessageHandlers handlers = {on_error, on_other, on_other};
  SetMessageHandlers(&handlers);
}

void QuietLog::keep(const char* text) {
  if (count_ < kMostTexts) std::snprintf(texts_[count_++], sizeof texts_[0], "%s", text);
}

std::vector<std::string> QuietLog::errors() const {
  return std::vector<std::string>(texts_, texts_ + count_);
}

}  // namespace fmdtest
