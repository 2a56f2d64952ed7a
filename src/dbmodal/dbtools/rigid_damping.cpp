// Generalized damping on the six axes of the rigid body, and generalized mass between two groups of modes.
#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "dbmodal/dbtools/rigid_modes.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr int kAxes = 6;

// P = C^T D C: C has the six rigid motions in its first columns, over the rigid modes, and the flexible modes
// as they are in the others.
void project(const double* damping, int modes, int rigid, double* const* axes, double* projected) {
  const int order = modes - rigid + kAxes;
  const auto at = [&](int row, int column) { return damping[std::int64_t{row} * modes + column]; };
  const auto coefficient = [&](int column, int mode) {
    if (column < kAxes) return mode < rigid ? axes[column][mode] : 0.0;
    return mode == column - kAxes + rigid ? 1.0 : 0.0;
  };
  const auto first = [&](int column) { return column < kAxes ? 0 : column - kAxes + rigid; };
  const auto end = [&](int column) { return column < kAxes ? rigid : column - kAxes + rigid + 1; };
  for (int a = 0; a < order; ++a) {
    for (int b = 0; b < order; ++b) {
      double sum = 0.0;
      for (int i = first(a); i < end(a); ++i) {
        for (int j = first(b); j < end(b); ++j) sum += coefficient(a, i) * at(i, j) * coefficient(b, j);
      }
      projected[std::int64_t{a} * order + b] = sum;
    }
  }
}

// The entries of a matrix that are more than noise, as a list that grows by its usual steps.
bool list_entries(const double* matrix, int order, FmdMatrixEntry*& entries, int& count, int& capacity) {
  constexpr int kStep = 100;
  entries = nullptr;
  count = 0;
  capacity = 0;
  for (int row = 0; row < order; ++row) {
    for (int column = 0; column < order; ++column) {
      const double value = matrix[std::int64_t{row} * order + column];
      if (std::fabs(value) <= fmd::kNoise) continue;
      if (count == capacity) {
        if (!fmd::grow(entries, std::int64_t{capacity} + kStep)) return false;
        capacity += kStep;
      }
      entries[count++] = {row, column, value};
    }
  }
  return true;
}

// Puts the projected matrix in the place of the damping list; on failure the list stays.
bool replace_damping(FmdBody* body, const double* projected, int order) {
  FmdMatrixEntry* entries = nullptr;
  int count = 0;
  int capacity = 0;
  if (!list_entries(projected, order, entries, count, capacity)) {
    fmd::release(entries);
    fmd::report_allocation_failure("dbtools");
    return false;
  }
  fmd::release(body->GenDamp);
  body->GenDamp = entries;
  body->GenDampCount = count;
  body->GenDampCapacity = capacity;
  body->DampingOnPrincipalAxes = 1;
  return true;
}

bool project_damping(FmdBody* body, int rigid) {
  const int modes = body->ModeCount;
  const int order = modes - rigid + kAxes;
  const auto damping = fmd::allocate<double>(std::int64_t{modes} * modes, "dbtools");
  if (damping == nullptr) return false;
  if (FMD_GenDampFull(body, damping.get(), modes) == 0) {
    // There is damping, so only memory can have been short, and the reading says nothing of that.
    fmd::report_allocation_failure("dbtools");
    return false;
  }
  const auto projected = fmd::allocate<double>(std::int64_t{order} * order, "dbtools");
  if (projected == nullptr) return false;
  // Without rigid modes there are no axes to fill, but the rows must be there.
  const auto participation = fmd::allocate<double>(std::int64_t{kAxes} * std::max(rigid, 1), "dbtools");
  if (participation == nullptr) return false;
  double* axes[kAxes];
  for (int axis = 0; axis < kAxes; ++axis) axes[axis] = participation.get() + std::int64_t{axis} * rigid;
  if (rigid > 0 && !fmd::fill_participation(body, axes, rigid)) return false;
  project(damping.get(), modes, rigid, axes, projected.get());
  return replace_damping(body, projected.get(), order);
}

