#include "calculix/frd_stream.h"

#include <algorithm>

#include "calculix/input_error.h"
#include "calculix/number_text.h"

namespace calculix {

namespace {

constexpr std::size_t first_value_column = 14;
constexpr std::size_t value_width = 12;

bool begins_with(std::string_view line, std::string_view key) {
  return line.substr(0, key.size()) == key;
}

std::string column_text(std::size_t first, std::size_t last) {
  return "columns " + std::to_string(first) + " to " + std::to_string(last);
}

}  // namespace

bool FrdStream::next_line(std::string_view& line) {
  if (has_pending_) {
    has_pending_ = false;
    line = pending_;
    return true;
  }
  return lines_.next(line);
}

int FrdStream::int_field(std::string_view record, std::size_t first, std::size_t last,
                         const char* name) const {
  int value = 0;
  if (parse_int(columns(record, first, last), value)) return value;
  fail(std::string("expected ") + name + " in " + column_text(first, last) + ", found " +
       quote(columns(record, first, last)));
}

double FrdStream::real_field(std::string_view record, std::size_t first, std::size_t last,
                             const char* name) const {
  double value = 0.0;
  if (parse_real(columns(record, first, last), value)) return value;
  fail(std::string("expected ") + name + ", a finite number, in " + column_text(first, last) + ", found " +
       quote(columns(record, first, last)));
}

// A negative number with an exponent of three digits is a character too long for its field and moves all
// that follow: a record that is too long is read number by number.
void FrdStream::read_reals(std::string_view record, double* values, int count) const {
  std::size_t length = record.size();
  while (length > 0 && record[length - 1] == ' ') --length;
  const std::size_t full = first_value_column - 1 + value_width * static_cast<std::size_t>(count);
  if (length > full) {
    std::string_view rest = record.substr(first_value_column - 1, length - first_value_column + 1);
    for (int i = 0; i < count; ++i) {
      if (!take_real(rest, values[i])) {
        fail("expected " + std::to_string(count) + " finite numbers from column 14 on, found " + quote(rest));
      }
    }
    if (!trimmed(rest).empty()) {
      fail("expected " + std::to_string(count) + " numbers from column 14 on, found more: " + quote(rest));
    }
    return;
  }
  for (int i = 0; i < count; ++i) {
    const std::size_t first = first_value_column + value_width * static_cast<std::size_t>(i);
    values[i] = real_field(record, first, first + value_width - 1, "a value");
  }
}

void FrdStream::read_user_text(std::string_view line) {
  if (!has_user_text_ && !begins_with(line, "    1UUSER")) title_ = trimmed(columns(line, 7, line.size()));
  has_user_text_ = true;
  if (begins_with(line, "    1UVERSION")) program_ = trimmed(columns(line, 14, line.size()));
}

void FrdStream::read_parameter(std::string_view line) {
  if (begins_with(line, "    1PMODE")) parameter_mode_ = int_field(line, 25, 36, "a mode number");
}

void FrdStream::begin_mesh_block(std::string_view line, const char* what) {
  block_name_ = what;
  counted_ = 0;
  declared_count_ = int_field(line, 25, 36, "the number of entries");
  if (declared_count_ < 1) fail(std::string("expected at least one entry in the block of ") + what);
  const int format = int_field(line, 74, 74, "the format flag");
  if (format != 1) {
    fail("expected the long text form (format flag 1), found format flag " + std::to_string(format));
  }
}

void FrdStream::read_result_head(std::string_view line) {
  result_ = ResultHead{};
  result_.line = lines_.line_number();
  result_.hertz = real_field(line, 13, 24, "a frequency or time");
  declared_count_ = int_field(line, 25, 36, "the number of nodes");
  result_.analysis = int_field(line, 57, 58, "the analysis type");
  result_.mode = int_field(line, 59, 63, "the mode number");
  const int format = int_field(line, 74, 75, "the format flag");
  if (format != 1) {
    fail("expected the long text form (format flag 1), found format flag " + std::to_string(format));
  }
  if (parameter_mode_ != 0) {
    if (result_.analysis == frequency_analysis && parameter_mode_ != result_.mode) {
      fail("expected mode " + std::to_string(parameter_mode_) + " as in the 1PMODE record before, found " +
           std::to_string(result_.mode));
    }
    parameter_mode_ = 0;
  }
  counted_ = 0;
  std::string_view name;
  if (!next_line(name) || !begins_with(name, " -4")) fail("expected the name of the dataset, a record -4");
  result_.name = trimmed(columns(name, 6, 13));
  block_name_ = "dataset values";
  read_components();
}

// A component whose last flag is 1 is worked out by viewers and not stored.
void FrdStream::read_components() {
  std::string_view line;
  while (next_line(line)) {
    if (!begins_with(line, " -5")) {
      pending_ = line;
      has_pending_ = true;
      return;
    }
    const std::string_view flag = trimmed(columns(line, 34, 38));
    if (flag.empty() || flag == "0") result_.components.emplace_back(trimmed(columns(line, 6, 13)));
  }
}

FrdBlock FrdStream::next_block() {
  std::string_view line;
  while (next_line(line)) {
    if (!has_header_) {
      if (!begins_with(line, "    1C")) {
        fail("expected the header record 1C of a CalculiX result file in text form, found " + quote(line));
      }
      has_header_ = true;
    } else if (begins_with(line, "    1U")) {
      read_user_text(line);
    } else if (begins_with(line, "    1P")) {
      read_parameter(line);
    } else if (begins_with(line, "    2C")) {
      begin_mesh_block(line, "nodes");
      return FrdBlock::nodes;
    } else if (begins_with(line, "    3C")) {
      begin_mesh_block(line, "elements");
      return FrdBlock::elements;
    } else if (begins_with(line, "  100C")) {
      read_result_head(line);
      return FrdBlock::result;
    } else if (begins_with(line, " 9999")) {
      return FrdBlock::end;
    } else if (!begins_with(line, "    1C")) {
      fail("expected the beginning of a block, a record 1P, 2C, 3C, 100CL or 9999, found " + quote(line));
    }
  }
  throw InputError(lines_.path(), lines_.line_number() + 1,
                   "expected the record 9999 at the end, the file is cut off");
}

bool FrdStream::next_record(std::string_view& record) {
  if (!next_line(record)) {
    throw InputError(lines_.path(), lines_.line_number() + 1,
                     std::string("expected the end of the block of ") + block_name_ +
                         ", a record -3, the file is cut off");
  }
  if (begins_with(record, " -1")) {
    ++counted_;
    return true;
  }
  if (begins_with(record, " -2")) return true;
  if (!begins_with(record, " -3")) {
    fail(std::string("expected a record -1, -2 or -3 in the block of ") + block_name_ + ", found " +
         quote(record));
  }
  if (counted_ != declared_count_) {
    fail("expected " + std::to_string(declared_count_) + " records in the block of " + block_name_ +
         " as its head says, found " + std::to_string(counted_));
  }
  return false;
}

}  // namespace calculix
