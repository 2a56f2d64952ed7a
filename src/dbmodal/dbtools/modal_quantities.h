// What a body expresses in modal coordinates follows a change of its modes: damping, loads, preload, mode
// vectors, operators of monitor points.
#ifndef FMDTOOLKIT_DBMODAL_DBTOOLS_MODAL_QUANTITIES_H
#define FMDTOOLKIT_DBMODAL_DBTOOLS_MODAL_QUANTITIES_H

#include "body/body.h"

namespace fmd {

// Divides each damping entry by the divisors of its two modes, where their product is not zero.
void divide_damping(FmdBody& body, const double* divisors);

// False and a message for each vector over modes, load case or preload, that has not one entry a mode.
bool loads_fit_modes(const FmdBody& body);

// v' = v T for each load case and the preload that have one entry a mode. Of a processed vector the first
// entries, as many as there are rigid body modes, are forces and moments and stay. scratch has one double a
// mode.
void transform_loads(FmdBody& body, int rigid_modes, const double* t, double* scratch);

// Bits of FmdBody::Untransformed.
constexpr std::int32_t kMonitorPointsBit = 1 << TOTAL_MODE_INFO_TYPES;
constexpr std::int32_t kAllVectorBits = kMonitorPointsBit | (kMonitorPointsBit - 1);

// Transforms the mode vectors and monitor points that are still to be done by the body's transformation, of
// the new modes only the first ones. False as soon as one fails; those before it are done and remembered.
bool transform_vectors(FmdBody* body, int new_modes);

// Forgets the modes beyond a new, smaller count: their rows and columns of the transformation, their loads
// and damping, their columns of the operators.
void drop_modes(FmdBody& body, int modes);

}  // namespace fmd

#endif
