// Unit labels of a body and the factors that follow from them. These operations say nothing, not even of a
// null body: their callers are in the middle of a computation.
#include "services/units.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

void copy_label(const char* stored, const char* when_empty, char* to) {
  std::snprintf(to, fmd::kUnitLabelSize, "%s", stored[0] == '\0' ? when_empty : stored);
}

using Label = char[fmd::kUnitLabelSize];
using Labels = Label[4];

// The four quantities in the order of the interface: where the body keeps the label, where its factors.
struct Quantity {
  Label FmdBody::*label;
  const FmdUnit* table;
  int factor;
};

const Quantity kQuantities[4] = {{&FmdBody::MassUnit, fmd::mass_units, fmd::kMass},
                                 {&FmdBody::LengthUnit, fmd::length_units, fmd::kLength},
                                 {&FmdBody::TimeUnit, fmd::time_units, fmd::kTime},
                                 {&FmdBody::ForceUnit, fmd::force_units, fmd::kForce}};

bool has_no_labels(const FmdBody& body) {
  return std::all_of(std::begin(kQuantities), std::end(kQuantities),
                     [&](const Quantity& quantity) { return (body.*quantity.label)[0] == '\0'; });
}

bool has_labels(const FmdBody& body, const Labels& labels) {
  for (int i = 0; i < 4; ++i) {
    if (std::strcmp(body.*kQuantities[i].label, labels[i]) != 0) return false;
  }
  return true;
}

void store_labels(FmdBody& body, const Labels& labels) {
  for (int i = 0; i < 4; ++i) std::memcpy(body.*kQuantities[i].label, labels[i], sizeof labels[i]);
}

// Old units over new ones, in the order of the body's factors. False where a label is not of its table.
bool find_steps(const FmdBody& body, const Labels& labels, double (&steps)[4]) {
  for (int i = 0; i < 4; ++i) {
    const Quantity& quantity = kQuantities[i];
    const double before = fmd::units_divider(body.*quantity.label, quantity.table);
    const double after = fmd::units_divider(labels[i], quantity.table);
    if (before == 0.0 || after == 0.0) return false;
    steps[quantity.factor] = before / after;
  }
  return true;
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
  Labels labels;
  if (!take_label(mass, labels[0]) || !take_label(length, labels[1]) || !take_label(time, labels[2]) ||
      !take_label(force, labels[3])) {
    return;
  }
  if (has_no_labels(*body)) {
    store_labels(*body, labels);
    std::fill(std::begin(body->UnitStepFactor), std::end(body->UnitStepFactor), 1.0);
    std::fill(std::begin(body->UnitTotalFactor), std::end(body->UnitTotalFactor), 1.0);
    return;
  }
  if (has_labels(*body, labels)) return;
  double steps[4];
  if (!find_steps(*body, labels, steps)) return;
  store_labels(*body, labels);
  for (int i = 0; i < 4; ++i) {
    body->UnitStepFactor[i] = steps[i];
    body->UnitTotalFactor[i] *= steps[i];
  }
  FMD_ScaleDatabase(body);
}

void FMD_SetUnitsByMultiplierOnSI(FmdBody* body, double mass, double length, double time, double force) {
  if (body == nullptr) return;
  const double sizes[4] = {mass, length, time, force};
  Labels labels;
  for (int i = 0; i < 4; ++i) {
    const char* const label = fmd::units_label(sizes[i], kQuantities[i].table);
    if (label == nullptr) return;
    std::snprintf(labels[i], sizeof labels[i], "%s", label);
  }
  FMD_SetUnits(body, labels[0], labels[1], labels[2], labels[3]);
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
