// Short decimal numbers are converted as whole-number mantissa times or divided by a power of ten: both are
// exact up to 2^53 and 10^22, so one rounding remains and the result is the nearest double (W. D. Clinger,
// 1990). All others go through the standard library.
#include "calculix/number_text.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <system_error>

namespace calculix {

namespace {

constexpr double power_of_ten[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,  1e8,  1e9,  1e10, 1e11,
                                   1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
constexpr int largest_exact_power = 22;
constexpr int largest_exact_digits = 15;
constexpr int largest_exponent = 99999;

bool is_blank(char c) {
  return c == ' ' || c == '\t';
}

bool is_digit(char c) {
  return c >= '0' && c <= '9';
}

// A number taken apart: digits without the point, and the power of ten behind them.
struct Decimal {
  bool negative = false;
  std::uint64_t mantissa = 0;
  int digits = 0;  // significant ones
  int exponent = 0;
};

// Sign, digits and point; answers the characters used, 0 where no digit stands.
std::size_t scan_mantissa(std::string_view text, Decimal& number) {
  std::size_t at = 0;
  if (at < text.size() && (text[at] == '-' || text[at] == '+')) number.negative = text[at++] == '-';
  bool point = false;
  bool any = false;
  for (; at < text.size(); ++at) {
    const char c = text[at];
    if (c == '.' && !point) {
      point = true;
      continue;
    }
    if (!is_digit(c)) break;
    any = true;
    if (number.digits <= largest_exact_digits) {
      number.mantissa = number.mantissa * 10 + static_cast<std::uint64_t>(c - '0');
    }
    if (number.mantissa != 0) ++number.digits;
    if (point) --number.exponent;
  }
  return any ? at : 0;
}

// Exponent of at most "most" digits behind a letter or a sign; answers the characters used, 0 for none.
std::size_t scan_exponent(std::string_view text, std::size_t most, int& exponent) {
  std::size_t at = 0;
  const bool letter = !text.empty() && (text[0] == 'E' || text[0] == 'e' || text[0] == 'D' || text[0] == 'd');
  if (letter) ++at;
  bool negative = false;
  const bool sign = at < text.size() && (text[at] == '-' || text[at] == '+');
  if (sign) negative = text[at++] == '-';
  if (!letter && !sign) return 0;
  const std::size_t first = at;
  int value = 0;
  while (at < text.size() && is_digit(text[at]) && at - first < most) {
    if (value < largest_exponent) value = value * 10 + (text[at] - '0');
    ++at;
  }
  if (at == first) return 0;
  exponent += negative ? -value : value;
  return at;
}

// The value of a number whose characters are known to be well formed.
bool convert(const Decimal& number, std::string_view text, double& value) {
  const double sign = number.negative ? -1.0 : 1.0;
  if (number.digits <= largest_exact_digits && std::abs(number.exponent) <= largest_exact_power) {
    const auto mantissa = static_cast<double>(number.mantissa);
    value = sign * (number.exponent < 0 ? mantissa / power_of_ten[-number.exponent]
                                        : mantissa * power_of_ten[number.exponent]);
    return true;
  }
  if (number.mantissa == 0) {
    value = sign * 0.0;
    return true;
  }
  constexpr std::size_t longest = 400;
  char plain[longest + 8];
  std::size_t length = 0;
  bool in_exponent = false;
  for (const char c : text.substr(0, longest)) {
    const bool letter = c == 'E' || c == 'e' || c == 'D' || c == 'd';
    const bool bare_exponent = (c == '+' || c == '-') && length > 0 && !in_exponent;
    if (c == '+' && length == 0) continue;
    if (letter || bare_exponent) {
      plain[length++] = 'e';
      in_exponent = true;
    }
    if (!letter) plain[length++] = c;
  }
  const auto result = std::from_chars(plain, plain + length, value);
  if (result.ec == std::errc::result_out_of_range) {
    if (number.exponent + number.digits > 0) return false;
    value = sign * 0.0;  // too small for a double
    return true;
  }
  return result.ec == std::errc() && result.ptr == plain + length && std::isfinite(value);
}

}  // namespace

std::string_view trimmed(std::string_view text) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  while (!text.empty() && is_blank(text.back())) text.remove_suffix(1);
  return text;
}

std::string_view columns(std::string_view line, std::size_t first, std::size_t last) {
  if (first > line.size()) return {};
  return line.substr(first - 1, last - first + 1);
}

bool parse_int(std::string_view field, int& value) {
  field = trimmed(field);
  if (!field.empty() && field.front() == '+') field.remove_prefix(1);
  const char* end = field.data() + field.size();
  const auto result = std::from_chars(field.data(), end, value);
  return !field.empty() && result.ec == std::errc() && result.ptr == end;
}

bool parse_real(std::string_view field, double& value) {
  field = trimmed(field);
  Decimal number;
  std::size_t used = scan_mantissa(field, number);
  if (used == 0) return false;
  if (used < field.size()) {
    const std::size_t more = scan_exponent(field.substr(used), field.size(), number.exponent);
    if (more == 0 || used + more != field.size()) return false;
  }
  return convert(number, field, value);
}

bool take_real(std::string_view& text, double& value) {
  while (!text.empty() && is_blank(text.front())) text.remove_prefix(1);
  Decimal number;
  std::size_t used = scan_mantissa(text, number);
  if (used == 0) return false;
  // A third digit belongs to the exponent unless the point behind it shows that it begins the next number.
  const std::string_view rest = text.substr(used);
  int with_three = 0;
  std::size_t more = scan_exponent(rest, 3, with_three);
  if (more == 0) return false;
  if (more < rest.size() && rest[more] == '.') {
    with_three = 0;
    more = scan_exponent(rest, 2, with_three);
  }
  number.exponent += with_three;
  used += more;
  if (!convert(number, text.substr(0, used), value)) return false;
  text.remove_prefix(used);
  return true;
}

}  // namespace calculix
