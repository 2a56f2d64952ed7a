#include "dbmodal/dbwrite/options.h"

#include <charconv>
#include <limits>

#include "body/body.h"

namespace fmd {

namespace {

constexpr std::string_view::size_type kNowhere = std::string_view::npos;

bool holds(std::string_view text, std::string_view option) {
  return text.find(option) != kNowhere;
}

// What follows the first place of the opening up to the first character outside of the set; empty if the text
// has no such opening.
std::string_view run_of(std::string_view text, std::string_view opening, std::string_view set) {
  const auto place = text.find(opening);
  if (place == kNowhere) return {};
  const std::string_view rest = text.substr(place + opening.size());
  return rest.substr(0, rest.find_first_not_of(set));
}

// The same up to the closing character or the end of the text.
std::string_view run_up_to(std::string_view text, std::string_view opening, char closing) {
  if (text.substr(0, opening.size()) != opening) return {};
  const std::string_view rest = text.substr(opening.size());
  return rest.substr(0, rest.find(closing));
}

// The three forms of a sketch file's name: in double quotes, in single quotes, bare.
std::string_view sketch_file(std::string_view text) {
  const auto place = text.find("sketch(");
  if (place == kNowhere) return {};
  const std::string_view option = text.substr(place);
  std::string_view name = run_up_to(option, "sketch(\"", '"');
  if (name.empty()) name = run_up_to(option, "sketch('", '\'');
  if (name.empty()) name = run_up_to(option, "sketch(", ')');
  return name;
}

// As the language's own conversion: leading blanks are skipped and nonsense is zero.
double to_number(std::string_view text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
  double value = 0.0;
  const auto result = std::from_chars(text.data(), text.data() + text.size(), value);
  if (result.ec == std::errc::result_out_of_range) {
    const bool tiny = text.find("e-") != kNowhere;
    const double huge = text.front() == '-' ? -std::numeric_limits<double>::infinity()
                                            : std::numeric_limits<double>::infinity();
    return tiny ? 0.0 : huge;
  }
  return value;
}

double frequency(std::string_view text, std::string_view opening, double otherwise) {
  const std::string_view number = run_of(text, opening, " 0123456789.e-");
  return number.empty() ? otherwise : to_number(number);
}

void add_conflict(VersionChoice& choice, const char* message) {
  choice.conflicts[choice.conflict_count++] = message;
}

}  // namespace

WriteOptions parse_write_options(const char* text) {
  WriteOptions options;
  if (text == nullptr) return options;
  const std::string_view view(text);
  options.shift_to_center_of_mass = holds(view, "lbrf2cm");
  options.sketch = sketch_file(view);
  options.strip_faces = holds(view, "strip_face");
  options.coarsen = run_of(view, "coarsen(", " 0123456789.,preserve_str");
  options.sparse_stress = holds(view, "sparse_str");
  options.no_ortho = holds(view, "no_ortho");
  options.full_stress = holds(view, "full_str");
  options.single_precision = holds(view, "single");
  options.native = holds(view, "no_xdr");
  options.level_20 = holds(view, "82_comp");
  options.level_10 = holds(view, "81_comp");
  options.highest_frequency = frequency(view, "lowpass(", options.highest_frequency);
  options.lowest_frequency = frequency(view, "highpass(", options.lowest_frequency);
  options.invariants = holds(view, "invar");
  options.full_invariants = holds(view, "full_invar");
  options.fast_invariants = holds(view, "fast_invar");
  options.empty = holds(view, "empty");
  options.mks = holds(view, "MKS");
  return options;
}

VersionChoice choose_version(const WriteOptions& options) {
  constexpr std::uint32_t kLevel60 = 60;
  VersionChoice choice;
  choice.word = kLevel60 | kVersionXdr;
  if (options.full_stress) {
    choice.word = 41;
    if (options.sparse_stress)
      add_conflict(choice, "Cannot specify full and sparse stress and strain modes.");
  }
  if (options.single_precision) choice.word = choice.word == 41 ? 51 : choice.word | kVersionSingle;
  if (options.native) {
    if (choice.word == 41) {
      choice.word = 40;
    } else if (choice.word == 51) {
      choice.word = 50;
    } else {
      choice.word &= ~kVersionXdr;
    }
  }
  if (options.level_20) {
    choice.word = 20;
    if (options.invariants) add_conflict(choice, "8.2 compatible FMD cannot contain Invariants");
    if (options.single_precision) add_conflict(choice, "8.2 compatible FMD cannot be single precision");
    if (options.sparse_stress) {
      add_conflict(choice, "8.2 compatible FMD cannot have sparse stress or strain modes");
    }
  }
  if (options.level_10) {
    choice.word = 10;
    if (options.invariants) add_conflict(choice, "8.1 compatible FMD cannot contain Invariants");
    if (options.single_precision) add_conflict(choice, "8.1 compatible FMD cannot be single precision");
    if (options.sparse_stress) {
      add_conflict(choice, "8.1 compatible FMD cannot have sparse stress or strain modes");
    }
  }
  return choice;
}

}  // namespace fmd
