#include "calculix/frd_reader.h"

#include <algorithm>

#include "calculix/frd_stream.h"
#include "calculix/input_error.h"
#include "calculix/number_text.h"

namespace calculix {

namespace {

constexpr int nodes_in_a_line = 10;
constexpr long lines_between_reports = 20000;

struct NamedQuantity {
  Quantity quantity;
  const char* dataset;
  std::vector<const char*> components;  // as they are stored
  std::vector<std::size_t> places;      // where they go
};

const std::vector<NamedQuantity>& quantities() {
  static const std::vector<NamedQuantity> all = {
      {Quantity::displacement, "DISP", {"D1", "D2", "D3"}, {0, 1, 2}},
      {Quantity::stress, "STRESS", {"SXX", "SYY", "SZZ", "SXY", "SYZ", "SZX"}, {0, 1, 2, 3, 5, 4}}};
  return all;
}

const NamedQuantity* find_quantity(const std::string& dataset) {
  for (const NamedQuantity& quantity : quantities()) {
    if (dataset == quantity.dataset) return &quantity;
  }
  return nullptr;
}

[[noreturn]] void fail_at_head(const FrdStream& stream, const std::string& text) {
  throw InputError(stream.lines().path(), stream.result().line, text);
}

// Reports now and then while records pass.
class Reporter {
 public:
  Reporter(const FrdStream& stream, const FractionHandler& progress) : stream_(stream), progress_(progress) {}
  void tick() {
    if (++count_ % lines_between_reports == 0 && progress_) progress_(stream_.lines().fraction());
  }

