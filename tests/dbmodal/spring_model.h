// Point masses on springs, seen through mode shapes that are anything but orthonormal.
//
// Everything that a body holds of them in modal coordinates follows from the mode shapes alone: mass Phi' m
// Phi, stiffness Phi' K Phi, loads Phi' f, the displacement of a degree of freedom as a row of Phi, stresses
// A Phi. So what must come out after any change of the modes is worked out from the new shapes by the same
// products.
#ifndef FMDTOOLKIT_TESTS_SPRING_MODEL_H
#define FMDTOOLKIT_TESTS_SPRING_MODEL_H

#include <cstddef>
#include <random>
#include <vector>

#include "dataset_reader/dataset_reader.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmdtest {

using Vector = std::vector<double>;

// Row by row.
struct Dense {
  std::size_t rows = 0;
  std::size_t columns = 0;
  Vector values;

  Dense() = default;
  Dense(std::size_t r, std::size_t c) : rows(r), columns(c), values(r * c) {}
  double& operator()(std::size_t r, std::size_t c) { return values[r * columns + c]; }
  double operator()(std::size_t r, std::size_t c) const { return values[r * columns + c]; }
};

Dense operator*(const Dense& left, const Dense& right);
Dense transposed(const Dense& matrix);
double largest_difference(const Dense& left, const Dense& right);

// Ascending eigenvalues of K x = lambda G x by LAPACK, G positive definite.
Vector lapack_eigenvalues(const Dense& stiffness, const Dense& mass);

// Three translations a node are the degrees of freedom.
struct SpringModel {
  std::size_t nodes;
  Dense positions;  // nodes by 3
  Vector masses;    // a node
  Dense stiffness;  // over degrees of freedom
  Dense shapes;     // Phi: a column each mode
  Dense stresses;   // A: six rows for each node, over degrees of freedom
  Vector forces;    // f, and of a second case
  Vector other_forces;

  std::size_t freedoms() const { return 3 * nodes; }
  Dense mass_matrix() const;
  Dense generalized_mass() const;
  Dense generalized_stiffness() const;
};

// Springs between all pairs of nodes, which leave the six rigid motions free, and springs to the ground of a
// strength that may be 0. The shapes are random mixtures, of the rigid motions first and random shapes then.
SpringModel make_springs(std::size_t nodes, std::size_t modes, double ground, unsigned seed);

// The body: node ids from 1, mode numbers from 11, full matrices, stress and strain A Phi, the loads as
// preload and two load cases, a monitor point whose operators are the displacements of the first node.
FmdBody* make_body(const SpringModel& model);

// What a dataset or a body holds: a column each mode.
Dense translations_in(const dataset_reader::ModeVectors& vectors);
Dense all_values_in(const dataset_reader::ModeVectors& vectors);

}  // namespace fmdtest

#endif
