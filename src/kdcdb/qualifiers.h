// What tells the stored datablocks of a database apart.
#ifndef FMDTOOLKIT_KDCDB_QUALIFIERS_H
#define FMDTOOLKIT_KDCDB_QUALIFIERS_H

#include <array>
#include <cstdint>
#include <string>

namespace kdcdb {

constexpr int kQualifierNumbers = 5;

// The columns of the numbers, in their order.
constexpr const char* kQualifierNames[kQualifierNumbers] = {"PROJNO", "VERSION", "PEID", "DESITER",
                                                            "STEPCUR"};

struct Qualifiers {
  std::string label;  // SELABEL, without trailing blanks
  std::array<std::int32_t, kQualifierNumbers> numbers{1, 1, 0, 0, 0};

  bool operator==(const Qualifiers& other) const { return numbers == other.numbers && label == other.label; }
};

}  // namespace kdcdb

#endif
