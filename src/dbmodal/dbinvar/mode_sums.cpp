#include "dbmodal/dbinvar/mode_sums.h"

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// out += J v, column by column of the symmetric tensor held as xx yy zz xy xz yz
void add_product(const double* inertia, const double* v, double* out) {
  const double columns[3][3] = {{inertia[0], inertia[3], inertia[4]},
                                {inertia[3], inertia[1], inertia[5]},
                                {inertia[4], inertia[5], inertia[2]}};
  for (int row = 0; row < 3; ++row)
    out[row] += columns[0][row] * v[0] + columns[1][row] * v[1] + columns[2][row] * v[2];
}

}  // namespace

void add_momentum(const FmdNode* nodes, int count, const double* translations, double* sum) {
  for (int node = 0; node < count; ++node, translations += 3)
    for (int k = 0; k < 3; ++k) sum[k] += nodes[node].Mass * translations[k];
}

void add_moment_of_momentum(FmdNode* nodes, int count, double* translations, double* sum) {
  for (int node = 0; node < count; ++node, translations += 3)
    incr_scalar_tilde_vec(sum, nodes[node].Mass, nodes[node].Coordinates, translations);
}

void add_spin(const FmdNode* nodes, int count, const double* rotations, double* sum) {
  for (int node = 0; node < count; ++node, rotations += 3)
    if (nodes[node].Inertia != nullptr) add_product(nodes[node].Inertia, rotations, sum);
}

void add_moment_tensor(FmdNode* nodes, int count, double* translations, double* tensor) {
  for (int node = 0; node < count; ++node, translations += 3)
    incr_scalar_tilde_tilde(tensor, nodes[node].Mass, nodes[node].Coordinates, translations);
}

}  // namespace fmd
