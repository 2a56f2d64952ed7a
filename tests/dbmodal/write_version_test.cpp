// Which version word, encoding and precision the options give, and which of them contradict each other.
#include <gtest/gtest.h>

#include "body/body.h"
#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

class VersionWord : public WriteTest, public ::testing::WithParamInterface<WordCase> {};

INSTANTIATE_TEST_SUITE_P(OfOptions, VersionWord, ::testing::ValuesIn(kWordCases),
                         [](const auto& form) { return name_of(form.param); });

TEST_P(VersionWord, FollowsTheOptions) {
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  EXPECT_EQ(dataset.version_word, GetParam().word);
  EXPECT_EQ(dataset.xdr, GetParam().xdr);
  EXPECT_EQ(dataset.single, GetParam().single);
}

TEST_P(VersionWord, GetsBitTenForACoarsenedBodyOverTheSameBytes) {
  FmdBody* body = make_sample_body();
  ASSERT_EQ(write(body, GetParam().options), 1);
  const auto plain = dataset_reader::read_bytes("out.fmd");
  body->Version |= fmd::kVersionCoarsened;
  body->Coarsened = 1;
  const Dataset dataset = written(body, GetParam().options);
  EXPECT_EQ(dataset.version_word, GetParam().word | 0x400U);
  EXPECT_EQ(dataset.xdr, GetParam().xdr);
  EXPECT_EQ(dataset.single, GetParam().single);
  const auto coarse = dataset_reader::read_bytes("out.fmd");
  ASSERT_EQ(coarse.size(), plain.size());
  EXPECT_TRUE(std::equal(coarse.begin() + 4, coarse.end(), plain.begin() + 4));
}

class MoreOptions : public WriteTest, public ::testing::WithParamInterface<WordCase> {};

INSTANTIATE_TEST_SUITE_P(
    OfOptions, MoreOptions,
    ::testing::Values(
        WordCase{"82_comp no_xdr", 20, false, false}, WordCase{"no_xdr,82_comp", 20, false, false},
        WordCase{"82_comp full_str", 20, false, false}, WordCase{"81_comp full_str no_xdr", 10, false, false},
        WordCase{"81_comp 82_comp", 10, false, false}, WordCase{"82_comp;81_comp", 10, false, false},
        WordCase{"no_xdr single", 0x23C, false, true}, WordCase{"no_xdrsinglefull_str", 50, false, true},
        WordCase{"xfull_stry", 41, true, false}, WordCase{"FULL_STR", 0x13C, true, false},
        WordCase{"sparse_str", 0x13C, true, false}, WordCase{"sparse_str single", 0x33C, true, true},
        WordCase{"no_ortho", 0x13C, true, false},
        WordCase{"some_word that=nobody knows", 0x13C, true, false}),
    [](const auto& form) { return "Case" + std::to_string(form.index); });

TEST_P(MoreOptions, AreFoundAnywhereInTheText) {
  const Dataset dataset = written(make_sample_body(), GetParam().options);
  EXPECT_EQ(dataset.version_word, GetParam().word);
  EXPECT_EQ(dataset.xdr, GetParam().xdr);
  EXPECT_EQ(dataset.single, GetParam().single);
}

class DefaultWord : public WriteTest {};

TEST_F(DefaultWord, StandsFirstInTheFileInBigEndianOrder) {
  unsetenv("KXI_FMDWRITE_OPTIONS");
  char path[] = "plain.fmd";
  ASSERT_EQ(FMD_write_FMD(make_sample_body(), path), 1);
  const auto bytes = dataset_reader::read_bytes(path);
  ASSERT_GT(bytes.size(), 4U);
  EXPECT_EQ(std::vector<unsigned char>(bytes.begin(), bytes.begin() + 4),
            (std::vector<unsigned char>{0x00, 0x00, 0x01, 0x3C}));
  const Dataset dataset = dataset_reader::read_dataset(bytes);
  EXPECT_EQ(dataset.block(2)->offset, 4U);
  EXPECT_EQ(dataset.block(2)->bytes, 2176U);
  EXPECT_EQ(dataset.block(3)->offset, 2180U);
  EXPECT_EQ(dataset.block(4)->offset, 2580U);
}

