// The contents of a Flexible Modal Dataset in stream form, block by block, as they stand in the file.
//
// A block that the file does not hold is an empty optional. Matrices and vectors lie flat, in file order.
#ifndef FMDTOOLKIT_TESTS_DATASET_READER_DATASET_H
#define FMDTOOLKIT_TESTS_DATASET_READER_DATASET_H

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace dataset_reader {

// Texts keep their full width, padding included; trimmed() takes it off.
struct Header {
  std::string title;            // 128
  std::string date;             // 32
  std::string input_file_name;  // 128
  std::string input_file_type;  // 16
  std::string comments[3];      // 80 each
};

struct NodePosition {
  std::int32_t id;
  std::array<double, 3> xyz;
};

struct TopologyFace {
  std::int32_t unused[2];
  std::vector<std::int32_t> node_ids;
};

struct TopologyType {
  std::int32_t type;
  std::int32_t size;
  std::vector<TopologyFace> faces;
};

struct ElementTopology {
  std::int32_t face_count;
  std::vector<TopologyType> types;
};

struct GlobalProperties {
  double mass;
  std::array<double, 3> center;
  std::array<double, 9> inertia;
};

struct Eigenvalue {
  std::int32_t mode;
  double eigenvalue;
  double hertz;
  double radians;
  double generalized_mass;
  double generalized_stiffness;
};

// Blocks 8, 18 and 29: six values per node and mode.
struct ModeVectors {
  std::int32_t mode_count;
  std::vector<std::int32_t> node_ids;
  std::vector<std::int32_t> words;  // per-mode words; empty where the level has none
  std::vector<double> values;

  std::array<double, 6> at(std::size_t mode, std::size_t node) const;
};

struct NodalMasses {
  std::int32_t values_per_node;
  std::vector<std::int32_t> node_ids;
  std::vector<double> values;
};

struct InertiaEntry {
  std::int32_t node_id;
  int row;  // 4 to 6, as column
  int column;
  double value;
};

struct Units {
  std::string mass;  // 16 each, padding included
  std::string length;
  std::string time;
  std::string force;
};

struct MatrixEntry {
  std::int32_t row;
  std::int32_t column;
  double value;
  std::int32_t last_word;
};

struct SparseMatrix {
  std::int32_t order;
  std::vector<MatrixEntry> entries;
};

struct ElementFaces {
  std::int32_t declared_bytes;
  std::int32_t reserved;
  std::vector<std::vector<std::int32_t>> faces;  // node indices
};

struct GeneralizedDamping {
  std::int32_t projected;
  std::vector<MatrixEntry> entries;
};

struct Transformation {
  std::vector<std::int32_t> mode_numbers;
  std::vector<double> matrix;
};

// Blocks 21 to 23, 25 and 26.
struct ModalInvariant {
  std::int32_t mode_count;
  std::vector<double> values;
};

struct ModalPreload {
  std::int32_t processed;
  std::vector<double> values;
};

struct LoadCase {
  std::string label;  // 256
  std::int32_t processed;
  std::vector<double> values;
};

struct ModalLoads {
  std::int32_t mode_count;
  std::vector<LoadCase> cases;
};

struct ModeStatistics {
  std::array<std::int32_t, 13> nodes;
  std::array<double, 13> values;
};

struct MonitorPoint {
  std::int32_t type;
  std::int32_t result_type;
  std::int32_t component;
  std::string name;   // 8
  std::string label;  // 56
  std::int32_t rows;
  std::int32_t flags;
  std::vector<double> displacement;
  std::vector<double> velocity;
  std::vector<double> acceleration;
  std::vector<double> load;
};

struct SubOperator {
  std::int32_t columns;
  std::string tag;  // 8
  std::vector<double> values;
};

struct MatrixOperator {
  std::int32_t rows;
  std::string name;                     // 8
  std::vector<std::string> row_labels;  // 80 each
  std::vector<SubOperator> parts;
};

struct NodalLoad {
  std::int32_t node_index;
  std::int32_t coordinate;
  double value;
};

// Where a block lies in the file.
struct BlockExtent {
  int number;
  std::size_t offset;
  std::size_t bytes;
};

struct Dataset {
  std::uint32_t version_word;
  int level;
  bool xdr;        // as the bytes are
  bool single;     // as the reals are
  bool coarsened;  // bit 10
  Header header;
  std::array<unsigned char, 100> summary;
  std::vector<BlockExtent> blocks;  // all that the file holds, 1 to 3 included, in file order

  std::optional<std::vector<NodePosition>> nodes;                  // block 4
  std::optional<ElementTopology> topology;                         // 5
  std::optional<GlobalProperties> global_properties;               // 6
  std::optional<std::vector<Eigenvalue>> eigenvalues;              // 7
  std::optional<ModeVectors> mode_shapes;                          // 8
  std::optional<NodalMasses> nodal_masses;                         // 9
  std::optional<std::vector<InertiaEntry>> nodal_inertias;         // 10
  std::optional<Units> units;                                      // 11
  std::optional<SparseMatrix> generalized_stiffness;               // 12
  std::optional<SparseMatrix> generalized_mass;                    // 13
  std::optional<ElementFaces> faces;                               // 14
  std::optional<GeneralizedDamping> generalized_damping;           // 15
  std::optional<Transformation> transformation;                    // 16
  std::optional<std::vector<std::int32_t>> interface_nodes;        // 17
  std::optional<ModeVectors> stress;                               // 18
  std::optional<double> invariant1;                                // 19
  std::optional<std::vector<double>> invariant2;                   // 20
  std::optional<ModalInvariant> invariant3;                        // 21
  std::optional<ModalInvariant> invariant4;                        // 22
  std::optional<ModalInvariant> invariant5;                        // 23
  std::optional<std::vector<double>> invariant7;                   // 24
  std::optional<ModalInvariant> invariant8;                        // 25
  std::optional<ModalInvariant> invariant9;                        // 26
  std::optional<ModalPreload> preload;                             // 27
  std::optional<ModalLoads> loads;                                 // 28
  std::optional<ModeVectors> strain;                               // 29
  std::optional<std::vector<ModeStatistics>> statistics;           // 30
  std::optional<std::vector<std::array<double, 6>>> prestress;     // 31
  std::optional<std::vector<std::array<double, 6>>> prestrain;     // 32
  std::optional<std::vector<MonitorPoint>> monitor_points;         // 33
  std::optional<std::vector<MatrixOperator>> operators;            // 34
  std::optional<std::vector<std::vector<NodalLoad>>> nodal_loads;  // 35

  // The extent of a block, or null.
  const BlockExtent* block(int number) const;
};

}  // namespace dataset_reader

#endif
