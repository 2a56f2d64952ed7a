// The switch of the session to another database and back, which storing a body needs: only the body that is
// being stored has open datablocks meanwhile.
#include <fcntl.h>

#include <new>
#include <string>

#include "body/body.h"
#include "body/body_list.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "solverdb/datablocks.h"
#include "solverdb/session.h"
#include "system/file_system.h"

namespace {

using kdcdb::Status;

constexpr const char* kMasterSuffix = ".MASTER";

int writeSerial = 0;

void close_blocks(const FmdBody& body) {
  if (body.DataFile.Block != 0) kdcdb::Close(body.DataFile.Block, 1);
  for (const FmdStream& stream : body.ModeFile) {
    if (stream.Block != 0 && stream.IsScratch == 1) kdcdb::Close(stream.Block, 1);
  }
}

std::string base_of(const char* path) {
  const std::string text = path;
  return text.substr(0, text.rfind(kMasterSuffix));
}

bool can_be_read(const char* path) {
  const int file = fmd::file_system().open(path, O_RDONLY, 0);
  if (file < 0) return false;
  fmd::file_system().close(file);
  return true;
}

bool begin_on(const std::string& base, const std::string& commands) {
  return fmd::begin_store_session() == 0 && kdcdb::DbaseOld(base.c_str(), commands.c_str()) == kdcdb::kOk &&
         fmd::name_delivered_database() == kdcdb::kOk;
}

// The target becomes the open database; one that is not there is made.
bool begin_on_target(char* path) {
  if (fmd::begin_store_session() != 0) return false;
  const std::string base = base_of(path);
  Status status;
  if (can_be_read(path)) {
    if (DB_CheckDBset(path) != 0) return false;
    status = kdcdb::DbaseOld(base.c_str(), "init dbfmd");
    if (status == kdcdb::kDamaged) FMD_Error("The database %s is damaged. Run fmdtool check on it.", path);
  } else {
    status = kdcdb::DbaseNew(base.c_str(), "init dbfmd;dbsetdel dball");
  }
  return status == kdcdb::kOk && fmd::name_delivered_database() == kdcdb::kOk;
}

std::string link_scratch_database(const char* path) {
  return "assign dbtmp" + std::to_string(writeSerial) + "='" + path + "'";
}

std::string locate(const char* name, int mark) {
  return "dblocate logical=dbtmp" + std::to_string(writeSerial) + ' ' + fmd::select_by_mark(name, mark);
}

struct Texts {
  const char* name;
  const char* not_one;
  const char* not_opened;
};

constexpr Texts kStored = {"fmddb", "%d datablocks are assigned.", "Cannot open the datablock, %d."};
constexpr Texts kScratch = {"fmdtmp", "%d temporary datablocks are assigned.",
                            "Cannot open the temporary datablock, %d."};

// The new key of a datablock that has been located before; 0 with a message. More than one is an error only
// where the caller counts exactly.
int open_again(const Texts& texts, int mark, bool exactly_one) {
  int key = 0;
  int count = 0;
  kdcdb::AllocDatablk(fmd::select_by_mark(texts.name, mark).c_str(), &key, &count);
  if (count < 1 || (exactly_one && count != 1)) {
    FMD_Error(texts.not_one, count);
    return 0;
  }
  const Status status = kdcdb::Gopen(key, kdcdb::kOpenExisting);
  if (status == kdcdb::kOk) return key;
  FMD_Error(texts.not_opened, static_cast<int>(status));
  return 0;
}

// A block that could not be opened again keeps the key that it had, which names nothing any more.
bool reopen(const Texts& texts, FmdStream& stream, bool exactly_one) {
  const int key = open_again(texts, stream.Key, exactly_one);
  if (key != 0) stream.Block = key;
  return key != 0;
}

bool bring_along_dataset(FmdBody& body) {
  FmdStream& stream = body.DataFile;
  if (stream.Block == 0) return true;
  if (stream.Name == nullptr) return false;
  if (fmd::run_command(fmd::assign_opened(stream.Key, stream.Name)) != kdcdb::kOk) return false;
  if (fmd::run_command(locate(kStored.name, stream.Key)) != kdcdb::kOk) return false;
  return reopen(kStored, stream, true);
}

bool bring_along_modes(FmdBody& body) {
  for (FmdStream& stream : body.ModeFile) {
    if (stream.Block == 0) continue;
    if (stream.IsScratch != 1) {
      stream.Block = body.DataFile.Block;
      continue;
    }
    if (fmd::run_command(locate(kScratch.name, stream.Key)) != kdcdb::kOk) return false;
    if (!reopen(kScratch, stream, true)) return false;
  }
  return true;
}

// Under whatever name: its scratch data would be cleaned away at the end.
bool is_own_database(const char* path) {
  struct stat own {};
  struct stat target {};
  const std::string master = fmd::session_base_name() + kMasterSuffix;
  return fmd::file_system().stat(master.c_str(), &own) == 0 && fmd::file_system().stat(path, &target) == 0 &&
         own.st_dev == target.st_dev && own.st_ino == target.st_ino;
}

bool start_write(FmdBody* body, char* path) {
  if (is_own_database(path)) return false;
  for (const FmdBody* other = fmd::first_body(); other != nullptr; other = other->Next) close_blocks(*other);
  fmd::close_database();
  if (!begin_on_target(path)) return false;
  ++writeSerial;
  const std::string scratch_master = fmd::session_base_name() + kMasterSuffix;
  if (fmd::run_command(link_scratch_database(scratch_master.c_str())) != kdcdb::kOk) return false;
  return bring_along_dataset(*body) && bring_along_modes(*body);
}

std::string restart_text() {
  std::string text = "restart";
  for (const FmdBody* body = fmd::first_body(); body != nullptr; body = body->Next) {
    if (body->DataFile.Block != 0 && body->DataFile.Name != nullptr)
      text += ';' + fmd::assign_opened(body->DataFile.Key, body->DataFile.Name);
  }
  return text;
}

// What was made on the target for the body comes along to the session's own database.
bool take_scratch_home(const FmdBody& body, const char* path) {
  ++writeSerial;
  if (fmd::run_command(link_scratch_database(path)) != kdcdb::kOk) return false;
  for (const FmdStream& stream : body.ModeFile) {
    if (stream.Block == 0 || stream.IsScratch != 1) continue;
    if (fmd::run_command(locate(kScratch.name, stream.Key) + " copy") != kdcdb::kOk) return false;
  }
  return fmd::run_command("undblocate logical=dbtmp" + std::to_string(writeSerial)) == kdcdb::kOk;
}

bool clean_target(const char* path) {
  const std::string base = base_of(path);
  if (!begin_on(base, "dbsetdel dbfmd")) return false;
  const bool closed = fmd::close_database() == kdcdb::kOk;
  fmd::file_system().unlink((base + ".DBFMD").c_str());
  return closed;
}

bool reopen_blocks(FmdBody& body) {
  FmdStream& data = body.DataFile;
  if (data.Block != 0 && !reopen(kStored, data, false)) return false;
  for (FmdStream& stream : body.ModeFile) {
    if (stream.Block == 0) continue;
    if (stream.IsScratch != 1) {
      stream.Block = data.Block;
    } else if (!reopen(kScratch, stream, false)) {
      return false;
    }
  }
  return true;
}

// Closing the target commits what was stored.
bool leave_target(const FmdBody& body, const char* path, const std::string& restart) {
  if (fmd::run_command("undblocate logical=*") != kdcdb::kOk || fmd::close_database() != kdcdb::kOk)
    return false;
  if (!begin_on(fmd::session_base_name(), restart) || !take_scratch_home(body, path)) return false;
  return fmd::close_database() == kdcdb::kOk && clean_target(path) &&
         begin_on(fmd::session_base_name(), restart);
}

bool term_write(const FmdBody* body, const char* path) {
  close_blocks(*body);
  if (!leave_target(*body, path, restart_text())) {
    FMD_Error("Problem closing %s.", path);
    return false;
  }
  for (FmdBody* other = fmd::first_body(); other != nullptr; other = other->Next) {
    if (!reopen_blocks(*other)) return false;
  }
  return true;
}

}  // namespace

int DB_StartWrite(FmdBody* body, char* path) {
  if (CheckFMD(body) == 0) return 0;
  try {
    return start_write(body, path) ? 1 : 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

int DB_TermWrite(FmdBody* body, char* path) {
  if (CheckFMD(body) == 0) return 0;
  try {
    return term_write(body, path) ? 1 : 0;
  } catch (const std::bad_alloc&) {
    return 0;
  }
}
