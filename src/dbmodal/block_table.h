// The 35 blocks of a dataset, declared once: whoever writes, reads or lists blocks walks this table.
#ifndef FMDTOOLKIT_DBMODAL_BLOCK_TABLE_H
#define FMDTOOLKIT_DBMODAL_BLOCK_TABLE_H

#include <array>
#include <cstdio>

#include "body/body.h"

namespace fmd {

struct WriteJob;
class BlockReader;

constexpr int kAlwaysPresent = -1;

struct Block {
  int number;                  // on file; its id is one less
  int summary_byte;            // of BlockExists, or kAlwaysPresent
  const char* name;            // as listed to people
  const char* write_failure;   // what is reported when the block cannot be written
  bool (*write)(WriteJob&);    // null for the blocks that always exist
  bool (*read)(BlockReader&);  // null for those that are read before all others, or when asked for
  const char* title;           // in the banner of its listing; null where the listing prints its own
  void (*list)(FmdBody*, std::FILE*);
};

const std::array<Block, kBlockCount>& block_table();

// Writers of single blocks. Each puts one block's body into the sink and answers false on failure.
bool write_nodal_coordinates(WriteJob& job);
bool write_element_topology(WriteJob& job);
bool write_global_properties(WriteJob& job);
bool write_eigenvalues(WriteJob& job);
bool write_mode_shapes(WriteJob& job);
bool write_nodal_masses(WriteJob& job);
bool write_nodal_inertias(WriteJob& job);
bool write_units(WriteJob& job);
bool write_generalized_stiffness(WriteJob& job);
bool write_generalized_mass(WriteJob& job);
bool write_element_faces(WriteJob& job);
bool write_generalized_damping(WriteJob& job);
bool write_transformation(WriteJob& job);
bool write_interface_nodes(WriteJob& job);
bool write_modal_stress(WriteJob& job);
bool write_invariant_1(WriteJob& job);
bool write_invariant_2(WriteJob& job);
bool write_invariant_3(WriteJob& job);
bool write_invariant_4(WriteJob& job);
bool write_invariant_5(WriteJob& job);
bool write_invariant_7(WriteJob& job);
bool write_invariant_8(WriteJob& job);
bool write_invariant_9(WriteJob& job);
bool write_modal_preload(WriteJob& job);
bool write_modal_loads(WriteJob& job);
bool write_modal_strain(WriteJob& job);
bool write_modal_statistics(WriteJob& job);
bool write_pre_stress(WriteJob& job);
bool write_pre_strain(WriteJob& job);
bool write_monitor_points(WriteJob& job);
bool write_matrix_operators(WriteJob& job);
bool write_modal_load_nodal(WriteJob& job);

}  // namespace fmd

#endif
