#include "xdr/xdr_buffer.h"

#include <gtest/gtest.h>

#include "xdr/sample_values.h"
#include "xdr/system_xdr.h"

namespace {

using fmdtest::Bytes;

TEST(XdrBuffer, EncodesWordsAsTheSystemDoes) {
  const auto values = fmdtest::sample_ints();
  Bytes bytes(values.size() * 4);
  fmd::xdr::encode_words(bytes.data(), values.data(), values.size());
  EXPECT_EQ(bytes, fmdtest::system_xdr_ints(values));
}

TEST(XdrBuffer, EncodesDoublesAsTheSystemDoes) {
  const auto values = fmdtest::sample_doubles();
  Bytes bytes(values.size() * 8);
  fmd::xdr::encode_doubles(bytes.data(), values.data(), values.size());
  EXPECT_EQ(bytes, fmdtest::system_xdr_doubles(values));
}

TEST(XdrBuffer, NarrowsDoublesAndEncodesThemAsTheSystemDoes) {
  const std::vector<double> values = {0.0, -0.0, 0.1, 1.0 / 3.0, -123456789.0, 1e300, -1e300, 1e-300};
  std::vector<float> narrowed;
  for (const double value : values) narrowed.push_back(static_cast<float>(value));
  Bytes bytes(values.size() * 4);
  fmd::xdr::encode_floats_from_doubles(bytes.data(), values.data(), values.size());
  EXPECT_EQ(bytes, fmdtest::system_xdr_floats(narrowed));
}

TEST(XdrBuffer, EncodesEveryCharAsASignExtendedWord) {
  const auto values = fmdtest::all_chars();
  Bytes bytes(values.size() * 4);
  fmd::xdr::encode_chars(bytes.data(), values.data(), values.size());
  EXPECT_EQ(bytes, fmdtest::system_xdr_chars(values));

  const char accented = static_cast<char>(0xE9);
  Bytes one(4);
  fmd::xdr::encode_chars(one.data(), &accented, 1);
  EXPECT_EQ(one, (Bytes{0xFF, 0xFF, 0xFF, 0xE9}));
}

TEST(XdrBuffer, WritesNoByteBeyondItsItems) {
  const auto values = fmdtest::sample_doubles();
  for (std::size_t n = 0; n < values.size(); ++n) {
    Bytes bytes(8 * values.size() + 1, 0xA5);
    fmd::xdr::encode_doubles(bytes.data() + 1, values.data(), n);  // unaligned as well
    EXPECT_EQ(bytes[0], 0xA5);
    for (std::size_t rest = 1 + 8 * n; rest < bytes.size(); ++rest) ASSERT_EQ(bytes[rest], 0xA5);
  }
}

}  // namespace
