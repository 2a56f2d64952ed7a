// Files, extents and texts.
#include <gtest/gtest.h>

#include <stdexcept>

#include "dataset_reader/dataset_reader.h"
#include "dataset_reader/sample_dataset.h"

namespace dataset_reader {

namespace {

TEST(Extents, FollowEachOtherFromTheVersionWordToTheEnd) {
  const ByteVector bytes = sample_dataset({0x13C, true, false, true, true});
  const Dataset dataset = read_dataset(bytes);
  std::size_t end = 0;
  for (const BlockExtent& block : dataset.blocks) {
    EXPECT_EQ(block.offset, end) << block.number;
    end += block.bytes;
  }
  EXPECT_EQ(end, bytes.size());
  EXPECT_EQ(dataset.block(3)->offset, 2180U);
  EXPECT_EQ(dataset.block(4)->offset, 2580U);
  EXPECT_EQ(dataset.block(5), nullptr);
}

TEST(Extents, OfANativeFileHaveOneByteACharacter) {
  const Dataset dataset = read_dataset(sample_dataset({0x3C, false, false, true, true}));
  EXPECT_EQ(dataset.block(2)->offset, 4U);
  EXPECT_EQ(dataset.block(3)->offset, 548U);
  EXPECT_EQ(dataset.block(4)->offset, 648U);
}

TEST(Characters, AboveTheSeventhBitAreSignExtended) {
  const Form xdr = {0x13C, true, false, true, true};
  Bytes bytes(xdr);
  bytes.opening({});
  const ByteVector umlaut = {0xFF, 0xFF, 0xFF, 0xFC};
  std::copy(umlaut.begin(), umlaut.end(), bytes.data.begin() + 4);
  EXPECT_EQ(read_dataset(bytes.data).header.title[0], '\xFC');
  bytes.data[4] = bytes.data[5] = bytes.data[6] = 0;
  EXPECT_THROW(read_dataset(bytes.data), std::runtime_error);
}

TEST(Modes, WithoutNodesAtLevelTenTakeNoRoom) {
  Bytes bytes({10, false, false, false, false});
  bytes.opening({4}).ints({2147483647, 0});
  const Dataset dataset = read_dataset(bytes.data);
  EXPECT_EQ(dataset.mode_shapes->mode_count, 2147483647);
  EXPECT_TRUE(dataset.mode_shapes->values.empty());
}

TEST(File, ThatIsNotThereIsNamed) {
  try {
    read_dataset_file("no_such.fmd");
    FAIL();
  } catch (const std::runtime_error& error) {
    EXPECT_STREQ(error.what(), "no_such.fmd: cannot be opened");
  }
}

TEST(Trimming, TakesBlanksAndZeroBytesOffTheEnd) {
  EXPECT_EQ(trimmed(std::string("a b \0 \0", 7)), "a b");
  EXPECT_EQ(trimmed("   "), "");
}

}  // namespace

}  // namespace dataset_reader
