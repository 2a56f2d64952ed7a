// Datablocks by command, and their records by key.
#include <algorithm>
#include <cstring>

#include "kdcdb/kdcdb.h"
#include "kdcdb/store.h"
#include "kdcdb/trace.h"

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

Status create(const char* text, int* key) {
  if (!store().is_open()) return kNoDatabase;
  Command command;
  Status status = parse_single(text, command);
  if (status == kOk) status = check_creation(command);
  if (status != kOk) return status;
  return datablock_name(command[1]) == kScratchName ? create_scratch(command[2], key)
                                                    : create_stored(command[2], key);
}

Status allocate(const char* text, int* key, int* matches) {
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
}

Status read(int key, void* words, std::int64_t count, std::int64_t* actual) {
  Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  if (count >= 0) return cursor->read(words, count, actual);
  return count < -kMostWords ? kBadArgument : cursor->skip(-count);
}

}  // namespace

Status CreateDatablk(const char* text, int* key) {
  trace("KD_CreateDatablk: inp = %s\n", text);
  *key = 0;
  return traced("KD_CreateDatablk: err = %d\n", guarded([&] { return create(text, key); }));
}

Status AllocDatablk(const char* text, int* key, int* matches) {
  trace("KD_AllocDatablk: inp = %s\n", text);
  *key = 0;
  *matches = 0;
  const Status status = guarded([&] { return allocate(text, key, matches); });
  trace("KD_AllocDatablk: key = %d, err = %d\n", *key, static_cast<int>(status));
  return status;
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
  trace("Kdio_Gopen: key = %d\n", key);
  trace("Kdio_Gopen: opt = %d\n", option);
  Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  return guarded([&] { return cursor->open(option); });
}

Status Close(int key, int option) {
  trace("Kdio_Close: key = %d\n", key);
  Cursor* const cursor = store().cursor(key);
  if (cursor != nullptr && option == 1) cursor->close();
  trace("Kdio_Close: done\n");
  if (cursor == nullptr) return kNoDatablock;
  return option == 1 ? kOk : kBadArgument;
}

Status Wrttrl(const std::int32_t* trailer) {
  trace("Kdio_Wrttrl: key = %d\n", trailer[0]);
  Cursor* const cursor = store().cursor(trailer[0]);
  const Status status = cursor == nullptr ? kNoDatablock : cursor->block()->set_trailer(trailer + 1);
  trace("Kdio_Wrttrl: done\n");
  return status;
}

Status Rdtrl(std::int32_t* trailer) {
  trace("Kdio_Rdtrl: key = %d\n", trailer[0]);
  const Cursor* const cursor = store().cursor(trailer[0]);
  if (cursor != nullptr) std::copy_n(cursor->block()->trailer.begin(), kTrailerWords - 1, trailer + 1);
  trace("Kdio_Rdtrl: done\n");
  return cursor == nullptr ? kNoDatablock : kOk;
}

Status Fwdrec(int key) {
  trace("Kdio_Fwdrec: key = %d\n", key);
  Cursor* const cursor = store().cursor(key);
  return traced("Kdio_Fwdrec: err = %d\n", cursor == nullptr ? kNoDatablock : cursor->to_next_record());
}

Status Savps3(int key, std::int64_t* position, bool* end_of_record, bool* end_of_file) {
  trace("Kdio_Savps3: key = %d\n", key);
  Cursor* const cursor = store().cursor(key);
  *end_of_record = false;
  *end_of_file = false;
  const Status status = cursor == nullptr ? kNoDatablock : cursor->save(position, end_of_record, end_of_file);
  trace("Kdio_Savps3: eor = %d, eof = %d\n", *end_of_record ? 1 : 0, *end_of_file ? 1 : 0);
  return status;
}

Status Remaining(int key, std::int64_t* words) {
  *words = 0;
  Cursor* const cursor = store().cursor(key);
  return cursor == nullptr ? kNoDatablock : cursor->remaining(words);
}

Status Filps3(int key, std::int64_t position) {
  trace("Kdio_Filps3: key = %d\n", key);
  Cursor* const cursor = store().cursor(key);
  const Status status = cursor == nullptr ? kNoDatablock : cursor->restore(position);
  trace("Kdio_Filps3: done\n");
  return status;
}

Status Read(int key, void* words, std::int64_t count, std::int64_t* actual) {
  trace("Kdio_Read: key = %d\n", key);
  *actual = 0;
  return traced("Kdio_Read: err = %d\n", guarded([&] { return read(key, words, count, actual); }));
}

Status Write(int key, const void* words, std::int64_t count, bool end_of_record) {
  trace("Kdio_Write: key = %d\n", key);
  trace("Kdio_Write: eof = %d\n", end_of_record ? 1 : 0);
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
