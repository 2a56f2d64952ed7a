// Setting mode vectors, mode by mode and node by node, beside a loop of 48-byte fwrite calls of the same
// data.
//
// bench_mode_vectors [nodes] [modes] [rounds]
#include <cstdio>

#include "support/comparison.h"
#include "support/environment.h"
#include "support/sample_body.h"

namespace {

using fmdbench::sample_vector;

double write_file(const fmdbench::Environment& environment, int nodes, int modes) {
  const std::string path = environment.path("peer");
  const double time = fmdbench::seconds([&] {
    std::FILE* file = std::fopen(path.c_str(), "wb");
    for (int mode = 1; mode <= modes; ++mode) {
      for (int node = 1; node <= nodes; ++node) std::fwrite(sample_vector(mode, node), 48, 1, file);
    }
    fmdbench::require(std::fclose(file) == 0, "the peer's file can be written");
  });
  std::remove(path.c_str());
  return time;
}

enum class Order { kModeByMode, kNodeByNode };

double set_vectors(int nodes, int modes, int type, Order order) {
  FmdBody* body = fmdbench::make_body_without_vectors(nodes, modes);
  const double time = fmdbench::seconds([&] {
    const int outer = order == Order::kModeByMode ? modes : nodes;
    const int inner = order == Order::kModeByMode ? nodes : modes;
    for (int i = 1; i <= outer; ++i) {
      for (int j = 1; j <= inner; ++j) {
        const int mode = order == Order::kModeByMode ? i : j;
        const int node = order == Order::kModeByMode ? j : i;
        FMD_SetModeVec(body, mode, node, type, sample_vector(mode, node));
      }
    }
  });
  if (type == 0)
    fmdbench::require(fmdbench::has_sample_vectors(body, nodes, modes), "vectors read back as set");
  FMD_UnLink(body);
  return time;
}

}  // namespace

int main(int argc, char** argv) {
  const int nodes = fmdbench::argument(argc, argv, 1, 100000);
  const int modes = fmdbench::argument(argc, argv, 2, 50);
  const int rounds = fmdbench::argument(argc, argv, 3, 5);
  fmdbench::print_environment();
  std::printf("job       setting %d vectors of %d nodes; peer: fwrite of 48 bytes each\n", modes, nodes);

  const fmdbench::Environment environment;
  const auto peer = [&] { return write_file(environment, nodes, modes); };
  const auto measure = [&](const char* name, int type, Order order) {
    const auto job = [&] { return set_vectors(nodes, modes, type, order); };
    fmdbench::report_time(name, fmdbench::compare(rounds, peer, job), 2.0);
  };
  measure("mode shapes, mode by mode", 0, Order::kModeByMode);
  measure("mode shapes, node by node", 0, Order::kNodeByNode);
  measure("modal stress, mode by mode", 1, Order::kModeByMode);
  measure("modal stress, node by node", 1, Order::kNodeByNode);
  return 0;
}
