// Invariants 5 and 9 beside OpenBLAS: the sums over all pairs of modes are the entries of G = V^T M V, as
// many as cblas_dsyrk forms of a matrix of nodes by three times the modes. One thread. Also beside a plain
// loop over pairs and nodes, whose bits must come out.
//
// bench_invariants [nodes] [modes] [rounds] [rounds of the plain loop]
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

#include "dbmodal/dbinvar/invariant_storage.h"
#include "dbmodal/dbinvar/pair_sums.h"
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
  int columns() const { return 3 * modes; }
  std::size_t values() const { return static_cast<std::size_t>(nodes) * static_cast<std::size_t>(columns()); }
  double flops() const { return 1.0 * nodes * columns() * (columns() + 1); }
};

// The sums of dsyrk, of a matrix that has a column per mode and component ("node by node") or a row.
class Peer {
 public:
  Peer(Size size, bool node_by_node) : size_(size), node_by_node_(node_by_node), matrix_(size.values()) {
    for (std::size_t i = 0; i < matrix_.size(); ++i) matrix_[i] = 1e-3 * static_cast<double>(i % 1000) - 0.5;
    const auto n = static_cast<std::size_t>(size.columns());
    sums_.resize(n * n);
  }

  double run() {
    const int n = size_.columns();
    return seconds([&] {
      cblas_dsyrk(CblasRowMajor, CblasUpper, node_by_node_ ? CblasTrans : CblasNoTrans, n, size_.nodes, 1.0,
                  matrix_.data(), node_by_node_ ? n : size_.nodes, 0.0, sums_.data(), n);
    });
  }

 private:
  Size size_;
  bool node_by_node_;
  std::vector<double> matrix_;
  std::vector<double> sums_;
};

double best_rate(Size size, bool node_by_node) {
  Peer peer(size, node_by_node);
  double best = peer.run();
  for (int round = 0; round < 6; ++round) best = std::min(best, peer.run());
  return size.flops() / best * 1e-9;
}

// Rates of both layouts under a core type, as the program tells them when asked so.
struct Rates {
  char core[64] = "";
  double by_mode = 0.0;
  double by_node = 0.0;
  double best() const { return std::max(by_mode, by_node); }
};

constexpr const char* kProbe = "--probe";
constexpr const char* kChosenLayout = "FMDBENCH_PEER_LAYOUT";

int probe(Size size) {
  std::printf("%s %f %f\n", openblas_get_corename(), best_rate(size, false), best_rate(size, true));
  return 0;
}

Rates probe_core_type(const char* program, const char* core, Size size) {
  setenv("OPENBLAS_CORETYPE", core, 1);
  const std::string command = std::string("'") + program + "' " + kProbe + " " + std::to_string(size.nodes) +
                              " " + std::to_string(size.modes) + " 2>/dev/null";
  Rates rates;
  std::FILE* answer = popen(command.c_str(), "r");
  if (answer == nullptr) return rates;
  if (std::fscanf(answer, "%63s %lf %lf", rates.core, &rates.by_mode, &rates.by_node) != 3) rates = Rates{};
  pclose(answer);
  return rates;
}

// Starts the program anew under the fastest core type; comes back where that is done already.
void choose_core_type(char** argv, Size size) {
  if (std::getenv(kChosenLayout) != nullptr) return;
  unsetenv("OPENBLAS_L2_SIZE");
  const std::string program = "/proc/" + std::to_string(getpid()) + "/exe";
  std::string fastest;
  Rates most;
  for (const char* core : {"Haswell", "Zen", "SkylakeX", "Cooperlake", "SapphireRapids"}) {
    const Rates rates = probe_core_type(program.c_str(), core, size);
    if (rates.best() == 0.0) continue;
    std::printf("core type %-15s runs as %-15s %6.1f GFLOP/s mode by mode, %6.1f node by node\n", core,
                rates.core, rates.by_mode, rates.by_node);
    if (rates.best() <= most.best()) continue;
    most = rates;
    fastest = core;
  }
  std::fflush(stdout);
  setenv("OPENBLAS_CORETYPE", fastest.c_str(), 1);
  setenv(kChosenLayout, most.by_node > most.by_mode ? "node by node" : "mode by mode", 1);
  execv("/proc/self/exe", argv);
  require(false, "the program can be started anew");
}

