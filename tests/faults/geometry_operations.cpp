#include <cstdio>

#include "faults/operations.h"

namespace fmdtest {

namespace {

// Two opposite faces go, and of their four nodes those that carry no load.
void body_with_interior(Scene& scene) {
  full_body(scene);
  int opposite[] = {17, 18, 16, 15};
  FMD_SetFaceList(scene.body, 4, opposite);
  FMD_SetModalLoadNodal(scene.body, 1, 15, 2, 0.5);
}

void body_and_sketch(Scene& scene) {
  full_body(scene);
  if (std::FILE* file = std::fopen("sketch.txt", "w")) {
    std::fputs("1 3 11 12 13", file);
    std::fclose(file);
  }
}

void surface_body(Scene& scene) {
  full_body(scene);
  FMD_RemoveInternalGeometry(scene.body);
}

void body_with_free_edges(Scene& scene) {
  full_body(scene);
  FMD_GenerateFreeEdges(scene.body);
}

// A plate of two by two squares above the cube, of which one polygon is made.
void body_with_plate(Scene& scene) {
  full_body(scene);
  constexpr int kPlate = 101;
  for (int node = 0; node < 9; ++node)
    FMD_SetNodeCoordinates(scene.body, kPlate + node, 0.1 * (node % 3), 0.1 * (node / 3), 2.0);
  for (const int first : {0, 1, 3, 4}) {
    int corners[] = {kPlate + first, kPlate + first + 1, kPlate + first + 4, kPlate + first + 3};
    FMD_SetFaceList(scene.body, 4, corners);
  }
}

int face_count(FmdBody* body) {
  int faces = 0;
  int length = 0;
  FMD_FaceListSize(body, &faces, &length);
  return faces;
}

bool give_back(int* array) {
  FMD_FreeMemory(array);
  return array != nullptr;
}

bool removes_internal_geometry(Scene& s) {
  FMD_RemoveInternalGeometry(s.body);
  return face_count(s.body) == 1 && FMD_NodeCount(s.body) == 5;
}

double origin[] = {0.0, 0.0, 0.0};

}  // namespace

const std::vector<Operation> geometry_operations = {
    {"FMD_StripCommonFaces", body_with_interior,
     [](Scene& s) {
       FMD_StripCommonFaces(s.body);
       return face_count(s.body) == 1;
     }},
    {"FMD_GeometryNodes", full_body,
     [](Scene& s) { return give_back(FMD_GeometryNodes(s.body, s.ints)) && s.ints[0] == kSceneNodes; }},
    {"FMD_RemoveInternalGeometry", body_with_interior, removes_internal_geometry, Failure::kReported,
     false},  // it does not try again
    {"FMD_SketchGrid", body_and_sketch,
     [](Scene& s) {
       char path[] = "sketch.txt";
       FMD_SketchGrid(s.body, path);
       return face_count(s.body) == 1;
     }},
    {"FMD_TrimGeometry", body_with_plate,
     [](Scene& s) {
       char options[] = "0.2,10,1,preserve_str";
       FMD_TrimGeometry(s.body, options);
       return face_count(s.body) == 3;
     },
     Failure::kReported, false},  // it goes on with what it has
    {"FMD_IsCoarsened", full_body, [](Scene& s) { return FMD_IsCoarsened(s.body) == 0; }},
    {"FMD_GenerateFreeEdges", surface_body,
     [](Scene& s) { return FMD_GenerateFreeEdges(s.body) == 1 && FMD_GetFreeEdgeCount(s.body) == 2; }},
    {"FMD_GetFreeEdgeCount", full_body, [](Scene& s) { return FMD_GetFreeEdgeCount(s.body) == 2; }},
    {"FMD_GetFreeEdgeSize", body_with_free_edges,
     [](Scene& s) { return FMD_GetFreeEdgeSize(s.body, 1) == 5; }},
    {"FMD_GetFreeEdge", body_with_free_edges,
     [](Scene& s) { return FMD_GetFreeEdge(s.body, 0, s.ints) == 5 && s.ints[0] == 11; }},
    {"FMD_ClosestNode", full_body, [](Scene& s) { return FMD_ClosestNode(s.body, origin, 0) == 0; }},
    {"FMD_ClosestNodes", full_body,
     [](Scene& s) { return give_back(FMD_ClosestNodes(s.body, origin, 3, 0, s.ints)) && s.ints[0] == 3; }},
    {"FMD_ClosestNodesInNeighborhood", full_body,
     [](Scene& s) {
       return give_back(FMD_ClosestNodesInNeighborhood(s.body, origin, 1.0, 0, s.ints)) && s.ints[0] == 4;
     }},
};

}  // namespace fmdtest
