#include "services/units.h"

#include <strings.h>

#include <algorithm>
#include <cmath>
#include <cstring>

namespace fmd {

const FmdUnit mass_units[] = {{"MEGAGRAM", 1000.0},
                              {"KILOGRAM", 1.0},
                              {"GRAM", 0.001},
                              {"MILLIGRAM", 1e-06},
                              {"MICROGRAM", 1e-09},
                              {"NANOGRAM", 1e-12},
                              {"USTON", 907.18474},
                              {"KPOUND_MASS", 453.59237},
                              {"POUND_MASS", 0.45359237},
                              {"OUNCE_MASS", 0.02834952},
                              {"SLUG", 14.593902937206366},
                              {"SLINCH", 175.1268352464764},
                              {nullptr, 0.0}};

const FmdUnit force_units[] = {{"KNEWTON", 1000.0},
                               {"NEWTON", 1.0},
                               {"MILLINEWTON", 0.001},
                               {"DYNE", 1e-05},
                               {"MICRONEWTON", 1e-06},
                               {"NANONEWTON", 1e-09},
                               {"KPOUND_FORCE", 4448.2216152605},
                               {"POUND_FORCE", 4.4482216152605},
                               {"KILOGRAM_FORCE", 9.80665},
                               {"OUNCE_FORCE", 0.2780138509537812},
                               {nullptr, 0.0}};

const FmdUnit length_units[] = {{"KILOMETER", 1000.0},   {"METER", 1.0},        {"CENTIMETER", 0.01},
                                {"MILLIMETER", 0.001},   {"MICROMETER", 1e-06}, {"NANOMETER", 1e-09},
                                {"ANGSTROM", 1e-10},     {"MILE", 1609.344},    {"YARD", 0.9144},
                                {"FOOT", 0.3048},        {"INCH", 0.0254},      {"MIL", 2.54e-05},
                                {"MICROINCH", 2.54e-08}, {nullptr, 0.0}};

const FmdUnit time_units[] = {{"SECOND", 1.0},       {"MILLISECOND", 0.001}, {"MICROSECOND", 1e-06},
                              {"NANOSECOND", 1e-09}, {"DAY", 86400.0},       {"HOUR", 3600.0},
                              {"MINUTE", 60.0},      {nullptr, 0.0}};

double units_divider(const char* label, const FmdUnit* table) {
  if (label[0] == '\0') return 1.0;
  const std::size_t length = std::strlen(label);
  for (const FmdUnit* unit = table; unit->label != nullptr; ++unit) {
    if (strncasecmp(label, unit->label, length) == 0) return unit->factor;
  }
  return 0.0;
}

const char* units_label(double value, const FmdUnit* table) {
  for (const FmdUnit* unit = table; unit->label != nullptr; ++unit) {
    if (std::fabs(unit->factor - value) / std::max(unit->factor, value) < 0.0001) return unit->label;
  }
  return nullptr;
}

bool accept_unit_label(char* label) {
  for (const FmdUnit* table : {mass_units, force_units, length_units, time_units}) {
    for (const FmdUnit* unit = table; unit->label != nullptr; ++unit) {
      if (strcasecmp(label, unit->label) != 0) continue;
      std::strcpy(label, unit->label);
      return true;
    }
  }
  return false;
}

}  // namespace fmd
