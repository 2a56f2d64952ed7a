// Which datablocks a command means: the name and the conditions of "datablk=(name) where(...)".
#ifndef FMDTOOLKIT_KDCDB_SELECTION_H
#define FMDTOOLKIT_KDCDB_SELECTION_H

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "kdcdb/commands.h"
#include "kdcdb/qualifiers.h"

namespace kdcdb {

constexpr const char* kScratchName = "fmdtmp";
constexpr const char* kStoredName = "fmddb";

struct Conditions {
  std::optional<std::int32_t> highqual;
  std::optional<std::string> label;
  std::array<std::optional<std::int32_t>, kQualifierNumbers> numbers;

  bool hold(const Qualifiers& qualifiers, std::int32_t its_highqual) const;
};

struct Selection {
  std::string name;
  Conditions conditions;

  bool is_scratch() const { return name == kScratchName; }
};

// From the two items of a command that begin at the place given.
Status read_selection(const Command& command, std::size_t first, Selection& selection);

// The number in the qualifiers that a name in small letters means, or -1.
int qualifier_number(const std::string& name);

// From the "quals(...)" of a command that stores a datablock. Each may be given once; the session's own mark
// is not the caller's to set. kBadArgument for a label that has quotes, control characters or more than a
// listed row holds.
Status read_qualifiers(const Item& item, Qualifiers& qualifiers);

// A command's only one.
Status parse_single(const char* text, Command& command);

// The one name inside "datablk=(name)"; empty for anything else.
std::string datablock_name(const Item& item);

bool is_group(const Item& item, const char* name);

}  // namespace kdcdb

#endif
