// What is in a written dataset, as a table and as JSON.
#ifndef FMDTOOL_REPORT_H
#define FMDTOOL_REPORT_H

#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtool {

struct ReportedMode {
  int number;
  double hertz;
};

struct Report {
  std::string title;
  std::string results;
  std::string deck;
  std::string dataset;
  std::array<std::string, 4> units;  // mass, length, time, force
  int nodes = 0;
  int elements = 0;
  int faces = 0;
  int interface_nodes = 0;
  std::vector<ReportedMode> modes;
  double mass = 0.0;
  std::array<double, 3> centre{};
  std::array<double, 3> box_low{};
  std::array<double, 3> box_high{};
  std::uintmax_t bytes = 0;
  double seconds = 0.0;
};

// Takes from a body that has been written what the dataset holds of it, the modes as many as were exported.
void describe_body(FmdBody* body, int exported_modes, Report& report);

std::string as_table(const Report& report);
std::string as_json(const Report& report);

}  // namespace fmdtool

#endif
