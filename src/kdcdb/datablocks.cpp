// Datablocks by command, and their records by key.
#include <algorithm>
#include <cstring>

#include "kdcdb/kdcdb.h"
#include "kdcdb/store.h"

namespace kdcdb {

namespace {

// "dbcreate datablk=(name) quals(...)"
Status check_creation(const Command& command) {
  if (command.size() != 3 || command[0].name != "dbcreate" || command[0].has_value || command[0].has_group)
    return kBadCommand;
  const std::string name = datablock_name(command[1]);
  return (name == kScratchName || name == kStoredName) && is_group(command[2], "quals") ? kOk : kBadCommand;
}

Status create_scratch(const Item& item, int* key) {
  std::int32_t highqual = 0;
  if (item.group.size() != 1 || item.group[0].name != "highqual" ||
      !parse_integer(item.group[0].value, highqual))
    return kBadCommand;
  Store& state = store();
  ScratchBlocks& blocks = state.scratch[state.base];
  for (const auto& block : blocks)
    if (block->highqual == highqual) return kExists;
  auto block = std::make_shared<ScratchBlock>(state.cache);
  block->highqual = highqual;
  const Status status = block->file.create(state.base);
  if (status != kOk) return status;
  blocks.push_back(std::move(block));
  try {
    *key = state.new_key(blocks.back());
  } catch (...) {
    blocks.pop_back();
    throw;
  }
  return kOk;
}

Status create_stored(const Item& item, int* key) {
  Qualifiers qualifiers;
  const Status status = read_qualifiers(item, qualifiers);
  if (status != kOk) return status;
  *key = store().new_key(store().master->writer().create_block(qualifiers));
  return kOk;
}

}  // namespace

Status CreateDatablk(const char* text, int* key) {
  *key = 0;
  return guarded([&]() -> Status {
    if (!store().is_open()) return kNoDatabase;
    Command command;
    Status status = parse_single(text, command);
    if (status == kOk) status = check_creation(command);
    if (status != kOk) return status;
    return datablock_name(command[1]) == kScratchName ? create_scratch(command[2], key)
                                                      : create_stored(command[2], key);
  });
}

Status AllocDatablk(const char* text, int* key, int* matches) {
  *key = 0;
  *matches = 0;
  return guarded([&]() -> Status {
    Store& state = store();
    if (!state.is_open()) return kNoDatabase;
    Command command;
    Selection selection;
    std::vector<Link> found;
    Status status = parse_single(text, command);
    if (status == kOk) status = command.size() == 2 ? read_selection(command, 0, selection) : kBadCommand;
    if (status == kOk) status = find_matches(selection, found);
    if (status != kOk || found.empty()) return status;
    *key = state.new_key(found.front().block);
    *matches = static_cast<int>(found.size());
    return kOk;
  });
}

Status ReleaseDatablk(int key) {
  Store& state = store();
  const Cursor* cursor = state.cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  const Datablock* const block = cursor->block();
  for (auto& [base, blocks] : state.scratch) {
    const auto found =
        std::find_if(blocks.begin(), blocks.end(), [&](const auto& b) { return b.get() == block; });
    if (found == blocks.end()) continue;
    state.end_keys_of(*block);
    state.drop_links_to(*block);
    blocks.erase(found);
    return kOk;
  }
  // Kept until its keys have ended.
  const std::shared_ptr<Datablock> linked = state.find_linked(*block);
  if (linked == nullptr) return kOk;
  state.end_keys_of(*linked);
  state.drop_links_to(*linked);
  return kOk;
}

Status AbandonDatablk(int key) {
  const Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  cursor->block()->abandon();
  return kOk;
}

Status Gopen(int key, int option) {
  Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  return guarded([&] { return cursor->open(option); });
}

Status Close(int key, int option) {
  Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  if (option != 1) return kBadArgument;
  cursor->close();
  return kOk;
}

Status Wrttrl(const std::int32_t* trailer) {
  Cursor* const cursor = store().cursor(trailer[0]);
  if (cursor == nullptr) return kNoDatablock;
  std::copy_n(trailer + 1, kTrailerWords - 1, cursor->block()->trailer.begin());
  return kOk;
}

Status Rdtrl(std::int32_t* trailer) {
  const Cursor* const cursor = store().cursor(trailer[0]);
  if (cursor == nullptr) return kNoDatablock;
  std::copy_n(cursor->block()->trailer.begin(), kTrailerWords - 1, trailer + 1);
  return kOk;
}

Status Fwdrec(int key) {
  Cursor* const cursor = store().cursor(key);
  return cursor == nullptr ? kNoDatablock : cursor->to_next_record();
}

Status Savps3(int key, std::int64_t* position, bool* end_of_record, bool* end_of_file) {
  Cursor* const cursor = store().cursor(key);
  return cursor == nullptr ? kNoDatablock : cursor->save(position, end_of_record, end_of_file);
}

Status Length(int key, std::int64_t* words) {
  *words = 0;
  const Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  *words = cursor->block()->words;
  return kOk;
}

Status Remaining(int key, std::int64_t* words) {
  *words = 0;
  Cursor* const cursor = store().cursor(key);
  return cursor == nullptr ? kNoDatablock : cursor->remaining(words);
}

Status Filps3(int key, std::int64_t position) {
  Cursor* const cursor = store().cursor(key);
  return cursor == nullptr ? kNoDatablock : cursor->restore(position);
}

Status Read(int key, void* words, std::int64_t count, std::int64_t* actual) {
  *actual = 0;
  Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  if (count >= 0) return guarded([&] { return cursor->read(words, count, actual); });
  return count < -kMostWords ? kBadArgument : cursor->skip(-count);
}

Status Write(int key, const void* words, std::int64_t count, bool end_of_record) {
  Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  if (count < 0) return kBadArgument;
  return guarded([&]() -> Status {
    const Status status = cursor->write(words, count);
    return status == kOk && end_of_record ? cursor->end_record() : status;
  });
}

Status WriteZeros(int key, std::int64_t count) {
  Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  if (count < 0) return kBadArgument;
  return guarded([&] { return cursor->write_zeros(count); });
}

}  // namespace kdcdb
