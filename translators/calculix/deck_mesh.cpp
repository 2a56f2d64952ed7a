#include "calculix/deck_mesh.h"

#include <algorithm>

#include "calculix/input_error.h"

namespace calculix {

namespace {

// The type code by which result files name a solid; 0 for what is none.
int solid_code(const std::string& label) {
  struct Row {
    const char* beginning;
    int code;
  };
  static constexpr Row rows[] = {{"C3D10", 6}, {"C3D15", 5}, {"C3D20", 4},
                                 {"C3D4", 3},  {"C3D6", 2},  {"C3D8", 1}};
  for (const Row& row : rows) {
    if (label.rfind(row.beginning, 0) == 0) return row.code;
  }
  return 0;
}

bool has_no_shape(const std::string& label) {
  return label == "MASS" || label.rfind("SPRING", 0) == 0 || label.rfind("DASHPOT", 0) == 0;
}

[[noreturn]] void fail(const Deck& deck, const std::string& text) {
  throw InputError(deck.path, 0, text);
}

const int* nodes_of(const Deck& deck, std::size_t element) {
  return deck.element_nodes.data() + deck.element_starts[element];
}

// Whose type is that of a solid, by their places in the deck.
std::vector<std::size_t> solids_of(const Deck& deck) {
  std::vector<std::size_t> solids;
  for (std::size_t e = 0; e < deck.element_ids.size(); ++e) {
    const std::string& label = deck.labels[static_cast<std::size_t>(deck.element_labels[e])];
    if (has_no_shape(label)) continue;
    if (solid_code(label) == 0) {
      fail(deck, "expected solids only where no results are given, found element " +
                     std::to_string(deck.element_ids[e]) + " of type " + label);
    }
    solids.push_back(e);
  }
  if (solids.empty()) fail(deck, "expected solid elements, found none");
  return solids;
}

void add_nodes(const Deck& deck, const std::vector<std::size_t>& solids, FrdContents& contents) {
  std::vector<int>& ids = contents.mesh.node_ids;
  for (const std::size_t e : solids) {
    const int label = deck.element_labels[e];
    const int count = element_type(solid_code(deck.labels[static_cast<std::size_t>(label)]))->nodes;
    ids.insert(ids.end(), nodes_of(deck, e), nodes_of(deck, e) + count);
    for (int i = 0; i < count; ++i) {
      if (deck.node_index.find(nodes_of(deck, e)[i]) >= 0) continue;
      fail(deck, "expected a node of the deck as node " + std::to_string(i + 1) + " of element " +
                     std::to_string(deck.element_ids[e]));
    }
  }
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  for (const int id : ids) {
    contents.mesh.points.push_back(deck.points[static_cast<std::size_t>(deck.node_index.find(id))]);
  }
  contents.node_index = IdIndex(ids);
}

void add_elements(const Deck& deck, const std::vector<std::size_t>& solids, FrdContents& contents) {
  Mesh& mesh = contents.mesh;
  for (const std::size_t e : solids) {
    const int label = deck.element_labels[e];
    const ElementType* type = element_type(solid_code(deck.labels[static_cast<std::size_t>(label)]));
    mesh.elements.push_back({deck.element_ids[e], type, mesh.element_nodes.size(), 0});
    for (int i = 0; i < type->nodes; ++i) {
      mesh.element_nodes.push_back(contents.node_index.find(nodes_of(deck, e)[i]));
    }
  }
}

}  // namespace

FrdContents contents_of_deck(const Deck& deck) {
  FrdContents contents;
  const std::vector<std::size_t> solids = solids_of(deck);
  add_nodes(deck, solids, contents);
  add_elements(deck, solids, contents);
  return contents;
}

}  // namespace calculix
