// What the translation needs of a CalculiX input deck (.inp).
#ifndef FMDTOOLKIT_CALCULIX_DECK_READER_H
#define FMDTOOLKIT_CALCULIX_DECK_READER_H

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "calculix/id_index.h"
#include "calculix/input_error.h"
#include "calculix/mesh.h"

namespace calculix {

// Ids first, first + step, ... up to last.
struct IdRange {
  int first;
  int last;
  int step;
};

using IdSet = std::vector<IdRange>;

struct Material {
  std::optional<double> density;
};

enum class SectionKind { solid, shell, beam };

// Which material and size the elements of a set have.
struct Section {
  SectionKind kind;
  std::string element_set;
  std::string material;
  std::optional<double> size;  // thickness of a shell, area of a beam, first number of a solid section
  std::string why_no_size;     // what a message says instead
  std::string file;
  long line = 0;
};

// A line of *CLOAD: a force or a moment at a node or at each node of a set.
struct LoadLine {
  std::string set;  // empty for one node
  int node;
  int direction;  // 1 to 3 forces, 4 to 6 moments
  double magnitude;
  std::string file;
  long line;
};

struct Step {
  std::string name;
  bool is_static = false;
  bool drops_loads = false;  // those of the steps before it
  std::vector<LoadLine> loads;
  std::vector<InputError> left_out;  // loads that no load case will have
};

struct Deck {
  std::string path;
  std::string title;
  std::vector<int> node_ids;
  std::vector<Point> points;
  IdIndex node_index;
  std::vector<int> element_ids;
  std::vector<int> element_labels;          // index into labels
  std::vector<std::string> labels;          // element types as the deck calls them
  std::vector<std::size_t> element_starts;  // place of its nodes in element_nodes
  std::vector<int> element_nodes;  // ids, of an element of a known type as many as it has; 0 for no id
  IdIndex element_index;
  std::map<std::string, IdSet> node_sets;  // names in capitals
  std::map<std::string, IdSet> element_sets;
  std::map<std::string, Material> materials;
  std::vector<Section> sections;
  std::map<std::string, double> point_masses;      // mass of one node of the element set
  std::vector<std::pair<int, int>> mass_elements;  // (element id, node id)
  std::vector<Step> steps;
  std::vector<std::string> turned_sets;  // node sets with axes of their own
};

// Reads the deck and all that it includes. Throws InputError.
Deck read_deck(const std::string& path);

// The ids of a set, ascending, each once; of a range only those that are in the index.
std::vector<int> expand(const IdSet& set, const std::vector<int>& all_ids, const IdIndex& index);

std::string in_capitals(std::string_view text);

}  // namespace calculix

#endif
