// Damaged files are refused, and never read beyond their end.
#include <gtest/gtest.h>

#include <stdexcept>

#include "dataset_reader/dataset_reader.h"
#include "dataset_reader/sample_dataset.h"

namespace dataset_reader {

namespace {

class Damage : public ::testing::TestWithParam<Form> {};

INSTANTIATE_TEST_SUITE_P(AllForms, Damage, ::testing::ValuesIn(kForms),
                         [](const auto& form) { return "Word" + std::to_string(form.param.word); });

bool is_refused(const ByteVector& bytes) {
  try {
    read_dataset(bytes);
    return false;
  } catch (const std::runtime_error&) {
    return true;
  }
}

TEST_P(Damage, EveryPrefixIsRefused) {
  const ByteVector whole = sample_dataset(GetParam());
  for (std::size_t n = 0; n < whole.size(); ++n) {
    // A vector of its own size, so that a byte too many is one beyond its storage.
    const ByteVector prefix(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(n));
    ASSERT_TRUE(is_refused(prefix)) << n << " of " << whole.size() << " bytes";
  }
}

TEST_P(Damage, ExcessBytesAreRefused) {
  ByteVector bytes = sample_dataset(GetParam());
  bytes.push_back(0);
  EXPECT_TRUE(is_refused(bytes));
}

TEST_P(Damage, ChangedBytesAreReadOrRefused) {
  const ByteVector whole = sample_dataset(GetParam());
  std::size_t refused = 0;
  for (std::size_t n = 0; n < whole.size(); ++n) {
    for (const int mask : {1 << n % 8, 0xFF}) {
      ByteVector changed = whole;
      changed[n] = static_cast<unsigned char>(changed[n] ^ mask);
      if (is_refused(changed)) ++refused;
    }
  }
  EXPECT_GT(refused, 100U);
}

// The message for the bytes, or "" where they are taken.
std::string message_of(const ByteVector& bytes) {
  try {
    read_dataset(bytes);
  } catch (const std::runtime_error& error) {
    return error.what();
  }
  return "";
}

const Form kNative = {0x3C, false, false, true, true};

TEST(Refusal, NamesOffsetBlockAndExpectation) {
  Bytes bytes(kNative);
  bytes.opening({0}).ints({5, 3, 1}).reals({1, 2, 3});
  EXPECT_EQ(message_of(bytes.data),
            "offset 656, block 4 (nodal coordinates): expected 5 x 28 bytes of nodes, 28 are left");
}

TEST(Refusal, OfAHugeCountComesBeforeTheMemoryForIt) {
  Bytes bytes(kNative);
  bytes.opening({32}).ints({1, 2147483647});
  bytes.text("OPER", 8).ints({0});
  EXPECT_NE(message_of(bytes.data).find("row labels"), std::string::npos);
  Bytes monitor(kNative);
  monitor.opening({14, 31}).ints({1, 1}).real(1).ints({1, 0, 0, 0}).text("", 64).ints({2147483647, 1});
  EXPECT_NE(message_of(monitor.data).find("displacement operator"), std::string::npos);
}

TEST(Refusal, OfWordsThatNoStreamHas) {
  for (const unsigned word : {0U, 9U, 11U, 32U, 42U, 59U, 0x83CU, 0x103CU, 0x13CU, 0x109U}) {
    Bytes bytes({word, false, false, true, true});
    EXPECT_NE(message_of(bytes.opening({}).data), "") << word;
  }
  Bytes bytes({0x3C, true, false, true, true});
  EXPECT_EQ(message_of(bytes.opening({}).data),
            "offset 0: expected bytes in the encoding that the version word tells");
}

TEST(Refusal, OfReservedSummaryBytes) {
  for (const int byte : {7, 11, 34, 99}) {
    Bytes bytes(kNative);
    EXPECT_NE(message_of(bytes.opening({byte}).data).find("as 0"), std::string::npos) << byte;
  }
  Bytes bytes(kNative);
  bytes.opening({});
  bytes.data[548 + 20] = 2;
  EXPECT_EQ(message_of(bytes.data),
            "offset 568, block 3 (content summary): expected summary byte 20 as 0 or 1");
}

TEST(Refusal, OfFacesThatDoNotFitTogether) {
  const std::initializer_list<int> damaged[] = {
      {16 + 4 * 4, 0, 1, 4, 3, 0, 1, 3},   // names node 3 of 3
      {16 + 4 * 4, 0, 1, 4, 3, 0, 1, -1},  // names no node
      {16 + 4 * 4, 0, 1, 4, 4, 0, 1, 2},   // runs beyond the list
      {16 + 4 * 4, 0, 2, 4, 3, 0, 1, 2},   // is counted twice
      {16 + 4 * 5, 0, 1, 4, 3, 0, 1, 2},   // declares another size
  };
  for (const auto& words : damaged) {
    Bytes bytes(kNative);
    bytes.opening({0, 12}).ints({3, 3});
    for (int id = 1; id <= 3; ++id) bytes.ints({id}).reals({0, 0, 0});
    EXPECT_NE(message_of(bytes.ints(words).data), "");
  }
}

TEST(Refusal, OfCountsThatDisagreeBetweenBlocks) {
  Bytes shapes(kNative);
  shapes.opening({3, 4}).ints({1, 1}).ramp(1, 5).ints({2, 0, 1, 2});
  EXPECT_NE(message_of(shapes.data).find("mode count of the blocks before"), std::string::npos);
  Bytes prestress(kNative);
  prestress.opening({16, 29}).ints({0, 1, 7, 2}).ramp(1, 12);
  EXPECT_NE(message_of(prestress.data).find("node count of the block of modes, 1"), std::string::npos);
}

}  // namespace

}  // namespace dataset_reader
