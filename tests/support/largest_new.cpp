// For programs that ask how much memory was wanted at once.
#include "support/largest_new.h"

#include <cstdlib>
#include <new>

namespace fmdtest {
std::size_t largest_allocation = 0;
}  // namespace fmdtest

void* operator new(std::size_t bytes) {
  if (bytes > fmdtest::largest_allocation) fmdtest::largest_allocation = bytes;
  void* const storage = std::malloc(bytes == 0 ? 1 : bytes);
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
