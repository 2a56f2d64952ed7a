#include "kdcdb/dictionary.h"

#include <algorithm>
#include <tuple>

#include "kdcdb/little_endian.h"
#include "kdcdb/master_pages.h"

namespace kdcdb {

namespace {

constexpr char kMagic[] = "FMDSDICT";
constexpr std::size_t kMagicBytes = 8;
constexpr std::size_t kDictionaryHead = 16;
constexpr std::size_t kEntryHead = 96;
constexpr std::size_t kExtentBytes = 16;
constexpr std::uint64_t kWordsPerPage = kPageBytes / 4;
constexpr std::uint64_t kChecksumsPerPage = kPageBytes / 4;
constexpr std::uint64_t kMostWordsStored = std::uint64_t{1} << 56;

std::size_t round_up_to_8(std::size_t bytes) {
  return (bytes + 7) / 8 * 8;
}

std::size_t entry_bytes(std::size_t extents, std::size_t label) {
  return kEntryHead + kExtentBytes * extents + round_up_to_8(label);
}

void encode_entry(const StoredEntry& entry, unsigned char* at) {
  const std::string& label = entry.qualifiers.label;
  put(at, 0, static_cast<std::uint32_t>(entry_bytes(entry.extents.size(), label.size())));
  put(at, 4, static_cast<std::uint32_t>(label.size()));
  put(at, 8, entry.serial);
  put(at, 16, entry.qualifiers.numbers);
  put(at, 40, entry.trailer);
  put(at, 64, entry.words);
  put(at, 72, entry.directory_page);
  put(at, 80, entry.directory_bytes);
  put(at, 88, entry.directory_crc);
  put(at, 92, static_cast<std::uint32_t>(entry.extents.size()));
  for (std::size_t i = 0; i < entry.extents.size(); ++i) {
    put(at, kEntryHead + kExtentBytes * i, entry.extents[i].page);
    put(at, kEntryHead + kExtentBytes * i + 8, entry.extents[i].pages);
  }
  std::memcpy(at + kEntryHead + kExtentBytes * entry.extents.size(), label.data(), label.size());
}

// Within the pages that datablocks may take.
bool lies_inside(const Extent& extent, std::uint64_t file_pages) {
  return extent.page >= kFirstFreePage && extent.page <= file_pages && extent.pages >= 1 &&
         extent.pages <= file_pages - extent.page;
}

// A label is printable and fits a listed row.
bool is_label(const std::string& label) {
  const bool plain = std::none_of(label.begin(), label.end(), [](char c) {
    return static_cast<unsigned char>(c) < 0x20 || c == 0x7F || c == '\'';
  });
  return plain && (label.empty() || label.back() != ' ');
}

bool decode_extents(const unsigned char* at, std::uint64_t file_pages, StoredEntry& entry) {
  std::uint64_t pages = 0;
  for (std::size_t i = 0; i < entry.extents.size(); ++i) {
    Extent& extent = entry.extents[i];
    extent.page = get<std::uint64_t>(at, kEntryHead + kExtentBytes * i);
    extent.pages = get<std::uint64_t>(at, kEntryHead + kExtentBytes * i + 8);
    if (!lies_inside(extent, file_pages)) return false;
    pages += extent.pages;
    if (pages > file_pages) return false;
  }
  return pages == pages_of_words(entry.words);
}

bool has_sound_counts(const StoredEntry& entry, std::uint64_t file_pages) {
  return entry.serial > 0 && entry.words <= kMostWordsStored && pages_of_words(entry.words) <= file_pages &&
         entry.directory_bytes >= 48 && pages_of_bytes(entry.directory_bytes) <= file_pages &&
         lies_inside(directory_extent(entry), file_pages);
}

// Reads one entry from the bytes that are left; 0 for one that cannot be.
std::size_t decode_entry(const unsigned char* at, std::size_t left, std::uint64_t file_pages,
                         StoredEntry& entry) {
  if (left < kEntryHead) return 0;
  const std::size_t bytes = get<std::uint32_t>(at, 0);
  const std::size_t label = get<std::uint32_t>(at, 4);
  const std::size_t extents = get<std::uint32_t>(at, 92);
  if (bytes > left || label > bytes || extents > bytes / kExtentBytes || bytes != entry_bytes(extents, label))
    return 0;
  entry.serial = get<std::uint64_t>(at, 8);
  std::memcpy(entry.qualifiers.numbers.data(), at + 16, sizeof entry.qualifiers.numbers);
  std::memcpy(entry.trailer.data(), at + 40, sizeof entry.trailer);
  entry.words = get<std::uint64_t>(at, 64);
  entry.directory_page = get<std::uint64_t>(at, 72);
  entry.directory_bytes = get<std::uint64_t>(at, 80);
  entry.directory_crc = get<std::uint32_t>(at, 88);
  if (!has_sound_counts(entry, file_pages)) return 0;
  entry.extents.resize(extents);
  if (!decode_extents(at, file_pages, entry)) return 0;
  const auto* text = reinterpret_cast<const char*>(at + kEntryHead + kExtentBytes * extents);
  entry.qualifiers.label.assign(text, label);
  return is_label(entry.qualifiers.label) ? bytes : 0;
}

bool overlap(const std::vector<Extent>& ascending) {
  for (std::size_t i = 1; i < ascending.size(); ++i) {
    if (ascending[i].page < ascending[i - 1].page + ascending[i - 1].pages) return true;
  }
  return false;
}

// No two entries may have one serial or one set of qualifiers.
bool are_distinct(const std::vector<StoredEntry>& entries) {
  std::vector<std::uint64_t> serials;
  std::vector<const Qualifiers*> qualifiers;
  for (const StoredEntry& entry : entries) {
    serials.push_back(entry.serial);
    qualifiers.push_back(&entry.qualifiers);
  }
  const auto key = [](const Qualifiers* of) { return std::tie(of->numbers, of->label); };
  std::sort(serials.begin(), serials.end());
  std::sort(qualifiers.begin(), qualifiers.end(),
            [&](const Qualifiers* a, const Qualifiers* b) { return key(a) < key(b); });
  const auto same = [&](const Qualifiers* a, const Qualifiers* b) { return key(a) == key(b); };
  return std::adjacent_find(serials.begin(), serials.end()) == serials.end() &&
         std::adjacent_find(qualifiers.begin(), qualifiers.end(), same) == qualifiers.end();
}

}  // namespace

std::uint64_t pages_of_bytes(std::uint64_t bytes) {
  return bytes / kPageBytes + (bytes % kPageBytes != 0 ? 1 : 0);
}

std::uint64_t pages_of_words(std::uint64_t words) {
  return words / kWordsPerPage + (words % kWordsPerPage != 0 ? 1 : 0);
}

Extent directory_extent(const StoredEntry& entry) {
  const std::uint64_t checksums = pages_of_words(entry.words);
  const std::uint64_t pieces = checksums / kChecksumsPerPage + (checksums % kChecksumsPerPage != 0 ? 1 : 0);
  return {entry.directory_page, pages_of_bytes(entry.directory_bytes) + pieces};
}

std::vector<unsigned char> encode_dictionary(const std::vector<StoredEntry>& entries) {
  std::size_t bytes = kDictionaryHead;
  for (const StoredEntry& entry : entries)
    bytes += entry_bytes(entry.extents.size(), entry.qualifiers.label.size());
  std::vector<unsigned char> text(bytes);
  std::memcpy(text.data(), kMagic, kMagicBytes);
  put(text.data(), 8, static_cast<std::uint32_t>(entries.size()));
  std::size_t at = kDictionaryHead;
  for (const StoredEntry& entry : entries) {
    encode_entry(entry, text.data() + at);
    at += entry_bytes(entry.extents.size(), entry.qualifiers.label.size());
  }
  return text;
}

Status decode_dictionary(const std::vector<unsigned char>& bytes, std::uint64_t file_pages,
                         std::vector<StoredEntry>& entries) {
  entries.clear();
  if (bytes.size() < kDictionaryHead || std::memcmp(bytes.data(), kMagic, kMagicBytes) != 0) return kDamaged;
  const std::size_t count = get<std::uint32_t>(bytes.data(), 8);
  if (count > (bytes.size() - kDictionaryHead) / kEntryHead) return kDamaged;
  entries.resize(count);
  std::size_t at = kDictionaryHead;
  for (StoredEntry& entry : entries) {
    const std::size_t taken = decode_entry(bytes.data() + at, bytes.size() - at, file_pages, entry);
    if (taken == 0) return kDamaged;
    at += taken;
  }
  if (at != bytes.size() || !are_distinct(entries) || overlap(occupied_extents(entries))) return kDamaged;
  return kOk;
}

std::vector<Extent> occupied_extents(const std::vector<StoredEntry>& entries) {
  std::vector<Extent> extents;
  for (const StoredEntry& entry : entries) {
    extents.insert(extents.end(), entry.extents.begin(), entry.extents.end());
    extents.push_back(directory_extent(entry));
  }
  std::sort(extents.begin(), extents.end(), [](const Extent& a, const Extent& b) { return a.page < b.page; });
  return extents;
}

}  // namespace kdcdb
