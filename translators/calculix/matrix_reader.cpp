// Both kinds of file have neither head nor end, so a file that was cut off shows in its last line, which has
// no line end, or in entries that are missing: the last one belongs to the last diagonal element.
#include "calculix/matrix_reader.h"

#include <algorithm>
#include <limits>
#include <unordered_set>
#include <utility>

#include "calculix/input_error.h"
#include "calculix/line_reader.h"
#include "calculix/number_text.h"

namespace calculix {

namespace {

// The next field of the line, up to a blank; removes it.
std::string_view take_field(std::string_view& line) {
  line = trimmed(line);
  const std::size_t end = std::min(line.find_first_of(" \t"), line.size());
  const std::string_view field = line.substr(0, end);
  line.remove_prefix(end);
  return field;
}

void expect_line_end(const LineReader& lines) {
  if (!lines.line_is_whole()) lines.fail("expected a whole line, the file is cut off");
}

// Split as text: 5001.1 as a number would be no node and direction any more.
DegreeOfFreedom parse_degree_of_freedom(std::string_view line, const LineReader& lines) {
  const std::string_view field = trimmed(line);
  const std::size_t point = field.find('.');
  DegreeOfFreedom result{};
  const bool good = point != std::string_view::npos && parse_int(field.substr(0, point), result.node) &&
                    result.node > 0 && parse_int(field.substr(point + 1), result.axis) && result.axis >= 1 &&
                    result.axis <= 3 && field.size() == point + 2;
  if (!good) lines.fail("expected node.direction with a direction from 1 to 3, found " + quote(line));
  --result.axis;
  return result;
}

class MatrixReader {
 public:
  MatrixReader(const std::string& path, int size) : lines_(path), size_(size) {
    matrix_.size = size;
    matrix_.starts.push_back(0);
  }

  SymmetricMatrix read(const FractionHandler& progress);

 private:
  void take_line(std::string_view line);
  int take_index(std::string_view& line, const char* what) const;
  void add(int row, int column, double value);
  int open_column() const { return static_cast<int>(matrix_.starts.size()); }  // from 1

  LineReader lines_;
  int size_;
  int last_row_ = 0;  // of the open column
  SymmetricMatrix matrix_;
};

int MatrixReader::take_index(std::string_view& line, const char* what) const {
  const std::string_view field = take_field(line);
  int index = 0;
  if (!parse_int(field, index)) {
    lines_.fail(std::string("expected row, column and value, found ") + quote(field) + " as " + what);
  }
  if (index < 1 || index > size_) {
    lines_.fail(std::string("expected a ") + what + " from 1 to " + std::to_string(size_) +
                ", the number of degrees of freedom, found " + std::to_string(index));
  }
  return index;
}

void MatrixReader::take_line(std::string_view line) {
  const int row = take_index(line, "row");
  const int column = take_index(line, "column");
  const std::string_view field = take_field(line);
  double value = 0.0;
  if (!parse_real(field, value)) lines_.fail("expected a value, a finite number, found " + quote(field));
  if (!trimmed(line).empty())
    lines_.fail("expected row, column and value, found " + quote(trimmed(line)) + " behind them");
  if (row > column) {
    lines_.fail("expected an entry of the upper triangle, found row " + std::to_string(row) + " in column " +
                std::to_string(column));
  }
  add(row, column, value);
}

void MatrixReader::add(int row, int column, double value) {
  if (column < open_column()) {
    lines_.fail("expected ascending columns, found column " + std::to_string(column) +
                " behind the diagonal entry of column " + std::to_string(open_column() - 1));
  }
  if (column > open_column()) {
    lines_.fail("expected the diagonal entry of column " + std::to_string(open_column()) + " before column " +
                std::to_string(column));
  }
  if (row <= last_row_) {
    lines_.fail("expected ascending rows in column " + std::to_string(column) + ", found row " +
                std::to_string(row) + " behind row " + std::to_string(last_row_));
  }
  last_row_ = row;
  if (value != 0.0 || row == column) {
    if (matrix_.rows.size() == static_cast<std::size_t>(std::numeric_limits<int>::max())) {
      lines_.fail("expected at most 2147483647 entries");
    }
    matrix_.rows.push_back(row - 1);
    matrix_.values.push_back(value);
  }
  if (row < column) return;
  matrix_.starts.push_back(static_cast<int>(matrix_.rows.size()));
  last_row_ = 0;
}

SymmetricMatrix MatrixReader::read(const FractionHandler& progress) {
  constexpr long lines_between_reports = 1 << 16;
  std::string_view line;
  while (lines_.next(line)) {
    expect_line_end(lines_);
    take_line(line);
    if (progress && lines_.line_number() % lines_between_reports == 0) progress(lines_.fraction());
  }
  if (open_column() <= size_) {
    lines_.fail("expected entries up to the diagonal of column " + std::to_string(size_) +
                ", the number of degrees of freedom, the file ends before that of column " +
                std::to_string(open_column()));
  }
  return std::move(matrix_);
}

}  // namespace

std::vector<DegreeOfFreedom> read_degrees_of_freedom(const std::string& path) {
  LineReader lines(path);
  std::vector<DegreeOfFreedom> result;
  std::unordered_set<long> seen;
  std::string_view line;
  while (lines.next(line)) {
    expect_line_end(lines);
    const DegreeOfFreedom dof = parse_degree_of_freedom(line, lines);
    if (!seen.insert(3L * dof.node + dof.axis).second) {
      lines.fail("expected each degree of freedom once, found " + quote(trimmed(line)) +
                 " again; the matrices of shells and beams cannot be used");
    }
    result.push_back(dof);
  }
  if (result.empty()) throw InputError(path, 0, "expected degrees of freedom, found none");
  return result;
}

SymmetricMatrix read_matrix(const std::string& path, int size, const FractionHandler& progress) {
  return MatrixReader(path, size).read(progress);
}

}  // namespace calculix
