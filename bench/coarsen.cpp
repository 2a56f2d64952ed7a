// Coarsening of plates of 10,000, 100,000 and 1,000,000 quadrilaterals with a reach of three edges: faces a
// second, and the growth of the time from one size to the next beside that of n log n.
//
// bench_coarsen [most quadrilaterals] [rounds]
#include <fmdtoolkit/fmdtoolkit.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

#include "support/comparison.h"
#include "support/environment.h"

namespace {

using fmdbench::require;
using fmdbench::seconds;

constexpr double kReachInEdges = 3.0;
constexpr double kLeastRate = 0.5e6;  // faces a second

// A slightly wavy plate, so that no two faces are quite in one plane; squares of edge 1 seen from above.
FmdBody* make_plate(int edge) {
  const int across = edge + 1;
  FmdBody* body = FMD_Create(across * across, 1);
  for (int node = 0; node < across * across; ++node) {
    const int x = node % across;
    const int y = node / across;
    FMD_SetNodeCoordinates(body, node + 1, x, y, 0.02 * std::sin(0.7 * x) * std::cos(0.5 * y));
  }
  for (int y = 0; y < edge; ++y) {
    for (int x = 0; x < edge; ++x) {
      const int first = 1 + x + across * y;
      int corners[] = {first, first + 1, first + across + 1, first + across};
      FMD_SetFaceList(body, 4, corners);
    }
  }
  return body;
}

struct Result {
  double time = 0.0;
  int faces = 0;
};

// Twice the area seen from above, as the sum over all faces; faces of one plate go round one way or the
// other.
double area_from_above(FmdBody* body, int edge) {
  const int across = edge + 1;
  int faces = 0;
  int length = 0;
  FMD_FaceListSize(body, &faces, &length);
  std::vector<int> list(static_cast<std::size_t>(length));
  FMD_ElementFaces(body, list.data());
  double total = 0.0;
  for (const int* face = list.data(); face != list.data() + length; face += *face + 1) {
    double twice = 0.0;
    for (int k = 0; k < *face; ++k) {
      const int a = face[1 + k];
      const int b = face[1 + (k + 1) % *face];
      twice += double(a % across) * (b / across) - double(b % across) * (a / across);
    }
    total += std::fabs(twice) / 2;
  }
  return total;
}

Result coarsen(int edge) {
  FmdBody* body = make_plate(edge);
  char options[64];
  std::snprintf(options, sizeof options, "%.17g,10,0", kReachInEdges / (edge * std::sqrt(2.0)));
  Result result;
  result.time = seconds([&] { FMD_TrimGeometry(body, options); });
  int length = 0;
  FMD_FaceListSize(body, &result.faces, &length);
  const double area = double(edge) * edge;
  require(result.faces < edge * edge / 4, "the mesh is coarser");
  require(std::fabs(area_from_above(body, edge) - area) <= 1e-9 * area, "the area is kept");
  FMD_UnLink(body);
  return result;
}

Result median_of(int edge, int rounds) {
  std::vector<Result> results;
  for (int round = 0; round < rounds; ++round) results.push_back(coarsen(edge));
  const auto by_time = [](const Result& left, const Result& right) { return left.time < right.time; };
  std::sort(results.begin(), results.end(), by_time);
  return results[results.size() / 2];
}

}  // namespace

int main(int argc, char** argv) {
  const int most = fmdbench::argument(argc, argv, 1, 1000000);
  const int rounds = fmdbench::argument(argc, argv, 2, 5);
  fmdbench::print_environment();
  const fmdbench::Environment environment;
  std::printf("job       coarsening of wavy plates, reach %.0f edges, median of %d rounds\n", kReachInEdges,
              rounds);
  double faces_before = 0.0;
  double time_before = 0.0;
  for (const int size : {10000, 100000, 1000000}) {
    if (size > most) break;
    const int edge = static_cast<int>(std::lround(std::sqrt(size)));
    const Result result = median_of(edge, rounds);
    const double faces = double(edge) * edge;
    const double rate = faces / result.time;
    std::printf("%-9.0f to %-8d faces %9.4f s  %8.0f faces/s (at least %.0f: %s)\n", faces, result.faces,
                result.time, rate, kLeastRate, rate >= kLeastRate ? "kept" : "MISSED");
    if (time_before > 0.0) {
      const double growth = result.time / time_before;
      const double bar = faces * std::log(faces) / (faces_before * std::log(faces_before));
      std::printf("          %.2f times the time of the size before (n log n: at most %.2f: %s)\n", growth,
                  bar, growth <= bar ? "kept" : "MISSED");
    }
    faces_before = faces;
    time_before = result.time;
  }
  return 0;
}
