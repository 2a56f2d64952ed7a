// The four unit tables and the lookups on them. Factors say how many SI base units one unit is; the order of
// a table is the order of search.
#ifndef FMDTOOLKIT_SERVICES_UNITS_H
#define FMDTOOLKIT_SERVICES_UNITS_H

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

constexpr int kUnitLabelSize = 16;

extern const FmdUnit mass_units[];
extern const FmdUnit force_units[];
extern const FmdUnit length_units[];
extern const FmdUnit time_units[];

// Factor of the first entry that begins with the label, in any case; 1.0 for an empty label, 0.0 for none.
double units_divider(const char* label, const FmdUnit* table);

// Label of the first entry whose factor is the value within a relative 1e-4, or null.
const char* units_label(double value, const FmdUnit* table);

// True for a whole label of any table, in any case, which it then puts in capitals.
bool accept_unit_label(char* label);

}  // namespace fmd

#endif
