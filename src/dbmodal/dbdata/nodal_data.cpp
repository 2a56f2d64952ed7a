// Coordinates, mass and inertia of single nodes, and the size of the body.
#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

const FmdNode* node_at(const FmdBody* body, int index) {
  if (body->Nodes == nullptr || index < 0 || index >= body->NodeCount) return nullptr;
  return &body->Nodes[index];
}

struct Box {
  double low[3];
  double high[3];

  explicit Box(const double* at) {
    std::copy_n(at, 3, low);
    std::copy_n(at, 3, high);
  }

  void widen(const double* at) {
    for (int k = 0; k < 3; ++k) {
      low[k] = std::min(low[k], at[k]);
      high[k] = std::max(high[k], at[k]);
    }
  }

  double diagonal() const {
    double squared = 0.0;
    for (int k = 0; k < 3; ++k) squared += (high[k] - low[k]) * (high[k] - low[k]);
    return std::sqrt(squared);
  }
};

}  // namespace

int FMD_NodeCoordinates(FmdBody* body, int index, double* xyz) {
  if (CheckFMD(body) == 0 || body->Nodes == nullptr) return 0;
  const FmdNode* const node = node_at(body, index);
  if (node == nullptr) {
    std::fill_n(xyz, 3, 0.0);
    return 0;
  }
  std::copy_n(node->Coordinates, 3, xyz);
  return 1;
}

int FMD_NodeCoordinateList(FmdBody* body, double* xyz, int* count) {
  if (CheckFMD(body) == 0 || body->Nodes == nullptr) return 0;
  for (int node = 0; node < body->NodeCount; ++node, xyz += 3) {
    std::copy_n(body->Nodes[node].Coordinates, 3, xyz);
  }
  *count = body->NodeCount;
  return 1;
}

double FMD_NodalMass(FmdBody* body, int index) {
  if (CheckFMD(body) == 0) return 0.0;
  const FmdNode* const node = node_at(body, index);
  return node == nullptr ? 0.0 : node->Mass;
}

int FMD_NodalInertia(FmdBody* body, int index, double* tensor) {
  if (CheckFMD(body) == 0) return 0;
  const FmdNode* const node = node_at(body, index);
  if (node == nullptr || node->Inertia == nullptr) return 0;
  const double* const i = node->Inertia;
  const double full[9] = {i[0], i[3], i[4], i[3], i[1], i[5], i[4], i[5], i[2]};
  std::copy_n(full, 9, tensor);
  return 1;
}

int FMD_NodalMassAndGeometry(FmdBody* body, int index, double* mass, double* xyz) {
  if (CheckFMD(body) == 0) {
    *mass = 0.0;
    return 0;
  }
  *mass = FMD_NodalMass(body, index);
  return FMD_NodeCoordinates(body, index, xyz);
}

double FMD_BodySize(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0.0;
  if (body->BodySize != 0.0) return body->BodySize;
  constexpr double kOrigin[3] = {};
  Box box(body->NodeCount > 0 ? body->Nodes[0].Coordinates : kOrigin);
  const std::int32_t* corner = body->FaceList;
  for (int face = 0; face < body->FaceCount; ++face) {
    const std::int32_t* const end = corner + 1 + *corner;
    for (++corner; corner < end; ++corner) {
      const FmdNode* const node = node_at(body, *corner);
      box.widen(node == nullptr ? kOrigin : node->Coordinates);
    }
  }
  body->BodySize = box.diagonal();
  return body->BodySize;
}
