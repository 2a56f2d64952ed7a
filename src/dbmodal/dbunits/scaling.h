// What each physical quantity of a body is multiplied by when the units change.
#ifndef FMDTOOLKIT_DBMODAL_DBUNITS_SCALING_H
#define FMDTOOLKIT_DBMODAL_DBUNITS_SCALING_H

namespace fmd {

// The four factors of one change of units, and what follows from them. Force is a unit of its own: it need
// not be mass times length over time squared.
struct UnitFactors {
  // In the order of the body's factors: force, length, mass, time.
  explicit UnitFactors(const double (&steps)[4]);

  double force;
  double length;
  double mass;
  double time;
  double energy;   // generalized stiffness
  double inertia;  // generalized mass
  double damping;  // generalized damping
  double stress;
  double moment;
  double eigenvalue;
  double frequency;
};

// Factor of an entry of a generalized damping matrix on principal axes, whose first three rows and columns
// are translations of the body.
double principal_damping_factor(const UnitFactors& factors, int row, int column);

// Kinds of result of a monitor point.
enum class MonitorResult { kOfDisplacement = 1, kOfStress = 2, kOfStrain = 3, kOfForce = 4 };

// Factor of a row of the displacement operator and of the load operator of a monitor point. The velocity
// operator has one factor of time more than the displacement operator, the acceleration operator two.
double displacement_row_factor(const UnitFactors& factors, MonitorResult result, bool is_translation);
double load_row_factor(const UnitFactors& factors, MonitorResult result, bool is_translation);

}  // namespace fmd

#endif
