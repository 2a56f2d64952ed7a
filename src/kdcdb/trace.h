// The trace: what the store is asked for and what it answers, as lines on standard error. Switched on, when a
// session begins, by the environment variable KXI_DATABASE_TRACE; off, it costs one comparison an operation.
#ifndef FMDTOOLKIT_KDCDB_TRACE_H
#define FMDTOOLKIT_KDCDB_TRACE_H

#include "kdcdb/kdcdb.h"

namespace kdcdb {

extern bool tracing;

// Looks whether the environment asks for the trace now.
void begin_trace();

void print_trace(const char* format, ...) __attribute__((format(printf, 1, 2)));

// A line of the trace, alone or with what the operation is given or gives.
inline void trace(const char* text) {
  if (tracing) print_trace("%s", text);
}
template <typename... Values>
void trace(const char* format, Values... values) {
  if (tracing) print_trace(format, values...);
}

// The line that ends an operation; hands its status on.
inline Status traced(const char* format, Status status) {
  if (tracing) print_trace(format, static_cast<int>(status));
  return status;
}

}  // namespace kdcdb

#endif
