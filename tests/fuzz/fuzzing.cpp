#include "fuzz/fuzzing.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "fmdtoolkit/fmdtoolkit.h"
#include "fuzz/memory_watch.h"

namespace fuzz {

namespace {

namespace fs = std::filesystem;
using Clock = std::chrono::steady_clock;

constexpr std::size_t kMostBytes = std::size_t{16} << 20;
constexpr unsigned kSecondsAnInput = 10;
constexpr std::uint64_t kInputsBetweenLeakChecks = 500;
constexpr rlim_t kMostAddressSpace = rlim_t{2} << 30;

// What the parent knows of the worker when that has died.
struct Shared {
  std::uint64_t inputs;  // done
  bool in_leak_check;
  std::size_t size;
  unsigned char bytes[kMostBytes];
};

struct Arguments {
  double seconds = 10;
  std::uint64_t seed = 0;
  std::vector<std::string> files;
};

Arguments read_arguments(int argc, char** argv) {
  Arguments arguments;
  arguments.seed = static_cast<std::uint64_t>(Clock::now().time_since_epoch().count()) % 1000000000;
  for (int i = 1; i < argc; ++i) {
    const std::string name = argv[i];
    if (name == "--seconds" && i + 1 < argc) {
      arguments.seconds = std::atof(argv[++i]);
    } else if (name == "--seed" && i + 1 < argc) {
      arguments.seed = std::strtoull(argv[++i], nullptr, 10);
    } else {
      arguments.files.push_back(fs::absolute(name).string());
    }
  }
  return arguments;
}

// In memory where the system has such a place: the disk is not what is tried here.
fs::path make_directory() {
  const fs::path parent = access("/dev/shm", W_OK) == 0 ? fs::path("/dev/shm") : fs::temp_directory_path();
  std::string name = (parent / "fmdfuzz-XXXXXX").string();
  if (mkdtemp(name.data()) == nullptr) std::abort();
  return name;
}

void say_nothing(const char*) {}

void prepare_process(const Target& target) {
  signal(SIGALRM, SIG_DFL);
#if !defined(__SANITIZE_ADDRESS__)
  const struct rlimit most { kMostAddressSpace, kMostAddressSpace };
  setrlimit(RLIMIT_AS, &most);
#endif
  const FmdMessageHandlers silence{say_nothing, say_nothing, say_nothing};
  SetMessageHandlers(&silence);
  setenv("KXI_KADCDB_DIR", ".", 1);
  unsetenv("KXI_FMDWRITE_OPTIONS");
  unsetenv("FMD_MAX_MODE_MEMORY");
  target.prepare();
}

void run_one(const Target& target, const Bytes& input, Shared& shared) {
  shared.size = std::min(input.size(), kMostBytes);
  std::copy_n(input.begin(), shared.size, shared.bytes);
  alarm(kSecondsAnInput);
  target.run(input);
  alarm(0);
  lift_memory_limit();
  ++shared.inputs;
}

void check_for_leaks(Shared& shared) {
  shared.in_leak_check = true;
  require_no_leak();
  shared.in_leak_check = false;
}

void make_inputs(const Target& target, const Arguments& arguments, Shared& shared) {
  const auto end = Clock::now() + std::chrono::duration<double>(arguments.seconds);
  for (std::uint64_t i = 0; Clock::now() < end; ++i) {
    Random random(arguments.seed * 0x100000001U + i);
    Bytes input = target.make(random);
    input.resize(std::min(input.size(), kMostBytes));
    run_one(target, input, shared);
    if (shared.inputs % kInputsBetweenLeakChecks == 0) check_for_leaks(shared);
  }
}

Bytes read_file(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), {});
}

void run_files(const Target& target, const Arguments& arguments, Shared& shared) {
  for (const std::string& file : arguments.files) run_one(target, read_file(file), shared);
}

void work(const Target& target, const Arguments& arguments, Shared& shared) {
  prepare_process(target);
  if (arguments.files.empty()) {
    make_inputs(target, arguments, shared);
  } else {
    run_files(target, arguments, shared);
  }
  FMD_Terminate();
  check_for_leaks(shared);
}

const char* reason(int status, const Shared& shared) {
  if (shared.in_leak_check) return "memory was lost by one of the inputs before";
  if (WIFSIGNALED(status) && WTERMSIG(status) == SIGALRM) return "took too long";
  return "crashed";
}

int tell(const Target& target, const Arguments& arguments, const Shared& shared, int status,
         const fs::path& directory) {
  if (status == 0) {
    std::printf("fuzz_%s: %llu inputs, none failed\n", target.name,
                static_cast<unsigned long long>(shared.inputs));
    return 0;
  }
  const fs::path file = directory / (std::string("fuzz_") + target.name + '-' +
                                     std::to_string(arguments.seed) + '-' + std::to_string(shared.inputs));
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(shared.bytes), static_cast<std::streamsize>(shared.size));
  std::printf("fuzz_%s: input %llu of seed %llu: %s\nthe input is in %s\n", target.name,
              static_cast<unsigned long long>(shared.inputs), static_cast<unsigned long long>(arguments.seed),
              reason(status, shared), file.c_str());
  return 1;
}

}  // namespace

int fuzz_main(int argc, char** argv, const Target& target) {
  const Arguments arguments = read_arguments(argc, argv);
  if (arguments.files.empty())
    std::printf("fuzz_%s: %g seconds, seed %llu\n", target.name, arguments.seconds,
                static_cast<unsigned long long>(arguments.seed));
  std::fflush(stdout);
  void* const memory =
      mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) return 2;
  auto& shared = *static_cast<Shared*>(memory);
  const fs::path directory = make_directory();
  const fs::path before = fs::current_path();
  const pid_t worker = fork();
  if (worker == 0) {
    fs::current_path(directory);
    work(target, arguments, shared);
    std::fflush(nullptr);
    _exit(0);
  }
  int status = -1;
  waitpid(worker, &status, 0);
  std::error_code ignored;
  fs::remove_all(directory, ignored);
  const int result = tell(target, arguments, shared, status, before);
  munmap(memory, sizeof(Shared));
  return result;
}

}  // namespace fuzz
