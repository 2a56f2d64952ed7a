// The check of a master file: every byte that a root, a dictionary or a directory answers for.
//
// What readers believe is decided in master_content, dictionary and block_directory; this walks the same
// structures, goes on where a reader would stop, and says where each fault is. Pages that nothing uses may
// hold anything.
#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "kdcdb/block_directory.h"
#include "kdcdb/crc32c.h"
#include "kdcdb/locks.h"
#include "kdcdb/master_content.h"
#include "kdcdb/store.h"
#include "kdcdb/stored_file.h"
#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

constexpr std::size_t kPagesAtOnce = 16;

using PageBytes = std::array<unsigned char, kPageBytes>;

bool is_zero(const unsigned char* from, const unsigned char* to) {
  return std::all_of(from, to, [](unsigned char byte) { return byte == 0; });
}

bool is_same(const StoredEntry& a, const StoredEntry& b) {
  return encode_dictionary({a}) == encode_dictionary({b});
}

const StoredEntry* find_serial(const std::vector<StoredEntry>& entries, std::uint64_t serial) {
  const auto found = std::find_if(entries.begin(), entries.end(),
                                  [&](const StoredEntry& entry) { return entry.serial == serial; });
  return found == entries.end() ? nullptr : &*found;
}

// What is wrong with a page that holds a root.
std::vector<std::string> faults_of_slot(const PageBytes& bytes, std::uint64_t page, std::uint64_t file_id) {
  std::vector<std::string> faults;
  for (const int copy : {1, 2}) {
    RootBytes root_bytes;
    Root root;
    std::copy_n(bytes.begin() + (copy == 1 ? 0 : kSecondRoot), kRootBytes, root_bytes.begin());
    if (root_bytes == RootBytes{}) continue;
    const std::string which = "copy " + std::to_string(copy) + " of the root ";
    if (!decode_root(root_bytes, file_id, root)) {
      faults.push_back(which + "is damaged.");
    } else if (root_page(root.generation) != static_cast<std::int64_t>(page)) {
      faults.push_back(which + "has generation " + std::to_string(root.generation) +
                       ", which belongs to the other page.");
    }
  }
  const bool rest_is_zero = is_zero(bytes.data() + kRootBytes, bytes.data() + kSecondRoot) &&
                            is_zero(bytes.data() + kSecondRoot + kRootBytes, bytes.data() + kPageBytes);
  if (!rest_is_zero) faults.push_back("bytes beside the root are not zero.");
  return faults;
}

class Checker {
 public:
  Checker(CheckReport report, void* context) : report_(report), context_(context) {}
  Checker(const Checker&) = delete;
  Checker& operator=(const Checker&) = delete;
  ~Checker() {
    if (file_ >= 0) fmd::file_system().close(file_);
  }

  Status run(const char* path);

 private:
  void say(const char* format, ...) __attribute__((format(printf, 2, 3)));
  Status read(std::uint64_t page, void* to, std::size_t bytes) {
    return read_exactly(file_, to, bytes, static_cast<off_t>(page * kPageBytes));
  }
  void check_rest(std::uint64_t page, std::size_t used, const char* what);
  void check_slot(std::uint64_t page, std::uint64_t file_id);
  bool check_state(const MasterContent& content, const Root& root, std::vector<StoredEntry>& entries);
  void check_blocks(const std::vector<StoredEntry>& entries, const std::vector<StoredEntry>& checked);
  void check_block(const StoredEntry& entry);
  bool check_head(const StoredEntry& entry, DirectoryHead& head);
  void check_pages_of(const StoredEntry& entry, std::uint64_t piece, const std::uint32_t* checksums);
  void check_apart(const MasterContent& content, const std::vector<StoredEntry>& entries,
                   const std::vector<StoredEntry>& old_entries);
  void add_bad_page(std::uint64_t page);
  void end_bad_pages();

  CheckReport report_;
  void* context_;
  int file_ = -1;
  bool found_ = false;
  std::string block_;  // its name in reports
  Extent bad_;         // pages beside each other make one report
};

void Checker::say(const char* format, ...) {
  char text[512];
  va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  found_ = true;
  report_(text, context_);
}

