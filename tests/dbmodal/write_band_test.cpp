// Which modes a write exports and how it numbers them.
#include <gtest/gtest.h>

#include "body/body.h"
#include "dbmodal/write_fixture.h"

namespace fmdtest {

namespace {

class FrequencyBand : public WriteTest {
 protected:
  std::vector<double> exported(const Dataset& dataset) {
    std::vector<double> hertz;
    if (!dataset.eigenvalues) return hertz;
    for (const auto& mode : *dataset.eigenvalues) hertz.push_back(mode.hertz);
    return hertz;
  }

  bool said(const std::string& text) const {
    return std::find(log.infos.begin(), log.infos.end(), text) != log.infos.end();
  }
};

TEST_F(FrequencyBand, HasAnUpperEdgeThatStaysIn) {
  const Dataset dataset = written(make_sample_body(), "lowpass(10)");
  EXPECT_EQ(exported(dataset), (std::vector<double>{5.0, 10.0}));
  EXPECT_EQ(dataset.mode_shapes->words, (std::vector<std::int32_t>{1, 2}));
  EXPECT_EQ(dataset.statistics->size(), 2U);
  EXPECT_EQ(dataset.transformation->mode_numbers, kSampleModes);
  EXPECT_TRUE(said("Exporting frequency range [-1.000000e+00,1.000000e+01]\n"));
}

TEST_F(FrequencyBand, HasALowerEdgeThatStaysOutAndNumbersFromOne) {
  FmdBody* body = make_sample_body();
  const Dataset dataset = written(body, "highpass(5)");
  EXPECT_EQ(exported(dataset), (std::vector<double>{10.0, 15.0}));
  EXPECT_EQ(dataset.eigenvalues->at(0).mode, 1);
  EXPECT_EQ(dataset.mode_shapes->words, (std::vector<std::int32_t>{1, 2}));
  EXPECT_EQ(dataset.mode_shapes->at(0, 1), sample_vector(0, kSampleModes[1], kSampleNodes[1]));
  EXPECT_EQ(dataset.stress->words, (std::vector<std::int32_t>{1, 2}));
  EXPECT_EQ(dataset.stress->at(1, 0), sample_vector(1, kSampleModes[2], kSampleStressNodes[0]));
  EXPECT_EQ(dataset.statistics->size(), 2U);
  EXPECT_EQ(FMD_ModeCount(body), 3);
  EXPECT_EQ(FMD_ModeNumber(body, 0), 0);
  EXPECT_EQ(FMD_ModeNumber(body, 1), 1);
  EXPECT_EQ(FMD_ModeNumber(body, 2), 2);
  EXPECT_EQ(dataset.transformation->matrix, (std::vector<double>{1, 0, 0, 0, 1, 0, 0, 0, 1}));
  EXPECT_TRUE(said("Exporting frequency range [5.000000e+00,1.000000e+08]\n"));
}

TEST_F(FrequencyBand, KeepsTheStatisticsOfTheModesThatItExports) {
  const Dataset whole = written(make_sample_body());
  FmdBody* body = make_sample_body();
  const Dataset cut = written(body, "highpass(5)");
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(cut.statistics->at(i).nodes, whole.statistics->at(i + 1).nodes);
    EXPECT_EQ(cut.statistics->at(i).values, whole.statistics->at(i + 1).values);
    int node = 0;
    double value = 0.0;
    EXPECT_EQ(FMD_GetMaxVonMisesStress(body, static_cast<int>(i) + 1, &node, &value), 1);
    EXPECT_EQ(node, cut.statistics->at(i).nodes[2]);
    EXPECT_EQ(value, cut.statistics->at(i).values[2]);
    EXPECT_EQ(FMD_GetMaxModeRotation(body, static_cast<int>(i) + 1, &node, &value), 1);
    EXPECT_EQ(node, cut.statistics->at(i).nodes[1]);
    EXPECT_EQ(value, cut.statistics->at(i).values[1]);
  }
}

TEST_F(FrequencyBand, OfAnEarlierWriteDoesNotBindALaterOne) {
  FmdBody* body = make_sample_body();
  EXPECT_EQ(exported(written(body, "highpass(12)")), (std::vector<double>{15.0}));
  EXPECT_EQ(FMD_ModeNumber(body, 0), -1);
  const Dataset dataset = written(body);
  EXPECT_EQ(exported(dataset), kSampleHertz);
  EXPECT_EQ(dataset.mode_shapes->words, (std::vector<std::int32_t>{1, 2, 3}));
}

TEST_F(FrequencyBand, TakesBothEdges) {
  const Dataset dataset = written(make_sample_body(), "lowpass( 1.2e1) highpass(7.5)");
  EXPECT_EQ(exported(dataset), (std::vector<double>{10.0}));
  EXPECT_TRUE(said("Exporting frequency range [7.500000e+00,1.200000e+01]\n"));
}

TEST_F(FrequencyBand, ReadsDigitsPointsExponentsAndMinusOnly) {
  EXPECT_EQ(exported(written(make_sample_body(), "lowpass(1e+1)")), std::vector<double>{});
  EXPECT_TRUE(said("Exporting frequency range [-1.000000e+00,1.000000e+00]\n"));
  EXPECT_EQ(exported(written(make_sample_body(), "lowpass(abc)")).size(), 3U);
  EXPECT_EQ(exported(written(make_sample_body(), "lowpass() highpass")).size(), 3U);
  EXPECT_TRUE(said("Exporting frequency range [-1.000000e+00,1.000000e+08]\n"));
}

TEST_F(FrequencyBand, ThatKeepsNothingExportsNoModes) {
  for (const char* options :
       {"lowpass(1)", "highpass(100)", "lowpass(12) highpass(11)", "lowpass(7) highpass(12)"}) {
    const Dataset dataset = written(make_sample_body(), options);
    EXPECT_EQ(exported(dataset), std::vector<double>{}) << options;
    EXPECT_EQ(dataset.mode_shapes ? dataset.mode_shapes->mode_count : 0, 0) << options;
    EXPECT_EQ(dataset.block(30), nullptr) << options;
  }
}

TEST_F(FrequencyBand, EndsAtAModeOfZeroGeneralizedMass) {
  FmdBody* body = make_sample_body();
  ASSERT_EQ(FMD_OrthoNormalize(body), 1);
  body->ModeRecords[1].GeneralizedMass = 0.0;
  EXPECT_EQ(exported(written(body, "lowpass(100)")), (std::vector<double>{5.0}));
}

TEST_F(FrequencyBand, DoesNotReachAMassThatTheModesDoNotHave) {
  FmdBody* body = make_nodes({1}, 2);
  add_vectors(body, 0, {1, 2}, {1});
  add_frequency(body, 1, 5.0);
  FMD_SetGeneralizedMass(body, 2, 2, 0.0);
  FMD_SetGeneralizedStiffness(body, 2, 2, 4.0);
  FMD_SetShouldMassNormalizeModes(body, 0);
  const Dataset dataset = written(body);
  EXPECT_EQ(exported(dataset), (std::vector<double>{5.0}));
  EXPECT_EQ(dataset.transformation->matrix, std::vector<double>{1.0});
  EXPECT_EQ(log.warnings, Strings{"Mode 2 is not physically meaningful.\n"
                                  "It is associated with a zero generalized mass\n"});
  EXPECT_EQ(FMD_ModeCount(body), 1);
}

TEST_F(FrequencyBand, IsToldForABodyWithoutModes) {
  FmdBody* body = make_nodes({1}, 1);
  EXPECT_EQ(write(body, "lowpass(3)"), 1);
  EXPECT_TRUE(said("Exporting frequency range [-1.000000e+00,3.000000e+00]\n"));
}

TEST_F(FrequencyBand, IsNeitherToldNorAppliedWithoutOrthonormalisation) {
  const Dataset dataset = written(make_sample_body(), "no_ortho lowpass(7)");
  EXPECT_EQ(dataset.mode_shapes->words, kSampleModes);
  for (const std::string& info : log.infos) EXPECT_EQ(info.find("Exporting"), std::string::npos) << info;
}

TEST_F(FrequencyBand, StaysOpenWithoutOptions) {
  FmdBody* body = make_nodes({1}, 2);
  add_vectors(body, 0, {1, 2}, {1});
  // A negative eigenvalue has a negative frequency; the lower edge is -1.
  FMD_SetGeneralizedMass(body, 1, 1, 1.0);
  FMD_SetGeneralizedStiffness(body, 1, 1, -stiffness_of(2.5));
  add_frequency(body, 2, 5.0);
  EXPECT_EQ(exported(written(body)), (std::vector<double>{5.0}));
}

}  // namespace

}  // namespace fmdtest
