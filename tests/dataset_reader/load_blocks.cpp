// Blocks of loads, monitor points and matrix operators.
#include <string>

#include "dataset_reader/block_parsers.h"

namespace dataset_reader {

void parse_preload(ItemReader& items, Dataset& dataset) {
  auto& block = dataset.preload.emplace();
  const std::int32_t modes = items.count("mode count");
  check_mode_count(items, dataset, modes);
  block.processed = items.flag("processed flag");
  block.values = items.reals(size_of(modes), "preload");
}

void parse_loads(ItemReader& items, Dataset& dataset) {
  auto& block = dataset.loads.emplace();
  block.mode_count = items.count("mode count");
  check_mode_count(items, dataset, block.mode_count);
  const std::int32_t cases = items.count("load case count");
  items.need(size_of(cases), 260 + size_of(block.mode_count) * items.real_bytes(), "load cases");
  block.cases.resize(size_of(cases));
  for (LoadCase& load : block.cases) {
    load.label = items.characters(256, "load case label");
    load.processed = items.flag("processed flag");
    load.values = items.reals(size_of(block.mode_count), "modal load");
  }
}

// The modes of the body, which a frequency band does not cut: the transformation has them all.
static std::int32_t body_mode_count(const Dataset& dataset) {
  if (dataset.transformation) return static_cast<std::int32_t>(dataset.transformation->mode_numbers.size());
  if (dataset.mode_shapes) return dataset.mode_shapes->mode_count;
  if (dataset.eigenvalues) return static_cast<std::int32_t>(dataset.eigenvalues->size());
  return 0;
}

static void parse_monitor_point(ItemReader& items, const Dataset& dataset, MonitorPoint& point) {
  point.type = items.integer("type");
  point.result_type = items.integer("result type");
  point.component = items.integer("component");
  point.name = items.characters(8, "name");
  point.label = items.characters(56, "label");
  point.rows = items.count("operator rows");
  point.flags = items.integer("operator flags");
  if ((point.flags & ~0xF) != 0) items.fail("operator flags in bits 0 to 3");
  const std::int32_t modes = body_mode_count(dataset);
  const std::size_t size = items.product({point.rows, modes}, "an operator");
  if ((point.flags & 1) != 0) point.displacement = items.reals(size, "displacement operator");
  if ((point.flags & 2) != 0) point.velocity = items.reals(size, "velocity operator");
  if ((point.flags & 4) != 0) point.acceleration = items.reals(size, "acceleration operator");
  if ((point.flags & 8) != 0) {
    const auto cases = static_cast<std::int32_t>(dataset.loads ? dataset.loads->cases.size() : 0);
    point.load = items.reals(items.product({point.rows, cases, modes}, "an operator"), "load operator");
  }
}

void parse_monitor_points(ItemReader& items, Dataset& dataset) {
  const std::int32_t count = items.count("monitor point count");
  items.need(size_of(count), 84, "monitor points");
  auto& points = dataset.monitor_points.emplace(size_of(count));
  for (MonitorPoint& point : points) parse_monitor_point(items, dataset, point);
}

static void parse_operator(ItemReader& items, MatrixOperator& matrix) {
  matrix.rows = items.count("operator rows");
  matrix.name = items.characters(8, "operator name");
  items.need(size_of(matrix.rows), 80, "row labels");
  for (std::int32_t i = 0; i < matrix.rows; ++i) {
    matrix.row_labels.push_back(items.characters(80, "row label"));
  }
  const std::int32_t parts = items.count("sub-operator count");
  items.need(size_of(parts), 12, "sub-operators");
  matrix.parts.resize(size_of(parts));
  for (SubOperator& part : matrix.parts) {
    part.columns = items.count("columns");
    part.tag = items.characters(8, "tag");
    part.values = items.reals(items.product({part.columns, matrix.rows}, "an operator"), "sub-operator");
  }
}

void parse_operators(ItemReader& items, Dataset& dataset) {
  const std::int32_t count = items.count("operator count");
  items.need(size_of(count), 16, "operators");
  auto& operators = dataset.operators.emplace(size_of(count));
  for (MatrixOperator& matrix : operators) parse_operator(items, matrix);
}

void parse_nodal_loads(ItemReader& items, Dataset& dataset) {
  const std::int32_t cases = items.count("load case count");
  items.need(size_of(cases), 4, "nodal load cases");
  auto& block = dataset.nodal_loads.emplace(size_of(cases));
  for (auto& loads : block) {
    const std::int32_t count = items.count("nodal load count");
    items.need(size_of(count), 8 + items.real_bytes(), "nodal loads");
    loads.resize(size_of(count));
    for (NodalLoad& load : loads) {
      load.node_index = items.integer("node index");
      check_node_index(items, dataset, load.node_index);
      load.coordinate = items.integer("coordinate");
      load.value = items.real("nodal load");
    }
  }
}

}  // namespace dataset_reader
