// A hand-made face list from a text file in place of the body's own.
#include <cstdio>
#include <memory>

#include "body/body.h"
#include "dbmodal/dbtools/sketch_file.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace fmd {

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

bool refuse_face(int face) {
  FMD_Warning("Incorrect definition of face %d.  Aborting.", face);
  return false;
}

// False after a message.
bool read_face(FmdBody* body, std::FILE* file, int face, SketchedFaces& faces) {
  std::int32_t corners = 0;
  if (!read_sketch_number(file, corners) || corners < 0) return refuse_face(face);
  if (!faces.append(corners)) return false;
  for (std::int32_t corner = 0; corner < corners; ++corner) {
    std::int32_t id = 0;
    if (!read_sketch_number(file, id)) return refuse_face(face);
    const int node = FMD_NodeIndex(body, id);
    if (node < 0) {
      FMD_Warning("Incorrect definition of face %d.  No node %d. Aborting.", face, id);
      return false;
    }
    if (!faces.append(node)) return false;
  }
  return true;
}

// The storage is at least what the capacity of the list says, which stays as it stands.
bool install_faces(FmdBody& body, SketchedFaces& faces, std::int32_t count) {
  if (!faces.reserve(body.FaceListCapacity)) return false;
  release(body.FaceList);
  body.FaceListLength = faces.length();
  body.FaceList = faces.release();
  body.FaceCount = count;
  body.Coarsened = 1;
  body.BlockExists[kElementFaces] = 1;
  return true;
}

}  // namespace

}  // namespace fmd

void FMD_SketchGrid(FmdBody* body, char* path) {
  constexpr int kFirstEntries = 1000;
  if (CheckFMD(body) == 0) return;
  if (path == nullptr) {
    FMD_Warning("Failed to apply sketch file.  Usage: sketch(filename)");
    return;
  }
  const std::unique_ptr<std::FILE, fmd::FileCloser> file(std::fopen(path, "r"));
  if (file == nullptr) {
    FMD_Warning("Failed to open sketch file %s", path);
    return;
  }
  std::int32_t count = 0;
  if (!fmd::read_sketch_number(file.get(), count) || count < 0) {
    FMD_Warning("Sketch file %s does not start with a face count", path);
    return;
  }
  fmd::SketchedFaces faces;
  if (!faces.reserve(kFirstEntries)) return;
  FMD_Info("Using sketch file %s to replace %d faces with %d", path, body->FaceCount, count);
  for (std::int32_t face = 0; face < count; ++face) {
    if (!fmd::read_face(body, file.get(), face + 1, faces)) return;
  }
  fmd::install_faces(*body, faces, count);
}
