// Rewriting mode vectors. FMD_TransformModes beside OpenBLAS: the sums over all old modes are the entries of
// a product of the vectors, six values a node, with the matrix, as one call of cblas_dgemm on one thread
// forms them in memory; and beside a copy of the vectors through the store, which the disk bounds.
// transform_mode beside the same copy.
//
// bench_transform_modes [nodes] [modes] [rounds]
//
// The peer runs with the core type of OpenBLAS that is fastest here: every type is tried in a process of its
// own, since the library reads its choice as it is loaded.
#include <cblas.h>
#include <unistd.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "dbmodal/dbtools/transform_modes_kernel.h"
#include "support/comparison.h"
#include "support/environment.h"
#include "support/memory.h"
#include "support/sample_body.h"

namespace {

using fmdbench::require;
using fmdbench::seconds;

struct Size {
  int nodes;
  int modes;
  std::size_t rows() const { return 6 * static_cast<std::size_t>(nodes); }
  std::size_t columns() const { return static_cast<std::size_t>(modes); }
  double flops() const { return 2.0 * static_cast<double>(rows()) * modes * modes; }
  double bytes() const { return 8.0 * static_cast<double>(rows()) * modes; }
};

std::vector<double> sample_matrix(Size size) {
  std::vector<double> matrix(size.columns() * size.columns());
  for (std::size_t i = 0; i < matrix.size(); ++i)
    matrix[i] = 1e-3 * static_cast<double>(i * 7919 % 1999) - 1.0;
  return matrix;
}

// Vectors one after the other, as they stand in the store.
class Peer {
 public:
  explicit Peer(Size size) : size_(size), old_(size.rows() * size.columns()), new_(old_.size()) {
    for (std::size_t i = 0; i < old_.size(); ++i) old_[i] = 1e-3 * static_cast<double>(i % 1000) - 0.5;
  }
  double run() {
    const int rows = static_cast<int>(size_.rows());
    return seconds([&] {
      // The matrix is row by row and the vectors column by column.
      cblas_dgemm(CblasColMajor, CblasNoTrans, CblasTrans, rows, size_.modes, size_.modes, 1.0, old_.data(),
                  rows, matrix_.data(), size_.modes, 0.0, new_.data(), rows);
    });
  }

 private:
  Size size_;
  std::vector<double> matrix_ = sample_matrix(size_);
  std::vector<double> old_;
  std::vector<double> new_;
};

constexpr const char* kProbe = "--probe";
constexpr const char* kChosen = "FMDBENCH_PEER_CHOSEN";

int probe(Size size) {
  Peer peer(size);
  double best = peer.run();
  for (int round = 0; round < 4; ++round) best = std::min(best, peer.run());
  std::printf("%s %f\n", openblas_get_corename(), size.flops() / best * 1e-9);
  return 0;
}

double probe_core_type(const std::string& program, const char* core, Size size, char* name) {
  setenv("OPENBLAS_CORETYPE", core, 1);
  const std::string command = "'" + program + "' " + kProbe + " " + std::to_string(size.nodes / 10) + " " +
                              std::to_string(size.modes) + " 2>/dev/null";
  double rate = 0.0;
  std::FILE* answer = popen(command.c_str(), "r");
  if (answer == nullptr) return 0.0;
  if (std::fscanf(answer, "%63s %lf", name, &rate) != 2) rate = 0.0;
  pclose(answer);
  return rate;
}

// Starts the program anew under the fastest core type; comes back where that is done already.
void choose_core_type(char** argv, Size size) {
  if (std::getenv(kChosen) != nullptr) return;
  unsetenv("OPENBLAS_L2_SIZE");
  const std::string program = "/proc/" + std::to_string(getpid()) + "/exe";
  std::string fastest;
  double most = 0.0;
  for (const char* core : {"Haswell", "Zen", "SkylakeX", "Cooperlake", "SapphireRapids"}) {
    char name[64] = "";
    const double rate = probe_core_type(program, core, size, name);
    if (rate == 0.0) continue;
    std::printf("core type %-15s runs as %-15s %6.1f GFLOP/s\n", core, name, rate);
    if (rate <= most) continue;
    most = rate;
    fastest = core;
  }
  std::fflush(stdout);
  setenv("OPENBLAS_CORETYPE", fastest.c_str(), 1);
  setenv(kChosen, "1", 1);
  execv("/proc/self/exe", argv);
  require(false, "the program can be started anew");
}

// The product in memory, a tile after the other, as the operation has them.
double run_kernel(Size size) {
  constexpr std::int64_t kTileNodes = 3495;
  fmd::ModeProduct product;
  const std::vector<double> matrix = sample_matrix(size);
  require(product.prepare(fmd::widest_vector_unit(), matrix.data(), size.modes, size.modes),
          "there is memory for the product");
  std::vector<double> tile(6 * kTileNodes * size.columns(), 0.25);
  std::vector<double*> pieces;
  for (std::size_t mode = 0; mode < size.columns(); ++mode)
    pieces.push_back(tile.data() + mode * 6 * kTileNodes);
  return seconds([&] {
    for (std::int64_t first = 0; first < size.nodes; first += kTileNodes)
      product.transform(pieces.data(), 6 * std::min<std::int64_t>(kTileNodes, size.nodes - first));
    for (std::size_t i = 0; i < tile.size(); ++i) tile[i] = 0.25;
  });
}

// As many bytes as all vectors have, in a datablock of their own, copied to another one 192 KiB at a time.
class StoreCopy {
 public:
  explicit StoreCopy(Size size) : left_(static_cast<std::int64_t>(size.bytes()) / 8), piece_(kPiece, 0.25) {
    source_ = open();
    each_piece([&](int count) { return DB_WriteDOUBLEs(source_, piece_.data(), count); });
    DB_ReOpenScratch(source_.Block);
  }
  ~StoreCopy() { DB_CloseDatablk(source_.Block); }
  StoreCopy(const StoreCopy&) = delete;
  StoreCopy& operator=(const StoreCopy&) = delete;

