// A body into a datablock of a solver database.
#include "dbmodal/dbwrite/record_form.h"
#include "dbmodal/dbwrite/write_dataset.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "solverdb/datablocks.h"

namespace {

using fmd::WriteJob;

// The block is closed before its trailer is written, which the store takes by key.
bool finish(WriteJob& job, const fmd::RecordForm& form, int block, char* path) {
  const std::int32_t nodes = job.body->NodeCount;
  const FmdPosition& table = form.table_position();
  const std::int32_t trailer[7] = {
      block, job.mode_count, nodes,        static_cast<std::int32_t>(6U * static_cast<std::uint32_t>(nodes)),
      2,     table.Word[0],  table.Word[1]};
  DB_CloseDatablk(block);
  if (DB_WriteTrailer(trailer) != 0 && DB_TermWrite(job.body, path) != 0) return true;
  // Where the target has not been closed yet, its closing must not store what was reported as failed.
  fmd::abandon_datablock(block);
  return false;
}

bool write_to(int block, FmdBody* body, char* path) {
  FmdStream stream{};
  stream.Block = block;
  stream.DoublePrecision = 1;
  fmd::RecordForm form(stream);
  WriteJob job;
  job.body = body;
  job.record = &form;
  fmd::prepare_dataset(job);
  if (fmd::is_xdr(job.version)) {
    FMD_Error("KD DB file don't support XDR encording");
    job.ok = false;
  }
  fmd::DatablockMedium medium(stream);
  fmd::Sink sink(medium, {false, fmd::is_single_precision(job.version), true});
  if (!sink.ok()) job.ok = false;
  job.sink = &sink;
  return fmd::write_dataset(job) && finish(job, form, block, path);
}

}  // namespace

int FMD_write_DB(FmdBody* body, char* path, char* qualifiers) {
  if (CheckFMD(body) == 0 || fmd::is_own_file(*body, path)) return 0;
  const auto target = fmd::copy_of_path(path);
  if (target == nullptr) return 0;
  const int block = DB_StartWrite(body, target.get()) != 0 ? DB_CreateFMDblk(qualifiers) : 0;
  if (block == 0) {
    FMD_Error("Unable to open %s for write. Please check the name and qualifier.", target.get());
    return 0;
  }
  return write_to(block, body, target.get()) ? 1 : 0;
}
