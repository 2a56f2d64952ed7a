// Resident memory of this process.
#ifndef FMDTOOLKIT_BENCH_MEMORY_H
#define FMDTOOLKIT_BENCH_MEMORY_H

#include <functional>

namespace fmdbench {

struct MemoryUse {
  double before;  // MiB resident before the action
  double growth;  // MiB that the action had resident beyond that, at most
};

MemoryUse memory_use(const std::function<void()>& action);

// MiB that this process has had resident at most.
double peak_memory();

}  // namespace fmdbench

#endif
