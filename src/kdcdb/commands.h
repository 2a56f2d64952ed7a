// The command language of the database: one grammar for all commands and selections.
//
//   commands := [command] { ";" [command] }
//   command  := item { item }
//   item     := name [ "=" value ] | name [ "=" ] "(" [ entry { separator entry } ] ")"
//   entry    := name [ "=" value ]
//   separator:= ";" | "," | "and"
//   value    := name | "'" text "'"
//   name     := one or more letters, digits and _ . + - *
//
// Names count in any case. A quoted text ends at a quote that a blank, ";", ",", ")" or the end follows, so
// that a path may hold a quote. Texts have no length limit.
#ifndef FMDTOOLKIT_KDCDB_COMMANDS_H
#define FMDTOOLKIT_KDCDB_COMMANDS_H

#include <string>
#include <vector>

#include "kdcdb/kdcdb.h"

namespace kdcdb {

struct Entry {
  std::string name;  // in small letters
  std::string value;
  bool has_value = false;
  bool quoted = false;
};

struct Item : Entry {
  bool has_group = false;
  std::vector<Entry> group;
};

using Command = std::vector<Item>;

// kBadCommand for a text outside the grammar.
Status parse_commands(const char* text, std::vector<Command>& commands);

std::string in_small_letters(std::string text);

// The whole of a text as a 32-bit integer.
bool parse_integer(const std::string& text, std::int32_t& value);

}  // namespace kdcdb

#endif
