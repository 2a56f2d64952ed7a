// Session, databases and their files.
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "kdcdb/kdcdb.h"
#include "kdcdb/master_pages.h"
#include "kdcdb/store.h"
#include "kdcdb/system_status.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

constexpr const char* kMasterSuffix = ".MASTER";
constexpr const char* kDefaultSet = ".DBALL";
constexpr const char* kTemporarySet = ".DBFMD";

// Two processes that share a directory, and even a number of theirs, get names of their own.
std::string unique_name(const char* directory) {
  std::uint32_t mark = 0;
  if (getrandom(&mark, sizeof mark, 0) < 0) mark = static_cast<std::uint32_t>(time(nullptr));
  char name[40];
  std::snprintf(name, sizeof name, "fmd%ld_%08x", static_cast<long>(getpid()), static_cast<unsigned>(mark));
  return std::string(directory) + (std::strcmp(directory, "/") == 0 ? "" : "/") + name;
}

// A path on the stack, so that cleaning up needs no memory.
class Path {
 public:
  Path() { text_[0] = '\0'; }
  Path(const char* base, const char* suffix) { std::snprintf(text_, sizeof text_, "%s%s", base, suffix); }
  const char* text() const { return text_; }

  // The real path of a directory.
  Status resolve(const char* directory) {
    char resolved[PATH_MAX];
    if (fmd::file_system().realpath(directory, resolved) == nullptr) return status_of_error(errno);
    std::memcpy(text_, resolved, std::strlen(resolved) + 1);
    return kOk;
  }

  bool append(const char* name) {
    const std::size_t length = std::strlen(text_);
    const char* const separator = length == 1 ? "" : "/";
    const int added = std::snprintf(text_ + length, sizeof text_ - length, "%s%s", separator, name);
    return length + static_cast<std::size_t>(added) < PATH_MAX - kLongestSuffix;
  }

 private:
  static constexpr std::size_t kLongestSuffix = 16;
  char text_[PATH_MAX + kLongestSuffix];
};

// The absolute form of a base name, whose files need not exist.
Status resolve_base(const char* base, Path& absolute) {
  const char* const slash = std::strrchr(base, '/');
  const char* const name = slash == nullptr ? base : slash + 1;
  if (*name == '\0' || std::strlen(base) >= PATH_MAX) return kBadArgument;
  char directory[PATH_MAX] = ".";
  if (slash != nullptr) {
    const auto length = std::max<std::size_t>(static_cast<std::size_t>(slash - base), 1);
    std::memcpy(directory, base, length);
    directory[length] = '\0';
  }
  const Status status = absolute.resolve(directory);
  if (status != kOk) return status;
  return absolute.append(name) ? kOk : kBadArgument;
}

// The file suffix of a set that commands may name, or null.
const char* suffix_of_set(const std::string& name) {
  if (name == "dball") return kDefaultSet;
  if (name == "dbfmd") return kTemporarySet;
  return nullptr;
}

Status make_set(const Path& path) {
  fmd::FileSystem& system = fmd::file_system();
  const int file = system.open(path.text(), O_CREAT | O_RDWR, 0666);
  if (file < 0) return status_of_error(errno);
  system.close(file);
  return kOk;
}

Status remove_file(const Path& path) {
  return fmd::file_system().unlink(path.text()) == 0 || errno == ENOENT ? kOk : status_of_error(errno);
}

bool is_set_command(const Command& command) {
  const std::string& verb = command[0].name;
  if (command[0].has_value || command[0].has_group || (verb != "init" && verb != "dbsetdel")) return false;
  return command.size() == 2 && !command[1].has_value && !command[1].has_group &&
         suffix_of_set(command[1].name) != nullptr;
}

// Whether a command can be run on a database; "restart" is legal and asks for nothing.
Status check_command(const Command& command) {
  if (is_set_command(command)) return kOk;
  if (command[0].has_value || command[0].has_group) return kBadCommand;
  const std::string& verb = command[0].name;
  if (verb == "restart") return command.size() == 1 ? kOk : kBadCommand;
  if (verb == "assign" || verb == "dblocate" || verb == "undblocate")
    return command.size() > 1 ? kNotSupported : kBadCommand;
  return kBadCommand;
}

Status parse_checked(const char* text, std::vector<Command>& commands) {
  Status status = parse_commands(text, commands);
  for (std::size_t i = 0; i < commands.size() && status == kOk; ++i) status = check_command(commands[i]);
  return status;
}

Status run_commands(const char* base, const std::vector<Command>& commands) {
  for (const Command& command : commands) {
    if (!is_set_command(command)) continue;
    const Path path(base, suffix_of_set(command[1].name));
    const Status status = command[0].name == "init" ? make_set(path) : remove_file(path);
    if (status != kOk) return status;
  }
  return kOk;
}

