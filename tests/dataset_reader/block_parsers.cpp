#include "dataset_reader/block_parsers.h"

#include <string>

namespace dataset_reader {

void check_node_index(const ItemReader& items, const Dataset& dataset, std::int32_t index) {
  const std::size_t nodes = dataset.nodes ? dataset.nodes->size() : 0;
  if (index < 0 || size_of(index) >= nodes) {
    items.fail("a node index below " + std::to_string(nodes) + ", found " + std::to_string(index));
  }
}

void check_mode_count(const ItemReader& items, const Dataset& dataset, std::int32_t count) {
  const bool wrong = (dataset.eigenvalues && dataset.eigenvalues->size() != size_of(count)) ||
                     (dataset.mode_shapes && dataset.mode_shapes->mode_count != count);
  if (wrong) items.fail("the mode count of the blocks before, found " + std::to_string(count));
}

const std::array<BlockParser, 32> kBlockParsers = {{
    {4, 0, "nodal coordinates", parse_nodes},
    {5, 1, "element topology", parse_topology},
    {6, 2, "global body properties", parse_global_properties},
    {7, 3, "eigenvalues", parse_eigenvalues},
    {8, 4, "mode shapes", parse_mode_shapes},
    {9, 5, "nodal masses", parse_nodal_masses},
    {10, 6, "nodal inertias", parse_nodal_inertias},
    {11, 8, "units", parse_units},
    {12, 9, "generalized stiffness", parse_generalized_stiffness},
    {13, 10, "generalized mass", parse_generalized_mass},
    {14, 12, "element faces", parse_faces},
    {15, 13, "generalized damping", parse_generalized_damping},
    {16, 14, "mode shape transformation", parse_transformation},
    {17, 15, "interface nodes", parse_interface_nodes},
    {18, 16, "modal stress", parse_stress},
    {19, 17, "invariant 1", parse_invariant1},
    {20, 18, "invariant 2", parse_invariant2},
    {21, 19, "invariant 3", parse_invariant3},
    {22, 20, "invariant 4", parse_invariant4},
    {23, 21, "invariant 5", parse_invariant5},
    {24, 22, "invariant 7", parse_invariant7},
    {25, 23, "invariant 8", parse_invariant8},
    {26, 24, "invariant 9", parse_invariant9},
    {27, 25, "modal preload", parse_preload},
    {28, 26, "modal loads", parse_loads},
    {29, 27, "modal strain", parse_strain},
    {30, 28, "modal statistics", parse_statistics},
    {31, 29, "nodal pre-stress", parse_prestress},
    {32, 30, "nodal pre-strain", parse_prestrain},
    {33, 31, "monitor points", parse_monitor_points},
    {34, 32, "matrix operators", parse_operators},
    {35, 33, "modal load nodal", parse_nodal_loads},
}};

}  // namespace dataset_reader
