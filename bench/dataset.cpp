// Writing a dataset, XDR and native, beside a copy of the same file by pread and write in pieces of 1 MiB,
// and beside the system's XDR library writing the same mode vectors over stdio; and the memory that a write
// takes.
//
// bench_dataset [nodes] [modes] [rounds]
#include <fcntl.h>
#include <rpc/rpc.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "support/comparison.h"
#include "support/environment.h"
#include "support/memory.h"
#include "support/sample_body.h"

namespace {

using fmdbench::require;
using fmdbench::seconds;

double write_dataset(FmdBody* body, std::string path, const char* options) {
  setenv("KXI_FMDWRITE_OPTIONS", options, 1);
  std::filesystem::remove(path);
  return seconds([&] { require(FMD_write_FMD(body, path.data()) == 1, "the dataset is written"); });
}

double copy_file(const std::string& from, const std::string& to) {
  constexpr std::size_t kPiece = 1 << 20;
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
    close(source);
    close(target);
    require(static_cast<std::uintmax_t>(offset) == std::filesystem::file_size(from), "the copy is whole");
  });
}

double write_with_system_xdr(const std::string& path, int nodes, int modes) {
  std::filesystem::remove(path);
  return seconds([&] {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    XDR codec;
    xdrstdio_create(&codec, file, XDR_ENCODE);
    for (int mode = 1; mode <= modes; ++mode) {
      for (int node = 1; node <= nodes; ++node) {
        double* values = fmdbench::sample_vector(mode, node);
        for (int k = 0; k < 6; ++k) require(xdr_double(&codec, values + k) != 0, "the system's XDR writes");
      }
    }
    xdr_destroy(&codec);
    require(std::fclose(file) == 0, "the system's XDR writes all");
  });
}

// The last vector of the dataset stands in front of what follows the mode shapes; its bytes must be there as
// the encoding has them.
bool holds_vector(const std::string& path, int mode, int nodes, bool xdr) {
  std::vector<unsigned char> expected;
  for (int node = 1; node <= nodes && node <= 50; ++node) {
    for (int k = 0; k < 6; ++k) {
      unsigned char bytes[8];
      std::memcpy(bytes, fmdbench::sample_vector(mode, node) + k, 8);
      for (int i = 0; i < 8; ++i) expected.push_back(bytes[xdr ? 7 - i : i]);
    }
  }
  std::ifstream file(path, std::ios::binary);
  const std::vector<unsigned char> all((std::istreambuf_iterator<char>(file)),
                                       std::istreambuf_iterator<char>());
  return memmem(all.data(), all.size(), expected.data(), expected.size()) != nullptr;
}

// Most resident memory during a write beyond what was resident before it.
void report_memory(const char* name, FmdBody* body, const std::string& path, const char* options) {
  const auto [before, growth] = fmdbench::memory_use([&] { write_dataset(body, path, options); });
  std::printf("%-52s resident before %7.1f MiB  peak growth %6.1f MiB  bar < 64  %s\n", name, before, growth,
              growth < 64.0 ? "kept" : "MISSED");
  std::fflush(stdout);
}

}  // namespace

int main(int argc, char** argv) {
  const int nodes = fmdbench::argument(argc, argv, 1, 100000);
  const int modes = fmdbench::argument(argc, argv, 2, 50);
  const int rounds = fmdbench::argument(argc, argv, 3, 7);
  fmdbench::print_environment();
  const fmdbench::Environment environment;
  FmdBody* body = fmdbench::make_body(nodes, modes);

  struct Encoding {
    const char* name;
    const char* options;
    bool xdr;
  };
  const Encoding encodings[] = {{"XDR", "", true}, {"native", "no_xdr", false}};
  for (const Encoding& encoding : encodings) {
    report_memory((std::string(encoding.name) + ", memory of a write").c_str(), body,
                  environment.path("dataset"), encoding.options);
  }
  for (const Encoding& encoding : encodings) {
    const std::string dataset = environment.path(encoding.name);
    write_dataset(body, dataset, encoding.options);
    const auto bytes = static_cast<double>(std::filesystem::file_size(dataset));
    require(bytes >= 48.0 * nodes * modes, "the dataset holds all vectors");
    require(holds_vector(dataset, modes, nodes, encoding.xdr), "the dataset holds the last vector");
    std::printf("job       writing %.1f MB, %s\n", bytes / 1e6, encoding.name);

    const auto write = [&] { return write_dataset(body, environment.path("dataset"), encoding.options); };
    const auto copy = [&] { return copy_file(dataset, environment.path("copy")); };
    fmdbench::report_rate(std::string(encoding.name) + ", against a copy of the file",
                          fmdbench::compare(rounds, copy, write), bytes, bytes, 0.5);
    if (!encoding.xdr) continue;
    const auto system_xdr = [&] { return write_with_system_xdr(environment.path("copy"), nodes, modes); };
    fmdbench::report_rate("XDR, against the system's XDR library",
                          fmdbench::compare(rounds, system_xdr, write), bytes, 48.0 * nodes * modes, 8.0);
  }
  FMD_UnLink(body);
  return 0;
}
