#include "dbmodal/dbmod/transform_body.h"

#include <algorithm>

#include "dbmodal/dbmod/tensor.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

void transform_nodes(FmdBody& body, double* matrix) {
  for (int node = 0; node < body.NodeCount; ++node) Vector_Transform(body.Nodes[node].Coordinates, matrix, 1);
  if (body.BlockExists[kNodalInertias] == 0) return;
  for (int node = 0; node < body.NodeCount; ++node) {
    if (body.Nodes[node].Inertia != nullptr) transform_six(body.Nodes[node].Inertia, matrix);
  }
}

void transform_mass_properties(FmdBody& body, double* matrix) {
  Vector_Transform(body.GlobalCenterOfMass, matrix, 1);
  if (body.GlobalMass != 0.0) Tensor_Transform(body.GlobalInertia, matrix, 1);
}

}  // namespace

bool transform_body(FmdBody* body, double* matrix) {
  const PresentInvariants present(*body);
  // Before anything moves: what is found only now would mix the old place with the new.
  if (!present.settle(body, {2, 3, 4, 5, 7, 8, 9})) return false;
  transform_nodes(*body, matrix);
  transform_mass_properties(*body, matrix);
  transform_mode(body, matrix, kShape);
  if (body->BlockExists[kModalStress] != 0) transform_mode(body, matrix, kStress);
  const bool done = transform_invariants(body, present, matrix, rotation_sign(matrix));
  if (body->BlockExists[kModalStrain] != 0) transform_mode(body, matrix, kStrain);
  return done;
}

}  // namespace fmd
