#include "dbmodal/dbwrite/write_dataset.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "dbmodal/dbwrite/mesh_stage.h"
#include "dbmodal/dbwrite/prepare.h"
#include "dbmodal/dbwrite/serialise.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace fmd {

namespace {

// Narrowing of single precision streams needs room for the longest item; the mode streams share it.
void provide_float_buffer(WriteJob& job) {
  FmdBody* const body = job.body;
  const bool needed = is_single_precision(job.version) || body->DataFile.DoublePrecision == 0;
  if (!job.ok || !needed || body->FloatBuffer != nullptr) return;
  const std::int64_t room = std::max<std::int64_t>({6LL * body->NodeCount, body->ModeCount, 512});
  body->FloatBuffer = allocate<float>(room, "dbwrite").release();
  if (body->FloatBuffer == nullptr) job.ok = false;
  for (FmdStream& stream : body->ModeFile) stream.FloatBuffer = body->FloatBuffer;
}

}  // namespace

bool is_own_file(const FmdBody& body, const char* path) {
  const char* const name = body.DataFile.Name;
  if (name == nullptr || std::strcmp(name, path) != 0) return false;
  FMD_Error(
      "The output FMD name must be different than the current FMD name.\n  Current FMD name:  %s\n  Output "
      "FMD name:  %s",
      name, path);
  return true;
}

CArray<char> copy_of_path(const char* path) {
  const auto length = static_cast<std::int64_t>(std::strlen(path)) + 1;
  auto copy = allocate<char>(length, "dbwrite");
  if (copy != nullptr) std::memcpy(copy.get(), path, static_cast<std::size_t>(length));
  return copy;
}

void prepare_dataset(WriteJob& job) {
  job.options = parse_write_options(std::getenv("KXI_FMDWRITE_OPTIONS"));
  // A datablock is native in any case.
  if (job.record != nullptr) job.options.native = true;
  run_mesh_stage(job);
  choose_version(job);
}

bool write_dataset(WriteJob& job) {
  provide_float_buffer(job);
  write_version_and_header(job);
  if (job.ok) run_content_stages(job);
  if (!job.ok) return false;
  report_content(job);
  write_content(job);
  return job.ok;
}

}  // namespace fmd