// sum (m phi_i . phi_j + theta_j^T J theta_i) over the nodes
double mutual_mass(FmdBody* body, const double* phi_i, const double* theta_i, const double* phi_j,
                   const double* theta_j, int nodes) {
  double sum = 0.0;
  for (int p = 0; p < nodes; ++p, phi_i += 3, theta_i += 3, phi_j += 3, theta_j += 3) {
    sum += body->Nodes[p].Mass * (phi_i[0] * phi_j[0] + phi_i[1] * phi_j[1] + phi_i[2] * phi_j[2]);
    double inertia[9];
    if (body->Nodes[p].Inertia == nullptr || FMD_NodalInertia(body, p, inertia) == 0) continue;
    for (int r = 0; r < 3; ++r) {
      for (int c = 0; c < 3; ++c) sum += theta_j[r] * inertia[3 * r + c] * theta_i[c];
    }
  }
  return sum;
}

// The two halves of one mode, as they are asked for.
struct ModeHalves {
  fmd::CArray<double> translation;
  fmd::CArray<double> rotation;

  bool reserve(int nodes) {
    translation = fmd::allocate<double>(3LL * nodes, "dbtools");
    if (translation == nullptr) return false;
    rotation = fmd::allocate<double>(3LL * nodes, "dbtools");
    return rotation != nullptr;
  }

  bool fetch(FmdBody* body, int number) const {
    return FMD_Mode(body, number, fmd::kShape, translation.get(), 0) != 0 &&
           FMD_Mode(body, number, fmd::kShape, rotation.get(), 1) != 0;
  }
};

}  // namespace

int FMD_DampingOnPrincipalAxes(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  if (body->GenDampCount == 0 || body->DampingOnPrincipalAxes != 0) return 1;
  return project_damping(body, FMD_RigidBodyModeCount(body)) ? 1 : 0;
}

int FMD_AnsysAddGenMass(FmdBody* body, int firstCount, int secondCount) {
  if (CheckFMD(body) == 0) return 0;
  if (std::int64_t{firstCount} + secondCount != body->ModeCount) {
    FMD_Error("Mode count mismatch while generating additional generalized masses.");
    return 0;
  }
  const int nodes = body->ModeNodeCount[fmd::kShape];
  ModeHalves first;
  ModeHalves second;
  if (!first.reserve(nodes) || !second.reserve(nodes)) return 0;
  for (int i = 1; i <= firstCount; ++i) {
    if (!first.fetch(body, i)) return 0;
    for (int j = firstCount + 1; j <= firstCount + secondCount; ++j) {
      if (!second.fetch(body, j)) return 0;
      const double mass = mutual_mass(body, first.translation.get(), first.rotation.get(),
                                      second.translation.get(), second.rotation.get(), nodes);
      if (FMD_SetGeneralizedMass(body, i, j, mass) == 0 || FMD_SetGeneralizedMass(body, j, i, mass) == 0) {
        return 0;
      }
    }
  }
  return 1;
}

int FMD_GenDampPrincipalAndSelected(FmdBody* body, double** rows, int n, int* selected) {
  const std::int64_t order = std::int64_t{n} + kAxes;
  for (std::int64_t row = 0; row < order; ++row) std::fill_n(rows[row], order, 0.0);
  if (CheckFMD(body) == 0 || body->GenDampCount == 0) return 0;
  const int rigid = FMD_RigidBodyModeCount(body);
  if (body->DampingOnPrincipalAxes == 0 && FMD_DampingOnPrincipalAxes(body) == 0) return 0;
  for (int i = 0; i < n; ++i) {
    const int index = FMD_ModeIndex(body, selected[i]);
    if (index < 0 || index >= rigid) continue;
    FMD_Warning("Ignoring damping on requested mode %d because it is a rigid body mode.\n", selected[i]);
  }
  const int shift = std::max(0, kAxes - rigid);
  // The place of a row of the damping in the result, or -1 for a mode that was not selected.
  const auto place_of = [&](int row) {
    if (row < kAxes) return row;
    const int at = SelectedModeIndex(FMD_ModeNumber(body, row - shift), selected, n);
    return at < 0 ? -1 : kAxes + at;
  };
  for (int entry = 0; entry < body->GenDampCount; ++entry) {
    const FmdMatrixEntry& from = body->GenDamp[entry];
    const int a = from.Row < 0 ? -1 : place_of(from.Row);
    const int b = from.Column < 0 ? -1 : place_of(from.Column);
    if (a < 0 || b < 0) continue;
    rows[a][b] = from.Value;
    rows[b][a] = from.Value;
  }
  return 1;
}
