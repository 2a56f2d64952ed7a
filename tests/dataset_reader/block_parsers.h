// One parser for each of blocks 4 to 35, in the order of their numbers.
#ifndef FMDTOOLKIT_TESTS_DATASET_READER_BLOCK_PARSERS_H
#define FMDTOOLKIT_TESTS_DATASET_READER_BLOCK_PARSERS_H

#include <array>

#include "dataset_reader/dataset.h"
#include "dataset_reader/item_reader.h"

namespace dataset_reader {

struct BlockParser {
  int number;
  int summary_byte;
  const char* name;
  void (*parse)(ItemReader& items, Dataset& dataset);
};

void parse_nodes(ItemReader& items, Dataset& dataset);
void parse_topology(ItemReader& items, Dataset& dataset);
void parse_global_properties(ItemReader& items, Dataset& dataset);
void parse_eigenvalues(ItemReader& items, Dataset& dataset);
void parse_mode_shapes(ItemReader& items, Dataset& dataset);
void parse_nodal_masses(ItemReader& items, Dataset& dataset);
void parse_nodal_inertias(ItemReader& items, Dataset& dataset);
void parse_units(ItemReader& items, Dataset& dataset);
void parse_generalized_stiffness(ItemReader& items, Dataset& dataset);
void parse_generalized_mass(ItemReader& items, Dataset& dataset);
void parse_faces(ItemReader& items, Dataset& dataset);
void parse_generalized_damping(ItemReader& items, Dataset& dataset);
void parse_transformation(ItemReader& items, Dataset& dataset);
void parse_interface_nodes(ItemReader& items, Dataset& dataset);
void parse_stress(ItemReader& items, Dataset& dataset);
void parse_invariant1(ItemReader& items, Dataset& dataset);
void parse_invariant2(ItemReader& items, Dataset& dataset);
void parse_invariant3(ItemReader& items, Dataset& dataset);
void parse_invariant4(ItemReader& items, Dataset& dataset);
void parse_invariant5(ItemReader& items, Dataset& dataset);
void parse_invariant7(ItemReader& items, Dataset& dataset);
void parse_invariant8(ItemReader& items, Dataset& dataset);
void parse_invariant9(ItemReader& items, Dataset& dataset);
void parse_preload(ItemReader& items, Dataset& dataset);
void parse_loads(ItemReader& items, Dataset& dataset);
void parse_strain(ItemReader& items, Dataset& dataset);
void parse_statistics(ItemReader& items, Dataset& dataset);
void parse_prestress(ItemReader& items, Dataset& dataset);
void parse_prestrain(ItemReader& items, Dataset& dataset);
void parse_monitor_points(ItemReader& items, Dataset& dataset);
void parse_operators(ItemReader& items, Dataset& dataset);
void parse_nodal_loads(ItemReader& items, Dataset& dataset);

extern const std::array<BlockParser, 32> kBlockParsers;

// What the parsers share.

inline std::size_t size_of(std::int32_t count) {
  return static_cast<std::size_t>(count);
}

template <std::size_t N>
std::array<double, N> real_array(ItemReader& items, const char* what) {
  std::array<double, N> values;
  for (double& value : values) value = items.real(what);
  return values;
}

// Refuses an index that names no node of block 4.
void check_node_index(const ItemReader& items, const Dataset& dataset, std::int32_t index);

// Refuses a mode count that is not that of blocks 7 and 8.
void check_mode_count(const ItemReader& items, const Dataset& dataset, std::int32_t count);

}  // namespace dataset_reader

#endif
