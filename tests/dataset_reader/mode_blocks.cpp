// Blocks of modes, their statistics, matrices and invariants.
#include <string>

#include "dataset_reader/block_parsers.h"

namespace dataset_reader {

void parse_eigenvalues(ItemReader& items, Dataset& dataset) {
  const std::int32_t modes = items.count("mode count");
  items.need(size_of(modes), 4 + 5 * items.real_bytes(), "eigenvalues");
  auto& list = dataset.eigenvalues.emplace(size_of(modes));
  for (Eigenvalue& mode : list) {
    mode.mode = items.integer("mode number");
    for (double* value : {&mode.eigenvalue, &mode.hertz, &mode.radians, &mode.generalized_mass,
                          &mode.generalized_stiffness}) {
      *value = items.real("eigenvalue data");
    }
  }
}

// Whether a mode vector opens with a word of its own.
static bool has_mode_word(int level, bool is_shape) {
  if (level == 10) return false;
  if (level == 30 || level == 31) return is_shape;
  return true;
}

static ModeVectors mode_vectors(ItemReader& items, const Dataset& dataset, bool is_shape) {
  ModeVectors block;
  block.mode_count = items.count("mode count");
  check_mode_count(items, dataset, block.mode_count);
  const std::int32_t nodes = items.count("node count of the modes");
  block.node_ids = items.integers(size_of(nodes), "node ids of the modes");
  const bool has_word = has_mode_word(dataset.level, is_shape);
  const std::size_t vector_length = items.product({nodes, 6}, "a mode vector");
  items.need(size_of(block.mode_count), vector_length * items.real_bytes() + (has_word ? 4 : 0),
             "mode vectors");
  if (!has_word && vector_length == 0) return block;
  for (std::int32_t mode = 0; mode < block.mode_count; ++mode) {
    if (has_word) block.words.push_back(items.integer("word before a mode vector"));
    const std::vector<double> values = items.reals(vector_length, "mode vector");
    block.values.insert(block.values.end(), values.begin(), values.end());
  }
  return block;
}

void parse_mode_shapes(ItemReader& items, Dataset& dataset) {
  dataset.mode_shapes = mode_vectors(items, dataset, true);
}

void parse_stress(ItemReader& items, Dataset& dataset) {
  dataset.stress = mode_vectors(items, dataset, false);
}

void parse_strain(ItemReader& items, Dataset& dataset) {
  dataset.strain = mode_vectors(items, dataset, false);
}

void parse_statistics(ItemReader& items, Dataset& dataset) {
  const std::int32_t modes = items.count("mode count");
  check_mode_count(items, dataset, modes);
  items.need(size_of(modes), 13 * (4 + items.real_bytes()), "mode statistics");
  auto& list = dataset.statistics.emplace(size_of(modes));
  for (ModeStatistics& mode : list) {
    for (std::int32_t& node : mode.nodes) node = items.integer("node of a maximum");
    for (double& value : mode.values) value = items.real("maximum");
    for (std::size_t i = 4; i < 13; ++i) {
      if (mode.nodes[i] != 0 || mode.values[i] != 0.0) items.fail("zeros behind the four maxima of a mode");
    }
  }
}

static std::vector<std::array<double, 6>> prestate(ItemReader& items,
                                                   const std::optional<ModeVectors>& modes) {
  const std::int32_t nodes = items.count("node count");
  if (modes && modes->node_ids.size() != size_of(nodes)) {
    items.fail("the node count of the block of modes, " + std::to_string(modes->node_ids.size()));
  }
  items.need(size_of(nodes), 6 * items.real_bytes(), "nodes of six values");
  std::vector<std::array<double, 6>> values(size_of(nodes));
  for (auto& node : values) node = real_array<6>(items, "value");
  return values;
}

void parse_prestress(ItemReader& items, Dataset& dataset) {
  dataset.prestress = prestate(items, dataset.stress);
}

void parse_prestrain(ItemReader& items, Dataset& dataset) {
  dataset.prestrain = prestate(items, dataset.strain);
}

static std::vector<MatrixEntry> matrix_entries(ItemReader& items, std::int32_t count) {
  items.need(size_of(count), 12 + items.real_bytes(), "matrix entries");
  std::vector<MatrixEntry> entries(size_of(count));
  for (MatrixEntry& entry : entries) {
    entry.row = items.integer("row");
    entry.column = items.integer("column");
    entry.value = items.real("matrix value");
    entry.last_word = items.integer("last word of an entry");
  }
  return entries;
}

static SparseMatrix sparse_matrix(ItemReader& items) {
  SparseMatrix matrix;
  const std::int32_t count = items.count("entry count");
  matrix.order = items.count("order of the matrix");
  matrix.entries = matrix_entries(items, count);
  return matrix;
}

void parse_generalized_stiffness(ItemReader& items, Dataset& dataset) {
  dataset.generalized_stiffness = sparse_matrix(items);
}

void parse_generalized_mass(ItemReader& items, Dataset& dataset) {
  dataset.generalized_mass = sparse_matrix(items);
}

void parse_generalized_damping(ItemReader& items, Dataset& dataset) {
  auto& damping = dataset.generalized_damping.emplace();
  const std::int32_t count = items.count("entry count");
  damping.projected = items.flag("projected flag");
  damping.entries = matrix_entries(items, count);
}

void parse_transformation(ItemReader& items, Dataset& dataset) {
  auto& block = dataset.transformation.emplace();
  const std::int32_t modes = items.count("mode count");
  block.mode_numbers = items.integers(size_of(modes), "mode numbers");
  block.matrix = items.reals(items.product({modes, modes}, "the transformation"), "transformation");
}

void parse_invariant1(ItemReader& items, Dataset& dataset) {
  dataset.invariant1 = items.real("invariant 1");
}

void parse_invariant2(ItemReader& items, Dataset& dataset) {
  dataset.invariant2 = items.reals(3, "invariant 2");
}

void parse_invariant7(ItemReader& items, Dataset& dataset) {
  dataset.invariant7 = items.reals(9, "invariant 7");
}

// A mode count M, then M or M x M groups of so many reals.
static ModalInvariant modal_invariant(ItemReader& items, const Dataset& dataset, bool pairs,
                                      std::int32_t group) {
  ModalInvariant block;
  block.mode_count = items.count("mode count");
  check_mode_count(items, dataset, block.mode_count);
  const std::int32_t other = pairs ? block.mode_count : 1;
  block.values = items.reals(items.product({block.mode_count, other, group}, "an invariant"), "invariant");
  return block;
}

void parse_invariant3(ItemReader& items, Dataset& dataset) {
  dataset.invariant3 = modal_invariant(items, dataset, false, 3);
}

void parse_invariant4(ItemReader& items, Dataset& dataset) {
  dataset.invariant4 = modal_invariant(items, dataset, false, 3);
}

void parse_invariant5(ItemReader& items, Dataset& dataset) {
  dataset.invariant5 = modal_invariant(items, dataset, true, 3);
}

void parse_invariant8(ItemReader& items, Dataset& dataset) {
  dataset.invariant8 = modal_invariant(items, dataset, false, 9);
}

void parse_invariant9(ItemReader& items, Dataset& dataset) {
  dataset.invariant9 = modal_invariant(items, dataset, true, 9);
}

}  // namespace dataset_reader