// The part of a page that nothing uses was written as zeros.
void Checker::check_rest(std::uint64_t page, std::size_t used, const char* what) {
  PageBytes bytes;
  if (used == 0 || used == kPageBytes || read(page, bytes.data(), bytes.size()) != kOk) return;
  if (!is_zero(bytes.data() + used, bytes.data() + bytes.size()))
    say("Page %" PRIu64 ": the rest of the page behind %s is not zero.", page, what);
}

// A writer may be at it now: only what is wrong twice is wrong.
void Checker::check_slot(std::uint64_t page, std::uint64_t file_id) {
  std::vector<std::string> faults;
  for (int attempt = 0; attempt < 2; ++attempt) {
    PageBytes bytes;
    if (read(page, bytes.data(), bytes.size()) == kOk) {
      faults = faults_of_slot(bytes, page, file_id);
    } else {
      faults = {"cannot be read."};
    }
    if (faults.empty()) return;
  }
  for (const std::string& fault : faults) say("Page %" PRIu64 ": %s", page, fault.c_str());
}

bool Checker::check_state(const MasterContent& content, const Root& root, std::vector<StoredEntry>& entries) {
  const Status status = read_dictionary(file_, content, root, entries);
  if (status == kNoMemory) throw std::bad_alloc();
  if (status != kOk && root.dictionary_bytes == 0) {
    say("Page %" PRId64 ": the root of generation %" PRIu64 " does not fit the file.",
        root_page(root.generation), root.generation);
  } else if (status != kOk) {
    say("Page %" PRIu64 ": the dictionary of generation %" PRIu64 " is damaged or does not fit the file.",
        root.dictionary_page, root.generation);
  }
  if (status != kOk) return false;
  const Extent extent = dictionary_extent(root);
  if (extent.pages > 0)
    check_rest(extent.page + extent.pages - 1, root.dictionary_bytes % kPageBytes, "the dictionary");
  return true;
}

void Checker::add_bad_page(std::uint64_t page) {
  if (page != bad_.page + bad_.pages) end_bad_pages();
  if (bad_.pages == 0) bad_.page = page;
  ++bad_.pages;
}

void Checker::end_bad_pages() {
  if (bad_.pages == 1)
    say("Page %" PRIu64 ": damaged; it belongs to %s.", bad_.page, block_.c_str());
  else if (bad_.pages > 1)
    say("Pages %" PRIu64 " to %" PRIu64 ": damaged; they belong to %s.", bad_.page,
        bad_.page + bad_.pages - 1, block_.c_str());
  bad_.pages = 0;
}

bool Checker::check_head(const StoredEntry& entry, DirectoryHead& head) {
  std::vector<unsigned char> bytes(entry.directory_bytes);
  const bool sound = read(entry.directory_page, bytes.data(), bytes.size()) == kOk &&
                     crc32c(bytes.data(), bytes.size()) == entry.directory_crc &&
                     decode_directory_head(bytes, entry, head) == kOk;
  if (!sound) {
    say("Page %" PRIu64 ": the directory of %s is damaged.", entry.directory_page, block_.c_str());
    return false;
  }
  const std::uint64_t last = entry.directory_page + pages_of_bytes(entry.directory_bytes) - 1;
  check_rest(last, entry.directory_bytes % kPageBytes, "a directory");
  return true;
}

// The pages whose checksums stand in one piece of the table.
void Checker::check_pages_of(const StoredEntry& entry, std::uint64_t piece, const std::uint32_t* checksums) {
  std::vector<unsigned char> bytes(kPagesAtOnce * kPageBytes);
  std::array<std::uint32_t, kPagesAtOnce> found;
  const std::uint64_t first = piece * kChecksumsPerPiece;
  std::uint64_t number = 0;  // of the extent's first page in the datablock
  for (const Extent& extent : entry.extents) {
    const std::uint64_t from = std::max(number, first);
    const std::uint64_t to = std::min(number + extent.pages, first + kChecksumsPerPiece);
    for (std::uint64_t at = from; at < to; at += kPagesAtOnce) {
      const auto here = static_cast<std::size_t>(std::min<std::uint64_t>(kPagesAtOnce, to - at));
      const std::uint64_t page = extent.page + at - number;
      const bool can_be_read = read(page, bytes.data(), here * kPageBytes) == kOk;
      checksum_pages(entry.serial, at, bytes.data(), here, found.data());
      for (std::size_t i = 0; i < here; ++i)
        if (!can_be_read || found[i] != checksums[at + i - first]) add_bad_page(page + i);
    }
    number += extent.pages;
  }
}

