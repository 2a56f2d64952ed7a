#include "dbmodal/dbtools/rigid_forces.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

#include "dbmodal/dbtools/rigid_modes.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

using SixRows = std::array<std::array<double, 6>, 6>;

double generalized_mass(FmdBody* body, int mode) {
  double mass = 0.0;
  FMD_Eigenvalue(body, FMD_ModeNumber(body, mode), nullptr, nullptr, nullptr, &mass, nullptr);
  return mass;
}

// F += v w phi and M += v w (r x phi), w = m / g, over the nodes of one mode.
void add_resultant(const FmdBody& body, const double* mode, int nodes, double share, double* resultant) {
  for (int p = 0; p < nodes; ++p, mode += 3) {
    const double* const r = body.Nodes[p].Coordinates;
    const double w = share * body.Nodes[p].Mass;
    for (int k = 0; k < 3; ++k) resultant[k] += w * mode[k];
    resultant[3] += w * (r[1] * mode[2] - r[2] * mode[1]);
    resultant[4] += w * (r[2] * mode[0] - r[0] * mode[2]);
    resultant[5] += w * (r[0] * mode[1] - r[1] * mode[0]);
  }
}

void mirror_upper(SixRows& matrix) {
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = 0; j < i; ++j) matrix[i][j] = matrix[j][i];
  }
}

// Mass matrix of the rigid body about the origin of its frame.
bool rigid_mass_matrix(FmdBody* body, SixRows& matrix) {
  double m = 0.0;
  double inertia[9];
  double c[3];
  if (FMD_TotalMassInertia(body, &m, inertia, c) == 0) return false;
  matrix = {};
  for (std::size_t k = 0; k < 3; ++k) {
    matrix[k][k] = m;
    for (std::size_t j = k; j < 3; ++j) matrix[3 + k][3 + j] = inertia[3 * k + j];
  }
  matrix[0][4] = m * c[2];
  matrix[0][5] = -m * c[1];
  matrix[1][3] = -m * c[2];
  matrix[1][5] = m * c[0];
  matrix[2][3] = m * c[1];
  matrix[2][4] = -m * c[0];
  mirror_upper(matrix);
  return true;
}

// Normal equations of the fit: A gathers the rigid motions of the nodes, as a cloud of equal weight.
SixRows fit_matrix(const FmdBody& body) {
  SixRows a{};
  for (int p = 0; p < body.NodeCount; ++p) {
    const double x = body.Nodes[p].Coordinates[0];
    const double y = body.Nodes[p].Coordinates[1];
    const double z = body.Nodes[p].Coordinates[2];
    for (std::size_t k = 0; k < 3; ++k) a[k][k] += 1.0;
    a[3][3] += z * z + y * y + 1.0;
    a[4][4] += x * x + z * z + 1.0;
    a[5][5] += x * x + y * y + 1.0;
    a[0][4] -= z;
    a[0][5] += y;
    a[1][3] += z;
    a[1][5] -= x;
    a[2][3] -= y;
    a[2][4] += x;
    a[3][4] -= x * y;
    a[3][5] -= x * z;
    a[4][5] -= y * z;
  }
  mirror_upper(a);
  return a;
}

// The motion of one mode, summed over the nodes for the fit.
std::array<double, 6> fit_motion(FmdBody* body, int mode) {
  std::array<double, 6> sums{};
  const int number = FMD_ModeNumber(body, mode);
  for (int p = 0; p < body->NodeCount; ++p) {
    double phi[3];
    double theta[3];
    const int id = body->Nodes[p].Id;
    FMD_ModeByNode(body, number, kShape, id, phi, 0);
    FMD_ModeByNode(body, number, kShape, id, theta, 1);
    const double* const r = body->Nodes[p].Coordinates;
    for (std::size_t k = 0; k < 3; ++k) sums[k] += phi[k];
    sums[3] += phi[1] * r[2] - phi[2] * r[1] + theta[0];
    sums[4] += phi[0] * r[2] - phi[2] * r[0] + theta[1];
    sums[5] += phi[0] * r[1] - phi[1] * r[0] + theta[2];
  }
  return sums;
}

