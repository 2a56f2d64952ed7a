#include "xdr/xdr.h"

#include <gtest/gtest.h>

#include <cstring>

#include "xdr/sample_values.h"
#include "xdr/system_xdr.h"

namespace {

using fmdtest::Bytes;
namespace xdr = fmd::xdr;

// A temporary file with a codec on it.
class XdrTest : public ::testing::Test {
 protected:
  void SetUp() override { file = std::tmpfile(); }
  void TearDown() override { std::fclose(file); }

  template <typename T>
  void encode(std::vector<T> values, bool (*item)(FmdXdr*, T*)) {
    FmdXdr codec;
    xdrstdio_create(&codec, file, xdr::kEncode);
    ASSERT_TRUE(xdr::vector(&codec, values.data(), values.size(), item));
    ASSERT_TRUE(xdr::destroy(&codec));
  }

  template <typename T>
  std::vector<T> decode(std::size_t n, bool (*item)(FmdXdr*, T*)) {
    std::rewind(file);
    FmdXdr codec;
    xdrstdio_create(&codec, file, xdr::kDecode);
    std::vector<T> values(n);
    EXPECT_TRUE(xdr::vector(&codec, values.data(), n, item));
    T beyond{};
    EXPECT_FALSE(item(&codec, &beyond));
    EXPECT_TRUE(xdr::destroy(&codec));
    return values;
  }

  Bytes bytes() {
    std::rewind(file);
    Bytes read;
    for (int c = std::fgetc(file); c != EOF; c = std::fgetc(file))
      read.push_back(static_cast<unsigned char>(c));
    return read;
  }

  std::FILE* file = nullptr;
};

template <typename T>
bool same_bits(const std::vector<T>& left, const std::vector<T>& right) {
  return left.size() == right.size() && std::memcmp(left.data(), right.data(), left.size() * sizeof(T)) == 0;
}

TEST_F(XdrTest, IntsAreTheSystemsBytesAndReadBack) {
  const auto values = fmdtest::sample_ints();
  encode(values, xdr::int_item);
  EXPECT_EQ(bytes(), fmdtest::system_xdr_ints(values));
  EXPECT_EQ(decode(values.size(), xdr::int_item), values);
}

TEST_F(XdrTest, CharsAreTheSystemsBytesAndReadBack) {
  const auto values = fmdtest::all_chars();
  encode(values, xdr::char_item);
  EXPECT_EQ(bytes(), fmdtest::system_xdr_chars(values));
  EXPECT_EQ(decode(values.size(), xdr::char_item), values);
}

TEST_F(XdrTest, ACharWithItsTopBitSetIsSignExtended) {
  encode(std::vector<char>{static_cast<char>(0xE9)}, xdr::char_item);
  EXPECT_EQ(bytes(), (Bytes{0xFF, 0xFF, 0xFF, 0xE9}));
}

TEST_F(XdrTest, FloatsAreTheSystemsBytesAndReadBack) {
  const auto values = fmdtest::sample_floats();
  encode(values, xdr::float_item);
  EXPECT_EQ(bytes(), fmdtest::system_xdr_floats(values));
  EXPECT_TRUE(same_bits(decode(values.size(), xdr::float_item), values));
}

TEST_F(XdrTest, DoublesAreTheSystemsBytesAndReadBack) {
  const auto values = fmdtest::sample_doubles();
  encode(values, xdr::double_item);
  EXPECT_EQ(bytes(), fmdtest::system_xdr_doubles(values));
  EXPECT_TRUE(same_bits(decode(values.size(), xdr::double_item), values));
}

TEST_F(XdrTest, DestroyFlushesTheFileAndLeavesItOpen) {
  std::int32_t value = 7;
  FmdXdr codec;
  xdrstdio_create(&codec, file, xdr::kEncode);
  ASSERT_TRUE(xdr::int_item(&codec, &value));
  ASSERT_TRUE(xdr::destroy(&codec));
  char read[4];
  EXPECT_EQ(pread(fileno(file), read, sizeof read, 0), 4);
  EXPECT_NE(std::fputc('x', file), EOF);
}

TEST_F(XdrTest, AFailingFileFailsTheItemsOrTheFlush) {
  std::FILE* full = std::fopen("/dev/full", "w");
  ASSERT_NE(full, nullptr);
  std::setvbuf(full, nullptr, _IONBF, 0);
  FmdXdr codec;
  xdrstdio_create(&codec, full, xdr::kEncode);
  std::int32_t word = 1;
  double real = 1.0;
  float single = 1.0F;
  char letter = 'a';
  EXPECT_FALSE(xdr::int_item(&codec, &word));
  EXPECT_FALSE(xdr::double_item(&codec, &real));
  EXPECT_FALSE(xdr::float_item(&codec, &single));
  EXPECT_FALSE(xdr::char_item(&codec, &letter));
  std::fclose(full);

  full = std::fopen("/dev/full", "w");
  xdrstdio_create(&codec, full, xdr::kEncode);
  EXPECT_TRUE(xdr::int_item(&codec, &word));  // still in the buffer
  EXPECT_FALSE(xdr::destroy(&codec));
  std::fclose(full);
}

TEST_F(XdrTest, DecodingFromAnEmptyFileLeavesTheItemsAlone) {
  FmdXdr codec;
  xdrstdio_create(&codec, file, xdr::kDecode);
  std::int32_t word = 5;
  double real = 2.5;
  float single = 1.5F;
  char letter = 'q';
  EXPECT_FALSE(xdr::int_item(&codec, &word));
  EXPECT_FALSE(xdr::double_item(&codec, &real));
  EXPECT_FALSE(xdr::float_item(&codec, &single));
  EXPECT_FALSE(xdr::char_item(&codec, &letter));
  EXPECT_EQ(word, 5);
  EXPECT_EQ(real, 2.5);
  EXPECT_EQ(single, 1.5F);
  EXPECT_EQ(letter, 'q');
}

TEST_F(XdrTest, FreeingMovesNothingAndAnUnknownOperationFails) {
  FmdXdr codec;
  xdrstdio_create(&codec, file, xdr::kFree);
  std::int32_t word = 5;
  EXPECT_TRUE(xdr::int_item(&codec, &word));
  EXPECT_TRUE(xdr::destroy(&codec));
  EXPECT_EQ(word, 5);
  EXPECT_TRUE(bytes().empty());
  xdrstdio_create(&codec, file, 3);
  EXPECT_FALSE(xdr::int_item(&codec, &word));
}

}  // namespace