 private:
  const FrdStream& stream_;
  const FractionHandler& progress_;
  long count_ = 0;
};

void read_nodes(FrdStream& stream, FrdContents& contents, Reporter& reporter) {
  Mesh& mesh = contents.mesh;
  if (!mesh.node_ids.empty()) stream.fail("expected one block of nodes, found a second one");
  mesh.first_node_line = stream.lines().line_number() + 1;
  std::string_view record;
  while (stream.next_record(record)) {
    reporter.tick();
    if (record[2] != '1') stream.fail("expected a node, a record -1, found " + quote(record));
    const int id = stream.int_field(record, 4, 13, "a node id");
    if (id < 1) stream.fail("expected a node id above 0, found " + std::to_string(id));
    Point point{};
    stream.read_reals(record, point.data(), 3);
    mesh.node_ids.push_back(id);
    mesh.points.push_back(point);
  }
  contents.node_index = IdIndex(mesh.node_ids);
  const int again = contents.node_index.duplicate();
  if (again < 0) return;
  throw InputError(stream.lines().path(), mesh.first_node_line + again,
                   "expected each node once, found node " +
                       std::to_string(mesh.node_ids[static_cast<std::size_t>(again)]) + " again");
}

// Node ids of one element over its records -2, brought to the deck's order.
void read_element_nodes(FrdStream& stream, const FrdContents& contents, const Element& element, int* nodes) {
  std::string_view record;
  for (int i = 0; i < element.type->nodes; ++i) {
    if (i % nodes_in_a_line == 0) {
      if (!stream.next_record(record) || record[2] != '2') {
        stream.fail("expected " + std::to_string(element.type->nodes) + " nodes of element " +
                    std::to_string(element.id) + ", found " + std::to_string(i));
      }
    }
    const auto first = static_cast<std::size_t>(4 + 10 * (i % nodes_in_a_line));
    const int id = stream.int_field(record, first, first + 9, "a node id");
    const int node = contents.node_index.find(id);
    if (node < 0) {
      stream.fail("expected a node of the node block in element " + std::to_string(element.id) +
                  ", found unknown node " + std::to_string(id));
    }
    nodes[element.type->place_in_deck == nullptr ? i : element.type->place_in_deck[i]] = node;
  }
  const auto end = static_cast<std::size_t>(4 + 10 * ((element.type->nodes - 1) % nodes_in_a_line + 1));
  if (!trimmed(columns(record, end, record.size())).empty()) {
    stream.fail("expected " + std::to_string(element.type->nodes) + " nodes of element " +
                std::to_string(element.id) + ", found more");
  }
}

void read_elements(FrdStream& stream, FrdContents& contents, Reporter& reporter) {
  Mesh& mesh = contents.mesh;
  if (mesh.node_ids.empty()) stream.fail("expected the block of nodes (2C) before that of elements");
  if (!mesh.elements.empty()) stream.fail("expected one block of elements, found a second one");
  std::vector<int> ids;
  std::string_view record;
  while (stream.next_record(record)) {
    reporter.tick();
    if (record[2] != '1') stream.fail("expected an element, a record -1, found " + quote(record));
    Element element{stream.int_field(record, 4, 13, "an element id"), nullptr, mesh.element_nodes.size(),
                    stream.lines().line_number()};
    const int code = stream.int_field(record, 14, 18, "an element type code");
    element.type = element_type(code);
    if (element.type == nullptr) {
      stream.fail("expected an element type code from 1 to 12, found " + std::to_string(code));
    }
    mesh.element_nodes.resize(element.first + static_cast<std::size_t>(element.type->nodes));
    read_element_nodes(stream, contents, element, mesh.element_nodes.data() + element.first);
    ids.push_back(element.id);
    mesh.elements.push_back(element);
  }
  const int again = IdIndex(ids).duplicate();
  if (again < 0) return;
  const Element& element = mesh.elements[static_cast<std::size_t>(again)];
  throw InputError(stream.lines().path(), element.line,
                   "expected each element once, found element " + std::to_string(element.id) + " again");
}

Mode& mode_of(FrdStream& stream, std::vector<Mode>& modes) {
  const ResultHead& head = stream.result();
  if (head.mode < 1)
    fail_at_head(stream, "expected a mode number above 0, found " + std::to_string(head.mode));
  if (head.hertz < 0.0) fail_at_head(stream, "expected a frequency of at least 0");
  for (auto mode = modes.rbegin(); mode != modes.rend(); ++mode) {
    if (mode->number != head.mode) continue;
    if (mode->hertz != head.hertz) {
      fail_at_head(stream, "expected the frequency of mode " + std::to_string(head.mode) +
                               " as in its dataset before, found another");
    }
    return *mode;
  }
  modes.push_back({head.mode, head.hertz, head.line});
  return modes.back();
}

void check_components(const FrdStream& stream, const NamedQuantity& quantity) {
  const std::vector<std::string>& found = stream.result().components;
  if (std::equal(found.begin(), found.end(), quantity.components.begin(), quantity.components.end())) return;
  std::string names;
  for (const char* name : quantity.components) names += std::string(names.empty() ? "" : " ") + name;
  fail_at_head(stream, "expected the components " + names + " in the dataset " + quantity.dataset);
}

// First pass over a dataset: which mode it belongs to; the values are only counted.
void note_dataset(FrdStream& stream, FrdContents& contents, Reporter& reporter) {
  const ResultHead& head = stream.result();
  if (head.analysis == frequency_analysis) {
    Mode& mode = mode_of(stream, contents.modes);
    if (const NamedQuantity* quantity = find_quantity(head.name)) {
      check_components(stream, *quantity);
      bool& has = quantity->quantity == Quantity::displacement ? mode.has_displacement : mode.has_stress;
      if (has) {
        fail_at_head(stream, "expected one dataset " + head.name + " of mode " + std::to_string(mode.number) +
                                 ", found a second one");
      }
      has = true;
      const int nodes = static_cast<int>(contents.mesh.node_ids.size());
      if (quantity->quantity == Quantity::displacement && stream.declared_count() != nodes) {
        fail_at_head(stream, "expected displacements of all " + std::to_string(nodes) + " nodes, found " +
                                 std::to_string(stream.declared_count()));
      }
    }
  } else {
    if (contents.skipped_datasets == 0) contents.first_skipped_line = head.line;
    ++contents.skipped_datasets;
  }
  std::string_view record;
  while (stream.next_record(record)) reporter.tick();
}

void check_modes(const FrdStream& stream, const FrdContents& contents) {
  const std::string& path = stream.lines().path();
  if (contents.mesh.node_ids.empty()) throw InputError(path, 0, "expected a block of nodes (2C), found none");
  if (contents.mesh.elements.empty())
    throw InputError(path, 0, "expected a block of elements (3C), found none");
  if (contents.modes.empty()) {
    throw InputError(path, contents.first_skipped_line,
                     contents.skipped_datasets == 0
                         ? "expected datasets of a frequency analysis, found none"
                         : "expected datasets of a frequency analysis (type 2), found only other ones");
  }
  const auto stressed = std::find_if(contents.modes.begin(), contents.modes.end(),
                                     [](const Mode& mode) { return mode.has_stress; });
  for (const Mode& mode : contents.modes) {
    if (!mode.has_displacement) {
      throw InputError(path, mode.line,
                       "expected displacements, a dataset DISP, of mode " + std::to_string(mode.number));
    }
    if (!mode.has_stress && stressed != contents.modes.end()) {
      throw InputError(path, mode.line,
                       "expected a dataset STRESS of mode " + std::to_string(mode.number) + " as of mode " +
                           std::to_string(stressed->number));
    }
  }
}

// Second pass: the values of one dataset.
void read_vector(FrdStream& stream, const FrdContents& contents, const NamedQuantity& quantity,
                 ModeVector& vector, Reporter& reporter) {
  vector.quantity = quantity.quantity;
  vector.nodes.clear();
  vector.values.clear();
  std::vector<bool> seen(contents.mesh.node_ids.size(), false);
  const int count = static_cast<int>(quantity.components.size());
  std::string_view record;
  while (stream.next_record(record)) {
    reporter.tick();
    if (record[2] != '1') stream.fail("expected the values of a node, a record -1, found " + quote(record));
    const int id = stream.int_field(record, 4, 13, "a node id");
    const int node = contents.node_index.find(id);
    if (node < 0) stream.fail("expected a node of the node block, found unknown node " + std::to_string(id));
    if (seen[static_cast<std::size_t>(node)]) {
      stream.fail("expected each node once in the dataset, found node " + std::to_string(id) + " again");
    }
    seen[static_cast<std::size_t>(node)] = true;
    double stored[6];
    stream.read_reals(record, stored, count);
    const std::size_t at = vector.values.size();
    vector.nodes.push_back(node);
    vector.values.resize(at + 6, 0.0);
    for (std::size_t i = 0; i < quantity.components.size(); ++i) {
      vector.values[at + quantity.places[i]] = stored[i];
    }
  }
}

}  // namespace

FrdContents read_frd(const std::string& path, const FractionHandler& progress) {
  FrdStream stream(path);
  FrdContents contents;
  Reporter reporter(stream, progress);
  for (;;) {
    const FrdBlock block = stream.next_block();
    if (block == FrdBlock::end) break;
    if (block == FrdBlock::nodes) {
      read_nodes(stream, contents, reporter);
    } else if (block == FrdBlock::elements) {
      read_elements(stream, contents, reporter);
    } else {
      note_dataset(stream, contents, reporter);
    }
  }
  contents.title = stream.title();
  contents.program = stream.program();
  check_modes(stream, contents);
  return contents;
}

void read_mode_vectors(const std::string& path, const FrdContents& contents,
                       const std::function<void(const ModeVector&)>& receive,
                       const FractionHandler& progress) {
  FrdStream stream(path);
  Reporter reporter(stream, progress);
  ModeVector vector;
  for (;;) {
    const FrdBlock block = stream.next_block();
    if (block == FrdBlock::end) return;
    const NamedQuantity* quantity = nullptr;
    if (block == FrdBlock::result && stream.result().analysis == frequency_analysis) {
      quantity = find_quantity(stream.result().name);
      vector.mode = nullptr;
      for (const Mode& mode : contents.modes) {
        if (mode.number == stream.result().mode) vector.mode = &mode;
      }
    }
    if (quantity != nullptr && vector.mode != nullptr) {
      read_vector(stream, contents, *quantity, vector, reporter);
      receive(vector);
    } else {
      std::string_view record;
      while (stream.next_record(record)) reporter.tick();
    }
  }
}

}  // namespace calculix
