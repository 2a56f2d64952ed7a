// Session, databases and their files.
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>

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
std::string unique_name(const std::string& directory) {
  std::uint32_t mark = 0;
  if (getrandom(&mark, sizeof mark, 0) < 0) mark = static_cast<std::uint32_t>(time(nullptr));
  char name[40];
  std::snprintf(name, sizeof name, "fmd%ld_%08x", static_cast<long>(getpid()), static_cast<unsigned>(mark));
  return directory == "/" ? directory + name : directory + "/" + name;
}

Status absolute_directory(const char* path, std::string& absolute) {
  char resolved[PATH_MAX];
  if (fmd::file_system().realpath(path, resolved) == nullptr) return status_of_error(errno);
  absolute = resolved;
  return kOk;
}

// The absolute form of a base name, whose files need not exist.
Status absolute_base(const char* base, std::string& absolute) {
  const std::string given = base;
  const std::string name = given.substr(given.rfind('/') + 1);
  if (name.empty()) return kBadArgument;
  const Status status = absolute_directory(directory_of(given).c_str(), absolute);
  if (status != kOk) return status;
  if (absolute != "/") absolute += '/';
  absolute += name;
  return kOk;
}

// The file suffix of a set that commands may name, or null.
const char* suffix_of_set(const std::string& name) {
  if (name == "dball") return kDefaultSet;
  if (name == "dbfmd") return kTemporarySet;
  return nullptr;
}

Status make_set(const std::string& path) {
  fmd::FileSystem& system = fmd::file_system();
  const int file = system.open(path.c_str(), O_CREAT | O_RDWR, 0666);
  if (file < 0) return status_of_error(errno);
  system.close(file);
  return kOk;
}

Status remove_file(const std::string& path) {
  return fmd::file_system().unlink(path.c_str()) == 0 || errno == ENOENT ? kOk : status_of_error(errno);
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

Status run_commands(const std::string& base, const std::vector<Command>& commands) {
  for (const Command& command : commands) {
    if (!is_set_command(command)) continue;
    const std::string path = base + suffix_of_set(command[1].name);
    const Status status = command[0].name == "init" ? make_set(path) : remove_file(path);
    if (status != kOk) return status;
  }
  return kOk;
}

Status remove_files(const std::string& base) {
  Status status = kOk;
  for (const char* suffix : {kMasterSuffix, kDefaultSet, kTemporarySet}) {
    const Status removed = remove_file(base + suffix);
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

Status create_database(const std::string& base, const std::vector<Command>& commands) {
  Store& state = store();
  Status status = state.master.create(base + kMasterSuffix, is_lasting(commands));
  if (status != kOk) return status;
  // Guarded on its own, so that no file stays behind where memory is short.
  status = guarded([&]() -> Status {
    const Status made = make_set(base + kDefaultSet);
    return made == kOk ? run_commands(base, commands) : made;
  });
  if (status == kOk) return kOk;
  state.master.close();
  remove_files(base);
  return status;
}

Status open_database(const std::string& base, const std::vector<Command>& commands) {
  Store& state = store();
  Status status = state.master.open(base + kMasterSuffix);
  if (status != kOk) return status;
  status = run_commands(base, commands);
  if (status != kOk) state.master.close();
  return status;
}

using Opening = Status (*)(const std::string& base, const std::vector<Command>& commands);

Status begin_database(const char* base, const char* text, Opening opening) {
  return guarded([&]() -> Status {
    Store& state = store();
    if (state.directory.empty()) return kNoDatabase;
    if (state.is_open()) return kDatabaseOpen;
    std::vector<Command> commands;
    std::string absolute;
    Status status = parse_checked(text, commands);
    if (status == kOk) status = absolute_base(base, absolute);
    if (status != kOk) return status;
    // Guarded on its own, so that no file stays open where memory is short.
    status = guarded([&]() -> Status { return opening(absolute, commands); });
    if (status == kOk) {
      state.base = std::move(absolute);
    } else {
      state.master.close();
    }
    return status;
  });
}

}  // namespace

Status DbaseBst(const char* /*message_file*/, const char* working_directory) {
  return guarded([&]() -> Status {
    Store& state = store();
    if (state.is_open()) return kDatabaseOpen;
    std::string directory;
    const Status status = absolute_directory(working_directory, directory);
    if (status != kOk) return status;
    if (state.own_name.empty()) state.own_name = unique_name(directory);
    state.directory = std::move(directory);
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
  return guarded([&]() -> Status {
    const Store& state = store();
    if (state.directory.empty()) return kNoDatabase;
    if (std::strcmp(logical, "DBS") != 0 && std::strcmp(logical, "F06") != 0) return kBadArgument;
    const std::string physical = state.own_name + "_" + logical;
    *length = physical.size();
    if (physical.size() >= size) return kBadArgument;
    std::memcpy(name, physical.c_str(), physical.size() + 1);
    return kOk;
  });
}

Status DeleteDatabase(const char* base) {
  return guarded([&]() -> Status {
    Store& state = store();
    std::string absolute;
    const Status status = absolute_base(base, absolute);
    if (status != kOk) return status;
    if (absolute == state.base) return kDatabaseOpen;
    const auto found = state.scratch.find(absolute);
    if (found != state.scratch.end()) {
      for (const auto& block : found->second) state.end_keys_of(block.get());
      state.scratch.erase(found);
    }
    if (state.scratch.empty()) state.cache.release_storage();
    if (absolute == state.own_name) state.own_name.clear();
    return remove_files(absolute);
  });
}

Status FMSCommand(const char* text) {
  return guarded([&]() -> Status {
    const Store& state = store();
    if (!state.is_open()) return kNoDatabase;
    std::vector<Command> commands;
    const Status status = parse_checked(text, commands);
    return status == kOk ? run_commands(state.base, commands) : status;
  });
}

void GetBuffsizeLimit(std::int32_t* limit, std::int32_t* second) {
  *limit = kBufferWordsLimit;
  *second = 0;
}

}  // namespace kdcdb
