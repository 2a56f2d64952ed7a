// Sums over nodes for all pairs of modes, behind invariants 5 and 9.
//
// For modes i <= j the tensor of the pair accumulates, node by node in node order, what
// incr_scalar_tilde_tilde(tensor, m, phi_i, phi_j) adds: with s = m phi_i rounded once,
//
//   t0 -= s2 b2 + s3 b3    t1 += s2 b1            t2 += s3 b1
//   t3 += s1 b2            t4 -= s3 b3 + s1 b1    t5 += s3 b2
//   t6 += s1 b3            t7 += s2 b3            t8 -= s2 b2 + s1 b1       (b = phi_j, components from 1)
//
// each product and each addition rounded by itself. This order defines the result: vector units work across
// the modes j and never across the nodes, so every unit gives the bits of the plain loop. After the last node
// the tensor of a mode with itself takes its lower triangle for both, the tensor of (j, i) is the transpose
// of (i, j), and the cross sums of invariant 5 are the differences (t7 - t5, t2 - t6, t3 - t1).
#ifndef FMDTOOLKIT_DBMODAL_DBINVAR_PAIR_SUMS_H
#define FMDTOOLKIT_DBMODAL_DBINVAR_PAIR_SUMS_H

#include <cstdint>

#include "system/vector_unit.h"

namespace fmd {

// The three translations of a mode at node p stand at values + p * stride.
struct ModeTranslations {
  const double* values;
  std::int64_t stride;
};

// Doubles of workspace for so many modes with blocks of so many nodes.
std::int64_t pair_sums_workspace(int modes, int block_nodes);

// Nodes of all modes, worked through in blocks.
struct PairPanel {
  const double* mass;  // per node
  int nodes;
  const ModeTranslations* modes;  // per mode
  int mode_count;
  int block_nodes;
  double* workspace;  // of pair_sums_workspace doubles
};

// Adds the nodes of a panel to the tensors (i, j) with i <= j, nine doubles each; others are left alone.
void add_pair_sums(VectorUnit unit, const PairPanel& panel, double* const* const* tensors);

// Completes the tensors as told above and stores the cross sums: row i of cross_sums is 3 rows of mode_count,
// with the sum of the pair at column j and its negative in row j at column i. A mode with itself has -0.0.
void finish_pair_sums(double* const* const* tensors, int mode_count, double* const* cross_sums);

}  // namespace fmd

#endif
