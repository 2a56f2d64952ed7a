// What is gathered from the mode shapes while they are read: the rows of displacement operators and the modal
// loads. With the mode shapes as columns of P they are rows of P, and the transpose of P times the forces.
#ifndef FMDTOOLKIT_CALCULIX_MODAL_ROWS_H
#define FMDTOOLKIT_CALCULIX_MODAL_ROWS_H

#include <string>
#include <vector>

#include "calculix/translate.h"

namespace calculix {

class ModalRows {
 public:
  explicit ModalRows(const Model& model);

  // Uses displacements and leaves the rest.
  void take(const ModeVector& vector);

  // Three rows of as many numbers as there are modes, for a monitor node by its index.
  double* displacements(std::size_t monitor_node) { return displacements_[monitor_node].data(); }
  double load(std::size_t load_case, std::size_t mode) const { return loads_[load_case][mode]; }

 private:
  const double* values_at(const ModeVector& vector, int node) const;

  const Model& model_;
  std::vector<int> places_;  // of the nodes in the vector at hand, -1 where it has none
  std::vector<std::vector<double>> displacements_;
  std::vector<std::vector<double>> loads_;
};

// "N" and the id; of an id of more than seven digits the last seven, since a name has eight characters.
std::string monitor_name(int id);

}  // namespace calculix

#endif
