#include "dbmodal/dbcreate/release.h"

#include "dbmodal/dbinvar/invariant_storage.h"
#include "dbmodal/dbmonpnt/monitor_points.h"
#include "dbmodal/dbmtxop/matrix_operators.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

template <typename T>
void release_rows(T**& rows, std::int64_t count) {
  if (rows == nullptr) return;
  for (std::int64_t row = 0; row < count; ++row) release(rows[row]);
  release(rows);
}

void release_nodes(FmdBody& body) {
  for (int node = 0; node < body.NodeCount; ++node) release(body.Nodes[node].Inertia);
  release(body.Nodes);
}

void release_tables(FmdBody& body) {
  release(body.FloatBuffer);
  release(body.FaceList);
  release(body.SortedNodes);
  release(body.ModeRefBuffer);
  release(body.ModeRecords);
  release(body.Transformation);
  release(body.TransformationModes);
  release(body.InterfaceNodes);
  body.SortedModeNodes[kShape] = nullptr;
  for (int type = 0; type < TOTAL_MODE_INFO_TYPES; ++type) {
    release(body.ModeNodes[type]);
    release(body.SortedModeNodes[type]);
    release(body.ModeBuffer[type]);
    release(body.ModePositions[type]);
  }
}

void release_mode_files(FmdBody& body) {
  for (FmdStream& stream : body.ModeFile) {
    if (stream.Block != 0 && stream.IsScratch != 0) DB_CloseDatablk(stream.Block);
    stream.Block = 0;
  }
  if (body.DataFile.Block != 0) DB_CloseDatablk(body.DataFile.Block);
  // A write that has failed on the way leaves a body without its datablock.
  release(body.DataFile.Name);
}

void release_loads(FmdBody& body) {
  release(body.ModalPreload);
  for (int load_case = 0; load_case < body.LoadCaseCount; ++load_case)
    release(body.LoadCases[load_case].Loads);
  release(body.LoadCases);
  for (int load_case = 0; load_case < body.NodalLoadCaseCount; ++load_case) {
    FmdNodalLoadCase& nodal = body.NodalLoadCases[load_case];
    release(nodal.Nodes);
    release(nodal.Coordinates);
    release(nodal.Values);
  }
  release(body.NodalLoadCases);
}

void release_matrices(FmdBody& body) {
  release(body.GenStiff);
  release(body.GenMass);
  release(body.GenDamp);
  release(body.ModalStatistics);
  release(body.PreStress);
  release(body.PreStrain);
  release(body.ModeNumbers);
}

void release_free_edges(FmdBody& body) {
  release(body.FreeEdgeSizes);
  release_rows(body.FreeEdges, body.FreeEdgeCount);
}

}  // namespace

void release_invariants(FmdBody& body) {
  release(body.Invar1);
  release(body.Invar2);
  release(body.Invar3);
  release(body.Invar4);
  release_value_rows(body.Invar5);
  release(body.Invar7);
  release_value_rows(body.Invar8);
  release_tensor_rows(body.Invar9);
}

void release_body(FmdBody* body) {
  release_nodes(*body);
  release_tables(*body);
  release_invariants(*body);
  release(body->GeometryNodes);
  release_mode_files(*body);
  release_loads(*body);
  release_matrices(*body);
  FMD_CleanModesInMemory(body);
  release_monitor_points(*body);
  release_free_edges(*body);
  release_matrix_operators(*body);
  std::free(body);
}

}  // namespace fmd
