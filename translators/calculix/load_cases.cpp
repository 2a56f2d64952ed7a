#include "calculix/load_cases.h"

#include <algorithm>
#include <cmath>
#include <map>

#include "calculix/input_error.h"

namespace calculix {

namespace {

// A load that acts at a node in a direction, and the line that gave it last.
struct ActingLoad {
  int id;
  int direction;
  double value;
  std::size_t step;
  const LoadLine* origin;
};

class ActingLoads {
 public:
  ActingLoads(const Deck& deck, const FrdContents& contents) : deck_(deck), contents_(contents) {
    for (const std::string& name : deck.turned_sets) {
      const auto set = deck.node_sets.find(name);
      if (set == deck.node_sets.end()) continue;
      const std::vector<int> ids = expand(set->second, deck.node_ids, deck.node_index);
      turned_ids_.insert(turned_ids_.end(), ids.begin(), ids.end());
    }
    std::sort(turned_ids_.begin(), turned_ids_.end());
  }

  void begin_step(std::size_t step) {
    step_ = step;
    if (!deck_.steps[step].drops_loads) return;
    loads_.clear();
    places_.clear();
  }

  void add(const LoadLine& line) {
    if (line.set.empty()) {
      add(line, line.node);
      return;
    }
    const auto set = deck_.node_sets.find(line.set);
    if (set == deck_.node_sets.end())
      fail(line, "expected a node set of the deck, found unknown set " + line.set);
    for (const int id : expand(set->second, deck_.node_ids, deck_.node_index)) add(line, id);
  }

  std::vector<NodalLoad> at_nodes_of_results() const {
    std::vector<NodalLoad> loads;
    for (const ActingLoad& load : loads_) {
      if (load.value != 0.0) loads.push_back({node_of(load), load.direction, load.value});
    }
    return loads;
  }

  // The line of a moment, or null.
  const LoadLine* moment() const {
    const auto found = std::find_if(loads_.begin(), loads_.end(), [](const ActingLoad& load) {
      return load.direction > 3 && load.value != 0.0;
    });
    return found == loads_.end() ? nullptr : found->origin;
  }

 private:
  [[noreturn]] static void fail(const LoadLine& line, const std::string& text) {
    throw InputError(line.file, line.line, text);
  }

  void add(const LoadLine& line, int id) {
    const auto [place, is_new] = places_.try_emplace({id, line.direction}, loads_.size());
    if (is_new) loads_.push_back({id, line.direction, 0.0, step_, &line});
    ActingLoad& load = loads_[place->second];
    load.value = (load.step == step_ ? load.value : 0.0) + line.magnitude;
    if (!std::isfinite(load.value)) fail(line, "expected loads that add up to a finite number");
    load.step = step_;
    load.origin = &line;
  }

  int node_of(const ActingLoad& load) const {
    const std::string id = std::to_string(load.id);
    if (deck_.node_index.find(load.id) < 0) {
      fail(*load.origin, "expected a node of the deck, found unknown node " + id);
    }
    if (std::binary_search(turned_ids_.begin(), turned_ids_.end(), load.id)) {
      fail(*load.origin,
           "expected a load along the global axes, found node " + id + " in a set of *TRANSFORM");
    }
    const int node = contents_.node_index.find(load.id);
    if (node < 0)
      fail(*load.origin, "expected a node of the results, found node " + id + " of the deck only");
    return node;
  }

  const Deck& deck_;
  const FrdContents& contents_;
  std::vector<int> turned_ids_;
  std::vector<ActingLoad> loads_;
  std::map<std::pair<int, int>, std::size_t> places_;  // by node id and direction
  std::size_t step_ = 0;
};

std::string label_of(std::size_t step, const std::string& name) {
  const std::string number = "Step " + std::to_string(step + 1);
  return name.empty() ? number : number + ": " + name.substr(0, 200);
}

}  // namespace

std::vector<LoadCase> load_cases_of(const Deck& deck, const FrdContents& contents,
                                    std::vector<InputError>& notes) {
  std::vector<LoadCase> cases;
  ActingLoads acting(deck, contents);
  for (std::size_t s = 0; s < deck.steps.size(); ++s) {
    const Step& step = deck.steps[s];
    acting.begin_step(s);
    for (const LoadLine& line : step.loads) acting.add(line);
    if (!step.is_static) continue;
    notes.insert(notes.end(), step.left_out.begin(), step.left_out.end());
    LoadCase load_case{label_of(s, step.name), acting.at_nodes_of_results()};
    if (load_case.loads.empty()) continue;
    if (const LoadLine* line = acting.moment()) {
      notes.emplace_back(line->file, line->line,
                         "moments have no part in the modal loads: the results have no rotations");
    }
    cases.push_back(std::move(load_case));
  }
  return cases;
}

}  // namespace calculix
