#include "unit_labels.h"

#include <strings.h>

#include <sstream>

namespace fmdtool {

const std::vector<UnitKind>& unit_kinds() {
  static const std::vector<UnitKind> kinds = {
      {"mass",
       {"MEGAGRAM", "KILOGRAM", "GRAM", "MILLIGRAM", "MICROGRAM", "NANOGRAM", "USTON", "KPOUND_MASS",
        "POUND_MASS", "OUNCE_MASS", "SLUG", "SLINCH"}},
      {"length",
       {"KILOMETER", "METER", "CENTIMETER", "MILLIMETER", "MICROMETER", "NANOMETER", "ANGSTROM", "MILE",
        "YARD", "FOOT", "INCH", "MIL", "MICROINCH"}},
      {"time", {"SECOND", "MILLISECOND", "MICROSECOND", "NANOSECOND", "DAY", "HOUR", "MINUTE"}},
      {"force",
       {"KNEWTON", "NEWTON", "MILLINEWTON", "DYNE", "MICRONEWTON", "NANONEWTON", "KPOUND_FORCE",
        "POUND_FORCE", "KILOGRAM_FORCE", "OUNCE_FORCE"}}};
  return kinds;
}

namespace {

std::string known_labels(const UnitKind& kind) {
  std::string names;
  for (const char* label : kind.labels) names += std::string(names.empty() ? "" : " ") + label;
  return names;
}

}  // namespace

std::string parse_units(const std::string& text, calculix::Units& units) {
  std::vector<std::string> given;
  std::istringstream stream(text);
  for (std::string label; std::getline(stream, label, ',');) given.push_back(label);
  if (given.size() != unit_kinds().size()) {
    return "expected four labels MASS,LENGTH,TIME,FORCE, found \"" + text + "\"";
  }
  std::string* const targets[] = {&units.mass, &units.length, &units.time, &units.force};
  for (std::size_t i = 0; i < given.size(); ++i) {
    const UnitKind& kind = unit_kinds()[i];
    const char* known = nullptr;
    for (const char* label : kind.labels) {
      if (strcasecmp(label, given[i].c_str()) == 0) known = label;
    }
    if (known == nullptr) {
      return std::string("expected a unit of ") + kind.name + ", found \"" + given[i] + "\"; known are " +
             known_labels(kind);
    }
    *targets[i] = known;
  }
  return "";
}

}  // namespace fmdtool
