// Statics of the sample: the work of the loads in the rigid modes is that of their resultants.
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <fstream>
#include <sstream>

#include "calculix/modal_rows.h"

namespace {

using Six = std::array<double, 6>;

const std::string folder = std::string(FMD_EXAMPLES) + "/bracket/";

calculix::Model read_loaded() {
  calculix::Job job;
  job.results = folder + "bracket_free.frd.gz";
  job.deck = folder + "bracket_loaded.inp";
  return calculix::read_model(job, nullptr);
}

// Elimination with row exchanges.
Six solve(std::array<Six, 6> a, Six b) {
  for (std::size_t c = 0; c < 6; ++c) {
    std::size_t best = c;
    for (std::size_t r = c; r < 6; ++r) {
      if (std::fabs(a[r][c]) > std::fabs(a[best][c])) best = r;
    }
    std::swap(a[c], a[best]);
    std::swap(b[c], b[best]);
    for (std::size_t r = c + 1; r < 6; ++r) {
      const double factor = a[r][c] / a[c][c];
      for (std::size_t k = c; k < 6; ++k) a[r][k] -= factor * a[c][k];
      b[r] -= factor * b[c];
    }
  }
  for (std::size_t c = 6; c-- > 0;) {
    for (std::size_t k = c + 1; k < 6; ++k) b[c] -= a[c][k] * b[k];
    b[c] /= a[c][c];
  }
  return b;
}

// Rows of the displacement at a place: u = t + w x r, unknowns t and w.
std::array<Six, 3> motion_rows(const calculix::Point& r) {
  return {{{1, 0, 0, 0, r[2], -r[1]}, {0, 1, 0, -r[2], 0, r[0]}, {0, 0, 1, r[1], -r[0], 0}}};
}

// The rigid motion that fits a mode best.
Six motion_of(const calculix::Model& model, const calculix::ModeVector& vector) {
  std::array<Six, 6> normal{};
  Six right{};
  for (std::size_t i = 0; i < vector.nodes.size(); ++i) {
    const auto rows = motion_rows(model.contents.mesh.points[static_cast<std::size_t>(vector.nodes[i])]);
    for (std::size_t k = 0; k < 3; ++k) {
      for (std::size_t p = 0; p < 6; ++p) {
        right[p] += rows[k][p] * vector.values[6 * i + k];
        for (std::size_t q = 0; q < 6; ++q) normal[p][q] += rows[k][p] * rows[k][q];
      }
    }
  }
  return solve(normal, right);
}

// The nodes of a set as the list beside the sample has them: "NAME : id id ...".
std::vector<int> listed_ids(const std::string& set) {
  std::ifstream file(folder + "sets.txt");
  for (std::string line; std::getline(file, line);) {
    std::istringstream words(line);
    std::string name, colon;
    if (!(words >> name >> colon) || name != set) continue;
    std::vector<int> ids;
    for (int id = 0; words >> id;) ids.push_back(id);
    return ids;
  }
  return {};
}

}  // namespace

TEST(BracketLoadsTest, GiveModalLoadsWhoseRigidPartIsTheResultant) {
  const calculix::Model model = read_loaded();
  ASSERT_EQ(model.load_cases.size(), 2U);
  EXPECT_EQ(model.load_cases[0].label, "Step 2: BOLTS");
  EXPECT_EQ(model.load_cases[1].label, "Step 3: SHEAR");
  EXPECT_TRUE(model.notes.empty());
  calculix::ModalRows rows(model);
  std::array<Six, 6> motions{};
  calculix::read_mode_vectors(
      model.job.results, model.contents,
      [&](const calculix::ModeVector& vector) {
        rows.take(vector);
        if (vector.quantity != calculix::Quantity::displacement || vector.mode->number > 6) return;
        motions[static_cast<std::size_t>(vector.mode->number - 1)] = motion_of(model, vector);
      },
      nullptr);

  // By hand: 250 along x at (4, 18, 69.5), -120 along z at (77.5, 18, 4), (0, 40, -80) at (77.5, 46, 4).
  Six expected[2] = {{250, 40, -200, -6000, 32875, -1400}, {}};
  for (const int id : listed_ids("HOLE_W2")) {
    const auto& at = model.contents.mesh.points[static_cast<std::size_t>(model.contents.node_index.find(id))];
    const double force[3] = {0, 1.5, -0.75};
    for (std::size_t k = 0; k < 3; ++k) {
      const std::size_t next = (k + 1) % 3, last = (k + 2) % 3;
      expected[1][k] += force[k];
      expected[1][3 + k] += at[next] * force[last] - at[last] * force[next];
    }
  }
  EXPECT_EQ(expected[1][1], 120.0);
  EXPECT_EQ(expected[1][2], -60.0);
  for (std::size_t c = 0; c < 2; ++c) {
    Six modal{};
    for (std::size_t m = 0; m < 6; ++m) modal[m] = rows.load(c, m);
    const Six resultant = solve(motions, modal);
    const double size = std::sqrt(expected[c][0] * expected[c][0] + expected[c][1] * expected[c][1] +
                                  expected[c][2] * expected[c][2]);
    constexpr double six_digits = 5e-6;
    constexpr double arm = 120.0;
    for (std::size_t k = 0; k < 6; ++k) {
      EXPECT_NEAR(resultant[k], expected[c][k], six_digits * size * (k < 3 ? 1.0 : arm)) << c << " " << k;
    }
  }
}
