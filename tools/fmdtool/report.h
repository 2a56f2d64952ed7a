// What is in a written dataset, as a table and as JSON.
#ifndef FMDTOOL_REPORT_H
#define FMDTOOL_REPORT_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "calculix/reduction.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "frequency_comparison.h"

namespace fmdtool {

struct ReportedMode {
  int number;
  double hertz;  // not a number for one that is not orthogonal to the others
};

// About the origin of the body.
struct ReportedInvariants {
  std::string set;  // full or fast
  double mass;
  std::array<double, 3> first_moment;
  std::array<double, 9> inertia;
};

struct ReportedMonitor {
  std::string name;
  std::string label;
  std::array<double, 3> at;
};

// Force and moment are what the nodal loads amount to, about the origin of the body.
struct ReportedLoadCase {
  std::string label;
  int nodal_loads;
  std::array<double, 3> force;
  std::array<double, 3> moment;
};

// Where the modes come from, when they were made from matrices.
struct ReportedReduction {
  std::string stiffness;  // file
  int constraint_modes;
  int fixed_interface_modes;
  std::vector<calculix::Attachment> interfaces;
};

struct Report {
  std::string title;
  std::string results;
  std::string deck;
  std::string dataset;               // file or database
  std::string qualifiers;            // in a database
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
  std::optional<ReportedInvariants> invariants;
  std::vector<ReportedMonitor> monitor_points;
  std::vector<ReportedLoadCase> load_cases;
  std::optional<ReportedReduction> reduction;
  std::optional<FrequencyComparison> comparison;
  std::uintmax_t bytes = 0;
  double seconds = 0.0;
};

// Takes from a body that has been written what the dataset holds of it, the modes as many as were exported.
void describe_body(FmdBody* body, int exported_modes, Report& report);

// Frequencies of all modes that the body holds, exported or not, in Hz; empty where they are not orthogonal.
std::vector<double> frequencies_of(FmdBody* body);

// Adds the invariants of the rigid body.
void describe_invariants(FmdBody* body, const std::string& set, Report& report);

std::string as_table(const Report& report);
std::string as_json(const Report& report);

}  // namespace fmdtool

#endif
