// FMD_Mode of a mode that is not in memory beside pread of the bytes that it stands in.
//
// bench_read_mode [nodes] [modes] [rounds]
#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/environment.h"
#include "support/sample_body.h"

namespace {

// All modes once, so that none is the one loaded last. The vectors of both halves stand side by side in the
// store, so a half costs the reading of the whole.
double read_modes(FmdBody* body, int modes, std::vector<double>& half) {
  return fmdbench::seconds([&] {
    for (int mode = 1; mode <= modes; ++mode) {
      fmdbench::require(FMD_Mode(body, mode, 0, half.data(), 0) == 1, "a mode can be read");
    }
  });
}

// Written in large pieces: the system keeps a file read faster that came in large pieces.
int write_peer_file(const std::string& path, int nodes, int modes) {
  std::FILE* file = std::fopen(path.c_str(), "wb");
  std::setvbuf(file, nullptr, _IOFBF, 1 << 20);
  for (int mode = 1; mode <= modes; ++mode) {
    for (int node = 1; node <= nodes; ++node) std::fwrite(fmdbench::sample_vector(mode, node), 48, 1, file);
  }
  fmdbench::require(std::fclose(file) == 0, "the peer's file can be written");
  return open(path.c_str(), O_RDONLY | O_CLOEXEC);
}

double read_file(int file, int modes, std::vector<double>& vector) {
  const std::size_t bytes = vector.size() * sizeof(double);
  return fmdbench::seconds([&] {
    for (int mode = 0; mode < modes; ++mode) {
      const auto offset = static_cast<off_t>(bytes) * mode;
      fmdbench::require(pread(file, vector.data(), bytes, offset) == static_cast<ssize_t>(bytes),
                        "the peer reads");
    }
  });
}

}  // namespace

int main(int argc, char** argv) {
  const int nodes = fmdbench::argument(argc, argv, 1, 100000);
  const int modes = fmdbench::argument(argc, argv, 2, 50);
  const int rounds = fmdbench::argument(argc, argv, 3, 15);
  fmdbench::print_environment();
  std::printf("job       FMD_Mode of %d modes of %d nodes, none in memory; peer: pread of their bytes\n",
              modes, nodes);

  const fmdbench::Environment environment;
  FmdBody* body = fmdbench::make_body(nodes, modes);
  fmdbench::require(fmdbench::has_sample_vectors(body, nodes, modes), "vectors read back as set");
  const int file = write_peer_file(environment.path("peer"), nodes, modes);

  std::vector<double> half(static_cast<std::size_t>(nodes) * 3);
  std::vector<double> vector(static_cast<std::size_t>(nodes) * 6);
  const double bytes = 48.0 * nodes * modes;
  const fmdbench::Comparison comparison = fmdbench::compare(
      rounds, [&] { return read_file(file, modes, vector); }, [&] { return read_modes(body, modes, half); });
  fmdbench::report_rate("one half of each mode", comparison, bytes, bytes, 0.5);
  close(file);
  FMD_UnLink(body);
  return 0;
}
