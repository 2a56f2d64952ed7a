// The unit labels of a deck, as the option --units takes them.
#ifndef FMDTOOL_UNIT_LABELS_H
#define FMDTOOL_UNIT_LABELS_H

#include <string>
#include <vector>

#include "calculix/translate.h"

namespace fmdtool {

// One of the four units: what it measures and the labels that the toolkit knows for it.
struct UnitKind {
  const char* name;
  std::vector<const char*> labels;
};

// Mass, length, time and force.
const std::vector<UnitKind>& unit_kinds();

// Reads "MASS,LENGTH,TIME,FORCE" in any case. Answers what is wrong with the text, or an empty text.
std::string parse_units(const std::string& text, calculix::Units& units);

}  // namespace fmdtool

#endif
