// A body into a plain Flexible Modal Dataset file.
#include <fcntl.h>

#include <algorithm>
#include <cstring>

#include "dbmodal/dbwrite/mesh_stage.h"
#include "dbmodal/dbwrite/prepare.h"
#include "dbmodal/dbwrite/serialise.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "system/file_system.h"

namespace {

using fmd::WriteJob;

void report_unopenable(const char* path) {
  FMD_Error("Unable to open %s for write. Please check write permissions.", path);
}

// Narrowing of single precision streams needs room for the longest item; the mode streams share it.
void provide_float_buffer(WriteJob& job) {
  FmdBody* const body = job.body;
  const bool needed = fmd::is_single_precision(job.version) || body->DataFile.DoublePrecision == 0;
  if (!job.ok || !needed || body->FloatBuffer != nullptr) return;
  const std::int64_t room = std::max<std::int64_t>({6LL * body->NodeCount, body->ModeCount, 512});
  body->FloatBuffer = fmd::allocate<float>(room, "dbwrite").release();
  if (body->FloatBuffer == nullptr) job.ok = false;
  for (FmdStream& stream : body->ModeFile) stream.FloatBuffer = body->FloatBuffer;
}

// Everything between the open file and its closing.
bool write_to(int file, FmdBody* body, const char* path) {
  WriteJob job;
  job.body = body;
  job.options = fmd::parse_write_options(std::getenv("KXI_FMDWRITE_OPTIONS"));
  fmd::run_mesh_stage(job);
  fmd::choose_version(job);

  fmd::FileMedium medium(file);
  fmd::Sink sink(medium, {fmd::is_xdr(job.version), fmd::is_single_precision(job.version)});
  if (!sink.ok()) {
    job.ok = false;
    if (fmd::is_xdr(job.version)) report_unopenable(path);
  }
  job.sink = &sink;
  provide_float_buffer(job);

  fmd::write_version_and_header(job);
  if (job.ok) fmd::run_content_stages(job);
  if (!job.ok) return false;
  fmd::report_content(job);
  fmd::write_content(job);
  return job.ok;
}

// Removes what a failed write left; devices and pipes stay.
void remove_remains(const char* path) {
  struct stat status {};
  if (fmd::file_system().stat(path, &status) == 0 && S_ISREG(status.st_mode)) fmd::file_system().unlink(path);
}

}  // namespace

int FMD_write_FMD(FmdBody* body, char* path) {
  if (CheckFMD(body) == 0) return 0;
  const char* const name = body->DataFile.Name;
  if (name != nullptr && std::strcmp(name, path) == 0) {
    FMD_Error(
        "The output FMD name must be different than the current FMD name.\n  Current FMD name:  %s\n  Output "
        "FMD name:  %s",
        name, path);
    return 0;
  }
  // The stages run code of the host (its handlers), which may reuse the caller's text.
  const auto length = static_cast<std::int64_t>(std::strlen(path)) + 1;
  const auto target = fmd::allocate<char>(length, "dbwrite");
  if (target == nullptr) return 0;
  std::memcpy(target.get(), path, static_cast<std::size_t>(length));

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
