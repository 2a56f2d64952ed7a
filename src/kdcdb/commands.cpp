#include "kdcdb/commands.h"

#include <cctype>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <limits>

namespace kdcdb {

namespace {

bool is_blank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool is_name_character(char c) {
  return std::isalnum(static_cast<unsigned char>(c)) != 0 ||
         (c != '\0' && std::strchr("_.+-*", c) != nullptr);
}

// A recursive descent over one text.
class Parser {
 public:
  explicit Parser(const char* text) : at_(text) {}

  bool commands(std::vector<Command>& commands) {
    for (;;) {
      Command command;
      while (is_name_character(next())) {
        command.emplace_back();
        if (!item(command.back())) return false;
      }
      if (!command.empty()) commands.push_back(std::move(command));
      if (!accept(';')) return next() == '\0';
    }
  }

 private:
  // The next character that is no blank.
  char next() {
    while (is_blank(*at_)) ++at_;
    return *at_;
  }

  bool accept(char wanted) {
    if (next() != wanted) return false;
    ++at_;
    return true;
  }

  std::string name() {
    const char* start = at_;
    while (is_name_character(*at_)) ++at_;
    return std::string(start, at_);
  }

  bool quoted(std::string& text) {
    const char* start = at_;
    for (; *at_ != '\0'; ++at_) {
      if (*at_ != '\'') continue;
      const char after = at_[1];
      if (after != '\0' && !is_blank(after) && std::strchr(";,)", after) == nullptr) continue;
      text.assign(start, at_);
      ++at_;
      return true;
    }
    return false;
  }

  bool value(Entry& entry) {
    entry.has_value = true;
    entry.quoted = accept('\'');
    if (entry.quoted) return quoted(entry.value);
    if (!is_name_character(next())) return false;
    entry.value = name();
    return true;
  }

  bool item(Item& item) {
    item.name = in_small_letters(name());
    const bool equals = accept('=');
    if (next() == '(') return group(item);
    return !equals || value(item);
  }

  bool group(Item& item) {
    item.has_group = true;
    accept('(');
    if (accept(')')) return true;
    do {
      Entry entry;
      if (!is_name_character(next())) return false;
      entry.name = in_small_letters(name());
      if (accept('=') && !value(entry)) return false;
      item.group.push_back(std::move(entry));
    } while (separator());
    return accept(')');
  }

  bool separator() {
    if (accept(';') || accept(',')) return true;
    next();
    const char* const start = at_;
    if (in_small_letters(name()) == "and") return true;
    at_ = start;
    return false;
  }

  const char* at_;
};

}  // namespace

Status parse_commands(const char* text, std::vector<Command>& commands) {
  commands.clear();
  return Parser(text).commands(commands) ? kOk : kBadCommand;
}

std::string in_small_letters(std::string text) {
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}

bool parse_integer(const std::string& text, std::int32_t& value) {
  if (text.empty() || text.find_first_not_of("+-0123456789") != std::string::npos) return false;
  char* end = nullptr;
  errno = 0;
  const long parsed = std::strtol(text.c_str(), &end, 10);
  if (*end != '\0' || end == text.c_str() || errno != 0) return false;
  if (parsed < std::numeric_limits<std::int32_t>::min() || parsed > std::numeric_limits<std::int32_t>::max())
    return false;
  value = static_cast<std::int32_t>(parsed);
  return true;
}

}  // namespace kdcdb
