// Blocks of nodes, mesh, mass and units.
#include <string>

#include "dataset_reader/block_parsers.h"

namespace dataset_reader {

void parse_nodes(ItemReader& items, Dataset& dataset) {
  const std::int32_t n = items.count("node count");
  if (items.integer("coordinates per node") != 3) items.fail("3 coordinates per node");
  items.need(size_of(n), 4 + 3 * items.real_bytes(), "nodes");
  auto& nodes = dataset.nodes.emplace(size_of(n));
  for (NodePosition& node : nodes) {
    node.id = items.integer("node id");
    node.xyz = real_array<3>(items, "coordinates");
  }
}

static void parse_topology_type(ItemReader& items, TopologyType& type, std::int32_t count) {
  items.need(size_of(count), 8 + 4 * size_of(type.size), "faces of a type");
  type.faces.resize(size_of(count));
  for (TopologyFace& face : type.faces) {
    for (std::int32_t& word : face.unused) word = items.integer("unused word of a face");
    face.node_ids = items.integers(size_of(type.size), "node ids of a face");
  }
}

void parse_topology(ItemReader& items, Dataset& dataset) {
  auto& topology = dataset.topology.emplace();
  topology.face_count = items.count("face count");
  const std::int32_t types = items.count("face type count");
  items.need(size_of(types), 12, "face types");
  topology.types.resize(size_of(types));
  std::vector<std::int32_t> counts;
  std::int64_t total = 0;
  for (std::int32_t i = 0; i < types; ++i) {
    TopologyType& type = topology.types[size_of(i)];
    type.type = items.integer("face type");
    if (type.type != i) items.fail("face type " + std::to_string(i));
    counts.push_back(items.count("faces of a type"));
    total += counts.back();
    type.size = items.count("nodes per face");
  }
  if (total != topology.face_count) items.fail("face types that add up to the face count");
  for (std::size_t i = 0; i < counts.size(); ++i) parse_topology_type(items, topology.types[i], counts[i]);
}

void parse_faces(ItemReader& items, Dataset& dataset) {
  auto& block = dataset.faces.emplace();
  block.declared_bytes = items.integer("block size");
  block.reserved = items.integer("reserved word");
  const std::int32_t faces = items.count("face count");
  const std::int32_t length = items.count("face list length");
  if (block.declared_bytes != 16 + 4 * std::int64_t{length}) {
    items.fail("a face list of the size that the block declares");
  }
  const std::vector<std::int32_t> list = items.integers(size_of(length), "face list");
  for (std::size_t at = 0; at < list.size();) {
    const std::int32_t corners = list[at++];
    if (corners < 0 || size_of(corners) > list.size() - at) items.fail("a face within the face list");
    std::vector<std::int32_t> face;
    for (std::int32_t i = 0; i < corners; ++i) {
      check_node_index(items, dataset, list[at]);
      face.push_back(list[at++]);
    }
    block.faces.push_back(std::move(face));
  }
  if (block.faces.size() != size_of(faces)) items.fail("as many faces in the list as the face count says");
}

void parse_interface_nodes(ItemReader& items, Dataset& dataset) {
  const std::int32_t count = items.count("interface node count");
  dataset.interface_nodes = items.integers(size_of(count), "interface nodes");
  for (const std::int32_t index : *dataset.interface_nodes) check_node_index(items, dataset, index);
}

void parse_global_properties(ItemReader& items, Dataset& dataset) {
  auto& block = dataset.global_properties.emplace();
  block.mass = items.real("mass");
  block.center = real_array<3>(items, "centre of mass");
  block.inertia = real_array<9>(items, "inertia tensor");
}

void parse_nodal_masses(ItemReader& items, Dataset& dataset) {
  auto& block = dataset.nodal_masses.emplace();
  const std::int32_t n = items.count("nodal mass count");
  block.values_per_node = items.count("masses per node");
  items.need(size_of(n), 4 + size_of(block.values_per_node) * items.real_bytes(), "nodal masses");
  for (std::int32_t i = 0; i < n; ++i) {
    block.node_ids.push_back(items.integer("node id"));
    for (std::int32_t k = 0; k < block.values_per_node; ++k) {
      block.values.push_back(items.real("nodal mass"));
    }
  }
}

static int inertia_freedom(ItemReader& items) {
  const int freedom = items.small_number("row or column");
  if (freedom < 4 || freedom > 6) items.fail("a rotation, 4 to 6, found " + std::to_string(freedom));
  return freedom;
}

void parse_nodal_inertias(ItemReader& items, Dataset& dataset) {
  const std::int32_t count = items.count("inertia entry count");
  items.need(size_of(count), 6 + items.real_bytes(), "inertia entries");
  auto& entries = dataset.nodal_inertias.emplace(size_of(count));
  for (InertiaEntry& entry : entries) {
    entry.node_id = items.integer("node id");
    entry.row = inertia_freedom(items);
    entry.column = inertia_freedom(items);
    entry.value = items.real("inertia");
  }
}

void parse_units(ItemReader& items, Dataset& dataset) {
  auto& units = dataset.units.emplace();
  for (std::string* label : {&units.mass, &units.length, &units.time, &units.force}) {
    *label = items.characters(16, "unit label");
  }
}

}  // namespace dataset_reader
