// Unit labels of a body and the factors that follow from them. These operations say nothing, not even of a
// null body: their callers are in the middle of a computation.
#include "services/units.h"

#include <cstdio>
#include <cstring>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

void copy_label(const char* stored, const char* when_empty, char* to) {
  std::snprintf(to, fmd::kUnitLabelSize, "%s", stored[0] == '\0' ? when_empty : stored);
}

// A label of the caller's, cut to the width of the field; false if it is no unit label.
bool take_label(const char* given, char (&label)[fmd::kUnitLabelSize]) {
  std::snprintf(label, sizeof label, "%s", given);
  return fmd::accept_unit_label(label);
}

}  // namespace

double FMD_UnitsDivider(const char* label, const FmdUnit* table) {
  return fmd::units_divider(label, table);
}

const char* FMD_UnitsLabel(double value, const FmdUnit* table) {
  return fmd::units_label(value, table);
}

double FMD_Mass2Kilogram(FmdBody* body, double value) {
  return body == nullptr ? 0.0 : value * fmd::units_divider(body->MassUnit, fmd::mass_units);
}

double FMD_Length2Meter(FmdBody* body, double value) {
  return body == nullptr ? 0.0 : value * fmd::units_divider(body->LengthUnit, fmd::length_units);
}

double FMD_Time2Second(FmdBody* body, double value) {
  return body == nullptr ? 0.0 : value * fmd::units_divider(body->TimeUnit, fmd::time_units);
}

double FMD_Force2Newton(FmdBody* body, double value) {
  return body == nullptr ? 0.0 : value * fmd::units_divider(body->ForceUnit, fmd::force_units);
}

double* FMD_Convert_Units(double* values, int count, double factor) {
  for (int i = 0; i < count; ++i) values[i] *= factor;
  return values;
}

void FMD_Units(FmdBody* body, char* mass, char* length, char* time, char* force) {
  if (body == nullptr) return;
  copy_label(body->MassUnit, "KILOGRAM", mass);
  copy_label(body->LengthUnit, "METER", length);
  copy_label(body->TimeUnit, "SECOND", time);
  copy_label(body->ForceUnit, "NEWTON", force);
}

void FMD_SetUnits(FmdBody* body, char* mass, char* length, char* time, char* force) {
  if (body == nullptr) return;
  char labels[4][fmd::kUnitLabelSize];
  if (!take_label(mass, labels[0]) || !take_label(length, labels[1]) || !take_label(time, labels[2]) ||
      !take_label(force, labels[3])) {
    return;
  }
  char* const stored[4] = {body->MassUnit, body->LengthUnit, body->TimeUnit, body->ForceUnit};
  bool none_set = true;
  bool all_equal = true;
  for (int i = 0; i < 4; ++i) {
    none_set = none_set && stored[i][0] == '\0';
    all_equal = all_equal && std::strcmp(stored[i], labels[i]) == 0;
  }
  if (all_equal) return;
  if (!none_set) {
    FMD_Error("Changing the units of a body is not available yet.");
    return;
  }
  for (int i = 0; i < 4; ++i) {
    std::memcpy(stored[i], labels[i], sizeof labels[i]);
    body->UnitStepFactor[i] = 1.0;
    body->UnitTotalFactor[i] = 1.0;
  }
}

double FMD_UCF(FmdBody* body) {
  if (body == nullptr) return 0.0;
  const double force = fmd::units_divider(body->ForceUnit, fmd::force_units);
  const double time = fmd::units_divider(body->TimeUnit, fmd::time_units);
  const double length = fmd::units_divider(body->LengthUnit, fmd::length_units);
  const double mass = fmd::units_divider(body->MassUnit, fmd::mass_units);
  // A label that no table knows makes the factor 0.0, in the divisor as well.
  if (length == 0.0 || mass == 0.0) return 0.0;
  return force * time * time / (length * mass);
}
