// Whether a master file is sound, for hosts: the store's own check, in the results of an exit status.
#include "fmdtoolkit/extensions.h"
#include "kdcdb/kdcdb.h"

namespace {

constexpr int kSound = 0;
constexpr int kDamaged = 1;
constexpr int kNotReadable = 2;

const char* reason(kdcdb::Status status) {
  switch (status) {
    case kdcdb::kNoFile:
      return "There is no such file.";
    case kdcdb::kNotADatabase:
      return "The file is no database of this toolkit.";
    case kdcdb::kNoMemory:
      return "There is not enough memory for the check.";
    default:
      return "The file cannot be read.";
  }
}

void keep_silent(const char*, void*) {}

}  // namespace

int FMDX_CheckDatabase(const char* path, FmdxReport report, void* context) {
  const FmdxReport say = report == nullptr ? keep_silent : report;
  const kdcdb::Status status = kdcdb::CheckDatabase(path, say, context);
  if (status == kdcdb::kOk) return kSound;
  if (status == kdcdb::kDamaged) return kDamaged;
  say(reason(status), context);
  return kNotReadable;
}
