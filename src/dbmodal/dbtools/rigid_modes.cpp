// How many of the first modes are rigid body motions, and how they make up the six motions of the body frame.
#include "dbmodal/dbtools/rigid_modes.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>

#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

double mode_projection(const double* reference, const double* mode, const double* masses, int nodes) {
  double projected = 0.0;
  double squared = 0.0;
  for (int p = 0; p < nodes; ++p, reference += 3, mode += 3) {
    projected += masses[p] * (reference[0] * mode[0] + reference[1] * mode[1] + reference[2] * mode[2]);
    squared += masses[p] * (mode[0] * mode[0] + mode[1] * mode[1] + mode[2] * mode[2]);
  }
  return projected / squared;
}

void fill_rigid_motion(const FmdBody& body, int axis, int nodes, double* field) {
  for (int p = 0; p < nodes; ++p, field += 3) {
    const double* const at = body.Nodes[p].Coordinates;
    field[0] = field[1] = field[2] = 0.0;
    if (axis < 3) {
      field[axis] = 1.0;
      continue;
    }
    // The rotation about an axis: that axis cross the position.
    const int along = axis - 3;
    const int next = (along + 1) % 3;
    const int last = (along + 2) % 3;
    field[next] = -at[last];
    field[last] = at[next];
  }
}

double drop_noise(double value) {
  return std::fabs(value) <= kNoise ? 0.0 : value;
}

namespace {

// Frequency in Hz of the mode at an index; false where it cannot be had.
bool frequency_at(FmdBody* body, int index, double& hertz) {
  return FMD_Eigenvalue(body, FMD_ModeNumber(body, index), nullptr, &hertz, nullptr, nullptr, nullptr) != 0;
}

int count_below_threshold(FmdBody* body) {
  double seventh = 0.0;
  if (!frequency_at(body, 6, seventh)) return 0;
  const char* const given = std::getenv("FMD_RIGID_BODY_THRESHOLD");
  const double threshold = given != nullptr ? std::atof(given) : std::max(1.0, seventh) * 0.001;
  int count = 0;
  for (int mode = 0; mode < 6; ++mode) {
    double hertz = 0.0;
    if (frequency_at(body, mode, hertz) && hertz <= threshold) ++count;
  }
  return count;
}

// Without a seventh mode to compare with, the last gap in the frequencies decides.
int count_below_gap(FmdBody* body) {
  int count = 0;
  for (int mode = 1; mode < body->ModeCount; ++mode) {
    double before = 0.0;
    double here = 0.0;
    if (!frequency_at(body, mode - 1, before) || !frequency_at(body, mode, here)) continue;
    const bool from_rest = std::fabs(before) < 0.1 && here > 10.0;
    if (from_rest || std::fabs(before) * 10000.0 < std::fabs(here)) count = mode;
  }
  return count;
}

}  // namespace

bool fill_participation(FmdBody* body, double** rows, int count) {
  const int nodes = body->ModeNodeCount[kShape];
  const auto motion = allocate<double>(3LL * nodes, "dbtools");
  if (motion == nullptr) return false;
  const auto mode = allocate<double>(3LL * nodes, "dbtools");
  if (mode == nullptr) return false;
  const auto masses = allocate<double>(nodes, "dbtools");
  if (masses == nullptr) return false;
  for (int p = 0; p < nodes; ++p) masses[static_cast<std::size_t>(p)] = FMD_NodalMass(body, p);
  for (int i = 0; i < count; ++i) {
    if (FMD_Mode(body, FMD_ModeNumber(body, i), kShape, mode.get(), 0) == 0) return false;
    for (int axis = 0; axis < 6; ++axis) {
      fill_rigid_motion(*body, axis, nodes, motion.get());
      rows[axis][i] = drop_noise(mode_projection(motion.get(), mode.get(), masses.get(), nodes));
    }
  }
  return true;
}

}  // namespace fmd

int FMD_RigidBodyModeCount(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  return body->ModeCount >= 7 ? fmd::count_below_threshold(body) : fmd::count_below_gap(body);
}

void FMD_RigidModes2KINEX(FmdBody* body, double** rows, int count) {
  if (CheckFMD(body) != 0) fmd::fill_participation(body, rows, count);
}
