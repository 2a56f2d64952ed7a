// A change of units on everything that a body holds in memory. Mode vectors stay as they are stored: they are
// multiplied as they are fetched.
#include <algorithm>
#include <cstdint>
#include <cstdio>

#include "body/monitor_point.h"
#include "dbmodal/dbmonpnt/monitor_points.h"
#include "dbmodal/dbunits/scaling.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

using fmd::UnitFactors;

void scale(double* values, std::int64_t count, double factor) {
  if (values == nullptr) return;
  for (std::int64_t i = 0; i < count; ++i) values[i] *= factor;
}

void scale_nodes(FmdBody& body, const UnitFactors& factors) {
  for (FmdNode* node = body.Nodes; node != body.Nodes + body.NodeCount; ++node) {
    scale(node->Coordinates, 3, factors.length);
    node->Mass *= factors.mass;
    scale(node->Inertia, 6, factors.inertia);
  }
}

// A list counts more entries than it has room for where it could not grow.
void scale_matrix(FmdMatrixEntry* entries, int count, int capacity, double factor) {
  for (int i = 0; i < std::min(count, capacity); ++i) entries[i].Value *= factor;
}

void scale_matrices(FmdBody& body, const UnitFactors& factors) {
  scale_matrix(body.GenMass, body.GenMassCount, body.GenMassCapacity, factors.inertia);
  scale_matrix(body.GenStiff, body.GenStiffCount, body.GenStiffCapacity, factors.energy);
  if (body.DampingOnPrincipalAxes == 0) {
    scale_matrix(body.GenDamp, body.GenDampCount, body.GenDampCapacity, factors.damping);
    return;
  }
  for (int i = 0; i < std::min(body.GenDampCount, body.GenDampCapacity); ++i) {
    FmdMatrixEntry& entry = body.GenDamp[i];
    entry.Value *= principal_damping_factor(factors, entry.Row, entry.Column);
  }
}

// Loads on the body's axes begin with its forces; its moments and all others are energies a modal coordinate.
void scale_modal_loads(double* loads, int count, int forces, const UnitFactors& factors) {
  const int first = std::min(count, forces);
  scale(loads, first, factors.force);
  if (loads != nullptr) scale(loads + first, count - first, factors.energy);
}

void scale_loads(FmdBody& body, const UnitFactors& factors) {
  bool any_processed = body.ModalPreload != nullptr && body.PreloadProcessed != 0;
  for (int i = 0; i < body.LoadCaseCount; ++i)
    any_processed = any_processed || body.LoadCases[i].Processed != 0;
  const int forces = any_processed ? std::min(FMD_RigidBodyModeCount(&body), 3) : 0;

  scale_modal_loads(body.ModalPreload, body.PreloadCount, body.PreloadProcessed != 0 ? forces : 0, factors);
  for (int i = 0; i < body.LoadCaseCount; ++i) {
    FmdLoadCase& load = body.LoadCases[i];
    scale_modal_loads(load.Loads, load.LoadCount, load.Processed != 0 ? forces : 0, factors);
  }
}

void scale_global_properties(FmdBody& body, const UnitFactors& factors) {
  body.GlobalMass *= factors.mass;
  scale(body.GlobalCenterOfMass, 3, factors.length);
  scale(body.GlobalInertia, 9, factors.inertia);
}

void scale_mode_records(FmdBody& body, const UnitFactors& factors) {
  for (int i = 0; i < body.ModeRecordCount && body.ModeRecords != nullptr; ++i) {
    FmdModeRecord& record = body.ModeRecords[i];
    record.Eigenvalue *= factors.eigenvalue;
    record.FrequencyHz *= factors.frequency;
    record.FrequencyRad *= factors.frequency;
    record.GeneralizedMass *= factors.inertia;
    record.GeneralizedStiffness *= factors.energy;
  }
}

