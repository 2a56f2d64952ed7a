// A body in another reference and modal basis, and a body made ready to be given one.
#include <algorithm>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr int kTypes[] = {fmd::kShape, fmd::kStress, fmd::kStrain};

bool has_vectors(const FmdBody& body, int type) {
  if (type == fmd::kShape) return true;
  return body.BlockExists[type == fmd::kStress ? fmd::kModalStress : fmd::kModalStrain] != 0;
}

void scale_masses(FmdBody& body, double factor) {
  for (FmdNode* node = body.Nodes; node != body.Nodes + body.NodeCount; ++node) {
    node->Mass *= factor;
    if (node->Inertia == nullptr) continue;
    for (int k = 0; k < 6; ++k) node->Inertia[k] *= factor;
  }
}

// Relative to the origin, and turned where there is a matrix.
void move_point(double* point, const double* origin, double* matrix) {
  for (int k = 0; k < 3; ++k) point[k] -= origin[k];
  if (matrix != nullptr) Vector_Transform(point, matrix, 1);
}

template <typename T>
void drop(T*& table, std::int32_t& count, std::int32_t& capacity) {
  fmd::release(table);
  count = 0;
  capacity = 0;
}

}  // namespace

void FMD_PermuteFMD(FmdBody* body, double* origin, int modeCount, double massScale, double* transform,
                    double* rotation) {
  if (CheckFMD(body) == 0) return;
  const int modes = FMD_ModeCount(body);
  double columns[9];
  for (int row = 0; row < 3; ++row) {
    for (int column = 0; column < 3; ++column) columns[3 * row + column] = rotation[3 * column + row];
  }
  // Whoever gives ones on the diagonal means no rotation.
  const bool turns = columns[0] != 1.0 || columns[4] != 1.0 || columns[8] != 1.0;
  double* const matrix = turns ? columns : nullptr;
  if (massScale != 1.0) scale_masses(*body, massScale);
  for (const int type : kTypes) {
    if (has_vectors(*body, type)) FMD_TransformModes(body, type, modes, transform);
  }
  for (const int type : kTypes) {
    if (turns && has_vectors(*body, type)) transform_mode(body, columns, type);
  }
  move_point(body->GlobalCenterOfMass, origin, matrix);
  for (FmdNode* node = body->Nodes; node != body->Nodes + body->NodeCount; ++node)
    move_point(node->Coordinates, origin, matrix);
  // The tables have no room for modes that are not there.
  if (modeCount < 0 || modeCount > modes) return;
  for (std::int32_t& loaded : body->LoadedModeIndex) loaded = -1;
  body->ModeCount = modeCount;
}

int FMD_PreprocessBAPFMD(FmdBody* body) {
  if (body == nullptr) return 1;
  fmd::release(body->ModeRecords);
  drop(body->GenStiff, body->GenStiffCount, body->GenStiffCapacity);
  drop(body->GenMass, body->GenMassCount, body->GenMassCapacity);
  drop(body->GenDamp, body->GenDampCount, body->GenDampCapacity);
  fmd::release(body->Transformation);
  body->TransformationOrder = 0;
  body->HasOffDiagonalGenMatrix = 0;
  body->BlockExists[fmd::kNodalMasses] = 0;
  return 1;
}