// What the body holds, three translations a node, mode by mode.
struct Vectors {
  explicit Vectors(Size s) : size(s), mass(static_cast<std::size_t>(s.nodes), 0.001), values(s.values()) {
    double* to = values.data();
    for (int mode = 1; mode <= size.modes; ++mode)
      for (int node = 1; node <= size.nodes; ++node, to += 3)
        std::copy_n(fmdbench::sample_vector(mode, node), 3, to);
  }

  double* of_mode(int mode) { return values.data() + static_cast<std::ptrdiff_t>(mode) * 3 * size.nodes; }

  Size size;
  std::vector<double> mass;
  std::vector<double> values;
};

double run_kernel(Vectors& vectors, const fmd::TensorRows& tensors) {
  constexpr int kBlock = 512;
  const int modes = vectors.size.modes;
  std::vector<fmd::ModeTranslations> pieces;
  for (int mode = 0; mode < modes; ++mode) pieces.push_back({vectors.of_mode(mode), 3});
  std::vector<double> workspace(static_cast<std::size_t>(fmd::pair_sums_workspace(modes, kBlock)));
  std::fill_n(tensors[0][0], std::int64_t{9} * modes * modes, 0.0);
  const fmd::PairPanel panel = {vectors.mass.data(), vectors.size.nodes, pieces.data(), modes, kBlock,
                                workspace.data()};
  return seconds([&] { fmd::add_pair_sums(fmd::widest_vector_unit(), panel, tensors.get()); });
}

// One pair after the other, one node after the other, with the exported operations.
double run_plain_loop(Vectors& vectors, const fmd::TensorRows& tensors) {
  double cross[3] = {};
  const int modes = vectors.size.modes;
  std::fill_n(tensors[0][0], std::int64_t{9} * modes * modes, 0.0);
  return seconds([&] {
    for (int i = 0; i < modes; ++i) {
      for (int j = i; j < modes; ++j) {
        double* a = vectors.of_mode(i);
        double* b = vectors.of_mode(j);
        double* tensor = tensors[static_cast<std::size_t>(i)][j];
        for (int node = 0; node < vectors.size.nodes; ++node, a += 3, b += 3) {
          const double mass = vectors.mass[static_cast<std::size_t>(node)];
          incr_scalar_tilde_tilde(tensor, mass, a, b);
          incr_scalar_tilde_vec(cross, mass, a, b);
        }
      }
    }
  });
}

// The same with both modes fetched for each pair.
double run_plain_job(FmdBody* body, Size size) {
  std::vector<double> a(static_cast<std::size_t>(size.nodes) * 3);
  std::vector<double> b(a.size());
  FMD_SetKeepModesInMemory(body, 1);
  const double time = seconds([&] {
    for (int i = 0; i < size.modes; ++i) {
      for (int j = i; j < size.modes; ++j) {
        double tensor[9] = {};
        double cross[3] = {};
        require(FMD_Mode(body, i + 1, 0, a.data(), 0) == 1, "a mode can be read");
        require(FMD_Mode(body, j + 1, 0, b.data(), 0) == 1, "a mode can be read");
        for (int node = 0; node < size.nodes; ++node) {
          double* at_a = &a[static_cast<std::size_t>(node) * 3];
          double* at_b = &b[static_cast<std::size_t>(node) * 3];
          incr_scalar_tilde_tilde(tensor, FMD_NodalMass(body, node), at_a, at_b);
          incr_scalar_tilde_vec(cross, FMD_NodalMass(body, node), at_a, at_b);
        }
      }
    }
  });
  FMD_SetKeepModesInMemory(body, 0);
  return time;
}

double run_job(FmdBody* body) {
  return seconds([&] { FMD_FreeMemory(FMD_Invar9(body, 0, 0)); });
}

double run_job(Size size) {
  FmdBody* body = fmdbench::make_body(size.nodes, size.modes);
  const double time = run_job(body);
  FMD_UnLink(body);
  return time;
}