void scale_invariants(FmdBody& body, const UnitFactors& factors) {
  const double first_moment = factors.length * factors.mass;
  scale(body.Invar1, 1, factors.mass);
  scale(body.Invar2, 3, first_moment);
  scale(body.Invar3, 3LL * body.Invar3Modes, first_moment);
  scale(body.Invar4, 3LL * body.Invar4Modes, factors.inertia);
  for (int i = 0; i < body.Invar5Modes && body.Invar5 != nullptr; ++i)
    scale(body.Invar5[i], 3LL * body.Invar5Modes, factors.inertia);
  scale(body.Invar7, 9, factors.inertia);
  for (int i = 0; i < body.Invar8Modes && body.Invar8 != nullptr; ++i)
    scale(body.Invar8[i], 9, factors.inertia);
  for (int i = 0; i < body.Invar9Modes && body.Invar9 != nullptr; ++i) {
    for (int j = 0; j < body.Invar9Modes; ++j) scale(body.Invar9[i][j], 9, factors.inertia);
  }
}

void scale_statistics(FmdBody& body, const UnitFactors& factors) {
  for (int i = 0; i < body.StatisticsCount && body.ModalStatistics != nullptr; ++i) {
    body.ModalStatistics[i].MaxDisplacement *= factors.length;
    body.ModalStatistics[i].MaxStress *= factors.stress;
  }
}

// One row of an operator, as far as the operator has it: it may have been set with fewer modes.
void scale_row(const FmdMonitorPoint& point, int kind, std::int64_t row, int modes, double factor) {
  double* const values = point.*fmd::operator_field(kind);
  const std::int64_t present = point.operatorSizes[kind - 1] - row * modes;
  if (values == nullptr || factor == 1.0 || present <= 0) return;
  scale(values + row * modes, std::min<std::int64_t>(modes, present), factor);
}

void scale_component(const FmdMonitorPoint& point, int row, bool is_translation, int modes,
                     const UnitFactors& factors) {
  const auto result = static_cast<fmd::MonitorResult>(point.resultType);
  const double factor = displacement_row_factor(factors, result, is_translation);
  scale_row(point, 1, row, modes, factor);
  scale_row(point, 2, row, modes, factor * factors.time);
  scale_row(point, 3, row, modes, factor * factors.time * factors.time);
  const double load = load_row_factor(factors, result, is_translation);
  for (int i = 0; i < point.loadOperatorCount; ++i)
    scale_row(point, 4, std::int64_t{i} * point.rowCount + row, modes, load);
}

void scale_monitor_points(FmdBody& body, const UnitFactors& factors) {
  if (body.BlockExists[fmd::kMonitorPoints] == 0) return;
  for (int i = 0; i < body.MonitorPointCount; ++i) {
    if (body.MonitorPoints[i] == nullptr) continue;
    FmdMonitorPoint& point = *body.MonitorPoints[i];
    scale(point.location, 3, factors.length);
    if (point.resultType < 1 || point.resultType > 4) continue;
    char digits[16];
    std::snprintf(digits, sizeof digits, "%d", point.component);
    for (int row = 0; digits[row] != '\0'; ++row)
      scale_component(point, row, digits[row] >= '1' && digits[row] <= '3', body.ModeCount, factors);
  }
}

void scale_nodal_loads(FmdBody& body, const UnitFactors& factors) {
  constexpr int kLastTranslation = 3;
  for (int i = 0; i < body.NodalLoadCaseCount; ++i) {
    FmdNodalLoadCase& load = body.NodalLoadCases[i];
    for (int k = 0; k < load.Count; ++k)
      load.Values[k] *= load.Coordinates[k] > kLastTranslation ? factors.moment : factors.force;
  }
}

}  // namespace

void FMD_ScaleDatabase(FmdBody* body) {
  if (body == nullptr) return;
  const UnitFactors factors(body->UnitStepFactor);
  FMD_CleanModesInMemory(body);
  scale_nodes(*body, factors);
  for (std::int32_t& loaded : body->LoadedModeIndex) loaded = -1;
  scale_matrices(*body, factors);
  scale_loads(*body, factors);
  scale_global_properties(*body, factors);
  scale_mode_records(*body, factors);
  scale_invariants(*body, factors);
  scale_statistics(*body, factors);
  scale_monitor_points(*body, factors);
  scale_nodal_loads(*body, factors);
}
