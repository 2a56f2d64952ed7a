// Matrices over modes and rigid invariants in the file.
#include <gtest/gtest.h>

#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

class WriteMatrices : public WriteTest {};

TEST_F(WriteMatrices, NoOrthoWritesStiffnessAndMassInPlaceOfEigenvalues) {
  FmdBody* body = make_nodes({1, 2}, 2);
  add_vectors(body, 0, {11, 5}, {1, 2});
  FMD_SetGeneralizedMass(body, 11, 11, 2.0);
  FMD_SetGeneralizedMass(body, 5, 5, 3.0);
  FMD_SetGeneralizedMass(body, 5, 11, 0.5);
  FMD_SetGeneralizedStiffness(body, 5, 5, 100.0);
  for (const WordCase& word : kWordCases) {
    const Dataset dataset = written(body, std::string("no_ortho lowpass(0.001) ") + word.options);
    EXPECT_EQ(dataset.block(7), nullptr);
    EXPECT_EQ(dataset.block(16), nullptr);
    const auto& mass = *dataset.generalized_mass;
    EXPECT_EQ(mass.order, 2);
    ASSERT_EQ(mass.entries.size(), 3U);
    EXPECT_EQ(mass.entries[0].row, 11);
    EXPECT_EQ(mass.entries[0].last_word, 1);
    EXPECT_EQ(mass.entries[2].row, 5);
    EXPECT_EQ(mass.entries[2].column, 11);
    EXPECT_EQ(mass.entries[2].value, 0.5);
    ASSERT_EQ(dataset.generalized_stiffness->entries.size(), 1U);
    EXPECT_EQ(dataset.generalized_stiffness->entries[0].row, 5);
    EXPECT_EQ(dataset.generalized_stiffness->entries[0].value, 100.0);
  }
  EXPECT_EQ(FMD_ModeNumber(body, 0), 11);
}

TEST_F(WriteMatrices, NoOrthoWithoutListsWritesTheDiagonal) {
  FmdBody* body = make_nodes({1}, 2);
  add_vectors(body, 0, {3, 4}, {1});
  const Dataset dataset = written(body, "no_ortho");
  ASSERT_EQ(dataset.generalized_stiffness->entries.size(), 2U);
  EXPECT_EQ(dataset.generalized_stiffness->entries[1].row, 4);
  EXPECT_EQ(dataset.generalized_stiffness->entries[1].column, 4);
  EXPECT_EQ(dataset.generalized_stiffness->entries[1].value, 0.0);
  EXPECT_EQ(dataset.generalized_mass->entries[0].value, 1e-16);
}

TEST_F(WriteMatrices, NoOrthoWithoutModesFails) {
  FmdBody* body = make_nodes({1}, 1);
  EXPECT_EQ(write(body, "no_ortho"), 0);
  ASSERT_EQ(log.errors.size(), 2U);
  EXPECT_TRUE(is_allocation_failure(log.errors[0], "dbwrite")) << log.errors[0];
  EXPECT_EQ(log.errors[1], "Problem writing Generalized Stiffness info.");
  EXPECT_FALSE(std::filesystem::exists("out.fmd"));
}

TEST_F(WriteMatrices, DampingHasMatrixIndicesFromOne) {
  FmdBody* body = make_sample_body();
  FMD_SetGeneralizedDamping(body, 7, 7, 0.5);
  FMD_SetGeneralizedDamping(body, 9, 8, -0.25);
  for (const WordCase& word : kWordCases) {
    const Dataset dataset = written(body, word.options);
    EXPECT_EQ(dataset.generalized_damping->projected, 0);
    const auto& entries = dataset.generalized_damping->entries;
    ASSERT_EQ(entries.size(), 2U);
    EXPECT_EQ(entries[0].row, 1);
    EXPECT_EQ(entries[0].column, 1);
    EXPECT_EQ(entries[0].value, 0.5);
    EXPECT_EQ(entries[0].last_word, 1);
    EXPECT_EQ(entries[1].row, 3);
    EXPECT_EQ(entries[1].column, 2);
    EXPECT_EQ(entries[1].value, -0.25);
  }
}

TEST_F(WriteMatrices, RigidInvariantsThatWereSetAreWritten) {
  FmdBody* body = make_nodes({1, 2}, 1);
  FMD_SetInvar1(body, 4.0);
  double moment[3] = {1.0, -2.0, 3.0};
  FMD_SetInvar2(body, moment);
  double tensor[6] = {11, 22, 33, 12, 13, 23};
  FMD_SetInvar7(body, tensor);
  for (const WordCase& word : kWordCases) {
    const Dataset dataset = written(body, word.options);
    EXPECT_EQ(*dataset.invariant1, 4.0);
    EXPECT_EQ(*dataset.invariant2, (std::vector<double>{1.0, -2.0, 3.0}));
    EXPECT_EQ(*dataset.invariant7, (std::vector<double>{11, 12, 13, 12, 22, 23, 13, 23, 33}));
  }
}

}  // namespace

}  // namespace fmdtest