bool has_bits(FmdBody* body, const fmd::TensorRows& expected, int modes) {
  for (int i = 0; i < modes; ++i) {
    for (int j = i + 1; j < modes; ++j) {
      double* found = FMD_Invar9(body, i, j);
      const bool same =
          found != nullptr && std::memcmp(found, expected[static_cast<std::size_t>(i)][j], 72) == 0;
      FMD_FreeMemory(found);
      if (!same) return false;
    }
  }
  return true;
}

void report(const char* name, Size size, const fmdbench::Comparison& comparison, double least) {
  const double ratio = 1.0 / comparison.ratio;
  std::printf("%-44s peer %6.1f GFLOP/s  job %6.1f GFLOP/s  rate ratio %6.2f  bar >= %.1f  %s\n", name,
              size.flops() / comparison.peer * 1e-9, size.flops() / comparison.job * 1e-9, ratio, least,
              ratio >= least ? "kept" : "MISSED");
  std::fflush(stdout);
}

void report_memory(FmdBody* body, Size size) {
  const double results = 8.0 * size.modes * size.modes * (9 + 1 + 3) / (1 << 20);
  const double scratch = 2 * 24.0 * size.nodes / (1 << 20);
  const fmdbench::MemoryUse use = fmdbench::memory_use([&] { run_job(body); });
  const double bound = results + scratch + 64.0;
  std::printf("memory    peak growth %.1f MiB  bar < results %.1f + two half vectors %.1f + 64  %s\n",
              use.growth, results, scratch, use.growth < bound ? "kept" : "MISSED");
}

}  // namespace

int main(int argc, char** argv) {
  openblas_set_num_threads(1);
  if (argc > 3 && std::strcmp(argv[1], kProbe) == 0) return probe({std::atoi(argv[2]), std::atoi(argv[3])});
  const Size size = {fmdbench::argument(argc, argv, 1, 100000), fmdbench::argument(argc, argv, 2, 60)};
  const int rounds = fmdbench::argument(argc, argv, 3, 9);
  const int plain_rounds = fmdbench::argument(argc, argv, 4, 3);
  choose_core_type(argv, size);

  fmdbench::print_environment();
  const std::string layout = std::getenv(kChosenLayout);
  std::printf("peer      dsyrk, %s, core type %s, one thread, matrix %s\n", openblas_get_config(),
              openblas_get_corename(), layout.c_str());
  std::printf("job       invariants 5 and 9, %d nodes, %d modes, vectors in the store, mode cache off\n",
              size.nodes, size.modes);

  const fmdbench::Environment environment;
  Vectors vectors(size);
  const fmd::TensorRows plain = fmd::make_pair_tensors(size.modes);
  const fmd::TensorRows sums = fmd::make_pair_tensors(size.modes);
  run_plain_loop(vectors, plain);
  run_kernel(vectors, sums);
  require(std::memcmp(plain[0][0], sums[0][0],
                      sizeof(double) * 9U * static_cast<std::size_t>(size.modes) *
                          static_cast<std::size_t>(size.modes)) == 0,
          "the kernel has the bits of the plain loop");
  FmdBody* body = fmdbench::make_body(size.nodes, size.modes);
  report_memory(body, size);
  require(has_bits(body, plain, size.modes), "the invariants have the bits of the plain loop");
  std::printf("bits      those of the plain loop\n");

  {
    Peer peer(size, layout == "node by node");
    report("kernel, against dsyrk", size,
           fmdbench::compare(
               rounds, [&] { return peer.run(); }, [&] { return run_kernel(vectors, sums); }),
           0.4);
    report("with reading, against dsyrk", size,
           fmdbench::compare(
               rounds, [&] { return peer.run(); }, [&] { return run_job(size); }),
           0.3);
  }
  report("kernel, against the plain loop", size,
         fmdbench::compare(
             plain_rounds, [&] { return run_plain_loop(vectors, plain); },
             [&] { return run_kernel(vectors, sums); }),
         10.0);
  report("with reading, against the plain loop", size,
         fmdbench::compare(
             plain_rounds, [&] { return run_plain_job(body, size); }, [&] { return run_job(size); }),
         10.0);
  FMD_UnLink(body);
  return 0;
}
