// The largest displacement, rotation, von Mises stress and von Mises strain of each mode: from the dataset
// where it has them, otherwise worked out at the first question and kept.
#include <algorithm>
#include <cstdint>

#include "body/body.h"
#include "dbmodal/dbdata/mode_peaks.h"
#include "dbmodal/dbdata/mode_statistics.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

constexpr int kStatisticsBlock = 29;
constexpr int kValuesPerMode = 13;

// One of the four statistics: where it is kept and how it is worked out.
struct Statistic {
  std::int32_t FmdModeStatistics::*node;
  double FmdModeStatistics::*value;
  int type;
  bool (*find)(FmdBody& body, int mode, Peak& peak);
};

// A half of a mode vector in an array of its own, or null.
CArray<double> fetch_half(FmdBody& body, int mode, int type, int part) {
  auto half = allocate<double>(3 * static_cast<std::int64_t>(body.ModeNodeCount[type]), "dbdata");
  if (half != nullptr && FMD_Mode(&body, mode, type, half.get(), part) == 0) half.reset();
  return half;
}

template <int part>
bool find_largest_length(FmdBody& body, int mode, Peak& peak) {
  const CArray<double> vectors = fetch_half(body, mode, kShape, part);
  if (vectors == nullptr) return false;
  peak = largest_length(vectors.get(), body.ModeNodeCount[kShape]);
  return true;
}

template <int type>
bool find_largest_von_mises(FmdBody& body, int mode, Peak& peak) {
  const CArray<double> normal = fetch_half(body, mode, type, 0);
  if (normal == nullptr) return false;
  const CArray<double> shear = fetch_half(body, mode, type, 1);
  if (shear == nullptr) return false;
  constexpr auto largest = type == kStress ? largest_von_mises_stress : largest_von_mises_strain;
  peak = largest(normal.get(), shear.get(), body.ModeNodeCount[type]);
  return true;
}

constexpr Statistic kDisplacement = {&FmdModeStatistics::MaxDisplacementNode,
                                     &FmdModeStatistics::MaxDisplacement, kShape, find_largest_length<0>};
constexpr Statistic kRotation = {&FmdModeStatistics::MaxRotationNode, &FmdModeStatistics::MaxRotation, kShape,
                                 find_largest_length<1>};
constexpr Statistic kVonMisesStress = {&FmdModeStatistics::MaxStressNode, &FmdModeStatistics::MaxStress,
                                       kStress, find_largest_von_mises<kStress>};
constexpr Statistic kVonMisesStrain = {&FmdModeStatistics::MaxStrainNode, &FmdModeStatistics::MaxStrain,
                                       kStrain, find_largest_von_mises<kStrain>};

// True also for a body whose dataset has none.
bool read_statistics(FmdBody& body) {
  if (FMD_goto_block(&body, kStatisticsBlock) == 0) return true;
  std::int32_t count = 0;
  if (DB_ReadINTs(body.DataFile, &count, 1) == 0) return false;
  if (count != body.ModeCount) {
    FMD_Error("Inconsistent number of modes detected at line %d in file %s", __LINE__, "dbdata");
    return false;
  }
  for (int mode = 0; mode < count; ++mode)
    if (!read_statistics_record(body, body.ModalStatistics[mode])) return false;
  return true;
}

// Modes added since the table was made get records of zeros.
bool extend_statistics(FmdBody& body) {
  if (body.StatisticsCount >= body.ModeCount) return true;
  if (!grow(body.ModalStatistics, body.ModeCount)) {
    report_allocation_failure("dbdata");
    return false;
  }
  std::fill(body.ModalStatistics + body.StatisticsCount, body.ModalStatistics + body.ModeCount,
            FmdModeStatistics{});
  body.StatisticsCount = body.ModeCount;
  return true;
}

bool provide_statistics(FmdBody& body) {
  const bool is_new = body.ModalStatistics == nullptr;
  if (is_new) body.StatisticsCount = 0;
  return extend_statistics(body) && (!is_new || read_statistics(body));
}

// A node of 0 marks what is not known yet, so a mode without any motion is looked at each time.
bool work_out(FmdBody& body, int mode, const Statistic& statistic, FmdModeStatistics& record) {
  if (record.*statistic.node != 0) return true;
  Peak peak;
  if (!statistic.find(body, mode, peak)) return false;
  record.*statistic.node = peak.place < 0 ? 0 : FMD_ModeNodeID(&body, statistic.type, peak.place);
  record.*statistic.value = peak.value;
  return true;
}

int get_statistic(FmdBody* body, int mode, const Statistic& statistic, int* node, double* value) {
  if (CheckFMD(body) == 0 || body->ModeCount < 1 || !provide_statistics(*body)) return 0;
  const int index = FMD_ModeIndex(body, mode);
  if (index < 0) return 0;
  FmdModeStatistics& record = body->ModalStatistics[index];
  const bool known = work_out(*body, mode, statistic, record);
  if (node != nullptr) *node = record.*statistic.node;
  if (value != nullptr) *value = record.*statistic.value;
  return known ? 1 : 0;
}

}  // namespace

bool read_statistics_record(const FmdBody& body, FmdModeStatistics& record) {
  std::int32_t nodes[kValuesPerMode];
  double values[kValuesPerMode];
  if (DB_ReadINTs(body.DataFile, nodes, kValuesPerMode) == 0) return false;
  record.MaxDisplacementNode = nodes[0];
  record.MaxRotationNode = nodes[1];
  record.MaxStressNode = nodes[2];
  record.MaxStrainNode = nodes[3];
  std::copy_n(nodes + 4, 9, record.OtherNodes);
  if (DB_ReadDOUBLEs(body.DataFile, values, kValuesPerMode) == 0) return false;
  const double length = body.UnitTotalFactor[kLength];
  record.MaxDisplacement = values[0] * length;
  record.MaxRotation = values[1];
  record.MaxStress = values[2] * (body.UnitTotalFactor[kForce] / length / length);
  record.MaxStrain = values[3];
  std::copy_n(values + 4, 9, record.OtherValues);
  return true;
}

}  // namespace fmd

int FMD_GetMaxModeDisplacement(FmdBody* body, int mode, int* node, double* value) {
  return fmd::get_statistic(body, mode, fmd::kDisplacement, node, value);
}

int FMD_GetMaxModeRotation(FmdBody* body, int mode, int* node, double* value) {
  return fmd::get_statistic(body, mode, fmd::kRotation, node, value);
}

int FMD_GetMaxVonMisesStress(FmdBody* body, int mode, int* node, double* value) {
  return fmd::get_statistic(body, mode, fmd::kVonMisesStress, node, value);
}

int FMD_GetMaxVonMisesStrain(FmdBody* body, int mode, int* node, double* value) {
  return fmd::get_statistic(body, mode, fmd::kVonMisesStrain, node, value);
}

int FMD_ModalStatisticsExist(FmdBody* body) {
  return CheckFMD(body) != 0 && body->ModalStatistics != nullptr ? 1 : 0;
}
