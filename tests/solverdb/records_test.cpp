#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <numeric>
#include <vector>

#include "solverdb/scratch.h"
#include "solverdb/scratch_stream.h"

namespace {

class RecordsTest : public fmdtest::ScratchStreamTest {
 protected:
  std::vector<int> read_ints(int n) {
    std::vector<int> values(static_cast<std::size_t>(n), -99);
    EXPECT_EQ(DB_ReadINTs(stream, values.data(), n), 1);
    return values;
  }
  void write_ints(const std::vector<int>& values) {
    EXPECT_EQ(DB_WriteINTs(stream, values.data(), static_cast<int>(values.size())), 1);
  }
};

TEST_F(RecordsTest, IntsComeBackInOrder) {
  write_ints({1, -2, 3});
  write_ints({4});
  reopen();
  EXPECT_EQ(read_ints(4), (std::vector<int>{1, -2, 3, 4}));
}

TEST_F(RecordsTest, TextOfFiveBytesTakesTwoWordsThePaddingZero) {
  EXPECT_EQ(DB_WriteCHARs(stream, "ABCDE", 5), 1);
  write_ints({77});
  reopen();
  unsigned char words[8];
  EXPECT_EQ(DB_ReadINTs(stream, reinterpret_cast<int*>(words), 2), 1);
  EXPECT_EQ(std::memcmp(words, "ABCDE\0\0\0", 8), 0);
  EXPECT_EQ(read_ints(1), (std::vector<int>{77}));

  DB_REWIND(stream);
  char text[8] = "zzzzzzz";
  EXPECT_EQ(DB_ReadCHARs(stream, text, 5), 1);
  EXPECT_EQ(std::memcmp(text, "ABCDEzz", 8), 0);
}

TEST_F(RecordsTest, TextOfNoBytesMovesNoWords) {
  FmdPosition before{};
  FmdPosition after{};
  DB_FSAVE(&before, stream);
  EXPECT_EQ(DB_WriteCHARs(stream, "", 0), 1);
  DB_FSAVE(&after, stream);
  EXPECT_EQ(std::memcmp(&before, &after, sizeof before), 0);
  write_ints({5});
  reopen();
  char text = 'q';
  EXPECT_EQ(DB_ReadCHARs(stream, &text, 0), 1);
  EXPECT_EQ(text, 'q');
  EXPECT_EQ(read_ints(1), (std::vector<int>{5}));
}

TEST_F(RecordsTest, LongTextComesBack) {
  const std::string text(5001, 'x');
  EXPECT_EQ(DB_WriteCHARs(stream, text.c_str(), 5001), 1);
  reopen();
  std::string read(5001, '-');
  EXPECT_EQ(DB_ReadCHARs(stream, read.data(), 5001), 1);
  EXPECT_EQ(read, text);
}

TEST_F(RecordsTest, FailedTextReadLeavesTheBufferAlone) {
  write_ints({1});
  reopen();
  char text[9] = "original";
  EXPECT_EQ(DB_ReadCHARs(stream, text, 8), 0);
  EXPECT_STREQ(text, "original");
}

TEST_F(RecordsTest, SingleStreamNarrowsOnWritingAndWidensInPlaceOnReading) {
  std::vector<float> room(4);
  stream.DoublePrecision = 0;
  stream.FloatBuffer = room.data();
  const double values[4] = {0.1, -2.0, 1e300, 3.25};
  EXPECT_EQ(DB_WriteDOUBLEs(stream, values, 4), 1);
  reopen();
  double read[4];
  EXPECT_EQ(DB_ReadDOUBLEs(stream, read, 1), 1);
  EXPECT_EQ(read[0], static_cast<double>(0.1F));
  EXPECT_EQ(DB_ReadDOUBLEs(stream, read, 3), 1);
  EXPECT_EQ(read[0], -2.0);
  EXPECT_TRUE(std::isinf(read[1]));
  EXPECT_EQ(read[2], 3.25);

  DB_REWIND(stream);
  float raw[4];
  EXPECT_EQ(DB_ReadMODE(stream, raw, 4), 1);
  EXPECT_EQ(raw[3], 3.25F);
}

TEST_F(RecordsTest, SingleStreamWithoutRoomToNarrowFails) {
  stream.DoublePrecision = 0;
  const double value = 1.0;
  EXPECT_EQ(DB_WriteDOUBLEs(stream, &value, 1), 0);
}

TEST_F(RecordsTest, DoubleStreamMovesTheBits) {
  const double values[2] = {0.1, -0.0};
  EXPECT_EQ(DB_WriteDOUBLEs(stream, values, 2), 1);
  reopen();
  double read[2];
  EXPECT_EQ(DB_ReadDOUBLEs(stream, read, 2), 1);
  EXPECT_EQ(std::memcmp(read, values, sizeof read), 0);
  DB_REWIND(stream);
  EXPECT_EQ(DB_ReadMODE(stream, read, 2), 1);
  EXPECT_EQ(std::memcmp(read, values, sizeof read), 0);
}

TEST_F(RecordsTest, ReadingAndSeekingStopAtTheEndOfTheRecord) {
  write_ints({1, 2, 3});
  EXPECT_EQ(DB_WriteEOR(stream), 1);
  write_ints({4, 5});
  EXPECT_EQ(DB_WriteEOR(stream), 1);
  reopen();
  int values[4];
  EXPECT_EQ(DB_ReadINTs(stream, values, 4), 0);
  DB_REWIND(stream);
  EXPECT_EQ(DB_SeekFWD(stream, 4), 0);
  EXPECT_EQ(DB_SeekFWD(stream, 3), 1);
  EXPECT_EQ(DB_ReadINTs(stream, values, 1), 0);
  EXPECT_EQ(DB_SkipRecord(stream), 1);  // read to its last word, the record still has to be left
  EXPECT_EQ(read_ints(2), (std::vector<int>{4, 5}));
  EXPECT_EQ(DB_SkipRecord(stream), 1);
  EXPECT_EQ(DB_ReadINTs(stream, values, 1), 0);
  EXPECT_EQ(DB_SkipRecord(stream), 0);
}

TEST_F(RecordsTest, SkippingARecordWorksFromItsMiddle) {
  write_ints({1, 2, 3});
  DB_WriteEOR(stream);
  write_ints({4});
  reopen();
  read_ints(1);
  EXPECT_EQ(DB_SkipRecord(stream), 1);
  EXPECT_EQ(read_ints(1), (std::vector<int>{4}));
}

TEST_F(RecordsTest, PositionBehindAMarkIsTheStartOfTheNextRecord) {
  write_ints({1});
  FmdPosition before_mark{};
  FmdPosition behind_mark{};
  DB_FSAVE(&before_mark, stream);
  DB_WriteEOR(stream);
  DB_FSAVE(&behind_mark, stream);
  write_ints({2});
  DB_WriteEOR(stream);
  reopen();
  int value = 0;
  DB_FRESTORE(&behind_mark, stream);
  EXPECT_EQ(DB_ReadINTs(stream, &value, 1), 1);
  EXPECT_EQ(value, 2);
  DB_FRESTORE(&before_mark, stream);
  EXPECT_EQ(DB_ReadINTs(stream, &value, 1), 0);
  EXPECT_EQ(DB_SkipRecord(stream), 1);
  EXPECT_EQ(DB_ReadINTs(stream, &value, 1), 1);
}

TEST_F(RecordsTest, ReopenedBlockIsRewrittenInPlaceAndNothingIsCutOff) {
  write_ints({1, 2, 3, 4});
  DB_WriteEOR(stream);
  write_ints({5, 6});
  reopen();
  EXPECT_EQ(DB_SeekFWD(stream, 1), 1);
  write_ints({20, 30});
  EXPECT_EQ(read_ints(1), (std::vector<int>{4}));
  DB_REWIND(stream);
  EXPECT_EQ(read_ints(4), (std::vector<int>{1, 20, 30, 4}));
  EXPECT_EQ(DB_SkipRecord(stream), 1);
  EXPECT_EQ(read_ints(2), (std::vector<int>{5, 6}));
}

TEST_F(RecordsTest, ReopenedBlockDoesNotGrow) {
  write_ints({1, 2});
  DB_WriteEOR(stream);
  write_ints({3, 4});
  reopen();
  const int three[3] = {7, 8, 9};
  EXPECT_EQ(DB_WriteINTs(stream, three, 3), 0);  // would run over the mark
  EXPECT_EQ(DB_SkipRecord(stream), 1);
  EXPECT_EQ(DB_WriteINTs(stream, three, 3), 0);  // would run over the end
  EXPECT_EQ(DB_WriteINTs(stream, three, 2), 1);
  EXPECT_EQ(DB_WriteINTs(stream, three, 1), 0);
  EXPECT_EQ(DB_WriteEOR(stream), 0);
  DB_REWIND(stream);
  EXPECT_EQ(read_ints(2), (std::vector<int>{1, 2}));
}

TEST_F(RecordsTest, SeekToTheVeryEndOfAnUnendedRecordFails) {
  write_ints({1, 2, 3});
  reopen();
  EXPECT_EQ(DB_SeekFWD(stream, 3), 0);  // no word and no mark there
  EXPECT_EQ(DB_SeekFWD(stream, 2), 1);
  EXPECT_EQ(DB_SeekFWD(stream, 0), 1);
  EXPECT_EQ(read_ints(1), (std::vector<int>{3}));  // but reading comes to the end
  EXPECT_EQ(DB_SeekFWD(stream, 1), 0);
}

TEST_F(RecordsTest, BadPositionsAndNegativeCountsFailAndHarmNothing) {
  write_ints({1, 2, 3});
  reopen();
  FmdPosition wrong{{1000000, 0}};
  EXPECT_EQ(DB_FRESTORE(&wrong, stream), 1);
  int value = 9;
  EXPECT_EQ(DB_ReadINTs(stream, &value, 1), 0);
  EXPECT_EQ(DB_WriteINTs(stream, &value, 1), 0);
  EXPECT_EQ(DB_WriteEOR(stream), 0);
  EXPECT_EQ(DB_SeekFWD(stream, 0), 0);
  EXPECT_EQ(DB_SkipRecord(stream), 0);
  DB_REWIND(stream);
  EXPECT_EQ(DB_SeekFWD(stream, -1), 0);
  EXPECT_EQ(DB_ReadINTs(stream, &value, -1), 0);
  EXPECT_EQ(DB_WriteINTs(stream, &value, -1), 0);
  EXPECT_EQ(DB_ReadDOUBLEs(stream, nullptr, -1), 0);
  EXPECT_EQ(DB_ReadCHARs(stream, nullptr, -1), 0);
  EXPECT_EQ(DB_WriteCHARs(stream, nullptr, -1), 0);
  EXPECT_EQ(read_ints(3), (std::vector<int>{1, 2, 3}));
}

TEST_F(RecordsTest, UnknownAndClosedBlocksFail) {
  for (const int block : {0, -1, 1 << 30, stream.Block}) {
    EXPECT_EQ(DB_CloseDatablk(block == stream.Block ? block : 0), 1);
    FmdStream other = stream;
    other.Block = block;
    int words[7] = {block, 1, 2, 3, 4, 5, 6};
    EXPECT_EQ(DB_ReadINTs(other, words, 1), 0);
    EXPECT_EQ(DB_ReadMODE(other, words, 1), 0);
    EXPECT_EQ(DB_WriteINTs(other, words, 1), 0);
    EXPECT_EQ(DB_WriteEOR(other), 0);
    EXPECT_EQ(DB_SkipRecord(other), 0);
    EXPECT_EQ(DB_SeekFWD(other, 0), 0);
    EXPECT_EQ(DB_WriteTrailer(words), 0);
    EXPECT_EQ(DB_ReadTrailer(words), 0);
    EXPECT_EQ(DB_ReOpenScratch(block), 1);
    EXPECT_EQ(DB_CloseDatablk(block), 1);
    EXPECT_FALSE(fmd::fill_scratch_with_zeros(block, 1));
    FmdPosition position{};
    EXPECT_EQ(DB_FSAVE(&position, other), 1);
    EXPECT_EQ(DB_FRESTORE(&position, other), 1);
  }
  EXPECT_TRUE(log.all.empty());
}

TEST_F(RecordsTest, TrailerIsKeptForAnOpenAndAReopenedBlock) {
  const int written[7] = {stream.Block, 11, 12, 13, 14, 15, 16};
  EXPECT_EQ(DB_WriteTrailer(written), 1);
  write_ints({1});
  reopen();
  int read[7] = {stream.Block};
  EXPECT_EQ(DB_ReadTrailer(read), 1);
  EXPECT_EQ(std::memcmp(read, written, sizeof read), 0);
}

TEST_F(RecordsTest, ZeroSlotsAreReservedAndFilledAtTheirPlaces) {
  constexpr int kSlots = 5;
  constexpr int kSlotReals = 6000;
  FmdPosition slots[kSlots];
  for (auto& slot : slots) {
    DB_FSAVE(&slot, stream);
    ASSERT_TRUE(fmd::fill_scratch_with_zeros(stream.Block, 2 * kSlotReals));
  }
  EXPECT_FALSE(fmd::fill_scratch_with_zeros(stream.Block, -1));
  reopen();
  EXPECT_FALSE(fmd::fill_scratch_with_zeros(stream.Block, 1));
  std::vector<double> row(6);
  std::iota(row.begin(), row.end(), 1.0);
  DB_FRESTORE(&slots[3], stream);
  ASSERT_EQ(DB_SeekFWD(stream, 12 * 500), 1);
  ASSERT_EQ(DB_WriteDOUBLEs(stream, row.data(), 6), 1);

  std::vector<double> expected(kSlotReals, 0.0);
  std::vector<double> vector(kSlotReals, -1.0);
  DB_FRESTORE(&slots[2], stream);
  ASSERT_EQ(DB_ReadDOUBLEs(stream, vector.data(), kSlotReals), 1);
  EXPECT_EQ(vector, expected);
  std::copy(row.begin(), row.end(), expected.begin() + 6 * 500);
  ASSERT_EQ(DB_ReadDOUBLEs(stream, vector.data(), kSlotReals), 1);
  EXPECT_EQ(vector, expected);

  // Beyond the last slot the seek fails, at its very end too.
  DB_FRESTORE(&slots[kSlots - 1], stream);
  EXPECT_EQ(DB_SeekFWD(stream, 2 * kSlotReals), 0);
  EXPECT_EQ(DB_SeekFWD(stream, 2 * kSlotReals + 12), 0);
}

TEST(Reals, WideningMayShareItsAddress) {
  double storage[5];
  const float singles[5] = {1.5F, -2.25F, 0.0F, 1e30F, 7.0F};
  std::memcpy(storage, singles, sizeof singles);
  EXPECT_EQ(float2double(storage, reinterpret_cast<const float*>(storage), 5), storage);
  for (int i = 0; i < 5; ++i) EXPECT_EQ(storage[i], static_cast<double>(singles[i]));
}

TEST(Reals, NarrowingRoundsAsTheHardwareDoes) {
  const double doubles[3] = {0.1, 1e300, -1e-300};
  float singles[3];
  EXPECT_EQ(double2float(singles, doubles, 3), singles);
  EXPECT_EQ(singles[0], 0.1F);
  EXPECT_TRUE(std::isinf(singles[1]));
  EXPECT_EQ(singles[2], 0.0F);
  EXPECT_TRUE(std::signbit(singles[2]));
}

}  // namespace
