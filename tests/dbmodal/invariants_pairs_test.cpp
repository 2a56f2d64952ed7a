// Invariants 5 and 9 from nodes and mode shapes.
#include <gtest/gtest.h>

#include <cmath>

#include "dbmodal/dbinvar/mode_panels.h"
#include "dbmodal/invariants_model.h"
#include "messages/memory.h"

namespace {

using fmdtest::expect_near;
using fmdtest::InvariantsModel;
using fmdtest::Nine;
using fmdtest::same_bits;
using fmdtest::Three;
using fmdtest::transposed;

class InvariantsOfPairs : public fmdtest::InvariantsTest {
 protected:
  // The tensor of a pair as a plain loop over the nodes sums it.
  static Nine node_by_node(const InvariantsModel& model, std::size_t i, std::size_t j) {
    Nine tensor{};
    for (std::size_t p = 0; p < model.nodes.size(); ++p) {
      Three a = model.modes[i].translations[p];
      Three b = model.modes[j].translations[p];
      incr_scalar_tilde_tilde(tensor.data(), model.nodes[p].mass, a.data(), b.data());
    }
    if (i == j) {
      tensor[1] = tensor[3];
      tensor[2] = tensor[6];
      tensor[5] = tensor[7];
    }
    return tensor;
  }

  void expect_bits_of_the_plain_loop(FmdBody* body, const InvariantsModel& model) const {
    const std::size_t modes = model.modes.size();
    for (std::size_t i = 0; i < modes; ++i) {
      const std::vector<double> fifth = taken(FMD_Invar5(body, static_cast<int>(i)), 3 * modes);
      ASSERT_EQ(fifth.size(), 3 * modes);
      for (std::size_t j = 0; j < modes; ++j) {
        const Nine upper = node_by_node(model, std::min(i, j), std::max(i, j));
        const Nine expected = i <= j ? upper : transposed(upper);
        const Nine ninth = taken_tensor(FMD_Invar9(body, static_cast<int>(i), static_cast<int>(j)));
        ASSERT_TRUE(same_bits(ninth.data(), expected.data(), 9)) << i << " " << j;
        Three cross = {upper[7] - upper[5], upper[2] - upper[6], upper[3] - upper[1]};
        if (i >= j)
          for (double& value : cross) value = -value;
        ASSERT_TRUE(same_bits(column(fifth, j).data(), cross.data(), 3)) << i << " " << j;
      }
    }
  }
};

TEST_F(InvariantsOfPairs, AreSumsOfMatrixProductsOverTheNodes) {
  const InvariantsModel model = InvariantsModel::random(31, 7);
  FmdBody* body = make_body(model);
  for (std::size_t i = 0; i < 7; ++i) {
    const std::vector<double> fifth = taken(FMD_Invar5(body, static_cast<int>(i)), 21);
    ASSERT_EQ(fifth.size(), 21U);
    for (std::size_t j = 0; j < 7; ++j) {
      expect_near(column(fifth, j).data(), model.invariant5(i, j).data(), 3, 500.0, "invariant 5");
      const Nine ninth = taken_tensor(FMD_Invar9(body, static_cast<int>(i), static_cast<int>(j)));
      expect_near(ninth.data(), model.invariant9(i, j).data(), 9, 500.0, "invariant 9");
    }
  }
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantsOfPairs, HaveTheBitsOfThePlainLoop) {
  for (const int modes : {1, 2, 3, 8, 9, 17}) {
    const InvariantsModel model = InvariantsModel::random(601, modes);
    FmdBody* body = make_body(model);
    expect_bits_of_the_plain_loop(body, model);
    FMD_UnLink(body);
  }
}

TEST_F(InvariantsOfPairs, HaveTheSameBitsWithTheCacheOff) {
  const InvariantsModel model = InvariantsModel::random(37, 5);
  FmdBody* body = make_body(model);
  FMD_SetKeepModesInMemory(body, 0);
  expect_bits_of_the_plain_loop(body, model);
}

TEST_F(InvariantsOfPairs, FifthOfAModeWithItselfIsNegativeZeroAndNinthSymmetric) {
  const InvariantsModel model = InvariantsModel::random(50, 4);
  FmdBody* body = make_body(model);
  for (int mode = 0; mode < 4; ++mode) {
    const Three own = column(taken(FMD_Invar5(body, mode), 12), static_cast<std::size_t>(mode));
    for (const double value : own) {
      EXPECT_EQ(value, 0.0);
      EXPECT_TRUE(std::signbit(value));
    }
    const Nine tensor = taken_tensor(FMD_Invar9(body, mode, mode));
    EXPECT_EQ(tensor, transposed(tensor));
  }
}

TEST_F(InvariantsOfPairs, GettersHandOutCopies) {
  FmdBody* body = make_body(InvariantsModel::random(5, 2));
  double* fifth = FMD_Invar5(body, 0);
  double* ninth = FMD_Invar9(body, 0, 1);
  const double kept[2] = {fifth[1], ninth[3]};
  fifth[1] = 1e9;
  ninth[3] = 1e9;
  FMD_FreeMemory(fifth);
  FMD_FreeMemory(ninth);
  EXPECT_EQ(taken(FMD_Invar5(body, 0), 6)[1], kept[0]);
  EXPECT_EQ(taken(FMD_Invar9(body, 0, 1), 9)[3], kept[1]);
}

TEST_F(InvariantsOfPairs, WithoutNodalMassAreZeros) {
  FmdBody* body = make_body(InvariantsModel::random(5, 2), false);
  EXPECT_EQ(taken(FMD_Invar5(body, 1), 6), std::vector<double>(6, 0.0));
  EXPECT_EQ(taken(FMD_Invar9(body, 1, 1), 9), std::vector<double>(9, 0.0));
  EXPECT_FALSE(std::signbit(taken(FMD_Invar5(body, 1), 6)[1]));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantsOfPairs, WithMassButNoNodesFailOnceAndStayZero) {
  FmdBody* body = FMD_Create(1, 2);
  FMD_AddMode(body, 1);
  body->BlockExists[fmd::kNodalMasses] = 1;
  EXPECT_EQ(FMD_Invar9(body, 0, 0), nullptr);
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(taken(FMD_Invar5(body, 0), 3), std::vector<double>(3, 0.0));
}

TEST_F(InvariantsOfPairs, AreNullWithoutModesForIndicesOutOfRangeAndForANullBody) {
  FmdBody* body = FMD_Create(2, 2);
  FMD_SetNodalMass(body, 1, 2.0);
  EXPECT_EQ(FMD_Invar5(body, 0), nullptr);
  EXPECT_EQ(FMD_Invar9(body, 0, 0), nullptr);
  FMD_AddMode(body, 1);
  for (const int bad : {-1, 1, 1 << 30}) {
    EXPECT_EQ(FMD_Invar5(body, bad), nullptr);
    EXPECT_EQ(FMD_Invar9(body, bad, 0), nullptr);
    EXPECT_EQ(FMD_Invar9(body, 0, bad), nullptr);
  }
  EXPECT_TRUE(log.all.empty());
  EXPECT_EQ(FMD_Invar5(nullptr, 0), nullptr);
  EXPECT_EQ(FMD_Invar9(nullptr, 0, 0), nullptr);
  EXPECT_EQ(log.errors, std::vector<std::string>(2, "The database has not been initialized."));
}

TEST_F(InvariantsOfPairs, ModesWithoutShapesCountAsZero) {
  FmdBody* body = FMD_Create(2, 2);
  FMD_SetNodalMass(body, 1, 2.0);
  FMD_AddMode(body, 1);
  EXPECT_EQ(taken(FMD_Invar9(body, 0, 0), 9), std::vector<double>(9, 0.0));
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantsOfPairs, FollowWhenModesAreAdded) {
  const InvariantsModel model = InvariantsModel::random(9, 2);
  FmdBody* body = make_body(model);
  const std::vector<double> fifth = taken(FMD_Invar5(body, 0), 6);
  const std::vector<double> ninth = taken(FMD_Invar9(body, 0, 1), 9);
  FMD_AddMode(body, 1000);
  const std::vector<double> wide = taken(FMD_Invar5(body, 0), 9);
  ASSERT_EQ(wide.size(), 9U);
  for (std::size_t mode = 0; mode < 3; ++mode)
    EXPECT_EQ(column(wide, mode), mode < 2 ? column(fifth, mode) : Three{});
  EXPECT_EQ(taken(FMD_Invar5(body, 2), 9), std::vector<double>(9, 0.0));
  EXPECT_EQ(taken(FMD_Invar9(body, 0, 1), 9), ninth);
  EXPECT_EQ(taken(FMD_Invar9(body, 2, 0), 9), std::vector<double>(9, 0.0));
}

TEST_F(InvariantsOfPairs, ASweepForOneReplacesWhatWasSetOfTheOther) {
  const InvariantsModel model = InvariantsModel::random(9, 2);
  FmdBody* body = make_body(model);
  double values[3] = {1.0, 2.0, 3.0};
  FMD_SetInvar5(body, model.modes[0].number, model.modes[1].number, values);
  EXPECT_EQ(column(taken(FMD_Invar5(body, 0), 6), 1), (Three{1.0, 2.0, 3.0}));
  taken(FMD_Invar9(body, 0, 0), 9);
  expect_bits_of_the_plain_loop(body, model);
}

TEST_F(InvariantsOfPairs, FillTheCacheInModeOrderAsFarAsItGoes) {
  const InvariantsModel model = InvariantsModel::random(8, 4);
  FmdBody* body = make_body(model);
  body->ModeMemoryCapacity = 2;
  expect_bits_of_the_plain_loop(body, model);
  EXPECT_EQ(body->ModeMemoryUsed, 2);
  std::vector<double> half(24);
  for (std::size_t mode = 0; mode < 4; ++mode) {
    EXPECT_EQ(FMD_ModeFromMemory(body, model.modes[mode].number, 0, half.data(), 0), mode < 2 ? 1 : 0);
    EXPECT_EQ(FMD_ModeFromMemory(body, model.modes[mode].number, 0, half.data(), 1), 0);
  }
}

TEST_F(InvariantsOfPairs, TakeACachedOrLoadedVectorAsItStands) {
  const InvariantsModel model = InvariantsModel::random(6, 3);
  for (const int keep : {1, 0}) {
    FmdBody* body = make_body(model);
    FMD_SetKeepModesInMemory(body, keep);
    std::vector<double> half(18);
    ASSERT_EQ(FMD_Mode(body, model.modes[1].number, 0, half.data(), 0), 1);
    FMD_SetMode(body, model.modes[1].number, model.nodes[0].id, 0, 9.0, 9.0, 9.0, 0.0, 0.0, 0.0);
    expect_bits_of_the_plain_loop(body, model);
    FMD_UnLink(body);
  }
}

TEST_F(InvariantsOfPairs, TranslationsComeInUnitsOfTheBody) {
  InvariantsModel model = InvariantsModel::random(6, 3);
  for (const int keep : {1, 0}) {
    FmdBody* body = make_body(model);
    FMD_SetKeepModesInMemory(body, keep);
    body->UnitTotalFactor[fmd::kLength] = 4.0;
    const Nine found = taken_tensor(FMD_Invar9(body, 0, 2));
    Nine expected = node_by_node(model, 0, 2);
    for (double& value : expected) value *= 16.0;
    EXPECT_TRUE(same_bits(found.data(), expected.data(), 9));
    FMD_UnLink(body);
  }
}

TEST_F(InvariantsOfPairs, AVectorThatCannotBeReadIsReportedOnceAndCountsAsZero) {
  InvariantsModel model = InvariantsModel::random(6, 3);
  FmdBody* body = make_body(model);
  FMD_SetKeepModesInMemory(body, 0);
  body->ModePositions[0][1].Word[0] = -1;
  body->ModePositions[0][1].Word[1] = -1;
  const Nine ninth = taken_tensor(FMD_Invar9(body, 0, 2));
  EXPECT_EQ(log.errors,
            std::vector<std::string>{"Problem reading mode shape " + std::to_string(model.modes[1].number)});
  const Nine expected = node_by_node(model, 0, 2);
  EXPECT_TRUE(same_bits(ninth.data(), expected.data(), 9));
  EXPECT_EQ(taken_tensor(FMD_Invar9(body, 0, 1)), Nine{});
}

TEST_F(InvariantsOfPairs, PanelsOfAnyLengthGiveTheTranslationsOfFetches) {
  const InvariantsModel model = InvariantsModel::random(29, 3);
  FmdBody* body = make_body(model);
  for (const int keep : {0, 1}) {
    FMD_SetKeepModesInMemory(body, keep);
    if (keep == 1) body->ModeMemoryCapacity = 2;
    for (const int nodes : {1, 4, 29, 100}) {
      fmd::ModePanels panels;
      ASSERT_TRUE(panels.open(body, nodes));
      ASSERT_EQ(panels.panel_nodes(), std::min(nodes, 29));
      for (int first = 0; first < 29; first += panels.panel_nodes()) {
        const int count = std::min(panels.panel_nodes(), 29 - first);
        const fmd::ModeTranslations* pieces = panels.read(first, count);
        for (std::size_t mode = 0; mode < 3; ++mode) {
          for (int node = 0; node < count; ++node) {
            const Three& expected = model.modes[mode].translations[static_cast<std::size_t>(first + node)];
            EXPECT_TRUE(same_bits(pieces[mode].values + node * pieces[mode].stride, expected.data(), 3));
          }
        }
      }
    }
  }
}

TEST_F(InvariantsOfPairs, PanelsAreReadFromAStoreInSinglePrecision) {
  FmdBody* body = FMD_Create(10, 2);
  for (int node = 1; node <= 10; ++node) FMD_AddNode(body, node);
  FmdStream& stream = body->ModeFile[0];
  stream.Block = DB_OpenScratch(&stream.Key);
  stream.IsScratch = 1;
  std::vector<float> narrow(60);
  stream.FloatBuffer = narrow.data();
  body->ModePositions[0] = fmd::allocate<FmdPosition>(2, "dbset").release();
  for (int mode = 0; mode < 2; ++mode) {
    FMD_AddMode(body, mode + 1);
    std::vector<double> vector;
    for (int node = 0; node < 10; ++node)
      vector.insert(vector.end(), {node + 1.0, mode + 1.0, 0.5, 7.0, 8.0, 9.0});
    DB_FSAVE(&body->ModePositions[0][mode], stream);
    ASSERT_EQ(DB_WriteDOUBLEs(stream, vector.data(), 60), 1);
  }
  ASSERT_EQ(DB_ReOpenScratch(stream.Block), 1);
  FMD_SetKeepModesInMemory(body, 0);
  fmd::ModePanels panels;
  ASSERT_TRUE(panels.open(body, 3));
  for (int first = 0; first < 9; first += 3) {
    const fmd::ModeTranslations* pieces = panels.read(first, 3);
    for (int mode = 0; mode < 2; ++mode) {
      for (int node = 0; node < 3; ++node) {
        const Three expected = {first + node + 1.0, mode + 1.0, 0.5};
        EXPECT_TRUE(same_bits(pieces[mode].values + node * pieces[mode].stride, expected.data(), 3));
      }
    }
  }
}

TEST_F(InvariantsOfPairs, PanelsKeepTheirBoundForAnyNumberOfModes) {
  for (const int modes : {1, 2, 60, 100, 1000, 10000, 100000, 2000000000}) {
    const std::int64_t nodes = fmd::ModePanels::suitable_nodes(modes);
    EXPECT_GE(nodes, 1);
    EXPECT_TRUE(nodes == 1 || nodes * modes * 48 <= (24 << 20)) << modes;
    EXPECT_TRUE(nodes >= 1024 || nodes * modes * 48 + 48 * std::int64_t{modes} > (24 << 20)) << modes;
  }
}

// More nodes than two panels of two modes hold.
TEST_F(InvariantsOfPairs, ManyNodesAreSummedPanelByPanel) {
  const int node_count = 2 * fmd::ModePanels::suitable_nodes(2) + 1000;
  FmdBody* body = FMD_Create(node_count, 2);
  Nine expected{};
  Nine own{};
  for (int node = 0; node < node_count; ++node) {
    double a[3] = {1.0 / (node + 1), 0.5 * (node % 7), -0.25 * (node % 11)};
    double b[3] = {0.1 * (node % 13), -1.0, 3.0 / (node + 2)};
    FMD_SetNodalMass(body, node + 1, 0.001 * (node % 5));
    FMD_SetMode(body, 1, node + 1, 0, a[0], a[1], a[2], 0.0, 0.0, 0.0);
    FMD_SetMode(body, 2, node + 1, 0, b[0], b[1], b[2], 0.0, 0.0, 0.0);
    incr_scalar_tilde_tilde(expected.data(), 0.001 * (node % 5), a, b);
    incr_scalar_tilde_tilde(own.data(), 0.001 * (node % 5), b, b);
  }
  FMD_SetKeepModesInMemory(body, 0);
  const Nine found = taken_tensor(FMD_Invar9(body, 0, 1));
  EXPECT_TRUE(same_bits(found.data(), expected.data(), 9));
  const Nine found_own = taken_tensor(FMD_Invar9(body, 1, 1));
  EXPECT_EQ(found_own[0], own[0]);
  EXPECT_EQ(found_own[1], own[3]);
  EXPECT_EQ(found_own[8], own[8]);
}

}  // namespace
