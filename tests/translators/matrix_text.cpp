#include "translators/matrix_text.h"

#include <cstdio>

#include "translators/frd_text.h"

namespace fmdtest {

namespace {

std::vector<calculix::InterfaceNode> cube_nodes() {
  std::vector<calculix::InterfaceNode> nodes;
  for (const FrdNode& node : cube().nodes) nodes.push_back({node.id, node.at});
  return nodes;
}

}  // namespace

std::string matrix_text(const DenseMatrix& matrix) {
  std::string text;
  for (int column = 0; column < matrix.size; ++column) {
    for (int row = 0; row <= column; ++row) {
      char line[64];
      std::snprintf(line, sizeof line, "%d %d %20.13e\n", row + 1, column + 1, matrix.at(row, column));
      text += line;
    }
  }
  return text;
}

std::string dof_text(const std::vector<calculix::DegreeOfFreedom>& dofs) {
  std::string text;
  for (const auto& dof : dofs) text += std::to_string(dof.node) + "." + std::to_string(dof.axis + 1) + "\n";
  return text;
}

Structure cube_structure() {
  Structure structure = truss_of(cube_nodes());
  for (int i = 0; i < structure.mass.size; ++i) structure.mass.at(i, i) = 7.85 / 8.0;
  return structure;
}

std::vector<calculix::DegreeOfFreedom> cube_dofs() {
  return dofs_of(cube_nodes());
}

void write_cube_matrices() {
  write_file("job.sti", matrix_text(cube_structure().stiffness));
  write_file("job.mas", matrix_text(cube_structure().mass));
  write_file("job.dof", dof_text(cube_dofs()));
}

}  // namespace fmdtest
