#include "report.h"

#include <algorithm>
#include <cstdio>
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

// A frequency band leaves modes out at both ends and numbers those that stay from 1.
void describe_modes(FmdBody* body, int exported_modes, Report& report) {
  const bool all = exported_modes == FMD_ModeCount(body);
  const int first = all ? 0 : std::max(FMD_ModeIndex(body, 1), 0);
  for (int i = first; i < first + exported_modes; ++i) {
    ReportedMode mode{FMD_ModeNumber(body, i), 0.0};
    FMD_Eigenvalue(body, mode.number, nullptr, &mode.hertz, nullptr, nullptr, nullptr);
    report.modes.push_back(mode);
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

}  // namespace

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
  table += text_row("results", report.results);
  table += text_row("deck", report.deck);
  table += text_row("dataset", report.dataset);
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
    std::snprintf(line, sizeof line, "  %4d    %.10g\n", mode.number, mode.hertz);
    table += line;
  }
  return table;
}

std::string as_json(const Report& report) {
  nlohmann::ordered_json json;
  json["title"] = report.title;
  json["results"] = report.results;
  json["deck"] = report.deck;
  json["dataset"] = report.dataset;
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
  json["bytes"] = report.bytes;
  json["seconds"] = report.seconds;
  // A title may hold bytes that are no text in UTF-8.
  return json.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace) + "\n";
}

}  // namespace fmdtool
