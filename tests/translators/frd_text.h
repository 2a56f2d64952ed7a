// Writes small result files and decks, column by column.
#ifndef FMDTOOLKIT_TESTS_FRD_TEXT_H
#define FMDTOOLKIT_TESTS_FRD_TEXT_H

#include <array>
#include <string>
#include <vector>

namespace fmdtest {

struct FrdNode {
  int id;
  std::array<double, 3> at;
};

struct FrdElement {
  int id;
  int code;
  std::vector<int> nodes;  // in the order of the result file
};

struct FrdMode {
  int number;
  double hertz;
  bool stress = true;
};

struct FrdModel {
  std::vector<FrdNode> nodes;
  std::vector<FrdElement> elements;
  std::vector<FrdMode> modes = {{1, 12.5}};
};

// Values as the file has them: component k (from 0) of a node in a mode.
double displacement_of(int mode, int node, int k);
double stress_of(int mode, int node, int k);

std::string frd_nodes(const FrdModel& model);
std::string frd_elements(const FrdModel& model);
// Head records of a dataset; analysis 2 is a frequency analysis.
std::string frd_head(const std::string& name, const FrdMode& mode, std::size_t nodes, int analysis = 2);
std::string frd_displacements(const FrdModel& model, const FrdMode& mode);
std::string frd_stresses(const FrdModel& model, const FrdMode& mode);
std::string frd_modes(const FrdModel& model);
extern const char* const frd_header;
std::string frd_text(const FrdModel& model);

// "*NODE" with the coordinates in full precision.
std::string deck_nodes(const FrdModel& model);

// A unit cube of one linear hexahedron, node ids 1 to 8, element 5.
FrdModel cube();
// Its deck: set EALL, material STEEL of density 7.85, node sets TOP (5 to 8) and CORNER (1).
std::string cube_deck();

void write_file(const std::string& path, const std::string& text);

// The text with the first occurrence of one piece exchanged; fails the test where it is missing.
std::string exchange(std::string text, const std::string& what, const std::string& with);

// "expected ..." of the InputError that a call throws with its file name and line: "job.frd:12: text".
template <typename Call>
std::string input_error_of(const Call& call);

}  // namespace fmdtest

#include "calculix/input_error.h"

template <typename Call>
std::string fmdtest::input_error_of(const Call& call) {
  try {
    call();
  } catch (const calculix::InputError& error) {
    return error.what();
  }
  return "no error";
}

#endif
