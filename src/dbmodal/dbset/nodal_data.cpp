// What belongs to single nodes: coordinates, mass, inertia.
#include <algorithm>
#include <iterator>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

// The node of an id, found or new; null on failure.
FmdNode* node_of(FmdBody* body, int id) {
  const int index = FMD_LookupOrAddNode(body, id);
  return index < 0 ? nullptr : &body->Nodes[index];
}

// The node with room for its six inertia values; null on failure.
FmdNode* node_with_inertia(FmdBody* body, int id) {
  FmdNode* const node = node_of(body, id);
  if (node == nullptr) return nullptr;
  if (node->Inertia == nullptr) node->Inertia = fmd::allocate<double>(6, "dbset").release();
  return node->Inertia == nullptr ? nullptr : node;
}

}  // namespace

int FMD_SetNodeCoordinates(FmdBody* body, int id, double x, double y, double z) {
  FmdNode* const node = node_of(body, id);
  if (node == nullptr) return 0;
  node->Coordinates[0] = x;
  node->Coordinates[1] = y;
  node->Coordinates[2] = z;
  body->BlockExists[fmd::kNodalCoordinates] = 1;
  return 1;
}

int FMD_SetNodalMass(FmdBody* body, int id, double mass) {
  FmdNode* const node = node_of(body, id);
  if (node == nullptr) return 0;
  node->Mass = mass;
  body->BlockExists[fmd::kNodalMasses] = 1;
  return 1;
}

int FMD_AddNodalMass(FmdBody* body, int id, double mass) {
  FmdNode* const node = node_of(body, id);
  if (node == nullptr) return 0;
  node->Mass += mass;
  body->BlockExists[fmd::kNodalMasses] = 1;
  return 1;
}

int FMD_SetNodalInertia(FmdBody* body, int id, double i11, double i22, double i33, double i12, double i13,
                        double i23) {
  FmdNode* const node = node_with_inertia(body, id);
  if (node == nullptr) return 0;
  const double values[6] = {i11, i22, i33, i12, i13, i23};
  std::copy(std::begin(values), std::end(values), node->Inertia);
  body->BlockExists[fmd::kNodalInertias] = 1;
  return 1;
}

int FMD_SetNodalInertiaEntry(FmdBody* body, int id, int row, int column, double value) {
  constexpr int kPlace[4][4] = {{0, 0, 0, 0}, {0, 0, 3, 4}, {0, 3, 1, 5}, {0, 4, 5, 2}};
  if (CheckFMD(body) == 0 || row < 0 || row > 3 || column < 0 || column > 3) return 0;
  FmdNode* const node = node_with_inertia(body, id);
  if (node == nullptr) return 0;
  node->Inertia[kPlace[row][column]] = value;
  body->BlockExists[fmd::kNodalInertias] = 1;
  return 1;
}
