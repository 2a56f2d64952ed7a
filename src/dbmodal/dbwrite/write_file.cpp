// A body into a plain Flexible Modal Dataset file.
#include <fcntl.h>

#include "dbmodal/dbwrite/write_dataset.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "system/file_system.h"

namespace {

using fmd::WriteJob;

void report_unopenable(const char* path) {
  FMD_Error("Unable to open %s for write. Please check write permissions.", path);
}

// Everything between the open file and its closing.
bool write_to(int file, FmdBody* body, const char* path) {
  WriteJob job;
  job.body = body;
  fmd::prepare_dataset(job);
  fmd::FileMedium medium(file);
  fmd::Sink sink(medium, {fmd::is_xdr(job.version), fmd::is_single_precision(job.version)});
  if (!sink.ok()) {
    job.ok = false;
    if (fmd::is_xdr(job.version)) report_unopenable(path);
  }
  job.sink = &sink;
  return fmd::write_dataset(job);
}

// Removes what a failed write left; devices and pipes stay.
void remove_remains(const char* path) {
  struct stat status {};
  if (fmd::file_system().stat(path, &status) == 0 && S_ISREG(status.st_mode)) fmd::file_system().unlink(path);
}

}  // namespace

int FMD_write_FMD(FmdBody* body, char* path) {
  if (CheckFMD(body) == 0 || fmd::is_own_file(*body, path)) return 0;
  const auto target = fmd::copy_of_path(path);
  if (target == nullptr) return 0;

  const int file = fmd::file_system().open(target.get(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
  if (file < 0) {
    report_unopenable(target.get());
    return 0;
  }
  bool complete = write_to(file, body, target.get());
  if (fmd::file_system().close(file) != 0 && complete) {
    FMD_Error("Problem closing %s.", target.get());
    complete = false;
  }
  if (!complete) remove_remains(target.get());
  return complete ? 1 : 0;
}
