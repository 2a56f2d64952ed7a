// Nodal masses from elements.
#ifndef FMDTOOLKIT_CALCULIX_LUMPING_H
#define FMDTOOLKIT_CALCULIX_LUMPING_H

#include <vector>

#include "calculix/mesh.h"

namespace calculix {

// Adds each element's mass to its nodes. The density of an element is mass by volume, by area for shells, by
// length for beams. Answers the index of the first element without positive measure, with which it stops, or
// -1 when all is well.
int lump_masses(const Mesh& mesh, const std::vector<double>& densities, std::vector<double>& masses);

}  // namespace calculix

#endif
