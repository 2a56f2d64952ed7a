#include "dbmodal/spring_model.h"

#include <algorithm>
#include <cmath>
#include <string>

extern "C" void dsygv_(const int* type, const char* vectors, const char* triangle, const int* n, double* a,
                       const int* lda, double* b, const int* ldb, double* w, double* work, const int* lwork,
                       int* info);

namespace fmdtest {

Dense operator*(const Dense& left, const Dense& right) {
  Dense product(left.rows, right.columns);
  for (std::size_t i = 0; i < left.rows; ++i)
    for (std::size_t k = 0; k < left.columns; ++k)
      for (std::size_t j = 0; j < right.columns; ++j) product(i, j) += left(i, k) * right(k, j);
  return product;
}

Dense transposed(const Dense& matrix) {
  Dense result(matrix.columns, matrix.rows);
  for (std::size_t i = 0; i < matrix.rows; ++i)
    for (std::size_t j = 0; j < matrix.columns; ++j) result(j, i) = matrix(i, j);
  return result;
}

double largest_difference(const Dense& left, const Dense& right) {
  if (left.rows != right.rows || left.columns != right.columns) return HUGE_VAL;
  double largest = 0.0;
  for (std::size_t i = 0; i < left.values.size(); ++i) {
    const double difference = std::fabs(left.values[i] - right.values[i]);
    if (!(difference <= largest)) largest = difference;
  }
  return largest;
}

Vector lapack_eigenvalues(const Dense& stiffness, const Dense& mass) {
  Dense a = stiffness;
  Dense b = mass;
  const int type = 1;
  const int n = static_cast<int>(a.rows);
  const int work_size = 64 * n;
  int info = -1;
  Vector eigenvalues(a.rows);
  Vector work(static_cast<std::size_t>(work_size));
  dsygv_(&type, "N", "U", &n, a.values.data(), &n, b.values.data(), &n, eigenvalues.data(), work.data(),
         &work_size, &info);
  return info == 0 ? eigenvalues : Vector();
}

Dense SpringModel::mass_matrix() const {
  Dense mass(freedoms(), freedoms());
  for (std::size_t i = 0; i < freedoms(); ++i) mass(i, i) = masses[i / 3];
  return mass;
}

Dense SpringModel::generalized_mass() const {
  return transposed(shapes) * (mass_matrix() * shapes);
}

Dense SpringModel::generalized_stiffness() const {
  return transposed(shapes) * (stiffness * shapes);
}

namespace {

using Random = std::mt19937;

double draw(Random& random) {
  return std::uniform_real_distribution<double>(-1.0, 1.0)(random);
}

Dense random_matrix(std::size_t rows, std::size_t columns, Random& random) {
  Dense matrix(rows, columns);
  for (double& value : matrix.values) value = draw(random);
  return matrix;
}

// A spring acts along the line between its nodes: it gives way to every rigid motion.
void add_spring(SpringModel& model, std::size_t p, std::size_t q, double strength) {
  double e[3];
  double length = 0.0;
  for (std::size_t k = 0; k < 3; ++k) e[k] = model.positions(q, k) - model.positions(p, k);
  for (const double component : e) length += component * component;
  length = std::sqrt(length);
  for (std::size_t i = 0; i < 3; ++i) {
    for (std::size_t j = 0; j < 3; ++j) {
      const double k = strength * e[i] * e[j] / (length * length);
      model.stiffness(3 * p + i, 3 * p + j) += k;
      model.stiffness(3 * q + i, 3 * q + j) += k;
      model.stiffness(3 * p + i, 3 * q + j) -= k;
      model.stiffness(3 * q + i, 3 * p + j) -= k;
    }
  }
}

// Columns 0 to 5: translations along the axes, rotations about them.
void add_rigid_motions(const SpringModel& model, Dense& shapes) {
  for (std::size_t p = 0; p < model.nodes; ++p) {
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t next = (k + 1) % 3;
      const std::size_t last = (k + 2) % 3;
      shapes(3 * p + k, k) = 1.0;
      shapes(3 * p + k, 3 + k) = 0.0;
      shapes(3 * p + next, 3 + k) = -model.positions(p, last);
      shapes(3 * p + last, 3 + k) = model.positions(p, next);
      shapes(3 * p + next, k) = shapes(3 * p + last, k) = 0.0;
    }
  }
}

// Near the identity, so that the mixture stays well conditioned.
Dense mixing(std::size_t order, Random& random) {
  Dense matrix(order, order);
  for (std::size_t i = 0; i < order; ++i) {
    for (std::size_t j = 0; j < order; ++j) matrix(i, j) = (i == j ? 2.0 : 0.0) + 0.4 * draw(random);
  }
  return matrix;
}

}  // namespace

