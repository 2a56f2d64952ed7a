#include "dbmodal/block_table.h"

#include "dbmodal/dbread/block_reader.h"
#include "dbmodal/dbtoc/listing.h"

namespace fmd {

namespace {

// Blocks 1 to 3 are written before the walk over the table, which decides what follows them.
constexpr std::array<Block, kBlockCount> kBlocks = {{
    {1, kAlwaysPresent, "Version code (1)", "Problem writing version number.", nullptr, nullptr,
     "Version Code:", list_version},
    {2, kAlwaysPresent, "Header (2)", "Problem writing header information.", nullptr, nullptr,
     "Header:", list_header},
    {3, kAlwaysPresent, "Content_summary (3)", "Problem writing content summary.\n", nullptr, nullptr,
     "Content Summary:", list_summary},
    {4, kNodalCoordinates, "Nodal_coords (4)", "Problem writing nodal coordinates.\n",
     write_nodal_coordinates, read_nodal_coordinates, "Nodal Coords:", list_coordinates},
    {5, kElementTopology, "Element_topology (5)", "Problem writing element topology map.",
     write_element_topology, read_element_topology, "Element Topology:", list_topology},
    {6, kGlobalProperties, "Global_body_props (6)", "Problem writing Global Body Properties.",
     write_global_properties, read_global_properties, "Global Body Properties:", list_global_properties},
    {7, kEigenvalues, "Eigenvalues (7)", "Problem writing eigenvalues.", write_eigenvalues, read_eigenvalues,
     "Eigenvalues:", list_eigenvalues},
    {8, kModeShapes, "Mode_shapes (8)", "Problem writing Mode Shapes.", write_mode_shapes, read_mode_shapes,
     "Mode Shapes:", list_mode_shapes},
    {9, kNodalMasses, "Nodal_masses (9)", "Problem writing Nodal Masses.\n", write_nodal_masses,
     read_nodal_masses, "Nodal Masses:", list_nodal_masses},
    {10, kNodalInertias, "Nodal_inertias (10)", "Problem writing Nodal Inertia info.", write_nodal_inertias,
     read_nodal_inertias, "Nodal Inertias:", list_nodal_inertias},
    {11, kUnits, "Units (11)", "Problem writing Units strings.", write_units, nullptr,
     "FMD Default Units:", list_units},
    {12, kGeneralizedStiffness, "Generalized_stiffness (12)", "Problem writing Generalized Stiffness info.",
     write_generalized_stiffness, read_generalized_stiffness, "Generalized Stiffness:", list_stiffness},
    {13, kGeneralizedMass, "Generalized_mass (13)", "Problem writing Generalized Mass info.",
     write_generalized_mass, read_generalized_mass, "Generalized Mass:", list_mass},
    {14, kElementFaces, "Element_faces (14)", "Problem writing element face info.", write_element_faces,
     read_element_faces, "Element Faces:", list_faces},
    {15, kGeneralizedDamping, "Generalized_damping (15)", "Problem writing Generalized Damping info.",
     write_generalized_damping, read_generalized_damping, "Generalized Damping:", list_damping},
    {16, kTransformation, "Mode_Shape_Transformation (16)", "Problem writing Mode Shape Transformation.",
     write_transformation, read_transformation, "Mode Shape Transformation:", list_transformation},
    {17, kInterfaceNodes, "Interface_Nodes (17)", "Problem writing Interface Nodes.", write_interface_nodes,
     read_interface_nodes, "Interface Nodes:", list_interface_nodes},
    {18, kModalStress, "Modal Stress (18)", "Problem writing Modal Stress.\n", write_modal_stress,
     read_modal_stress, "Node Stress per Mode:", list_stress},
    {19, kInvariant1, "Invariants 1 (19)", "Problem writing Invariant 1.\n", write_invariant_1, nullptr,
     "Invariant 1:", list_invariant_1},
    {20, kInvariant2, "Invariants 2 (20)", "Problem writing Invariant 2.\n", write_invariant_2, nullptr,
     nullptr, list_invariant_2},
    {21, kInvariant3, "Invariants 3 (21)", "Problem writing Invariant 3.\n", write_invariant_3, nullptr,
     nullptr, list_invariant_3},
    {22, kInvariant4, "Invariants 4 (22)", "Problem writing Invariant 4.\n", write_invariant_4, nullptr,
     nullptr, list_invariant_4},
    {23, kInvariant5, "Invariants 5 (23)", "Problem writing Invariant 5.\n", write_invariant_5, nullptr,
     "Invariant 5:", list_invariant_5},
    {24, kInvariant7, "Invariants 7 (24)", "Problem writing Invariant 7.\n", write_invariant_7, nullptr,
     "Invariant 7:", list_invariant_7},
    {25, kInvariant8, "Invariants 8 (25)", "Problem writing Invariant 8.\n", write_invariant_8, nullptr,
     "Invariant 8:", list_invariant_8},
    {26, kInvariant9, "Invariants 9 (26)", "Problem writing Invariant 9.\n", write_invariant_9, nullptr,
     "Invariant 9:", list_invariant_9},
    {27, kModalPreload, "Modal Preload (27)", "Problem writing Preload.\n", write_modal_preload,
     read_modal_preload, "Modal Preload:", list_preload},
    {28, kModalLoads, "Modal Loads (28)", "Problem writing Modal Loads.\n", write_modal_loads,
     read_modal_loads, "Modal Loads:", list_loads},
    {29, kModalStrain, "Modal Strain (29)", "Problem writing Modal Strain.", write_modal_strain,
     read_modal_strain, "Node Strain per Mode:", list_strain},
    {30, kModalStatistics, "Modal Statistics (30)", "Problem writing Modal Statistics.\n",
     write_modal_statistics, read_modal_statistics, "Modal Statistics:", list_statistics},
    {31, kPreStress, "Nodal Pre-Stress (31)", "Problem writing Pre-Stress.\n", write_pre_stress,
     read_pre_stress, "Nodal Pre-Stress:", list_pre_stress},
    {32, kPreStrain, "Nodal Pre-Strain (32)", "Problem writing Pre-Strain.\n", write_pre_strain,
     read_pre_strain, "Nodal Pre-Strain:", list_pre_strain},
    {33, kMonitorPoints, "Monitor Points (33)", "Problem writing Monitor Point Data.\n", write_monitor_points,
     read_monitor_points, "Monitor Point:", list_monitor_points},
    {34, kMatrixOperators, "Matrix Operator (34)", "Problem writing Matrix Operator Data.\n",
     write_matrix_operators, read_matrix_operators, "Matrix Operator:", list_matrix_operators},
    {35, kModalLoadNodal, "Modal Load Nodal (35)", "Problem writing Modal Load Nodal.\n",
     write_modal_load_nodal, read_modal_load_nodal, "Modal Load Nodal:", list_nodal_loads},
}};

}  // namespace

const std::array<Block, kBlockCount>& block_table() {
  return kBlocks;
}

}  // namespace fmd
