#include "dbmodal/dbtools/mode_records.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// Circular frequency of an eigenvalue; a negative one gives a negative frequency.
double circular_frequency(double eigenvalue, double consistency) {
  return eigenvalue < 0.0 ? -std::sqrt(-eigenvalue * consistency) : std::sqrt(eigenvalue * consistency);
}

void set_eigenvalue(FmdModeRecord& record, double eigenvalue, double consistency) {
  record.Eigenvalue = eigenvalue;
  record.FrequencyRad = circular_frequency(eigenvalue, consistency);
  record.FrequencyHz = record.FrequencyRad / kTwoPi;
}

// Mass and stiffness of each mode; goes on after one that could not be had.
bool fetch_diagonals(FmdBody* body, FmdModeRecord* records) {
  bool complete = true;
  for (int i = 0; i < body->ModeCount; ++i) {
    const int number = body->ModeNumbers[i];
    FmdModeRecord& record = records[i];
    record.Mode = i + 1;
    if (FMD_Eigenvalue(body, number, nullptr, nullptr, nullptr, &record.GeneralizedMass,
                       &record.GeneralizedStiffness) == 0) {
      FMD_Error("Attempting to look at eigenvalues of non-orthogonal data");
      complete = false;
    }
  }
  return complete;
}

void divide_stiffness_by_mass(const FmdBody& body, double consistency, FmdModeRecord& record) {
  constexpr double kNoMass = 1e-15;
  if (std::fabs(record.GeneralizedMass) <= kNoMass) {
    FMD_Warning("Mode %d is not physically meaningful.\nIt is associated with a zero generalized mass\n",
                record.Mode);
    set_eigenvalue(record, kInfiniteEigenvalue, consistency);
    return;
  }
  set_eigenvalue(record, record.GeneralizedStiffness / record.GeneralizedMass, consistency);
  // Where nobody asked for a normalisation, the mass is what the modes were meant to have.
  const bool asked = body.HasOffDiagonalGenMatrix != 0 || body.ShouldMassNormalizeModes != 0;
  if (!asked) record.GeneralizedMass = 1.0;
}

void release_matrix(FmdMatrixEntry*& entries, std::int32_t& count, std::int32_t& capacity) {
  release(entries);
  count = 0;
  capacity = 0;
}

}  // namespace

bool NewModeRecords::allocate(int modes) {
  records = fmd::allocate<FmdModeRecord>(modes, "dbtools");
  if (records == nullptr) return false;
  old_numbers = fmd::allocate<std::int32_t>(modes, "dbtools");
  return old_numbers != nullptr;
}

bool build_mode_records(FmdBody* body) {
  if (body->ModeRecords != nullptr) return true;
  NewModeRecords made;
  if (!made.allocate(body->ModeCount)) return false;
  const bool complete = fetch_diagonals(body, made.records.get());
  const double consistency = FMD_UCF(body);
  for (int i = 0; i < body->ModeCount; ++i) {
    divide_stiffness_by_mass(*body, consistency, made.records[static_cast<std::size_t>(i)]);
  }
  if (complete) take_over_records(*body, std::move(made));
  return complete;
}

void fill_orthonormal_records(const double* eigenvalues, const double* quotients, int modes,
                              double consistency, FmdModeRecord* records) {
  for (int i = 0; i < modes; ++i) {
    const bool infinite = eigenvalues[i] == kInfiniteEigenvalue;
    records[i].Mode = i + 1;
    records[i].GeneralizedMass = 1.0;
    records[i].GeneralizedStiffness = quotients[i];
    set_eigenvalue(records[i], infinite ? kInfiniteEigenvalue : quotients[i], consistency);
  }
}

void take_over_records(FmdBody& body, NewModeRecords made) {
  for (int i = 0; i < body.ModeCount; ++i) {
    made.old_numbers[static_cast<std::size_t>(i)] = body.ModeNumbers[i];
    body.ModeNumbers[i] = i + 1;
  }
  release(body.TransformationModes);
  body.TransformationModes = made.old_numbers.release();
  release(body.ModeRecords);
  body.ModeRecords = made.records.release();
  body.ModeRecordCount = body.ModeCount;
  release_matrix(body.GenStiff, body.GenStiffCount, body.GenStiffCapacity);
  release_matrix(body.GenMass, body.GenMassCount, body.GenMassCapacity);
}

void mass_normalize_records(FmdModeRecord* records, int count, int modes, double* roots) {
  std::fill_n(roots, modes, 1.0);
  for (int i = 0; i < std::min(count, modes); ++i) {
    FmdModeRecord& record = records[i];
    if (record.GeneralizedMass == 0.0) continue;
    // A negative mass has no root, and the mode that bears it is meant to show it.
    roots[i] =
        record.GeneralizedMass > 0.0 ? std::sqrt(record.GeneralizedMass) : -std::sqrt(record.GeneralizedMass);
    record.GeneralizedMass = 1.0;
    record.GeneralizedStiffness = record.Eigenvalue;
  }
}

int count_active_modes(const FmdBody& body) {
  const int known = std::min(body.ModeRecordCount, body.ModeCount);
  for (int i = 0; i < known; ++i) {
    if (body.ModeRecords[i].Eigenvalue == kInfiniteEigenvalue) return i;
  }
  return body.ModeCount;
}

}  // namespace fmd
