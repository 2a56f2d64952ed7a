// The display faces: stripping those that two elements share, and whether they are a coarsened mesh.
#include "body/body.h"
#include "dbmodal/dbtools/face_strip.h"
#include "fmdtoolkit/fmdtoolkit.h"
#include "messages/memory.h"

namespace {

constexpr std::int32_t kMostCornersOfElement = 4;

}  // namespace

void FMD_StripCommonFaces(FmdBody* body) {
  if (CheckFMD(body) == 0 || body->InternalGeometryRemoved != 0) return;
  if (body->FaceListLength == 0) return fmd::report_allocation_failure("dbtools");
  if (!fmd::is_sound_face_list(body->FaceList, body->FaceCount, body->FaceListLength, body->NodeCount))
    return;

  FMD_Info(" Stripping interior faces\n");
  const auto copy = fmd::allocate<std::int32_t>(body->FaceListLength, "dbtools");
  if (copy == nullptr) return;
  const auto records = fmd::allocate<fmd::CanonicalFace>(body->FaceCount, "dbtools");
  if (records == nullptr) return;
  const fmd::FaceListSize kept = fmd::strip_common_faces(body->FaceList, body->FaceCount,
                                                         body->FaceListLength, records.get(), copy.get());
  body->FaceCount = kept.faces;
  body->FaceListLength = kept.length;
  body->InternalGeometryRemoved = 1;
}

// The flag is not stored in a dataset: a mesh that was coarsened before it was written shows it by polygons.
int FMD_IsCoarsened(FmdBody* body) {
  if (CheckFMD(body) == 0) return 0;
  if (body->Coarsened != 0 ||
      !fmd::is_sound_face_list(body->FaceList, body->FaceCount, body->FaceListLength, body->NodeCount))
    return body->Coarsened;
  for (std::int32_t face = 0, place = 0; face < body->FaceCount && body->Coarsened == 0; ++face) {
    if (body->FaceList[place] > kMostCornersOfElement) body->Coarsened = 1;
    place += body->FaceList[place] + 1;
  }
  return body->Coarsened;
}
