// Version, header, summary, nodes, global properties, units, faces, interface nodes.
#include "dbmodal/block_table.h"
#include "dbmodal/dbtoc/listing.h"
#include "dbmodal/version_word.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

const char* yes_or_no(bool yes) {
  return yes ? "Yes" : "No";
}

// Calls visit(node) in ascending order of id.
template <typename Visit>
void for_each_node(const FmdBody& body, Visit visit) {
  for (int place = 0; place < body.NodeCount; ++place) visit(body.Nodes[body.SortedNodes[place].Index]);
}

void print_tensor(std::FILE* out, const char* first_row, const char* other_rows, const double* t) {
  std::fprintf(out, first_row, t[0], t[1], t[2]);
  std::fprintf(out, other_rows, t[3], t[4], t[5]);
  std::fprintf(out, other_rows, t[6], t[7], t[8]);
}

}  // namespace

void list_version(FmdBody* body, std::FILE* out) {
  std::fprintf(out, "FMD version:%4.1f\n", static_cast<double>(format_level(body->Version)) / 10.0);
  std::fprintf(out, "Precision: %s   \n", is_single_precision(body->Version) ? "Single" : "Double");
  std::fprintf(out, "Platform independent (XDR encoded): %s \n", yes_or_no(is_xdr(body->Version)));
  std::fprintf(out, "Coarsened or sketched mesh: %s \n\n",
               yes_or_no((body->Version & kVersionCoarsened) != 0));
}

void list_header(FmdBody* body, std::FILE* out) {
  char title[128];
  char created[32];
  char name[128];
  char type[16];
  char comments[3][80];
  FMD_Header(body, title, created, name, type, comments[0], comments[1], comments[2]);
  std::fprintf(out, "Title: %s\n", title);
  std::fprintf(out, "Date: %s\n", created);
  std::fprintf(out, "Input file name: %s\n", name);
  std::fprintf(out, "Input file type: %s\n", type);
  std::fprintf(out, "Comments:\n");
  for (const auto& comment : comments) std::fprintf(out, "  %s\n", comment);
  std::fprintf(out, "\n");
}

void list_summary(FmdBody* body, std::FILE* out) {
  std::fprintf(out, "Existence:\n");
  for (const Block& block : block_table()) {
    std::fprintf(out, "%30s %s\n", block.name, yes_or_no(FMD_Exists(body, block.number - 1) != 0));
  }
  std::fprintf(out, "\n");
}

void list_coordinates(FmdBody* body, std::FILE* out) {
  for_each_node(*body, [out](const FmdNode& node) {
    std::fprintf(out, "%4d ", node.Id);
    for (const double x : node.Coordinates) std::fprintf(out, "%20.10le ", x);
    std::fprintf(out, "\n");
  });
  std::fprintf(out, "\n");
}

void list_topology(FmdBody*, std::FILE* out) {
  std::fprintf(out, "Obsolete: Reported as part of face list, block 14\n\n");
}

void list_global_properties(FmdBody* body, std::FILE* out) {
  if (body->BlockExists[kGlobalProperties] == 0) {
    std::fprintf(out, "No global body property information\n\n");
    return;
  }
  const double* const center = body->GlobalCenterOfMass;
  std::fprintf(out, "Mass: % 17.10lf\n", body->GlobalMass);
  std::fprintf(out, "Center of Mass: % 17.10lf % 17.10lf % 17.10lf\n", center[0], center[1], center[2]);
  print_tensor(out, "Inertia Tensor: % 17.10lf % 17.10lf % 17.10lf\n",
               "                % 17.10lf % 17.10lf % 17.10lf\n", body->GlobalInertia);
  std::fprintf(out, "\n");
}

void list_nodal_masses(FmdBody* body, std::FILE* out) {
  for_each_node(*body, [out](const FmdNode& node) { std::fprintf(out, "%4d\t%le\n", node.Id, node.Mass); });
  std::fprintf(out, "\n");
}

void list_nodal_inertias(FmdBody* body, std::FILE* out) {
  bool any = false;
  for_each_node(*body, [&](const FmdNode& node) {
    if (node.Inertia == nullptr) return;
    const double* const i = node.Inertia;
    any = true;
    std::fprintf(out, "Inertia Tensor of Node %5d: % 17.10lf % 17.10lf % 17.10lf\n", node.Id, i[0], i[3],
                 i[4]);
    std::fprintf(out, "                              % 17.10lf % 17.10lf % 17.10lf\n", i[3], i[1], i[5]);
    std::fprintf(out, "                              % 17.10lf % 17.10lf % 17.10lf\n", i[4], i[5], i[2]);
  });
  if (!any) std::fprintf(out, "\tNo Nodal Inertia information.\n");
  std::fprintf(out, "\n");
}

void list_units(FmdBody* body, std::FILE* out) {
  char labels[4][16];
  FMD_Units(body, labels[0], labels[1], labels[2], labels[3]);
  std::fprintf(out, "Units:\n");
  std::fprintf(out, "Mass Units    %s\n", labels[0]);
  std::fprintf(out, "Length Units  %s\n", labels[1]);
  std::fprintf(out, "Time Units    %s\n", labels[2]);
  std::fprintf(out, "Force Units   %s\n", labels[3]);
  std::fprintf(out, "\n");
}

void list_faces(FmdBody* body, std::FILE* out) {
  int faces = 0;
  int length = 0;
  FMD_FaceListSize(body, &faces, &length);
  const auto list = listing_array<std::int32_t>(length);
  if (list == nullptr || FMD_ElementFaces(body, list.get()) == 0) return;
  std::fprintf(out, "number of faces %d\n\n", faces);
  const std::int32_t* corner = list.get();
  for (int face = 1; face <= faces; ++face) {
    std::fprintf(out, "  %5d      ", face);
    const std::int32_t* const end = corner + 1 + *corner;
    for (++corner; corner < end; ++corner) std::fprintf(out, "%7d", FMD_NodeID(body, *corner));
    std::fprintf(out, "\n");
  }
  std::fprintf(out, "\n");
}

void list_interface_nodes(FmdBody* body, std::FILE* out) {
  for (int i = 0; i < body->InterfaceNodeCount; ++i) {
    std::fprintf(out, "%4d %4d \n", i + 1, FMD_NodeID(body, body->InterfaceNodes[i]));
  }
  std::fprintf(out, "\n");
}

}  // namespace fmd
