#include "calculix/deck_reader.h"

#include <algorithm>
#include <cctype>
#include <cmath>

#include "calculix/deck_lines.h"
#include "calculix/deck_steps.h"
#include "calculix/input_error.h"
#include "calculix/number_text.h"

namespace calculix {

namespace {

constexpr double pi = 3.14159265358979323846;

// How many nodes an element of the deck has; 0 for a type that is not known.
int nodes_of_label(const std::string& label) {
  struct Row {
    const char* beginning;
    int nodes;
  };
  // Longer beginnings first: C3D20R is no C3D2.
  static constexpr Row rows[] = {
      {"C3D10", 10},  {"C3D15", 15},  {"C3D20", 20}, {"C3D4", 4}, {"C3D6", 6}, {"C3D8", 8},    {"S3", 3},
      {"S4", 4},      {"S6", 6},      {"S8", 8},     {"M3D3", 3}, {"M3D4", 4}, {"M3D6", 6},    {"M3D8", 8},
      {"CPS3", 3},    {"CPS4", 4},    {"CPS6", 6},   {"CPS8", 8}, {"CPE3", 3}, {"CPE4", 4},    {"CPE6", 6},
      {"CPE8", 8},    {"CAX3", 3},    {"CAX4", 4},   {"CAX6", 6}, {"CAX8", 8}, {"B31", 2},     {"B32", 3},
      {"B21", 2},     {"T2D2", 2},    {"T3D2", 2},   {"T3D3", 3}, {"MASS", 1}, {"SPRING1", 1}, {"SPRING2", 2},
      {"SPRINGA", 2}, {"DASHPOTA", 2}};
  for (const Row& row : rows) {
    if (label.rfind(row.beginning, 0) == 0) return row.nodes;
  }
  return 0;
}

class DeckReader {
 public:
  explicit DeckReader(const std::string& path) : lines_(path) { deck_.path = path; }

  Deck read();

 private:
  using Handler = void (DeckReader::*)();
  struct Origin {
    std::size_t file;
    long line;
  };

  void begin_keyword();
  void begin_elements();
  void begin_set(const char* parameter, std::map<std::string, IdSet>& sets);
  void begin_section(SectionKind kind);
  void begin_material();
  void begin_mass();

  void node_line();
  void element_line();
  void set_line();
  void heading_line();
  void density_line();
  void section_line();
  void mass_line();
  void load_line() { steps_.load_line(); }

  void add_to_set(std::map<std::string, IdSet>& sets, const std::string& name, int id);
  std::optional<double> beam_area(Section& section) const;
  void check_repeated_ids() const;
  Origin origin();

