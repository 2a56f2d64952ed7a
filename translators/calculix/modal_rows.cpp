#include "calculix/modal_rows.h"

#include <algorithm>

namespace calculix {

ModalRows::ModalRows(const Model& model) : model_(model) {
  const std::size_t modes = model.contents.modes.size();
  displacements_.assign(model.monitor_nodes.size(), std::vector<double>(3 * modes, 0.0));
  loads_.assign(model.load_cases.size(), std::vector<double>(modes, 0.0));
}

void ModalRows::take(const ModeVector& vector) {
  if (vector.quantity != Quantity::displacement || (displacements_.empty() && loads_.empty())) return;
  places_.assign(model_.contents.mesh.node_ids.size(), -1);
  for (std::size_t i = 0; i < vector.nodes.size(); ++i) {
    places_[static_cast<std::size_t>(vector.nodes[i])] = static_cast<int>(i);
  }
  const std::size_t modes = model_.contents.modes.size();
  const auto mode = static_cast<std::size_t>(vector.mode - model_.contents.modes.data());
  for (std::size_t i = 0; i < displacements_.size(); ++i) {
    const double* values = values_at(vector, model_.monitor_nodes[i].node);
    for (std::size_t k = 0; k < 3; ++k) displacements_[i][k * modes + mode] = values[k];
  }
  for (std::size_t c = 0; c < loads_.size(); ++c) {
    double sum = 0.0;
    for (const NodalLoad& load : model_.load_cases[c].loads) {
      sum += values_at(vector, load.node)[load.direction - 1] * load.value;
    }
    loads_[c][mode] = sum;
  }
}

const double* ModalRows::values_at(const ModeVector& vector, int node) const {
  static constexpr double at_rest[6] = {};
  const int place = places_[static_cast<std::size_t>(node)];
  return place < 0 ? at_rest : vector.values.data() + 6 * static_cast<std::size_t>(place);
}

std::string monitor_name(int id) {
  const std::string digits = std::to_string(id);
  return "N" + digits.substr(digits.size() - std::min<std::size_t>(digits.size(), 7));
}

}  // namespace calculix
