// Dictionary, directories and the pages that they leave free, as plain bytes and numbers.
#include "kdcdb/dictionary.h"

#include <gtest/gtest.h>

#include <cstring>
#include <random>
#include <set>

#include "kdcdb/block_directory.h"
#include "kdcdb/page_allocator.h"

namespace {

using kdcdb::DirectoryHead;
using kdcdb::Extent;
using kdcdb::PageAllocator;
using kdcdb::StoredEntry;
using Bytes = std::vector<unsigned char>;

// Words over pages 3 and 5, directory in pages 7 and 8; the second in pages 4 and 9, 10.
std::vector<StoredEntry> two_entries() {
  std::vector<StoredEntry> entries(2);
  entries[0].qualifiers.label = "Left Arm";
  entries[0].serial = 1;
  entries[0].trailer = {1, 2, 3, 4, 5, 6};
  entries[0].words = 5000;
  entries[0].directory_page = 7;
  entries[0].directory_bytes = 64;
  entries[0].extents = {{3, 1}, {5, 1}};
  entries[1].qualifiers.numbers = {2, 1, -3, 0, 7};
  entries[1].serial = 4;
  entries[1].words = 1;
  entries[1].directory_page = 9;
  entries[1].directory_bytes = 56;
  entries[1].extents = {{4, 1}};
  return entries;
}

constexpr std::uint64_t kFilePages = 11;

kdcdb::Status decode(const std::vector<StoredEntry>& entries, std::uint64_t file_pages = kFilePages) {
  std::vector<StoredEntry> decoded;
  return kdcdb::decode_dictionary(kdcdb::encode_dictionary(entries), file_pages, decoded);
}

TEST(Dictionary, ComesBackAsItWent) {
  const auto entries = two_entries();
  std::vector<StoredEntry> decoded;
  ASSERT_EQ(kdcdb::decode_dictionary(kdcdb::encode_dictionary(entries), kFilePages, decoded), kdcdb::kOk);
  ASSERT_EQ(decoded.size(), 2U);
  EXPECT_EQ(decoded[0].qualifiers, entries[0].qualifiers);
  EXPECT_EQ(decoded[0].trailer, entries[0].trailer);
  EXPECT_EQ(decoded[0].extents[1].page, 5U);
  EXPECT_EQ(decoded[1].qualifiers, entries[1].qualifiers);
  EXPECT_EQ(kdcdb::encode_dictionary(decoded), kdcdb::encode_dictionary(entries));
  EXPECT_EQ(decode({}), kdcdb::kOk);
}

TEST(Dictionary, EntriesThatContradictEachOtherAreDamage) {
  const auto change = [](auto alter) {
    auto entries = two_entries();
    alter(entries[0], entries[1]);
    return decode(entries);
  };
  EXPECT_EQ(change([](StoredEntry& a, StoredEntry& b) { b.serial = a.serial; }), kdcdb::kDamaged);
  EXPECT_EQ(change([](StoredEntry& a, StoredEntry& b) { b.qualifiers = a.qualifiers; }), kdcdb::kDamaged);
  EXPECT_EQ(change([](StoredEntry&, StoredEntry& b) { b.extents[0].page = 5; }), kdcdb::kDamaged);
  EXPECT_EQ(change([](StoredEntry&, StoredEntry& b) { b.directory_page = 8; }), kdcdb::kDamaged);
  EXPECT_EQ(change([](StoredEntry& a, StoredEntry&) { a.extents[1].page = 3; }), kdcdb::kDamaged);
}

TEST(Dictionary, NumbersThatDoNotFitTheFileAreDamage) {
  const auto change = [](auto alter) {
    auto entries = two_entries();
    alter(entries[0]);
    return decode(entries);
  };
  const std::uint64_t huge[] = {12, std::uint64_t{1} << 31, std::uint64_t{1} << 50, std::uint64_t{1} << 63,
                                UINT64_MAX};
  for (const std::uint64_t value : huge) {
    EXPECT_EQ(change([&](StoredEntry& e) { e.extents[0].page = value; }), kdcdb::kDamaged);
    EXPECT_EQ(change([&](StoredEntry& e) { e.extents[0].pages = value; }), kdcdb::kDamaged);
    EXPECT_EQ(change([&](StoredEntry& e) { e.directory_page = value; }), kdcdb::kDamaged);
    EXPECT_EQ(change([&](StoredEntry& e) { e.words = value; }), kdcdb::kDamaged);
    if (value > 16384) {
      EXPECT_EQ(change([&](StoredEntry& e) { e.directory_bytes = value; }), kdcdb::kDamaged);
    }
  }
  for (const std::uint64_t page : {0U, 1U, 2U}) {
    EXPECT_EQ(change([&](StoredEntry& e) { e.extents[0].page = page; }), kdcdb::kDamaged);
    EXPECT_EQ(change([&](StoredEntry& e) { e.directory_page = page; }), kdcdb::kDamaged);
  }
  EXPECT_EQ(change([](StoredEntry& e) { e.serial = 0; }), kdcdb::kDamaged);
  EXPECT_EQ(change([](StoredEntry& e) { e.extents[0].pages = 0; }), kdcdb::kDamaged);
  EXPECT_EQ(change([](StoredEntry& e) { e.extents.clear(); }), kdcdb::kDamaged);
  EXPECT_EQ(change([](StoredEntry& e) { e.words = 8193; }), kdcdb::kDamaged);
  EXPECT_EQ(change([](StoredEntry& e) { e.directory_bytes = 47; }), kdcdb::kDamaged);
  EXPECT_EQ(change([](StoredEntry& e) { e.directory_bytes = 0; }), kdcdb::kDamaged);
  for (const char* label : {"O'Brien", "a\tb", "a\nb", "\x7f", "blank "})
    EXPECT_EQ(change([&](StoredEntry& e) { e.qualifiers.label = label; }), kdcdb::kDamaged) << label;
  EXPECT_EQ(decode(two_entries(), kFilePages - 1), kdcdb::kDamaged);
}

// In a buffer of exactly its size, so that a sanitizer sees a byte too far.
TEST(Dictionary, EveryPrefixAndEveryTailIsDamage) {
  const Bytes whole = kdcdb::encode_dictionary(two_entries());
  std::vector<StoredEntry> decoded;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const Bytes prefix(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(kdcdb::decode_dictionary(prefix, kFilePages, decoded), kdcdb::kDamaged) << size;
  }
  Bytes longer = whole;
  longer.resize(whole.size() + 8);
  EXPECT_EQ(kdcdb::decode_dictionary(longer, kFilePages, decoded), kdcdb::kDamaged);
}

TEST(Dictionary, HostileWordsAreReadSafely) {
  const Bytes whole = kdcdb::encode_dictionary(two_entries());
  std::vector<StoredEntry> decoded;
  for (std::size_t at = 0; at + 4 <= whole.size(); at += 4) {
    for (const std::uint32_t value : {0U, 1U, 95U, 96U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFF8U, 0xFFFFFFFFU}) {
      Bytes changed = whole;
      std::memcpy(changed.data() + at, &value, 4);
      const kdcdb::Status status = kdcdb::decode_dictionary(changed, kFilePages, decoded);
      EXPECT_TRUE(status == kdcdb::kOk || status == kdcdb::kDamaged);
      if (at == 8) {
        EXPECT_EQ(status, kdcdb::kDamaged) << "number of entries";
      }
    }
  }
}

StoredEntry entry_of(std::uint64_t words, std::uint64_t directory_bytes) {
  StoredEntry entry;
  entry.serial = 9;
  entry.words = words;
  entry.directory_bytes = directory_bytes;
  return entry;
}

TEST(Directory, ComesBackAsItWentAndOnlyForItsDatablock) {
  DirectoryHead head;
  head.piece_checksums = {7};
  head.record_ends = {0, 1, 4999};
  const Bytes bytes = kdcdb::encode_directory_head(9, 5000, head);
  DirectoryHead decoded;
  ASSERT_EQ(kdcdb::decode_directory_head(bytes, entry_of(5000, bytes.size()), decoded), kdcdb::kOk);
  EXPECT_EQ(decoded.piece_checksums, head.piece_checksums);
  EXPECT_EQ(decoded.record_ends, head.record_ends);
  EXPECT_EQ(kdcdb::decode_directory_head(bytes, entry_of(5001, bytes.size()), decoded), kdcdb::kDamaged);
  StoredEntry other = entry_of(5000, bytes.size());
  other.serial = 8;
  EXPECT_EQ(kdcdb::decode_directory_head(bytes, other, decoded), kdcdb::kDamaged);
}

TEST(Directory, MarksAscendAndLieInside) {
  const auto decode_marks = [](const std::vector<std::int64_t>& marks) {
    DirectoryHead head;
    head.piece_checksums = {7};
    head.record_ends = marks;
    const Bytes bytes = kdcdb::encode_directory_head(9, 10, head);
    DirectoryHead decoded;
    return kdcdb::decode_directory_head(bytes, entry_of(10, bytes.size()), decoded);
  };
  EXPECT_EQ(decode_marks({0, 1, 2, 9}), kdcdb::kOk);
  for (const std::vector<std::int64_t>& bad :
       {std::vector<std::int64_t>{10}, {-1}, {3, 3}, {3, 2}, {INT64_MIN}, {INT64_MAX}, {0, INT64_MAX, 1}})
    EXPECT_EQ(decode_marks(bad), kdcdb::kDamaged);
}

TEST(Directory, EveryPrefixAndHostileCountsAreDamage) {
  DirectoryHead head;
  head.piece_checksums = {7};
  head.record_ends = {3};
  const Bytes whole = kdcdb::encode_directory_head(9, 10, head);
  DirectoryHead decoded;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    const Bytes prefix(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    EXPECT_EQ(kdcdb::decode_directory_head(prefix, entry_of(10, size), decoded), kdcdb::kDamaged) << size;
  }
  for (const std::size_t at : {8U, 16U, 24U, 32U, 40U}) {
    for (const std::uint64_t value :
         {std::uint64_t{0}, std::uint64_t{2}, std::uint64_t{1} << 61, UINT64_MAX}) {
      Bytes changed = whole;
      std::memcpy(changed.data() + at, &value, 8);
      EXPECT_EQ(kdcdb::decode_directory_head(changed, entry_of(10, whole.size()), decoded), kdcdb::kDamaged)
          << at;
    }
  }
}

TEST(PageAllocator, GivesGapsFirstAndThenTheEnd) {
  PageAllocator pages({{10, 2}, {3, 1}, {6, 2}}, 3, 14);  // free: 4 5, 8 9, 12 13
  EXPECT_EQ(pages.take_run(3).page, 14U);
  EXPECT_EQ(pages.take(5, 0).page, 4U);
  EXPECT_EQ(pages.take(1, 12).page, 12U);
  EXPECT_EQ(pages.take(5, 13).pages, 1U);
  EXPECT_EQ(pages.take_run(2).page, 8U);
  const Extent end = pages.take(7, 0);
  EXPECT_EQ(end.page, 17U);
  EXPECT_EQ(end.pages, 7U);
}

TEST(PageAllocator, WhatIsGivenBackBesideAGapIsOneRun) {
  PageAllocator pages({}, 3, 3);
  const Extent all = pages.take_run(30);
  pages.give_back({all.page + 10, 5});
  pages.give_back({all.page + 20, 5});
  pages.give_back({all.page + 15, 5});
  EXPECT_EQ(pages.take_run(15).page, all.page + 10);
  pages.give_back({all.page, 10});
  pages.give_back({all.page + 10, 15});
  EXPECT_EQ(pages.take_run(25).page, all.page);
  EXPECT_EQ(pages.take_run(1).page, all.page + 30);
}

TEST(PageAllocator, NeverGivesAPageTwice) {
  std::mt19937 random(3);
  PageAllocator pages({{5, 3}, {20, 1}, {9, 4}}, 3, 25);
  std::set<std::uint64_t> used = {5, 6, 7, 20, 9, 10, 11, 12};
  std::vector<Extent> given;
  for (int run = 0; run < 3000; ++run) {
    if (!given.empty() && random() % 3 == 0) {
      const std::size_t which = random() % given.size();
      for (std::uint64_t i = 0; i < given[which].pages; ++i) used.erase(given[which].page + i);
      pages.give_back(given[which]);
      given.erase(given.begin() + static_cast<std::ptrdiff_t>(which));
      continue;
    }
    const std::uint64_t wanted = random() % 9 + 1;
    const Extent taken = random() % 2 == 0 ? pages.take_run(wanted) : pages.take(wanted, random() % 60);
    ASSERT_TRUE(taken.pages >= 1 && taken.pages <= wanted && taken.page >= 3);
    for (std::uint64_t i = 0; i < taken.pages; ++i) ASSERT_TRUE(used.insert(taken.page + i).second);
    given.push_back(taken);
  }
}

}  // namespace
