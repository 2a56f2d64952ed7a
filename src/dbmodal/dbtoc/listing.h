// The contents report: one function lists one block of a live body through the body's getters.
//
// Nodes come in ascending order of id. A listing that ends with a line of its own closes with an empty one.
// Where memory for a temporary array is missing the failure is reported and the listing ends there.
#ifndef FMDTOOLKIT_DBMODAL_DBTOC_LISTING_H
#define FMDTOOLKIT_DBMODAL_DBTOC_LISTING_H

#include <cstdint>
#include <cstdio>

#include "body/body.h"
#include "messages/memory.h"

namespace fmd {

void print_banner(std::FILE* out, int block, const char* title);

// As allocate, for the temporary arrays of the report.
template <typename T>
CArray<T> listing_array(std::int64_t count, int line = __builtin_LINE()) {
  return allocate<T>(count, "dbtoc", line);
}

void list_version(FmdBody* body, std::FILE* out);
void list_header(FmdBody* body, std::FILE* out);
void list_summary(FmdBody* body, std::FILE* out);
void list_coordinates(FmdBody* body, std::FILE* out);
void list_topology(FmdBody* body, std::FILE* out);
void list_global_properties(FmdBody* body, std::FILE* out);
void list_eigenvalues(FmdBody* body, std::FILE* out);
void list_mode_shapes(FmdBody* body, std::FILE* out);
void list_nodal_masses(FmdBody* body, std::FILE* out);
void list_nodal_inertias(FmdBody* body, std::FILE* out);
void list_units(FmdBody* body, std::FILE* out);
void list_stiffness(FmdBody* body, std::FILE* out);
void list_mass(FmdBody* body, std::FILE* out);
void list_faces(FmdBody* body, std::FILE* out);
void list_damping(FmdBody* body, std::FILE* out);
void list_transformation(FmdBody* body, std::FILE* out);
void list_interface_nodes(FmdBody* body, std::FILE* out);
void list_stress(FmdBody* body, std::FILE* out);
void list_invariant_1(FmdBody* body, std::FILE* out);
void list_invariant_2(FmdBody* body, std::FILE* out);
void list_invariant_3(FmdBody* body, std::FILE* out);
void list_invariant_4(FmdBody* body, std::FILE* out);
void list_invariant_5(FmdBody* body, std::FILE* out);
void list_invariant_7(FmdBody* body, std::FILE* out);
void list_invariant_8(FmdBody* body, std::FILE* out);
void list_invariant_9(FmdBody* body, std::FILE* out);
void list_preload(FmdBody* body, std::FILE* out);
void list_loads(FmdBody* body, std::FILE* out);
void list_strain(FmdBody* body, std::FILE* out);
void list_statistics(FmdBody* body, std::FILE* out);
void list_pre_stress(FmdBody* body, std::FILE* out);
void list_pre_strain(FmdBody* body, std::FILE* out);
void list_monitor_points(FmdBody* body, std::FILE* out);
void list_matrix_operators(FmdBody* body, std::FILE* out);
void list_nodal_loads(FmdBody* body, std::FILE* out);

}  // namespace fmd

#endif
