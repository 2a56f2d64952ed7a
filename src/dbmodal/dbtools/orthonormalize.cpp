// From the generalized matrices of orthonormal modes to the eigenvalue table.
#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

using fmd::CArray;

bool is_diagonal_and_normalised(const FmdBody& body) {
  return body.HasOffDiagonalGenMatrix == 0 && body.ShouldMassNormalizeModes == 0;
}

void fill_identity(double* matrix, int order) {
  const auto n = static_cast<std::size_t>(order);
  std::fill(matrix, matrix + n * n, 0.0);
  for (std::size_t i = 0; i < n; ++i) matrix[i * n + i] = 1.0;
}

// Circular frequency of an eigenvalue; a negative one gives a negative frequency.
double circular_frequency(double eigenvalue, double consistency) {
  const double squared = eigenvalue * consistency;
  return eigenvalue < 0.0 ? -std::sqrt(-squared) : std::sqrt(squared);
}

// A mode without generalized mass gets the marker of an infinite eigenvalue.
FmdModeRecord make_record(int index, double mass, double stiffness, double consistency) {
  constexpr double kNoMass = 1e-15;
  FmdModeRecord record{};
  record.Mode = index + 1;
  record.GeneralizedMass = mass;
  record.GeneralizedStiffness = stiffness;
  if (std::fabs(mass) <= kNoMass) {
    FMD_Warning("Mode %d is not physically meaningful.\nIt is associated with a zero generalized mass\n",
                index + 1);
    record.Eigenvalue = fmd::kInfiniteEigenvalue;
  } else {
    record.Eigenvalue = stiffness / mass;
    // Nobody asked for a normalisation, so the mass is what the modes were meant to have.
    record.GeneralizedMass = 1.0;
  }
  record.FrequencyRad = circular_frequency(record.Eigenvalue, consistency);
  record.FrequencyHz = record.FrequencyRad / fmd::kTwoPi;
  return record;
}

bool fill_records(FmdBody* body, FmdModeRecord* records) {
  const double consistency = FMD_UCF(body);
  bool complete = true;
  for (int i = 0; i < body->ModeCount; ++i) {
    double mass = 0.0;
    double stiffness = 0.0;
    const int number = FMD_ModeNumber(body, i);
    if (FMD_Eigenvalue(body, number, nullptr, nullptr, nullptr, &mass, &stiffness) == 0) {
      FMD_Error("Attempting to look at eigenvalues of non-orthogonal data");
      complete = false;
    }
    records[i] = make_record(i, mass, stiffness, consistency);
  }
  return complete;
}

void release_matrix(FmdMatrixEntry*& entries, std::int32_t& count, std::int32_t& capacity) {
  fmd::release(entries);
  count = 0;
  capacity = 0;
}

// Builds the eigenvalue table from the sparse matrices, which it then holds in their place.
bool build_mode_records(FmdBody* body) {
  if (body->ModeRecords != nullptr) return true;
  const int modes = body->ModeCount;
  auto records = fmd::allocate<FmdModeRecord>(modes, "dbtools");
  if (records == nullptr) return false;
  auto numbers = fmd::allocate<std::int32_t>(modes, "dbtools");
  if (numbers == nullptr || !fill_records(body, records.get())) return false;

  for (int i = 0; i < modes; ++i) {
    numbers[static_cast<std::size_t>(i)] = body->ModeNumbers[i];
    body->ModeNumbers[i] = i + 1;
  }
  fmd::release(body->TransformationModes);
  body->TransformationModes = numbers.release();
  body->ModeRecords = records.release();
  body->ModeRecordCount = modes;
  release_matrix(body->GenStiff, body->GenStiffCount, body->GenStiffCapacity);
  release_matrix(body->GenMass, body->GenMassCount, body->GenMassCapacity);
  return true;
}

// Modes before the first one with an infinite eigenvalue.
int count_active(const FmdBody& body) {
  const int known = std::min(body.ModeRecordCount, body.ModeCount);
  for (int i = 0; i < known; ++i) {
    if (body.ModeRecords[i].Eigenvalue == fmd::kInfiniteEigenvalue) return i;
  }
  return body.ModeCount;
}

void keep_active_modes(FmdBody* body, int active) {
  if (active == body->ModeCount) return;
  // The pre-stress is loaded under the index that follows the last mode, which is another one now.
  for (std::int32_t& loaded : body->LoadedModeIndex) loaded = -1;
  body->ModeCount = active;
  fill_identity(body->Transformation, active);
  body->TransformationOrder = active;
}

}  // namespace

int FMD_OrthoNormalize(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  if (is_diagonal_and_normalised(*body) && body->Transformation != nullptr) return 1;
  const int modes = body->ModeCount;
  if (modes == 0) return 0;
  if (body->HasOffDiagonalGenMatrix != 0) {
    FMD_Error("Modes with off-diagonal generalized mass or stiffness cannot be orthonormalized yet.");
    return 0;
  }
  if (body->ShouldMassNormalizeModes != 0) {
    FMD_Error("Modes with a generalized mass other than 1 cannot be normalized yet.");
    return 0;
  }
  auto identity = fmd::allocate<double>(std::int64_t{modes} * modes, "dbtools");
  if (identity == nullptr) return 0;
  fill_identity(identity.get(), modes);
  if (!build_mode_records(body)) return 0;
  fmd::release(body->Transformation);
  body->Transformation = identity.release();
  body->TransformationOrder = modes;
  keep_active_modes(body, count_active(*body));
  return 1;
}
