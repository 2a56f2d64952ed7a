#include "report.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <new>
#include <nlohmann/json.hpp>

namespace fmdtool {

namespace {

// "Centre", "bytes": a row of the table.
template <typename... Values>
std::string row(const char* name, const char* format, Values... values) {
  char text[256];
  std::snprintf(text, sizeof text, format, values...);
  char line[320];
  std::snprintf(line, sizeof line, "  %-18s%s\n", name, text);
  return line;
}

std::string text_row(const char* name, const std::string& text) {
  std::string line(name);
  line.resize(18, ' ');
  return "  " + line + text + "\n";
}

void describe_box(FmdBody* body, Report& report) {
  for (int i = 0; i < report.nodes; ++i) {
    double at[3];
    FMD_NodeCoordinates(body, i, at);
    for (std::size_t k = 0; k < 3; ++k) {
      report.box_low[k] = i == 0 ? at[k] : std::min(report.box_low[k], at[k]);
      report.box_high[k] = i == 0 ? at[k] : std::max(report.box_high[k], at[k]);
    }
  }
}

// A frequency band leaves modes out at both ends and numbers those that stay from 1. Modes that are not
// orthogonal have no frequencies, whatever a diagonal entry says.
void describe_modes(FmdBody* body, int exported_modes, Report& report) {
  const bool all = exported_modes == FMD_ModeCount(body);
  const int first = all ? 0 : std::max(FMD_ModeIndex(body, 1), 0);
  const std::vector<double> hertz = frequencies_of(body);
  for (int i = first; i < first + exported_modes; ++i) {
    constexpr double none = std::numeric_limits<double>::quiet_NaN();
    report.modes.push_back(
        {FMD_ModeNumber(body, i), hertz.empty() ? none : hertz[static_cast<std::size_t>(i)]});
  }
}

struct ArrayRelease {
  void operator()(void* array) const { FMD_FreeMemory(array); }
};

// Takes an array that the toolkit made for its caller.
template <typename Value>
std::unique_ptr<Value[], ArrayRelease> taken(Value* array) {
  if (array == nullptr) throw std::bad_alloc();
  return std::unique_ptr<Value[], ArrayRelease>(array);
}

void describe_monitor_points(FmdBody* body, Report& report) {
  for (int i = 0; i < FMD_GetMonitorPointCount(body); ++i) {
    ReportedMonitor point{};
    char name[9];
    char label[57];
    FMD_GetMonitorPointNameLabel(body, i, name, label);
    FMD_GetMonitorPointLocation(body, i, point.at.data());
    point.name = name;
    point.label = label;
    report.monitor_points.push_back(point);
  }
}

// A force adds to the resultant force and with its arm to the moment.
void add_nodal_load(const double* at, int coordinate, double value, ReportedLoadCase& load_case) {
  const auto axis = static_cast<std::size_t>((coordinate - 1) % 3);
  if (coordinate > 3) {
    load_case.moment[axis] += value;
    return;
  }
  const std::size_t next = (axis + 1) % 3;
  const std::size_t last = (axis + 2) % 3;
  load_case.force[axis] += value;
  load_case.moment[next] += at[last] * value;
  load_case.moment[last] -= at[next] * value;
}

void describe_load_cases(FmdBody* body, Report& report) {
  for (int c = 0; c < FMD_GetModalLoadNodalCaseCount(body); ++c) {
    char label[256];
    FMD_GetModalLoadCaseLabel(body, c, label);
    ReportedLoadCase load_case{label, FMD_GetModalLoadNodalCount(body, c), {}, {}};
    const auto nodes = taken(FMD_GetModalLoadNodalNode(body, c));
    const auto coordinates = taken(FMD_GetModalLoadNodalCoord(body, c));
    const auto values = taken(FMD_GetModalLoadNodalLoad(body, c));
    for (std::size_t i = 0; i < static_cast<std::size_t>(load_case.nodal_loads); ++i) {
      double at[3];
      FMD_NodeCoordinates(body, nodes[i], at);
      add_nodal_load(at, coordinates[i], values[i], load_case);
    }
    report.load_cases.push_back(load_case);
  }
}

std::string vector_row(const char* name, const double* v) {
  return row(name, "%.9g  %.9g  %.9g", v[0], v[1], v[2]);
}

std::string invariant_rows(const ReportedInvariants& invariants) {
  return text_row("invariants", invariants.set) + row("  mass", "%.9g", invariants.mass) +
         vector_row("  first moment", invariants.first_moment.data()) +
         vector_row("  inertia", invariants.inertia.data()) + vector_row("", invariants.inertia.data() + 3) +
         vector_row("", invariants.inertia.data() + 6);
}

std::string load_case_rows(const ReportedLoadCase& load_case) {
  return text_row("load case", load_case.label) + row("  nodal loads", "%d", load_case.nodal_loads) +
         vector_row("  force", load_case.force.data()) + vector_row("  moment", load_case.moment.data());
}

const char* name_of(calculix::InterfaceKind kind) {
  static const char* const names[] = {"nodes", "rigid", "average"};
  return names[static_cast<std::size_t>(kind)];
}

std::string reduction_rows(const ReportedReduction& reduction) {
  std::string rows = text_row("matrices", reduction.stiffness);
  rows += row("component modes", "%d of constraints, %d with held interfaces", reduction.constraint_modes,
              reduction.fixed_interface_modes);
  for (const calculix::Attachment& interface : reduction.interfaces) {
    std::string text = std::string(name_of(interface.kind)) + " " + interface.name + ", " +
                       std::to_string(interface.ids.size());
    text += interface.ids.size() == 1 ? " node" : " nodes";
    if (interface.reference_node != 0) {
      char place[96];
      std::snprintf(place, sizeof place, ", moves node %d at %.6g  %.6g  %.6g", interface.reference_node,
                    interface.reference[0], interface.reference[1], interface.reference[2]);
      text += place;
    }
    rows += text_row("interface", text);
  }
  return rows;
}

nlohmann::ordered_json json_of(const calculix::Attachment& interface) {
  nlohmann::ordered_json json = {{"kind", name_of(interface.kind)},
                                 {"name", interface.name},
                                 {"nodes", interface.ids.size()},
                                 {"coordinates", interface.coordinates}};
  if (interface.reference_node != 0) {
    json["reference_node"] = interface.reference_node;
    json["reference_point"] = interface.reference;
  }
  return json;
}

nlohmann::ordered_json json_of(const ComparedMode& mode) {
  return {{"number", mode.number},
          {"hertz", mode.hertz},
          {"results_hertz", mode.results_hertz},
          {"difference", FrequencyComparison::difference(mode)}};
}

nlohmann::ordered_json json_of(const ReportedInvariants& invariants) {
  const auto& j = invariants.inertia;
  return {{"set", invariants.set},
          {"mass", invariants.mass},
          {"first_moment", invariants.first_moment},
          {"inertia", {{j[0], j[1], j[2]}, {j[3], j[4], j[5]}, {j[6], j[7], j[8]}}}};
}

nlohmann::ordered_json json_of(const ReportedMonitor& point) {
  return {{"name", point.name}, {"label", point.label}, {"location", point.at}};
}

nlohmann::ordered_json json_of(const ReportedLoadCase& load_case) {
  return {{"label", load_case.label},
          {"nodal_loads", load_case.nodal_loads},
          {"force", load_case.force},
          {"moment", load_case.moment}};
}

template <typename Item>
nlohmann::ordered_json json_list(const std::vector<Item>& items) {
  auto list = nlohmann::ordered_json::array();
  for (const Item& item : items) list.push_back(json_of(item));
  return list;
}

nlohmann::ordered_json json_of(const ReportedReduction& reduction) {
  return {{"matrices", reduction.stiffness},
          {"constraint_modes", reduction.constraint_modes},
          {"fixed_interface_modes", reduction.fixed_interface_modes},
          {"interfaces", json_list(reduction.interfaces)}};
}

nlohmann::ordered_json json_of(const FrequencyComparison& comparison) {
  return {{"rigid_modes", comparison.rigid_modes},
          {"rigid_modes_of_results", comparison.rigid_modes_of_results},
          {"largest_rigid_hertz", comparison.largest_rigid},
          {"modes", json_list(comparison.modes)}};
}

}  // namespace

std::vector<double> frequencies_of(FmdBody* body) {
  std::vector<double> all;
  for (int i = 0; i < FMD_ModeCount(body); ++i) {
    double hertz = 0.0;
    const int number = FMD_ModeNumber(body, i);
    if (FMD_Eigenvalue(body, number, nullptr, &hertz, nullptr, nullptr, nullptr) == 0) return {};
    all.push_back(hertz);
  }
  return all;
}

void describe_invariants(FmdBody* body, const std::string& set, Report& report) {
  const auto moment = taken(FMD_Invar2(body));
  const auto inertia = taken(FMD_Invar7(body));
  ReportedInvariants invariants{set, FMD_Invar1(body), {}, {}};
  std::copy_n(moment.get(), 3, invariants.first_moment.begin());
  std::copy_n(inertia.get(), 9, invariants.inertia.begin());
  report.invariants = invariants;
}

void describe_body(FmdBody* body, int exported_modes, Report& report) {
  constexpr std::size_t label_size = 16;
  char labels[4][label_size];
  FMD_Units(body, labels[0], labels[1], labels[2], labels[3]);
  std::copy(std::begin(labels), std::end(labels), report.units.begin());
  report.nodes = FMD_NodeCount(body);
  int length = 0;
  FMD_FaceListSize(body, &report.faces, &length);
  FMD_FreeMemory(FMD_InterfaceNodes(body, &report.interface_nodes));
  double inertia[9];
  FMD_TotalMassInertia(body, &report.mass, inertia, report.centre.data());
  describe_box(body, report);
  describe_modes(body, exported_modes, report);
  describe_monitor_points(body, report);
  describe_load_cases(body, report);
}

std::string as_table(const Report& report) {
  std::string table = report.title + "\n";
  if (!report.results.empty()) table += text_row("results", report.results);
  if (report.reduction) table += reduction_rows(*report.reduction);
  table += text_row("deck", report.deck);
  table += text_row(report.qualifiers.empty() ? "dataset" : "database", report.dataset);
  if (!report.qualifiers.empty()) table += text_row("qualifiers", report.qualifiers);
  table += text_row("units",
                    report.units[0] + " " + report.units[1] + " " + report.units[2] + " " + report.units[3]);
  table += row("nodes", "%d", report.nodes);
  table += row("elements", "%d", report.elements);
  table += row("faces", "%d", report.faces);
  table += row("interface nodes", "%d", report.interface_nodes);
  table += row("mass", "%.9g", report.mass);
  table += row("centre of mass", "%.9g  %.9g  %.9g", report.centre[0], report.centre[1], report.centre[2]);
  table += row("bounding box", "%.9g  %.9g  %.9g  to  %.9g  %.9g  %.9g", report.box_low[0], report.box_low[1],
               report.box_low[2], report.box_high[0], report.box_high[1], report.box_high[2]);
  if (report.invariants) table += invariant_rows(*report.invariants);
  if (!report.monitor_points.empty()) table += row("monitor points", "%zu", report.monitor_points.size());
  for (const ReportedLoadCase& load_case : report.load_cases) table += load_case_rows(load_case);
  table += row("file size", "%ju bytes", report.bytes);
  table += row("time", "%.2f s", report.seconds);
  table += "\n  mode    frequency [Hz]\n";
  for (const ReportedMode& mode : report.modes) {
    char line[64];
    if (std::isnan(mode.hertz)) {
      std::snprintf(line, sizeof line, "  %4d    -\n", mode.number);
    } else {
      std::snprintf(line, sizeof line, "  %4d    %.10g\n", mode.number, mode.hertz);
    }
    table += line;
  }
  if (report.comparison) table += comparison_table(*report.comparison);
  return table;
}

std::string as_json(const Report& report) {
  nlohmann::ordered_json json;
  json["title"] = report.title;
  json["results"] = report.results;
  json["deck"] = report.deck;
  json[report.qualifiers.empty() ? "dataset" : "database"] = report.dataset;
  if (!report.qualifiers.empty()) json["qualifiers"] = report.qualifiers;
  json["units"] = {{"mass", report.units[0]},
                   {"length", report.units[1]},
                   {"time", report.units[2]},
                   {"force", report.units[3]}};
  json["nodes"] = report.nodes;
  json["elements"] = report.elements;
  json["faces"] = report.faces;
  json["interface_nodes"] = report.interface_nodes;
  json["mass"] = report.mass;
  json["center_of_mass"] = report.centre;
  json["bounding_box"] = {{"low", report.box_low}, {"high", report.box_high}};
  if (report.invariants) json["invariants"] = json_of(*report.invariants);
  json["monitor_points"] = json_list(report.monitor_points);
  json["load_cases"] = json_list(report.load_cases);
  json["modes"] = nlohmann::ordered_json::array();
  for (const ReportedMode& mode : report.modes) {
    json["modes"].push_back({{"number", mode.number}, {"hertz", mode.hertz}});
  }
  if (report.reduction) json["reduction"] = json_of(*report.reduction);
  if (report.comparison) json["comparison"] = json_of(*report.comparison);
  json["bytes"] = report.bytes;
  json["seconds"] = report.seconds;
  // A title may hold bytes that are no text in UTF-8.
  return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace fmdtool
