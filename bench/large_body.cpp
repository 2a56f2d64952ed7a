// A large body on its way from the scratch files to a database, to a second process and to a stream file, and
// the memory that each of the two processes has resident at most.
//
// bench_large_body [nodes] [modes]    "bench_large_body 1000000 100" moves 4.8 GB three times and needs 15 GB
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "support/comparison.h"
#include "support/environment.h"
#include "support/memory.h"
#include "support/sample_body.h"

namespace {

using fmdbench::require;
using fmdbench::seconds;

constexpr double kMostMebibytes = 512;

// The stream's vectors are in native numbers, as those of the database are.
constexpr const char* kOptions = "no_xdr";

void report_step(const char* step, double time, double bytes) {
  std::printf("%-44s %8.2f s  %8.0f MB/s\n", step, time, bytes / time / 1e6);
  std::fflush(stdout);
}

void report_memory(const char* process) {
  const double peak = fmdbench::peak_memory();
  std::printf("%-44s %8.0f MiB resident at most  bar < %.0f  %s\n", process, peak, kMostMebibytes,
              peak < kMostMebibytes ? "kept" : "MISSED");
  std::fflush(stdout);
}

void store(std::string master, int nodes, int modes, double bytes) {
  FmdBody* body = nullptr;
  report_step("make the body", seconds([&] { body = fmdbench::make_body(nodes, modes); }), bytes);
  char qualifiers[] = "SELABEL='large'";
  report_step("store it", seconds([&] {
                require(FMD_write_DB(body, master.data(), qualifiers) == 1, "the body is stored");
              }),
              bytes);
  FMD_UnLink(body);
  report_memory("first process");
}

void read(std::string master, std::string stream, int nodes, int modes, double bytes) {
  FmdBody* body = nullptr;
  std::printf("%-44s %8.2f ms\n", "open it",
              seconds([&] { body = FMD_CreateFromFMD(master.data(), 1); }) * 1e3);
  require(body != nullptr && FMD_NodeCount(body) == nodes && FMD_ModeCount(body) == modes, "the body opens");
  FMD_SetKeepModesInMemory(body, 0);
  require(fmdbench::has_sample_vectors(body, nodes, modes), "its vectors are the ones that were set");
  setenv("KXI_FMDWRITE_OPTIONS", kOptions, 1);
  report_step("write it as a stream file", seconds([&] {
                require(FMD_write_FMD(body, stream.data()) == 1, "the stream file is written");
              }),
              bytes);
  require(static_cast<double>(std::filesystem::file_size(stream)) > bytes, "the stream file has all vectors");
  FMD_UnLink(body);
  report_memory("second process");
}

// In a process of its own, whose memory is its own.
void in_a_process(const std::string& program, const std::string& directory, int nodes, int modes) {
  const std::string of_nodes = std::to_string(nodes);
  const std::string of_modes = std::to_string(modes);
  const pid_t child = fork();
  if (child == 0) {
    execl(program.c_str(), program.c_str(), of_nodes.c_str(), of_modes.c_str(), directory.c_str(), nullptr);
    _exit(127);
  }
  int status = -1;
  require(waitpid(child, &status, 0) == child && status == 0, "the second process succeeds");
}

}  // namespace

int main(int argc, char** argv) {
  const int nodes = fmdbench::argument(argc, argv, 1, 100000);
  const int modes = fmdbench::argument(argc, argv, 2, 20);
  const double bytes = 48.0 * nodes * modes;
  if (argc > 3) {
    const fmdbench::Environment environment;
    const std::string directory = argv[3];
    read(directory + "/large.MASTER", directory + "/large.fmd", nodes, modes, bytes);
    return 0;
  }
  fmdbench::print_environment();
  std::printf("job       %d nodes by %d modes, %.2f GB of mode vectors\n", nodes, modes, bytes / 1e9);
  const fmdbench::Environment environment;
  store(environment.path("large.MASTER"), nodes, modes, bytes);
  in_a_process(std::filesystem::read_symlink("/proc/self/exe"), environment.path(""), nodes, modes);
  return 0;
}