SpringModel make_springs(std::size_t nodes, std::size_t modes, double ground, unsigned seed) {
  Random random(seed);
  SpringModel model;
  model.nodes = nodes;
  model.positions = random_matrix(nodes, 3, random);
  for (std::size_t p = 0; p < nodes; ++p) model.masses.push_back(1.5 + 0.5 * draw(random));
  model.stiffness = Dense(3 * nodes, 3 * nodes);
  for (std::size_t p = 0; p < nodes; ++p) {
    for (std::size_t q = 0; q < p; ++q) add_spring(model, p, q, 200.0 + 100.0 * draw(random));
    for (std::size_t k = 0; k < 3; ++k) model.stiffness(3 * p + k, 3 * p + k) += ground;
  }
  Dense shapes = random_matrix(3 * nodes, modes, random);
  // Far enough from each other that the products of the tests lose few digits.
  for (std::size_t i = 0; i < modes; ++i) shapes(3 * nodes - 1 - i, i) += 5.0;
  if (modes >= 6) add_rigid_motions(model, shapes);
  model.shapes = shapes * mixing(modes, random);
  model.stresses = random_matrix(6 * nodes, 3 * nodes, random);
  for (std::size_t i = 0; i < 3 * nodes; ++i) {
    model.forces.push_back(draw(random));
    model.other_forces.push_back(draw(random));
  }
  return model;
}

namespace {

constexpr int kFirstMode = 11;

int mode_number(std::size_t mode) {
  return kFirstMode + static_cast<int>(mode);
}

double* row(Dense& matrix, std::size_t r) {
  return matrix.values.data() + r * matrix.columns;
}

void set_vectors(FmdBody* body, const SpringModel& model) {
  Dense stresses = transposed(model.stresses * model.shapes);
  for (std::size_t mode = 0; mode < model.shapes.columns; ++mode) {
    for (std::size_t p = 0; p < model.nodes; ++p) {
      const int id = static_cast<int>(p) + 1;
      // Rotations that follow from the translations, so that they can be told from them.
      double six[6];
      for (std::size_t k = 0; k < 3; ++k) {
        six[k] = model.shapes(3 * p + k, mode);
        six[3 + k] = 2.0 * six[k];
      }
      FMD_SetModeVec(body, mode_number(mode), id, 0, six);
      if (p % 2 == 0) FMD_SetModeVec(body, mode_number(mode), id, 1, row(stresses, mode) + 6 * p);
      if (p == 1) FMD_SetModeVec(body, mode_number(mode), id, 2, row(stresses, mode) + 6 * p);
    }
  }
}

void set_matrices(FmdBody* body, const SpringModel& model) {
  const Dense mass = model.generalized_mass();
  const Dense stiffness = model.generalized_stiffness();
  for (std::size_t i = 0; i < mass.rows; ++i) {
    for (std::size_t j = 0; j <= i; ++j) {
      FMD_SetGeneralizedMass(body, mode_number(i), mode_number(j), mass(i, j));
      FMD_SetGeneralizedStiffness(body, mode_number(i), mode_number(j), stiffness(i, j));
    }
  }
}

void set_loads(FmdBody* body, const SpringModel& model) {
  for (std::size_t mode = 0; mode < model.shapes.columns; ++mode) {
    double load = 0.0;
    double other = 0.0;
    for (std::size_t i = 0; i < model.freedoms(); ++i) {
      load += model.forces[i] * model.shapes(i, mode);
      other += model.other_forces[i] * model.shapes(i, mode);
    }
    FMD_SetModalPreload(body, mode_number(mode), load);
    FMD_SetModalLoad(body, 0, mode_number(mode), load);
    FMD_SetModalLoad(body, 1, mode_number(mode), other);
  }
}

void set_monitor_point(FmdBody* body, const SpringModel& model) {
  double location[3] = {};
  std::string name = "NODE1";
  FMD_SetMonitorPointInfo(body, 4, 1, 123, 2, location, name.data(), name.data());
  Vector rows(model.shapes.values.begin(),
              model.shapes.values.begin() + static_cast<std::ptrdiff_t>(6 * model.shapes.columns));
  for (const int kind : {1, 4}) FMD_SetMonitorPointOperator(body, 0, kind, rows.data());
}

}  // namespace

FmdBody* make_body(const SpringModel& model) {
  const int modes = static_cast<int>(model.shapes.columns);
  FmdBody* body = FMD_Create(static_cast<int>(model.nodes), modes);
  for (std::size_t p = 0; p < model.nodes; ++p) {
    const int id = static_cast<int>(p) + 1;
    FMD_SetNodeCoordinates(body, id, model.positions(p, 0), model.positions(p, 1), model.positions(p, 2));
    FMD_SetNodalMass(body, id, model.masses[p]);
  }
  set_vectors(body, model);
  set_matrices(body, model);
  set_loads(body, model);
  set_monitor_point(body, model);
  return body;
}

Dense translations_in(const dataset_reader::ModeVectors& vectors) {
  const auto modes = static_cast<std::size_t>(vectors.mode_count);
  Dense shapes(3 * vectors.node_ids.size(), modes);
  for (std::size_t mode = 0; mode < modes; ++mode) {
    for (std::size_t p = 0; p < vectors.node_ids.size(); ++p) {
      for (std::size_t k = 0; k < 3; ++k) shapes(3 * p + k, mode) = vectors.at(mode, p)[k];
    }
  }
  return shapes;
}

Dense all_values_in(const dataset_reader::ModeVectors& vectors) {
  const auto modes = static_cast<std::size_t>(vectors.mode_count);
  Dense values(6 * vectors.node_ids.size(), modes);
  for (std::size_t mode = 0; mode < modes; ++mode) {
    for (std::size_t p = 0; p < vectors.node_ids.size(); ++p) {
      for (std::size_t k = 0; k < 6; ++k) values(6 * p + k, mode) = vectors.at(mode, p)[k];
    }
  }
  return values;
}

}  // namespace fmdtest
