// Eigenvalue and frequency of a mode, from the eigenvalue table or from diagonal generalized matrices.
#include <algorithm>
#include <cmath>

#include "body/body.h"
#include "dbmodal/dbdata/mode_record.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

// Looks for the diagonal entry of a mode. An off-diagonal entry before it means that the list is not
// diagonal.
enum class Found { kNo, kYes, kOffDiagonal };

Found find_diagonal(const FmdMatrixEntry* entries, int count, int capacity, int index, double& value) {
  for (int i = 0; i < count && i < capacity; ++i) {
    if (entries[i].Row != entries[i].Column) return Found::kOffDiagonal;
    if (entries[i].Row != index) continue;
    value = entries[i].Value;
    return Found::kYes;
  }
  return Found::kNo;
}

// A mass that was not given is so small that it does no harm.
double default_mass(double stiffness) {
  return std::max(stiffness, 1.0) * 1e-16;
}

// False where one of the lists is not diagonal up to the mode.
bool pair_from_lists(const FmdBody& body, int index, fmd::ModalPair& pair) {
  pair = {0.0, 0.0};
  const Found stiffness =
      find_diagonal(body.GenStiff, body.GenStiffCount, body.GenStiffCapacity, index, pair.stiffness);
  if (stiffness == Found::kOffDiagonal) return false;
  const Found mass = find_diagonal(body.GenMass, body.GenMassCount, body.GenMassCapacity, index, pair.mass);
  if (mass == Found::kOffDiagonal) return false;
  if (mass == Found::kNo) pair.mass = default_mass(pair.stiffness);
  return true;
}

void store(double* output, double value) {
  if (output != nullptr) *output = value;
}

double signed_root(double quotient, double squared) {
  return quotient < 0.0 ? -std::sqrt(-squared) : std::sqrt(squared);
}

}  // namespace

namespace fmd {

const FmdModeRecord* mode_record(const FmdBody& body, int index) {
  // An index equal to the count passes the table's test too; there the record is an empty one.
  static const FmdModeRecord kEmpty{};
  if (body.ModeRecords == nullptr || index > body.ModeRecordCount) return nullptr;
  return index == body.ModeRecordCount ? &kEmpty : &body.ModeRecords[index];
}

ModalPair diagonal_pair(const FmdBody& body, int index) {
  const FmdModeRecord* const record = mode_record(body, index);
  if (record != nullptr) return {record->GeneralizedMass, record->GeneralizedStiffness};
  ModalPair pair{};
  if (!pair_from_lists(body, index, pair)) pair = {default_mass(0.0), 0.0};
  return pair;
}

}  // namespace fmd

int FMD_Eigenvalue(FmdBody* body, int mode, double* eigenvalue, double* hertz, double* radians, double* mass,
                   double* stiffness) {
  if (CheckFMD(body) == 0) return 0;
  const int index = FMD_ModeIndex(body, mode);
  if (index < 0) return 0;
  const FmdModeRecord* const record = fmd::mode_record(*body, index);
  if (record != nullptr) {
    store(eigenvalue, record->Eigenvalue);
    store(hertz, record->FrequencyHz);
    store(radians, record->FrequencyRad);
    store(mass, record->GeneralizedMass);
    store(stiffness, record->GeneralizedStiffness);
    return 1;
  }
  fmd::ModalPair pair{};
  if (!pair_from_lists(*body, index, pair)) {
    for (double* output : {eigenvalue, hertz, radians, mass, stiffness}) store(output, 0.0);
    return 0;
  }
  const double quotient = pair.stiffness / pair.mass;
  const double squared = FMD_UCF(body) * pair.stiffness / pair.mass;
  const double circular = signed_root(quotient, squared);
  store(mass, pair.mass);
  store(stiffness, pair.stiffness);
  if (pair.mass != 0.0) store(eigenvalue, quotient);
  store(radians, circular);
  store(hertz, circular / fmd::kTwoPi);
  return 1;
}
