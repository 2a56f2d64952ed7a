#include "calculix/model.h"

#include <algorithm>
#include <cmath>
#include <filesystem>

#include "calculix/input_error.h"
#include "calculix/line_reader.h"
#include "calculix/number_text.h"

namespace calculix {

namespace {

// Rounding to six digits moves a coordinate by half of its last digit, at most 5e-6 of it.
constexpr double rounding = 1e-5;

double largest_coordinate(const Mesh& mesh) {
  double largest = 0.0;
  for (const Point& point : mesh.points) {
    for (const double x : point) largest = std::max(largest, std::fabs(x));
  }
  return largest;
}

// The section of each element, by the index in Deck::sections; -1 for none. A later section goes before.
std::vector<int> sections_of_elements(const Mesh& mesh, const Deck& deck) {
  std::vector<int> ids;
  for (const Element& element : mesh.elements) ids.push_back(element.id);
  const IdIndex index(ids);
  std::vector<int> sections(ids.size(), -1);
  for (std::size_t s = 0; s < deck.sections.size(); ++s) {
    const auto set = deck.element_sets.find(deck.sections[s].element_set);
    if (set == deck.element_sets.end()) {
      throw InputError(
          deck.sections[s].file, deck.sections[s].line,
          "expected an element set of the deck, found unknown set " + deck.sections[s].element_set);
    }
    for (const int id : expand(set->second, ids, index)) {
      const int place = index.find(id);
      if (place >= 0) sections[static_cast<std::size_t>(place)] = static_cast<int>(s);
    }
  }
  return sections;
}

double density_of(const Deck& deck, const Section& section) {
  const auto material = deck.materials.find(section.material);
  if (material == deck.materials.end()) {
    throw InputError(section.file, section.line,
                     "expected a material of the deck, found unknown material " + section.material);
  }
  if (!material->second.density) {
    throw InputError(section.file, section.line,
                     "expected *DENSITY of the material " + section.material + ", or the option --density");
  }
  return *material->second.density;
}

// Thickness or area of a shell or beam element.
double size_of(const Element& element, const std::string& results, const Section* section) {
  const bool shell = element.type->dimension == 2;
  const char* what = shell ? "the thickness of the shell element " : "the cross section of the beam element ";
  const std::string expected = std::string("expected ") + what + std::to_string(element.id);
  if (section == nullptr) {
    throw InputError(results, element.line, expected + " from a section of the deck, found none");
  }
  if (section->size) return *section->size;
  throw InputError(section->file, section->line,
                   expected + (section->why_no_size.empty() ? ", found none"
                                                            : ", but its section " + section->why_no_size));
}

const std::string& label_of(const Deck& deck, int place) {
  return deck.labels[static_cast<std::size_t>(deck.element_labels[static_cast<std::size_t>(place)])];
}

// The elements must be the deck's, and none of a ring of which the result file has one section only.
void check_elements(const Mesh& mesh, const std::string& results, const Deck& deck) {
  for (const Element& element : mesh.elements) {
    const int place = deck.element_index.find(element.id);
    if (place < 0) {
      throw InputError(results, element.line,
                       "expected an element of the deck " + deck.path + ", found unknown element " +
                           std::to_string(element.id));
    }
    if (label_of(deck, place).rfind("CAX", 0) == 0) {
      throw InputError(
          results, element.line,
          "expected solids, shells or beams, found the axisymmetric element " + std::to_string(element.id));
    }
  }
}

std::string known_sets(const Deck& deck) {
  std::string names;
  for (const auto& [name, set] : deck.node_sets) names += (names.empty() ? "" : ", ") + name;
  return names.empty() ? "none" : names;
}

// Ids with blanks, commas or line ends between them; a # begins a comment.
std::vector<int> ids_of_file(const std::string& path, const FrdContents& contents) {
  LineReader lines(path);
  std::vector<int> ids;
  std::string_view line;
  while (lines.next(line)) {
    line = line.substr(0, line.find('#'));
    while (!(line = trimmed(line)).empty()) {
      const std::size_t end = std::min(line.find_first_of(" ,\t"), line.size());
      const std::string_view field = line.substr(0, end);
      line.remove_prefix(std::min(end + 1, line.size()));
      if (field.empty()) continue;
      int id = 0;
      if (!parse_int(field, id)) lines.fail("expected a node id, found " + quote(field));
      if (contents.node_index.find(id) < 0) {
        lines.fail("expected a node of the results, found unknown node " + std::to_string(id));
      }
      ids.push_back(id);
    }
  }
  if (ids.empty()) throw InputError(path, 0, "expected node ids, found none");
  return ids;
}

}  // namespace

void take_deck_coordinates(Mesh& mesh, const std::string& results, const Deck& deck) {
  check_elements(mesh, results, deck);
  const double tolerance = rounding * largest_coordinate(mesh);
  for (std::size_t i = 0; i < mesh.node_ids.size(); ++i) {
    const int place = deck.node_index.find(mesh.node_ids[i]);
    if (place < 0) continue;
    const Point& exact = deck.points[static_cast<std::size_t>(place)];
    for (std::size_t k = 0; k < 3; ++k) {
      if (std::fabs(exact[k] - mesh.points[i][k]) <= tolerance) continue;
      throw InputError(results, mesh.first_node_line + static_cast<long>(i),
                       "expected node " + std::to_string(mesh.node_ids[i]) + " at its place in the deck " +
                           deck.path + ", found it elsewhere: the deck does not belong to these results");
    }
    mesh.points[i] = exact;
  }
}

std::vector<double> element_densities(const Mesh& mesh, const std::string& results, const Deck& deck,
                                      std::optional<double> density) {
  const std::vector<int> sections = sections_of_elements(mesh, deck);
  std::vector<double> densities;
  for (std::size_t e = 0; e < mesh.elements.size(); ++e) {
    const Element& element = mesh.elements[e];
    const Section* section =
        sections[e] < 0 ? nullptr : &deck.sections[static_cast<std::size_t>(sections[e])];
    if (section == nullptr && !density) {
      throw InputError(results, element.line,
                       "expected a section with a material for element " + std::to_string(element.id) +
                           " in the deck, or the option --density, found none");
    }
    const double by_volume = density ? *density : density_of(deck, *section);
    densities.push_back(element.type->dimension == 3 ? by_volume
                                                     : by_volume * size_of(element, results, section));
  }
  return densities;
}

void add_point_masses(const Deck& deck, const FrdContents& contents, std::vector<double>& masses) {
  if (deck.mass_elements.empty()) return;
  for (const auto& [set_name, mass] : deck.point_masses) {
    const auto set = deck.element_sets.find(set_name);
    if (set == deck.element_sets.end()) continue;
    const std::vector<int> ids = expand(set->second, deck.element_ids, deck.element_index);
    for (const auto& [element, node] : deck.mass_elements) {
      if (!std::binary_search(ids.begin(), ids.end(), element)) continue;
      const int place = contents.node_index.find(node);
      if (place < 0) {
        throw InputError(deck.path, 0,
                         "expected the mass element " + std::to_string(element) +
                             " at a node of the results, found it at node " + std::to_string(node));
      }
      masses[static_cast<std::size_t>(place)] += mass;
    }
  }
}

std::vector<int> named_node_ids(const char* purpose, const std::string& set_or_file, const Deck& deck,
                                const FrdContents& contents, const std::string& results) {
  const auto set = deck.node_sets.find(in_capitals(set_or_file));
  if (set == deck.node_sets.end()) {
    std::error_code error;
    if (std::filesystem::exists(set_or_file, error)) return ids_of_file(set_or_file, contents);
    throw InputError(deck.path, 0,
                     std::string("expected a node set of the deck or a file for the ") + purpose +
                         ", found neither of the name " + quote(set_or_file) + " (sets: " + known_sets(deck) +
                         ")");
  }
  std::vector<int> ids = expand(set->second, deck.node_ids, deck.node_index);
  if (ids.empty()) throw InputError(deck.path, 0, "expected nodes in the set " + set->first + ", found none");
  for (const int id : ids) {
    if (contents.node_index.find(id) < 0) {
      throw InputError(results, 0,
                       "expected node " + std::to_string(id) + " of the set " + set->first +
                           " among the results; for shells and beams ask for OUTPUT=2D in the deck");
    }
  }
  return ids;
}

}  // namespace calculix
