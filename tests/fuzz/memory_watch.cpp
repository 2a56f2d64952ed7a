#include "fuzz/memory_watch.h"

#if defined(__SANITIZE_ADDRESS__)

#include <sanitizer/lsan_interface.h>

#include <cstdio>
#include <cstdlib>

// The sanitizer's runtime has these; g++ comes without the header that declares them.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*taken)(const volatile void*, std::size_t),
                                                         void (*given_back)(const volatile void*));
extern "C" std::size_t __sanitizer_get_allocated_size(const volatile void* pointer);

namespace {

long long inUse = 0;
long long limit = -1;

void taken(const volatile void*, std::size_t bytes) {
  inUse += static_cast<long long>(bytes);
  if (limit < 0 || inUse <= limit) return;
  const long long most = limit;
  limit = -1;
  std::fprintf(stderr, "memory beyond the limit: %zu bytes more, %lld beyond what is allowed\n", bytes,
               inUse - most);
  std::abort();
}

void given_back(const volatile void* pointer) {
  if (pointer == nullptr) return;
  inUse -= static_cast<long long>(__sanitizer_get_allocated_size(pointer));
}

bool watch() {
  return __sanitizer_install_malloc_and_free_hooks(taken, given_back) != 0;
}

}  // namespace

namespace fuzz {

void limit_memory(std::size_t bytes) {
  static const bool watching = watch();
  if (watching) limit = inUse + static_cast<long long>(bytes);
}

void lift_memory_limit() {
  limit = -1;
}

void require_no_leak() {
  if (__lsan_do_recoverable_leak_check() != 0) std::abort();
}

}  // namespace fuzz

#else

namespace fuzz {

void limit_memory(std::size_t) {}
void lift_memory_limit() {}
void require_no_leak() {}

}  // namespace fuzz

#endif
