// What tells the bodies of a database apart, as the user writes it and as the toolkit lists it.
#ifndef FMDTOOL_QUALIFIERS_H
#define FMDTOOL_QUALIFIERS_H

#include <array>
#include <optional>
#include <string>

namespace fmdtool {

constexpr std::size_t qualifier_numbers = 5;

// Names of the numbers, in the order of a listed row.
extern const std::array<const char*, qualifier_numbers> number_names;

// Those that the user names; a whole set has all of them.
struct Qualifiers {
  std::optional<std::string> label;
  std::array<std::optional<int>, qualifier_numbers> numbers;

  // Whether each that is named here is the same there.
  bool found_in(const Qualifiers& other) const;
  // Those that the toolkit takes for what is not named.
  static Qualifiers defaults();
  // These, but for those that the text names, which has been parsed before.
  Qualifiers changed_by(const std::string& text) const;
};

// Reads "SELABEL='arm',PROJNO=2", names in any case, or a label by itself. "*" names nothing. Answers what is
// wrong with the text, or an empty text.
std::string parse_qualifiers(const std::string& text, Qualifiers& qualifiers);

// The same, and what is wrong with them as those of a body that is to be stored.
std::string parse_new_qualifiers(const std::string& text, Qualifiers& qualifiers);

// With commas between, as the toolkit takes and lists them.
std::string as_text(const Qualifiers& qualifiers);

}  // namespace fmdtool

#endif
