// Stored datablocks: opening the one of a body, making a new one.
#include "solverdb/datablocks.h"

#include <new>

#include "fmdtoolkit/fmdtoolkit.h"

namespace {

constexpr std::size_t kRowBytes = 256;

int openSerial = 0;

// The key of the one datablock that a row of the browser means; 0 with a message.
int open_by_row(const char* path, const char* row, int serial) {
  const std::string number = std::to_string(serial);
  kdcdb::Status status = fmd::run_command(fmd::assign_opened(serial, path));
  if (status == kdcdb::kOk) {
    status =
        fmd::run_command("dblocate logical=dbalc" + number + " datablk=(fmddb) where(" +
                         fmd::ReplaceTopLevelCommas(row, " and ") + ") convert(highqual=" + number + ")");
  }
  int key = 0;
  int count = 0;
  if (status == kdcdb::kOk)
    status = kdcdb::AllocDatablk(fmd::select_by_mark("fmddb", serial).c_str(), &key, &count);
  if (count != 1) {
    FMD_Error("%d datablocks are assigned.", count);
    return 0;
  }
  status = kdcdb::Gopen(key, kdcdb::kOpenExisting);
  if (status == kdcdb::kOk) return key;
  kdcdb::ReleaseDatablk(key);
  FMD_Error("Cannot open the datablock, %d.", static_cast<int>(status));
  return 0;
}

}  // namespace

namespace fmd {

kdcdb::Status run_command(const std::string& command) {
  return kdcdb::FMSCommand(command.c_str());
}

std::string select_by_mark(const char* name, int mark) {
  return std::string("datablk=(") + name +
         ") where(projno=* and version=* and highqual=" + std::to_string(mark) + " and wildcard=true)";
}

std::string assign_opened(int serial, const char* path) {
  return "assign dbalc" + std::to_string(serial) + "='" + path + "'";
}

void abandon_datablock(int block) {
  kdcdb::AbandonDatablk(block);
}

std::string ReplaceTopLevelCommas(const std::string& text, const char* replacement) {
  std::string replaced;
  bool quoted = false;
  for (const char c : text) {
    if (c == '\'') quoted = !quoted;
    if (c == ',' && !quoted) {
      replaced += replacement;
    } else {
      replaced += c;
    }
  }
  return replaced;
}

}  // namespace fmd

int DB_OpenDatablk(char* path, int index, int* logicalId) {
  try {
    char row[kRowBytes];
    const int count = DB_BodyBrowser(path, 0, nullptr);
    if (count == 0) return 0;
    if (index < 1 || index > count) {
      FMD_Error("The index is too big, %d.", index);
      return 0;
    }
    DB_BodyBrowser(path, index, row);
    *logicalId = ++openSerial;
    return open_by_row(path, row, openSerial);
  } catch (const std::bad_alloc&) {
    return 0;
  }
}

int DB_CreateFMDblk(char* qualifiers) {
  try {
    int key = 0;
    const std::string command = "dbcreate datablk=(fmddb) quals(" +
                                fmd::ReplaceTopLevelCommas(qualifiers == nullptr ? "" : qualifiers, ";") +
                                ")";
    kdcdb::Status status = kdcdb::CreateDatablk(command.c_str(), &key);
    if (status == kdcdb::kOk) status = kdcdb::Gopen(key, kdcdb::kOpenNew);
    if (status == kdcdb::kOk) return key;
    FMD_Error("Cannot create fmd datablock, %d.", static_cast<int>(status));
  } catch (const std::bad_alloc&) {
  }
  return 0;
}
