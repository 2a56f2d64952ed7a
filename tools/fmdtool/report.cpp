#include "report.h"

#include <algorithm>
#include <cstdio>
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

}  // namespace

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
