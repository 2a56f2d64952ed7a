// Adding nodes: in ascending order the time grows no faster than n log n; any other order costs one block
// move an insertion, as it does in a sorted vector. A std::map of the same ids is told for comparison.
//
// bench_nodes [nodes] [nodes in random order] [rounds]
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <functional>
#include <map>
#include <numeric>
#include <random>
#include <utility>
#include <vector>

#include "support/comparison.h"
#include "support/environment.h"
#include "support/sample_body.h"

namespace {

double add_nodes(const std::vector<int>& ids) {
  const int count = static_cast<int>(ids.size());
  FmdBody* body = FMD_Create(count, 1);
  const double time = fmdbench::seconds([&] {
    for (const int id : ids) FMD_AddNode(body, id);
  });
  fmdbench::require(FMD_NodeCount(body) == count, "all nodes are there");
  for (int i = 0; i < count; i += 97) {
    fmdbench::require(FMD_NodeIndex(body, ids[static_cast<std::size_t>(i)]) == i, "ids lead to their nodes");
  }
  FMD_UnLink(body);
  return time;
}

double fill_map(const std::vector<int>& ids) {
  return fmdbench::seconds([&] {
    std::map<int, int> table;
    for (const int id : ids) table.emplace(id, static_cast<int>(table.size()));
    fmdbench::require(table.size() == ids.size(), "the map is full");
  });
}

double fill_sorted_vector(const std::vector<int>& ids) {
  return fmdbench::seconds([&] {
    std::vector<std::pair<int, int>> table;
    table.reserve(ids.size());
    for (const int id : ids) {
      const std::pair<int, int> row(id, static_cast<int>(table.size()));
      table.insert(std::lower_bound(table.begin(), table.end(), row), row);
    }
    fmdbench::require(std::is_sorted(table.begin(), table.end()), "the vector is sorted");
  });
}

std::vector<int> ascending(int count) {
  std::vector<int> ids(static_cast<std::size_t>(count));
  std::iota(ids.begin(), ids.end(), 1);
  return ids;
}

}  // namespace

int main(int argc, char** argv) {
  const int many = fmdbench::argument(argc, argv, 1, 1000000);
  const int some = fmdbench::argument(argc, argv, 2, 50000);
  const int rounds = fmdbench::argument(argc, argv, 3, 7);
  fmdbench::print_environment();
  const fmdbench::Environment environment;

  const std::vector<int> ids = ascending(many);
  const std::vector<int> tenth = ascending(many / 10);
  const fmdbench::Comparison growth = fmdbench::compare(
      rounds, [&] { return add_nodes(tenth); }, [&] { return add_nodes(ids); });
  std::printf("job       adding %d nodes in ascending order, %.0f ns each; peer: a tenth of them\n", many,
              growth.job / many * 1e9);
  fmdbench::report_time("ascending, against a tenth (n log n)", growth,
                        10.0 * std::log(many) / std::log(many / 10));
  fmdbench::report_time("ascending, against std::map",
                        fmdbench::compare(
                            rounds, [&] { return fill_map(ids); }, [&] { return add_nodes(ids); }),
                        1.0);

  std::vector<int> descending = ascending(some);
  std::reverse(descending.begin(), descending.end());
  std::vector<int> shuffled = ascending(some);
  std::shuffle(shuffled.begin(), shuffled.end(), std::mt19937(7));
  for (const auto& [name, order] :
       {std::pair("descending, against a sorted vector", std::cref(descending)),
        std::pair("random order, against a sorted vector", std::cref(shuffled))}) {
    const std::vector<int>& list = order;
    const fmdbench::Comparison insertion = fmdbench::compare(
        rounds, [&] { return fill_sorted_vector(list); }, [&] { return add_nodes(list); });
    fmdbench::report_time(name, insertion, 2.0);
  }
  return 0;
}
