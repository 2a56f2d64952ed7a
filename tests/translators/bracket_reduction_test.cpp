// Component modes of the sample part against frequencies that another program worked out.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <nlohmann/json.hpp>

#include "calculix/translate.h"
#include "translators/lapack.h"

using calculix::Model;
using namespace fmdtest;

namespace {

const std::string folder = std::string(FMD_EXAMPLES) + "/bracket/";
constexpr double two_pi = 6.283185307179586;

Model model(const std::vector<std::string>& interfaces, int fixed_modes) {
  calculix::Job job;
  job.results = folder + "bracket_free.frd.gz";
  job.deck = folder + "bracket_matrix.inp";
  job.reduction.emplace();
  const std::string files = folder + "bracket_matrix";
  job.reduction->files = {files + ".sti.gz", files + ".mas.gz", files + ".dof.gz"};
  for (const std::string& text : interfaces) {
    job.reduction->interfaces.push_back(calculix::parse_interface(text));
  }
  job.reduction->fixed_modes = fixed_modes;
  return calculix::read_model(job, nullptr);
}

std::vector<double> reference_hertz(const char* run) {
  return nlohmann::json::parse(std::ifstream(folder + "reference.json"))[run]["hz_frd"]
      .get<std::vector<double>>();
}

// Of the pair of reduced matrices.
std::vector<double> eigenvalues(const Model& model) {
  return finite_eigenvalues(model.reduction->model.stiffness, model.reduction->model.mass);
}

double hertz(double eigenvalue) {
  return std::sqrt(eigenvalue) / two_pi;
}

}  // namespace

TEST(BracketReduction, HasTheFreeFrequenciesWithAveragingInterfaces) {
  const Model found = model({"average:HOLE_B1", "average:HOLE_B2"}, 20);
  EXPECT_TRUE(found.notes.empty());
  EXPECT_EQ(found.results_hertz, reference_hertz("free"));
  const auto values = eigenvalues(found);
  ASSERT_EQ(values.size(), 32U);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_LE(std::fabs(values[i]), 1e-9 * values[6]);
  for (std::size_t i = 0; i < 8; ++i) {
    const double difference = hertz(values[6 + i]) / reference_hertz("free")[6 + i] - 1.0;
    EXPECT_LE(std::fabs(difference), i < 3 ? 0.0005 : 0.005) << i;
    EXPECT_GE(difference, -1e-7) << i;  // fewer shapes never make a part softer
  }
}

TEST(BracketReduction, IsStifferWithRigidInterfaces) {
  const auto values = eigenvalues(model({"rigid:HOLE_B1", "rigid:HOLE_B2"}, 20));
  ASSERT_EQ(values.size(), 32U);
  for (std::size_t i = 0; i < 6; ++i) EXPECT_LE(std::fabs(values[i]), 1e-9 * values[6]);
  for (std::size_t i = 0; i < 8; ++i) EXPECT_GE(hertz(values[6 + i]), reference_hertz("free")[6 + i]);
}

// Held rigid groups are the fixed holes of the other run.
TEST(BracketReduction, HasTheFrequenciesOfTheFixedRunWithHeldInterfaces) {
  const Model found = model({"rigid:IF_BASE", "rigid:IF_WALL"}, 12);
  const auto& reduced = found.reduction->model;
  for (int i = 0; i < 12; ++i) {
    const auto place = static_cast<std::size_t>((12 + i) * reduced.modes + 12 + i);
    EXPECT_NEAR(hertz(reduced.stiffness[place]) / reference_hertz("fixed")[static_cast<std::size_t>(i)], 1.0,
                1e-7);
    EXPECT_NEAR(reduced.mass[place], 1.0, 1e-12);
  }
}

// Interfaces that follow a rigid motion take every node along, and no strain is left.
TEST(BracketReduction, CarriesRigidMotionsToEveryNode) {
  const Model found = model({"average:HOLE_B2", "rigid:HOLE_W1@1,2,3", "nodes:392"}, 0);
  const auto& reduced = found.reduction->model;
  const calculix::Point t = {0.5, -1, 2};
  const calculix::Point r = {0.02, 0.03, -0.05};
  const auto moved = [&](const calculix::Point& at, std::size_t axis) {
    const std::size_t next = (axis + 1) % 3;
    const std::size_t last = (axis + 2) % 3;
    return t[axis] + r[next] * at[last] - r[last] * at[next];
  };
  const auto& mesh = found.contents.mesh;
  std::vector<double> q;
  for (const auto& attachment : found.reduction->attachments) {
    const bool group = attachment.reference_node != 0;
    const int id = group ? attachment.reference_node : attachment.ids[0];
    const auto& at = mesh.points[static_cast<std::size_t>(found.contents.node_index.find(id))];
    for (std::size_t axis = 0; axis < 3; ++axis) q.push_back(moved(at, axis));
    if (group) q.insert(q.end(), r.begin(), r.end());
  }
  ASSERT_EQ(q.size(), static_cast<std::size_t>(reduced.modes));
  double largest_error = 0.0;
  for (std::size_t row = 0; row < found.reduction->dofs.size(); ++row) {
    double u = 0.0;
    for (int m = 0; m < reduced.modes; ++m) u += reduced.vector(m)[row] * q[static_cast<std::size_t>(m)];
    const auto& dof = found.reduction->dofs[row];
    const auto& at = mesh.points[static_cast<std::size_t>(found.contents.node_index.find(dof.node))];
    largest_error = std::max(largest_error, std::fabs(u - moved(at, static_cast<std::size_t>(dof.axis))));
  }
  EXPECT_LE(largest_error, 1e-8);
}
