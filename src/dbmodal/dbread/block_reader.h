// Reading the blocks of a stored dataset into a body.
//
// A count from a file is believed only as far as the record that it stands in goes: nothing is allocated for
// more than there is to read.
#ifndef FMDTOOLKIT_DBMODAL_DBREAD_BLOCK_READER_H
#define FMDTOOLKIT_DBMODAL_DBREAD_BLOCK_READER_H

#include <cstdint>

#include "body/body.h"
#include "dbmodal/version_word.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

// Of what is not there: nothing can be read from this place.
constexpr FmdPosition kNoPosition = {{-1, -1}};

class BlockReader {
 public:
  explicit BlockReader(FmdBody& target) : body(target) {}

  bool read_ints(std::int32_t* values, std::int64_t count);
  bool read_int(std::int32_t& value) { return read_ints(&value, 1); }
  bool read_reals(double* values, std::int64_t count);
  template <std::size_t size>
  bool read_chars(char (&field)[size]) {
    return DB_ReadCHARs(body.DataFile, field, static_cast<int>(size)) != 0;
  }
  bool skip_words(std::int64_t count);

  // Whether the current record still has so many items of so many words.
  bool has(std::int64_t items, std::int64_t words_each) const;
  std::int64_t words_per_real() const { return body.DataFile.DoublePrecision != 0 ? 2 : 1; }
  int level() const { return format_level(body.Version); }

  // Where a node of the file's node block stands now; a place that is no node's stays as it is.
  std::int32_t node_index(std::int32_t in_file) const;

  FmdBody& body;
  CArray<std::int32_t> moved;  // by place in the node block: index in the node table; null where all stay
  bool has_eigenvalues = false;
  std::int32_t numbered_modes = 0;  // modes that the body has numbers for
};

// One function a block. Each reads the body of its block, to whose start the dataset has been moved, reports
// what is wrong and answers false where the whole read has failed.
bool read_nodal_coordinates(BlockReader& reader);
bool read_element_topology(BlockReader& reader);
bool read_global_properties(BlockReader& reader);
bool read_eigenvalues(BlockReader& reader);
bool read_mode_shapes(BlockReader& reader);
bool read_nodal_masses(BlockReader& reader);
bool read_nodal_inertias(BlockReader& reader);
bool read_generalized_stiffness(BlockReader& reader);
bool read_generalized_mass(BlockReader& reader);
bool read_element_faces(BlockReader& reader);
bool read_generalized_damping(BlockReader& reader);
bool read_transformation(BlockReader& reader);
bool read_interface_nodes(BlockReader& reader);
bool read_modal_stress(BlockReader& reader);
bool read_modal_preload(BlockReader& reader);
bool read_modal_loads(BlockReader& reader);
bool read_modal_strain(BlockReader& reader);
bool read_modal_statistics(BlockReader& reader);
bool read_pre_stress(BlockReader& reader);
bool read_pre_strain(BlockReader& reader);
bool read_monitor_points(BlockReader& reader);
bool read_matrix_operators(BlockReader& reader);
bool read_modal_load_nodal(BlockReader& reader);

// Says what went wrong; always false.
bool report(const char* message);

// An array for what a block holds; null, with the block's own message, for no entries or no memory.
template <typename T>
CArray<T> allocate_table(std::int64_t count, const char* message) {
  auto* const storage = static_cast<T*>(allocate_quietly(count, sizeof(T)));
  if (storage == nullptr) report(message);
  return CArray<T>(storage);
}

// Gives the body an array in place of the one that it has.
template <typename T>
void install(T*& field, CArray<T>& storage) {
  release(field);
  field = storage.release();
}

}  // namespace fmd

#endif
