// Coarsening of a body's display mesh: options, messages, and what is preserved. Nodes, modes and masses of
// the body stay as they are; only its face list becomes another.
#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "dbmodal/dbcoarse/coarsener.h"
#include "dbmodal/dbcoarse/colinear_vertices.h"
#include "dbmodal/dbcoarse/trim_options.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"
#include "services/progress.h"

namespace fmd {

namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kDefaultResolution = 0.02;
constexpr double kMostResolution = 0.5;
constexpr double kDefaultAngle = 10.0;
constexpr double kMostAngle = 45.0;

// Reports where there is no memory, no face or no node; says nothing of a list that is damaged.
bool unpack(const FmdBody& body, CoarseMesh& mesh) {
  if (body.FaceListLength != 0 &&
      !is_sound_face_list(body.FaceList, body.FaceCount, body.FaceListLength, body.NodeCount))
    return false;
  const bool has_faces = mesh.unpack_faces(body.FaceList, body.FaceCount, body.FaceListLength);
  if (!has_faces) report_allocation_failure("dbcoarse");
  const bool has_nodes = mesh.make_nodes(body.NodeCount);
  if (!has_nodes) report_allocation_failure("dbcoarse");
  for (std::int32_t node = 0; node < mesh.node_count; ++node)
    std::copy_n(body.Nodes[node].Coordinates, 3, mesh.position(node));
  return has_faces && has_nodes;
}

// The percentage is told without its fraction, and so it is in the warning, which prints it as a real.
double whole_percent(double resolution) {
  return std::trunc(resolution * 100.0) + 0.0;  // no negative zero
}

void settle_ranges(TrimOptions& options) {
  if (!(options.resolution > 0.0 && options.resolution <= kMostResolution)) {
    FMD_Warning("Coarsening resolution outside the 0-50 percent range not supported.  You selected %lf\n",
                whole_percent(options.resolution));
    options.resolution = kDefaultResolution;
  }
  if (!(options.angle > 0.0 && options.angle <= kMostAngle)) {
    FMD_Warning("Face angles outside the 0-45 degree range not supported.  You selected %lf\n",
                options.angle);
    options.angle = kDefaultAngle;
  }
}

void announce(const TrimOptions& options) {
  const auto percent = static_cast<int>(whole_percent(options.resolution));
  FMD_Info(options.removes_colinear
               ? "Coarsening to resolution %d%% with face-angle %5.2lf deg and co-linear vertex removal"
               : "Coarsening to resolution %d%% with face-angle %5.2lf deg",
           percent, options.angle);
}

// Takes the records off nodes that must stay, and names these nodes.
class Preservation {
 public:
  Preservation(FmdBody* body, CoarseMesh& mesh) : body_(body), mesh_(mesh) {}

  void apply(std::string_view ids) {
    FMD_Info("Preserving nodes: ");
    for (std::int32_t k = 0; k < body_->InterfaceNodeCount; ++k) preserve(body_->InterfaceNodes[k]);
    for (std::int32_t id = take_preserved_id(ids); id != 0; id = take_preserved_id(ids)) preserve_live(id);
    if (preserves_stress_nodes(ids)) {
      preserve_mode_nodes(kStress);
      preserve_mode_nodes(kStrain);
    }
    if (!any_) FMD_Info(" NONE");
  }

 private:
  void preserve(std::int32_t node) {
    if (node < 0 || node >= mesh_.node_count) return;
    mesh_.live[static_cast<std::size_t>(node)] = 0;
    FMD_Info("%d ", FMD_NodeID(body_, node));
    any_ = true;
  }

  void preserve_live(std::int32_t id) {
    const std::int32_t node = FMD_NodeIndex(body_, id);
    if (node < 0 || node >= mesh_.node_count || mesh_.live[static_cast<std::size_t>(node)] == 0) return;
    preserve(node);
  }

  void preserve_mode_nodes(int type) {
    for (std::int32_t place = 0; place < body_->ModeNodeCount[type]; ++place)
      preserve_live(body_->ModeNodes[type][place]->Id);
  }

  FmdBody* body_;
  CoarseMesh& mesh_;
  bool any_ = false;
};

void visit_nodes(const CoarseMesh& mesh, Coarsener& coarsener, const CoarseLimits& limits) {
  constexpr std::int32_t kSteps = 100;
  time_monitor(kSteps);
  for (std::int32_t node = 0; node < mesh.node_count; ++node) {
    if (mesh.node_count > kSteps && node % (mesh.node_count / kSteps) == 0) time_monitor_stamp();
    if (coarsener.visit(node, limits) == Visit::kNoMemory) report_allocation_failure("dbcoarse");
  }
}

// The storage is at least what the capacity of the list says, which stays as it stands.
void install_faces(FmdBody& body, const CoarseMesh& mesh) {
  const FaceListSize size = mesh.packed_size();
  release(body.FaceList);
  body.FaceCount = body.FaceListLength = 0;
  const std::int32_t room = size.length == 0 ? 0 : std::max(size.length, body.FaceListCapacity);
  body.FaceList = allocate<std::int32_t>(room, "dbcoarse").release();
  if (body.FaceList == nullptr) return;
  mesh.pack_faces(body.FaceList);
  body.FaceCount = size.faces;
  body.FaceListLength = size.length;
}

void coarsen(FmdBody* body, CoarseMesh& mesh, const TrimOptions& options) {
  const double diagonal = mesh.diagonal();
  const double reach = options.resolution * diagonal;
  const CoarseLimits limits = {reach * reach, std::cos(options.angle * kPi / 180.0)};
  Coarsener coarsener(mesh);
  if (!coarsener.link()) report_allocation_failure("dbcoarse");
  mesh.compute_normals();
  Preservation(body, mesh).apply(options.preserved);
  visit_nodes(mesh, coarsener, limits);
  if (options.removes_colinear) remove_colinear_vertices(mesh, diagonal);

  const std::int32_t before = body->FaceCount;
  install_faces(*body, mesh);
  body->Coarsened = 1;
  FMD_Info("\nFace reduction from %d to %d", before, body->FaceCount);
}

}  // namespace

}  // namespace fmd

void FMD_TrimGeometry(FmdBody* body, char* options) {
  if (CheckFMD(body) == 0 || options == nullptr) return;
  fmd::CoarseMesh mesh;
  const bool whole = fmd::unpack(*body, mesh);
  fmd::TrimOptions trim = fmd::parse_trim_options(options);
  fmd::settle_ranges(trim);
  fmd::announce(trim);
  if (!whole) {
    FMD_Error("Problem encountered while trimming geometry\n");
    return;
  }
  fmd::coarsen(body, mesh, trim);
}
