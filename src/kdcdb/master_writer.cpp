#include "kdcdb/master_writer.h"

#include <algorithm>
#include <new>

#include "kdcdb/crc32c.h"
#include "kdcdb/locks.h"
#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

bool is_damaged(const RootSlot& slot) {
  return slot.state == SlotState::kDamaged;
}

void add_root(const Root& root, const std::vector<StoredEntry>& entries, std::vector<Extent>& in_use) {
  const std::vector<Extent> extents = occupied_extents(entries);
  in_use.insert(in_use.end(), extents.begin(), extents.end());
  if (root.dictionary_bytes > 0) in_use.push_back(dictionary_extent(root));
}

std::uint64_t end_of(const std::vector<StoredEntry>& entries, const Extent& dictionary) {
  std::uint64_t end = std::max<std::uint64_t>(kFirstFreePage, dictionary.page + dictionary.pages);
  for (const Extent& extent : occupied_extents(entries)) end = std::max(end, extent.page + extent.pages);
  return end;
}

}  // namespace

Status MasterWriter::begin(int file) {
  MasterContent content;
  Status status = read_master_content(file, content);
  if (status != kOk) return status;
  const Root* const newest = content.newest();
  if (newest == nullptr || std::any_of(content.slots.begin(), content.slots.end(), is_damaged))
    return kDamaged;
  status = read_dictionary(file, content, *newest, entries_);
  if (status != kOk) return status;

  file_ = file;
  root_ = *newest;
  const Root* const older = content.older();
  std::vector<StoredEntry> old_entries;
  const bool older_known = older == nullptr || read_dictionary(file, content, *older, old_entries) == kOk;
  old_end_ = 0;
  if (older != nullptr) old_end_ = older_known ? older->end_page : content.file_pages;
  // A reader may hold a state older than both roots, and where the older one cannot be read nobody knows
  // what is its own: then only the end of the file is free.
  if (has_readers(file) || !older_known) {
    const std::uint64_t end = std::max({root_.end_page, old_end_, content.file_pages + 1});
    allocator_ = PageAllocator({}, end, end);
    return kOk;
  }
  std::vector<Extent> in_use;
  add_root(root_, entries_, in_use);
  if (older != nullptr) add_root(*older, old_entries, in_use);
  allocator_ = PageAllocator(std::move(in_use), kFirstFreePage, std::max(root_.end_page, old_end_));
  return kOk;
}

std::shared_ptr<NewBlock> MasterWriter::create_block(const Qualifiers& qualifiers) {
  new_blocks_.push_back(std::make_shared<NewBlock>(file_, allocator_, qualifiers, root_.next_serial));
  ++root_.next_serial;
  return new_blocks_.back();
}

Status MasterWriter::add_entries(std::vector<StoredEntry>& entries) {
  for (const auto& block : new_blocks_) {
    if (!block->is_complete()) continue;
    StoredEntry entry;
    const Status status = block->store_directory(entry);
    if (status != kOk) return status;
    const auto same = std::find_if(entries.begin(), entries.end(), [&](const StoredEntry& other) {
      return other.qualifiers == entry.qualifiers;
    });
    if (same == entries.end()) {
      entries.push_back(std::move(entry));
    } else {
      *same = std::move(entry);
    }
  }
  return kOk;
}

Status MasterWriter::write_dictionary(const std::vector<StoredEntry>& entries, Root& root) {
  std::vector<unsigned char> bytes = encode_dictionary(entries);
  root.dictionary_bytes = bytes.size();
  root.dictionary_crc = crc32c(bytes.data(), bytes.size());
  bytes.resize(pages_of_bytes(bytes.size()) * kPageBytes);
  const Extent place = allocator_.take_run(bytes.size() / kPageBytes);
  root.dictionary_page = place.page;
  root.end_page = end_of(entries, place);
  const auto offset = static_cast<off_t>(place.page * kPageBytes);
  return fmd::write_all_at(file_, bytes.data(), bytes.size(), offset) ? kOk : status_of_error(errno);
}

// Where the new root cannot be written, or nobody knows whether it was, the slot gets back what it held: a
// commit that failed must not show later.
Status MasterWriter::switch_root(const Root& root) {
  fmd::FileSystem& system = fmd::file_system();
  const off_t place = root_page(root.generation) * kPageBytes;
  RootPageBytes before;
  Status status = read_exactly(file_, before.data(), before.size(), place);
  if (status != kOk) return status;
  if (system.fdatasync(file_) != 0) return status_of_error(errno);
  const RootPageBytes page = encode_root_page(root);
  if (fmd::write_all_at(file_, page.data(), page.size(), place) && system.fdatasync(file_) == 0) return kOk;
  status = status_of_error(errno);
  is_in_doubt_ =
      !fmd::write_all_at(file_, before.data(), before.size(), place) || system.fdatasync(file_) != 0;
  return status;
}

// Not while somebody reads what only a state before these roots knows, or a root may lead beyond.
void MasterWriter::cut_back(const Root& newest) {
  if (is_in_doubt_ || has_readers(file_)) return;
  const std::uint64_t end = std::max(newest.end_page, old_end_);
  fmd::file_system().ftruncate(file_, static_cast<off_t>(end * kPageBytes));
}

Status MasterWriter::store_new_blocks() {
  std::vector<StoredEntry> entries = entries_;
  Root root = root_;
  ++root.generation;
  Status status = add_entries(entries);
  if (status == kOk) status = write_dictionary(entries, root);
  if (status == kOk) status = switch_root(root);
  if (status != kOk) return status;
  old_end_ = root_.end_page;
  root_ = root;
  entries_ = std::move(entries);
  return kOk;
}

Status MasterWriter::commit() {
  if (new_blocks_.empty()) return kOk;
  bool has_work = false;
  Status status = kOk;
  for (const auto& block : new_blocks_) {
    has_work = has_work || block->is_complete();
    if (status == kOk) status = block->failure();
  }
  try {
    if (has_work && status == kOk) status = store_new_blocks();
  } catch (const std::bad_alloc&) {
    status = kNoMemory;
  }
  new_blocks_.clear();
  cut_back(root_);
  return status;
}

}  // namespace kdcdb
