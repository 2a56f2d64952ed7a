// The largest value of a measure over the nodes of a mode vector.
#ifndef FMDTOOLKIT_DBMODAL_DBDATA_MODE_PEAKS_H
#define FMDTOOLKIT_DBMODAL_DBDATA_MODE_PEAKS_H

namespace fmd {

struct Peak {
  int place = -1;      // the first node that has the largest value; -1 where none is above zero
  double value = 0.0;  // the value itself
};

// Length of the three components of each node.
Peak largest_length(const double* vectors, int nodes);

// Von Mises value of tensors given as three normal and three shear components per node. The second takes
// shear components as engineering strains.
Peak largest_von_mises_stress(const double* normal, const double* shear, int nodes);
Peak largest_von_mises_strain(const double* normal, const double* shear, int nodes);

}  // namespace fmd

#endif