Status remove_files(const char* base) {
  Status status = kOk;
  for (const char* suffix : {kMasterSuffix, kDefaultSet, kTemporarySet}) {
    const Status removed = remove_file(Path(base, suffix));
    if (status == kOk) status = removed;
  }
  return status;
}

// A database whose default set is taken away again is one to keep; others live as long as their session.
bool is_lasting(const std::vector<Command>& commands) {
  return std::any_of(commands.begin(), commands.end(), [](const Command& command) {
    return command[0].name == "dbsetdel" && command[1].name == "dball";
  });
}

Status create_database(const char* base, const std::vector<Command>& commands) {
  Store& state = store();
  Status status = state.master.create(Path(base, kMasterSuffix).text(), is_lasting(commands));
  if (status != kOk) return status;
  status = make_set(Path(base, kDefaultSet));
  if (status == kOk) status = run_commands(base, commands);
  if (status == kOk) return kOk;
  state.master.close();
  remove_files(base);
  return status;
}

Status open_database(const char* base, const std::vector<Command>& commands) {
  Store& state = store();
  Status status = state.master.open(Path(base, kMasterSuffix).text());
  if (status != kOk) return status;
  status = run_commands(base, commands);
  if (status != kOk) state.master.close();
  return status;
}

using Opening = Status (*)(const char* base, const std::vector<Command>& commands);

Status begin_database(const char* base, const char* text, Opening opening) {
  return guarded([&]() -> Status {
    Store& state = store();
    if (state.directory.empty()) return kNoDatabase;
    if (state.is_open()) return kDatabaseOpen;
    std::vector<Command> commands;
    Path absolute;
    Status status = parse_checked(text, commands);
    if (status == kOk) status = resolve_base(base, absolute);
    if (status != kOk) return status;
    std::string name = absolute.text();
    status = opening(name.c_str(), commands);
    if (status == kOk) state.base = std::move(name);
    return status;
  });
}

}  // namespace

Status DbaseBst(const char* /*message_file*/, const char* working_directory) {
  return guarded([&]() -> Status {
    Store& state = store();
    if (state.is_open()) return kDatabaseOpen;
    Path directory;
    const Status status = directory.resolve(working_directory);
    if (status != kOk) return status;
    if (state.own_name.empty()) state.own_name = unique_name(directory.text());
    state.directory = directory.text();
    return kOk;
  });
}

Status DbaseNew(const char* base, const char* commands) {
  return begin_database(base, commands, create_database);
}

Status DbaseOld(const char* base, const char* commands) {
  return begin_database(base, commands, open_database);
}

Status DbaseNdl(const char* /*delivery_path*/) {
  return store().is_open() ? kOk : kNoDatabase;
}

Status DbaseCls() {
  Store& state = store();
  state.directory.clear();
  if (!state.is_open()) return kNoDatabase;
  for (auto& key : state.keys) {
    if (key != nullptr) key->close();
    key.reset();
  }
  state.master.close();
  state.base.clear();
  return kOk;
}

Status GetDbName(const char* logical, char* name, std::size_t size, std::size_t* length) {
  const Store& state = store();
  if (state.directory.empty()) return kNoDatabase;
  if (std::strcmp(logical, "DBS") != 0 && std::strcmp(logical, "F06") != 0) return kBadArgument;
  const int written = std::snprintf(name, size, "%s_%s", state.own_name.c_str(), logical);
  *length = static_cast<std::size_t>(written);
  return *length < size ? kOk : kBadArgument;
}

Status DeleteDatabase(const char* base) {
  Store& state = store();
  Path absolute;
  const Status status = resolve_base(base, absolute);
  if (status != kOk) return status;
  const std::string_view name = absolute.text();
  if (name == state.base) return kDatabaseOpen;
  const auto found = state.scratch.find(name);
  if (found != state.scratch.end()) {
    for (const auto& block : found->second) state.end_keys_of(*block);
    state.scratch.erase(found);
  }
  if (state.scratch.empty()) state.cache.release_storage();
  if (name == state.own_name) state.own_name.clear();
  return remove_files(absolute.text());
}

Status FMSCommand(const char* text) {
  return guarded([&]() -> Status {
    const Store& state = store();
    if (!state.is_open()) return kNoDatabase;
    std::vector<Command> commands;
    const Status status = parse_checked(text, commands);
    return status == kOk ? run_commands(state.base.c_str(), commands) : status;
  });
}

void GetBuffsizeLimit(std::int32_t* limit, std::int32_t* second) {
  *limit = kBufferWordsLimit;
  *second = 0;
}

}  // namespace kdcdb
