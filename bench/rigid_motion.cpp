// Rotation of a body beside a copy of its mode vectors through the store: what was written is read back
// and written to a new scratch block, which is what no rotation can go without.
//
// bench_rigid_motion [nodes] [modes] [rounds]
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "support/comparison.h"
#include "support/environment.h"
#include "support/sample_body.h"

namespace {

FmdStream open_scratch() {
  FmdStream stream = {};
  stream.DoublePrecision = 1;
  stream.Block = DB_OpenScratch(&stream.Key);
  fmdbench::require(stream.Block != 0, "the store has room");
  return stream;
}

FmdStream store_vectors(int nodes, int modes) {
  const FmdStream stream = open_scratch();
  for (int mode = 1; mode <= modes; ++mode) {
    for (int node = 1; node <= nodes; ++node)
      fmdbench::require(DB_WriteDOUBLEs(stream, fmdbench::sample_vector(mode, node), 6) == 1, "it is stored");
  }
  fmdbench::require(DB_ReOpenScratch(stream.Block) == 1, "it can be read");
  return stream;
}

// In pieces that stay in the processor's cache between reading and writing.
double copy_vectors(const FmdStream& source, int nodes, int modes) {
  constexpr std::int64_t kPiece = 24576;
  std::vector<double> piece(kPiece);
  FmdPosition start = {};
  DB_FSAVE(&start, source);
  const double time = fmdbench::seconds([&] {
    const FmdStream target = open_scratch();
    for (std::int64_t left = std::int64_t{6} * nodes * modes; left > 0; left -= kPiece) {
      const int count = static_cast<int>(std::min(left, kPiece));
      fmdbench::require(DB_ReadDOUBLEs(source, piece.data(), count) == 1, "the copy reads");
      fmdbench::require(DB_WriteDOUBLEs(target, piece.data(), count) == 1, "the copy writes");
    }
    fmdbench::require(DB_ReOpenScratch(target.Block) == 1, "the copy can be read");
    DB_CloseDatablk(target.Block);
  });
  DB_FRESTORE(&start, source);
  return time;
}

double rotate(FmdBody* body, double degrees) {
  double axis[] = {0.0, 0.0, 1.0};
  double origin[] = {0.0, 0.0, 0.0};
  return fmdbench::seconds(
      [&] { fmdbench::require(FMD_Rotate(body, axis, origin, degrees) == 1, "a body can be turned"); });
}

// A quarter of a turn takes x to y and y to -x.
void check_rotation(FmdBody* body, int nodes, int mode) {
  std::vector<double> before(static_cast<std::size_t>(nodes) * 3);
  std::vector<double> after(before.size());
  fmdbench::require(FMD_Mode(body, mode, 0, before.data(), 0) == 1, "a mode can be read");
  rotate(body, 90.0);
  fmdbench::require(FMD_Mode(body, mode, 0, after.data(), 0) == 1, "a mode can be read");
  double worst = 0.0;
  double largest = 1.0;
  for (std::size_t k = 0; k < before.size(); k += 3) {
    largest = std::fmax(largest, std::fmax(std::fabs(before[k]), std::fabs(before[k + 1])));
    worst = std::fmax(worst, std::fabs(after[k] + before[k + 1]));
    worst = std::fmax(worst, std::fabs(after[k + 1] - before[k]));
    worst = std::fmax(worst, std::fabs(after[k + 2] - before[k + 2]));
  }
  fmdbench::require(worst <= 1e-14 * largest, "a quarter of a turn");
}

}  // namespace

int main(int argc, char** argv) {
  const int nodes = fmdbench::argument(argc, argv, 1, 100000);
  const int modes = fmdbench::argument(argc, argv, 2, 50);
  const int rounds = fmdbench::argument(argc, argv, 3, 5);
  fmdbench::print_environment();
  std::printf("job       turning a body of %d modes of %d nodes; peer: copying its mode vectors\n", modes,
              nodes);

  const fmdbench::Environment environment;
  FmdBody* body = fmdbench::make_body(nodes, modes);
  check_rotation(body, nodes, modes);
  const FmdStream source = store_vectors(nodes, modes);
  const double bytes = 48.0 * nodes * modes;
  const fmdbench::Comparison comparison = fmdbench::compare(
      rounds, [&] { return copy_vectors(source, nodes, modes); }, [&] { return rotate(body, 30.0); });
  fmdbench::report_rate("rotation of a whole body", comparison, bytes, bytes, 0.3);
  DB_CloseDatablk(source.Block);
  FMD_UnLink(body);
  return 0;
}
