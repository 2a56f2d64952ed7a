// Allocation of everything that hangs on a body or is handed to a caller, and the report of its failure.
//
// All such storage comes from the C allocator through this one place, so that a failed site is named by
// module and line, an array of no entries counts as a failed allocation, and tests can fail the n-th one.
#ifndef FMDTOOLKIT_MESSAGES_MEMORY_H
#define FMDTOOLKIT_MESSAGES_MEMORY_H

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <type_traits>

namespace fmd {

struct FreeDeleter {
  void operator()(void* pointer) const { std::free(pointer); }
};

// An array of the C allocator that is freed with its scope unless released.
template <typename T>
using CArray = std::unique_ptr<T[], FreeDeleter>;

// Zeroed storage for count items, or null: no memory, a count below 1, a size beyond memory. Says nothing.
void* allocate_quietly(std::int64_t count, std::size_t size);

// Storage resized to count items, or null, which leaves the old storage alone. Says nothing.
void* reallocate_quietly(void* storage, std::int64_t count, std::size_t size);

// "Failed to allocate memory at line %d in file %s.\n"
void report_allocation_failure(const char* module, int line = __builtin_LINE());

// As allocate_quietly, and reports a failure for the module and the caller's line.
template <typename T>
CArray<T> allocate(std::int64_t count, const char* module, int line = __builtin_LINE()) {
  static_assert(std::is_trivially_destructible_v<T>, "the C allocator runs no destructor");
  auto* storage = static_cast<T*>(allocate_quietly(count, sizeof(T)));
  if (storage == nullptr) report_allocation_failure(module, line);
  return CArray<T>(storage);
}

// As reallocate_quietly into the pointer given; on failure the pointer keeps what it had. Reports nothing.
template <typename T>
bool grow(T*& storage, std::int64_t count) {
  static_assert(std::is_trivially_copyable_v<T>, "the C allocator moves bytes");
  void* grown = reallocate_quietly(storage, count, sizeof(T));
  if (grown == nullptr) return false;
  storage = static_cast<T*>(grown);
  return true;
}

// Frees and clears.
template <typename T>
void release(T*& storage) {
  std::free(storage);
  storage = nullptr;
}

// For tests: the n-th allocation from now on fails (n counts from 1); 0 switches the counting off. Each
// allocation asks should_fail_allocation(); a test's own operator new may ask it too.
void fail_allocation(std::int64_t nth);
bool should_fail_allocation();
// True when the failure asked for has been handed out.
bool allocation_has_failed();

}  // namespace fmd

#endif