bool invert(SixRows& matrix) {
  double* rows[6];
  int permutation[6];
  for (std::size_t k = 0; k < 6; ++k) rows[k] = matrix[k].data();
  if (FMD_LUPDecomposition(rows, 6, permutation) == 0) {
    FMD_Error("LU Decomposition failed.\n");
    return false;
  }
  // Rows were exchanged in place, so the rows still stand in order.
  if (FMD_LUPInvert(rows, 6, permutation) == 0) {
    FMD_Error("Failed in invert matrix.\n");
    return false;
  }
  return true;
}

std::array<double, 6> times(const SixRows& matrix, const std::array<double, 6>& vector) {
  std::array<double, 6> product{};
  for (std::size_t i = 0; i < 6; ++i) {
    for (std::size_t j = 0; j < 6; ++j) product[i] += matrix[i][j] * vector[j];
  }
  return product;
}

}  // namespace

void rigid_force_from_mass(FmdBody* body, double* values, int length, int rigid) {
  const int nodes = body->ModeNodeCount[kShape];
  double resultant[6] = {};
  if (rigid > 0) {
    const auto mode = allocate<double>(3LL * nodes, "dbtools");
    if (mode == nullptr) return;
    for (int i = 0; i < std::min(rigid, length); ++i) {
      if (FMD_Mode(body, FMD_ModeNumber(body, i), kShape, mode.get(), 0) == 0) continue;
      add_resultant(*body, mode.get(), nodes, values[i] / generalized_mass(body, i), resultant);
    }
  }
  for (int k = 0; k < std::min(6, length); ++k) values[k] = drop_noise(resultant[k]);
}

void rigid_force_from_fit(FmdBody* body, double* values, int length, int rigid) {
  SixRows mass;
  if (!rigid_mass_matrix(body, mass)) return;
  SixRows fit = fit_matrix(*body);
  if (!invert(fit)) return;
  const int stored = std::min(rigid, length);
  std::array<double, 6> sums{};
  for (int i = 0; i < stored; ++i) {
    const std::array<double, 6> motion = fit_motion(body, i);
    const double share = values[i] / generalized_mass(body, i);
    for (std::size_t k = 0; k < 6; ++k) sums[k] += motion[k] * share;
  }
  const std::array<double, 6> force = times(mass, times(fit, sums));
  for (int k = 0; k < stored; ++k) values[k] = drop_noise(force[static_cast<std::size_t>(k)]);
}

}  // namespace fmd

namespace {

using Convert = void (*)(FmdBody*, double*, int, int);

void convert_preload(FmdBody* body, Convert convert, int rigid) {
  if (body->ModalPreload == nullptr || FMD_ModalPreloadProcessed(body) != 0) return;
  convert(body, body->ModalPreload, body->PreloadCount, rigid);
  FMD_SetModalPreloadProcessed(body, 1);
  for (int i = 0; i < std::min(rigid, body->PreloadCount); ++i) {
    if (std::fabs(body->ModalPreload[i]) <= fmd::kNoise) continue;
    FMD_Warning("FMD contains a preload with a rigid body component which is being ignored");
  }
}

void convert_loads(FmdBody* body, Convert convert, int rigid) {
  for (int load_case = 0; load_case < body->LoadCaseCount; ++load_case) {
    FmdLoadCase& load = body->LoadCases[load_case];
    if (load.Processed != 0) continue;
    convert(body, load.Loads, load.LoadCount, rigid);
    load.Processed = 1;
  }
}

}  // namespace

void FMD_RigidBodyForcesOnPrincipalAxes(FmdBody* body) {
  if (CheckFMD(body) == 0) return;
  const int rigid = FMD_RigidBodyModeCount(body);
  const bool has_masses = body->BlockExists[fmd::kNodalMasses] != 0;
  const bool by_mass = has_masses && std::getenv("KXI_MFORCE_NO_FEA_MASS") == nullptr;
  const Convert convert = by_mass ? fmd::rigid_force_from_mass : fmd::rigid_force_from_fit;
  convert_preload(body, convert, rigid);
  if (rigid < 6 && body->LoadCaseCount > 0) {
    FMD_Warning("FMD only contains %d rigid body modes.\n  The resultant load vector will be mishandled.\n",
                rigid);
  }
  convert_loads(body, convert, rigid);
}
