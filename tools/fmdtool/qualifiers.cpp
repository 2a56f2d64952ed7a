#include "qualifiers.h"

#include <strings.h>

#include <algorithm>
#include <charconv>
#include <vector>

namespace fmdtool {

const std::array<const char*, qualifier_numbers> number_names = {"PROJNO", "VERSION", "PEID", "DESITER",
                                                                 "STEPCUR"};

namespace {

constexpr const char* label_name = "SELABEL";
constexpr std::size_t longest_row = 255;

std::string trimmed(const std::string& text) {
  const std::size_t begin = text.find_first_not_of(' ');
  if (begin == std::string::npos) return "";
  return text.substr(begin, text.find_last_not_of(' ') + 1 - begin);
}

// Parts between the commas that stand outside single quotes.
std::vector<std::string> parts_of(const std::string& text) {
  std::vector<std::string> parts(1);
  bool quoted = false;
  for (const char c : text) {
    if (c == '\'') quoted = !quoted;
    if (c == ',' && !quoted) {
      parts.emplace_back();
    } else {
      parts.back() += c;
    }
  }
  return parts;
}

bool is_quoted(const std::string& text) {
  return text.size() >= 2 && text.front() == '\'' && text.back() == '\'';
}

// Trailing blanks of a label do not count.
std::string label_of(const std::string& value) {
  const std::string label = is_quoted(value) ? value.substr(1, value.size() - 2) : value;
  return label.substr(0, label.find_last_not_of(' ') + 1);
}

std::string check_label(const std::string& label) {
  for (const char c : label) {
    const auto code = static_cast<unsigned char>(c);
    if (code < 32 || code == 127 || c == '\'') {
      return "expected a label without single quotes and control characters";
    }
  }
  return "";
}

std::string read_number(const char* name, const std::string& value, std::optional<int>& number) {
  int found = 0;
  const char* const begin = value.data() + (value.rfind('+', 0) == 0 ? 1 : 0);
  const char* const end = value.data() + value.size();
  const auto result = std::from_chars(begin, end, found);
  if (begin == end || result.ec != std::errc() || result.ptr != end) {
    return std::string("expected an integer for ") + name + ", found \"" + value + "\"";
  }
  number = found;
  return "";
}

std::string unknown_name(const std::string& name) {
  std::string known = label_name;
  for (const char* number : number_names) known += std::string(" ") + number;
  return "expected a qualifier, one of " + known + ", found \"" + name + "\"";
}

std::string read_part(const std::string& part, Qualifiers& qualifiers) {
  const std::size_t sign = part.find('=');
  const std::string name = trimmed(part.substr(0, sign));
  if (sign == std::string::npos) return "expected NAME=VALUE, found \"" + name + "\"";
  const std::string value = trimmed(part.substr(sign + 1));
  if (strcasecmp(name.c_str(), label_name) == 0) {
    if (value == "*") return "";
    qualifiers.label = label_of(value);
    return check_label(*qualifiers.label);
  }
  for (std::size_t i = 0; i < qualifier_numbers; ++i) {
    if (strcasecmp(name.c_str(), number_names[i]) != 0) continue;
    return value == "*" ? "" : read_number(number_names[i], value, qualifiers.numbers[i]);
  }
  return unknown_name(name);
}

}  // namespace

bool Qualifiers::found_in(const Qualifiers& other) const {
  if (label && label != other.label) return false;
  for (std::size_t i = 0; i < qualifier_numbers; ++i) {
    if (numbers[i] && numbers[i] != other.numbers[i]) return false;
  }
  return true;
}

Qualifiers Qualifiers::defaults() {
  return {"", {1, 1, 0, 0, 0}};
}

Qualifiers Qualifiers::changed_by(const std::string& text) const {
  Qualifiers changed = *this;
  if (!text.empty()) parse_qualifiers(text, changed);
  return changed;
}

std::string parse_qualifiers(const std::string& text, Qualifiers& qualifiers) {
  if (is_quoted(text) || text.find('=') == std::string::npos) {
    if (text != "*") qualifiers.label = label_of(text);
    return qualifiers.label ? check_label(*qualifiers.label) : "";
  }
  for (const std::string& part : parts_of(text)) {
    const std::string error = read_part(part, qualifiers);
    if (!error.empty()) return error;
  }
  return "";
}

std::string parse_new_qualifiers(const std::string& text, Qualifiers& qualifiers) {
  const std::string error = parse_qualifiers(text, qualifiers);
  if (!error.empty()) return error;
  Qualifiers whole = qualifiers;
  if (!whole.label) whole.label = "";
  for (std::size_t i = 0; i < qualifier_numbers; ++i) whole.numbers[i] = whole.numbers[i].value_or(0);
  if (as_text(whole).size() <= longest_row) return "";
  return "expected a shorter label: with the other qualifiers it has to fit " + std::to_string(longest_row) +
         " characters";
}

std::string as_text(const Qualifiers& qualifiers) {
  std::string text;
  if (qualifiers.label) text += std::string(label_name) + "='" + *qualifiers.label + "'";
  for (std::size_t i = 0; i < qualifier_numbers; ++i) {
    if (!qualifiers.numbers[i]) continue;
    text += (text.empty() ? "" : ",") + std::string(number_names[i]) + "=" +
            std::to_string(*qualifiers.numbers[i]);
  }
  return text;
}

}  // namespace fmdtool
