#include "messages/memory.h"

#include <limits>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

std::int64_t allocations_until_failure = 0;
bool failure_handed_out = false;

// Bytes of count items, or 0 when there are none or the product does not fit.
std::size_t checked_size(std::int64_t count, std::size_t size) {
  if (count < 1) return 0;
  const auto limit = static_cast<std::uint64_t>(std::numeric_limits<std::ptrdiff_t>::max()) / size;
  if (static_cast<std::uint64_t>(count) > limit) return 0;
  return static_cast<std::size_t>(count) * size;
}

}  // namespace

bool should_fail_allocation() {
  if (allocations_until_failure == 0) return false;
  if (--allocations_until_failure > 0) return false;
  failure_handed_out = true;
  return true;
}

void fail_allocation(std::int64_t nth) {
  allocations_until_failure = nth;
  failure_handed_out = false;
}

bool allocation_has_failed() {
  return failure_handed_out;
}

void* allocate_quietly(std::int64_t count, std::size_t size) {
  const std::size_t bytes = checked_size(count, size);
  if (bytes == 0 || should_fail_allocation()) return nullptr;
  return std::calloc(1, bytes);
}

void* reallocate_quietly(void* storage, std::int64_t count, std::size_t size) {
  const std::size_t bytes = checked_size(count, size);
  if (bytes == 0 || should_fail_allocation()) return nullptr;
  return std::realloc(storage, bytes);
}

void report_allocation_failure(const char* module, int line) {
  FMD_Error("Failed to allocate memory at line %d in file %s.\n", line, module);
}

}  // namespace fmd
