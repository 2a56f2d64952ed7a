// Blocks of the nodes: coordinates (4), masses (9), inertias (10), interface nodes (17); and the properties
// of the whole body (6).
#include <algorithm>

#include "dbmodal/dbdata/node_tables.h"
#include "dbmodal/dbread/block_reader.h"

namespace fmd {

namespace {

void release_nodes(FmdBody& body) {
  for (int node = 0; body.Nodes != nullptr && node < body.NodeCount; ++node)
    release(body.Nodes[node].Inertia);
  release(body.Nodes);
  release(body.SortedNodes);
  body.SortedModeNodes[kShape] = nullptr;
}

bool read_node(BlockReader& reader, FmdNode& node) {
  return reader.read_int(node.Id) && reader.read_reals(node.Coordinates, 3);
}

bool fail_at_masses() {
  return report("Problem reading Nodal Mass information");
}

bool read_mass(BlockReader& reader, double* values, std::int32_t count) {
  std::int32_t id = 0;
  if (!reader.read_int(id) || !reader.read_reals(values, count)) return false;
  double mass = 0.0;
  for (int i = 0; i < count; ++i) mass += values[i];
  mass /= count;
  const int index = FMD_NodeIndex(&reader.body, id);
  if (index < 0) return true;
  FmdNode& node = reader.body.Nodes[index];
  if (node.Mass != 0.0) FMD_Warning("Redefining mass of Node %d", id);
  node.Mass = mass;
  return true;
}

// Place of a pair of rotations in the packed tensor xx yy zz xy xz yz.
int packed_place(int row, int column) {
  if (row == column) return row - 4;
  return row + column - 6;
}

bool is_rotation(int direction) {
  return direction >= 4 && direction <= 6;
}

bool provide_inertia(FmdNode& node) {
  if (node.Inertia != nullptr) return true;
  node.Inertia = static_cast<double*>(allocate_quietly(6, sizeof(double)));
  if (node.Inertia == nullptr) FMD_Error("Error allocating memory for inertia matrix for node %d\n", node.Id);
  return node.Inertia != nullptr;
}

bool read_inertia_entry(BlockReader& reader) {
  std::int32_t id = 0;
  char row[1];
  char column[1];
  if (!reader.read_int(id) || !reader.read_chars(row) || !reader.read_chars(column)) return false;
  if (!is_rotation(row[0])) {
    FMD_Error("Row index of nodal inertia entries should be 4, 5, or 6.  %d encoutered\n", row[0]);
    return false;
  }
  if (!is_rotation(column[0])) {
    FMD_Error("Column index of nodal inertia entries should be 4, 5, or 6.  %d encoutered\n", column[0]);
    return false;
  }
  double value = 0.0;
  if (!reader.read_reals(&value, 1)) return false;
  const int index = FMD_NodeIndex(&reader.body, id);
  if (index < 0 || !provide_inertia(reader.body.Nodes[index])) return false;
  double& entry = reader.body.Nodes[index].Inertia[packed_place(row[0], column[0])];
  if (entry != 0.0 && entry != value) FMD_Warning("Redefining mass of Nodal inertia %d", id);
  entry = value;
  return true;
}

}  // namespace

bool read_nodal_coordinates(BlockReader& reader) {
  constexpr const char* kProblem = "Problem reading Node Coordinates Data";
  FmdBody& body = reader.body;
  std::int32_t counts[2];
  if (!reader.read_ints(counts, 2)) return report(kProblem);
  if (counts[0] > 0 && !reader.has(counts[0], 1 + 3 * reader.words_per_real())) return report(kProblem);
  auto nodes = allocate_table<FmdNode>(counts[0], "Out of memory while reading Nodal Coordinate block");
  if (nodes == nullptr) return false;
  release_nodes(body);
  install(body.Nodes, nodes);
  body.NodeCount = body.NodeCapacity = body.ModeNodeCount[kShape] = counts[0];
  if (counts[1] != 3)
    FMD_Error("Node location should only be specified with 3 coordinates, not %ld",
              static_cast<long>(counts[1]));
  const bool done = std::all_of(body.Nodes, body.Nodes + body.NodeCount,
                                [&](FmdNode& node) { return read_node(reader, node); });
  return done || report(kProblem);
}

bool read_global_properties(BlockReader& reader) {
  double values[13];
  if (!reader.read_reals(values, 13)) return report("Problem reading Global Body Properties");
  reader.body.GlobalMass = values[0];
  std::copy_n(values + 1, 3, reader.body.GlobalCenterOfMass);
  std::copy_n(values + 4, 9, reader.body.GlobalInertia);
  return true;
}

bool read_nodal_masses(BlockReader& reader) {
  FmdBody& body = reader.body;
  std::int32_t counts[2];
  if (!reader.read_ints(counts, 2) || counts[1] < 1) return fail_at_masses();
  if (!reader.has(counts[0], 1 + reader.words_per_real() * counts[1])) return fail_at_masses();
  if (counts[1] > 1) {
    FMD_Warning("Each node must possess a single scalar mass");
    FMD_Warning("Generating scalar by averaging %d values", counts[1]);
  }
  if (counts[0] == 0) return true;
  const auto values = allocate<double>(counts[1], "dbread");
  // Without the table of ids every node would seem unknown.
  if (values == nullptr || !provide_sorted(body, kShape)) return fail_at_masses();
  for (int i = 0; i < counts[0]; ++i) {
    if (!read_mass(reader, values.get(), counts[1])) return fail_at_masses();
  }
  return true;
}

bool read_nodal_inertias(BlockReader& reader) {
  std::int32_t count = 0;
  bool done = reader.read_int(count) && reader.has(count, 3);
  for (int i = 0; i < count && done; ++i) done = read_inertia_entry(reader);
  return done || report("Problem reading Nodal Inertia information");
}

bool read_interface_nodes(BlockReader& reader) {
  constexpr const char* kProblem = "Problem when reading Interface Nodes";
  FmdBody& body = reader.body;
  std::int32_t count = 0;
  if (!reader.read_int(count) || (count > 0 && !reader.has(count, 1))) return report(kProblem);
  auto nodes = allocate_table<std::int32_t>(count, "Out of memory while reading Interface Nodes block");
  if (nodes == nullptr || !reader.read_ints(nodes.get(), count)) return report(kProblem);
  for (int i = 0; i < count; ++i) {
    std::int32_t& node = nodes[static_cast<std::size_t>(i)];
    if (node < 0 || node >= body.NodeCount) return report(kProblem);
    node = reader.node_index(node);
  }
  install(body.InterfaceNodes, nodes);
  body.InterfaceNodeCount = body.InterfaceNodeCapacity = count;
  return true;
}

}  // namespace fmd
