// Invariants read from the dataset behind a body, which the test writes record by record.
#include <gtest/gtest.h>

#include <numeric>
#include <regex>

#include "dbmodal/invariants_model.h"

namespace {

using fmdtest::Nine;

constexpr double kMassFactor = 2.0;
constexpr double kLengthFactor = 3.0;

class InvariantBlocks : public fmdtest::InvariantsTest {
 protected:
  // Two modes, and units that have changed since the dataset was written.
  void SetUp() override {
    body = FMD_Create(1, 4);
    FMD_AddMode(body, 10);
    FMD_AddMode(body, 20);
    FmdStream& stream = body->DataFile;
    stream.Block = DB_OpenScratch(&stream.Key);
    stream.DoublePrecision = 1;
    body->UnitTotalFactor[fmd::kMass] = kMassFactor;
    body->UnitTotalFactor[fmd::kLength] = kLengthFactor;
    log.clear();
  }

  // A block of values counting up from `first`, behind a mode count unless that is negative.
  void write_block(int id, int modes, int count, double first) {
    const FmdStream& stream = body->DataFile;
    DB_FSAVE(&body->BlockPosition[id], stream);
    ASSERT_EQ(DB_WriteINTs(stream, &modes, modes < 0 ? 0 : 1), 1);
    const std::vector<double> values = counting(count, first, 1.0);
    ASSERT_EQ(DB_WriteDOUBLEs(stream, values.data(), count), 1);
    ASSERT_EQ(DB_WriteEOR(stream), 1);
    body->BlockExists[id - 1] = 1;
  }

  void end_writing() const { ASSERT_EQ(DB_ReOpenScratch(body->DataFile.Block), 1); }

  static std::vector<double> counting(int count, double first, double factor) {
    std::vector<double> values(static_cast<std::size_t>(count));
    std::iota(values.begin(), values.end(), first);
    for (double& value : values) value *= factor;
    return values;
  }

  FmdBody* body = nullptr;
};

TEST_F(InvariantBlocks, ComeInUnitsOfTheBody) {
  write_block(18, -1, 1, 5.0);
  write_block(19, -1, 3, 10.0);
  write_block(20, 2, 6, 20.0);
  write_block(21, 2, 6, 30.0);
  write_block(22, 2, 12, 40.0);
  write_block(23, -1, 9, 60.0);
  write_block(24, 2, 18, 70.0);
  write_block(25, 2, 36, 90.0);
  end_writing();
  const double with_length = kMassFactor * kLengthFactor;
  const double squared = with_length * kLengthFactor;
  EXPECT_EQ(FMD_Invar9(body, 2, 0), nullptr);
  EXPECT_EQ(taken(FMD_Invar9(body, 1, 0), 9), counting(9, 108.0, squared));
  EXPECT_EQ(taken(FMD_Invar9(body, 0, 1), 9), counting(9, 99.0, squared));
  EXPECT_EQ(taken(FMD_Invar8(body, 1), 9), counting(9, 79.0, squared));
  EXPECT_EQ(taken(FMD_Invar7(body), 9), counting(9, 60.0, squared));
  EXPECT_EQ(taken(FMD_Invar5(body, 1), 6), counting(6, 46.0, squared));
  EXPECT_EQ(taken(FMD_Invar4(body), 6), counting(6, 30.0, squared));
  EXPECT_EQ(taken(FMD_Invar3(body), 6), counting(6, 20.0, with_length));
  EXPECT_EQ(taken(FMD_Invar2(body), 3), counting(3, 10.0, with_length));
  EXPECT_EQ(FMD_Invar1(body), 5.0 * kMassFactor);
  EXPECT_TRUE(log.all.empty());
}

TEST_F(InvariantBlocks, AreReadOnce) {
  write_block(20, 2, 6, 20.0);
  end_writing();
  const std::vector<double> first = taken(FMD_Invar3(body), 6);
  body->UnitTotalFactor[fmd::kMass] = 100.0;
  EXPECT_EQ(taken(FMD_Invar3(body), 6), first);
}

TEST_F(InvariantBlocks, AnotherModeCountIsReportedAndReadingGoesOn) {
  write_block(20, 3, 9, 20.0);
  write_block(21, 3, 9, 30.0);
  write_block(22, 3, 27, 40.0);
  write_block(24, 3, 27, 70.0);
  write_block(25, 3, 81, 90.0);
  end_writing();
  EXPECT_EQ(taken(FMD_Invar3(body), 6), counting(6, 20.0, 6.0));
  EXPECT_EQ(taken(FMD_Invar4(body), 6), counting(6, 30.0, 18.0));
  EXPECT_EQ(taken(FMD_Invar5(body, 0), 6), counting(6, 40.0, 18.0));
  EXPECT_EQ(taken(FMD_Invar8(body, 0), 9), counting(9, 70.0, 18.0));
  EXPECT_EQ(taken(FMD_Invar9(body, 0, 0), 9), counting(9, 90.0, 18.0));
  ASSERT_EQ(log.errors.size(), 5U);
  for (const std::string& error : log.errors)
    EXPECT_TRUE(std::regex_match(error, std::regex("nm!=ModeCount at line \\d+ in file dbinvar"))) << error;
}

TEST_F(InvariantBlocks, ABlockThatEndsEarlyIsNoInvariant) {
  write_block(20, 1, 3, 20.0);
  write_block(22, 1, 3, 40.0);
  write_block(24, 1, 9, 70.0);
  write_block(25, 1, 9, 90.0);
  end_writing();
  EXPECT_EQ(FMD_Invar3(body), nullptr);
  EXPECT_EQ(FMD_Invar5(body, 0), nullptr);
  EXPECT_EQ(FMD_Invar8(body, 0), nullptr);
  EXPECT_EQ(FMD_Invar9(body, 0, 0), nullptr);
  EXPECT_EQ(body->Invar3, nullptr);
  EXPECT_EQ(body->Invar9, nullptr);
}

TEST_F(InvariantBlocks, ModesAddedAfterReadingHaveZeros) {
  write_block(22, 2, 12, 40.0);
  write_block(25, 2, 36, 90.0);
  end_writing();
  const std::vector<double> fifth = taken(FMD_Invar5(body, 1), 6);
  const std::vector<double> ninth = taken(FMD_Invar9(body, 1, 1), 9);
  FMD_AddMode(body, 30);
  const std::vector<double> wide = taken(FMD_Invar5(body, 1), 9);
  EXPECT_EQ(column(wide, 1), column(fifth, 1));
  EXPECT_EQ(column(wide, 2), (fmdtest::Three{}));
  EXPECT_EQ(taken(FMD_Invar9(body, 1, 1), 9), ninth);
  EXPECT_EQ(taken(FMD_Invar9(body, 2, 1), 9), std::vector<double>(9, 0.0));
}

TEST_F(InvariantBlocks, SweepForOneReplacesTheOtherThatWasRead) {
  write_block(22, 2, 12, 40.0);
  end_writing();
  EXPECT_NE(taken(FMD_Invar5(body, 0), 6), std::vector<double>(6, 0.0));
  EXPECT_EQ(taken(FMD_Invar9(body, 0, 0), 9), std::vector<double>(9, 0.0));
  EXPECT_EQ(taken(FMD_Invar5(body, 0), 6), std::vector<double>(6, 0.0));
}

}  // namespace
