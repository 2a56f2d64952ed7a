// Nodes and elements of a result file.
#ifndef FMDTOOLKIT_CALCULIX_MESH_H
#define FMDTOOLKIT_CALCULIX_MESH_H

#include <array>
#include <cstddef>
#include <vector>

#include "calculix/elements.h"

namespace calculix {

using Point = std::array<double, 3>;

struct Element {
  int id;
  const ElementType* type;
  std::size_t first;  // place of its nodes in Mesh::element_nodes
  long line;          // in the result file
};

struct Mesh {
  std::vector<int> node_ids;
  std::vector<Point> points;  // per node
  long first_node_line = 0;   // in the result file; one line a node
  std::vector<Element> elements;
  std::vector<int> element_nodes;  // node indices, in the deck's order

  const int* nodes_of(const Element& element) const { return element_nodes.data() + element.first; }
};

}  // namespace calculix

#endif
