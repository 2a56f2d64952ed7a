#include "translators/frd_text.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

namespace fmdtest {

namespace {

template <typename... Values>
std::string format(const char* pattern, Values... values) {
  char text[256];
  std::snprintf(text, sizeof text, pattern, values...);
  return text;
}

}  // namespace

const char* const frd_header =
    "    1C\n"
    "    1Uunit cube\n"
    "    1UUSER\n"
    "    1UVERSION           Version 2.20\n"
    "    1UMAT    1STEEL\n";

double displacement_of(int mode, int node, int k) {
  return mode * 100.0 + node + 0.25 * (k + 1) * (node % 2 == 0 ? 1 : -1);
}

double stress_of(int mode, int node, int k) {
  return -1000.0 * mode + node * 10.0 + k;
}

std::string frd_nodes(const FrdModel& model) {
  std::string text = format("    2C                  %12zu%37s1\n", model.nodes.size(), "");
  for (const FrdNode& node : model.nodes) {
    text += format(" -1%10d%12.5E%12.5E%12.5E\n", node.id, node.at[0], node.at[1], node.at[2]);
  }
  return text + " -3\n";
}

std::string frd_elements(const FrdModel& model) {
  std::string text = format("    3C                  %12zu%37s1\n", model.elements.size(), "");
  for (const FrdElement& element : model.elements) {
    text += format(" -1%10d%5d%5d%5d", element.id, element.code, 0, 1);
    for (std::size_t i = 0; i < element.nodes.size(); ++i) {
      if (i % 10 == 0) text += "\n -2";
      text += format("%10d", element.nodes[i]);
    }
    text += "\n";
  }
  return text + " -3\n";
}

std::string frd_head(const std::string& name, const FrdMode& mode, std::size_t nodes, int analysis) {
  std::string text = format("    1PMODE              %12d\n", mode.number);
  const std::string hertz = mode.hertz >= 1.0 ? format("%12.10g", mode.hertz) : format("%12.5E", mode.hertz);
  text += format("  100CL%5d%12s%12zu%20s%2d%5d%-10s%2d\n", 100 + mode.number, hertz.substr(0, 12).c_str(),
                 nodes, "", analysis, mode.number, analysis == 2 ? "MODAL" : "", 1);
  if (name == "DISP") {
    text += " -4  DISP        4    1\n";
    for (int k = 1; k <= 3; ++k) text += format(" -5  D%d          1    2%5d    0\n", k, k);
    text += " -5  ALL         1    2    0    0    1ALL\n";
  } else if (name == "STRESS") {
    text += " -4  STRESS      6    1\n";
    for (const char* component : {"SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"}) {
      text += format(" -5  %-8s    1    4    1    1\n", component);
    }
  } else {
    text += format(" -4  %-8s    1    1\n -5  STR(%%)      1    1    0    0\n", name.c_str());
  }
  return text;
}

std::string frd_displacements(const FrdModel& model, const FrdMode& mode) {
  std::string text = frd_head("DISP", mode, model.nodes.size());
  for (const FrdNode& node : model.nodes) {
    text += format(" -1%10d", node.id);
    for (int k = 0; k < 3; ++k) text += format("%12.5E", displacement_of(mode.number, node.id, k));
    text += "\n";
  }
  return text + " -3\n";
}

std::string frd_stresses(const FrdModel& model, const FrdMode& mode) {
  std::string text = frd_head("STRESS", mode, model.nodes.size());
  for (const FrdNode& node : model.nodes) {
    text += format(" -1%10d", node.id);
    for (int k = 0; k < 6; ++k) text += format("%12.5E", stress_of(mode.number, node.id, k));
    text += "\n";
  }
  return text + " -3\n";
}

std::string frd_modes(const FrdModel& model) {
  std::string text;
  for (const FrdMode& mode : model.modes) {
    text += frd_displacements(model, mode);
    if (mode.stress) text += frd_stresses(model, mode);
    text += frd_head("ERROR", mode, model.nodes.size());
    for (const FrdNode& node : model.nodes) text += format(" -1%10d%12.5E\n", node.id, 1.5);
    text += " -3\n";
  }
  return text;
}

std::string frd_text(const FrdModel& model) {
  return frd_header + frd_nodes(model) + frd_elements(model) + frd_modes(model) + " 9999\n";
}

std::string deck_nodes(const FrdModel& model) {
  std::string text = "*NODE, NSET=NALL\n";
  for (const FrdNode& node : model.nodes) {
    text += format("%d, %.17g, %.17g, %.17g\n", node.id, node.at[0], node.at[1], node.at[2]);
  }
  return text;
}

FrdModel cube() {
  FrdModel model;
  model.nodes = {{1, {0, 0, 0}}, {2, {1, 0, 0}}, {3, {1, 1, 0}}, {4, {0, 1, 0}},
                 {5, {0, 0, 1}}, {6, {1, 0, 1}}, {7, {1, 1, 1}}, {8, {0, 1, 1}}};
  model.elements = {{5, 1, {1, 2, 3, 4, 5, 6, 7, 8}}};
  model.modes = {{1, 0.0}, {2, 12.5}};
  return model;
}

std::string cube_deck() {
  return "** a cube\n*HEADING\nunit cube\n" + deck_nodes(cube()) +
         "*ELEMENT, TYPE=C3D8, ELSET=EALL\n5, 1, 2, 3, 4, 5, 6, 7, 8\n"
         "*NSET, NSET=TOP, GENERATE\n5, 8\n*NSET, NSET=CORNER\n1,\n"
         "*MATERIAL, NAME=STEEL\n*DENSITY\n7.85\n"
         "*SOLID SECTION, ELSET=EALL, MATERIAL=STEEL\n*STEP\n*FREQUENCY\n2\n*END STEP\n";
}

void write_file(const std::string& path, const std::string& text) {
  std::ofstream(path, std::ios::binary) << text;
}

std::string exchange(std::string text, const std::string& what, const std::string& with) {
  const std::size_t at = text.find(what);
  EXPECT_NE(at, std::string::npos) << what;
  if (at != std::string::npos) text.replace(at, what.size(), with);
  return text;
}

}  // namespace fmdtest
