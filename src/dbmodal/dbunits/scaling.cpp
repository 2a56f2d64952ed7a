#include "dbmodal/dbunits/scaling.h"

#include <cmath>

#include "body/body.h"

namespace fmd {

UnitFactors::UnitFactors(const double (&steps)[4])
    : force(steps[kForce]),
      length(steps[kLength]),
      mass(steps[kMass]),
      time(steps[kTime]),
      energy(force * length),
      inertia(mass * length * length),
      damping(time * force * length),
      stress(force / length / length),
      moment(force * length),
      eigenvalue(energy / inertia),
      // One over time, worked out by way of the unit consistency factor.
      frequency(std::sqrt(energy / (time * force * time / (length * mass) * inertia))) {}

double principal_damping_factor(const UnitFactors& factors, int row, int column) {
  constexpr int kTranslations = 3;
  const double both = factors.time * factors.force;
  if (row < kTranslations && column < kTranslations) return both / factors.length;
  if (row < kTranslations || column < kTranslations) return both;
  return both * factors.length;
}

double displacement_row_factor(const UnitFactors& factors, MonitorResult result, bool is_translation) {
  switch (result) {
    case MonitorResult::kOfDisplacement:
      return is_translation ? factors.length : 1.0;
    case MonitorResult::kOfStress:
      return factors.stress;
    case MonitorResult::kOfStrain:
      return 1.0;
    case MonitorResult::kOfForce:
      return is_translation ? factors.force : factors.moment;
  }
  return 1.0;
}

double load_row_factor(const UnitFactors& factors, MonitorResult result, bool is_translation) {
  switch (result) {
    case MonitorResult::kOfDisplacement:
      return is_translation ? 1.0 / factors.force : 1.0 / (factors.length * factors.force);
    case MonitorResult::kOfStress:
      return 1.0 / (factors.length * factors.length * factors.length);
    case MonitorResult::kOfStrain:
      return 1.0 / (factors.length * factors.force);
    case MonitorResult::kOfForce:
      return is_translation ? 1.0 / factors.length : 1.0;
  }
  return 1.0;
}

}  // namespace fmd
