#include "support/sample_body.h"

#include <string>

namespace fmdtest {

std::array<double, 3> sample_position(int node) {
  return {node * 0.125, 1.0 - node * 0.25, node * 0.5 - 2.0};
}

double sample_mass(int node) {
  return node * 0.0625;
}

std::array<double, 6> sample_vector(int type, int mode, int node) {
  std::array<double, 6> six;
  for (int dof = 0; dof < 6; ++dof) {
    six[static_cast<std::size_t>(dof)] = ((type * 11 + mode * 7 + node * 3 + dof * 5) % 17 - 8) * 0.125;
  }
  return six;
}

std::array<double, 6> sample_prestate(int type, int node) {
  return {type * 1.0, node * 1.0, -3.5, 0.0, 0.25, 6.0};
}

FmdBody* make_nodes(const std::vector<int>& nodes, int planned_modes) {
  FmdBody* body = FMD_Create(static_cast<int>(nodes.size()), planned_modes);
  for (const int node : nodes) {
    const auto xyz = sample_position(node);
    FMD_SetNodeCoordinates(body, node, xyz[0], xyz[1], xyz[2]);
  }
  return body;
}

void add_vectors(FmdBody* body, int type, const std::vector<int>& modes, const std::vector<int>& nodes) {
  for (const int mode : modes) {
    for (const int node : nodes)
      FMD_SetModeVec(body, mode, node, type, sample_vector(type, mode, node).data());
  }
}

double stiffness_of(double hertz) {
  // The circular constant of the toolkit, so that the frequency comes out to the last digit.
  const double radians = 6.28318530718 * hertz;
  return radians * radians;
}

void add_frequency(FmdBody* body, int mode, double hertz) {
  FMD_SetGeneralizedMass(body, mode, mode, 1.0);
  FMD_SetGeneralizedStiffness(body, mode, mode, stiffness_of(hertz));
}

namespace {

void set_texts(FmdBody* body) {
  std::string texts[] = {"Sample body", "sample.inp", "deck", "made by hand", "", "for tests"};
  FMD_SetHeader(body, texts[0].data(), texts[1].data(), texts[2].data(), texts[3].data(), texts[4].data(),
                texts[5].data());
  std::string units[] = {"MEGAGRAM", "MILLIMETER", "SECOND", "NEWTON"};
  FMD_SetUnits(body, units[0].data(), units[1].data(), units[2].data(), units[3].data());
}

void set_mass_and_mesh(FmdBody* body) {
  for (const int node : kSampleNodes) FMD_SetNodalMass(body, node, sample_mass(node));
  FMD_SetNodalInertia(body, 10, 1.0, 2.0, 3.0, 0.25, 0.5, 0.125);
  FMD_SetNodalInertia(body, 40, 1.5, 0.0, 2.5, 0.0, -0.5, 0.0);
  for (std::vector<int> face : kSampleFaces) {
    FMD_SetFaceList(body, static_cast<int>(face.size()), face.data());
  }
  for (const int node : kSampleInterfaceNodes) FMD_SetInterfaceNode(body, node);
}

}  // namespace

FmdBody* make_sample_body() {
  FmdBody* body = make_nodes(kSampleNodes, static_cast<int>(kSampleModes.size()));
  set_texts(body);
  set_mass_and_mesh(body);
  add_vectors(body, 0, kSampleModes, kSampleNodes);
  add_vectors(body, 1, kSampleModes, kSampleStressNodes);
  add_vectors(body, 2, kSampleModes, kSampleStrainNodes);
  FMD_SetPreStressVec(body, 20, sample_prestate(1, 20).data());
  FMD_SetPreStrainVec(body, 10, sample_prestate(2, 10).data());
  for (std::size_t i = 0; i < kSampleModes.size(); ++i) add_frequency(body, kSampleModes[i], kSampleHertz[i]);
  return body;
}

}  // namespace fmdtest
