#include "faults/scene.h"

#include <filesystem>
#include <iterator>

namespace fmdtest {

namespace {

void add_cube(FmdBody* body) {
  for (int corner = 0; corner < kSceneNodes; ++corner) {
    const int id = kFirstNode + corner;
    FMD_SetNodeCoordinates(body, id, corner & 1, corner >> 1 & 1, corner >> 2);
    FMD_SetNodalMass(body, id, 0.5 + corner);
  }
  FMD_SetNodalInertia(body, kFirstNode, 1, 2, 3, 0.1, 0.2, 0.3);
  int bottom[] = {11, 12, 14, 13};
  int top[] = {15, 16, 18, 17};
  FMD_SetFaceList(body, 4, bottom);
  FMD_SetFaceList(body, 4, top);
  FMD_SetInterfaceNode(body, kFirstNode);
  FMD_SetInterfaceNode(body, kFirstNode + 1);
}

void add_modes(FmdBody* body) {
  for (int mode = 1; mode <= kSceneModes; ++mode) {
    for (int corner = 0; corner < kSceneNodes; ++corner)
      for (int type = 0; type < 3; ++type)
        FMD_SetMode(body, mode, kFirstNode + corner, type, mode, corner, type, 1, 2, 3);
    FMD_SetGeneralizedMass(body, mode, mode, 1.0);
    FMD_SetGeneralizedStiffness(body, mode, mode, 4.0 * mode);
    FMD_SetGeneralizedDamping(body, mode, mode, 0.1);
  }
  double six[] = {1, 2, 3, 4, 5, 6};
  FMD_SetPreStressVec(body, kFirstNode, six);
  FMD_SetPreStrainVec(body, kFirstNode, six);
}

}  // namespace

void no_body(Scene&) {}

void empty_body(Scene& scene) {
  scene.body = FMD_Create(2000, 4);
}

void full_body(Scene& scene) {
  empty_body(scene);
  add_cube(scene.body);
  add_modes(scene.body);
}

void body_of_thousand_nodes(Scene& scene) {
  empty_body(scene);
  add_cube(scene.body);
  for (int id = 1000; FMD_NodeCount(scene.body) < 1000; ++id) FMD_AddNode(scene.body, id);
}

void written_stream(Scene& scene) {
  empty_body(scene);
  scene.stream.DoublePrecision = 1;
  scene.stream.FloatBuffer = scene.floats;
  scene.stream.Block = DB_OpenScratch(&scene.stream.Key);
  DB_FSAVE(&scene.start, scene.stream);
  DB_FSAVE(&scene.stream.StartPosition, scene.stream);
  DB_WriteINTs(scene.stream, scene.ints, 600);
  DB_WriteEOR(scene.stream);
  DB_WriteINTs(scene.stream, scene.ints, 600);
}

void readable_stream(Scene& scene) {
  written_stream(scene);
  DB_ReOpenScratch(scene.stream.Block);
}

bool is_usable(FmdBody* body) {
  const int node = 900001;
  const int index = FMD_LookupOrAddNode(body, node);
  if (index < 0 || FMD_SetNodeCoordinates(body, node, 1, 2, 3) == 0) return false;
  double xyz[3] = {};
  if (FMD_NodeCoordinates(body, index, xyz) == 0 || xyz[0] != 1 || xyz[1] != 2 || xyz[2] != 3) return false;
  if (FMD_SetNodalMass(body, node, 7.5) == 0 || FMD_NodalMass(body, index) != 7.5) return false;
  return FMD_NodeID(body, index) == node && FMD_SetInterfaceNode(body, node) == 1;
}

long open_descriptors() {
  const std::filesystem::directory_iterator descriptors("/proc/self/fd");
  return std::distance(std::filesystem::begin(descriptors), std::filesystem::end(descriptors));
}

void leave(Scene& scene) {
  if (scene.stream.Block != 0) DB_CloseDatablk(scene.stream.Block);
  scene.stream.Block = 0;
  scene.body = nullptr;
  FMD_Terminate();
}

}  // namespace fmdtest
