// The lines of an input deck: comments left out, includes followed, keyword lines taken apart.
#ifndef FMDTOOLKIT_CALCULIX_DECK_LINES_H
#define FMDTOOLKIT_CALCULIX_DECK_LINES_H

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "calculix/line_reader.h"

namespace calculix {

// "*NODE, NSET=ALL" is the name NODE with the parameter NSET; names and values in capitals without blanks.
struct Keyword {
  std::string name;
  std::map<std::string, std::string> parameters;

  bool has(const std::string& parameter) const { return parameters.count(parameter) != 0; }
  std::string value(const std::string& parameter) const;
};

enum class DeckLine { keyword, data, end };

class DeckLines {
 public:
  explicit DeckLines(const std::string& path);

  // The next line. An include is part of what stands around it and never seen.
  DeckLine next();

  const Keyword& keyword() const { return keyword_; }
  const std::vector<std::string_view>& fields() const { return fields_; }  // of a data line, trimmed
  std::string_view text() const { return line_; }
  bool ends_with_comma() const { return ends_with_comma_; }

  const std::string& file() const { return readers_.back()->path(); }
  long line_number() const { return readers_.back()->line_number(); }
  // Throw InputError where the keyword lacks the parameter, or where the field of the data line is no number.
  std::string needed(const char* parameter) const;
  int int_field(std::size_t place, const char* what) const;
  double real_field(std::size_t place, const char* what) const;

  [[noreturn]] void fail(const std::string& text) const { readers_.back()->fail(text); }

 private:
  bool next_line();
  void read_keyword();
  void add_parameters(std::string_view text);
  void open_include();
  void split_fields();
  std::string_view field(std::size_t place) const;

  std::string directory_;
  std::vector<std::unique_ptr<LineReader>> readers_;  // the innermost include last
  std::string_view line_;
  Keyword keyword_;
  std::string include_file_;  // as written, capitals and blanks kept
  std::vector<std::string_view> fields_;
  bool ends_with_comma_ = false;
};

}  // namespace calculix

#endif
