#include "kdcdb/master_content.h"

#include <algorithm>

#include "kdcdb/crc32c.h"
#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

// A write that was cut short harms one of the two copies at most, so a slot counts as sound with one sound
// copy and as empty with one that is empty. A root that stands in the other's slot would be overwritten by
// the next commit.
Status read_slot(int file, std::int64_t page, std::uint64_t file_id, RootSlot& slot) {
  int damaged = 0;
  for (const int copy : {0, kSecondRoot}) {
    RootBytes bytes;
    const Status status = read_exactly(file, bytes.data(), bytes.size(), page * kPageBytes + copy);
    if (status != kOk) return status;
    Root root;
    if (bytes == RootBytes{}) continue;
    if (!decode_root(bytes, file_id, root) || root_page(root.generation) != page) {
      ++damaged;
      continue;
    }
    if (slot.state != SlotState::kSound || root.generation > slot.root.generation) slot.root = root;
    slot.state = SlotState::kSound;
  }
  if (damaged == 2) slot.state = SlotState::kDamaged;
  return kOk;
}

bool is_inside(const Extent& extent, const Root& root) {
  return extent.page >= kFirstFreePage && extent.page <= root.end_page &&
         extent.pages <= root.end_page - extent.page;
}

bool overlap(const Extent& a, const Extent& b) {
  return a.page < b.page + b.pages && b.page < a.page + a.pages;
}

bool is_apart(const Extent& extent, const std::vector<StoredEntry>& entries) {
  return std::none_of(entries.begin(), entries.end(), [&](const StoredEntry& entry) {
    return overlap(extent, directory_extent(entry)) ||
           std::any_of(entry.extents.begin(), entry.extents.end(),
                       [&](const Extent& other) { return overlap(extent, other); });
  });
}

bool serials_are_used(const Root& root, const std::vector<StoredEntry>& entries) {
  return std::all_of(entries.begin(), entries.end(),
                     [&](const StoredEntry& entry) { return entry.serial < root.next_serial; });
}

}  // namespace

const Root* MasterContent::newest() const {
  const Root* found = nullptr;
  for (const RootSlot& slot : slots) {
    if (slot.state != SlotState::kSound) continue;
    if (found == nullptr || slot.root.generation > found->generation) found = &slot.root;
  }
  return found;
}

const Root* MasterContent::older() const {
  for (const RootSlot& slot : slots) {
    if (slot.state == SlotState::kSound && &slot.root != newest()) return &slot.root;
  }
  return nullptr;
}

Status read_master_content(int file, MasterContent& content) {
  struct stat status {};
  if (fmd::file_system().fstat(file, &status) != 0) return status_of_error(errno);
  content.file_pages = static_cast<std::uint64_t>(status.st_size) / kPageBytes;
  HeaderBytes header;
  Status read = read_exactly(file, header.data(), header.size(), 0);
  if (read == kDamaged) return kNotADatabase;
  if (read == kOk) read = decode_header(header, content.file_id);
  if (read != kOk) return read;
  for (const std::int64_t page : {1, 2}) {
    read = read_slot(file, page, content.file_id, content.slots[static_cast<std::size_t>(page) - 1]);
    if (read != kOk) return read;
  }
  return kOk;
}

Status read_dictionary(int file, const MasterContent& content, const Root& root,
                       std::vector<StoredEntry>& entries) {
  entries.clear();
  if (root.end_page < kFirstFreePage || root.end_page > content.file_pages) return kDamaged;
  if (root.dictionary_bytes == 0) return kOk;
  const Extent extent = dictionary_extent(root);
  if (!is_inside(extent, root)) return kDamaged;
  std::vector<unsigned char> bytes(root.dictionary_bytes);
  const auto offset = static_cast<off_t>(root.dictionary_page * kPageBytes);
  Status status = read_exactly(file, bytes.data(), bytes.size(), offset);
  if (status != kOk) return status;
  if (crc32c(bytes.data(), bytes.size()) != root.dictionary_crc) return kDamaged;
  status = decode_dictionary(bytes, root.end_page, entries);
  if (status != kOk) return status;
  return is_apart(extent, entries) && serials_are_used(root, entries) ? kOk : kDamaged;
}

Extent dictionary_extent(const Root& root) {
  return {root.dictionary_page, pages_of_bytes(root.dictionary_bytes)};
}

}  // namespace kdcdb
