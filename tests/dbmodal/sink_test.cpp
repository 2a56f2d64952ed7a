#include "dbmodal/dbwrite/sink.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

namespace {

using Bytes = std::vector<unsigned char>;

// Keeps what it takes and where each piece ended; refuses from the piece of that number on.
class RecordingMedium : public fmd::Medium {
 public:
  explicit RecordingMedium(std::size_t pieces = 1000000) : pieces_(pieces) {}

  bool take(const unsigned char* bytes, std::size_t count) override {
    if (ends.size() == pieces_) return false;
    taken.insert(taken.end(), bytes, bytes + count);
    ends.push_back(taken.size());
    return true;
  }

  Bytes taken;
  std::vector<std::size_t> ends;

 private:
  std::size_t pieces_;
};

// An item in memory order or, for XDR, the other way round.
template <typename T>
void append(Bytes& bytes, T value, bool reversed) {
  unsigned char raw[sizeof value];
  std::memcpy(raw, &value, sizeof value);
  for (std::size_t i = 0; i < sizeof value; ++i) bytes.push_back(raw[reversed ? sizeof value - 1 - i : i]);
}

// Items of all kinds whose sizes never add up to whole pages, several buffers in all.
Bytes put_mixture(fmd::Sink& sink, fmd::Encoding encoding) {
  Bytes expected;
  std::vector<double> reals(9001);
  for (std::size_t i = 0; i < reals.size(); ++i) reals[i] = 0.25 * static_cast<double>(i) - 100.0;
  for (int round = 0; round < 15; ++round) {
    sink.put_int(round);
    append(expected, round, encoding.xdr);
    sink.put_chars("abc", 3);
    for (const char letter : {'a', 'b', 'c'}) {
      if (encoding.xdr) {
        append(expected, static_cast<int>(letter), true);
      } else {
        expected.push_back(static_cast<unsigned char>(letter));
      }
    }
    sink.put_reals(reals.data(), reals.size());
    for (const double real : reals) {
      if (encoding.single_precision) {
        append(expected, static_cast<float>(real), encoding.xdr);
      } else {
        append(expected, real, encoding.xdr);
      }
    }
  }
  return expected;
}

class SinkEncodings : public ::testing::TestWithParam<fmd::Encoding> {};

TEST_P(SinkEncodings, HandOnAllItemsInOrder) {
  RecordingMedium medium;
  fmd::Sink sink(medium, GetParam());
  const Bytes expected = put_mixture(sink, GetParam());
  EXPECT_TRUE(sink.drain());
  EXPECT_TRUE(medium.taken == expected);
}

TEST_P(SinkEncodings, DrainAFullBufferUpToTheEndOfAPage) {
  RecordingMedium medium;
  fmd::Sink sink(medium, GetParam());
  put_mixture(sink, GetParam());
  const std::vector<std::size_t> ends = medium.ends;
  EXPECT_GT(ends.size(), 1U);
  for (const std::size_t end : ends) EXPECT_EQ(end % 4096, 0U);
}

TEST_P(SinkEncodings, ComeBackToPageEndsAfterTheEndOfABlock) {
  RecordingMedium medium;
  fmd::Sink sink(medium, GetParam());
  sink.put_int(7);
  EXPECT_TRUE(sink.drain());
  ASSERT_EQ(medium.ends, std::vector<std::size_t>{4});
  put_mixture(sink, GetParam());
  EXPECT_GT(medium.ends.size(), 2U);
  for (std::size_t i = 1; i < medium.ends.size(); ++i) EXPECT_EQ(medium.ends[i] % 4096, 0U);
}

TEST_P(SinkEncodings, TakeNothingMoreAfterAFailure) {
  RecordingMedium medium(1);
  fmd::Sink sink(medium, GetParam());
  put_mixture(sink, GetParam());
  EXPECT_FALSE(sink.ok());
  EXPECT_FALSE(sink.drain());
  EXPECT_EQ(medium.ends.size(), 1U);
}

INSTANTIATE_TEST_SUITE_P(All, SinkEncodings,
                         ::testing::Values(fmd::Encoding{true, false}, fmd::Encoding{false, false},
                                           fmd::Encoding{true, true}, fmd::Encoding{false, true}),
                         [](const auto& encoding) {
                           return std::string(encoding.param.xdr ? "Xdr" : "Native") +
                                  (encoding.param.single_precision ? "Single" : "Double");
                         });

TEST(Sink, DrainsNothingWhenEmpty) {
  RecordingMedium medium;
  fmd::Sink sink(medium, {});
  EXPECT_TRUE(sink.drain());
  EXPECT_TRUE(medium.ends.empty());
}

}  // namespace
