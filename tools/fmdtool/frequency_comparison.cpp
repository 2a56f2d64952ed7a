#include "frequency_comparison.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace fmdtool {

namespace {

constexpr double rigid_share = 1e-3;

template <typename... Values>
std::string line(const char* format, Values... values) {
  char text[160];
  std::snprintf(text, sizeof text, format, values...);
  return text;
}

}  // namespace

int rigid_mode_count(const std::vector<double>& ascending_hertz) {
  int count = 0;
  for (std::size_t i = 0; i + 1 < ascending_hertz.size(); ++i) {
    if (ascending_hertz[i] < rigid_share * ascending_hertz[i + 1]) count = static_cast<int>(i) + 1;
  }
  return count;
}

FrequencyComparison compare_frequencies(std::vector<double> body, std::vector<double> results) {
  std::sort(body.begin(), body.end());
  std::sort(results.begin(), results.end());
  FrequencyComparison comparison;
  comparison.rigid_modes = rigid_mode_count(body);
  comparison.rigid_modes_of_results = rigid_mode_count(results);
  const auto rigid = static_cast<std::size_t>(comparison.rigid_modes);
  for (std::size_t i = 0; i < rigid; ++i) {
    comparison.largest_rigid = std::max(comparison.largest_rigid, std::fabs(body[i]));
  }
  if (comparison.rigid_modes != comparison.rigid_modes_of_results) return comparison;
  for (std::size_t i = rigid; i < std::min(body.size(), results.size()); ++i) {
    comparison.modes.push_back({static_cast<int>(i) + 1, body[i], results[i]});
  }
  return comparison;
}

std::string comparison_table(const FrequencyComparison& comparison) {
  std::string table = "\n  beside the results\n";
  table += line("  rigid body modes: %d, up to %.3g Hz; results: %d\n", comparison.rigid_modes,
                comparison.largest_rigid, comparison.rigid_modes_of_results);
  if (comparison.modes.empty()) return table + "  no elastic modes to compare\n";
  table += "  mode    dataset [Hz]    results [Hz]    difference\n";
  for (const ComparedMode& mode : comparison.modes) {
    table += line("  %4d    %-12.10g    %-12.10g    %+.5f %%\n", mode.number, mode.hertz, mode.results_hertz,
                  100.0 * FrequencyComparison::difference(mode));
  }
  return table;
}

}  // namespace fmdtool
