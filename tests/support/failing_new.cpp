// For programs that fail allocations: the standard containers ask the library's counter too.
//
// A file of its own, since a compiler that saw these bodies would take what they do for a mismatch.
#include <cstdlib>
#include <new>

#include "messages/memory.h"

void* operator new(std::size_t bytes, const std::nothrow_t&) noexcept {
  return fmd::should_fail_allocation() ? nullptr : std::malloc(bytes == 0 ? 1 : bytes);
}

void* operator new[](std::size_t bytes, const std::nothrow_t&) noexcept {
  return operator new(bytes, std::nothrow);
}

void* operator new(std::size_t bytes) {
  void* const storage = operator new(bytes, std::nothrow);
  if (storage == nullptr) throw std::bad_alloc();
  return storage;
}

void* operator new[](std::size_t bytes) {
  return operator new(bytes);
}

void operator delete(void* storage) noexcept {
  std::free(storage);
}

void operator delete(void* storage, std::size_t) noexcept {
  std::free(storage);
}

void operator delete[](void* storage) noexcept {
  std::free(storage);
}

void operator delete[](void* storage, std::size_t) noexcept {
  std::free(storage);
}