  double run() {
    DB_REWIND(source_);
    return seconds([&] {
      const FmdStream copy = open();
      each_piece([&](int count) {
        return DB_ReadDOUBLEs(source_, piece_.data(), count) != 0 &&
               DB_WriteDOUBLEs(copy, piece_.data(), count) != 0;
      });
      DB_ReOpenScratch(copy.Block);
      DB_CloseDatablk(copy.Block);
    });
  }

 private:
  static constexpr int kPiece = 24576;

  static FmdStream open() {
    FmdStream stream = {};
    stream.DoublePrecision = 1;
    stream.Block = DB_OpenScratch(&stream.Key);
    DB_FSAVE(&stream.StartPosition, stream);
    return stream;
  }
  template <typename Action>
  void each_piece(Action act) {
    for (std::int64_t left = left_; left > 0; left -= kPiece)
      require(act(static_cast<int>(std::min<std::int64_t>(left, kPiece))) != 0, "the store has room");
  }

  std::int64_t left_;
  std::vector<double> piece_;
  FmdStream source_;
};

double run_transformation(FmdBody* body, Size size, std::vector<double>& matrix) {
  return seconds([&] {
    require(FMD_TransformModes(body, 0, size.modes, matrix.data()) == 1, "the modes can be transformed");
  });
}

double run_rotation(FmdBody* body) {
  double matrix[] = {0.36, 0.48, -0.8, -0.8, 0.6, 0, 0.48, 0.64, 0.6};
  return seconds([&] { transform_mode(body, matrix, 0); });
}

// New modes of some nodes are the plain sums, to the last bit.
void check(Size size) {
  FmdBody* body = fmdbench::make_body(size.nodes, size.modes);
  std::vector<double> matrix = sample_matrix(size);
  run_transformation(body, size, matrix);
  std::vector<double> vector(size.rows());
  for (int column = 0; column < size.modes; column += 7) {
    require(FMD_Read_Mode_Double(body, column + 1, 0, vector.data()) == 1, "a new mode can be read");
    for (int node = 1; node <= size.nodes; node += 997) {
      double sum[6] = {};
      for (int mode = 0; mode < size.modes; ++mode) {
        const double t = matrix[static_cast<std::size_t>(mode * size.modes + column)];
        const double* six = fmdbench::sample_vector(mode + 1, node);
        for (int k = 0; k < 6; ++k) sum[k] += t * six[k];
      }
      require(std::memcmp(sum, vector.data() + std::ptrdiff_t{6} * (node - 1), sizeof sum) == 0,
              "a new mode has the bits of the plain sum");
    }
  }
  FMD_UnLink(body);
}

// Keeps the numbers finite over all rounds, without a term that could be skipped.
std::vector<double> full_matrix_of_small_sums(Size size) {
  std::vector<double> matrix = sample_matrix(size);
  for (double& t : matrix) t /= size.modes;
  return matrix;
}

}  // namespace

int main(int argc, char** argv) {
  const bool is_probe = argc > 1 && std::strcmp(argv[1], kProbe) == 0;
  if (is_probe) ++argv, --argc;
  const Size size = {fmdbench::argument(argc, argv, 1, 200000), fmdbench::argument(argc, argv, 2, 100)};
  setenv("OPENBLAS_NUM_THREADS", "1", 1);
  openblas_set_num_threads(1);
  if (is_probe) return probe(size);
  choose_core_type(argv, size);

  const int rounds = fmdbench::argument(argc, argv, 3, 7);
  fmdbench::print_environment();
  std::printf("%d nodes, %d modes, OpenBLAS as %s on one thread\n", size.nodes, size.modes,
              openblas_get_corename());
  const fmdbench::Environment environment;
  check({std::min(size.nodes, 20000), size.modes});

  FmdBody* body = fmdbench::make_body(size.nodes, size.modes);
  std::vector<double> matrix = full_matrix_of_small_sums(size);
  const fmdbench::MemoryUse use = fmdbench::memory_use([&] { run_transformation(body, size, matrix); });
  std::printf("memory of the transformation: %.1f MiB beyond %.1f MiB (bar: below 200 MiB)\n", use.growth,
              use.before);
  {
    Peer peer(size);
    const auto dgemm = [&] { return peer.run(); };
    fmdbench::report_rate("sums in memory, beside dgemm",
                          fmdbench::compare(rounds, dgemm, [&] { return run_kernel(size); }), size.bytes(),
                          size.bytes(), 0.3);
    fmdbench::report_rate(
        "FMD_TransformModes, beside dgemm",
        fmdbench::compare(rounds, dgemm, [&] { return run_transformation(body, size, matrix); }),
        size.bytes(), size.bytes(), 0.3);
  }
  StoreCopy store_copy(size);
  const auto copy = [&] { return store_copy.run(); };
  fmdbench::report_rate(
      "FMD_TransformModes, beside a copy through the store",
      fmdbench::compare(rounds, copy, [&] { return run_transformation(body, size, matrix); }), size.bytes(),
      size.bytes(), 0.0);
  fmdbench::report_rate("transform_mode, beside a copy through the store",
                        fmdbench::compare(rounds, copy, [&] { return run_rotation(body); }), size.bytes(),
                        size.bytes(), 0.3);
  FMD_UnLink(body);
  return 0;
}
