#include "faults/counted_allocations.h"

#include <cstdlib>
#include <new>

#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

bool counting = false;

void* allocate_or_null(std::size_t size) {
  if (counting && fmd::should_fail_allocation()) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
}

void* allocate_or_throw(std::size_t size) {
  void* storage = allocate_or_null(size);
  if (storage == nullptr) throw std::bad_alloc();
  return storage;
}

class Uncounted {
 public:
  Uncounted() : before_(counting) { counting = false; }
  ~Uncounted() { counting = before_; }
  Uncounted(const Uncounted&) = delete;
  Uncounted& operator=(const Uncounted&) = delete;

 private:
  bool before_;
};

fmdtest::QuietLog* active = nullptr;

void on_error(const char* text) {
  const Uncounted uncounted;
  if (active != nullptr) active->errors.emplace_back(text);
}

void on_warning(const char* text) {
  const Uncounted uncounted;
  if (active != nullptr) active->warnings.emplace_back(text);
}

void on_information(const char*) {}

}  // namespace

void* operator new(std::size_t size) {
  return allocate_or_throw(size);
}
void* operator new[](std::size_t size) {
  return allocate_or_throw(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate_or_null(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate_or_null(size);
}
void operator delete(void* storage) noexcept {
  std::free(storage);
}
void operator delete[](void* storage) noexcept {
  std::free(storage);
}
void operator delete(void* storage, std::size_t) noexcept {
  std::free(storage);
}
void operator delete[](void* storage, std::size_t) noexcept {
  std::free(storage);
}
void operator delete(void* storage, const std::nothrow_t&) noexcept {
  std::free(storage);
}
void operator delete[](void* storage, const std::nothrow_t&) noexcept {
  std::free(storage);
}

namespace fmdtest {

FailingAllocation::FailingAllocation(long nth) {
  fmd::fail_allocation(nth);
  counting = true;
}

FailingAllocation::~FailingAllocation() {
  counting = false;
}

QuietLog::QuietLog() {
  active = this;
  install();
}

QuietLog::~QuietLog() {
  active = nullptr;
}

void QuietLog::install() {
  const FmdMessageHandlers handlers = {on_error, on_warning, on_information};
  SetMessageHandlers(&handlers);
}

}  // namespace fmdtest
