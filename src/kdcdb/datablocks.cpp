// Datablocks by command, and their records by key.
#include <algorithm>
#include <cstring>

#include "kdcdb/kdcdb.h"
#include "kdcdb/store.h"

namespace kdcdb {

namespace {

constexpr const char* kScratchName = "fmdtmp";
constexpr const char* kStoredName = "fmddb";

// The one name inside "datablk=(name)"; empty for anything else.
std::string datablock_name(const Item& item) {
  if (item.name != "datablk" || !item.has_group || item.group.size() != 1 || item.group[0].has_value)
    return "";
  return item.group[0].name;
}

bool is_known_name(const std::string& name) {
  return name == kScratchName || name == kStoredName;
}

bool has_group(const Item& item, const char* name) {
  return item.name == name && item.has_group;
}

// A condition on a scratch datablock, whose qualifiers but for highqual have their defaults.
struct Condition {
  bool any_highqual = true;
  std::int32_t highqual = 0;
  bool others_match = true;
};

bool read_integer_condition(const Entry& entry, std::int32_t& wanted, bool& any) {
  any = entry.value == "*";
  return any || parse_integer(entry.value, wanted);
}

bool read_condition(const Entry& entry, Condition& condition) {
  if (!entry.has_value) return false;
  if (entry.name == "wildcard") return entry.value == "true" || entry.value == "false";
  if (entry.name == "highqual")
    return read_integer_condition(entry, condition.highqual, condition.any_highqual);
  if (entry.name == "selabel") {
    const bool blank = entry.value.find_first_not_of(' ') == std::string::npos;
    if (!blank && (entry.quoted || entry.value != "*")) condition.others_match = false;
    return true;
  }
  const bool counts_from_one = entry.name == "projno" || entry.name == "version";
  if (!counts_from_one && entry.name != "peid" && entry.name != "desiter" && entry.name != "stepcur")
    return false;
  std::int32_t wanted = 0;
  bool any = false;
  if (!read_integer_condition(entry, wanted, any)) return false;
  if (!any && wanted != (counts_from_one ? 1 : 0)) condition.others_match = false;
  return true;
}

bool read_conditions(const std::vector<Entry>& entries, Condition& condition) {
  return std::all_of(entries.begin(), entries.end(),
                     [&](const Entry& entry) { return read_condition(entry, condition); });
}

// "datablk=(name) where(...)"
Status read_selection(const Command& command, std::size_t first, std::string& name, Condition& condition) {
  if (command.size() < first + 2 || !has_group(command[first + 1], "where")) return kBadCommand;
  name = datablock_name(command[first]);
  if (!is_known_name(name) || !read_conditions(command[first + 1].group, condition)) return kBadCommand;
  return kOk;
}

Status parse_single(const char* text, Command& command) {
  std::vector<Command> commands;
  const Status status = parse_commands(text, commands);
  if (status != kOk) return status;
  if (commands.size() != 1) return kBadCommand;
  command = std::move(commands[0]);
  return kOk;
}

// "dbcreate datablk=(fmdtmp) quals(highqual=n)"
Status read_creation(const Command& command, std::int32_t& highqual) {
  if (command.size() != 3 || command[0].name != "dbcreate" || command[0].has_value || command[0].has_group)
    return kBadCommand;
  const std::string name = datablock_name(command[1]);
  if (!is_known_name(name) || !has_group(command[2], "quals")) return kBadCommand;
  if (name == kStoredName) return kNotSupported;
  const std::vector<Entry>& qualifiers = command[2].group;
  if (qualifiers.size() != 1 || qualifiers[0].name != "highqual") return kBadCommand;
  return parse_integer(qualifiers[0].value, highqual) ? kOk : kBadCommand;
}

Status create_scratch(std::int32_t highqual, int* key) {
  Store& state = store();
  ScratchBlocks& blocks = state.scratch[state.base];
  for (const auto& block : blocks)
    if (block->highqual == highqual) return kExists;
  auto block = std::make_unique<ScratchBlock>(state.cache);
  block->highqual = highqual;
  const Status status = block->file.create(state.base);
  if (status != kOk) return status;
  blocks.push_back(std::move(block));
  try {
    *key = state.new_key(blocks.back().get());
  } catch (...) {
    blocks.pop_back();
    throw;
  }
  return kOk;
}

}  // namespace

Status CreateDatablk(const char* text, int* key) {
  *key = 0;
  return guarded([&]() -> Status {
    if (!store().is_open()) return kNoDatabase;
    Command command;
    std::int32_t highqual = 0;
    Status status = parse_single(text, command);
    if (status == kOk) status = read_creation(command, highqual);
    return status == kOk ? create_scratch(highqual, key) : status;
  });
}

Status AllocDatablk(const char* selection, int* key, int* matches) {
  *key = 0;
  *matches = 0;
  return guarded([&]() -> Status {
    Store& state = store();
    if (!state.is_open()) return kNoDatabase;
    Command command;
    std::string name;
    Condition condition;
    Status status = parse_single(selection, command);
    if (status == kOk)
      status = command.size() == 2 ? read_selection(command, 0, name, condition) : kBadCommand;
    if (status != kOk) return status;
    const auto found = state.scratch.find(state.base);
    if (name != kScratchName || found == state.scratch.end() || !condition.others_match) return kOk;
    ScratchBlock* first = nullptr;
    int count = 0;
    for (const auto& block : found->second) {
      if (!condition.any_highqual && block->highqual != condition.highqual) continue;
      if (count++ == 0) first = block.get();
    }
    if (first != nullptr) *key = state.new_key(first);
    *matches = count;
    return kOk;
  });
}

int GetDbdict(const char* text, char* buffer, std::size_t size) {
  const Status status = guarded([&]() -> Status {
    if (!store().is_open()) return kNoDatabase;
    Command command;
    std::string name;
    Condition condition;
    const Status parsed = parse_single(text, command);
    if (parsed != kOk) return parsed;
    if (command.size() != 4 || command[0].name != "dbdict" || !has_group(command[3], "select"))
      return kBadCommand;
    return read_selection(command, 1, name, condition);
  });
  if (status == kOk && size > 0) buffer[0] = '\0';
  return -status;
}

Status ReleaseDatablk(int key) {
  Store& state = store();
  const Cursor* cursor = state.cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  ScratchBlock* const block = cursor->block();
  state.end_keys_of(*block);
  for (auto& [base, blocks] : state.scratch) {
    const auto found =
        std::find_if(blocks.begin(), blocks.end(), [&](const auto& b) { return b.get() == block; });
    if (found == blocks.end()) continue;
    blocks.erase(found);
    break;
  }
  return kOk;
}

Status Gopen(int key, int option) {
  Cursor* const cursor = store().cursor(key);
  return cursor == nullptr ? kNoDatablock : cursor->open(option);
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

Status Filps3(int key, std::int64_t position) {
  Cursor* const cursor = store().cursor(key);
  return cursor == nullptr ? kNoDatablock : cursor->restore(position);
}

Status Read(int key, void* words, std::int64_t count, std::int64_t* actual) {
  *actual = 0;
  Cursor* const cursor = store().cursor(key);
  if (cursor == nullptr) return kNoDatablock;
  if (count >= 0) return cursor->read(words, count, actual);
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
