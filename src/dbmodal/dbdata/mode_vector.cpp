#include "dbmodal/dbdata/mode_vector.h"

#include <algorithm>
#include <cstdint>
#include <limits>

#include "messages/memory.h"

namespace fmd {

namespace {

constexpr int kNoVector = -1;

// The index under which a vector is known as loaded, or kNoVector. The pseudo mode comes after all real ones.
int vector_index(FmdBody& body, int mode, int type) {
  if (!is_pseudo_mode(mode, type)) {
    const int index = FMD_ModeIndex(&body, mode);
    return index >= 0 && body.ModePositions[type] != nullptr ? index : kNoVector;
  }
  const double* values = type == kStress ? body.PreStress : body.PreStrain;
  return values != nullptr ? body.ModeCount : kNoVector;
}

// A buffer that nodes added since have made too short is replaced, and what it held counts as absent.
bool provide_buffer(FmdBody& body, int type) {
  const int nodes = body.ModeNodeCount[type];
  if (body.ModeBuffer[type] != nullptr && body.ModeBufferNodes[type] >= nodes) return true;
  release(body.ModeBuffer[type]);
  body.LoadedModeIndex[type] = -1;
  body.ModeBuffer[type] =
      allocate<double>(static_cast<std::int64_t>(nodes) * kValuesPerNode, "dbdata").release();
  body.ModeBufferNodes[type] = body.ModeBuffer[type] != nullptr ? nodes : 0;
  return body.ModeBuffer[type] != nullptr;
}

bool read_vector(const FmdBody& body, int type, int index) {
  const FmdStream& stream = body.ModeFile[type];
  return DB_FRESTORE(&body.ModePositions[type][index], stream) != 0 &&
         DB_ReadDOUBLEs(stream, body.ModeBuffer[type], body.ModeNodeCount[type] * kValuesPerNode) != 0;
}

double stress_factor(const FmdBody& body) {
  return body.UnitTotalFactor[kForce] / body.UnitTotalFactor[kLength] / body.UnitTotalFactor[kLength];
}

template <typename Real>
void scale_translations(Real* values, int nodes, Real factor) {
  for (int node = 0; node < nodes; ++node, values += kValuesPerNode)
    for (int component = 0; component < 3; ++component) values[component] *= factor;
}

template <typename Real>
void scale_all(Real* values, int nodes, Real factor) {
  const std::int64_t count = static_cast<std::int64_t>(nodes) * kValuesPerNode;
  for (std::int64_t entry = 0; entry < count; ++entry) values[entry] *= factor;
}

// The factor is compared in the width in which it is applied.
template <typename Real>
void apply_units_as(const FmdBody& body, int type, int nodes, Real* values) {
  const auto length = static_cast<Real>(body.UnitTotalFactor[kLength]);
  const auto stress = static_cast<Real>(stress_factor(body));
  if (type == kShape && length != Real(1)) scale_translations(values, nodes, length);
  if (type == kStress && stress != Real(1)) scale_all(values, nodes, stress);
}

}  // namespace

void report_unreadable_mode(int mode, int type) {
  switch (type) {
    case kShape:
      return FMD_Error("Problem reading mode shape %d", mode);
    case kStress:
      return FMD_Error("Problem reading modal stress vector %d", mode);
    default:
      return FMD_Error("Problem reading modal strain vector %d", mode);
  }
}

void apply_units(const FmdBody& body, int type, int nodes, double* values) {
  apply_units_as(body, type, nodes, values);
}

void apply_units(const FmdBody& body, int type, int nodes, float* values) {
  apply_units_as(body, type, nodes, values);
}

bool skip_nodes(const FmdStream& stream, std::int64_t nodes) {
  const int words_per_node = kValuesPerNode * (stream.DoublePrecision != 0 ? 2 : 1);
  const std::int64_t most = std::numeric_limits<int>::max() / words_per_node;
  while (nodes > 0) {
    const auto step = static_cast<int>(std::min(nodes, most));
    if (DB_SeekFWD(stream, step * words_per_node) == 0) return false;
    nodes -= step;
  }
  return true;
}

void take_units_out(const FmdBody& body, int type, int nodes, double* values) {
  const double length = body.UnitTotalFactor[kLength];
  const double stress = stress_factor(body);
  if (type == kShape && length != 1.0) scale_translations(values, nodes, 1.0 / length);
  if (type == kStress && stress != 1.0) scale_all(values, nodes, 1.0 / stress);
}

bool read_stored_nodes(const FmdBody& body, int type, int index, int first_node, int nodes, double* values) {
  if (body.ModePositions[type] == nullptr) return false;
  const FmdStream& stream = body.ModeFile[type];
  return DB_FRESTORE(&body.ModePositions[type][index], stream) != 0 && skip_nodes(stream, first_node) &&
         DB_ReadDOUBLEs(stream, values, nodes * kValuesPerNode) != 0;
}

bool copy_pseudo_mode(const FmdBody& body, int type, double* values) {
  const double* stored = type == kStress ? body.PreStress : body.PreStrain;
  if (stored == nullptr) return false;
  const int nodes = body.ModeNodeCount[type];
  const int given = std::min(nodes, type == kStress ? body.PreStressCapacity : body.PreStrainCapacity);
  double* end = std::copy_n(stored, static_cast<std::ptrdiff_t>(given) * kValuesPerNode, values);
  std::fill_n(end, static_cast<std::ptrdiff_t>(nodes - given) * kValuesPerNode, 0.0);
  return true;
}

void copy_half(const double* vector, int nodes, int part, double* half) {
  const double* from = part == 0 ? vector : vector + 3;
  for (int node = 0; node < nodes; ++node, from += kValuesPerNode, half += 3) {
    half[0] = from[0];
    half[1] = from[1];
    half[2] = from[2];
  }
}

int load_mode_vector(FmdBody* body, int mode, int type) {
  if (body == nullptr || !is_mode_info_type(type)) return 0;
  const int index = vector_index(*body, mode, type);
  const int nodes = body->ModeNodeCount[type];
  constexpr int kMostNodes = std::numeric_limits<int>::max() / kValuesPerNode;
  if (index == kNoVector || nodes < 1 || nodes > kMostNodes || !provide_buffer(*body, type)) return 0;
  if (index == body->LoadedModeIndex[type]) return 1;
  body->LoadedModeIndex[type] = index;

  const bool done = is_pseudo_mode(mode, type) ? copy_pseudo_mode(*body, type, body->ModeBuffer[type])
                                               : read_vector(*body, type, index);
  apply_units(*body, type, nodes, body->ModeBuffer[type]);
  body->ModeBufferBroken[type] = done ? 0 : 1;
  if (!done) report_unreadable_mode(mode, type);
  return 1;
}

}  // namespace fmd
