// Sums over nodes for one mode, behind invariants 3, 4 and 8. Nodes count in node order; vectors hold three
// values a node.
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_MODE_SUMS_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_MODE_SUMS_H

#include "body/body.h"

namespace fmd {

// sum += m phi
void add_momentum(const FmdNode* nodes, int count, const double* translations, double* sum);

// sum += m r x phi
void add_moment_of_momentum(FmdNode* nodes, int count, double* translations, double* sum);

// sum += J theta, for the nodes that have an inertia tensor
void add_spin(const FmdNode* nodes, int count, const double* rotations, double* sum);

// tensor += m ~r ~phi
void add_moment_tensor(FmdNode* nodes, int count, double* translations, double* tensor);

}  // namespace fmd

#endif
