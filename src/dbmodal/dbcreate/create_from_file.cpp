// Stored bodies by file name and index: one that is live already is shared.
#include <cstring>

#include "body/body.h"
#include "body/body_list.h"
#include "fmdtoolkit/fmdtoolkit.h"

namespace {

FmdBody* find_live(const char* file_name, int index, int surface_mesh) {
  for (FmdBody* body = fmd::first_body(); body != nullptr; body = body->Next) {
    const FmdStream& file = body->DataFile;
    if (file.Name != nullptr && std::strcmp(file.Name, file_name) == 0 && file.BodyIndex == index &&
        body->SurfaceMesh == surface_mesh)
      return body;
  }
  return nullptr;
}

FmdBody* share(FmdBody* body) {
  if (body != nullptr) ++body->ReferenceCount;
  return body;
}

FmdBody* read_new(char* file_name, int index) {
  FmdBody* const body = FMD_Create(0, 0);
  if (FMD_ReadFMD(body, file_name, index) != 0) return body;
  FMD_UnLink(body);
  return nullptr;
}

}  // namespace

FmdBody* FMD_CreateFromFMD(char* fileName, int index) {
  FmdBody* const live = share(find_live(fileName, index, 0));
  return live != nullptr ? live : read_new(fileName, index);
}

FmdBody* FMD_CreateFromFMD_SurfaceMesh(char* fileName, int index) {
  FmdBody* const live = share(find_live(fileName, index, 1));
  if (live != nullptr) return live;
  // A failed read shows in the reduction, which is told a null body and says so.
  FmdBody* const body = read_new(fileName, index);
  FMD_RemoveInternalGeometry(body);
  if (body != nullptr) body->SurfaceMesh = 1;
  return body;
}
