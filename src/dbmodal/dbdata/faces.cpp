// The face list, handed out.
#include <algorithm>

#include "body/body.h"
#include "fmdtoolkit/fmdtoolkit.h"

int FMD_FaceListSize(FmdBody* body, int* faces, int* length) {
  *faces = 0;
  *length = 0;
  if (CheckFMD(body) == 0) return 0;
  *faces = body->FaceCount;
  *length = body->FaceListLength;
  return body->FaceListLength;
}

int FMD_ElementFaces(FmdBody* body, int* list) {
  if (CheckFMD(body) == 0 || body->FaceList == nullptr) return 0;
  std::copy_n(body->FaceList, body->FaceListLength, list);
  return 1;
}
