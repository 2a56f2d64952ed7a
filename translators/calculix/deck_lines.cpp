#include "calculix/deck_lines.h"

#include <algorithm>
#include <cctype>
#include <filesystem>

#include "calculix/deck_reader.h"
#include "calculix/input_error.h"
#include "calculix/number_text.h"

namespace calculix {

namespace {

constexpr std::size_t deepest_include = 32;

std::string without_blanks(std::string_view text) {
  std::string result;
  for (const char c : text) {
    if (c != ' ' && c != '\t') result += c;
  }
  return result;
}

std::string_view without_quotes(std::string_view text) {
  if (text.size() >= 2 && text.front() == '"' && text.back() == '"') return text.substr(1, text.size() - 2);
  return text;
}

}  // namespace

std::string in_capitals(std::string_view text) {
  std::string result(text);
  for (char& c : result) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  return result;
}

std::string Keyword::value(const std::string& parameter) const {
  const auto found = parameters.find(parameter);
  return found == parameters.end() ? std::string() : found->second;
}

DeckLines::DeckLines(const std::string& path)
    : directory_(std::filesystem::path(path).parent_path().string()) {
  readers_.push_back(std::make_unique<LineReader>(path));
}

// The next line with something on it that is no comment, out of the innermost file that has one.
bool DeckLines::next_line() {
  for (;;) {
    if (!readers_.back()->next(line_)) {
      if (readers_.size() == 1) return false;
      readers_.pop_back();
      continue;
    }
    line_ = trimmed(line_);
    if (!line_.empty() && line_.substr(0, 2) != "**") return true;
  }
}

DeckLine DeckLines::next() {
  while (next_line()) {
    if (line_.front() != '*') {
      split_fields();
      return DeckLine::data;
    }
    const std::string name = in_capitals(without_blanks(line_.substr(1, line_.find(',') - 1)));
    if (name != "INCLUDE") {
      read_keyword();
      return DeckLine::keyword;
    }
    const Keyword around = keyword_;
    read_keyword();
    open_include();
    keyword_ = around;
  }
  return DeckLine::end;
}

std::string DeckLines::needed(const char* parameter) const {
  std::string value = keyword_.value(parameter);
  if (value.empty()) fail("expected the parameter " + std::string(parameter) + " of *" + keyword_.name);
  return value;
}

std::string_view DeckLines::field(std::size_t place) const {
  return place < fields_.size() ? fields_[place] : std::string_view();
}

int DeckLines::int_field(std::size_t place, const char* what) const {
  int value = 0;
  if (parse_int(field(place), value)) return value;
  fail(std::string("expected ") + what + ", found " + quote(field(place)));
}

double DeckLines::real_field(std::size_t place, const char* what) const {
  double value = 0.0;
  if (parse_real(field(place), value)) return value;
  fail(std::string("expected ") + what + ", a finite number, found " + quote(field(place)));
}

// A keyword line that ends with a comma goes on in the next one.
void DeckLines::read_keyword() {
  keyword_ = Keyword{};
  include_file_.clear();
  const std::size_t comma = std::min(line_.find(','), line_.size());
  keyword_.name = in_capitals(without_blanks(line_.substr(1, comma - 1)));
  bool more = !line_.empty() && line_.back() == ',';
  add_parameters(line_.substr(std::min(comma + 1, line_.size())));
  while (more) {
    if (!next_line()) fail("expected more parameters of *" + keyword_.name + " behind the comma");
    more = line_.back() == ',';
    add_parameters(line_);
  }
}

void DeckLines::add_parameters(std::string_view text) {
  while (!text.empty()) {
    const std::size_t comma = std::min(text.find(','), text.size());
    const std::string_view parameter = trimmed(text.substr(0, comma));
    text.remove_prefix(std::min(comma + 1, text.size()));
    if (parameter.empty()) continue;
    const std::size_t equals = std::min(parameter.find('='), parameter.size());
    const std::string name = in_capitals(without_blanks(parameter.substr(0, equals)));
    const std::string_view value = trimmed(parameter.substr(std::min(equals + 1, parameter.size())));
    if (name == "INPUT") include_file_ = without_quotes(value);
    keyword_.parameters[name] = in_capitals(without_blanks(without_quotes(value)));
  }
}

// A relative name counts from the deck's directory, as for a job that runs there, or else from that of the
// including file.
void DeckLines::open_include() {
  if (include_file_.empty()) fail("expected *INCLUDE, INPUT=file");
  namespace fs = std::filesystem;
  const fs::path name(include_file_);
  fs::path path = fs::path(directory_) / name;
  std::error_code error;
  if (name.is_relative() && !fs::exists(path, error)) path = fs::path(file()).parent_path() / name;
  if (!fs::is_regular_file(path, error))
    fail("expected the included file " + include_file_ + ", it is not there");
  for (const auto& reader : readers_) {
    if (fs::equivalent(path, reader->path(), error)) {
      fail("expected no file that includes itself, found " + include_file_ + " inside itself");
    }
  }
  if (readers_.size() >= deepest_include) fail("expected at most 32 files that include each other");
  readers_.push_back(std::make_unique<LineReader>(path.string()));
}

void DeckLines::split_fields() {
  fields_.clear();
  ends_with_comma_ = line_.back() == ',';
  std::string_view rest = ends_with_comma_ ? line_.substr(0, line_.size() - 1) : line_;
  for (;;) {
    const std::size_t comma = rest.find(',');
    fields_.push_back(trimmed(rest.substr(0, comma)));
    if (comma == std::string_view::npos) return;
    rest.remove_prefix(comma + 1);
  }
}

}  // namespace calculix