TEST_F(DefaultWord, DoesNotDependOnTheVersionThatTheBodyHad) {
  FmdBody* body = make_sample_body();
  FMD_SetVersion(body, 41);
  EXPECT_EQ(written(body).version_word, 0x13CU);
}

TEST_F(DefaultWord, IsReadAfreshAtEachWrite) {
  FmdBody* body = make_sample_body();
  EXPECT_EQ(written(body, "no_xdr").version_word, 0x03CU);
  EXPECT_EQ(written(body, "single").version_word, 0x33CU);
}

class Conflict : public WriteTest {};

const char* const kVersionProblem = "Problem writing version number.";

TEST_F(Conflict, OfFullAndSparseStressEndsTheWrite) {
  FmdBody* body = make_sample_body();
  const char* const message = "Cannot specify full and sparse stress and strain modes.";
  expect_failure(body, "full_str sparse_str", {message, kVersionProblem});
  expect_failure(body, "sparse_str,single,full_str", {message, kVersionProblem});
}

TEST_F(Conflict, OfLevelTwentyIsReportedOneByOne) {
  FmdBody* body = make_sample_body();
  const std::string invariants = "8.2 compatible FMD cannot contain Invariants";
  const std::string single = "8.2 compatible FMD cannot be single precision";
  const std::string sparse = "8.2 compatible FMD cannot have sparse stress or strain modes";
  expect_failure(body, "82_comp full_invar", {invariants, kVersionProblem});
  expect_failure(body, "82_comp invar", {invariants, kVersionProblem});
  expect_failure(body, "82_comp single", {single, kVersionProblem});
  expect_failure(body, "82_comp sparse_str", {sparse, kVersionProblem});
  expect_failure(body, "sparse_str single fast_invar 82_comp", {invariants, single, sparse, kVersionProblem});
}

TEST_F(Conflict, OfLevelTenIsReportedOneByOne) {
  FmdBody* body = make_sample_body();
  const std::string invariants = "8.1 compatible FMD cannot contain Invariants";
  const std::string single = "8.1 compatible FMD cannot be single precision";
  const std::string sparse = "8.1 compatible FMD cannot have sparse stress or strain modes";
  expect_failure(body, "81_comp full_invar", {invariants, kVersionProblem});
  expect_failure(body, "81_comp single", {single, kVersionProblem});
  expect_failure(body, "81_comp sparse_str", {sparse, kVersionProblem});
  expect_failure(body, "sparse_str single fast_invar 81_comp", {invariants, single, sparse, kVersionProblem});
}

TEST_F(Conflict, OfAllLevelsComesInTheOrderOfTheTests) {
  expect_failure(
      make_sample_body(), "81_comp 82_comp full_str sparse_str single full_invar",
      {"Cannot specify full and sparse stress and strain modes.",
       "8.2 compatible FMD cannot contain Invariants", "8.2 compatible FMD cannot be single precision",
       "8.2 compatible FMD cannot have sparse stress or strain modes",
       "8.1 compatible FMD cannot contain Invariants", "8.1 compatible FMD cannot be single precision",
       "8.1 compatible FMD cannot have sparse stress or strain modes", kVersionProblem});
}

TEST_F(Conflict, LeavesTheModesAloneAndSaysNothingElse) {
  FmdBody* body = make_sample_body();
  EXPECT_EQ(write(body, "full_str sparse_str"), 0);
  EXPECT_EQ(log.infos, Strings{});
  EXPECT_EQ(log.warnings, Strings{});
  EXPECT_EQ(FMD_ModeNumber(body, 0), kSampleModes[0]);
  EXPECT_EQ(FMD_ModalStatisticsExist(body), 0);
}

TEST_F(Conflict, RemovesAFileThatStoodThereBefore) {
  FmdBody* body = make_sample_body();
  ASSERT_EQ(write(body), 1);
  expect_failure(body, "82_comp single", {"8.2 compatible FMD cannot be single precision", kVersionProblem});
}

}  // namespace

}  // namespace fmdtest