void Checker::check_block(const StoredEntry& entry) {
  block_ = "datablock " + std::to_string(entry.serial) + " '" + entry.qualifiers.label + "'";
  DirectoryHead head;
  if (!check_head(entry, head)) return;
  std::array<std::uint32_t, kChecksumsPerPiece> checksums;
  const std::uint64_t table = entry.directory_page + pages_of_bytes(entry.directory_bytes);
  for (std::uint64_t piece = 0; piece < head.piece_checksums.size(); ++piece) {
    auto* const bytes = reinterpret_cast<unsigned char*>(checksums.data());
    if (read(table + piece, bytes, kPageBytes) != kOk ||
        checksum_piece(entry.serial, piece, bytes) != head.piece_checksums[piece]) {
      say("Page %" PRIu64 ": the table of checksums of %s is damaged.", table + piece, block_.c_str());
    } else {
      check_pages_of(entry, piece, checksums.data());
    }
  }
  end_bad_pages();
}

// Those that both roots lead to are checked once.
void Checker::check_blocks(const std::vector<StoredEntry>& entries, const std::vector<StoredEntry>& checked) {
  for (const StoredEntry& entry : entries) {
    const StoredEntry* const known = find_serial(checked, entry.serial);
    if (known == nullptr) {
      check_block(entry);
    } else if (!is_same(*known, entry)) {
      say("The two dictionaries contradict each other about datablock %" PRIu64 ".", entry.serial);
    }
  }
}

// What only the older root leads to lies beside what the newer one does.
void Checker::check_apart(const MasterContent& content, const std::vector<StoredEntry>& entries,
                          const std::vector<StoredEntry>& old_entries) {
  std::vector<StoredEntry> all = entries;
  for (const StoredEntry& entry : old_entries)
    if (find_serial(entries, entry.serial) == nullptr) all.push_back(entry);
  std::vector<Extent> extents = occupied_extents(all);
  for (const Root* root : {content.newest(), content.older()})
    if (root->dictionary_bytes > 0) extents.push_back(dictionary_extent(*root));
  std::sort(extents.begin(), extents.end(), [](const Extent& a, const Extent& b) { return a.page < b.page; });
  for (std::size_t i = 1; i < extents.size(); ++i)
    if (extents[i].page < extents[i - 1].page + extents[i - 1].pages)
      say("Page %" PRIu64 ": the two dictionaries use it for different things.", extents[i].page);
}

Status Checker::run(const char* path) {
  file_ = fmd::file_system().open(path, O_RDONLY, 0);
  if (file_ < 0) return status_of_error(errno);
  // While it is held, no writer takes back what the roots lead to.
  Status status = lock_for_reading(file_);
  MasterContent content;
  if (status == kOk) status = read_master_content(file_, content);
  if (status == kDamaged && content.file_id == 0) say("Page 0: the header is damaged.");
  if (status == kDamaged && !found_) say("The file ends before its roots.");
  if (status != kOk) return status;

  HeaderBytes header;
  if (read(0, header.data(), header.size()) == kOk && !is_header_as_made(header, content.file_id))
    say("Page 0: the header is not that of a database.");
  check_rest(0, kHeaderBytes, "the header");
  for (const std::uint64_t page : {1, 2}) check_slot(page, content.file_id);
  if (content.newest() == nullptr) say("Neither root is sound: what is stored cannot be found.");
  std::vector<StoredEntry> entries;
  std::vector<StoredEntry> old_entries;
  const bool knows_newest = content.newest() != nullptr && check_state(content, *content.newest(), entries);
  const bool knows_older = content.older() != nullptr && check_state(content, *content.older(), old_entries);
  if (knows_newest) check_blocks(entries, {});
  if (knows_older) check_blocks(old_entries, entries);
  if (knows_newest && knows_older) check_apart(content, entries, old_entries);
  return found_ ? kDamaged : kOk;
}

}  // namespace

Status CheckDatabase(const char* master_path, CheckReport report, void* context) {
  return guarded([&] { return Checker(report, context).run(master_path); });
}

}  // namespace kdcdb
