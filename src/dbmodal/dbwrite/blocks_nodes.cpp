// Blocks of the nodes and of the whole body: coordinates (4), global properties (6), masses (9), inertias
// (10), units (11), interface nodes (17).
#include "dbmodal/block_table.h"
#include "dbmodal/dbwrite/job.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

bool at_origin(const FmdNode& node) {
  return node.Coordinates[0] == 0.0 && node.Coordinates[1] == 0.0 && node.Coordinates[2] == 0.0;
}

// Ids of nodes whose coordinates somebody may have forgotten.
class OriginList {
 public:
  OriginList() = default;
  OriginList(const OriginList&) = delete;
  OriginList& operator=(const OriginList&) = delete;
  ~OriginList() { release(ids_); }

  bool add(int id) {
    if (count_ == capacity_) {
      if (!grow(ids_, capacity_ + kStep)) {
        report_allocation_failure("dbwrite");
        return false;
      }
      capacity_ += kStep;
    }
    ids_[count_++] = id;
    return true;
  }

  // A single node at the origin is normal.
  void warn() const {
    if (count_ < 2) return;
    FMD_Warning("Found %d node(s) with coordinates (0,0,0).  They are:", count_);
    for (int i = 0; i < count_; ++i) FMD_Warning("   %d", ids_[i]);
  }

 private:
  static constexpr int kStep = 100;
  int* ids_ = nullptr;
  int count_ = 0;
  int capacity_ = 0;
};

void report_global_properties(const FmdBody& body) {
  const double* const center = body.GlobalCenterOfMass;
  const double* const inertia = body.GlobalInertia;
  FMD_Info("\nGlobal body properties:");
  FMD_Info("Mass          : %lf\n", body.GlobalMass);
  FMD_Info("Center of Mass: %lf %lf %lf", center[0], center[1], center[2]);
  FMD_Info("Inertia Tensor: %lf %lf %lf", inertia[0], inertia[1], inertia[2]);
  FMD_Info("                %lf %lf %lf", inertia[3], inertia[4], inertia[5]);
  FMD_Info("                %lf %lf %lf", inertia[6], inertia[7], inertia[8]);
}

// The upper triangle of a nodal inertia in the order of the block, as places in the node's six values.
struct InertiaEntry {
  char row;
  char column;
  int place;
};
constexpr InertiaEntry kUpperTriangle[6] = {{4, 4, 0}, {4, 5, 3}, {4, 6, 4}, {5, 5, 1}, {5, 6, 5}, {6, 6, 2}};

int count_inertia_entries(const FmdBody& body) {
  int count = 0;
  for (int i = 0; i < body.NodeCount; ++i) {
    if (body.Nodes[i].Inertia == nullptr) continue;
    for (const InertiaEntry& entry : kUpperTriangle) count += body.Nodes[i].Inertia[entry.place] != 0.0;
  }
  return count;
}

}  // namespace

bool write_nodal_coordinates(WriteJob& job) {
  const FmdBody& body = *job.body;
  FMD_Info("\nNode info:\n   Count: %ld", static_cast<long>(body.NodeCount));
  OriginList origins;
  job.sink->put_int(body.NodeCount);
  job.sink->put_int(3);
  for (int i = 0; i < body.NodeCount; ++i) {
    const FmdNode& node = body.Nodes[i];
    if (at_origin(node) && !origins.add(node.Id)) return false;
    job.sink->put_int(node.Id);
    job.sink->put_reals(node.Coordinates, 3);
  }
  origins.warn();
  return true;
}

bool write_global_properties(WriteJob& job) {
  FmdBody* const body = job.body;
  if (body->BlockExists[kNodalMasses] != 0 && FMD_CalculateGlobalMassFromNodeMass(body) == 0) return false;
  report_global_properties(*body);
  job.sink->put_real(body->GlobalMass);
  job.sink->put_reals(body->GlobalCenterOfMass, 3);
  job.sink->put_reals(body->GlobalInertia, 9);
  return true;
}

bool write_nodal_masses(WriteJob& job) {
  const FmdBody& body = *job.body;
  job.sink->put_int(body.NodeCount);
  job.sink->put_int(1);
  int massless = 0;
  for (int i = 0; i < body.NodeCount; ++i) {
    massless += body.Nodes[i].Mass == 0.0;
    job.sink->put_int(body.Nodes[i].Id);
    job.sink->put_real(body.Nodes[i].Mass);
  }
  if (massless > 0) FMD_Warning("Found %d massless node(s)", massless);
  return true;
}

bool write_nodal_inertias(WriteJob& job) {
  const FmdBody& body = *job.body;
  const int count = count_inertia_entries(body);
  FMD_Info("\nNodal inertia info:\n   Sparse matrix entries: %ld", static_cast<long>(count));
  job.sink->put_int(count);
  for (int i = 0; i < body.NodeCount; ++i) {
    const FmdNode& node = body.Nodes[i];
    if (node.Inertia == nullptr) continue;
    for (const InertiaEntry& entry : kUpperTriangle) {
      if (node.Inertia[entry.place] == 0.0) continue;
      job.sink->put_int(node.Id);
      job.sink->put_chars(&entry.row, 1);
      job.sink->put_chars(&entry.column, 1);
      job.sink->put_real(node.Inertia[entry.place]);
    }
  }
  return true;
}

bool write_units(WriteJob& job) {
  char labels[4][16] = {};
  FMD_Units(job.body, labels[0], labels[1], labels[2], labels[3]);
  FMD_Info("\nUnits:\n   Mass:   %s\n   Length: %s\n   Time:   %s\n   Force:  %s", labels[0], labels[1],
           labels[2], labels[3]);
  for (const auto& label : labels) job.sink->put_chars(label, sizeof label);
  return true;
}

bool write_interface_nodes(WriteJob& job) {
  const FmdBody& body = *job.body;
  job.sink->put_int(body.InterfaceNodeCount);
  job.sink->put_ints(body.InterfaceNodes, as_size(body.InterfaceNodeCount));
  return true;
}

}  // namespace fmd
