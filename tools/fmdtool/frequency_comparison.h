// The frequencies of a body beside those of a finite-element run of the same part.
#ifndef FMDTOOL_FREQUENCY_COMPARISON_H
#define FMDTOOL_FREQUENCY_COMPARISON_H

#include <string>
#include <vector>

namespace fmdtool {

struct ComparedMode {
  int number;  // counted from 1 among the results
  double hertz;
  double results_hertz;
};

struct FrequencyComparison {
  int rigid_modes = 0;  // of the body
  int rigid_modes_of_results = 0;
  double largest_rigid = 0.0;       // frequency of the body
  std::vector<ComparedMode> modes;  // elastic ones; none where the numbers of rigid modes differ

  // (body - results) / results.
  static double difference(const ComparedMode& mode) {
    return (mode.hertz - mode.results_hertz) / mode.results_hertz;
  }
};

// How many of the ascending frequencies come before the last that lies below a thousandth of the next.
int rigid_mode_count(const std::vector<double>& ascending_hertz);

// In ascending order the elastic modes of both belong together.
FrequencyComparison compare_frequencies(std::vector<double> body, std::vector<double> results);

std::string comparison_table(const FrequencyComparison& comparison);

}  // namespace fmdtool

#endif
