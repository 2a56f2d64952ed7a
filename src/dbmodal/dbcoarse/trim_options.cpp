#include "dbmodal/dbcoarse/trim_options.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace fmd {

namespace {

bool is_digit(char character) {
  return character >= '0' && character <= '9';
}

void skip_blanks(std::string_view& text) {
  constexpr std::string_view kBlanks = " \t\n\v\f\r";
  text.remove_prefix(std::min(text.find_first_not_of(kBlanks), text.size()));
}

void skip_separator(std::string_view& text) {
  if (!text.empty()) text.remove_prefix(1);
}

// The sign stays with the number where it is a minus; the conversion takes no plus.
std::string_view number_at(std::string_view& text) {
  std::string_view number = text;
  skip_blanks(number);
  if (!number.empty() && number.front() == '+') {
    number.remove_prefix(1);
    if (!number.empty() && number.front() == '-') return {};
  }
  return number;
}

// Digits, or a point before them, behind the sign: words that the conversion knows are no numbers here.
bool begins_real(std::string_view number) {
  if (!number.empty() && number.front() == '-') number.remove_prefix(1);
  if (!number.empty() && number.front() == '.') number.remove_prefix(1);
  return !number.empty() && is_digit(number.front());
}

double take_real(std::string_view& text) {
  const std::string_view number = number_at(text);
  if (!begins_real(number)) return 0.0;
  double value = 0.0;
  const char* const end = number.data() + number.size();
  const auto [stop, error] = std::from_chars(number.data(), end, value);
  const std::string_view taken = number.substr(0, static_cast<std::size_t>(stop - number.data()));
  if (error == std::errc::result_out_of_range && taken.find("e-") == std::string_view::npos) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    value = taken.front() == '-' ? -kInfinity : kInfinity;
  }
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return value;
}

std::int32_t take_integer(std::string_view& text) {
  const std::string_view number = number_at(text);
  std::int32_t value = 0;
  const auto [stop, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error == std::errc::invalid_argument) return 0;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  return error == std::errc::result_out_of_range ? -1 : value;
}

}  // namespace

TrimOptions parse_trim_options(std::string_view text) {
  TrimOptions options;
  options.resolution = take_real(text);
  skip_separator(text);
  options.angle = take_real(text);
  skip_separator(text);
  options.removes_colinear = take_integer(text) != 0;
  skip_separator(text);
  options.preserved = text;
  return options;
}

std::int32_t take_preserved_id(std::string_view& preserved) {
  const std::int32_t id = take_integer(preserved);
  if (id != 0) skip_separator(preserved);
  return id;
}

bool preserves_stress_nodes(std::string_view rest) {
  return rest.find("preserve_str") != std::string_view::npos;
}

}  // namespace fmd
