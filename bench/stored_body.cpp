// A body stored in a database: the export beside `pread`, `write` and `fsync` of its mode vectors, opening it
// and what that takes of time, bytes and memory, and the first reading of its vectors beside `pread`.
//
// bench_stored_body [nodes] [modes] [rounds]
#include <fcntl.h>
#include <malloc.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/environment.h"
#include "support/sample_body.h"

namespace {

using fmdbench::require;
using fmdbench::seconds;

constexpr std::size_t kPiece = std::size_t{1} << 20;

void remove_database(const std::string& base) {
  for (const char* suffix : {".MASTER", ".DBALL", ".DBFMD"}) std::filesystem::remove(base + suffix);
}

double store(FmdBody* body, const std::string& base) {
  std::string master = base + ".MASTER";
  std::string qualifiers = "SELABEL='bench'";
  return seconds(
      [&] { require(FMD_write_DB(body, master.data(), qualifiers.data()) == 1, "a body is stored"); });
}

double store_new(FmdBody* body, const std::string& base) {
  remove_database(base);
  return store(body, base);
}

// The vectors as bytes, as the peer has them.
void write_vectors(const std::string& path, int nodes, int modes) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  std::setvbuf(file, nullptr, _IOFBF, kPiece);
  for (int mode = 1; mode <= modes; ++mode) {
    for (int node = 1; node <= nodes; ++node) std::fwrite(fmdbench::sample_vector(mode, node), 48, 1, file);
  }
  require(std::fclose(file) == 0, "the peer's file can be written");
}

double copy_and_flush(const std::string& from, const std::string& to) {
  std::vector<char> piece(kPiece);
  std::filesystem::remove(to);
  return seconds([&] {
    const int source = open(from.c_str(), O_RDONLY | O_CLOEXEC);
    const int target = open(to.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    off_t offset = 0;
    for (;;) {
      const ssize_t bytes = pread(source, piece.data(), kPiece, offset);
      if (bytes <= 0) break;
      require(write(target, piece.data(), static_cast<std::size_t>(bytes)) == bytes, "the copy is written");
      offset += bytes;
    }
    require(fsync(target) == 0, "the copy reaches the disk");
    close(source);
    close(target);
  });
}

FmdBody* open_stored(const std::string& base) {
  std::string master = base + ".MASTER";
  FmdBody* const body = FMD_CreateFromFMD(master.data(), 1);
  require(body != nullptr, "a stored body opens");
  return body;
}

double read_stored_vectors(const std::string& base, int nodes, int modes) {
  FmdBody* const body = open_stored(base);
  FMD_SetKeepModesInMemory(body, 0);
  std::vector<double> half(static_cast<std::size_t>(nodes) * 3);
  const double time = seconds([&] {
    for (int mode = 1; mode <= modes; ++mode)
      require(FMD_Mode(body, mode, 0, half.data(), 0) == 1, "a vector is read");
  });
  FMD_UnLink(body);
  return time;
}

double read_peer_vectors(const std::string& path, int nodes, int modes) {
  std::vector<double> vector(static_cast<std::size_t>(nodes) * 6);
  const std::size_t bytes = vector.size() * sizeof(double);
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  const double time = seconds([&] {
    for (int mode = 0; mode < modes; ++mode)
      require(
          pread(file, vector.data(), bytes, static_cast<off_t>(bytes) * mode) == static_cast<ssize_t>(bytes),
          "the peer reads");
  });
  close(file);
  return time;
}

// What the process has read so far.
double bytes_read() {
  std::ifstream counters("/proc/self/io");
  std::string name;
  double value = 0;
  counters >> name >> value;
  return value;
}

struct Opening {
  double milliseconds;
  double kib_read;
  double kib_held;
};

// Median of the openings of a body that nobody holds, the session being there.
Opening measure_opening(const std::string& base) {
  constexpr int kRounds = 101;
  std::vector<double> times;
  Opening opening{};
  for (int round = 0; round < kRounds; ++round) {
    const auto held = static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd);
    const double read = bytes_read();
    FmdBody* body = nullptr;
    times.push_back(seconds([&] { body = open_stored(base); }));
    opening.kib_read = (bytes_read() - read) / 1024;
    opening.kib_held = (static_cast<double>(mallinfo2().uordblks + mallinfo2().hblkhd) - held) / 1024;
    FMD_UnLink(body);
  }
  std::sort(times.begin(), times.end());
  opening.milliseconds = times[kRounds / 2] * 1e3;
  return opening;
}

void report_opening(int nodes, int modes, bool stress, const std::string& base) {
  constexpr double kMostMilliseconds = 2.0;
  FmdBody* body = fmdbench::make_body(nodes, modes);
  for (int mode = 1; stress && mode <= modes; ++mode) {
    for (int node = 1; node <= nodes; ++node) {
      FMD_SetModeVec(body, mode, node, 1, fmdbench::sample_vector(mode, node));
      FMD_SetModeVec(body, mode, node, 2, fmdbench::sample_vector(mode, node));
    }
  }
  store_new(body, base);
  FMD_UnLink(body);
  const Opening opening = measure_opening(base);
  std::printf(
      "open %5d nodes, %4d modes%-19s %7.3f ms  %6.0f KiB read  %6.0f KiB held  of %7.0f KiB  bar <= %.1f ms "
      " %s\n",
      nodes, modes, stress ? ", stress and strain" : "", opening.milliseconds, opening.kib_read,
      opening.kib_held, static_cast<double>(std::filesystem::file_size(base + ".MASTER")) / 1024,
      kMostMilliseconds, opening.milliseconds <= kMostMilliseconds ? "kept" : "MISSED");
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int nodes = fmdbench::argument(argc, argv, 1, 100000);
  const int modes = fmdbench::argument(argc, argv, 2, 50);
  const int rounds = fmdbench::argument(argc, argv, 3, 7);
  fmdbench::print_environment();
  const fmdbench::Environment environment;
  const std::string base = environment.path("stored");
  for (const int some : {50, 100, 200, 400}) report_opening(1000, some, false, base);
  report_opening(1000, 50, true, base);
  report_opening(4000, 50, false, base);

  std::printf("job       %d nodes by %d modes\n", nodes, modes);
  FmdBody* const body = fmdbench::make_body(nodes, modes);
  const std::string vectors = environment.path("vectors");
  write_vectors(vectors, nodes, modes);
  const double bytes = 48.0 * nodes * modes;
  fmdbench::report_rate("export; peer pread, write, fsync of the vectors",
                        fmdbench::compare(
                            rounds, [&] { return copy_and_flush(vectors, environment.path("copy")); },
                            [&] { return store_new(body, base); }),
                        bytes, bytes, 0.4);
  FMD_UnLink(body);
  FmdBody* const stored = open_stored(base);
  require(fmdbench::has_sample_vectors(stored, nodes, modes), "stored vectors are the ones that were set");
  FMD_UnLink(stored);
  fmdbench::report_rate("first read of each vector; peer pread",
                        fmdbench::compare(
                            2 * rounds, [&] { return read_peer_vectors(vectors, nodes, modes); },
                            [&] { return read_stored_vectors(base, nodes, modes); }),
                        bytes, bytes, 0.5);
  return 0;
}
