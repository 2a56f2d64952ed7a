// Blocks of the generalized matrices (12, 13, 15) and of the transformation of the modes (16).
#include "dbmodal/dbread/block_reader.h"

namespace {

// A matrix of the body: its block and where its entries go.
struct Matrix {
  int block;
  FmdMatrixEntry* FmdBody::*entries;
  std::int32_t FmdBody::*count;
  std::int32_t FmdBody::*capacity;
};

constexpr Matrix kStiffnessMatrix = {11, &FmdBody::GenStiff, &FmdBody::GenStiffCount,
                                     &FmdBody::GenStiffCapacity};
constexpr Matrix kMassMatrix = {12, &FmdBody::GenMass, &FmdBody::GenMassCount, &FmdBody::GenMassCapacity};
constexpr Matrix kDampingMatrix = {14, &FmdBody::GenDamp, &FmdBody::GenDampCount, &FmdBody::GenDampCapacity};

// What could be read of an entry is kept, also where the rest of it is missing.
bool read_entry(fmd::BlockReader& reader, FmdMatrixEntry& entry) {
  std::int32_t row = 0;
  std::int32_t column = 0;
  std::int32_t last = 0;
  double value = 0.0;
  const bool done = reader.read_int(row) && reader.read_int(column) && reader.read_reals(&value, 1) &&
                    reader.read_int(last);
  // Unsigned arithmetic wraps where signed would overflow.
  entry.Row = static_cast<std::int32_t>(static_cast<std::uint32_t>(row) - 1U);
  entry.Column = static_cast<std::int32_t>(static_cast<std::uint32_t>(column) - 1U);
  entry.Value = value;
  return done;
}

// Entries into the table that has been made for them.
int read_entries(FmdBody* body, const Matrix& matrix, std::int32_t* second_word) {
  if (CheckFMD(body) == 0) return 0;
  if (FMD_goto_block(body, matrix.block) == 0) return 1;
  fmd::BlockReader reader(*body);
  std::int32_t counts[2];
  if (!reader.read_ints(counts, 2) || counts[0] > body->*matrix.capacity) return 0;
  if (second_word != nullptr) *second_word = counts[1];
  for (std::int32_t i = 0; i < counts[0]; ++i) {
    if (!read_entry(reader, (body->*matrix.entries)[i])) return 0;
  }
  return 1;
}

bool read_matrix(fmd::BlockReader& reader, const Matrix& matrix, int (*read)(FmdBody*),
                 const char* out_of_memory, const char* problem) {
  FmdBody& body = reader.body;
  std::int32_t count = 0;
  if (!reader.read_int(count) || (count > 0 && !reader.has(count, 3 + reader.words_per_real())))
    return fmd::report(problem);
  auto entries = fmd::allocate_table<FmdMatrixEntry>(count, out_of_memory);
  if (entries == nullptr) return false;
  fmd::install(body.*matrix.entries, entries);
  body.*matrix.count = body.*matrix.capacity = count;
  return read(&body) != 0 || fmd::report(problem);
}

}  // namespace

int FMD_ReadGeneralizedStiffness(FmdBody* body) {
  return read_entries(body, kStiffnessMatrix, nullptr);
}

int FMD_ReadGeneralizedMass(FmdBody* body) {
  return read_entries(body, kMassMatrix, nullptr);
}

int FMD_ReadGeneralizedDamping(FmdBody* body) {
  return read_entries(body, kDampingMatrix, body == nullptr ? nullptr : &body->DampingOnPrincipalAxes);
}

namespace fmd {

bool read_generalized_stiffness(BlockReader& reader) {
  return read_matrix(reader, kStiffnessMatrix, FMD_ReadGeneralizedStiffness,
                     "Out of memory while reading Generalized Stiffness block",
                     "Problem reading Generalized Stiffness information");
}

bool read_generalized_mass(BlockReader& reader) {
  return read_matrix(reader, kMassMatrix, FMD_ReadGeneralizedMass,
                     "Out of memory while reading Generalized Mass block",
                     "Problem reading Generalized Mass information");
}

bool read_generalized_damping(BlockReader& reader) {
  return read_matrix(reader, kDampingMatrix, FMD_ReadGeneralizedDamping,
                     "Out of memory while reading Generalized Damping Block",
                     "Problem reading Generalized Damping information");
}

bool read_transformation(BlockReader& reader) {
  constexpr const char* kProblem = "Problem when reading Mode Shape Transformation";
  constexpr const char* kNoMemory = "Out of memory while reading Mode Shape Transformation Block";
  FmdBody& body = reader.body;
  std::int32_t order = 0;
  if (!reader.read_int(order) || order < 0) return report(kProblem);
  if (order == 0) return true;
  if (!reader.has(order, 1 + reader.words_per_real() * order)) return report(kProblem);
  auto numbers = allocate_table<std::int32_t>(order, kNoMemory);
  auto matrix = numbers == nullptr ? nullptr : allocate_table<double>(std::int64_t{order} * order, kNoMemory);
  if (matrix == nullptr) return report(kProblem);
  if (!reader.read_ints(numbers.get(), order) ||
      !reader.read_reals(matrix.get(), std::int64_t{order} * order))
    return report(kProblem);
  install(body.TransformationModes, numbers);
  install(body.Transformation, matrix);
  body.TransformationOrder = order;
  return true;
}

}  // namespace fmd
