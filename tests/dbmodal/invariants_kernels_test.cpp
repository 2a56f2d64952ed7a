// The sums over pairs of modes alone: every vector unit of this machine against the plain loop, bit for bit.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include "dbmodal/dbinvar/invariant_storage.h"
#include "dbmodal/dbinvar/mode_sums.h"
#include "dbmodal/dbinvar/pair_sums.h"
#include "dbmodal/invariants_model.h"

namespace {

using fmd::VectorUnit;
using fmdtest::Nine;
using fmdtest::same_bits;

std::vector<VectorUnit> units_here() {
  std::vector<VectorUnit> units;
  for (const VectorUnit unit : {VectorUnit::kSse2, VectorUnit::kAvx2, VectorUnit::kAvx512})
    if (fmd::has_vector_unit(unit)) units.push_back(unit);
  return units;
}

struct Problem {
  Problem(int node_count, int mode_count, int value_stride)
      : nodes(node_count), modes(mode_count), stride(value_stride) {
    std::mt19937 generator(static_cast<unsigned>(nodes + 1000 * modes));
    std::uniform_real_distribution<double> any(-1.0, 1.0);
    mass.resize(static_cast<std::size_t>(nodes));
    values.resize(static_cast<std::size_t>(nodes) * static_cast<std::size_t>(modes * stride));
    for (double& m : mass) m = any(generator);
    for (double& v : values) v = any(generator);
  }

  double* vector(int mode, int node) {
    return values.data() + (static_cast<std::ptrdiff_t>(mode) * nodes + node) * stride;
  }

  // Sums all nodes in the panels and blocks given.
  fmd::TensorRows sums(VectorUnit unit, int panel_nodes, int block_nodes) {
    fmd::TensorRows tensors = fmd::make_pair_tensors(modes);
    std::vector<double> workspace(static_cast<std::size_t>(fmd::pair_sums_workspace(modes, block_nodes)));
    for (int first = 0; first < nodes; first += panel_nodes) {
      std::vector<fmd::ModeTranslations> pieces;
      for (int mode = 0; mode < modes; ++mode) pieces.push_back({vector(mode, first), stride});
      const int count = std::min(panel_nodes, nodes - first);
      fmd::add_pair_sums(unit,
                         {mass.data() + first, count, pieces.data(), modes, block_nodes, workspace.data()},
                         tensors.get());
    }
    return tensors;
  }

  Nine plain(int i, int j) {
    Nine tensor{};
    for (int node = 0; node < nodes; ++node)
      incr_scalar_tilde_tilde(tensor.data(), mass[static_cast<std::size_t>(node)], vector(i, node),
                              vector(j, node));
    return tensor;
  }

  void expect_plain(const fmd::TensorRows& tensors, const char* what) {
    for (int i = 0; i < modes; ++i) {
      for (int j = 0; j < modes; ++j) {
        const Nine expected = i <= j ? plain(i, j) : Nine{};
        ASSERT_TRUE(same_bits(tensors[static_cast<std::size_t>(i)][j], expected.data(), 9))
            << what << ": " << i << " " << j << " of " << modes;
      }
    }
  }

  int nodes;
  int modes;
  int stride;
  std::vector<double> mass;
  std::vector<double> values;
};

TEST(PairSums, HaveTheBitsOfThePlainLoopForAnyNumberOfModes) {
  for (const VectorUnit unit : units_here()) {
    for (int modes = 1; modes <= 26; ++modes) {
      Problem problem(41, modes, modes % 2 == 0 ? 3 : 6);
      problem.expect_plain(problem.sums(unit, 41, 16), "modes");
    }
  }
}

TEST(PairSums, DoNotDependOnPanelsAndBlocks) {
  for (const VectorUnit unit : units_here()) {
    Problem problem(53, 11, 6);
    for (const auto& [panel, block] : {std::pair(53, 53), {53, 1}, {7, 3}, {1, 512}, {53, 512}, {20, 20}})
      problem.expect_plain(problem.sums(unit, panel, block), "panels");
  }
}

// Values that are not numbers spread as in the plain loop and no further; their own bits are not compared.
TEST(PairSums, NonFiniteValuesStayWithTheirPairs) {
  for (const VectorUnit unit : units_here()) {
    Problem problem(9, 10, 3);
    problem.vector(4, 2)[1] = std::numeric_limits<double>::infinity();
    problem.vector(7, 5)[0] = std::nan("");
    const fmd::TensorRows tensors = problem.sums(unit, 9, 4);
    for (int i = 0; i < 10; ++i) {
      for (int j = i; j < 10; ++j) {
        const Nine expected = problem.plain(i, j);
        for (std::size_t k = 0; k < 9; ++k) {
          const double found = tensors[static_cast<std::size_t>(i)][j][k];
          EXPECT_TRUE(std::isnan(expected[k]) ? std::isnan(found) : found == expected[k]) << i << j << k;
        }
      }
    }
  }
}

TEST(PairSums, WidestUnitIsOneOfThoseHere) {
  EXPECT_EQ(fmd::widest_vector_unit(), units_here().back());
}

TEST(PairSums, AreCompletedByTransposesAndCrossSums) {
  Problem problem(13, 5, 3);
  fmd::TensorRows tensors = problem.sums(VectorUnit::kSse2, 13, 13);
  const fmd::ValueRows cross = fmd::make_cross_sums(5);
  fmd::finish_pair_sums(tensors.get(), 5, cross.get());
  for (int i = 0; i < 5; ++i) {
    for (int j = 0; j < 5; ++j) {
      const double* tensor = tensors[static_cast<std::size_t>(i)][j];
      for (int r = 0; r < 3; ++r) {
        for (int c = 0; c < 3; ++c)
          EXPECT_EQ(tensor[3 * r + c], tensors[static_cast<std::size_t>(j)][i][3 * c + r]);
        const double value = cross[static_cast<std::size_t>(i)][5 * r + j];
        EXPECT_EQ(value, -cross[static_cast<std::size_t>(j)][5 * r + i]);
        EXPECT_TRUE(i != j || (value == 0.0 && std::signbit(value)));
      }
      double sum[3] = {};
      for (int node = 0; node < 13; ++node)
        incr_scalar_tilde_vec(sum, problem.mass[static_cast<std::size_t>(node)], problem.vector(i, node),
                              problem.vector(j, node));
      for (int k = 0; k < 3; ++k)
        EXPECT_NEAR(cross[static_cast<std::size_t>(i)][5 * k + j], sum[k], 1e-14 * 13);
    }
  }
}

TEST(ModeSums, MultiplyTheWholeInertiaTensor) {
  double inertia[6] = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0};
  FmdNode nodes[2] = {{1, {}, 1.0, nullptr}, {2, {}, 1.0, inertia}};
  const double rotations[6] = {9.0, 9.0, 9.0, 1.0, 10.0, 100.0};
  double sum[3] = {0.5, 0.0, 0.0};
  fmd::add_spin(nodes, 2, rotations, sum);
  EXPECT_EQ(sum[0], 0.5 + 1.0 + 40.0 + 500.0);
  EXPECT_EQ(sum[1], 4.0 + 20.0 + 600.0);
  EXPECT_EQ(sum[2], 5.0 + 60.0 + 300.0);
}

}  // namespace
