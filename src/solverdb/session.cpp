// The process-wide session on the toolkit's own scratch database.
#include "solverdb/session.h"

#include <cstdlib>
#include <new>
#include <string>

#include "fmdtoolkit/fmdtoolkit.h"
#include "kdcdb/kdcdb.h"
#include "system/file_system.h"

namespace {

constexpr std::size_t kNameBytes = 1024;

struct Session {
  bool started = false;
  std::string base_name;   // of the session's own scratch database; empty until first obtained
  std::string kadcdb_dir;  // value of KXI_KADCDB_DIR, kept while the session lives
  std::string message_file_path;
  std::string delivery_path;
};

Session& session() {
  static Session the_session;
  return the_session;
}

// 0, or -1 where the directory variable is not set.
int PrepareSessionPaths() {
  Session& state = session();
  if (state.kadcdb_dir.empty()) {
    const char* const directory = std::getenv("KXI_KADCDB_DIR");
    if (directory == nullptr) {
      FMD_Error("Cannot get KXI_KADCDB_DIR.");
      return -1;
    }
    state.kadcdb_dir = directory;
  }
  state.message_file_path = state.kadcdb_dir + "/analysis.msg";
  state.delivery_path = state.kadcdb_dir + "/SSS";
  const std::string key_file = state.kadcdb_dir + "/kdbcom.asg";
  return setenv("KDBASGFILE", key_file.c_str(), 1);
}

kdcdb::Status make_scratch_database() {
  Session& state = session();
  char name[kNameBytes];
  std::size_t length = 0;
  kdcdb::Status status = kdcdb::GetDbName("DBS", name, sizeof name, &length);
  if (status != kdcdb::kOk) return status;
  std::string base(name, length);
  base.erase(base.rfind('_'));
  status = kdcdb::DbaseNew(base.c_str(), "init dbfmd");
  if (status == kdcdb::kOk) state.base_name = std::move(base);
  return status;
}

bool start() {
  const Session& state = session();
  if (fmd::begin_store_session() != 0) return false;
  const kdcdb::Status status =
      state.base_name.empty() ? make_scratch_database() : kdcdb::DbaseOld(state.base_name.c_str(), "");
  return status == kdcdb::kOk && fmd::name_delivered_database() == kdcdb::kOk;
}

}  // namespace

namespace fmd {

int begin_store_session() {
  const int prepared = PrepareSessionPaths();
  return prepared != 0 ? prepared : kdcdb::DbaseBst(session().message_file_path.c_str(), "./");
}

kdcdb::Status name_delivered_database() {
  return kdcdb::DbaseNdl(session().delivery_path.c_str());
}

kdcdb::Status close_database() {
  char print_file[kNameBytes];
  std::size_t length = 0;
  const kdcdb::Status named = kdcdb::GetDbName("F06", print_file, sizeof print_file, &length);
  const kdcdb::Status closed = kdcdb::DbaseCls();
  if (named == kdcdb::kOk) fmd::file_system().unlink(print_file);
  return closed;
}

const std::string& session_base_name() {
  return session().base_name;
}

}  // namespace fmd

int DB_StartBase(void) {
  Session& state = session();
  if (state.started) return 1;
  try {
    state.started = start();
  } catch (const std::bad_alloc&) {
    state.started = false;
  }
  return state.started ? 1 : 0;
}

void DB_TermBase(void) {
  Session& state = session();
  state.kadcdb_dir.clear();
  if (!state.started) return;
  DB_ResetBrowser();
  fmd::close_database();
  kdcdb::DeleteDatabase(state.base_name.c_str());
  state.base_name.clear();
  state.started = false;
}

int DB_CloseDatablk(int block) {
  if (block == 0) return 1;
  kdcdb::Close(block, 1);
  kdcdb::ReleaseDatablk(block);
  return 1;
}
