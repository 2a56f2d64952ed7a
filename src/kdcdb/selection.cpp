#include "kdcdb/selection.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace kdcdb {

namespace {

// A listed row with the widest numbers leaves so much to the label.
constexpr std::size_t kLongestRow = 255;

std::string without_trailing_blanks(const std::string& text) {
  return text.substr(0, text.find_last_not_of(' ') + 1);
}

bool read_integer_condition(const Entry& entry, std::optional<std::int32_t>& wanted) {
  if (!entry.quoted && entry.value == "*") return true;
  std::int32_t value = 0;
  if (!parse_integer(entry.value, value)) return false;
  wanted = value;
  return true;
}

bool read_condition(const Entry& entry, Conditions& conditions) {
  if (!entry.has_value) return false;
  if (entry.name == "wildcard") return entry.value == "true" || entry.value == "false";
  if (entry.name == "highqual") return read_integer_condition(entry, conditions.highqual);
  if (entry.name == "selabel") {
    if (entry.quoted || entry.value != "*") conditions.label = without_trailing_blanks(entry.value);
    return true;
  }
  const int number = qualifier_number(entry.name);
  return number >= 0 && read_integer_condition(entry, conditions.numbers[static_cast<std::size_t>(number)]);
}

bool is_printable(const std::string& label) {
  return std::all_of(label.begin(), label.end(), [](char c) {
    const auto code = static_cast<unsigned char>(c);
    return code >= 0x20 && code != 0x7F && c != '\'';
  });
}

std::size_t row_length(const Qualifiers& qualifiers) {
  std::size_t length = std::strlen("SELABEL=''") + qualifiers.label.size();
  for (std::size_t i = 0; i < qualifiers.numbers.size(); ++i)
    length +=
        std::strlen(",=") + std::strlen(kQualifierNames[i]) + std::to_string(qualifiers.numbers[i]).size();
  return length;
}

bool read_qualifier(const Entry& entry, Qualifiers& qualifiers) {
  if (!entry.has_value) return false;
  if (entry.name == "selabel") {
    qualifiers.label = without_trailing_blanks(entry.value);
    return true;
  }
  const int number = qualifier_number(entry.name);
  return number >= 0 && parse_integer(entry.value, qualifiers.numbers[static_cast<std::size_t>(number)]);
}

}  // namespace

bool Conditions::hold(const Qualifiers& qualifiers, std::int32_t its_highqual) const {
  if (highqual && *highqual != its_highqual) return false;
  if (label && *label != qualifiers.label) return false;
  for (std::size_t i = 0; i < numbers.size(); ++i) {
    if (numbers[i] && *numbers[i] != qualifiers.numbers[i]) return false;
  }
  return true;
}

int qualifier_number(const std::string& name) {
  for (int i = 0; i < kQualifierNumbers; ++i) {
    const std::string known = kQualifierNames[i];
    if (std::equal(name.begin(), name.end(), known.begin(), known.end(),
                   [](char a, char b) { return a == std::tolower(static_cast<unsigned char>(b)); }))
      return i;
  }
  return -1;
}

Status read_selection(const Command& command, std::size_t first, Selection& selection) {
  if (command.size() < first + 2 || !is_group(command[first + 1], "where")) return kBadCommand;
  selection.name = datablock_name(command[first]);
  if (selection.name != kScratchName && selection.name != kStoredName) return kBadCommand;
  const std::vector<Entry>& entries = command[first + 1].group;
  const bool read = std::all_of(entries.begin(), entries.end(), [&](const Entry& entry) {
    return read_condition(entry, selection.conditions);
  });
  return read ? kOk : kBadCommand;
}

Status read_qualifiers(const Item& item, Qualifiers& qualifiers) {
  const std::vector<Entry>& entries = item.group;
  for (auto entry = entries.begin(); entry != entries.end(); ++entry) {
    const bool twice =
        std::any_of(entries.begin(), entry, [&](const Entry& before) { return before.name == entry->name; });
    if (twice || !read_qualifier(*entry, qualifiers)) return kBadCommand;
  }
  return is_printable(qualifiers.label) && row_length(qualifiers) <= kLongestRow ? kOk : kBadArgument;
}

Status parse_single(const char* text, Command& command) {
  std::vector<Command> commands;
  const Status status = parse_commands(text, commands);
  if (status != kOk) return status;
  if (commands.size() != 1) return kBadCommand;
  command = std::move(commands[0]);
  return kOk;
}

std::string datablock_name(const Item& item) {
  if (!is_group(item, "datablk") || item.group.size() != 1 || item.group[0].has_value) return "";
  return item.group[0].name;
}

bool is_group(const Item& item, const char* name) {
  return item.name == name && item.has_group;
}

}  // namespace kdcdb
