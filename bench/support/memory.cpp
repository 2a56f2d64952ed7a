#include "support/memory.h"

#include <cstdlib>
#include <fstream>
#include <string>

namespace fmdbench {

namespace {

double status_megabytes(const std::string& field) {
  std::ifstream status("/proc/self/status");
  std::string line;
  while (std::getline(status, line)) {
    if (line.rfind(field + ":", 0) == 0) return std::atof(line.c_str() + field.size() + 1) / 1024.0;
  }
  return 0.0;
}

}  // namespace

MemoryUse memory_use(const std::function<void()>& action) {
  std::ofstream("/proc/self/clear_refs") << "5";
  const double before = status_megabytes("VmRSS");
  action();
  return {before, status_megabytes("VmHWM") - before};
}

double peak_memory() {
  return status_megabytes("VmHWM");
}

}  // namespace fmdbench
