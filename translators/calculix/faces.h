// The faces that a viewer sees.
#ifndef FMDTOOLKIT_CALCULIX_FACES_H
#define FMDTOOLKIT_CALCULIX_FACES_H

#include <array>
#include <vector>

#include "calculix/mesh.h"

namespace calculix {

// A polygon of two to four corners, as node indices.
struct Face {
  int corners;
  std::array<int, largest_face> nodes;
};

// The faces of solids that belong to one element only, oriented outward, the faces of shells as they are and
// a line for each beam, in the order of the elements. Midside nodes are left out.
std::vector<Face> outer_faces(const Mesh& mesh);

}  // namespace calculix

#endif
