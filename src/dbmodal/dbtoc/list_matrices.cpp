// Generalized stiffness, mass and damping, and the mode shape transformation.
#include "dbmodal/damping_rows.h"
#include "dbmodal/dbtoc/listing.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

using SparseGetter = int (*)(FmdBody*, double*, int*, int*);

// The entries with rows and columns through a numbering of mode indices; false where they cannot be had.
template <typename Number>
bool print_entries(FmdBody* body, std::FILE* out, int count, SparseGetter get, Number number) {
  const auto values = listing_array<double>(count);
  if (values == nullptr) return false;
  const auto rows = listing_array<int>(count);
  if (rows == nullptr) return false;
  const auto columns = listing_array<int>(count);
  if (columns == nullptr || get(body, values.get(), rows.get(), columns.get()) == 0) return false;
  for (int i = 0; i < count; ++i) {
    const auto at = static_cast<std::size_t>(i);
    std::fprintf(out, "%5d   %5d   %20.10le\n", number(rows[at]), number(columns[at]), values[at]);
  }
  return true;
}

void list_by_mode_number(FmdBody* body, std::FILE* out, int count, SparseGetter get, const char* empty) {
  if (count == 0) {
    std::fputs(empty, out);
  } else if (!print_entries(body, out, count, get,
                            [body](int index) { return FMD_ModeNumber(body, index); })) {
    return;
  }
  std::fprintf(out, "\n");
}

}  // namespace

void list_stiffness(FmdBody* body, std::FILE* out) {
  list_by_mode_number(body, out, FMD_NumberOfGenStiff(body), FMD_GenStiffSparse,
                      "No generalized stiffness information.\n");
}

void list_mass(FmdBody* body, std::FILE* out) {
  list_by_mode_number(body, out, FMD_NumberOfGenMass(body), FMD_GenMassSparse,
                      "No generalized mass information in FMD\n");
}

void list_damping(FmdBody* body, std::FILE* out) {
  const int count = FMD_NumberOfGenDamp(body);
  if (count == 0) {
    std::fprintf(out, "No generalized damping information in FMD.\n\n");
    return;
  }
  if (body->DampingOnPrincipalAxes != 0) {
    std::fprintf(
        out,
        "Note:\tThe generalized damping matrix has been projected onto principal\n\tcoordinates.  The "
        "first 6 rows and columns correspond KINEX\n");
    std::fprintf(
        out,
        "\tprincipal rigid body degrees of freedom.  The remaining rows\n\tand columns correspond to "
        "flexible modes.\n\n");
  } else {
    std::fprintf(
        out,
        "Note:\tThe generalized damping matrix has not been projected onto\n\tprincipal coordinates.  "
        "Rows and columns correspond to rigid body\n\tand flexible modes.\n\n");
  }
  if (print_entries(body, out, count, FMD_GenDampSparse, counted_from_one)) {
    std::fprintf(out, "\n");
  }
}

void list_transformation(FmdBody* body, std::FILE* out) {
  const int modes = body->ModeCount;
  if (body->Transformation == nullptr) {
    std::fprintf(out, "\tNo Mode Shape Transformation, modes used as is.\n\n");
    return;
  }
  const auto matrix = listing_array<double>(std::int64_t{modes} * modes);
  if (matrix == nullptr || FMD_Transformation(body, matrix.get()) == 0) return;
  std::fprintf(out, "Number of modes: %d\n\n", modes);
  const double* entry = matrix.get();
  for (int row = 0; row < modes; ++row) {
    for (int column = 0; column < modes; ++column) std::fprintf(out, "%10.5le ", *entry++);
    std::fprintf(out, "\n");
  }
  std::fprintf(out, "\n");
}

}  // namespace fmd