  DeckLines lines_;
  Deck deck_;
  StepReader steps_{lines_, deck_};
  Handler data_line_ = nullptr;  // takes the data lines of the current keyword
  bool first_data_line_ = true;
  std::string set_name_;
  std::map<std::string, IdSet>* sets_ = nullptr;
  std::string material_;
  std::vector<std::string> files_;
  std::vector<Origin> node_origins_;
  std::vector<Origin> element_origins_;
  int label_ = 0;
  int nodes_of_element_ = 0;
  int nodes_missing_ = 0;  // of the element that the last line began
  bool element_continues_ = false;
};

void DeckReader::add_to_set(std::map<std::string, IdSet>& sets, const std::string& name, int id) {
  if (!name.empty()) sets[name].push_back({id, id, 1});
}

void DeckReader::node_line() {
  const int id = lines_.int_field(0, "a node id");
  if (id < 1) lines_.fail("expected a node id above 0, found " + std::to_string(id));
  Point point{};
  for (std::size_t k = 0; k < 3; ++k) {
    const bool given = k + 1 < lines_.fields().size() && !lines_.fields()[k + 1].empty();
    if (given) point[k] = lines_.real_field(k + 1, "a coordinate");
  }
  deck_.node_ids.push_back(id);
  deck_.points.push_back(point);
  node_origins_.push_back(origin());
  add_to_set(deck_.node_sets, set_name_, id);
}

void DeckReader::begin_elements() {
  const std::string label = lines_.needed("TYPE");
  set_name_ = lines_.keyword().value("ELSET");
  const auto found = std::find(deck_.labels.begin(), deck_.labels.end(), label);
  label_ = static_cast<int>(found - deck_.labels.begin());
  if (found == deck_.labels.end()) deck_.labels.push_back(label);
  nodes_of_element_ = nodes_of_label(label);
  nodes_missing_ = 0;
  element_continues_ = false;
}

// An element goes on in the next line until it has its nodes, or, where the type is not known, while its
// lines end with a comma. Its nodes are looked at where there is no result file.
void DeckReader::element_line() {
  int on_line = static_cast<int>(lines_.fields().size());
  if (!element_continues_) {
    const int id = lines_.int_field(0, "an element id");
    if (id < 1) lines_.fail("expected an element id above 0, found " + std::to_string(id));
    deck_.element_ids.push_back(id);
    deck_.element_labels.push_back(label_);
    element_origins_.push_back(origin());
    deck_.element_starts.push_back(deck_.element_nodes.size());
    add_to_set(deck_.element_sets, set_name_, id);
    if (deck_.labels[static_cast<std::size_t>(label_)] == "MASS") {
      deck_.mass_elements.emplace_back(id, lines_.int_field(1, "a node id"));
    }
    nodes_missing_ = nodes_of_element_;
    --on_line;
  }
  for (std::size_t i = lines_.fields().size() - static_cast<std::size_t>(on_line); i < lines_.fields().size();
       ++i) {
    int node = 0;
    deck_.element_nodes.push_back(parse_int(lines_.fields()[i], node) ? node : 0);
  }
  nodes_missing_ -= on_line;
  if (nodes_of_element_ > 0 && nodes_missing_ < 0) {
    lines_.fail("expected " + std::to_string(nodes_of_element_) + " nodes of element " +
                std::to_string(deck_.element_ids.back()) + ", found more");
  }
  element_continues_ = nodes_of_element_ > 0 ? nodes_missing_ > 0 : lines_.ends_with_comma();
}

void DeckReader::begin_set(const char* parameter, std::map<std::string, IdSet>& sets) {
  set_name_ = lines_.needed(parameter);
  sets_ = &sets;
  sets[set_name_];
}

// Ids, names of sets defined before, or "first, last, step".
void DeckReader::set_line() {
  IdSet& set = (*sets_)[set_name_];
  if (lines_.keyword().has("GENERATE")) {
    IdRange range{lines_.int_field(0, "the first id"), 0, 1};
    range.last = lines_.fields().size() > 1 ? lines_.int_field(1, "the last id") : range.first;
    if (lines_.fields().size() > 2) range.step = lines_.int_field(2, "an increment");
    if (range.last < range.first || range.step < 1) {
      lines_.fail("expected first, last and increment of a range, found " + quote(lines_.text()));
    }
    set.push_back(range);
    return;
  }
  for (std::size_t i = 0; i < lines_.fields().size(); ++i) {
    const std::string_view field = lines_.fields()[i];
    if (field.empty()) continue;
    if (std::isdigit(static_cast<unsigned char>(field.front())) != 0) {
      const int id = lines_.int_field(i, "an id or the name of a set");
      set.push_back({id, id, 1});
      continue;
    }
    const auto other = sets_->find(in_capitals(field));
    if (other == sets_->end()) {
      lines_.fail("expected an id or the name of a set defined before, found " + quote(field));
    }
    const IdSet copy = other->second;  // a set may name itself
    set.insert(set.end(), copy.begin(), copy.end());
  }
}

void DeckReader::heading_line() {
  if (deck_.title.empty()) deck_.title = lines_.text();
}

void DeckReader::begin_material() {
  material_ = lines_.needed("NAME");
  deck_.materials[material_];
}

// The first line; further ones are for other temperatures.
void DeckReader::density_line() {
  if (!first_data_line_) return;
  if (material_.empty()) lines_.fail("expected *MATERIAL before *DENSITY");
  const double density = lines_.real_field(0, "a density");
  if (!(density > 0.0)) lines_.fail("expected a density above 0, found " + quote(lines_.text()));
  deck_.materials[material_].density = density;
}

void DeckReader::begin_section(SectionKind kind) {
  Section section{kind,          lines_.needed("ELSET"), lines_.keyword().value("MATERIAL"), {}, "",
                  lines_.file(), lines_.line_number()};
  if (lines_.keyword().has("COMPOSITE"))
    lines_.fail("expected a shell of one layer, found a composite section");
  if (lines_.keyword().has("NODALTHICKNESS"))
    section.why_no_size = "has its thickness at the nodes, which is not read";
  deck_.sections.push_back(section);
}

std::optional<double> DeckReader::beam_area(Section& section) const {
  const std::string shape = lines_.keyword().value("SECTION");
  if (shape != "RECT" && shape != "CIRC" && shape != "PIPE") {
    section.why_no_size = "has the shape " + shape + ", of which RECT, CIRC and PIPE are read";
    return {};
  }
  const double a = lines_.real_field(0, "a size of the cross section");
  const double b = lines_.real_field(1, "a size of the cross section");
  if (shape == "RECT") return a * b;
  if (shape == "CIRC") return pi / 4.0 * a * b;
  return pi * b * (2.0 * a - b);  // outer radius and wall thickness
}

void DeckReader::section_line() {
  if (!first_data_line_) return;
  Section& section = deck_.sections.back();
  if (section.kind == SectionKind::beam) {
    section.size = beam_area(section);
  } else if (section.why_no_size.empty() && !lines_.fields()[0].empty()) {
    section.size = lines_.real_field(0, "a thickness");
  }
  if (section.size && !(*section.size > 0.0)) {
    lines_.fail("expected a thickness or area above 0, found " + quote(lines_.text()));
  }
}

void DeckReader::begin_mass() {
  set_name_ = lines_.needed("ELSET");
}

void DeckReader::mass_line() {
  if (first_data_line_) deck_.point_masses[set_name_] = lines_.real_field(0, "a mass");
}

void DeckReader::begin_keyword() {
  const std::string& name = lines_.keyword().name;
  data_line_ = nullptr;
  first_data_line_ = true;
  if (name == "NODE") {
    set_name_ = lines_.keyword().value("NSET");
    data_line_ = &DeckReader::node_line;
  } else if (name == "ELEMENT") {
    begin_elements();
    data_line_ = &DeckReader::element_line;
  } else if (name == "NSET" && !lines_.keyword().has("ELSET")) {
    begin_set("NSET", deck_.node_sets);
    data_line_ = &DeckReader::set_line;
  } else if (name == "ELSET") {
    begin_set("ELSET", deck_.element_sets);
    data_line_ = &DeckReader::set_line;
  } else if (name == "HEADING") {
    data_line_ = &DeckReader::heading_line;
  } else if (name == "MATERIAL") {
    begin_material();
  } else if (name == "DENSITY") {
    data_line_ = &DeckReader::density_line;
  } else if (name == "SOLIDSECTION" || name == "SHELLSECTION" || name == "MEMBRANESECTION" ||
             name == "BEAMSECTION") {
    begin_section(name == "SOLIDSECTION" ? SectionKind::solid
                                         : (name == "BEAMSECTION" ? SectionKind::beam : SectionKind::shell));
    data_line_ = &DeckReader::section_line;
  } else if (name == "MASS") {
    begin_mass();
    data_line_ = &DeckReader::mass_line;
  } else if (steps_.begin_keyword()) {
    data_line_ = &DeckReader::load_line;
  }
}

Deck DeckReader::read() {
  for (DeckLine kind = lines_.next(); kind != DeckLine::end; kind = lines_.next()) {
    if (kind == DeckLine::keyword) {
      if (element_continues_ && nodes_missing_ > 0) {
        lines_.fail("expected the other nodes of element " + std::to_string(deck_.element_ids.back()));
      }
      element_continues_ = false;
      begin_keyword();
    } else {
      if (data_line_ != nullptr) (this->*data_line_)();
      first_data_line_ = false;
    }
  }
  if (element_continues_ && nodes_missing_ > 0) {
    lines_.fail("expected the other nodes of element " + std::to_string(deck_.element_ids.back()));
  }
  steps_.end();
  deck_.node_index = IdIndex(deck_.node_ids);
  deck_.element_index = IdIndex(deck_.element_ids);
  check_repeated_ids();
  return std::move(deck_);
}

// A node may be given again at the same place, as decks put together from pieces do.
void DeckReader::check_repeated_ids() const {
  for (std::size_t i = 0; i < deck_.node_ids.size(); ++i) {
    const auto first = static_cast<std::size_t>(deck_.node_index.find(deck_.node_ids[i]));
    if (deck_.points[first] == deck_.points[i]) continue;
    throw InputError(files_[node_origins_[i].file], node_origins_[i].line,
                     "expected each node at one place, found node " + std::to_string(deck_.node_ids[i]) +
                         " again at another");
  }
  const int again = deck_.element_index.duplicate();
  if (again < 0) return;
  const Origin& origin = element_origins_[static_cast<std::size_t>(again)];
  throw InputError(files_[origin.file], origin.line,
                   "expected each element once, found element " +
                       std::to_string(deck_.element_ids[static_cast<std::size_t>(again)]) + " again");
}

// Where the line stands that has just been read.
DeckReader::Origin DeckReader::origin() {
  if (files_.empty() || files_.back() != lines_.file()) files_.push_back(lines_.file());
  return {files_.size() - 1, lines_.line_number()};
}

}  // namespace

Deck read_deck(const std::string& path) {
  return DeckReader(path).read();
}

std::vector<int> expand(const IdSet& set, const std::vector<int>& all_ids, const IdIndex& index) {
  std::vector<int> ids;
  for (const IdRange& range : set) {
    if (range.first == range.last) {
      ids.push_back(range.first);
      continue;
    }
    const auto in_range = [&](long id) {
      return id >= range.first && id <= range.last && (id - range.first) % range.step == 0;
    };
    if ((static_cast<long>(range.last) - range.first) / range.step > static_cast<long>(all_ids.size())) {
      std::copy_if(all_ids.begin(), all_ids.end(), std::back_inserter(ids), in_range);
      continue;
    }
    for (long id = range.first; id <= range.last; id += range.step) {
      if (index.find(static_cast<int>(id)) >= 0) ids.push_back(static_cast<int>(id));
    }
  }
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
  return ids;
}

}  // namespace calculix
