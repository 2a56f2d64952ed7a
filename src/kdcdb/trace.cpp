#include "kdcdb/trace.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace kdcdb {

bool tracing = false;

void begin_trace() {
  tracing = std::getenv("KXI_DATABASE_TRACE") != nullptr;
}

void print_trace(const char* format, ...) {
  va_list arguments;
  va_start(arguments, format);
  std::vfprintf(stderr, format, arguments);
  va_end(arguments);
}

}  // namespace kdcdb
