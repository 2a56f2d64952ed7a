// Where a part is to be attached: interfaces as a user names them, and what they mean for the degrees of
// freedom of the matrices.
#ifndef FMDTOOLKIT_CALCULIX_INTERFACES_H
#define FMDTOOLKIT_CALCULIX_INTERFACES_H

#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "calculix/craig_bampton.h"
#include "calculix/matrix_reader.h"
#include "calculix/mesh.h"

namespace calculix {

enum class InterfaceKind {
  nodes,   // each node with its three translations
  rigid,   // the nodes move as one rigid piece
  average  // the rigid motion that fits the nodes best, which stay free to deform
};

// "rigid:HOLE_W1@4,18,64".
struct InterfaceRequest {
  InterfaceKind kind = InterfaceKind::nodes;
  std::string nodes;               // name of a node set or of a file with ids, or ids
  std::optional<Point> reference;  // of a group; its centre otherwise
};

// Throws std::invalid_argument with what was expected.
InterfaceRequest parse_interface(const std::string& text);

// The ids where the nodes are named by ids with commas between them, empty for a name.
std::vector<int> ids_of_list(const std::string& nodes);

struct InterfaceNode {
  int id;
  Point at;
};

Point centre_of(const std::vector<InterfaceNode>& nodes);

// Finds the row of a node and axis; -1 where the matrices have none.
class RowIndex {
 public:
  explicit RowIndex(const std::vector<DegreeOfFreedom>& dofs);
  int find(int node, int axis) const;

 private:
  IdIndex nodes_;
  std::vector<int> rows_;  // three for each node
};

// The couplings of an interface: one for each node, or one of six coordinates for a group: translations of
// the reference point, then rotations. Throws ReductionError for a degree of freedom that the matrices lack
// and for a group on a line.
std::vector<Coupling> couplings_of(InterfaceKind kind, const std::vector<InterfaceNode>& nodes,
                                   const Point& reference, const RowIndex& rows);

}  // namespace calculix

#endif
