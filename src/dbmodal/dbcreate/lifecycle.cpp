// Creation, counting and release of bodies, and the test for the blocks that a body holds.
#include "body/body.h"
#include "body/body_list.h"
#include "dbmodal/block_table.h"
#include "dbmodal/dbcreate/release.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

FmdBody* FMD_Create(int nodeCount, int modeCount) {
  if (fmd::first_body() == nullptr && DB_StartBase() == 0) return nullptr;
  auto* body = static_cast<FmdBody*>(fmd::allocate_quietly(1, sizeof(FmdBody)));
  if (body == nullptr) return nullptr;
  fmd::initialize_body(*body, nodeCount, modeCount);
  fmd::append_body(body);
  return body;
}

void FMD_UnLink(FmdBody* body) {
  if (body != nullptr && fmd::remove_body(body)) fmd::release_body(body);
}

void FMD_DeReference(FmdBody* body) {
  if (!fmd::is_listed(body)) return;
  if (body->ReferenceCount == 1) {
    FMD_UnLink(body);
  } else {
    --body->ReferenceCount;
  }
}

void FMD_Terminate(void) {
  while (fmd::first_body() != nullptr) FMD_UnLink(fmd::first_body());
  DB_TermBase();
}

void FMD_Destroy(void) {}

void FMD_FreeMemory(void* pointer) {
  std::free(pointer);
}

FmdBody* FMD_GetFirstFMD(void) {
  return fmd::first_body();
}

int FMD_IsValid(FmdBody* body) {
  return fmd::is_listed(body) ? 1 : 0;
}

int CheckFMD(FmdBody* body) {
  if (body != nullptr) return 1;
  FMD_Error("The database has not been initialized.");
  return 0;
}

int FMD_Exists(FmdBody* body, int id) {
  if (CheckFMD(body) == 0 || id < 0 || id >= fmd::kBlockCount) return 0;
  const int byte = fmd::block_table()[static_cast<std::size_t>(id)].summary_byte;
  return byte == fmd::kAlwaysPresent ? 1 : body->BlockExists[byte];
}
