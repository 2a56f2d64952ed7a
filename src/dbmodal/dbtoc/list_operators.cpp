// Monitor points and matrix operators.
#include "body/matrix_operator.h"
#include "dbmodal/dbmonpnt/monitor_points.h"
#include "dbmodal/dbtoc/listing.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

constexpr int kLoadOperator = 4;

// The word of a code that counts from 1.
template <std::size_t count>
const char* word_of(int code, const char* const (&words)[count]) {
  return code >= 1 && code <= static_cast<int>(count) ? words[code - 1] : "";
}

constexpr const char* kTypeWords[] = {"MONPNT1", "MONPNT2", "MONPNT3", "MONDSP1"};
constexpr const char* kResultWords[] = {"DISP", "STRESS", "STRAIN", "FORCE"};

// A line break after every sixth value, counted through the whole operator.
void print_values(std::FILE* out, const double* values, std::int64_t count) {
  for (std::int64_t i = 0; i < count; ++i) {
    std::fprintf(out, " %16.9e ", values[i]);
    if (i % 6 == 5) std::fprintf(out, "\n ");
  }
}

void print_operator_head(std::FILE* out, int kind, int layers, int rows, int columns) {
  constexpr const char* kHeads[] = {"Modal Displacement Operator: %8d X %-8d  RORDER\n ",
                                    "Modal Velocity Operator: %8d X %-8d  RORDER\n ",
                                    "Modal Acceleration Operator: %8d X %-8d  RORDER\n "};
  if (kind == kLoadOperator) {
    std::fprintf(out, "Modal Load Operator: %8d X %-8d X %-8d RORDER\n ", layers, rows, columns);
  } else {
    std::fprintf(out, kHeads[kind - 1], rows, columns);
  }
}

// False without memory, which is reported and ends the list of points.
bool print_operator(FmdBody* body, std::FILE* out, int index, int kind) {
  if (FMD_MonitorPointHasOperator(body, index, kind) == 0) return true;
  int rows = 0;
  int columns = 0;
  FMD_GetMonitorPointOperatorSize(body, index, &rows, &columns);
  const int layers = kind == kLoadOperator ? FMD_GetMonitorPointNumLoadOperator(body, index) : 1;
  const std::int64_t count = std::int64_t{layers} * rows * columns;
  const auto values = listing_array<double>(count);
  if (values == nullptr) return false;
  if (FMD_GetMonitorPointOperator(body, index, kind, values.get()) != 0) return true;
  print_operator_head(out, kind, layers, rows, columns);
  print_values(out, values.get(), count);
  return true;
}

bool print_monitor_point(FmdBody* body, std::FILE* out, int index) {
  char name[9] = "";
  char label[57] = "";
  FMD_GetMonitorPointNameLabel(body, index, name, label);
  std::fprintf(out, "\n=======      Monitor Point: %-8d=======\n ", index + 1);
  std::fprintf(out, "Name: %-8s\n ", name);
  std::fprintf(out, "Label: %-56s\n ", label);
  std::fprintf(out, "Type: %-8s\n ", word_of(FMD_GetMonitorPointType(body, index), kTypeWords));
  std::fprintf(out, "Result Type: %-8s\n ",
               word_of(FMD_GetMonitorPointResultType(body, index), kResultWords));
  std::fprintf(out, "Component: %-6d\n ", FMD_GetMonitorPointComponent(body, index));
  for (int kind = 1; kind <= kOperatorKinds; ++kind) {
    if (!print_operator(body, out, index, kind)) return false;
  }
  std::fprintf(out, "\n ");
  return true;
}

void print_labels(std::FILE* out, const FmdMatrixOperator& from) {
  for (int row = 0; row < from.rowCount; ++row) {
    if (from.rowLabels[row][0] == '\0') continue;
    std::fprintf(out, "Label of row %d:      %s\n", row + 1, from.rowLabels[row]);
  }
}

// The number is the operator's, the same for all its sub-operators.
void print_sub_operator(std::FILE* out, const FmdSubOperator& sub, int rows, int number) {
  if (sub.columnCount == 0) return;
  std::fprintf(out, "\n Sub Matrix Operator Number %d ---------------------\n\n", number);
  std::fprintf(out, " Tag:            %s\n", sub.tag);
  std::fprintf(out, " Size of column: %d\n", sub.columnCount);
  std::fprintf(out, " Data:\n");
  const double* value = sub.data;
  for (int row = 0; row < rows; ++row) {
    for (int column = 0; column < sub.columnCount; ++column) std::fprintf(out, " % 16.9e", *value++);
    std::fprintf(out, "\n");
  }
}

void print_matrix_operator(std::FILE* out, const FmdMatrixOperator& from, int number) {
  if (from.rowCount == 0 || from.subOperatorCount == 0) return;
  std::fprintf(out, "\nMatrix Operator Number %d ===========================\n\n", number);
  std::fprintf(out, "Name of operator:     %s\n", from.name);
  std::fprintf(out, "Size of row:          %d\n", from.rowCount);
  std::fprintf(out, "Size of sub operator: %d\n", from.subOperatorCount);
  print_labels(out, from);
  for (int sub = 0; sub < from.subOperatorCount; ++sub) {
    print_sub_operator(out, *from.subOperators[sub], from.rowCount, number);
  }
}

}  // namespace

void list_monitor_points(FmdBody* body, std::FILE* out) {
  const int count = FMD_GetMonitorPointCount(body);
  if (count == 0) {
    std::fprintf(out, "\tNo Monitor Point Information\n\n");
    return;
  }
  std::fprintf(out, " Number of Monitor Points: %d\n\n", count);
  for (int index = 0; index < count; ++index) {
    if (body->MonitorPoints[index] != nullptr && !print_monitor_point(body, out, index)) return;
  }
  std::fprintf(out, "\n");
}

void list_matrix_operators(FmdBody* body, std::FILE* out) {
  const int count = FMD_GetMatrixOperatorCount(body);
  if (count == 0) {
    std::fprintf(out, "\tNo Matrix Operator Information.\n\n");
    return;
  }
  std::fprintf(out, "Number of Matrix Operator: %d\n", count);
  for (int index = 0; index < count; ++index) {
    if (body->MatrixOperators[index] != nullptr) {
      print_matrix_operator(out, *body->MatrixOperators[index], index + 1);
    }
  }
  std::fprintf(out, "\n");
}

}  // namespace fmd
