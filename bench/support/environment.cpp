#include "support/environment.h"

#include <fmdtoolkit/fmdtoolkit.h>
#include <sys/utsname.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace fmdbench {

namespace {

std::string processor() {
  std::ifstream lines("/proc/cpuinfo");
  std::string line;
  while (std::getline(lines, line)) {
    if (line.rfind("model name", 0) == 0) return line.substr(line.find(':') + 2);
  }
  return "unknown processor";
}

void print_error(const char* text) {
  std::fprintf(stderr, "error: %s\n", text);
}
void print_warning(const char* text) {
  std::fprintf(stderr, "warning: %s\n", text);
}
void ignore(const char*) {}

}  // namespace

void print_environment() {
  utsname system{};
  uname(&system);
  std::printf("machine   %s, %u cores\n", processor().c_str(), std::thread::hardware_concurrency());
  std::printf("system    %s %s\n", system.sysname, system.release);
#if defined(__clang__)
  std::printf("compiler  %s\n", __VERSION__);
#else
  std::printf("compiler  g++ %s\n", __VERSION__);
#endif
  std::printf("flags     %s\n", FMDBENCH_FLAGS);
}

Environment::Environment() {
  std::string name = (std::filesystem::current_path() / "bench-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no directory can be made here");
  directory_ = name;
  setenv("KXI_KADCDB_DIR", directory_.c_str(), 1);
  unsetenv("KXI_FMDWRITE_OPTIONS");
  unsetenv("FMD_MAX_MODE_MEMORY");
  const FmdMessageHandlers handlers = {print_error, print_warning, ignore};
  SetMessageHandlers(&handlers);
}

Environment::~Environment() {
  FMD_Terminate();
  std::error_code ignored;
  std::filesystem::remove_all(directory_, ignored);
}

int argument(int argc, char** argv, int place, int otherwise) {
  return place < argc ? std::atoi(argv[place]) : otherwise;
}

}  // namespace fmdbench
