// The body that the benchmarks work on: a grid of nodes and made-up modes, the same numbers in every run.
#ifndef FMDTOOLKIT_BENCH_SAMPLE_BODY_H
#define FMDTOOLKIT_BENCH_SAMPLE_BODY_H

#include <fmdtoolkit/fmdtoolkit.h>

namespace fmdbench {

// The six values of a node in a mode; the caller may keep the pointer.
double* sample_vector(int mode, int node);

// A body with its nodes (coordinates, masses) and modes (frequencies), without mode vectors; its mode cache
// is off.
FmdBody* make_body_without_vectors(int nodes, int modes);

// The same with all mode vectors.
FmdBody* make_body(int nodes, int modes);

// Whether the body has the sample's values in every node of some of its modes.
bool has_sample_vectors(FmdBody* body, int nodes, int modes);

}  // namespace fmdbench

#endif
