#include "fuzz/record_stream.h"

#include <unistd.h>

#include <cstdlib>
#include <string>

#include "kdcdb/kdcdb.h"

namespace fuzz {

namespace {

Stream read_stream(int block) {
  Stream stream;
  std::int32_t trailer[kdcdb::kTrailerWords] = {block};
  kdcdb::Rdtrl(trailer);
  stream.trailer.assign(trailer + 1, trailer + kdcdb::kTrailerWords);
  std::int64_t left = 0;
  do {
    if (kdcdb::Remaining(block, &left) != kdcdb::kOk) break;
    Words record(static_cast<std::size_t>(left));
    std::int64_t actual = 0;
    kdcdb::Read(block, record.data(), left, &actual);
    if (left > 0) stream.records.push_back(std::move(record));
  } while (kdcdb::Fwdrec(block) == kdcdb::kOk);
  return stream;
}

void write_stream(const Stream& stream, int block) {
  FmdStream records{};
  records.Block = block;
  for (const Words& record : stream.records) {
    DB_WriteINTs(records, record.data(), static_cast<int>(record.size()));
    DB_WriteEOR(records);
  }
  Words trailer = {block};
  trailer.insert(trailer.end(), stream.trailer.begin(), stream.trailer.end());
  DB_WriteTrailer(trailer.data());
  kdcdb::Close(block, 1);
}

}  // namespace

Stream stored_stream(FmdBody* body, const char* options) {
  char path[] = "seed.MASTER";
  char qualifiers[] = "";
  setenv("KXI_FMDWRITE_OPTIONS", options, 1);
  if (FMD_write_DB(body, path, qualifiers) != 1) return {};
  FMD_Terminate();
  int mark = 0;
  const int block = DB_OpenDatablk(path, 1, &mark);
  Stream stream = block == 0 ? Stream() : read_stream(block);
  DB_CloseDatablk(block);
  FMD_Terminate();
  unlink(path);
  return stream;
}

bool store_stream(const Stream& stream, const char* path) {
  std::string name = path;
  char qualifiers[] = "SELABEL='input'";
  if (DB_StartBase() == 0) return false;
  FmdBody* const body = FMD_Create(1, 1);
  if (DB_StartWrite(body, name.data()) == 0) return false;
  const int block = DB_CreateFMDblk(qualifiers);
  if (block != 0) write_stream(stream, block);
  const bool done = DB_TermWrite(body, name.data()) != 0 && block != 0;
  FMD_UnLink(body);
  return done;
}

}  // namespace fuzz
