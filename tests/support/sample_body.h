// Small bodies whose every value a test can work out for itself.
#ifndef FMDTOOLKIT_TESTS_SAMPLE_BODY_H
#define FMDTOOLKIT_TESTS_SAMPLE_BODY_H

#include <array>
#include <vector>

#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtest {

// All values are multiples of an eighth, so that single precision holds them too.
std::array<double, 3> sample_position(int node);
double sample_mass(int node);
std::array<double, 6> sample_vector(int type, int mode, int node);
std::array<double, 6> sample_prestate(int type, int node);

// A body with these nodes, their positions set, and room for so many modes.
FmdBody* make_nodes(const std::vector<int>& nodes, int planned_modes);

// Sample vectors of a type for the modes at the nodes.
void add_vectors(FmdBody* body, int type, const std::vector<int>& modes, const std::vector<int>& nodes);

// Unit generalized mass and the stiffness that gives this frequency where the units are consistent.
void add_frequency(FmdBody* body, int mode, double hertz);
double stiffness_of(double hertz);

// A body with everything that a write takes as it is: header, nodes, faces, masses, inertias, units,
// interface nodes, three orthonormal modes at 5, 10 and 15 Hz, stress and strain on some nodes.
const std::vector<int> kSampleNodes = {30, 10, 20, 40};
const std::vector<int> kSampleModes = {7, 8, 9};
const std::vector<double> kSampleHertz = {5.0, 10.0, 15.0};
const std::vector<int> kSampleStressNodes = {40, 20};
const std::vector<int> kSampleStrainNodes = {10};
const std::vector<int> kSampleInterfaceNodes = {20, 30};
const std::vector<std::vector<int>> kSampleFaces = {{30, 10, 20}, {20, 40}, {30, 10, 20, 40}, {10, 20, 40}};
FmdBody* make_sample_body();

}  // namespace fmdtest

#endif
