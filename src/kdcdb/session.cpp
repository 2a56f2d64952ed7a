// Session, databases and their files.
#include <sys/random.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string_view>

#include "kdcdb/kdcdb.h"
#include "kdcdb/links.h"
#include "kdcdb/master_pages.h"
#include "kdcdb/paths.h"
#include "kdcdb/store.h"
#include "kdcdb/system_status.h"
#include "kdcdb/trace.h"
#include "system/file_system.h"

namespace kdcdb {

namespace {

// Two processes that share a directory, and even a number of theirs, get names of their own.
std::string unique_name(const char* directory) {
  std::uint32_t mark = 0;
  if (getrandom(&mark, sizeof mark, 0) < 0) mark = static_cast<std::uint32_t>(time(nullptr));
  char name[40];
  std::snprintf(name, sizeof name, "fmd%ld_%08x", static_cast<long>(getpid()), static_cast<unsigned>(mark));
  return std::string(directory) + (std::strcmp(directory, "/") == 0 ? "" : "/") + name;
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

bool is_known_command(const Command& command) {
  if (is_set_command(command)) return true;
  if (command[0].has_value || command[0].has_group) return false;
  const std::string& verb = command[0].name;
  if (verb == "restart") return command.size() == 1;
  return verb == "assign" || verb == "dblocate" || verb == "undblocate";
}

Status parse_checked(const char* text, std::vector<Command>& commands) {
  const Status status = parse_commands(text, commands);
  if (status != kOk) return status;
  return std::all_of(commands.begin(), commands.end(), is_known_command) ? kOk : kBadCommand;
}

// A set that is made is one that somebody comes back for; without it the database is done with.
Status run_set_command(const Command& command) {
  Store& state = store();
  const Path path(state.base.c_str(), suffix_of_set(command[1].name));
  const bool makes = command[0].name == "init";
  if (command[1].name == "dbfmd") {
    state.keeps_lock = makes && state.base != state.own_name;
    if (!makes) state.forget_scratch(state.base);
  }
  return makes ? make_set(path) : remove_file(path);
}

// On the open database. "restart" asks for nothing: what a session knows of a database stays with it.
Status run_command(const Command& command) {
  const std::string& verb = command[0].name;
  if (verb == "init" || verb == "dbsetdel") return run_set_command(command);
  if (verb == "assign") return run_assign(command);
  if (verb == "dblocate") return run_dblocate(command);
  return verb == "undblocate" ? run_undblocate(command) : kOk;
}

Status run_commands(const std::vector<Command>& commands) {
  for (const Command& command : commands) {
    const Status status = run_command(command);
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

// The default set of one to keep is not even made, so that a process that dies cannot leave it behind.
Status create_database(const char* base, const std::vector<Command>& commands) {
  Store& state = store();
  const bool lasting = is_lasting(commands);
  auto master = std::make_unique<MasterFile>();
  Status status = master->create(Path(base, kMasterSuffix).text(), lasting);
  if (status != kOk) return status;
  if (!lasting) status = make_set(Path(base, kDefaultSet));
  if (status != kOk) {
    master->close();
    remove_files(base);
    return status;
  }
  state.master = std::move(master);
  return kOk;
}

// A lock that the session still holds is taken over, so that nobody writes between leaving and coming back.
Status open_database(const char* base, const std::vector<Command>& /*commands*/) {
  Store& state = store();
  const Path path(base, kMasterSuffix);
  const auto held = state.held.find(base);
  if (held != state.held.end()) {
    std::unique_ptr<MasterFile> master = std::move(held->second);
    state.held.erase(held);
    if (master->resume(path.text()) == kOk) {
      state.master = std::move(master);
      return kOk;
    }
  }
  auto master = std::make_unique<MasterFile>();
  const Status status = master->open(path.text());
  if (status == kOk) state.master = std::move(master);
  return status;
}

// Leaves the open database without a commit.
void give_up_database(bool is_new) {
  Store& state = store();
  const std::string base = std::move(state.base);
  state.base.clear();
  state.keeps_lock = false;
  state.master.reset();
  if (is_new) remove_files(base.c_str());
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
    state.databases.try_emplace(name);
    status = opening(name.c_str(), commands);
    if (status != kOk) return status;
    state.base = std::move(name);
    state.keeps_lock = false;
    try {
      status = run_commands(commands);
    } catch (const std::bad_alloc&) {
      status = kNoMemory;
    }
    if (status != kOk) give_up_database(opening == create_database);
    return status;
  });
}

// A datablock whose writer is still at work when the database closes is none.
void close_keys() {
  for (auto& key : store().keys) {
    if (key == nullptr) continue;
    const bool unfinished = key->is_writing();
    key->close();
    if (unfinished) key->block()->abandon();
    key.reset();
  }
}

Status begin_session(const char* working_directory) {
  Store& state = store();
  if (state.is_open()) return kDatabaseOpen;
  Path directory;
  const Status status = directory.resolve(working_directory);
  if (status != kOk) return status;
  if (state.own_name.empty()) state.own_name = unique_name(directory.text());
  state.directory = directory.text();
  return kOk;
}

Status close_database() {
  Store& state = store();
  state.directory.clear();
  if (!state.is_open()) return kNoDatabase;
  close_keys();
  const Status status = guarded([&]() -> Status {
    // Its place is taken before the commit, which cannot be undone.
    std::unique_ptr<MasterFile>* const place = state.keeps_lock ? &state.held[state.base] : nullptr;
    const Status committed = state.master->writer().commit();
    if (place != nullptr) *place = std::move(state.master);
    return committed;
  });
  state.master.reset();
  state.base.clear();
  state.keeps_lock = false;
  return status;
}

Status write_physical_name(const char* logical, char* name, std::size_t size, std::size_t* length) {
  const Store& state = store();
  if (state.directory.empty()) return kNoDatabase;
  if (std::strcmp(logical, "DBS") != 0 && std::strcmp(logical, "F06") != 0) return kBadArgument;
  const int written = std::snprintf(name, size, "%s_%s", state.own_name.c_str(), logical);
  *length = static_cast<std::size_t>(written);
  return *length < size ? kOk : kBadArgument;
}

}  // namespace

Status DbaseBst(const char* message_file, const char* working_directory) {
  begin_trace();
  trace("KD_DbaseBst: inp = %s\n", message_file);
  return traced("KD_DbaseBst: err = %d\n", guarded([&] { return begin_session(working_directory); }));
}

Status DbaseNew(const char* base, const char* commands) {
  trace("KD_DbaseNew: inp = %s\n", base);
  return traced("KD_DbaseNew: err = %d\n", begin_database(base, commands, create_database));
}

Status DbaseOld(const char* base, const char* commands) {
  trace("KD_DbaseOld: inp = %s, %s\n", base, commands);
  return traced("KD_DbaseOld: err = %d\n", begin_database(base, commands, open_database));
}

Status DbaseNdl(const char* delivery_path) {
  trace("KD_DbaseNdl: inp = %s\n", delivery_path);
  return traced("KD_DbaseNdl: err = %d\n", store().is_open() ? kOk : kNoDatabase);
}

Status DbaseCls() {
  trace("KD_DbaseCls:\n");
  return traced("KD_DbaseCls: err = %d\n", close_database());
}

Status GetDbName(const char* logical, char* name, std::size_t size, std::size_t* length) {
  trace("KD_GetDbName: inp = %s\n", logical);
  return traced("KD_GetDbName: err = %d\n", write_physical_name(logical, name, size, length));
}

Status DeleteDatabase(const char* base) {
  Store& state = store();
  Path absolute;
  const Status status = resolve_base(base, absolute);
  // The directory may be gone, and the session ends all the same.
  const std::string_view name = status == kOk ? absolute.text() : base;
  if (name == state.base) return kDatabaseOpen;
  state.forget_scratch(name);
  const auto held = state.held.find(name);
  if (held != state.held.end()) state.held.erase(held);
  if (name == state.own_name) state.end_session();
  if (state.scratch.empty()) state.cache.release_storage();
  return status == kOk ? remove_files(absolute.text()) : status;
}

Status FMSCommand(const char* text) {
  trace("KD_FMSCommand: inp = %s\n", text);
  return traced("KD_FMSCommand: err = %d\n", guarded([&]() -> Status {
                  if (!store().is_open()) return kNoDatabase;
                  std::vector<Command> commands;
                  const Status status = parse_checked(text, commands);
                  return status == kOk ? run_commands(commands) : status;
                }));
}

void GetBuffsizeLimit(std::int32_t* limit, std::int32_t* second) {
  *limit = kBufferWordsLimit;
  *second = 0;
}

}  // namespace kdcdb
