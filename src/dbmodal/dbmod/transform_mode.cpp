// The mode vectors of a kind in a new frame: each passes through memory once, a piece at a time.
#include <algorithm>
#include <cstdint>

#include "body/body.h"
#include "dbmodal/dbdata/mode_rewrite.h"
#include "dbmodal/dbdata/mode_vector.h"
#include "dbmodal/dbmod/tensor.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr int kPieceNodes = 4096;

// v = v A for translations, s v A for rotations
void transform_shapes(double* values, int nodes, double* matrix) {
  const int sign = rotation_sign(matrix);
  for (int node = 0; node < nodes; ++node, values += kValuesPerNode) {
    Vector_Transform(values, matrix, 1);
    Vector_Transform(values + 3, matrix, sign);
  }
}

void transform_tensors(double* values, std::int64_t nodes, const double* matrix) {
  for (std::int64_t node = 0; node < nodes; ++node, values += kValuesPerNode) transform_six(values, matrix);
}

bool rewrite_vectors(FmdBody& body, double* matrix, int kind, ModeRewrite& file) {
  const int nodes = body.ModeNodeCount[kind];
  const int most = std::min(nodes, kPieceNodes);
  const auto piece = allocate<double>(std::int64_t{kValuesPerNode} * most, "dbmod");
  if (piece == nullptr || !file.provide_slots(body, slot_nodes(body, kind))) return false;
  for (int mode = 0; mode < body.ModeCount; ++mode) {
    file.begin(mode);
    for (int first = 0; first < nodes; first += most) {
      const int count = std::min(most, nodes - first);
      if (!fetch_nodes(body, kind, mode, first, count, piece.get())) return false;
      take_units_out(body, kind, count, piece.get());
      if (kind == kShape) {
        transform_shapes(piece.get(), count, matrix);
      } else {
        transform_tensors(piece.get(), count, matrix);
      }
      if (!file.write(piece.get(), std::int64_t{kValuesPerNode} * count)) return false;
    }
    if (!file.end(nodes)) return false;
  }
  return file.write_empty_slots(body.ModeCount);
}

void transform_pre_load(FmdBody& body, const double* matrix, int kind) {
  if (kind == kShape || body.BlockExists[kind == kStress ? kPreStress : kPreStrain] == 0) return;
  double* values = kind == kStress ? body.PreStress : body.PreStrain;
  if (values == nullptr) return;
  const std::int32_t given = kind == kStress ? body.PreStressCapacity : body.PreStrainCapacity;
  transform_tensors(values, std::min(given, body.ModeNodeCount[kind]), matrix);
}

}  // namespace

}  // namespace fmd

void transform_mode(FmdBody* body, double* matrix, int kind) {
  if (CheckFMD(body) == 0 || matrix == nullptr || !fmd::is_mode_info_type(kind)) return;
  const fmd::UncachedModes uncached(body);
  fmd::ModeRewrite file("dbmod");
  if (!file.open(*body, kind)) return;
  file.tell_shortened();
  if (body->ModeCount == 0) {
    FMD_Warning("No Mode Shape Data found in this FMD file. \n");
    return;
  }
  // Pre-stress may be there without any stress modes; buffers for no nodes are a failed allocation.
  if (body->ModePositions[kind] != nullptr || body->ModeNodeCount[kind] < 1) {
    if (!fmd::rewrite_vectors(*body, matrix, kind, file)) return;
    file.install(*body);
  }
  fmd::transform_pre_load(*body, matrix, kind);
}
